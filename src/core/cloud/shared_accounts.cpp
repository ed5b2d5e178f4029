#include "core/cloud/shared_accounts.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <system_error>

#include "core/backup/backup_set.h"
#include "core/base/counted.h"
#include "core/base/files.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/cloud/transfer.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

namespace {

fs::path NotesFile(const Session& session) {
  return DataFolders(session.DataFolder).downloadShareData / "fetched.json";
}

std::optional<DateTime> DateIn(const Json& row, const char* key) {
  return ParseDateTime(row.value(key, ""));
}

std::string DateText(const std::optional<DateTime>& date) {
  return date ? date->ToText() : std::string();
}

void StoreNotes(const Session& session, const std::vector<ShareRow>& rows) {
  Json written = Json::array();
  for (const ShareRow& row : rows)
    written.push_back({{"AcctNum", row.AcctNum},
                       {"fetched", row.fetched},
                       {"why", row.why},
                       {"photos", row.photos},
                       {"shared", DateText(row.shared)},
                       {"tried", DateText(row.tried)},
                       {"came", DateText(row.came)},
                       {"UMI", row.UMI}});
  ReplaceFile(NotesFile(session), written.dump(1, ' ', false, Json::error_handler_t::replace) + "\n", Readers::Group);
}

std::string_view EndingOf(CloudTask task) {
  if (task == CloudTask::DB_ImportExport_Designs) return "Shared User Designs Acquired";
  return task == CloudTask::DBImport_Formulas ? "Shared User Formulas Acquired" : "Shared User Inventory Acquired";
}

// Photos that are here already and the same stay; those that the other shop has no more go.
int FetchPhotos(CloudRun& run, const RemoteFolders& folders, const std::string& account,
                const std::optional<SetProof>& proof) {
  run.Say("Downloading Design Photos: " + account);
  const fs::path target = SharedPhotos(run.session, account);
  MakeFolder(target);
  std::vector<std::string> names;
  for (const RemoteFile& file : ListFiles(run, folders.sharePhotos, IsPhoto)) {
    const fs::path here = target / file.name;
    const auto told =
        proof ? ProofOf(proof->files, fmt::format("{}/{}", kPhotoFolderOfSet, file.name)) : std::nullopt;
    std::error_code ignored;
    const bool same = told && fs::exists(here, ignored) && ProveFile(here, told->name) == *told;
    if (!same) Download(run, folders.sharePhotos, file, here, told);
    names.push_back(file.name);
  }
  std::error_code error;
  for (const fs::path& photo : PhotosIn(target))
    if (std::ranges::find(names, photo.filename().string()) == names.end()) fs::remove(photo, error);
  run.Log(fmt::format("{} Design Photos downloaded for: {}", names.size(), account));
  return static_cast<int>(names.size());
}

void FetchShare(CloudRun& run, ShareRow& row, bool photos) {
  const RemoteFolders folders(run.Settings().RemoteDirectory, row.AcctNum);
  run.Say("Downloading Share File: " + row.AcctNum);
  const auto files = ListFiles(run, folders.shareDataFile, [](const std::string& name) {
    return IsPlainName(name) && name.size() > 4 && EqualNoCase(std::string_view(name).substr(name.size() - 4), ".vkd");
  });
  if (files.empty()) throw FtpFailure(FtpFailure::Kind::Missing, row.AcctNum, "there is no share file");
  const auto own = std::ranges::find(files, row.AcctNum + ".vkd", &RemoteFile::name);
  const RemoteFile& file = own == files.end() ? files.front() : *own;
  const std::optional<SetProof> proof = FetchProof(run, folders.shareDataFile, file.name);
  Download(run, folders.shareDataFile, file, SharedDataFile(run.session, row.AcctNum),
           proof ? ProofOf(proof->files, file.name) : std::nullopt);
  row.shared = proof ? std::optional(proof->made) : file.date;
  row.UMI = proof ? proof->UMI : 0;
  row.came = run.session.clock.Now();
  if (photos) row.photos = FetchPhotos(run, folders, row.AcctNum, proof);
  row.fetched = true;
}

// A fault of one account is its own; a line that is gone is everybody's.
bool EndsAll(const FtpFailure& failure) {
  using enum FtpFailure::Kind;
  return failure.kind == Connect || failure.kind == Certificate || failure.kind == Dropped || failure.kind == Stalled ||
         failure.kind == Cancelled;
}

std::string FetchAll(CloudRun& run, std::vector<ShareRow>& rows, CloudTask task, bool photos) {
  std::size_t failed = 0;
  for (ShareRow& row : rows) {
    try {
      FetchShare(run, row, photos);
    } catch (const FtpFailure& failure) {
      row.why = failure.cause;
      if (EndsAll(failure)) throw;
      ++failed;
      run.Log(fmt::format("Unable to download {}: {}", row.AcctNum, failure.cause));
    } catch (const Failure& failure) {
      row.why = fmt::format("{}: {}", failure.subject, failure.cause);
      ++failed;
      run.Log(fmt::format("Unable to download {}: {}", row.AcctNum, row.why));
    }
  }
  if (failed == rows.size())
    throw FtpFailure(FtpFailure::Kind::Other, "Unable to download ", "none of the accounts could be fetched");
  return failed == 0 ? std::string(EndingOf(task))
                     : fmt::format("{} ({} of {} failed)", EndingOf(task), failed, Counted(rows.size(), "account"));
}

}  // namespace

Result<FetchedShares> FetchShares(CloudDesk& desk, CloudTask task, bool photos) {
  if (auto ready = RequireCloud(desk.session); !ready) return std::unexpected(ready.error());
  if (auto accounts = RequireSharedAccounts(desk.session); !accounts) return std::unexpected(accounts.error());
  CloudRun run(desk, task);
  FetchedShares shares;
  shares.rows = SharesHere(desk.session);
  for (ShareRow& row : shares.rows) {
    row.fetched = false;
    row.why.clear();
    row.tried = desk.session.clock.Now();
  }
  shares.outcome = run.Run([&] {
    run.Connect();
    return FetchAll(run, shares.rows, task, photos && task == CloudTask::DB_ImportExport_Designs);
  });
  for (ShareRow& row : shares.rows)
    if (!row.fetched && row.why.empty()) row.why = shares.outcome.ending.front();
  StoreNotes(desk.session, shares.rows);
  return shares;
}

std::vector<ShareRow> SharesHere(const Session& session) {
  std::vector<ShareRow> rows;
  std::error_code ignored;
  const fs::path notes = NotesFile(session);
  const Json read = fs::exists(notes, ignored) ? Json::parse(ReadFileBytes(notes), nullptr, false) : Json::array();
  for (const SharedAccount& account : ReadSharedAccounts(session)) {
    ShareRow row{.AcctNum = account.AcctNum, .Facility = account.Facility};
    for (const Json& note : read.is_array() ? read : Json::array()) {
      if (note.value("AcctNum", "") != account.AcctNum) continue;
      row.fetched = note.value("fetched", false);
      row.why = note.value("why", "");
      row.photos = note.value("photos", 0);
      row.shared = DateIn(note, "shared");
      row.tried = DateIn(note, "tried");
      row.came = DateIn(note, "came");
      row.UMI = note.value("UMI", 0);
    }
    if (!fs::exists(SharedDataFile(session, account.AcctNum), ignored)) row.came.reset();
    rows.push_back(std::move(row));
  }
  return rows;
}

ListTable ShareTable(std::vector<ShareRow> rows) {
  const auto date = [](std::optional<DateTime> ShareRow::*field) {
    return [field](const ShareRow& row) { return row.*field ? TableValue(*(row.*field)) : TableValue(); };
  };
  return TableOf<ShareRow>()
      .Add("AcctNum", &ShareRow::AcctNum, "Account")
      .Add("Facility", &ShareRow::Facility)
      .Add("Fetched", &ShareRow::fetched, {}, Format::YesNo)
      .Add("Why", &ShareRow::why)
      .Add("Photos", [](const ShareRow& row) { return static_cast<std::int64_t>(row.photos); })
      .Add("Shared", date(&ShareRow::shared), {}, Format::Moment)
      .Add("Came", date(&ShareRow::came), {}, Format::Moment)
      .Add("Tried", date(&ShareRow::tried), {}, Format::Moment)
      .Add("Unit", [](const ShareRow& row) { return row.UMI == 0 ? std::string() : std::string(UnitName(row.UMI)); })
      .Of(std::move(rows));
}

Result<std::vector<SharedAccount>> FetchSharedAccounts(CloudDesk& desk, CloudOutcome& outcome) {
  if (auto ready = RequireCloud(desk.session); !ready) return std::unexpected(ready.error());
  CloudRun run(desk, CloudTask::ImportSharedUsers);
  std::string bytes;
  outcome = run.Run([&] {
    run.Connect();
    run.RequireFolder(run.Folders().shareUserList);
    const std::string name(kShareListFile);
    run.Step("Unable to download " + name,
             [&] { bytes = DownloadBytes(run, RemotePath(run.Folders().shareUserList, name)); });
    return std::string("Shared Users data acquired.");
  });
  if (!outcome.done) {
    outcome.ending.insert(outcome.ending.begin(), "Unable to acquire Shared Users data");
    return std::vector<SharedAccount>{};
  }
  auto accounts = SharedAccountsFrom(bytes);
  if (!accounts) return accounts;
  ReplaceFile(DataFolders(desk.session.DataFolder).cloudUploads / kShareListFile, bytes, Readers::Group);
  if (auto saved = SaveSharedAccounts(desk.session, *accounts); !saved) return std::unexpected(saved.error());
  desk.session.prompt.Tell("Shared Users", "Shared Users data acquired.");
  return accounts;
}

}  // namespace vellumark
