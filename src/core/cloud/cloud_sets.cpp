#include "core/cloud/cloud_sets.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <system_error>

#include "core/base/files.h"
#include "core/cloud/transfer.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

namespace {

struct KnownSet {
  std::string name;
  std::optional<DateTime> date;  ///< at the host, in UTC
  std::string proof;             ///< its text; empty when it has none
};

// What the host told of an account.
struct Known {
  std::string account;
  std::optional<DateTime> asked{};
  std::vector<KnownSet> sets{};
};

fs::path KnownFile(const Session& session) {
  return DataFolders(session.DataFolder).cloudDownloads / "backups.json";
}

// Two accounts of one number are two at two hosts.
std::string AccountOf(const CloudSettings& settings) {
  return fmt::format("{}/{}/{}", settings.CloudHost, settings.RemoteDirectory, settings.AcctNum);
}

// Nothing is known of an account that is not the one of the settings, and where what was kept cannot be read: the host
// can be asked anew.
Known ReadKnown(const Session& session) {
  Known nothing{.account = AccountOf(ReadCloudSettings(session))};
  std::error_code ignored;
  if (!fs::exists(KnownFile(session), ignored)) return nothing;
  try {
    const Json read = Json::parse(ReadFileBytes(KnownFile(session)));
    if (read.at("account") != nothing.account) return nothing;
    Known known{.account = nothing.account, .asked = ParseDateTime(read.at("asked").get<std::string>())};
    for (const Json& row : read.at("sets"))
      known.sets.push_back({row.at("name"), ParseDateTime(row.at("date").get<std::string>()), row.at("proof")});
    return known;
  } catch (const Json::exception&) {
    return nothing;
  }
}

void WriteKnown(const Session& session, const Known& known) {
  const auto text = [](const std::optional<DateTime>& time) { return time ? time->ToText() : std::string(); };
  Json sets = Json::array();
  for (const KnownSet& set : known.sets)
    sets.push_back({{"name", set.name}, {"date", text(set.date)}, {"proof", set.proof}});
  const Json written{{"account", known.account}, {"asked", text(known.asked)}, {"sets", std::move(sets)}};
  ReplaceFile(KnownFile(session), written.dump(1, ' ', false, Json::error_handler_t::replace) + "\n", Readers::Group);
}

// The proof of a backup, as it is here already when the host's is as long.
std::string ProofAtHost(CloudRun& run, const std::vector<RemoteFile>& files, const std::string& name, const Known& here) {
  const std::string& folder = run.Folders().backups;
  const auto file = std::ranges::find(files, ProofName(name), &RemoteFile::name);
  if (file == files.end()) return {};
  const auto known = std::ranges::find(here.sets, name, &KnownSet::name);
  if (known != here.sets.end() && static_cast<std::int64_t>(known->proof.size()) == file->size) return known->proof;
  std::string proof;
  run.Step("Unable to download " + file->name, [&] { proof = DownloadBytes(run, RemotePath(folder, file->name)); });
  return proof;
}

BackupSet SetOf(const KnownSet& known) {
  BackupSet set;
  set.folder = known.name;
  set.dataFile = known.name;
  set.proof = known.proof.empty() ? std::nullopt : ReadProofText(known.proof);
  if (known.date) {
    set.moment = *known.date;
    set.made = LocalOf(*known.date);
  }
  if (!set.proof) return set;
  set.made = set.proof->made;
  set.moment = set.proof->madeUtc ? *set.proof->madeUtc : MomentOf(set.made);
  return set;
}

}  // namespace

Result<CloudOutcome> AskForCloudSets(CloudDesk& desk) {
  if (auto ready = RequireCloud(desk.session); !ready) return std::unexpected(ready.error());
  const Known here = ReadKnown(desk.session);
  CloudRun run(desk, CloudTask::CloudManageBackupFileList);
  return run.Run([&] {
    Known told{.account = here.account, .asked = desk.session.clock.Now()};
    run.Connect();
    run.Say("Retrieving");
    const std::vector<RemoteFile> files =
        ListFiles(run, run.Folders().backups, [](const std::string& name) { return IsPlainName(name); });
    for (const RemoteFile& file : files)
      if (IsCloudBackup(file.name) || IsAdminFile(file.name))
        told.sets.push_back({file.name, file.date, ProofAtHost(run, files, file.name, here)});
    WriteKnown(desk.session, told);
    return fmt::format("{} Backups are now on file in the Cloud account", told.sets.size());
  });
}

std::string CloudSets::Name() const {
  return fmt::format("Cloud account {}", ReadCloudSettings(session_).AcctNum);
}

std::vector<BackupSet> CloudSets::Sets() {
  std::vector<BackupSet> sets;
  for (const KnownSet& known : ReadKnown(session_).sets) sets.push_back(SetOf(known));
  return sets;
}

std::optional<DateTime> CloudSets::Asked() const {
  return ReadKnown(session_).asked;
}

void KeepCloudSet(const Session& session, const std::string& name, const std::string& proof) {
  Known known = ReadKnown(session);
  std::erase_if(known.sets, [&](const KnownSet& set) { return set.name == name; });
  known.sets.push_back({name, MomentOf(session.clock.Now()), proof});
  WriteKnown(session, known);
}

void ForgetCloudSets(const Session& session, const std::vector<std::string>& names) {
  Known known = ReadKnown(session);
  std::erase_if(known.sets, [&](const KnownSet& set) { return std::ranges::find(names, set.name) != names.end(); });
  WriteKnown(session, known);
}

}  // namespace vellumark
