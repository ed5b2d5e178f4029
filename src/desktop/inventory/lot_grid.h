#pragma once

#include <QString>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "core/inventory/stock_tables.h"
#include "desktop/kit/form.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/record_source.h"

namespace vellumark::desktop {

// What the lists of lots share.

/// "Price ($/lb.)": the sign of the locale's money and the unit.
QString PriceCaption(int unit);
/// "Quantity" and "lb." to "Quantity (lb.)".
QString WithUnit(const QString& caption, int unit);

// As typed.
inline constexpr int kLotTextLength = 30;
inline constexpr int kPriceLength = 20;

/// A drop-down of texts that also takes typed ones, `chars` wide, and nothing completed: a lot number that begins as
/// another one does is a number of its own.
ComboField* ChoiceCombo(Form& form, const char* name, const QString& caption, int chars, int longest);
/// New choices without a new text, all at once: a colour may have tens of thousands of lots.
void SetChoices(ComboField& combo, const std::vector<std::string>& choices);
/// A field under its caption, whose name is `label`, to stand in `row`.
QWidget* Captioned(QWidget* row, const QString& caption, QWidget* field, const char* label);

/// Goes on with a name that was typed: shows the colour that is meant, or clears and goes back to the field.
struct StockNameSteps {
  std::function<Result<ColorKind>(const std::string& name)> choose;
  std::function<void(ColorKind kind, const std::string& name)> show;
  std::function<void()> clear;
};
void EnterStockName(FormHost& host, const char* field, const std::string& typed, const StockNameSteps& steps);

/// Lets the operator check rows in the first column of a grid: by a click on the box, or by the space bar.
class CheckKeys : public QObject {
  Q_OBJECT

 public:
  CheckKeys(Grid& grid, std::function<void(int row)> toggle);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  Grid& grid_;
  std::function<void(int row)> toggle_;
};

/// The rows of an inventory list, as the working copy has them, behind a box to check them. The first row stays on top.
class LotSource : public RecordSource<InventoryRow> {
 public:
  enum Column { Check, LotNum, Location, ContID, Qty, Date, Price, Consign, IngType };

  explicit LotSource(const Session& session) : RecordSource(InventoryColumns(session)), session_(session) {}

  /// In the units and with the decimals in force.
  std::vector<GridColumn> Columns();

  /// Nothing: no rows. The working copy has to live longer. To be told again after a change of its rows: a check stays
  /// with its lot, wherever that now stands. A row that is not on file has only its place, and loses its check when
  /// rows have gone.
  void Show(const InventoryWork* work);

  void SetChecked(std::size_t row, bool checked);
  bool IsChecked(std::size_t row) const { return checked_.contains(MarkOf(row)); }
  /// Their rows, from the top.
  std::vector<std::size_t> Checked() const;
  void CheckNone() { checked_.clear(); }
  /// What is hidden is not to be acted upon.
  void UncheckOthers(const std::vector<int>& shown);

  int Rows() const override { return work_ == nullptr ? 0 : static_cast<int>(work_->rows.size()); }
  int FixedRows() const override { return 1; }
  std::string Text(int row, int column) const override;
  double Number(int row, int column) const override;
  const char* Mark(int row, int column) const override;

 protected:
  const InventoryRow& At(int row) const override { return work_->rows.at(static_cast<std::size_t>(row)); }

 private:
  // The reference of a lot, 0 of what is unlotted; below 0 the place of a row that is not on file.
  std::int64_t MarkOf(std::size_t row) const;

  const Session& session_;
  const InventoryWork* work_ = nullptr;
  int rows_ = 0;
  std::set<std::int64_t> checked_;
};

}  // namespace vellumark::desktop
