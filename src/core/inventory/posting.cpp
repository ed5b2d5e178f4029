#include "core/inventory/posting.h"

#include <fmt/format.h>

#include <array>
#include <stdexcept>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/inventory/gone_lots.h"
#include "core/inventory/lot_copies.h"
#include "core/inventory/lot_texts.h"

namespace vellumark {
namespace {

enum class Effect { Takes, Adds, Sets };
enum class CutoffTest { None, Below, AtOrBelow };
enum class MissingLot { Nothing, Added, AddedIfPositive };
// Where a lot's stock goes while Lotted Inventory is off.
enum class Untracked { Unlotted, KnownLot };

constexpr std::string_view kWrittenOff = "Delete Inv. Balance";

struct SourceRule {
  PostingSource source;
  Effect effect;
  CutoffTest unlottedBasic;  // left out while negative inventory is allowed
  CutoffTest unlottedMix;
  CutoffTest lot;
  MissingLot missingLot;
  Untracked untracked = Untracked::Unlotted;  // KnownLot: a lot that its reference names is where the stock lies
};

// The differences between "below" and "at or below" are meant: each source keeps its own.
constexpr std::array<SourceRule, 9> kRules{{
    {PostingSource::BatchTakes, Effect::Takes, CutoffTest::AtOrBelow, CutoffTest::AtOrBelow, CutoffTest::AtOrBelow,
     MissingLot::Nothing},
    {PostingSource::BatchReturns, Effect::Adds, CutoffTest::None, CutoffTest::None, CutoffTest::None,
     MissingLot::Added},
    {PostingSource::BatchTakesAgain, Effect::Takes, CutoffTest::AtOrBelow, CutoffTest::Below, CutoffTest::Below,
     MissingLot::Nothing, Untracked::KnownLot},
    {PostingSource::BatchMakes, Effect::Adds, CutoffTest::None, CutoffTest::None, CutoffTest::None, MissingLot::Added,
     Untracked::KnownLot},
    {PostingSource::BatchUnmakes, Effect::Takes, CutoffTest::None, CutoffTest::Below, CutoffTest::AtOrBelow,
     MissingLot::Nothing, Untracked::KnownLot},
    {PostingSource::JobRecord, Effect::Adds, CutoffTest::Below, CutoffTest::Below, CutoffTest::Below,
     MissingLot::AddedIfPositive},
    {PostingSource::ManualAdjust, Effect::Adds, CutoffTest::AtOrBelow, CutoffTest::AtOrBelow, CutoffTest::AtOrBelow,
     MissingLot::Nothing},
    {PostingSource::ScanReturn, Effect::Adds, CutoffTest::None, CutoffTest::None, CutoffTest::None, MissingLot::Added},
    {PostingSource::Reset, Effect::Sets, CutoffTest::None, CutoffTest::None, CutoffTest::None, MissingLot::Nothing,
     Untracked::KnownLot},
}};

const SourceRule& RuleOf(PostingSource source) {
  for (const SourceRule& rule : kRules) {
    if (rule.source == source) return rule;
  }
  throw std::logic_error("a source of postings without a rule");
}

float NewQuantity(Effect effect, float before, float quantity) {
  switch (effect) {
    case Effect::Takes:
      return RoundSingle(before - quantity, 3);
    case Effect::Adds:
      return RoundSingle(before + quantity, 3);
    case Effect::Sets:
      break;
  }
  return RoundSingle(quantity, 3);
}

// What comes back from a job is there, however little it is.
bool CutsOff(PostingSource source, float quantity) {
  return source != PostingSource::JobRecord || quantity < 0;
}

bool CountsAsNothing(CutoffTest test, float quantity, float cutoff) {
  switch (test) {
    case CutoffTest::Below:
      return quantity < cutoff;
    case CutoffTest::AtOrBelow:
      return quantity <= cutoff;
    case CutoffTest::None:
      break;
  }
  return false;
}

struct ColorRow {
  std::int64_t row = 0;
  float inventory = 0;
  float unitCost = 0;
};

std::optional<ColorRow> FindColor(const Session& session, const Posting& posting) {
  Statement color = session.File().Prepare(
      fmt::format("SELECT RowKey, Inventory, {} FROM {} WHERE Color_Name = ?1 ORDER BY RowKey LIMIT 1",
                  posting.kind == ColorKind::Mix ? "BasicCost" : "PurchaseCost",
                  session.QuotedTable(ColorTable(posting.kind), posting.database)));
  color.Bind(1, posting.name);
  if (!color.Step()) return std::nullopt;
  return ColorRow{color.Whole(0), color.Single(1), color.Single(2)};
}

StockChange ChangeOf(const Posting& posting, StockChange::Action action, std::int64_t row, float before, float after) {
  const StockChange change{.source = posting.source,
                           .kind = posting.kind,
                           .name = posting.name,
                           .database = posting.database,
                           .document = posting.document,
                           .reason = posting.reason};
  return change.Of(action, row, before, after);
}

PostingResult PostUnlotted(Session& session, const StockRules& rules, const Posting& posting, const ColorRow& color) {
  const float after = UnlottedAfter(posting.source, posting.kind, rules, color.inventory, posting.quantity);
  WriteStockChange(session, ChangeOf(posting, StockChange::Action::SetUnlotted, color.row, color.inventory, after));
  return {PostingResult::Outcome::Posted, after, 0, color.inventory};
}

PostingResult PostToLot(Session& session, const StockRules& rules, const Posting& posting, const LotRow& lot) {
  const std::optional<float> after = LotAfter(posting.source, rules, lot.LotQty, posting.quantity);
  StockChange change = ChangeOf(posting, after ? StockChange::Action::SetLot : StockChange::Action::DeleteLot, lot.row,
                                lot.LotQty, after.value_or(0.0F));
  change.lot = lot;
  WriteStockChange(session, change);
  if (!after) return {PostingResult::Outcome::LotDeleted, 0, lot.LotRefID, lot.LotQty};
  if (!posting.remove) return {PostingResult::Outcome::Posted, *after, lot.LotRefID, lot.LotQty};
  change.action = StockChange::Action::DeleteLot;
  change.before = *after;
  change.after = 0;
  change.reason = kWrittenOff;
  WriteStockChange(session, change);
  return {PostingResult::Outcome::LotDeleted, 0, lot.LotRefID, lot.LotQty};
}

// A lot that a Job Record or a Batch once took from comes back as it was.
bool BringsLotBack(PostingSource source) {
  return source == PostingSource::JobRecord || source == PostingSource::BatchReturns;
}

// Such a lot brings the reference that it had, and so does the scanned label of a Basic Color, unless a stranger bears
// it by now; every other new lot is granted one.
bool KeepsReference(const Session& session, const Posting& posting) {
  const bool brings = BringsLotBack(posting.source) ||
                      (posting.source == PostingSource::ScanReturn && posting.kind == ColorKind::Basic);
  const std::int32_t ref = posting.place.LotRefID;
  return brings && IsLotReference(ref) && !LotRefIDInUse(session, posting.kind, posting.name, posting.database, ref);
}

// A Batch has recorded what its lots cost. An item of a Job costs what its Job is charged, which no lot takes on.
float PriceOfNewLot(const Session& session, const Posting& posting, const ColorRow& color) {
  if (posting.source == PostingSource::BatchReturns) return posting.place.LotPrice;
  if (posting.source != PostingSource::JobRecord) return color.unitCost;
  return PriceOfGoneLot(session, posting).value_or(color.unitCost);
}

PostingResult AddLot(Session& session, const StockRules& rules, const Posting& posting, const ColorRow& color) {
  const StockPlace& place = posting.place;
  LotRow lot;
  lot.LotRefID = KeepsReference(session, posting) ? place.LotRefID
                                                  : NextLotRefID(session, posting.kind, posting.name, posting.database);
  if (lot.LotRefID == -1) {
    if (posting.source != PostingSource::BatchMakes) return {PostingResult::Outcome::NoLotReference, 0, -1};
    PostingResult result = PostUnlotted(session, rules, posting, color);
    result.LotRefID = -1;
    return result;
  }
  lot.LotNumber = place.LotNumber;
  lot.LotLoc = place.LotLoc.value_or("");
  lot.LotContID = place.LotContID.value_or("");
  lot.LotDate = BringsLotBack(posting.source) ? place.LotDate : session.clock.Today();
  lot.LotPrice = PriceOfNewLot(session, posting, color);
  const float quantity = RoundSingle(posting.quantity, 3);
  StockChange change = ChangeOf(posting, StockChange::Action::AddLot, 0, 0, quantity);
  change.lot = lot;
  WriteStockChange(session, change);
  return {PostingResult::Outcome::LotAdded, quantity, lot.LotRefID};
}

// A lot that was scanned may have moved; what took from it hears of it too.
void MoveLot(Session& session, const Posting& posting, const LotRow& lot) {
  LotRow now = lot;
  now.LotLoc = posting.place.LotLoc.value_or(lot.LotLoc);
  now.LotContID = posting.place.LotContID.value_or(lot.LotContID);
  if (now.LotLoc == lot.LotLoc && now.LotContID == lot.LotContID) return;
  RewriteLot(session, {posting.kind, posting.name, posting.database}, lot, now);
}

// What lies on consignment belongs to its supplier until somebody enters it as bought.
bool TakesNoConsigned(const Posting& posting) {
  return posting.source == PostingSource::BatchTakes ||
         (posting.source == PostingSource::JobRecord && posting.quantity < 0);
}

// The lots that the place may mean, the likeliest first. What a Batch makes is a lot of its own, also beside another of
// the same number.
std::vector<LotRow> LotsMeant(const Session& session, const Posting& posting) {
  const StockPlace& place = posting.place;
  if (place.LotRefID != 0) {
    auto lot = FindLot(session, posting.kind, posting.name, posting.database, place);
    return lot ? std::vector{*std::move(lot)} : std::vector<LotRow>();
  }
  if (posting.source == PostingSource::BatchMakes) return {};
  return LotsNumbered(session, posting.kind, posting.name, posting.database, place.LotNumber);
}

PostingResult PostLot(Session& session, const StockRules& rules, const Posting& posting, const ColorRow& color) {
  // What a Batch took comes back under whatever reference it was recorded.
  if (posting.place.LotRefID != 0 && !IsLotReference(posting.place.LotRefID) &&
      posting.source != PostingSource::BatchReturns)
    return {PostingResult::Outcome::BadReference, 0, posting.place.LotRefID};
  const std::vector<LotRow> meant = LotsMeant(session, posting);
  for (const LotRow& lot : meant) {
    if (lot.LotConsignment && TakesNoConsigned(posting)) continue;
    const PostingResult result = PostToLot(session, rules, posting, lot);
    if (posting.moveLot && result.outcome == PostingResult::Outcome::Posted) MoveLot(session, posting, lot);
    return result;
  }
  if (!meant.empty()) return {PostingResult::Outcome::Consigned, 0, meant.front().LotRefID};
  const MissingLot missing = RuleOf(posting.source).missingLot;
  const bool added = missing == MissingLot::Added || (missing == MissingLot::AddedIfPositive && posting.quantity > 0);
  // A lot that only its reference was known of cannot be made: it would have no number.
  if (!added || posting.place.LotNumber.empty()) return {PostingResult::Outcome::NoLot, 0, posting.place.LotRefID};
  return AddLot(session, rules, posting, color);
}

bool GoesToUnlotted(const Session& session, const Posting& posting) {
  if (posting.place.IsUnlotted()) return true;
  if (session.InvLotTracking == 1) return false;
  const SourceRule& rule = RuleOf(posting.source);
  // The value that a lot is to have is not one for all that is unlotted.
  if (rule.effect == Effect::Sets) return false;
  const bool known = rule.untracked == Untracked::KnownLot || posting.knownLot;
  return !known || posting.place.LotRefID == 0;
}

PostingResult PostIn(Session& session, const StockRules& rules, const Posting& posting) {
  const auto color = FindColor(session, posting);
  if (!color) return {PostingResult::Outcome::NoColor};
  return GoesToUnlotted(session, posting) ? PostUnlotted(session, rules, posting, *color)
                                          : PostLot(session, rules, posting, *color);
}

}  // namespace

bool StockPlace::IsUnlotted() const {
  const std::string_view number = TrimView(LotNumber);
  return EqualNoCase(number, kUnlottedInv) || (LotRefID == 0 && number.empty());
}

std::optional<LotRow> FindLot(const Session& session, ColorKind kind, const std::string& name,
                              const std::string& database, const StockPlace& place) {
  if (place.IsUnlotted()) return std::nullopt;
  if (place.LotRefID == 0) {
    std::vector<LotRow> lots = LotsNumbered(session, kind, name, database, place.LotNumber);
    if (lots.empty()) return std::nullopt;
    return std::move(lots.front());
  }
  auto lot = FindLot(session, kind, name, database, place.LotRefID);
  if (lot && !TrimView(place.LotNumber).empty() && !SameLotText(TrimView(lot->LotNumber), TrimView(place.LotNumber)))
    return std::nullopt;
  return lot;
}

float UnlottedAfter(PostingSource source, ColorKind kind, const StockRules& rules, float before, float quantity) {
  const SourceRule& rule = RuleOf(source);
  const float after = NewQuantity(rule.effect, before, quantity);
  if ((kind != ColorKind::Mix && rules.AllowNegInv) || !CutsOff(source, quantity)) return after;
  const CutoffTest test = kind == ColorKind::Mix ? rule.unlottedMix : rule.unlottedBasic;
  return CountsAsNothing(test, after, rules.InvCutoff) ? 0 : after;
}

std::optional<float> LotAfter(PostingSource source, const StockRules& rules, float before, float quantity) {
  const SourceRule& rule = RuleOf(source);
  if (rule.effect == Effect::Sets) return std::nullopt;
  const float after = NewQuantity(rule.effect, before, quantity);
  // A scan that is taken back leaves no empty lot behind, and otherwise exactly what was there.
  if (source == PostingSource::ScanReturn && quantity < 0 && after <= 0) return std::nullopt;
  if (CutsOff(source, quantity) && CountsAsNothing(rule.lot, after, rules.InvCutoff)) return std::nullopt;
  return after;
}

PostingResult PostStock(Session& session, const StockRules& rules, const Posting& posting) {
  if (posting.source == PostingSource::BatchMakes && posting.kind != ColorKind::Mix)
    throw std::logic_error("a Batch makes Master Formulas only: " + posting.name);
  const std::string* database = session.FindDatabase(posting.database);
  if (database == nullptr) return {PostingResult::Outcome::NoDatabase};
  Posting there = posting;
  there.database = *database;
  there.place.LotNumber = Trim(posting.place.LotNumber);
  Transaction transaction(session.File());
  const PostingResult result = PostIn(session, rules, there);
  transaction.Commit();
  return result;
}

PostingResult PostStock(Session& session, const Posting& posting) {
  return PostStock(session, ReadStockRules(session), posting);
}

}  // namespace vellumark
