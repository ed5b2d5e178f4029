#include "core/cloud/cloud_settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <nlohmann/json.hpp>
#include <random>
#include <system_error>
#include <variant>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/cloud/cloud_names.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

namespace {

constexpr std::string_view kFile = "vk5_cls.json";
constexpr std::string_view kTitle = "Settings Data";

using Member = std::variant<std::string CloudSettings::*, std::optional<bool> CloudSettings::*, bool CloudSettings::*,
                            std::optional<int> CloudSettings::*, std::optional<DateTime> CloudSettings::*>;

struct CloudField {
  std::string_view name;
  Member member;
  bool secret = false;
  bool typed = true;  // by people; the others the program keeps
};

using C = CloudSettings;
const std::array kFields{
    CloudField{"Facility", &C::Facility},
    CloudField{"AcctNum", &C::AcctNum},
    CloudField{"CloudHost", &C::CloudHost},
    CloudField{"CloudHostUserName", &C::CloudHostUserName},
    CloudField{"CloudHostPassword", &C::CloudHostPassword, true},
    CloudField{"RemoteDirectory", &C::RemoteDirectory},
    CloudField{"Passive", &C::Passive},
    CloudField{"TLS", &C::TLS},
    CloudField{"ssl", &C::ssl},
    CloudField{"Port", &C::Port},
    CloudField{"CertFile", &C::CertFile},
    CloudField{"SSL_Verify", &C::SSL_Verify},
    CloudField{"ClearControlChannel", &C::ClearControlChannel},
    CloudField{"AdminUsername", &C::AdminUsername},
    CloudField{"AdminPassword", &C::AdminPassword, true},
    CloudField{"AdminDefaultDF", &C::AdminDefaultDF, false, false},
    CloudField{"Installation", &C::Installation, false, false},
    CloudField{"LastBackup", &C::LastBackup, false, false},
    CloudField{"LastRestore", &C::LastRestore, false, false},
    CloudField{"LastProven", &C::LastProven, false, false},
};

std::optional<bool> SwitchOf(std::string_view text) {
  for (const std::string_view yes : {"1", "-1", "yes", "true", "on"})
    if (EqualNoCase(text, yes)) return true;
  for (const std::string_view no : {"0", "no", "false", "off"})
    if (EqualNoCase(text, no)) return false;
  return std::nullopt;
}

std::optional<int> PortOf(std::string_view text) {
  int port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc() || end != text.data() + text.size() || port < 1 || port > 65535) return std::nullopt;
  return port;
}

// False for a text that the member cannot hold.
bool Take(CloudSettings& settings, const Member& member, const std::string& text) {
  const std::string value = Trim(text);
  if (const auto* words = std::get_if<std::string CloudSettings::*>(&member)) {
    settings.**words = value;
    return true;
  }
  if (const auto* port = std::get_if<std::optional<int> CloudSettings::*>(&member)) {
    settings.**port = PortOf(value);
    return (settings.**port).has_value();
  }
  if (const auto* date = std::get_if<std::optional<DateTime> CloudSettings::*>(&member)) {
    settings.**date = ParseDateTime(value);
    return value.empty() || (settings.**date).has_value();
  }
  const std::optional<bool> on = SwitchOf(value);
  if (const auto* choice = std::get_if<std::optional<bool> CloudSettings::*>(&member)) {
    settings.**choice = on;
  } else if (on) {
    settings.*std::get<bool CloudSettings::*>(member) = *on;
  }
  return on.has_value();
}

std::string TextOf(const CloudSettings& settings, const Member& member) {
  if (const auto* words = std::get_if<std::string CloudSettings::*>(&member)) return settings.**words;
  if (const auto* port = std::get_if<std::optional<int> CloudSettings::*>(&member))
    return (settings.**port) ? std::to_string(*(settings.**port)) : "";
  if (const auto* date = std::get_if<std::optional<DateTime> CloudSettings::*>(&member))
    return (settings.**date) ? (settings.**date)->ToText() : "";
  if (const auto* choice = std::get_if<std::optional<bool> CloudSettings::*>(&member))
    return (settings.**choice) ? (*(settings.**choice) ? "1" : "0") : "";
  return settings.*std::get<bool CloudSettings::*>(member) ? "1" : "0";
}

std::string NewInstallation() {
  std::random_device random;
  return fmt::format("{:04X}", random() & 0xFFFFU);
}

// The short keys of a file of settings, and what they stand for.
constexpr std::array<std::pair<std::string_view, std::string_view>, 13> kShortKeys{{
    {"FC", "Facility"},
    {"AN", "AcctNum"},
    {"CH", "CloudHost"},
    {"RD", "RemoteDirectory"},
    {"CU", "CloudHostUserName"},
    {"CP", "CloudHostPassword"},
    {"CF", "CertFile"},
    {"PT", "Port"},
    {"PS", "Passive"},
    {"TLS", "TLS"},
    {"SSL", "ssl"},
    {"CAU", "AdminUsername"},
    {"CAP", "AdminPassword"},
}};

// A line's key and value, whatever stands between them.
std::pair<std::string_view, std::string_view> KeyAndValue(std::string_view line) {
  line = TrimView(line);
  const std::size_t end = line.find_first_of("=:,;| \t");
  if (end == std::string_view::npos) return {line, {}};
  std::string_view value = TrimView(line.substr(end));
  if (!value.empty() && std::string_view("=:,;|").contains(value.front())) value.remove_prefix(1);
  return {line.substr(0, end), TrimView(value)};
}

std::vector<std::string> LinesOf(const std::string& bytes) {
  const std::string text = DecodeText(bytes);
  std::vector<std::string> lines;
  for (const std::string_view line : Split(text, '\n')) {
    std::string trimmed = Trim(line);
    if (!trimmed.empty() && trimmed.back() == '\r') trimmed.pop_back();
    if (!TrimView(trimmed).empty()) lines.push_back(Trim(trimmed));
  }
  return lines;
}

}  // namespace

fs::path CloudSettingsFile(const Session& session) {
  return session.DataFolder / kFile;
}

CloudSettings ReadCloudSettings(const Session& session) {
  CloudSettings settings;
  const fs::path file = CloudSettingsFile(session);
  std::error_code ignored;
  if (!fs::exists(file, ignored)) return settings;
  const Json read = Json::parse(ReadFileBytes(file), nullptr, false);
  if (!read.is_object()) throw Failure(file.string(), "holds no cloud settings");
  for (const CloudField& field : kFields) {
    const auto found = read.find(std::string(field.name));
    if (found != read.end() && found->is_string()) Take(settings, field.member, found->get<std::string>());
  }
  return settings;
}

void WriteCloudSettings(const Session& session, const CloudSettings& settings) {
  Json written = Json::object();
  for (const CloudField& field : kFields)
    if (std::string text = TextOf(settings, field.member); !text.empty()) written[std::string(field.name)] = std::move(text);
  ReplaceFile(CloudSettingsFile(session), written.dump(2) + "\n", Readers::Group);
}

Result<void> SetCloudValue(CloudSettings& settings, std::string_view name, const std::string& value) {
  for (const CloudField& field : kFields) {
    if (!field.typed || !EqualNoCase(field.name, name)) continue;
    if (Take(settings, field.member, value)) return {};
    return Refuse(std::string(kTitle),
                  field.name == "Port" ? std::string("Enter a valid Port Number")
                                       : fmt::format("Select a {} value", field.name == "ssl" ? "SSL" : field.name),
                  std::string(field.name));
  }
  return Refuse(std::string(kTitle), fmt::format("{} is no cloud setting.", name), std::string(name));
}

std::vector<std::pair<std::string, std::string>> CloudValues(const CloudSettings& settings) {
  std::vector<std::pair<std::string, std::string>> values;
  for (const CloudField& field : kFields) {
    std::string text = TextOf(settings, field.member);
    if (field.secret && !text.empty()) text = "(set)";
    values.emplace_back(field.name, std::move(text));
  }
  return values;
}

Result<void> CheckCloudSettings(const CloudSettings& settings) {
  const std::string title(kTitle);
  const auto name = [](const std::string& text) { return text.empty() || text.find_first_of("\r\n") != std::string::npos; };
  if (settings.Facility.empty()) return Refuse(title, "Enter a valid Facility Name", "Facility");
  if (name(settings.CloudHost) || settings.CloudHost.find_first_of("/\\@ ") != std::string::npos)
    return Refuse(title, "Enter a valid Cloud Host Name", "CloudHost");
  if (name(settings.CloudHostUserName)) return Refuse(title, "Enter a valid User Name", "CloudHostUserName");
  if (name(settings.CloudHostPassword)) return Refuse(title, "Enter a valid Password", "CloudHostPassword");
  if (name(settings.RemoteDirectory) || settings.RemoteDirectory.find("..") != std::string::npos)
    return Refuse(title, "Remote Directory", "RemoteDirectory");
  if (!settings.Passive) return Refuse(title, "Select a Passive value", "Passive");
  if (!settings.TLS) return Refuse(title, "Select a TLS value", "TLS");
  if (!settings.ssl) return Refuse(title, "Select a SSL Value", "ssl");
  if (!settings.Port) return Refuse(title, "Enter a valid Port Number", "Port");
  if (!IsPlainName(settings.AcctNum)) return Refuse(title, "Enter a valid Account Number", "AcctNum");
  return {};
}

Result<void> SaveCloudSettings(Session& session, const CloudSettings& given) {
  if (auto good = CheckCloudSettings(given); !good && good.error().field != "AcctNum") return good;
  CloudSettings settings = given;
  std::error_code ignored;
  if (!settings.CertFile.empty() && !fs::is_regular_file(CertificateFile(session, settings), ignored))
    return Refuse(std::string(kTitle), "Enter a valid Certificate File Name", "CertFile");
  if (auto good = CheckCloudSettings(settings); !good) return good;
  if (settings.Installation.empty()) settings.Installation = NewInstallation();
  WriteCloudSettings(session, settings);
  session.prompt.Tell(std::string(kTitle), "Settings have been saved");
  return {};
}

Result<CloudSettings> ImportCloudSettings(CloudSettings settings, const fs::path& file, const std::string& account) {
  const auto wrong = Refuse("Settings File", "Incorrect file was selected", "FILE");
  std::vector<std::string_view> seen;
  for (const std::string& line : LinesOf(ReadFileBytes(file, 65536))) {
    const auto [key, value] = KeyAndValue(line);
    const auto known = std::ranges::find_if(kShortKeys, [&](const auto& pair) { return EqualNoCase(pair.first, key); });
    if (known == kShortKeys.end()) continue;
    if (auto set = SetCloudValue(settings, known->second, std::string(value)); !set) return std::unexpected(set.error());
    seen.push_back(known->first);
  }
  for (const std::string_view needed : {"CH", "CU", "CP"})
    if (std::ranges::find(seen, needed) == seen.end()) return wrong;
  if (!account.empty()) settings.AcctNum = account;
  if (!IsPlainName(settings.AcctNum)) return Refuse("Settings File", "Enter a valid Account Number", "AcctNum");
  return settings;
}

fs::path CertificateFile(const Session& session, const CloudSettings& settings) {
  if (settings.CertFile.empty()) return {};
  if (fs::path(settings.CertFile).is_absolute()) return settings.CertFile;
  // A path of another machine is known by its name.
  const std::size_t slash = settings.CertFile.find_last_of("/\\");
  return DataFolders(session.DataFolder).cloudCerts /
         (slash == std::string::npos ? settings.CertFile : settings.CertFile.substr(slash + 1));
}

FtpHost HostOf(const Session& session, const CloudSettings& settings, bool asAdmin) {
  FtpHost host;
  host.host = settings.CloudHost;
  host.ssl = settings.ssl.value_or(false);
  host.tls = settings.TLS.value_or(true) && !host.ssl;
  host.port = settings.Port.value_or(host.ssl ? 990 : 21);
  host.user = asAdmin ? settings.AdminUsername : settings.CloudHostUserName;
  host.password = asAdmin ? settings.AdminPassword : settings.CloudHostPassword;
  host.passive = settings.Passive.value_or(true);
  host.clearControlChannel = settings.ClearControlChannel;
  host.verify = settings.SSL_Verify;
  host.certFile = CertificateFile(session, settings);
  return host;
}

std::string CloudLine(const Session& session) {
  const CloudSettings settings = ReadCloudSettings(session);
  if (!settings.Configured() || settings.AcctNum.empty()) return {};
  return fmt::format("Cloud: {}{}{}", settings.AcctNum, settings.Facility.empty() ? "" : " - ", settings.Facility);
}

// ---- Other shops

fs::path SharedAccountsFile(const Session& session) {
  return session.DataFolder / "vk5_csa.json";
}

std::vector<SharedAccount> ReadSharedAccounts(const Session& session) {
  std::vector<SharedAccount> accounts;
  const fs::path file = SharedAccountsFile(session);
  std::error_code ignored;
  if (!fs::exists(file, ignored)) return accounts;
  const Json read = Json::parse(ReadFileBytes(file), nullptr, false);
  if (!read.is_array()) throw Failure(file.string(), "holds no list of accounts");
  for (const Json& row : read) {
    SharedAccount account{row.value("AcctNum", ""), row.value("Facility", "")};
    if (IsPlainName(account.AcctNum)) accounts.push_back(std::move(account));
  }
  return accounts;
}

Result<void> SaveSharedAccounts(Session& session, const std::vector<SharedAccount>& accounts) {
  Json written = Json::array();
  for (const SharedAccount& account : accounts) {
    if (!IsPlainName(account.AcctNum))
      return Refuse("Shared Accounts", fmt::format("\"{}\" is no account number.", account.AcctNum), "AcctNum");
    const auto same = [&](const SharedAccount& other) { return EqualNoCase(other.AcctNum, account.AcctNum); };
    if (std::ranges::count_if(accounts, same) > 1)
      return Refuse("Shared Accounts", fmt::format("Account {} stands there twice.", account.AcctNum), "AcctNum");
    written.push_back({{"AcctNum", account.AcctNum}, {"Facility", account.Facility}});
  }
  ReplaceFile(SharedAccountsFile(session), written.dump(2) + "\n", Readers::Group);
  session.prompt.Tell("Shared Accounts", "Share Accounts have been Saved");
  return {};
}

Result<std::vector<SharedAccount>> SharedAccountsFrom(const std::string& bytes) {
  std::vector<SharedAccount> accounts;
  for (const std::string& line : LinesOf(bytes)) {
    const std::size_t comma = line.find(',');
    const std::string number = Trim(std::string_view(line).substr(0, comma));
    if (comma == std::string::npos || !IsPlainName(number))
      return Refuse("Shared Users", fmt::format("Unable to acquire Shared Users data\n\n{}", line), "FILE");
    const auto same = [&](const SharedAccount& other) { return EqualNoCase(other.AcctNum, number); };
    if (std::ranges::none_of(accounts, same))
      accounts.push_back({number, Trim(std::string_view(line).substr(comma + 1))});
  }
  if (accounts.empty()) return Refuse("Shared Users", "Unable to acquire Shared Users data", "FILE");
  return accounts;
}

Result<std::vector<SharedAccount>> ImportSharedAccounts(Session& session, const fs::path& file) {
  auto accounts = SharedAccountsFrom(ReadFileBytes(file, 1 << 20));
  if (!accounts) return accounts;
  if (auto saved = SaveSharedAccounts(session, *accounts); !saved) return std::unexpected(saved.error());
  return accounts;
}

Result<std::vector<SharedAccount>> RequireSharedAccounts(const Session& session) {
  std::vector<SharedAccount> accounts = ReadSharedAccounts(session);
  if (accounts.empty())
    return Refuse("Cloud Share Users",
                  "There are no Share Users listed in Cloud Settings.\nUse Cloud Settings to add Users.");
  return accounts;
}

// ---- The administrator of the accounts

Result<void> RequireCloudAdmin(const CloudSettings& settings) {
  if (settings.IsAdmin()) return {};
  return Refuse("Cloud Admin Setting", "Admin Cloud Account required for this feature.");
}

Result<fs::path> AdminDefaultDataFile(const Session& session) {
  const CloudSettings settings = ReadCloudSettings(session);
  if (auto admin = RequireCloudAdmin(settings); !admin) return std::unexpected(admin.error());
  if (settings.AdminDefaultDF.empty())
    return Refuse("Cloud Admin Setting",
                  "A Default Data File hasn't been selected.\nUse Cloud Settings to choose a Default Data File.");
  std::error_code ignored;
  if (!fs::is_regular_file(settings.AdminDefaultDF, ignored))
    return Refuse("Cloud Admin Setting",
                  "The Default Data File can't be found.\nUse Cloud Settings to update the Default Data File.");
  return fs::path(settings.AdminDefaultDF);
}

Result<void> StoreAdminDefaultDataFile(Session& session, const fs::path& typed) {
  CloudSettings settings = ReadCloudSettings(session);
  if (auto admin = RequireCloudAdmin(settings); !admin) return admin;
  std::error_code ignored;
  if (!fs::is_regular_file(typed, ignored) || !EqualNoCase(typed.extension().string(), ".vkd"))
    return Refuse("Default Data File", fmt::format("{} is no Data File.", typed.string()), "AdminDefaultDF");
  const fs::path file = RealPath(typed);
  if (IsInSystemFolder(session, file))
    return Refuse("Default Data File",
                  "Selected file is from a folder dedicated to Vellumark.\n"
                  "This file can not used as the Default Data File.",
                  "AdminDefaultDF");
  settings.AdminDefaultDF = file.string();
  WriteCloudSettings(session, settings);
  session.prompt.Tell("Cloud Admin Settings", "Default Data File Saved");
  return {};
}

}  // namespace vellumark
