#pragma once

#include <QObject>
#include <QTabWidget>
#include <memory>
#include <optional>
#include <string>

#include "core/inventory/color_stock.h"
#include "desktop/inventory/adjust_entry.h"
#include "desktop/inventory/lot_grid.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

class ResetEntry;

/// The stock of one colour as it is entered by hand: its list, the totals, the adjust fields, and what resets checked
/// rows. It works on a copy, which the window saves with the colour; only the resets write at once.
///
///     panel_ = new InventoryPanel(*this, tabs);
///     panel_->Load(ColorKind::Mix, name);                       // a colour on file; Begin for one being entered
///     SaveWithStock(session, [&] { return SaveMix(session, work); }, panel_->Work());
class InventoryPanel : public QObject {
  Q_OBJECT

 public:
  InventoryPanel(FormHost& host, Form form);
  /// On a page of its own, whose controls are made when it is first looked at.
  InventoryPanel(FormHost& host, TabSet& tabs);
  ~InventoryPanel() override;

  /// The stock of a colour on file; the fields are emptied.
  void Load(ColorKind kind, const std::string& name);
  /// A colour that is being entered has an empty first row.
  void Begin(ColorKind kind, const std::string& name);
  /// The costs of such a colour, which new lots take, as they are typed elsewhere in the window.
  void TakeCosts(std::string_view purchaseCost, std::string_view basicCost = {});
  /// The stock as it is on file now, perhaps under a new name, unless it has been changed here. What stands in the
  /// fields stays.
  void Refresh(const std::string& name);
  /// The colour was deleted elsewhere, and may be saved anew with what is on screen.
  void Detach();
  /// No colour.
  void Reset();
  /// Units, columns and fields as the settings are now.
  void Relabel();

  /// The list differs from the file.
  bool IsChanged() const { return changed_; }
  /// What stands in the adjust field, for AskUnfinishedWork.
  std::string AdjustText() const { return work_ && IsBuilt() ? entry_->QuantityText() : std::string(); }
  /// The list to be saved; nothing when it was not changed.
  const InventoryWork* Work() const { return work_ && changed_ ? &*work_ : nullptr; }
  /// The list on screen.
  const InventoryWork* Shown() const { return work_ ? &*work_ : nullptr; }
  /// The lot on file whose row is chosen; nothing for another row.
  std::optional<LotRow> ChosenLot() const;
  /// The adjust field, its tab in front.
  void FocusEntry() { entry_->Focus(); }

 Q_SIGNALS:
  /// The list, or what stands in the fields, has changed.
  void Changed();

 private:
  explicit InventoryPanel(FormHost& host);
  void Build(Form form);
  bool IsBuilt() const { return list_ != nullptr; }
  void BuildList(Form& form);
  void BuildTotals(Form& form);
  void BuildTabs(Form& form);
  std::vector<GridColumn> Columns() const;
  void Take(std::optional<InventoryWork> work);
  void ShowWork();
  void ShowList();
  void ShowChecks();
  void ShowTotals();
  void RowChosen(int row);
  void Update();
  void ClearFields();
  void TabChanged(int tab);
  void Toggle(int row);
  void CheckAll(bool checked);
  void WasReset();

  FormHost& host_;
  std::optional<InventoryWork> work_;
  bool onFile_ = false;
  bool changed_ = false;
  bool loading_ = false;
  std::shared_ptr<LotSource> source_;
  Grid* list_ = nullptr;
  AdjustEntry* entry_ = nullptr;
  ResetEntry* reset_ = nullptr;
  QTabWidget* tabs_ = nullptr;
  TextField* reason_ = nullptr;
  ValueField* unlotted_ = nullptr;
  ValueField* lotted_ = nullptr;
  ValueField* total_ = nullptr;
  ValueField* selected_ = nullptr;
  std::vector<QWidget*> lottedOnly_;
  std::vector<QWidget*> unlottedOnly_;
  QLabel* unit_ = nullptr;
  QWidget* rest_ = nullptr;
};

}  // namespace vellumark::desktop
