#pragma once

#include <optional>

#include "core/batch/record.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class SwatchView;

/// A stored Batch to be read: its recipe, lots, jobs, figures and notes. Its ingredients stay where they are. Opened
/// with {"BatchNo", number}, also for another Batch while it is open.
class ViewBatchForm : public Window {
  Q_OBJECT

 public:
  explicit ViewBatchForm(WindowList& windowList);
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdFormula_Click();
  void cmdModified_Click();
  void cmdPrint_Click() override;
  void cmdPrintLabel_Click();

 private:
  void BuildHead(Form& form);
  void BuildRecipe(Form form);
  void BuildLotsAndJobs(Form form);
  void BuildFigures(Form form);
  void BuildNotes(Form form);

  /// False when there is no such Batch.
  bool ShowBatch(std::int32_t batchNo);
  void ShowHead();
  void ShowRecipe();
  void ShowLotsAndJobs();
  void ShowFigures();

  std::optional<BatchRecord> record_;
  bool isGuideModified_ = false;

  ValueField* number_ = nullptr;
  SwatchView* ink_ = nullptr;
  ValueField* color_ = nullptr;
  QLabel* code_ = nullptr;
  QLabel* modified_ = nullptr;
  QLabel* complete_ = nullptr;
  QLabel* entered_ = nullptr;
  ValueField* quantity_ = nullptr;
  ValueField* total_ = nullptr;
  ValueField* recycled_ = nullptr;
  Grid* rows_ = nullptr;
  Grid* lots_ = nullptr;
  Grid* jobs_ = nullptr;
  QLabel* madeLot_ = nullptr;
  ValueField* returned_ = nullptr;
  Grid* costs_ = nullptr;
  Grid* moreData_ = nullptr;
  QLabel* shortNote_ = nullptr;
  NoteField* notes_ = nullptr;
  NoteField* ingNotes_ = nullptr;
  NoteField* formulaNotes_ = nullptr;
  CommandButton* formula_ = nullptr;
  CommandButton* compare_ = nullptr;
  CommandButton* print_ = nullptr;
  CommandButton* label_ = nullptr;
};

}  // namespace vellumark::desktop
