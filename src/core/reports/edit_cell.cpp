#include "core/reports/edit_cell.h"

#include <algorithm>
#include <array>
#include <optional>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/colors/basic_work.h"
#include "core/colors/formula_work.h"
#include "core/inventory/adjust.h"
#include "core/inventory/lots.h"

namespace vellumark {
namespace {

constexpr const char* kNotEditable = "Not Editable";
// What is typed into a colour, as reports call it.
constexpr std::array<std::string_view, 7> kTyped{"Reorder", "Inv_Note", "PurchaseCost", "VOC",
                                                 "HAP",     "Recycle",  "Notes"};
// What formulas alone have.
constexpr std::array<std::string_view, 4> kOfFormulas{"BasicCost", "BasicVOC", "BasicHAP", "Recycle"};

const RowTarget& TargetOf(const ReportCell& cell) {
  return cell.report.targets.at(cell.row);
}

// The column of the colour that the cell shows. "Unit Cost" is its purchase cost, or the basic cost of a formula.
std::string ColumnOf(const ReportCell& cell) {
  const std::string& key = cell.report.columns.at(cell.column).key;
  if (key != "UnitCost") return key;
  const auto option = cell.options.find("MixCost");
  const bool basicCost =
      TargetOf(cell).kind == RowTarget::Kind::Mix && option != cell.options.end() && option->second == 0;
  return basicCost ? "BasicCost" : "PurchaseCost";
}

// What stands in another column of the row; nothing where the report has none of that key.
std::optional<std::string> Beside(const ReportCell& cell, std::string_view key) {
  for (std::size_t i = 0; i < cell.report.columns.size(); ++i)
    if (cell.report.columns[i].key == key) return CellText(cell.report.columns[i], cell.report.Cell(cell.row, i));
  return std::nullopt;
}

// The lists of what is to be ordered and recycled price what is in stock.
bool LacksStock(const ReportCell& cell) {
  const std::string& report = cell.definition.key;
  if (report != "Reorder" && report != "lblRecListProdCons") return false;
  return ParseNumber(Beside(cell, "Inventory").value_or("")).value_or(0) <= 0;
}

// A row of a lot has the figures of the lot.
bool IsOfLot(const ReportCell& cell) {
  return Beside(cell, "LotNumber").value_or(std::string(kUnlottedInv)) != kUnlottedInv;
}

bool IsLotPrice(const ReportCell& cell) {
  return IsOfLot(cell) && cell.report.columns.at(cell.column).key == "UnitCost";
}

// Nothing where the colour has gone meanwhile; declined where the text is no figure of that kind.
template <class Work>
Result<bool> Take(const FieldList& fields, Work& work, const std::string& column, std::string typed) {
  const RecordField& field = fields[column];
  if (field.amount) {
    typed = Trim(typed);
    if (typed.empty()) typed = "0";
    const auto number = ParseNumber(typed);
    if (!number || *number < 0) return Decline("No Number");
  }
  const auto before = field.amount ? Value() : field.ValueIn(&work);
  if (auto set = SetTyped(field, &work, work.typed, typed); !set) return std::unexpected(set.error());
  if (field.amount) return TypedText(work.typed, column) != TypedText(work.loaded, column);
  return !(field.ValueIn(&work) == before);
}

Result<void> EditBasic(Session& session, const std::string& name, const std::string& column, std::string typed) {
  const auto color = ReadBasic(session, name);
  if (!color) return Refuse("Color Not Found", "This Color could not be found");
  BasicWork work = LoadBasicWork(session, *color);
  const auto changed = Take(BasicFields(), work, column, std::move(typed));
  if (!changed) return std::unexpected(changed.error());
  return *changed ? SaveBasic(session, work) : Result<void>{};
}

// The lot that bears number, location and container of the row; nothing where several do.
InventoryRow* LotOf(InventoryWork& work, const ReportCell& cell) {
  InventoryRow* found = nullptr;
  for (std::size_t i = 1; i < work.rows.size(); ++i) {
    InventoryRow& row = work.rows[i];
    if (row.now.lotNumber != Beside(cell, "LotNumber") || row.now.location != Beside(cell, "LotLoc").value_or("") ||
        row.now.contID != Beside(cell, "LotContID").value_or(""))
      continue;
    if (found != nullptr) return nullptr;
    found = &row;
  }
  return found;
}

// As the inventory window enters it.
Result<void> EditLotPrice(Session& session, const ReportCell& cell, std::string typed) {
  const RowTarget& target = TargetOf(cell);
  if (auto may = RequireRight(session, AmountKey::Currency, "UnitCost"); !may) return may;
  InventoryWork work =
      LoadInventory(session, target.kind == RowTarget::Kind::Mix ? ColorKind::Mix : ColorKind::Basic, target.name);
  InventoryRow* lot = LotOf(work, cell);
  if (lot == nullptr) return Refuse(kNotEditable, "This field is not editable.");
  if (Trim(typed).empty()) typed = "0";
  const auto number = ParseNumber(Trim(typed));
  if (!number || *number < 0) return Decline("No Number");
  const auto price = ReadLotPrice(session, work, typed);
  if (!price) return std::unexpected(price.error());
  if (*price == lot->now.price) return {};
  lot->now.price = *price;
  const auto saved = SaveInventory(session, work);
  return saved ? Result<void>{} : std::unexpected(saved.error());
}

Result<void> EditMix(Session& session, const std::string& name, const std::string& column, std::string typed) {
  const auto color = ReadMix(session, name);
  if (!color) return Refuse("Color Not Found", "This Color could not be found");
  FormulaWork work = LoadFormulaWork(session, *color);
  const auto changed = Take(MixFields(), work, column, std::move(typed));
  if (!changed) return std::unexpected(changed.error());
  return *changed ? SaveMix(session, work) : Result<void>{};
}

}  // namespace

Result<void> RequireEditable(const Session& session, const ReportCell& cell) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  const RowTarget& target = TargetOf(cell);
  const std::string column = ColumnOf(cell);
  const bool mix = target.kind == RowTarget::Kind::Mix;
  if (!mix && std::ranges::find(kOfFormulas, column) != kOfFormulas.end())
    return Refuse(kNotEditable, "This field does not apply to Basic Colors.");
  if (mix && column == "BasicCost" && !IsOfLot(cell))
    return Refuse(kNotEditable, "A Master Formula's Basic Cost is created form the cost of Basic Colors.");
  if (cell.definition.edits && IsLotPrice(cell) && EqualNoCase(target.database, session.CurrentDatabase)) return {};
  if (!cell.definition.edits || (!mix && target.kind != RowTarget::Kind::Basic) ||
      std::ranges::find(kTyped, column) == kTyped.end() || !EqualNoCase(target.database, session.CurrentDatabase) ||
      IsOfLot(cell))
    return Refuse(kNotEditable, "This field is not editable.");
  if (column == "PurchaseCost" && LacksStock(cell))
    return Refuse(kNotEditable, "You can only enter information in this field when Inventory is greater than zero.");
  return {};
}

Result<void> EditReportCell(Session& session, const ReportCell& cell, std::string_view typed) {
  if (auto may = RequireEditable(session, cell); !may) return may;
  const RowTarget& target = TargetOf(cell);
  if (IsLotPrice(cell)) return EditLotPrice(session, cell, std::string(typed));
  return target.kind == RowTarget::Kind::Mix ? EditMix(session, target.name, ColumnOf(cell), std::string(typed))
                                             : EditBasic(session, target.name, ColumnOf(cell), std::string(typed));
}

}  // namespace vellumark
