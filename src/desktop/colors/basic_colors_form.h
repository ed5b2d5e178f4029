#pragma once

#include <optional>
#include <vector>

#include "core/colors/basic_work.h"
#include "desktop/kit/bound_fields.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class FigureFields;
class InventoryPanel;
class MeasurementsPanel;
class SwatchFields;
class SwatchView;

/// The window of Basic Colors and Additives. It is empty, shows a record, or holds a new one. Opened with
/// {"FindRecord", name} it shows that colour, unless another is being edited.
class BasicColorsForm : public Window {
  Q_OBJECT

 public:
  explicit BasicColorsForm(WindowList& windowList);

  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool MayClose() override;
  bool InEdit() const override;

  /// Reads that colour anew if it is on screen and no edit is in progress.
  void ExternalUpdateBasicColor(const std::string& name);

 public Q_SLOTS:
  void cmdSave_Click() override;
  void cmdDelete_Click() override;
  void cmdCancel_Click();
  void cmdRename_Click();
  void cmdPrevious_Click();
  void cmdNext_Click();
  void cmdWhereUsed_Click();
  void cmdPrint_Click() override;
  void cmdPrintLabel_Click();
  /// The reports about colours.
  void cmdPrintMultiple_Click();
  void ImgInvLow_Click();

 private:
  void BuildColorPage(Form form);
  void BuildFigures(Form& form);
  void BuildSwatch(Form& form);
  void Listen();

  void NameLeft(QWidget* to);
  void EnterName(const std::string& typed);

  void Clear();
  void ShowColor(const std::string& name);
  void ShowNew(const std::string& name);
  /// The fields of a record; `keepTyped` leaves those alone that the operator has changed.
  void ShowFields(const BasicWork& work, const BookData& book, bool keepTyped);
  void ShowStock(const BasicColor& color);
  /// The record on screen as it is on file now. What was typed stays.
  void Reload();

  bool MayLeaveUnfinished();
  /// Asks about unfinished work, checks and writes. False: the operator stays.
  bool Store();
  void Walk(bool forward);
  void AdditiveClicked(bool checked);

  std::optional<BasicWork> work_;  ///< empty while the window is

  NameBox* name_;
  SwatchView* ink_;
  QLabel* state_;
  CommandButton* low_;
  BoundFields bound_;
  CheckField* additive_;
  FigureFields* figures_;
  SwatchFields* swatch_;
  QLabel* guide_;
  QLabel* entered_;
  QLabel* consumed_;
  InventoryPanel* inventory_;
  MeasurementsPanel* measurements_;
  CommandButton* save_;
  CommandButton* cancel_;
  CommandButton* delete_;
  CommandButton* rename_;
  CommandButton* print_ = nullptr;
  CommandButton* label_ = nullptr;
  CommandButton* multiple_ = nullptr;
  CommandButton* whereUsed_;
  bool isLow_ = false;
};

}  // namespace vellumark::desktop
