#include "core/inventory/color_stock.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/basic_work.h"
#include "core/colors/formula_work.h"
#include "core/colors/name_search.h"
#include "core/colors/names.h"
#include "core/session/rights.h"

namespace vellumark {
namespace {

std::string RefusalTitle(AmountKey key) {
  switch (key) {
    case AmountKey::Currency:
      return "Invalid Amount - Purchase Cost";
    case AmountKey::VOC:
      return "Invalid Quantity - VOC";
    case AmountKey::HAP:
      return "Invalid Quantity - HAP";
    default:
      return "Invalid Quantity - Reorder";
  }
}

Result<void> Gone(const StockRecord& record) {
  return Refuse("Color Not Found", record.Color_Name + " is not found in this database.", "Color_Name");
}

Result<void> SaveColor(Session& session, const StockRecord& record) {
  if (record.kind == ColorKind::Basic) {
    const auto color = ReadBasic(session, record.Color_Name);
    if (!color) return Gone(record);
    BasicWork work = LoadBasicWork(session, *color);
    CopyTyped(MixFields(), static_cast<const MixColor*>(&record), BasicFields(), static_cast<BasicColor*>(&work));
    work.typed = record.typed;
    return SaveBasic(session, work);
  }
  const auto mix = ReadMix(session, record.Color_Name);
  if (!mix) return Gone(record);
  FormulaWork work = LoadFormulaWork(session, *mix);
  CopyTyped(MixFields(), static_cast<const MixColor*>(&record), MixFields(), static_cast<MixColor*>(&work));
  work.typed = record.typed;
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
  if (kind == ColorKind::Basic) {
    const auto color = ReadBasic(session, name);
    if (!color) return std::nullopt;
    record.Color_Name = color->Color_Name;
    record.book = color->book;
    CopyTyped(BasicFields(), &*color, MixFields(), static_cast<MixColor*>(&record));
  } else {
    auto mix = ReadMix(session, name);
    if (!mix) return std::nullopt;
    static_cast<MixColor&>(record) = *std::move(mix);
  }
  ShowFigures(session, MixFields(), record);
  return record;
}

Result<std::string> ReadStockFigure(const Session& session, const RecordField& field, std::string_view typed) {
  const AmountKey key = field.amount.value();
  const auto amount = ReadAmount(session, key, typed, field.Control());
  if (!amount) return Refuse(RefusalTitle(key), amount.error().text, field.Control());
  return AmountText(session, key, *amount);
}

Result<void> SaveStockRecord(Session& session, const StockRecord& record, const InventoryWork& stock) {
  StockRecord checked = record;
  for (const RecordField& field : MixFields()) {
    if (!field.amount) continue;
    auto read = ReadStockFigure(session, field, TypedText(checked.typed, field.column));
    if (!read) return std::unexpected(read.error());
    checked.typed[field.column] = *std::move(read);
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
      fmt::format("SELECT Reorder FROM {} WHERE Color_Name = ?1 LIMIT 1", session.QuotedTable(ColorTable(kind))),
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
