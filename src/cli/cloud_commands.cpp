#include <fmt/format.h>
#include <fmt/ranges.h>

#include <filesystem>
#include <iostream>
#include <memory>

#include "cli/damaged_file.h"
#include "cli/frame.h"
#include "cli/restore_output.h"
#include "cli/seams.h"
#include "core/base/platform.h"
#include "core/base/text.h"
#include "core/cloud/cloud_admin.h"
#include "core/cloud/cloud_backup.h"
#include "core/cloud/cloud_files.h"
#include "core/cloud/cloud_inventory.h"
#include "core/cloud/connection_test.h"
#include "core/cloud/shared_accounts.h"
#include "core/shell/backups.h"
#include "core/shell/settings_restore.h"
#include "devices/ftp_connection.h"

namespace vellumark::cli {
namespace fs = std::filesystem;
namespace {

// The line to the cloud for as long as a verb runs.
struct Cloud {
  explicit Cloud(Context& context)
      : ftp(devices::FtpConnection(context.session.clock)), desk{context.session, *ftp, context.session.progress, {}} {}
  std::unique_ptr<FtpClient> ftp;
  CloudDesk desk;
};

// How a task ended: on standard error too when it failed, with the status of a failed line.
Json Told(Context& context, const CloudOutcome& outcome, Json answer = Json::object()) {
  answer["Done"] = outcome.done;
  answer["Ending"] = outcome.ending;
  answer["Log"] = outcome.log.string();
  context.text += outcome.Text() + "\n";
  if (!outcome.done) {
    context.exitStatus = ExitFailed;
    WriteError(outcome.Text() + "\n");
  }
  return answer;
}

// An account of several that failed: the others are done, and the status says that not all are.
void TellFailed(Context& context, const std::string& account, const std::string& why) {
  context.exitStatus = ExitFailed;
  if (!why.empty()) WriteError(fmt::format("{}: {}\n", account, why));
}

// "-" for a value: it is asked for, so that no list of processes shows it.
std::string ValueOf(const std::string& key, const std::string& given) {
  if (given != "-") return given;
  if (platform::InputIsTerminal()) return platform::AskSilently(key + ": ");
  std::string line;
  std::getline(std::cin, line);
  return line;
}

Json SettingsJson(const CloudSettings& settings) {
  Json answer = Json::object();
  for (const auto& [name, value] : CloudValues(settings)) answer[name] = value.empty() ? Json() : Json(value);
  return answer;
}

Result<Json> ChangeSettings(Context& context, const std::vector<std::string>& given) {
  CloudSettings settings = ReadCloudSettings(context.session);
  for (const std::string& word : given) {
    const auto pair = SplitPair(word);
    if (!pair) return Refuse("Settings Data", "KEY=VALUE is wanted for each setting.", "KEY");
    if (auto set = SetCloudValue(settings, pair->first, ValueOf(pair->first, pair->second)); !set)
      return std::unexpected(set.error());
  }
  if (!given.empty())
    if (auto saved = SaveCloudSettings(context.session, settings); !saved) return std::unexpected(saved.error());
  return SettingsJson(ReadCloudSettings(context.session));
}

Result<Json> ImportSettings(Context& context, const std::string& file, const std::string& account) {
  auto settings = ImportCloudSettings(ReadCloudSettings(context.session), fs::absolute(file), account);
  if (!settings) return std::unexpected(settings.error());
  if (auto saved = SaveCloudSettings(context.session, *settings); !saved) return std::unexpected(saved.error());
  return SettingsJson(ReadCloudSettings(context.session));
}

Result<Json> TestSettings(Context& context) {
  Cloud cloud(context);
  const ConnectionTest test = TestCloudSettings(cloud.desk, ReadCloudSettings(context.session));
  context.text = fmt::format("{}\n", fmt::join(test.Lines(), "\n"));
  context.exitStatus = test.Passed() ? ExitDone : ExitFailed;
  return Json{{"Host", test.hostLine},
              {"Certificate", test.certificateLine},
              {"Login", test.loginLine},
              {"Folder", test.folderLine},
              {"Fields", test.certificateFields},
              {"Passed", test.Passed()},
              {"Log", ConnectionTestLog(context.session).string()}};
}

Result<Json> ListAccounts(Context& context, bool fetch) {
  if (fetch) {
    Cloud cloud(context);
    CloudOutcome outcome;
    if (auto accounts = FetchSharedAccounts(cloud.desk, outcome); !accounts) return std::unexpected(accounts.error());
    if (!outcome.done) return Told(context, outcome);
  }
  return context.Answer(ShareTable(SharesHere(context.session)));
}

Result<Json> BackUp(Context& context, bool photos) {
  Cloud cloud(context);
  const auto made = BackUpToCloud(cloud.desk, photos);
  if (!made) return std::unexpected(made.error());
  return Told(context, made->outcome,
              Json{{"Name", made->outcome.done ? Json(made->name) : Json()},
                   {"Verified", made->sound},
                   {"OnFile", made->onFile},
                   {"Most", kMostCloudBackups}});
}

Result<Json> ListBackups(Context& context) {
  Cloud cloud(context);
  auto list = ListCloudBackups(cloud.desk);
  if (!list) return std::unexpected(list.error());
  if (!list->outcome.done) return Told(context, list->outcome);
  return context.Answer(TableOf<CloudBackupRow>()
                            .Add("Name", &CloudBackupRow::name)
                            .Add("Date", &CloudBackupRow::date, {}, Format::Moment)
                            .Add("Size", &CloudBackupRow::size)
                            .Add("Proven", &CloudBackupRow::proven, {}, Format::YesNo)
                            .Of(std::move(list->rows)));
}

Result<Json> Restore(Context& context, const std::string& name, bool photos) {
  Session& session = context.session;
  Cloud cloud(context);
  std::error_code ignored;
  if (!context.dataFile.empty() && fs::exists(context.dataFile, ignored))
    if (auto opened = OpenAsFarAsItCan(context); !opened) return std::unexpected(opened.error());
  session.DataFileName = context.dataFile;
  const auto fetched = FetchCloudBackup(cloud.desk, name, photos);
  if (!fetched) return std::unexpected(fetched.error());
  if (!fetched->outcome.done) return Told(context, fetched->outcome);
  NoWindows windows(context.user, context.password);
  const auto restored = RestoreDataFile(session, fetched->dataFile, RestoreFrom::Cloud, windows);
  if (!restored) return std::unexpected(restored.error());
  Json answer{{"DataFileName", session.DataFileName}, {"From", name}};
  answer.update(RestoredJson(*restored));
  context.text = RestoredText(*restored);
  answer["Photos"] = fetched->photos;
  answer["SupportFiles"] = fetched->supportFolder.empty() ? Json() : Json(fetched->supportFolder.string());
  return Told(context, fetched->outcome, std::move(answer));
}

Result<Json> RestoreSettings(Context& context, const std::string& name) {
  Cloud cloud(context);
  const auto fetched = FetchCloudSupportFiles(cloud.desk, name);
  if (!fetched) return std::unexpected(fetched.error());
  if (!fetched->outcome.done) return Told(context, fetched->outcome);
  if (auto restored = RestoreSupportFiles(context.session, fetched->supportFolder, RestoreFrom::Cloud); !restored)
    return std::unexpected(restored.error());
  return Told(context, fetched->outcome, Json{{"From", fetched->supportFolder.string()}});
}

Result<Json> Fetch(Context& context, bool photos) {
  Cloud cloud(context);
  auto shares =
      FetchShares(cloud.desk, photos ? CloudTask::DB_ImportExport_Designs : CloudTask::DBImport_Formulas, photos);
  if (!shares) return std::unexpected(shares.error());
  if (!shares->outcome.done) Told(context, shares->outcome);
  for (const ShareRow& row : shares->rows)
    if (!row.fetched) TellFailed(context, row.AcctNum, row.why);
  return context.Answer(ShareTable(std::move(shares->rows)));
}

Result<Json> ListStock(Context& context, const CloudStockWish& wish) {
  auto stock = ReadCloudStock(context.session, wish);
  if (!stock) return std::unexpected(stock.error());
  for (const std::string& fault : stock->faults) WriteError(fault + "\n");
  if (!stock->faults.empty()) context.exitStatus = ExitFailed;
  return context.Answer(CloudStockTable(context.session, std::move(stock->rows)));
}

Result<Json> ListReports(Context& context) {
  Cloud cloud(context);
  auto list = ListCloudReports(cloud.desk);
  if (!list) return std::unexpected(list.error());
  if (!list->outcome.done) return Told(context, list->outcome);
  return context.Answer(TableOf<RemoteFile>()
                            .Add("Name", &RemoteFile::name)
                            .Add("Date", &RemoteFile::date, {}, Format::Moment)
                            .Add("Size", &RemoteFile::size)
                            .Of(std::move(list->files)));
}

Json AdminJson(const AdminRun& run) {
  Json rows = Json::array();
  for (const AdminRow& row : run.rows)
    rows.push_back({{"AcctNum", row.AcctNum},
                    {"Facility", row.Facility},
                    {"Done", row.done},
                    {"Why", row.why.empty() ? Json() : Json(row.why)},
                    {"Files", row.files},
                    {"Photos", row.photos}});
  return Json{{"Accounts", rows}, {"DataFile", run.dataFile.empty() ? Json() : Json(run.dataFile.string())}};
}

Result<Json> TellAdmin(Context& context, const Result<AdminRun>& run) {
  if (!run) return std::unexpected(run.error());
  for (const AdminRow& row : run->rows)
    if (!row.done) TellFailed(context, row.AcctNum, row.why);
  return Told(context, run->outcome, AdminJson(*run));
}

Result<Json> ListReportsOfUsers(Context& context, const std::string& account) {
  Cloud cloud(context);
  auto list = ListUserReports(cloud.desk, account);
  if (!list) return std::unexpected(list.error());
  for (const AdminRow& row : list->rows)
    if (!row.done) TellFailed(context, row.AcctNum, row.why);
  if (!list->outcome.done) return Told(context, list->outcome);
  return context.Answer(TableOf<AccountReport>()
                            .Add("AcctNum", &AccountReport::AcctNum, "Account")
                            .Add("Name", [](const AccountReport& report) { return report.file.name; })
                            .Add("Date", [](const AccountReport& report) { return report.file.date; }, {}, Format::Moment)
                            .Add("Size", [](const AccountReport& report) { return report.file.size; })
                            .Of(std::move(list->reports)));
}

Result<Json> DefaultFile(Context& context, const std::string& path) {
  if (!path.empty())
    if (auto stored = StoreAdminDefaultDataFile(context.session, fs::absolute(path)); !stored)
      return std::unexpected(stored.error());
  const auto file = AdminDefaultDataFile(context.session);
  if (!file) return std::unexpected(file.error());
  return Json{{"AdminDefaultDF", file->string()}};
}

CLI::Option* AddPhotos(CLI::App* verb, const std::shared_ptr<bool>& photos) {
  return verb->add_flag("--photos", *photos, "The photos of Designs too");
}

void AddAccount(CLI::App* noun, Commands& commands) {
  auto* settings = noun->add_subcommand("settings", "How the account is reached; with KEY=VALUE it is changed");
  const auto pairs = std::make_shared<std::vector<std::string>>();
  settings->add_option("KEY=VALUE", *pairs, "A setting and its value; \"-\" for a value that is asked for");
  settings->footer(
      "Facility, AcctNum, CloudHost, CloudHostUserName, CloudHostPassword, RemoteDirectory, Passive, TLS, ssl, Port,\n"
      "CertFile, SSL_Verify, ClearControlChannel, AdminUsername, AdminPassword. Passwords are never shown.");
  commands.Add(settings, Needs::Nothing, [pairs](Context& context) { return ChangeSettings(context, *pairs); });

  auto* import = noun->add_subcommand("settings-import", "Settings from a VKCloudSettings.txt");
  const auto file = std::make_shared<std::string>();
  const auto account = std::make_shared<std::string>();
  import->add_option("FILE", *file, "The file")->required()->check(NotEmpty);
  import->add_option("--account", *account, "The account number, where the file has none")->check(NotEmpty);
  commands.Add(import, Needs::Nothing,
               [file, account](Context& context) { return ImportSettings(context, *file, *account); });

  commands.Add(noun->add_subcommand("test", "Try host, certificate, login and folder"), Needs::Nothing, TestSettings);

  auto* accounts = noun->add_subcommand("accounts", "The other shops, and what lies here of them");
  const auto fetch = std::make_shared<bool>();
  accounts->add_flag("--fetch", *fetch, "Take the list of the host first");
  commands.AddList(accounts, Needs::Nothing, "Shared Accounts",
                   [fetch](Context& context) { return ListAccounts(context, *fetch); });

  auto* list = noun->add_subcommand("accounts-import", "The list of other shops from a VKCloudShareUsers.txt");
  const auto users = std::make_shared<std::string>();
  list->add_option("FILE", *users, "Lines of account and facility")->required()->check(NotEmpty);
  commands.Add(list, Needs::Nothing, [users](Context& context) -> Result<Json> {
    if (auto accounts = ImportSharedAccounts(context.session, fs::absolute(*users)); !accounts)
      return std::unexpected(accounts.error());
    return context.Answer(ShareTable(SharesHere(context.session)));
  });
}

void AddBackups(CLI::App* noun, Commands& commands) {
  const auto photos = std::make_shared<bool>();
  auto* backup = noun->add_subcommand("backup", "Data File and Support Files, proven, and the share, to the account");
  AddPhotos(backup, photos);
  commands.Add(backup, Needs::File, [photos](Context& context) { return BackUp(context, *photos); });

  auto* share = noun->add_subcommand("share", "The share alone: what other shops may see");
  AddPhotos(share, photos);
  commands.Add(share, Needs::File, [photos](Context& context) -> Result<Json> {
    Cloud cloud(context);
    const auto done = ShareToCloud(cloud.desk, *photos);
    if (!done) return std::unexpected(done.error());
    return Told(context, *done);
  });

  commands.AddList(noun->add_subcommand("list", "The backups of the account, the newest first"), Needs::Nothing,
                   "Cloud Backups", ListBackups);

  auto* restore = noun->add_subcommand("restore", "Put a backup of the account in the place of the Data File, after asking");
  const auto name = std::make_shared<std::string>();
  restore->add_option("NAME", *name, "The backup")->required()->check(NotEmpty);
  AddPhotos(restore, photos);
  commands.Add(restore, Needs::Nothing, [name, photos](Context& context) { return Restore(context, *name, *photos); });

  auto* settings = noun->add_subcommand("restore-settings", "Take settings and label layouts of a backup over");
  settings->add_option("NAME", *name, "The backup; the newest when left out")->check(NotEmpty);
  commands.Add(settings, Needs::Nothing, [name](Context& context) { return RestoreSettings(context, *name); });

  auto* remove = noun->add_subcommand("delete", "Remove backups, with what belongs to them");
  const auto names = std::make_shared<std::vector<std::string>>();
  remove->add_option("NAME", *names, "The backups")->required()->check(NotEmpty);
  commands.Add(remove, Needs::Nothing, [names](Context& context) -> Result<Json> {
    Cloud cloud(context);
    const auto done = DeleteCloudBackups(cloud.desk, *names);
    if (!done) return std::unexpected(done.error());
    return Told(context, *done);
  });

  auto* fetch = noun->add_subcommand("fetch", "Bring the shares of the other shops down");
  AddPhotos(fetch, photos);
  commands.AddList(fetch, Needs::Nothing, "Shared Accounts", [photos](Context& context) { return Fetch(context, *photos); });
}

void AddInventory(CLI::App* noun, Commands& commands) {
  auto* verb = noun->add_subcommand("inventory", "The stock of the other shops, as it was last fetched");
  const auto wish = std::make_shared<CloudStockWish>();
  const auto kind = std::make_shared<std::string>();
  verb->add_option("--color", wish->color, "This color alone")->check(NotEmpty);
  verb->add_option("--kind", *kind, "Basics or formulas alone")->check(CLI::IsMember({"basic", "formula"}));
  verb->add_option("--consignment", wish->consignment, "0 all stock, 1 what is owned, 2 what is on consignment")
      ->check(CLI::Range(0, 2));
  OneEachTime(verb->add_option("--databases", wish->databases, "\"ACCOUNT/DATABASE\"; all when left out"))->check(NotEmpty);
  verb->footer("Exit status 4 when the file of an account cannot be read; what the others have is listed.");
  commands.AddList(verb, Needs::Login, "Cloud User Inventory Report", [wish, kind](Context& context) {
    wish->showBasics = *kind != "formula";
    wish->showMixes = *kind != "basic";
    return ListStock(context, *wish);
  });
}

void AddReports(CLI::App* noun, Commands& commands) {
  commands.AddList(noun->add_subcommand("reports", "The reports of the account"), Needs::Nothing, "Cloud Reports",
                   ListReports);
  auto* remove = noun->add_subcommand("delete-report", "Remove reports of the account");
  const auto names = std::make_shared<std::vector<std::string>>();
  remove->add_option("NAME", *names, "The reports")->required()->check(NotEmpty);
  commands.Add(remove, Needs::Nothing, [names](Context& context) -> Result<Json> {
    Cloud cloud(context);
    const auto done = DeleteCloudReports(cloud.desk, *names);
    if (!done) return std::unexpected(done.error());
    return Told(context, *done);
  });
  AddReportUpload(noun, commands, [](Context& context, const std::string& name, const std::string& text) -> Result<Json> {
    Cloud cloud(context);
    const auto done = UploadReport(cloud.desk, name, text);
    if (!done) return std::unexpected(done.error());
    return Told(context, *done, Json{{"Name", name}});
  });
}

void AddAdministration(CLI::App* noun, Commands& commands) {
  auto* admin = noun->add_subcommand("admin", "For the administrator of the accounts")->require_subcommand(1);
  const auto photos = std::make_shared<bool>();
  commands.Add(admin->add_subcommand("reports", "Bring the reports of all accounts down"), Needs::Nothing,
               [](Context& context) {
                 Cloud cloud(context);
                 return TellAdmin(context, FetchUserReports(cloud.desk));
               });
  const auto of = std::make_shared<std::string>();
  auto* list = admin->add_subcommand("report-list", "The reports at the host, of all accounts or of one");
  list->add_option("ACCOUNT", *of, "Its number")->check(NotEmpty);
  commands.AddList(list, Needs::Nothing, "Reports in User Accounts",
                   [of](Context& context) { return ListReportsOfUsers(context, *of); });
  auto* remove = admin->add_subcommand("delete-report", "Remove reports of an account at the host");
  const auto names = std::make_shared<std::vector<std::string>>();
  remove->add_option("ACCOUNT", *of, "Its number")->required()->check(NotEmpty);
  remove->add_option("NAME", *names, "The reports")->required()->check(NotEmpty);
  commands.Add(remove, Needs::Nothing, [of, names](Context& context) {
    std::vector<AccountReport> reports;
    for (const std::string& name : *names) reports.push_back({*of, {.name = name}});
    Cloud cloud(context);
    return TellAdmin(context, DeleteUserReports(cloud.desk, reports));
  });
  auto* file = admin->add_subcommand("data-file", "Bring the latest backup of an account down");
  const auto account = std::make_shared<std::string>();
  file->add_option("ACCOUNT", *account, "Its number")->required()->check(NotEmpty);
  AddPhotos(file, photos);
  commands.Add(file, Needs::Nothing, [account, photos](Context& context) {
    Cloud cloud(context);
    return TellAdmin(context, FetchUserDataFile(cloud.desk, *account, *photos));
  });
  auto* send = admin->add_subcommand("send", "Put a Data File where these accounts can restore it from");
  const auto path = std::make_shared<std::string>();
  const auto accounts = std::make_shared<std::vector<std::string>>();
  send->add_option("FILE", *path, "The Data File")->required()->check(NotEmpty);
  send->add_option("ACCOUNT", *accounts, "Their numbers")->required()->check(NotEmpty);
  AddPhotos(send, photos);
  commands.Add(send, Needs::Nothing, [path, accounts, photos](Context& context) {
    Cloud cloud(context);
    return TellAdmin(context, SendDataFile(cloud.desk, fs::absolute(*path), *accounts, *photos));
  });
  auto* standard = admin->add_subcommand("default-file", "The Data File that the administrator works with");
  const auto chosen = std::make_shared<std::string>();
  standard->add_option("PATH", *chosen, "Another one")->check(NotEmpty);
  commands.Add(standard, Needs::Nothing, [chosen](Context& context) { return DefaultFile(context, *chosen); });
}

}  // namespace

void AddCloudCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "cloud", "The cloud account: settings, backups, shares, reports, administration");
  AddAccount(noun, commands);
  AddBackups(noun, commands);
  AddInventory(noun, commands);
  AddReports(noun, commands);
  AddAdministration(noun, commands);
}

}  // namespace vellumark::cli
