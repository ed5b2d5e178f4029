#pragma once

#include <optional>

#include "core/inventory/color_stock.h"
#include "desktop/kit/bound_fields.h"
#include "desktop/kit/window.h"
#include "desktop/settings/inventory_settings_panel.h"

class QTabWidget;

namespace vellumark::desktop {

class InventoryPanel;
class ScanTab;
class SwatchView;

/// The window in which stock is entered, by hand of one Basic Color or formula at a time, or scanned from the labels of
/// containers, and the settings of the inventory. Opened with {"FindRecord", name} and, where it is known, {"Kind",
/// ColorKind} it shows that colour, unless another is being edited.
class AdjustInventoryForm : public Window {
  Q_OBJECT

 public:
  explicit AdjustInventoryForm(WindowList& windowList);

  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool MayClose() override;
  bool InEdit() const override;

 public Q_SLOTS:
  void cmdSave_Click() override;
  void cmdCancel_Click();
  void cmdHistory_Click();
  /// Of the chosen lot, or of the colour.
  void cmdPrintLabel_Click();
  void ImgInvLow_Click();

 private:
  void BuildManual(QWidget& page);
  void BuildRecord(Form form);
  void BuildSettings(Form form);
  NumberField* Figure(Form& form, const char* name, const char* column, int chars = 10);
  void FigureLeft(NumberField& control, const RecordField& field, QWidget* to);
  void Relabel();

  void NameLeft(QWidget* to);
  void EnterName(const std::string& typed);
  void ShowColor(ColorKind kind, const std::string& name);
  void ShowFields(const StockRecord& record, bool keepTyped);
  void Clear();
  void Reload();
  StockRecord Read() const;
  bool RecordInEdit() const;
  /// Asks about unfinished work, checks and writes. False: the operator stays.
  bool Store();
  bool StoreSettings();
  /// The reorder point of the colour on screen, or of one to be named.
  void OpenReorderPoint();
  /// Puts the old tab back where the new one is refused.
  void TabChanged(int to);
  Result<void> MayShowTab(int to) const;

  std::optional<StockRecord> record_;  ///< empty while the window is

  NameBox* name_;
  SwatchView* ink_;
  QLabel* kind_;
  QLabel* state_;
  CommandButton* low_;
  QTabWidget* tabs_;
  int tab_ = 0;
  InventoryPanel* panel_ = nullptr;
  ScanTab* scan_ = nullptr;  ///< once it was looked at
  std::vector<QWidget*> manualOnly_;
  std::optional<InventorySettingsPanel> settings_;
  BoundFields bound_;
  ValueField* basicCost_ = nullptr;
  QLabel* basicCostCaption_ = nullptr;
  ValueField* vocBasics_ = nullptr;
  ValueField* hapBasics_ = nullptr;
  std::vector<std::pair<QLabel*, QString>> captions_;  ///< with their words, to which the unit is added
  std::vector<QWidget*> formulaOnly_;
  CommandButton* save_;
  CommandButton* cancel_;
  CommandButton* history_;
  CommandButton* label_;
  bool isLow_ = false;
};

}  // namespace vellumark::desktop
