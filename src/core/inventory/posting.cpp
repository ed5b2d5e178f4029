#include "core/inventory/posting.h"

#include <fmt/format.h>

#include <array>
#include <stdexcept>

#include "core/base/number.h"
#include "core/base/text.h"

namespace vellumark {
namespace {

enum class Effect { Takes, Adds, Sets };
enum class CutoffTest { None, Below, AtOrBelow };
enum class MissingLot { Nothing, Added, AddedIfPositive };

constexpr std::string_view kWrittenOff = "Delete Inv. Balance";

struct SourceRule {
  PostingSource source;
  Effect effect;
  CutoffTest unlottedBasic;  // left out while negative inventory is allowed
  CutoffTest unlottedMix;
  CutoffTest lot;
  MissingLot missingLot;
};

// The differences between "below" and "at or below" are meant: each source keeps its own.
constexpr std::array<SourceRule, 9> kRules{{
    {PostingSource::BatchTakes, Effect::Takes, CutoffTest::AtOrBelow, CutoffTest::AtOrBelow, CutoffTest::AtOrBelow,
     MissingLot::Nothing},
    {PostingSource::BatchReturns, Effect::Adds, CutoffTest::None, CutoffTest::None, CutoffTest::None,
     MissingLot::Added},
    {PostingSource::BatchTakesAgain, Effect::Takes, CutoffTest::AtOrBelow, CutoffTest::Below, CutoffTest::Below,
     MissingLot::Nothing},
    {PostingSource::BatchMakes, Effect::Adds, CutoffTest::None, CutoffTest::None, CutoffTest::None, MissingLot::Added},
    {PostingSource::BatchUnmakes, Effect::Takes, CutoffTest::None, CutoffTest::Below, CutoffTest::AtOrBelow,
     MissingLot::Nothing},
    {PostingSource::JobRecord, Effect::Adds, CutoffTest::Below, CutoffTest::Below, CutoffTest::Below,
     MissingLot::AddedIfPositive},
    {PostingSource::ManualAdjust, Effect::Adds, CutoffTest::AtOrBelow, CutoffTest::AtOrBelow, CutoffTest::AtOrBelow,
     MissingLot::Nothing},
    {PostingSource::ScanReturn, Effect::Adds, CutoffTest::None, CutoffTest::None, CutoffTest::None, MissingLot::Added},
    {PostingSource::Reset, Effect::Sets, CutoffTest::None, CutoffTest::None, CutoffTest::None, MissingLot::Nothing},
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
                  Quoted(session.Table(ColorTable(posting.kind), posting.database))));
  color.Bind(1, posting.name);
  if (!color.Step()) return std::nullopt;
  return ColorRow{color.Whole(0), color.Single(1), color.Single(2)};
}

StockChange ChangeOf(const Posting& posting, StockChange::Action action, std::int64_t row, float before, float after) {
  StockChange change;
  change.action = action;
  change.source = posting.source;
  change.kind = posting.kind;
  change.name = posting.name;
  change.database = posting.database;
  change.row = row;
  change.before = before;
  change.after = after;
  change.document = posting.document;
  return change;
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
  return brings && posting.lot->LotRefID > 0 &&
         !LotRefIDInUse(session, posting.kind, posting.name, posting.database, posting.lot->LotRefID);
}

PostingResult AddLot(Session& session, const StockRules& rules, const Posting& posting, const ColorRow& color) {
  const LotTarget& target = *posting.lot;
  LotRow lot;
  lot.LotRefID = KeepsReference(session, posting)
                     ? target.LotRefID
                     : NextLotRefID(session, posting.kind, posting.name, posting.database);
  if (lot.LotRefID == -1) {
    if (posting.source != PostingSource::BatchMakes) return {PostingResult::Outcome::NoLotReference, 0, -1};
    PostingResult result = PostUnlotted(session, rules, posting, color);
    result.LotRefID = -1;
    return result;
  }
  const bool comesBack = BringsLotBack(posting.source);
  lot.LotNumber = target.LotNumber;
  lot.LotLoc = target.LotLoc;
  lot.LotContID = target.LotContID;
  lot.LotDate = comesBack ? target.LotDate : session.clock.Today();
  lot.LotPrice = comesBack ? target.LotPrice : color.unitCost;
  const float quantity = RoundSingle(posting.quantity, 3);
  StockChange change = ChangeOf(posting, StockChange::Action::AddLot, 0, 0, quantity);
  change.lot = lot;
  WriteStockChange(session, change);
  return {PostingResult::Outcome::LotAdded, quantity, lot.LotRefID};
}

PostingResult PostLot(Session& session, const StockRules& rules, const Posting& posting, const ColorRow& color) {
  // What a Batch makes is a lot of its own, also beside another of the same number.
  if (posting.source != PostingSource::BatchMakes) {
    const auto lot = FindLot(session, posting.kind, posting.name, posting.database, *posting.lot);
    if (lot) return PostToLot(session, rules, posting, *lot);
  }
  const MissingLot missing = RuleOf(posting.source).missingLot;
  const bool added = missing == MissingLot::Added || (missing == MissingLot::AddedIfPositive && posting.quantity > 0);
  if (!added) return {PostingResult::Outcome::NoLot, 0, posting.lot->LotRefID};
  return AddLot(session, rules, posting, color);
}

bool GoesToUnlotted(const Session& session, const Posting& posting) {
  if (!posting.lot) return true;
  return posting.source == PostingSource::BatchMakes &&
         (session.InvLotTracking != 1 || TrimView(posting.lot->LotNumber).empty());
}

}  // namespace

std::optional<LotRow> FindLot(const Session& session, ColorKind kind, const std::string& name,
                              const std::string& database, const LotTarget& target) {
  auto lot = FindLot(session, kind, name, database, target.LotRefID);
  if (lot && !target.LotNumber.empty() && !EqualNoCase(lot->LotNumber, target.LotNumber)) return std::nullopt;
  return lot;
}

float UnlottedAfter(PostingSource source, ColorKind kind, const StockRules& rules, float before, float quantity) {
  const SourceRule& rule = RuleOf(source);
  const float after = NewQuantity(rule.effect, before, quantity);
  if (kind != ColorKind::Mix && rules.AllowNegInv) return after;
  const CutoffTest test = kind == ColorKind::Mix ? rule.unlottedMix : rule.unlottedBasic;
  return CountsAsNothing(test, after, rules.InvCutoff) ? 0 : after;
}

std::optional<float> LotAfter(PostingSource source, const StockRules& rules, float before, float quantity) {
  const SourceRule& rule = RuleOf(source);
  if (rule.effect == Effect::Sets) return std::nullopt;
  const float after = NewQuantity(rule.effect, before, quantity);
  if (CountsAsNothing(rule.lot, after, rules.InvCutoff)) return std::nullopt;
  return after;
}

PostingResult PostStock(Session& session, const StockRules& rules, const Posting& posting) {
  if (posting.source == PostingSource::BatchMakes && posting.kind != ColorKind::Mix)
    throw std::logic_error("a Batch makes Master Formulas only: " + posting.name);
  Transaction transaction(session.File());
  PostingResult result{PostingResult::Outcome::NoColor, 0, 0};
  if (const auto color = FindColor(session, posting)) {
    result = GoesToUnlotted(session, posting) ? PostUnlotted(session, rules, posting, *color)
                                              : PostLot(session, rules, posting, *color);
  }
  transaction.Commit();
  return result;
}

PostingResult PostStock(Session& session, const Posting& posting) {
  return PostStock(session, ReadStockRules(session), posting);
}

}  // namespace vellumark
