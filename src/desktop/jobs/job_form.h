#pragma once

#include "core/jobs/job_changes.h"
#include "core/jobs/job_record.h"
#include "desktop/kit/window.h"

class QTimer;

class QMenu;

namespace vellumark::desktop {

class JobBox;
class JobRows;

/// The Job Window: one Job, its items and what they come to. Each change is written as it is made. Opened with
/// {"JobNumber", number} it shows that Job. It stands back while the Batch Window has a recipe in edit.
class JobForm : public Window {
  Q_OBJECT

 public:
  explicit JobForm(WindowList& windowList);
  ~JobForm() override;
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool MayClose() override;
  /// A figure is being typed.
  bool InEdit() const override;
  /// Another part of the system changed a Job.
  void ExternalUpdateJob(const std::string& number);

 public Q_SLOTS:
  void cmdPrevious_Click() { Walk(false); }
  void cmdNext_Click() { Walk(true); }
  void cmdNew_Click();
  void cmdRename_Click();
  void cmdAddItem_Click();
  void cmdDeleteItem_Click();
  void cmdChange_Click();
  void cmdCloseJob_Click();
  void cmdReopen_Click();
  void cmdUndo_Click();
  void cmdOut_Click() { windows.OpenForm("JobsOutForm"); }
  void cmdUsage_Click();
  void cmdPrintMultiple_Click() { windows.OpenForm("JobListForm"); }
  void cmdExportJobs_Click() { windows.OpenForm("ExportJobRecords"); }
  void cmdOptions_Click();
  void cmdPrint_Click() override;
  void cmdBC_Report_Click();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // How it is put together (job_form_build.cpp)
  void BuildHead(Form& form);
  void BuildTotals(Form& form);
  QWidget* BuildButtons(Form& form);
  void Listen();

  bool EnterNumber();
  void Show(const std::string& number);
  /// Reads the rows anew. While a figure is typed only what stands still is changed.
  void Reload();
  void ShowFigures();
  void Walk(bool forward);

  void OpenCell(int row, int column);
  void ChangeField(JobField field, int number);
  void ChangeField(const char* dialog, JobField field, Arguments arguments);
  void TakeQtyUsed();
  void AddToRowMenu(QMenu& menu);
  void OpenBatch(const JobRecord& item);
  std::vector<std::int64_t> ChosenRows() const;
  const JobRecord* CurrentItem() const;
  /// False, after it was told, while a Batch is in edit.
  bool MayChange();

  Job job_;           ///< its number is the one on screen, also of a Job without rows
  bool open_ = false;  ///< a number is on screen
  std::pair<std::int64_t, std::string> typed_;  ///< a row and what was typed into it
  std::shared_ptr<JobRows> rows_;
  QTimer* reload_ = nullptr;
  JobBox* number_ = nullptr;
  QLabel* state_ = nullptr;
  QLabel* entered_ = nullptr;
  QLabel* completed_ = nullptr;
  QLabel* usedCaption_ = nullptr;
  ValueField* used_ = nullptr;
  ValueField* cost_ = nullptr;
  ValueField* VOCs_ = nullptr;
  ValueField* HAPs_ = nullptr;
  Grid* list_ = nullptr;
  QLabel* hint_ = nullptr;
  std::vector<CommandButton*> ofJob_;   ///< on while the Job has rows
  std::vector<CommandButton*> ofItem_;  ///< on while an item is chosen
  CommandButton* addItem_ = nullptr;
  CommandButton* closeJob_ = nullptr;
  CommandButton* reopen_ = nullptr;
  CommandButton* print_ = nullptr;
  CommandButton* codes_ = nullptr;
  CommandButton* usage_ = nullptr;
};

}  // namespace vellumark::desktop
