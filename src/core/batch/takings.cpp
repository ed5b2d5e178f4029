#include "core/batch/takings.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/datafile/writer.h"
#include "core/inventory/posting.h"

namespace vellumark {
namespace {

// What is recorded of a taking beside the kind of its line.
const FieldMap<BatchTaking>& TakingFields() {
  using U = LotUse;
  static const FieldMap<BatchTaking> fields = [] {
    FieldMap<U> use;
    use.Add("LotRefID", &U::LotRefID).Add("LotNumber", &U::LotNumber).Add("LotLoc", &U::LotLoc);
    use.Add("LotContID", &U::LotContID).Add("LotDate", &U::LotDate);
    use.Add("LotQty", &U::LotQty).Add("LotPrice", &U::LotPrice);
    FieldMap<BatchTaking> map;
    map.Add("IngName", &BatchTaking::IngName);
    for (const RecordField& field : use) map.AddPart(field, &BatchTaking::use);
    return map;
  }();
  return fields;
}

float Converted(double quantity, int from, int to) {
  return RoundSingle(from == to ? quantity : quantity * static_cast<double>(UnitFactor(from, to)), 3);
}

LotUse UnlottedUse(const Session& session, ColorKind kind, const std::string& name, float quantity) {
  LotUse use;
  use.LotNumber = kUnlottedInv;
  use.LotQty = quantity;
  use.LotPrice = UnlottedPrice(session, kind, name);
  return use;
}

// What the lots still hold while the lines choose from them one after the other.
class LotStock {
 public:
  explicit LotStock(const Session& session) : session_(session) {}

  // As much of the quantity as the lot has; nothing of one that went or that came to be on consignment.
  float Draw(ColorKind kind, const std::string& name, const LotUse& use, float quantity) {
    float& left = Left(kind, name, use);
    const float drawn = std::clamp(quantity, 0.0F, std::max(left, 0.0F));
    left = RoundSingle(left - drawn, 3);
    return drawn;
  }

 private:
  struct Lot {
    ColorKind kind;
    std::string name;
    std::int32_t ref;
    std::string number;
    float left;
  };

  float& Left(ColorKind kind, const std::string& name, const LotUse& use) {
    for (Lot& lot : lots_)
      if (lot.kind == kind && lot.ref == use.LotRefID && EqualNoCase(lot.number, use.LotNumber) &&
          EqualNoCase(lot.name, name))
        return lot.left;
    const auto found =
        FindLot(session_, kind, name, {}, StockPlace{.LotRefID = use.LotRefID, .LotNumber = use.LotNumber});
    lots_.push_back({kind, name, use.LotRefID, use.LotNumber, found && !found->LotConsignment ? found->LotQty : 0});
    return lots_.back().left;
  }

  const Session& session_;
  std::vector<Lot> lots_;
};

class TakingPlan {
 public:
  TakingPlan(const Session& session, const BatchRecord& record) : session_(session), record_(record), stock_(session) {}

  std::vector<BatchTaking> Run() {
    const BatchWork& work = record_.work;
    std::size_t row = 0;
    for (const RecycleColor& color : work.RecycledColors) Line(row++, color.Color_Name, LineKind::Mix, color.lots);
    for (const BatchIngredient& i : work.Ingredients) Line(row++, i.IngName, LineKind::Basic, i.lots);
    for (const BatchIngredient& i : work.Additions) Line(row++, i.IngName, LineKind::Addition, i.lots);
    return std::move(takings_);
  }

 private:
  void Line(std::size_t row, const std::string& name, LineKind type, const LotSelection& lots) {
    const double amount = record_.work.Rows.at(row).amount;
    const ColorKind kind = ColorKindOf(type);
    const float wanted = Converted(amount, record_.work.UMF, session_.UMI);
    double left = wanted;
    bool whole = true;
    bool any = false;
    if (session_.InvLotTracking != 0 && wanted > 0) {
      for (const LotUse& chosen : lots.uses) {
        LotUse use = chosen;
        const float asked = Converted(chosen.LotQty, record_.work.UMF, session_.UMI);
        use.LotQty = use.LotRefID == 0 ? asked : stock_.Draw(kind, name, use, asked);
        whole = whole && use.LotQty == asked;
        if (!(use.LotQty > 0)) continue;
        if (use.LotRefID == 0) use = UnlottedUse(session_, kind, name, use.LotQty);
        left -= RoundTo(use.LotQty, 3);
        any = true;
        takings_.push_back({name, type, std::move(use)});
      }
      // A selection that covers the need covers it in the inventory unit too, whatever rounding leaves between them.
      if (any && whole && lots.CompleteFor(RoundSingle(amount, 3))) return;
      left = std::max(0.0, left);
    }
    const float rest = RoundSingle(left, 3);
    if (rest != 0 || !any) takings_.push_back({name, type, UnlottedUse(session_, kind, name, rest)});
  }

  const Session& session_;
  const BatchRecord& record_;
  LotStock stock_;
  std::vector<BatchTaking> takings_;
};

bool OfLine(const BatchTaking& taking, const StoredLine& line) {
  return taking.IngType == line.IngType && EqualNoCase(taking.IngName, line.IngName);
}

Posting PostingOf(std::int32_t batchNo, const NetTaking& taking) {
  Posting posting;
  posting.source = PostingSource::BatchTakes;
  posting.kind = taking.kind;
  posting.name = taking.name;
  posting.quantity = taking.place.LotQty;
  posting.document = BatchNoText(batchNo);
  if (taking.place.LotRefID != 0) {
    posting.place = {.LotRefID = taking.place.LotRefID, .LotNumber = taking.place.LotNumber};
    posting.remove = taking.place.Remove;
  }
  return posting;
}

}  // namespace

std::vector<StoredLine> LinesOf(const BatchWork& work) {
  std::vector<StoredLine> lines;
  for (const RecycleColor& color : work.RecycledColors)
    lines.push_back({color.Color_Name, color.Usable, LineKind::Mix});
  for (const BatchIngredient& i : work.Ingredients) lines.push_back({i.IngName, i.Amount, LineKind::Basic});
  for (const BatchIngredient& i : work.Additions) lines.push_back({i.IngName, i.Amount, LineKind::Addition});
  return lines;
}

std::vector<BatchTaking> PlanTakings(Session& session, const BatchRecord& record) {
  return TakingPlan(session, record).Run();
}

std::vector<BatchTaking> ReadTakings(const Session& session, const StoredBatchLines& batch) {
  Statement rows =
      session.File().Prepare(fmt::format("SELECT IngType, {} FROM {} WHERE BatchNo = ? ORDER BY RowKey",
                                         TakingFields().Columns(), session.QuotedTable(schema::BatchLotInv)));
  rows.Bind(1, batch.BatchNo);
  std::vector<BatchTaking> takings;
  while (rows.Step()) {
    BatchTaking& taking = takings.emplace_back();
    taking.IngType = LineKindOf(rows.Whole(0));
    TakingFields().Read(rows, 1, taking);
    if (EqualNoCase(taking.use.LotNumber, kUnlottedInv)) taking.use.LotRefID = 0;
  }
  const std::vector<BatchTaking> recorded = takings;
  for (std::size_t i = 0; i < batch.lines.size(); ++i) {
    const StoredLine& line = batch.lines[i];
    if (std::ranges::any_of(recorded, [&](const BatchTaking& taking) { return OfLine(taking, line); })) continue;
    double amount = RoundTo(line.IngQty, 3);
    if (BearsRoundoff(static_cast<std::int64_t>(i), line.IngType, batch.LargestAmountIndex))
      amount += RoundTo(batch.Roundoff, 3);
    const float quantity = Converted(amount, batch.UMF, session.UMI);
    takings.push_back(
        {line.IngName, line.IngType, UnlottedUse(session, ColorKindOf(line.IngType), line.IngName, quantity)});
  }
  return takings;
}

LotSelection SelectionOf(const Session& session, std::vector<BatchTaking>& takings, const StoredLine& line,
                         float amount, int unit, bool isLast) {
  LotSelection selection;
  double taken = 0;
  const float needed = Converted(amount, unit, session.UMI);
  const auto covered = [&] { return !isLast && RoundSingle(taken, 3) >= needed; };
  for (auto place = takings.begin(); place != takings.end();) {
    if (!OfLine(*place, line)) {
      ++place;
      continue;
    }
    const BatchTaking taking = std::move(*place);
    place = takings.erase(place);
    if (!(taking.use.LotQty > 0)) {
      if (covered()) break;
      continue;
    }
    taken += RoundTo(taking.use.LotQty, 3);
    LotUse use = taking.use;
    use.LotQty = Converted(use.LotQty, session.UMI, unit);
    selection.uses.push_back(std::move(use));
    if (covered()) break;
  }
  // In a finer unit than that of the inventory the parts need not add up to the amount; the last one makes up for it.
  if (!selection.uses.empty() && RoundSingle(taken, 3) == needed) {
    float& last = selection.uses.back().LotQty;
    last = RoundSingle(last + RoundTo(amount, 3) - RoundTo(selection.Used(), 3), 3);
  }
  return selection;
}

void WriteTakings(Session& session, std::int32_t batchNo, const DateTime& date,
                  const std::vector<BatchTaking>& takings) {
  std::vector<std::string> columns{"BatchNo", "DateEntered", "IngType"};
  const std::size_t first = columns.size();
  for (const RecordField& field : TakingFields()) columns.push_back(field.column);
  RowWriter writer(session.File(), schema::BatchLotInv, session.Table(schema::BatchLotInv), columns);
  writer.Set(0, batchNo).Set(1, date);
  for (BatchTaking taking : takings) {
    taking.use.LotQty = RoundSingle(taking.use.LotQty, 3);
    taking.use.LotPrice = RoundSingle(taking.use.LotPrice, session.DecimalPlaces);
    writer.Set(2, static_cast<int>(taking.IngType));
    std::size_t place = first;
    for (const RecordField& field : TakingFields()) writer.Set(place++, field.ValueIn(&taking));
    writer.Insert();
  }
}

void DeleteTakings(Session& session, std::int32_t batchNo) {
  session.File()
      .Prepare(fmt::format("DELETE FROM {} WHERE BatchNo = ?", session.QuotedTable(schema::BatchLotInv)))
      .Bind(1, batchNo)
      .Run();
}

bool IsOfPlace(const Session& session, const BatchTaking& taking, const NetTaking& place) {
  if (ColorKindOf(taking.IngType) != place.kind || !EqualNoCase(taking.IngName, place.name)) return false;
  if (session.InvLotTracking == 0) return true;
  return taking.use.LotRefID == place.place.LotRefID &&
         (place.place.LotRefID == 0 || EqualNoCase(taking.use.LotNumber, place.place.LotNumber));
}

std::vector<NetTaking> NetTakings(const Session& session, const std::vector<BatchTaking>& takings) {
  std::vector<NetTaking> net;
  for (const BatchTaking& taking : takings) {
    const ColorKind kind = ColorKindOf(taking.IngType);
    LotUse place = taking.use;
    if (session.InvLotTracking == 0) place = {.LotNumber = std::string(kUnlottedInv), .LotQty = place.LotQty};
    const auto same =
        std::ranges::find_if(net, [&](const NetTaking& other) { return IsOfPlace(session, taking, other); });
    if (same == net.end()) {
      net.push_back({kind, taking.IngName, std::move(place)});
    } else {
      same->place.LotQty = RoundSingle(RoundTo(same->place.LotQty, 3) + RoundTo(place.LotQty, 3), 3);
      same->place.Remove = same->place.Remove || place.Remove;
    }
  }
  return net;
}

float Covered(const Session& session, const NetTaking& taking) {
  const float wanted = taking.place.LotQty;
  // No more of a lot is ever planned than it holds.
  if (taking.place.LotRefID != 0 || !(wanted > 0)) return wanted;
  if (taking.kind == ColorKind::Basic && ReadStockRules(session).AllowNegInv) return wanted;
  return std::min(wanted, std::max(0.0F, UnlottedQty(session, taking.kind, taking.name)));
}

float ReallyLeft(float quantity, float before, float after) {
  return std::clamp(RoundSingle(RoundTo(before, 3) - RoundTo(after, 3), 3), 0.0F, quantity);
}

void TakeFromStock(Session& session, std::int32_t batchNo, std::vector<NetTaking>& takings) {
  const StockRules rules = ReadStockRules(session);
  for (NetTaking& taking : takings) {
    Posting posting = PostingOf(batchNo, taking);
    if (posting.quantity == 0 && !taking.place.Remove) continue;
    if (posting.quantity < 0) {  // more was taken back than went in
      posting.source = PostingSource::BatchReturns;
      posting.quantity = -posting.quantity;
      PostStock(session, rules, posting);
      continue;
    }
    const PostingResult posted = PostStock(session, rules, posting);
    taking.place.LotQty = ReallyLeft(posting.quantity, posted.before, posted.quantity);
  }
}

void LowerTo(const Session& session, std::vector<BatchTaking>& takings, const std::vector<NetTaking>& left) {
  for (const NetTaking& place : left) {
    double over = -RoundTo(place.place.LotQty, 3);
    for (const BatchTaking& taking : takings)
      if (IsOfPlace(session, taking, place)) over += RoundTo(taking.use.LotQty, 3);
    for (auto taking = takings.rbegin(); taking != takings.rend() && RoundTo(over, 3) > 0; ++taking) {
      if (!IsOfPlace(session, *taking, place) || !(taking->use.LotQty > 0)) continue;
      const double less = std::min(over, RoundTo(taking->use.LotQty, 3));
      taking->use.LotQty = RoundSingle(RoundTo(taking->use.LotQty, 3) - less, 3);
      over -= less;
    }
  }
}

void LowerRecorded(Session& session, std::string_view database, std::int32_t batchNo, const NetTaking& place,
                   float missing) {
  const std::string table = session.QuotedTable(schema::BatchLotInv, database);
  // While Lotted Inventory is off the lots of a Batch count as Unlotted too.
  Statement rows = session.File().Prepare(fmt::format(
      "SELECT RowKey, LotQty FROM {} WHERE BatchNo = ?1 AND IngName = ?2 AND (IngType = 2) = ?3 AND LotQty > "
      "0 AND (?4 OR LotNumber = ?5) ORDER BY LotRefID = ?6 DESC, RowKey DESC",
      table));
  rows.Bind(1, batchNo).Bind(2, place.name).Bind(3, place.kind == ColorKind::Mix ? 1 : 0);
  rows.Bind(4, session.InvLotTracking == 0 ? 1 : 0).Bind(5, place.place.LotNumber).Bind(6, place.place.LotRefID);
  std::vector<std::pair<std::int64_t, float>> lowered;
  double over = RoundTo(missing, 3);
  while (RoundTo(over, 3) > 0 && rows.Step()) {
    const double less = std::min(over, RoundTo(rows.Single(1), 3));
    lowered.emplace_back(rows.Whole(0), RoundSingle(RoundTo(rows.Single(1), 3) - less, 3));
    over -= less;
  }
  Statement lower = session.File().Prepare(fmt::format("UPDATE {} SET LotQty = ?1 WHERE RowKey = ?2", table));
  for (const auto& [row, quantity] : lowered) lower.Bind(1, quantity).Bind(2, row).Run();
}

}  // namespace vellumark
