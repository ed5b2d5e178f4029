#include "core/inventory/adjust.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <utility>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/inventory/lot_texts.h"
#include "core/inventory/posting.h"

namespace vellumark {
namespace {

constexpr std::string_view kAdjustValue = "Adjust Value";

struct NoCaseLess {
  bool operator()(std::string_view a, std::string_view b) const { return CompareNoCase(a, b) < 0; }
};

// Of tens of thousands of lots there are few distinct texts, and the same one often follows itself: only those are
// sorted and copied.
std::vector<std::string> Distinct(const std::vector<InventoryRow>& rows, std::string InventoryValues::*text) {
  std::set<std::string_view, NoCaseLess> found;
  std::string_view last;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    const std::string_view name = rows[i].now.*text;
    if (i > 1 && name == last) continue;
    found.insert(name);
    last = name;
  }
  return {found.begin(), found.end()};
}

InventoryRow RowOfLot(LotRow lot) {
  InventoryRow row;
  row.key = lot.LotRefID;
  row.now = {
      std::move(lot.LotNumber), std::move(lot.LotLoc), std::move(lot.LotContID), lot.LotQty, lot.LotDate, lot.LotPrice,
      lot.LotConsignment};
  row.onFile = row.now;
  return row;
}

// The two checks that every quantity in the list passes before the cutoff is looked at.
Result<float> CheckedSum(ColorKind kind, const StockRules& rules, float before, float quantity) {
  const float after = RoundSingle(before + quantity, 3);
  if (after > kLargestQty)
    return Refuse(std::string(kAdjustValue),
                  "New Inventory is too large.\n" + Fixed(kLargestQty, 0) + " is the largest Qty allowed.",
                  "AdjustInv");
  if (after < 0 && (kind == ColorKind::Mix || !rules.AllowNegInv))
    return Refuse(std::string(kAdjustValue), "New Inventory is less than zero.\nNegative Inventory not allowed.",
                  "AdjustInv");
  return after;
}

// With a count, what is entered is the unit weight times it.
float GrossQuantity(const AdjustFields& fields) {
  return static_cast<float>(static_cast<double>(fields.quantity) * fields.count.value_or(1));
}

// What would break a list or a label, and the name that stands for stock outside the lots.
Result<void> CheckLotTexts(const AdjustFields& fields) {
  for (const auto& [text, field] :
       {std::pair{&fields.lotNumber, "cmbLotNum"}, {&fields.location, "cmbLocation"}, {&fields.contID, "ContID"}})
    if (auto fits = CheckLotText(TrimView(*text), field); !fits) return fits;
  if (EqualNoCase(TrimView(fields.lotNumber), kUnlottedInv))
    return Refuse("Invalid Lot", fmt::format("{} is no lot number: it stands for what is in no lot.", kUnlottedInv),
                  "cmbLotNum");
  return {};
}

// Entries that cancel each other leave nothing.
void Enter(InventoryRow& row, float quantity) {
  row.entered = RoundTo(row.entered + static_cast<double>(quantity), 3);
}

Result<void> AdjustUnlotted(const StockRules& rules, InventoryWork& work, const AdjustFields& fields) {
  float& qty = work.rows.front().now.qty;
  const float quantity = GrossQuantity(fields);
  if (const auto sum = CheckedSum(work.kind, rules, qty, quantity); !sum) return std::unexpected(sum.error());
  qty = UnlottedAfter(PostingSource::ManualAdjust, work.kind, rules, qty, quantity);
  Enter(work.rows.front(), quantity);
  return {};
}

// What a lot costs after an entry. Without the right to change costs a lot keeps its price and a new one (`present`
// left open) gets the colour's; another price that was typed in sight of it is refused.
Result<float> PriceOf(const Session& session, const InventoryWork& work, const AdjustFields& fields,
                      std::optional<float> present) {
  const float typed = RoundSingle(fields.price, session.DecimalPlaces);
  const auto right = RequireRight(session, AmountKey::Currency, "cmbPrice");
  if (right) return typed;
  const float kept = present.value_or(RoundSingle(work.UnitCost(), session.DecimalPlaces));
  const bool untouched = typed == RoundSingle(kept, session.DecimalPlaces) ||
                         (!fields.selected && typed == RoundSingle(work.UnitCost(), session.DecimalPlaces));
  if (session.Perm_Costs != 0 && !untouched) return std::unexpected(right.error());
  return kept;
}

Result<void> AdjustLot(const Session& session, const StockRules& rules, InventoryWork& work, std::size_t index,
                       const AdjustFields& fields) {
  InventoryRow& row = work.rows[index];
  const float quantity = GrossQuantity(fields);
  if (const auto sum = CheckedSum(work.kind, rules, row.now.qty, quantity); !sum) return std::unexpected(sum.error());
  const auto price = PriceOf(session, work, fields, row.now.price);
  if (!price) return std::unexpected(price.error());
  const auto after = LotAfter(PostingSource::ManualAdjust, rules, row.now.qty, quantity);
  Enter(row, quantity);
  if (!after) {
    if (row.key) work.removed.push_back({*row.key, row.onFile.lotNumber, row.onFile.qty, row.entered});
    work.rows.erase(work.rows.begin() + static_cast<std::ptrdiff_t>(index));
    return {};
  }
  row.now.qty = *after;
  if (const std::string number = Trim(fields.lotNumber); !number.empty()) row.now.lotNumber = number;
  row.now.location = Trim(fields.location);
  row.now.contID = Trim(fields.contID);
  if (!DatedByBatch(session, work, row)) row.now.date = fields.date;
  row.now.price = *price;
  row.now.consignment = fields.consignment;
  return {};
}

}  // namespace

std::string ContainerName(const std::string& typed, int i, std::optional<int> count) {
  if (!count) return typed;
  if (typed.empty()) return *count == 1 ? std::string() : std::to_string(i);
  // Beyond 15 digits the sum would change digits of the number; such a mark is counted as a text is.
  const auto number = typed.size() <= 15 ? ParseNumber(typed) : std::nullopt;
  if (number) return ShortestText(*number + (i - 1));
  return typed + "_" + std::to_string(i);
}

namespace {

Result<void> AddLots(const Session& session, InventoryWork& work, const AdjustFields& fields) {
  const float quantity = RoundSingle(fields.quantity, 3);
  const int count = fields.count.value_or(1);
  if (quantity < 0 || quantity >= kLargestQty || static_cast<double>(quantity) * count >= kLargestQty)
    return Refuse("Container Count",
                  "The number of containers selected will cause inventory to exceed: " + Fixed(kLargestQty, 0) +
                      "\n\nEnter less containers or lower Adjust Qty",
                  "cmbContCount");
  const auto price = PriceOf(session, work, fields, std::nullopt);
  if (!price) return std::unexpected(price.error());
  const std::string container = Trim(fields.contID);
  // The last one has the longest name.
  if (const auto fits = CheckLotText(ContainerName(container, count, fields.count), "ContID"); !fits)
    return std::unexpected(fits.error());
  for (int i = 1; i <= count; ++i) {
    InventoryRow row;
    row.now.lotNumber = Trim(fields.lotNumber);
    row.now.location = Trim(fields.location);
    row.now.contID = ContainerName(container, i, fields.count);
    row.now.qty = quantity;
    row.now.date = fields.date.value_or(session.clock.Today());
    row.now.price = *price;
    row.now.consignment = fields.consignment;
    work.rows.push_back(std::move(row));
  }
  return {};
}

}  // namespace

InventoryTotals InventoryWork::Totals() const {
  double lotted = 0;
  for (std::size_t i = 1; i < rows.size(); ++i) lotted += static_cast<double>(rows[i].now.qty);
  InventoryTotals totals;
  totals.unlotted = RoundSingle(rows.front().now.qty, 3);
  totals.lotted = RoundSingle(lotted, 3);
  totals.total = RoundSingle(totals.unlotted + totals.lotted, 3);
  return totals;
}

std::vector<std::string> InventoryWork::LotNumbers() const {
  return Distinct(rows, &InventoryValues::lotNumber);
}

std::vector<std::string> InventoryWork::Locations() const {
  std::vector<std::string> names = Distinct(rows, &InventoryValues::location);
  if (!names.empty() && names.front().empty()) names.erase(names.begin());
  return names;
}

Refusal InventoryColorNotFound(const Session& session) {
  return {"Inventory - Color not found",
          "This color was not found in the " + session.CurrentDatabase +
              " database.\nUse the Basic Color or Master Formula Window\nto add this color to the database.",
          "Color_Name"};
}

Result<ColorKind> ChooseInventoryColor(const Session& session, const std::string& name,
                                       std::optional<ColorKind> wanted) {
  const bool basic = wanted != ColorKind::Mix && ColorIsThere(session, ColorKind::Basic, name);
  const bool mix = wanted != ColorKind::Basic && ColorIsThere(session, ColorKind::Mix, name);
  if (!basic && !mix) return std::unexpected(InventoryColorNotFound(session));
  if (!basic || !mix) return mix ? ColorKind::Mix : ColorKind::Basic;
  const bool formula =
      session.prompt.Ask(std::string(25, ' ') + " Adjust Inventory",
                         "The " + session.CurrentDatabase + " database contains a Formula and a Basic called:\n" +
                             name + ".\n\nYes - Adjust the Formula\nNo - Adjust the Basic.");
  return formula ? ColorKind::Mix : ColorKind::Basic;
}

InventoryWork LoadInventory(const Session& session, ColorKind kind, const std::string& name,
                            std::string_view database) {
  Statement color = session.File().Prepare(fmt::format(
      "SELECT Color_Name, Inventory, PurchaseCost, {} FROM {} WHERE Color_Name = ?1 ORDER BY RowKey LIMIT 1",
      kind == ColorKind::Mix ? "BasicCost" : "0", session.QuotedTable(ColorTable(kind), database)));
  color.Bind(1, name);
  if (!color.Step()) throw std::logic_error("no stock without its colour: " + name);
  InventoryWork work;
  work.kind = kind;
  work.name = color.Text(0);
  work.database = database.empty() ? session.CurrentDatabase : std::string(database);
  work.purchaseCost = color.Single(2);
  work.basicCost = color.Single(3);
  InventoryRow unlotted;
  unlotted.key = 0;
  unlotted.now.lotNumber = kUnlottedInv;
  unlotted.now.qty = color.Single(1);
  unlotted.now.price = work.UnitCost();
  unlotted.onFile = unlotted.now;
  work.rows.push_back(std::move(unlotted));
  if (session.InvLotTracking == 1) {
    std::vector<LotRow> lots = LotsOf(session, kind, work.name, work.database);
    work.rows.reserve(lots.size() + 1);
    for (LotRow& lot : lots) work.rows.push_back(RowOfLot(std::move(lot)));
  }
  return work;
}

AdjustFields ClearedFields(const Session& session, const InventoryWork& work) {
  AdjustFields fields;
  fields.date = session.clock.Today();
  fields.price = work.UnitCost();
  return fields;
}

AdjustFields FieldsOfRow(const Session& session, const InventoryWork& work, std::size_t row) {
  AdjustFields fields = ClearedFields(session, work);
  fields.selected = row;
  if (row == 0) return fields;
  const InventoryValues& values = work.rows.at(row).now;
  fields.lotNumber = values.lotNumber;
  fields.location = values.location;
  fields.contID = values.contID;
  fields.date = values.date;
  fields.price = values.price;
  fields.consignment = values.consignment;
  return fields;
}

std::optional<std::size_t> FindRow(const InventoryWork& work, std::string_view lotNumber, std::string_view location,
                                   std::string_view contID) {
  for (std::size_t i = 1; i < work.rows.size(); ++i) {
    const InventoryValues& row = work.rows[i].now;
    if (SameLotText(row.lotNumber, TrimView(lotNumber)) && SameLotText(row.location, TrimView(location)) &&
        SameLotText(row.contID, TrimView(contID)))
      return i;
  }
  return std::nullopt;
}

bool DatedByBatch(const Session& session, const InventoryWork& work, const InventoryRow& row) {
  if (work.kind != ColorKind::Mix || !row.key || *row.key == 0) return false;
  return !session.File()
              .Scalar(fmt::format("SELECT 1 FROM {} WHERE Color_Name = ?1 AND LotRefID = ?2 LIMIT 1",
                                  session.QuotedTable(schema::Batch, work.database)),
                      {work.name, *row.key})
              .IsNull();
}

Result<void> RequireDateChangeable(const Session& session, const InventoryWork& work, std::size_t row) {
  if (!DatedByBatch(session, work, work.rows.at(row))) return {};
  return Refuse("Date Change",
                "This inventory item was dated by a Batch creation.\n\nUpdate / Change the Batch to alter this date.",
                "lblDate");
}

Result<void> ApplyAdjust(const Session& session, InventoryWork& work, const AdjustFields& fields) {
  const StockRules rules = ReadStockRules(session);
  const bool noLot = session.InvLotTracking != 1 || TrimView(fields.lotNumber).empty();
  if (fields.selected == std::size_t{0} || (!fields.selected && noLot)) return AdjustUnlotted(rules, work, fields);
  if (const auto checked = CheckLotTexts(fields); !checked) return checked;
  if (fields.selected) return AdjustLot(session, rules, work, *fields.selected, fields);
  if (const auto row = FindRow(work, fields.lotNumber, fields.location, fields.contID))
    return AdjustLot(session, rules, work, *row, fields);
  return AddLots(session, work, fields);
}

Result<void> SetUnlotted(const Session& session, InventoryWork& work, std::string_view typed) {
  const auto wanted = ReadAdjustQuantity(typed);
  if (!wanted) return std::unexpected(wanted.error());
  AdjustFields fields = ClearedFields(session, work);
  fields.quantity = *wanted - work.rows.front().now.qty;
  return AdjustUnlotted(ReadStockRules(session), work, fields);
}

}  // namespace vellumark
