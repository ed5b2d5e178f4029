#include "core/inventory/color_stock.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/basic_work.h"
#include "core/colors/formula_work.h"
#include "core/colors/name_search.h"
#include "core/colors/names.h"
#include "core/session/rights.h"

namespace vellumark {
namespace {

struct FigureRule {
  AmountKey key;
  std::string_view title;
  std::string_view field;
};

FigureRule RuleOf(StockFigure figure) {
  switch (figure) {
    case StockFigure::Reorder:
      return {AmountKey::Reorder, "Invalid Quantity - Reorder", "Reorder"};
    case StockFigure::PurchaseCost:
      return {AmountKey::Currency, "Invalid Amount - Purchase Cost", "PurchaseCost"};
    case StockFigure::VOC:
      return {AmountKey::VOC, "Invalid Quantity - VOC", "VOC"};
    case StockFigure::HAP:
      return {AmountKey::HAP, "Invalid Quantity - HAP", "HAP"};
  }
  return {};
}

// The fields that a Basic Color and a formula share, from one record into the other.
template <class From, class To>
void CopyFields(const From& from, To& to) {
  to.Color_Code = from.Color_Code;
  to.Reorder = from.Reorder;
  to.PurchaseCost = from.PurchaseCost;
  to.VOC = from.VOC;
  to.HAP = from.HAP;
  to.Inv_Note = from.Inv_Note;
  to.Notes = from.Notes;
}

Result<void> Gone(const StockRecord& record) {
  return Refuse("Color Not Found", record.Color_Name + " is not found in this database.", "Color_Name");
}

Result<void> SaveColor(Session& session, const StockRecord& record) {
  if (record.kind == ColorKind::Basic) {
    const auto color = ReadBasic(session, record.Color_Name);
    if (!color) return Gone(record);
    BasicWork work = LoadBasicWork(session, *color);
    CopyFields(record, work);
    return SaveBasic(session, work);
  }
  const auto mix = ReadMix(session, record.Color_Name);
  if (!mix) return Gone(record);
  FormulaWork work = LoadFormulaWork(session, *mix);
  CopyFields(record, work);
  work.Recycle = record.Recycle;
  work.AllowEditing = false;
  return SaveMix(session, work);
}

// Names behind "PANTONE " first, as in either list.
bool ComesBefore(const std::string& a, const std::string& b) {
  if (HasPantonePrefix(a) != HasPantonePrefix(b)) return HasPantonePrefix(a);
  return CompareNoCase(a, b) < 0;
}

}  // namespace

std::optional<StockRecord> LoadStockRecord(const Session& session, ColorKind kind, std::string_view name) {
  StockRecord record;
  record.kind = kind;
  const auto book = [&](const BookData& data) {
    record.Red = data.Red;
    record.Green = data.Green;
    record.Blue = data.Blue;
  };
  if (kind == ColorKind::Basic) {
    const auto color = ReadBasic(session, name);
    if (!color) return std::nullopt;
    CopyFields(LoadBasicWork(session, *color), record);
    record.Color_Name = color->Color_Name;
    book(color->book);
    return record;
  }
  const auto mix = ReadMix(session, name);
  if (!mix) return std::nullopt;
  CopyFields(LoadFormulaWork(session, *mix), record);
  record.Color_Name = mix->Color_Name;
  record.Recycle = mix->Recycle;
  record.BasicCost = AmountText(session, AmountKey::Currency, mix->BasicCost);
  record.VOCBasics = AmountText(session, AmountKey::VOC, mix->BasicVOC);
  record.HAPBasics = AmountText(session, AmountKey::HAP, mix->BasicHAP);
  book(mix->book);
  return record;
}

AmountKey KeyOf(StockFigure figure) {
  return RuleOf(figure).key;
}

Result<std::string> ReadStockFigure(const Session& session, StockFigure figure, std::string_view typed) {
  const FigureRule rule = RuleOf(figure);
  const auto amount = ReadAmount(session, rule.key, typed, rule.field);
  if (!amount) return Refuse(std::string(rule.title), amount.error().text, std::string(rule.field));
  return AmountText(session, rule.key, *amount);
}

Result<void> SaveStockRecord(Session& session, const StockRecord& record, const InventoryWork& stock) {
  StockRecord checked = record;
  const std::array<std::pair<StockFigure, std::string*>, 4> figures{{{StockFigure::Reorder, &checked.Reorder},
                                                                     {StockFigure::PurchaseCost, &checked.PurchaseCost},
                                                                     {StockFigure::VOC, &checked.VOC},
                                                                     {StockFigure::HAP, &checked.HAP}}};
  for (const auto& [figure, text] : figures) {
    auto read = ReadStockFigure(session, figure, *text);
    if (!read) return std::unexpected(read.error());
    *text = *std::move(read);
  }
  return SaveWithStock(
      session, [&] { return SaveColor(session, checked); }, &stock);
}

Result<void> SaveWithStock(Session& session, const std::function<Result<void>()>& saveColor,
                           const InventoryWork* stock) {
  if (stock == nullptr) return saveColor();
  if (const auto writable = RequireWritable(session); !writable) return writable;
  int leftOut = 0;
  {
    Transaction transaction(session.File());
    if (auto saved = saveColor(); !saved) return saved;
    const auto written = WriteInventory(session, *stock);
    if (!written) return std::unexpected(written.error());
    leftOut = *written;
    transaction.Commit();
  }
  if (leftOut > 0) ShowMaxLotUsage(session);
  return {};
}

InventoryWork NewInventory(const Session& session, ColorKind kind, std::string name) {
  InventoryWork work;
  work.kind = kind;
  work.name = std::move(name);
  work.database = session.CurrentDatabase;
  InventoryRow unlotted;
  unlotted.key = 0;
  unlotted.now.lotNumber = kUnlottedInv;
  unlotted.onFile = unlotted.now;
  work.rows.push_back(std::move(unlotted));
  return work;
}

void TakeTypedCosts(const Session& session, InventoryWork& work, std::string_view purchaseCost,
                    std::string_view basicCost) {
  const auto cost = [&](std::string_view typed) {
    return ReadAmount(session, AmountKey::Currency, typed, "PurchaseCost").value_or(0.0F);
  };
  work.purchaseCost = cost(purchaseCost);
  work.basicCost = cost(basicCost);
  work.rows.front().now.price = work.UnitCost();
  work.rows.front().onFile.price = work.UnitCost();
}

Result<void> CheckInventorySettings(const Session& session, bool entering) {
  constexpr std::string_view kTitle = "Update Inventory Settings";
  if (!Allows(session, CommandRight::Options))
    return Refuse(std::string(kTitle),
                  "Current User does not have permission to make changes..\nUpdate permissions or have another user to "
                  "adjust these settings.");
  if (entering)
    return Refuse(std::string(kTitle),
                  "A Manual inventory transaction is in process.\nSave or Clear data before changing inventory "
                  "settings.");
  return {};
}

bool IsBelowReorder(const Session& session, ColorKind kind, std::string_view name) {
  const Value reorder = session.File().Scalar(
      fmt::format("SELECT Reorder FROM {} WHERE Color_Name = ?1 LIMIT 1", Quoted(session.Table(ColorTable(kind)))),
      {name});
  return !reorder.IsNull() && TotalStock(session, kind, name) < reorder.Single();
}

std::string CompleteColorName(const Session& session, std::string_view typed) {
  std::string basic = CompleteName(session, NameKind::Basics, typed);
  std::string formula = CompleteName(session, NameKind::Formulas, typed);
  if (basic.empty() || (!formula.empty() && ComesBefore(formula, basic))) return formula;
  return basic;
}

std::vector<std::string> ColorNamesFrom(const Session& session, std::string_view typed, std::size_t limit) {
  std::vector<std::string> names = NamesFrom(session, NameKind::Basics, typed, limit);
  for (std::string& name : NamesFrom(session, NameKind::Formulas, typed, limit)) names.push_back(std::move(name));
  std::ranges::sort(names, ComesBefore);
  names.erase(std::unique(names.begin(), names.end(), EqualNoCase), names.end());
  if (names.size() > limit) names.resize(limit);
  return names;
}

}  // namespace vellumark
