#pragma once

#include "core/jobs/design_tables.h"
#include "core/jobs/job_item_work.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/window.h"

class QTabWidget;

namespace vellumark::desktop {

class DesignBox;
class PhotoFrame;
class PictureLoader;

/// Takes a colour from stock for a Job. Opened with {"JobNumber", number} and, where there is one, {"DesignID", id}. It
/// stays open for the next colour.
class AddJobItemForm : public Dialog {
  Q_OBJECT

 public:
  AddJobItemForm(WindowList& windowList, QWidget* owner);
  ~AddJobItemForm() override;
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool MayClose() override;

 public Q_SLOTS:
  void cmdAddItem_Click();
  void cmdPropose_Click();
  void cmdUpdate_Click();
  void cmdClearAdjust_Click();
  void cmdHelp_Click() { windows.RunDialog("JobAddItem_Help"); }

 private:
  class Source;
  void BuildStock(Form form);
  void BuildCosts(Form form);
  void BuildDesign(Form form);
  void BuildMoreData(Form form);
  std::vector<GridColumn> StockColumns() const;
  void ShowDatabase(const std::string& name);
  bool EnterColor();
  void EnterDesign();
  void ShowDesign();
  void TakeDesignColor(int row);
  void ShowStock();
  void ShowRow(int row);
  void Toggle(int row);
  void TakeCosting();
  Result<JobItemEntry> Entry() const;

  JobItemWork work_;
  std::optional<Design> design_;
  ValueField* job_;
  DesignBox* designID_;
  QLabel* description_;
  ComboField* database_;
  NameBox* color_;
  QLabel* kind_;
  QTabWidget* tabs_;
  NumberField* need_ = nullptr;
  QLabel* taken_ = nullptr;
  std::shared_ptr<Source> source_;
  Grid* stock_ = nullptr;
  NumberField* adjust_ = nullptr;
  RadioField* cost_ = nullptr;
  RadioField* VOC_ = nullptr;
  RadioField* HAP_ = nullptr;
  QLabel* figures_ = nullptr;
  QLabel* designText_ = nullptr;
  QLabel* designNotes_ = nullptr;
  PhotoFrame* photo_ = nullptr;
  PictureLoader* pictures_ = nullptr;
  std::shared_ptr<RecordRows<DesignColorCost>> colors_;
  Grid* designColors_ = nullptr;
  std::array<TextField*, kJobUserFields> texts_{};
  std::array<NumberField*, kJobUserFields> numbers_{};
  QLabel* state_;
  CommandButton* add_ = nullptr;
  CommandButton* propose_ = nullptr;
  CommandButton* update_ = nullptr;
  CommandButton* clear_ = nullptr;
};

}  // namespace vellumark::desktop
