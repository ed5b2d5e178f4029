#include "desktop/cloud/cloud_works.h"

#include "core/cloud/cloud_admin.h"
#include "core/cloud/cloud_backup.h"
#include "core/cloud/cloud_files.h"
#include "core/cloud/cloud_sets.h"
#include "core/cloud/shared_accounts.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

// A task of the core that brings more than its outcome.
template <class Made, class Take>
Result<CloudDone> DoneOf(const Result<Made>& made, Take take) {
  if (!made) return std::unexpected(made.error());
  take(*made);
  return CloudDone{made->outcome};
}
Result<CloudDone> DoneOf(const Result<CloudOutcome>& outcome) {
  if (!outcome) return std::unexpected(outcome.error());
  return CloudDone{*outcome};
}

ListTable AccountTable(std::vector<AdminRow> rows) {
  return TableOf<AdminRow>()
      .Add("AcctNum", &AdminRow::AcctNum, "Account")
      .Add("Facility", &AdminRow::Facility)
      .Add("Done", &AdminRow::done, {}, Format::YesNo)
      .Add("Why", &AdminRow::why)
      .Add("Files", [](const AdminRow& row) { return static_cast<std::int64_t>(row.files); })
      .Add("Photos", [](const AdminRow& row) { return static_cast<std::int64_t>(row.photos); })
      .Of(std::move(rows));
}
Result<CloudDone> DoneOf(const Result<AdminRun>& made) {
  if (!made) return std::unexpected(made.error());
  return CloudDone{made->outcome, AccountTable(made->rows)};
}

std::vector<std::string> NamesOf(const std::vector<CloudFile>& files) {
  std::vector<std::string> names;
  for (const CloudFile& file : files) names.push_back(file.name);
  return names;
}

// The list goes into the settings; what failed is told by the task.
Result<CloudDone> FetchShareList(CloudDesk& desk) {
  CloudOutcome outcome;
  const auto accounts = FetchSharedAccounts(desk, outcome);
  if (!accounts && outcome.lines.empty()) return std::unexpected(accounts.error());
  if (!accounts && outcome.done) return std::unexpected(accounts.error());
  return CloudDone{outcome};
}

CloudWork FetchAll(CloudTask task) {
  return [task](CloudDesk& desk, bool photos) -> Result<CloudDone> {
    const auto shares = FetchShares(desk, task, photos);
    if (!shares) return std::unexpected(shares.error());
    return CloudDone{shares->outcome, ShareTable(shares->rows)};
  };
}

}  // namespace

CloudWork WorkOf(CloudTask task) {
  switch (task) {
    case CloudTask::CloudBackup:
      return [](CloudDesk& desk, bool photos) {
        return DoneOf(BackUpToCloud(desk, photos), [](const CloudBackupMade&) {});
      };
    case CloudTask::DB_ImportExport_Designs:
    case CloudTask::DBImport_Formulas:
    case CloudTask::CloudInvReport:
    case CloudTask::CloudInvReport_SpecificColor:
      return FetchAll(task);
    case CloudTask::ImportSharedUsers:
      return [](CloudDesk& desk, bool) { return FetchShareList(desk); };
    case CloudTask::CloudUtilityReportViewer:
      return [](CloudDesk& desk, bool) { return DoneOf(FetchUserReports(desk)); };
    default:
      return {};
  }
}

CloudWork ListBackups(CloudFiles into) {
  return [into](CloudDesk& desk, bool) {
    return DoneOf(ListCloudBackups(desk), [&](const CloudBackupList& list) {
      into->clear();
      for (const CloudBackupRow& row : list.rows)
        into->push_back({row.name, row.size, row.date, U8(Dialog::tr(row.proven ? "proven" : "not proven"))});
    });
  };
}

CloudWork DeleteBackups(const std::vector<CloudFile>& files) {
  return [names = NamesOf(files)](CloudDesk& desk, bool) { return DoneOf(DeleteCloudBackups(desk, names)); };
}

CloudWork ListReports(CloudFiles into) {
  return [into](CloudDesk& desk, bool) {
    return DoneOf(ListCloudReports(desk), [&](const CloudFileList& list) {
      into->clear();
      for (const RemoteFile& file : list.files) into->push_back({file.name, file.size, file.date, {}});
    });
  };
}

CloudWork DeleteReports(const std::vector<CloudFile>& files) {
  return [names = NamesOf(files)](CloudDesk& desk, bool) { return DoneOf(DeleteCloudReports(desk, names)); };
}

CloudWork SendReport(std::string name, std::string text) {
  return [name = std::move(name), text = std::move(text)](CloudDesk& desk, bool) {
    return DoneOf(UploadReport(desk, name, text));
  };
}

CloudWork FetchBackup(std::string name, std::shared_ptr<Fetched> into) {
  return [name = std::move(name), into = std::move(into)](CloudDesk& desk, bool photos) {
    return DoneOf(FetchCloudBackup(desk, name, photos),
                     [&](const CloudBackupFetched& made) { *into = {made.dataFile, made.supportFolder}; });
  };
}

CloudWork FetchSupportFiles(std::string name, std::shared_ptr<Fetched> into) {
  return [name = std::move(name), into = std::move(into)](CloudDesk& desk, bool) {
    return DoneOf(FetchCloudSupportFiles(desk, name),
                     [&](const CloudBackupFetched& made) { *into = {made.dataFile, made.supportFolder}; });
  };
}

CloudWork AskForSets() {
  return [](CloudDesk& desk, bool) { return DoneOf(AskForCloudSets(desk)); };
}

CloudWork ListReportsOfUsers(CloudFiles into) {
  return [into](CloudDesk& desk, bool) {
    const auto made = ListUserReports(desk);
    if (made) {
      into->clear();
      for (const AccountReport& report : made->reports)
        into->push_back({report.file.name, report.file.size, report.file.date, report.AcctNum});
    }
    return DoneOf(made);
  };
}

CloudWork DeleteReportsOfUsers(std::vector<CloudFile> files) {
  return [files = std::move(files)](CloudDesk& desk, bool) {
    std::vector<AccountReport> reports;
    for (const CloudFile& file : files) reports.push_back({file.note, {.name = file.name}});
    return DoneOf(DeleteUserReports(desk, reports));
  };
}

CloudWork FetchDataFileOf(std::string account, std::shared_ptr<Fetched> into) {
  return [account = std::move(account), into = std::move(into)](CloudDesk& desk, bool photos) {
    const auto made = FetchUserDataFile(desk, account, photos);
    if (made) into->dataFile = made->dataFile;
    return DoneOf(made);
  };
}

CloudWork SendDataFileTo(std::filesystem::path file, std::vector<std::string> accounts) {
  return [file = std::move(file), accounts = std::move(accounts)](CloudDesk& desk, bool photos) {
    return DoneOf(SendDataFile(desk, file, accounts, photos));
  };
}

}  // namespace vellumark::desktop
