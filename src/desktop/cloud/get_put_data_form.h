#pragma once

#include <functional>
#include <optional>

#include "core/base/table.h"
#include "core/cloud/cloud_run.h"
#include "desktop/cloud/cloud_parts.h"
#include "desktop/cloud/meter_progress.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// What became of a task and, where it went through accounts, of each of them.
struct CloudDone {
  CloudOutcome outcome;
  std::optional<ListTable> accounts{};
};
/// A task of the cloud; `photos`: with the photos of Designs.
using CloudWork = std::function<Result<CloudDone>(CloudDesk& desk, bool photos)>;

/// The window in which every task of the cloud runs: what is being done, how far it is, each line of the log. Opened with
/// {"Task", CloudTask} and, where its name is not enough, {"Work", CloudWork}, or with the {"Name"} and {"Text"} of a report; one with a choice waits for it, every other begins at once. Accepted, with
/// {"Outcome", CloudOutcome}, when the task was done.
class Cloud_GetPutData_Form : public Dialog {
  Q_OBJECT

 public:
  Cloud_GetPutData_Form(WindowList& windowList, QWidget* owner, CloudParts parts,
                        const QString& name = "Cloud_GetPutData_Form", std::optional<CloudTask> task = {});
  void OnOpen(const Arguments& arguments) override;
  int exec() override;
  void UpdateEnabled() override;
  bool MayClose() override;
  /// However it is closed: what was done was done.
  void reject() override;

 public Q_SLOTS:
  void cmdStart_Click();
  void cmdCancel_Click();
  void cmdExportLog_Click();

 private:
  void SetTask(CloudTask task, CloudWork work);
  enum class Photos { None, Upload, Download };
  static Photos PhotosOf(CloudTask task);
  void ShowPhotosChoice();
  void Run();
  void ShowEnding();
  void ShowAccounts(const ListTable& accounts);

  CloudParts parts_;
  CloudTask task_ = CloudTask::CloudBackup;
  CloudWork work_;
  std::optional<CloudOutcome> outcome_;
  QLabel* title_;
  QLabel* subtitle_;
  QWidget* choice_;
  CheckField* photos_;
  QLabel* photosValue_;
  QLabel* photosWarning_;
  Grid* accounts_;
  std::shared_ptr<TableSource> accountRows_;
  QListWidget* log_;
  QLabel* info_;
  QProgressBar* meter_;
  std::optional<MeterProgress> progress_;
  CommandButton* start_;
  CommandButton* cancel_;
  CommandButton* exportLog_;
  CommandButton* close_;
};

}  // namespace vellumark::desktop
