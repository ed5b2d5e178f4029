#include "core/inventory/posting.h"

#include <map>
#include <random>

#include "core/base/number.h"
#include "support/stock_lines.h"
#include "support/stock_room.h"

namespace vellumark::test {
namespace {

using Outcome = PostingResult::Outcome;
using enum PostingSource;
constexpr ColorKind kBasic = ColorKind::Basic;
constexpr ColorKind kMix = ColorKind::Mix;

// A quantity by which this source moves stock, and what it adds to it.
struct Movement {
  float quantity;
  double adds;
};
Movement MovementOf(PostingSource source) {
  switch (source) {
    case BatchTakes:
    case BatchTakesAgain:
    case BatchUnmakes:
      return {0.3F, -0.3};
    case BatchReturns:
    case BatchMakes:
    case ScanReturn:
      return {0.3F, 0.3};
    case JobRecord:
    case ManualAdjust:
      return {-0.3F, -0.3};
    case BatchRestores:
    case Reset:
      break;
  }
  return {0, 0};
}

// What is left of six results, three around a cutoff of 0.5 and three around one of 0: k kept, 0 nothing, d the lot is
// deleted, - not tried.
struct TableRow {
  PostingSource source;
  ColorKind kind;
  bool allowNegInv;
  std::string_view unlotted;
  std::string_view lot;
};
constexpr std::array kCutoffs{0.5F, 0.5F, 0.5F, 0.0F, 0.0F, 0.0F};
constexpr std::array kResults{0.4, 0.5, 0.6, -0.1, 0.0, 0.1};

const std::vector<TableRow> kTable{
    {BatchTakes, kBasic, false, "00k00k", "ddkddk"},
    {BatchTakes, kBasic, true, "kkkkkk", "ddkddk"},
    {BatchTakes, kMix, false, "00k00k", "ddkddk"},
    {BatchTakes, kMix, true, "00k00k", "ddkddk"},
    {BatchTakesAgain, kBasic, false, "00k00k", "dkkdkk"},
    {BatchTakesAgain, kBasic, true, "kkkkkk", "dkkdkk"},
    {BatchTakesAgain, kMix, false, "0kk0kk", "dkkdkk"},
    {BatchTakesAgain, kMix, true, "0kk0kk", "dkkdkk"},
    {BatchReturns, kBasic, false, "kkk-kk", "kkk-kk"},
    {BatchReturns, kBasic, true, "kkkkkk", "kkk-kk"},
    {BatchReturns, kMix, false, "kkk-kk", "kkk-kk"},
    {BatchReturns, kMix, true, "kkk-kk", "kkk-kk"},
    {BatchMakes, kMix, false, "kkk-kk", "------"},
    {BatchMakes, kMix, true, "kkk-kk", "------"},
    {BatchUnmakes, kMix, false, "0kk0kk", "ddkddk"},
    {BatchUnmakes, kMix, true, "0kk0kk", "ddkddk"},
    {JobRecord, kBasic, false, "0kk0kk", "dkkdkk"},
    {JobRecord, kBasic, true, "kkkkkk", "dkkdkk"},
    {JobRecord, kMix, false, "0kk0kk", "dkkdkk"},
    {JobRecord, kMix, true, "0kk0kk", "dkkdkk"},
    {ManualAdjust, kBasic, false, "00k00k", "ddkddk"},
    {ManualAdjust, kBasic, true, "kkkkkk", "ddkddk"},
    {ManualAdjust, kMix, false, "00k00k", "ddkddk"},
    {ManualAdjust, kMix, true, "00k00k", "ddkddk"},
    {ScanReturn, kBasic, false, "kkkkkk", "kkk-kk"},
    {ScanReturn, kBasic, true, "kkkkkk", "kkk-kk"},
    {ScanReturn, kMix, false, "kkk-kk", "kkk-kk"},
    {ScanReturn, kMix, true, "kkk-kk", "kkk-kk"},
    {Reset, kBasic, false, "kkk-kk", "dddddd"},
    {Reset, kBasic, true, "kkkkkk", "dddddd"},
    {Reset, kMix, false, "kkk-kk", "dddddd"},
    {Reset, kMix, true, "kkk-kk", "dddddd"},
};

TEST(PostingTable, EverySourceComparesInItsOwnWay) {
  StockRoom room;
  room.Breaks("Quantities");
  int n = 0;
  Transaction transaction(room.session.File());
  for (const TableRow& row : kTable) {
    for (std::size_t i = 0; i < kResults.size(); ++i) {
      const StockRules rules{kCutoffs[i], row.allowNegInv};
      const Movement move = MovementOf(row.source);
      const float before = RoundSingle(kResults[i] - move.adds, 3);
      const float wanted = RoundSingle(kResults[i], 3);
      const std::string where =
          fmt::format("source {} kind {} negative {} cutoff {} result {}", static_cast<int>(row.source),
                      static_cast<int>(row.kind), row.allowNegInv, kCutoffs[i], kResults[i]);
      const std::string name = "C" + std::to_string(++n);
      Posting posting{row.source, row.kind, name, {}, row.source == Reset ? wanted : move.quantity, {}};
      room.Color(row.kind, name, before);
      room.Lot(row.kind, name, 7, before);

      if (row.unlotted[i] != '-') {
        const PostingResult result = PostStock(room.session, rules, posting);
        const float left = row.unlotted[i] == 'k' ? wanted : 0.0F;
        EXPECT_EQ(result.outcome, Outcome::Posted) << where;
        EXPECT_EQ(result.quantity, left) << where;
        EXPECT_EQ(room.Inventory(row.kind, name), Value(left)) << where;
        EXPECT_EQ(room.LotQty(row.kind, name, 7), Value(before)) << where;
      }
      if (row.lot[i] != '-') {
        const Value inventory = room.Inventory(row.kind, name);
        posting.lot = LotTarget{.LotRefID = 7};
        const PostingResult result = PostStock(room.session, rules, posting);
        const bool kept = row.lot[i] == 'k';
        EXPECT_EQ(result.outcome, kept ? Outcome::Posted : Outcome::LotDeleted) << where;
        EXPECT_EQ(room.LotQty(row.kind, name, 7), kept ? Value(wanted) : Value()) << where;
        EXPECT_EQ(room.Inventory(row.kind, name), inventory) << where;
      }
    }
  }
  transaction.Commit();
}

TEST(Posting, WorkedExamples) {
  struct Case {
    std::string name;
    PostingSource source;
    ColorKind kind;
    StockRules rules;
    float before;
    float quantity;
    float after;
  };
  const std::vector<Case> cases{
      {"0.4 under the cutoff stays under it", BatchTakes, kBasic, {0.5F, false}, 0.4F, 0.1F, 0},
      {"with negative inventory it is kept", BatchTakes, kBasic, {0.5F, true}, 0.4F, 0.1F, 0.3F},
      {"below zero", BatchTakes, kBasic, {0.5F, true}, 0.3F, 1, -0.7F},
      {"a formula never", BatchTakes, kMix, {0.5F, true}, 0.3F, 1, 0},
      {"nor by a job", JobRecord, kMix, {0, true}, 0.3F, -1, 0},
      {"three decimals", ManualAdjust, kBasic, {0.5F, false}, 1.1F, 2.2F, 3.3F},
      {"no residue", BatchTakes, kBasic, {0, true}, 0.3F, 0.1F, 0.2F},
      {"nothing left is nothing", BatchTakes, kBasic, {0, true}, 0.3F, 0.3F, 0},
  };
  StockRoom room;
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const Case& one = cases[i];
    const std::string name = "C" + std::to_string(i);
    room.Color(one.kind, name, one.before);
    PostStock(room.session, one.rules, {one.source, one.kind, name, {}, one.quantity, {}});
    EXPECT_EQ(room.Inventory(one.kind, name), Value(one.after)) << one.name;
  }
}

TEST(Posting, ALotOfExactlyTheCutoffStaysAfterAScanAndGoesByHand) {
  StockRoom room;
  room.Color(kBasic, "RED", 0);
  room.Lot(kBasic, "RED", 1, 0.2F);
  Posting posting{ScanReturn, kBasic, "RED", {}, 0.3F, LotTarget{.LotRefID = 1}};
  EXPECT_EQ(PostStock(room.session, posting).quantity, 0.5F);
  posting.source = ManualAdjust;
  posting.quantity = 0;
  EXPECT_EQ(PostStock(room.session, posting).outcome, Outcome::LotDeleted);
}

TEST(Posting, WhatIsMissingStaysMissing) {
  StockRoom room;
  room.Breaks("LotColors");
  room.Color(kBasic, "RED", 5);
  room.Lot(kMix, "ORPHAN", 1, 5);
  for (const PostingSource source : {BatchTakes, BatchTakesAgain, JobRecord, ManualAdjust, ScanReturn, Reset}) {
    EXPECT_EQ(PostStock(room.session, {source, kMix, "NONE", {}, 1, {}}).outcome, Outcome::NoColor);
    EXPECT_EQ(PostStock(room.session, {source, kMix, "ORPHAN", {}, 1, LotTarget{.LotRefID = 1}}).outcome,
              Outcome::NoColor);
  }
  for (const PostingSource source : {BatchTakes, BatchTakesAgain, BatchUnmakes, ManualAdjust, Reset})
    EXPECT_EQ(PostStock(room.session, {source, kBasic, "RED", {}, 1, LotTarget{.LotRefID = 9}}).outcome,
              Outcome::NoLot);
  // An issue from a lot that is gone makes none, nor does an issue of nothing.
  for (const float quantity : {-1.0F, 0.0F})
    EXPECT_EQ(PostStock(room.session, {JobRecord, kBasic, "RED", {}, quantity, LotTarget{.LotRefID = 9}}).outcome,
              Outcome::NoLot);
  EXPECT_EQ(room.Inventory(kBasic, "RED"), Value(5.0F));
  EXPECT_EQ(room.LotQty(kMix, "ORPHAN", 1), Value(5.0F));
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Basic_LotInv").Whole(), 0);
  EXPECT_THROW(PostStock(room.session, {BatchMakes, kBasic, "RED", {}, 1, {}}), std::logic_error);
}

TEST(Posting, NewLotsAndWhereTheirFieldsComeFrom) {
  StockRoom room;
  room.Color(kBasic, "RED", 0, {{"LotRefID", 4}, {"PurchaseCost", 2.345F}});
  room.Color(kMix, "PURPLE", 0, {{"LotRefID", 4}, {"BasicCost", 1.236F}, {"PurchaseCost", 9.0F}});
  const LotTarget target{77, "N1", "SHELF 2", "K9", DateTime{2025, 12, 24}, 6.666F};
  struct Case {
    std::string name;
    PostingSource source;
    ColorKind kind;
    std::int32_t ref;
    float price;
    std::string date;
  };
  const std::vector<Case> cases{
      {"a Batch's colour", BatchMakes, kMix, 5, 1.24F, "2026-03-10 00:00:00"},
      {"a second lot of the same number", BatchMakes, kMix, 6, 1.24F, "2026-03-10 00:00:00"},
      {"a return from a job", JobRecord, kMix, 77, 6.67F, "2025-12-24 00:00:00"},
      {"a return from a job", JobRecord, kBasic, 77, 6.67F, "2025-12-24 00:00:00"},
      {"a line of an opened Batch", BatchReturns, kBasic, 76, 6.67F, "2025-12-24 00:00:00"},
      {"a scanned formula", ScanReturn, kMix, 7, 1.24F, "2026-03-10 00:00:00"},
  };
  for (const Case& one : cases) {
    const std::string name = one.kind == kMix ? "PURPLE" : "RED";
    LotTarget scanned = target;
    if (one.source == ScanReturn) scanned.LotRefID = 78;
    if (one.source == BatchReturns) scanned.LotRefID = 76;
    const PostingResult result = PostStock(room.session, {one.source, one.kind, name, {}, 2.5F, scanned});
    ASSERT_EQ(result.outcome, Outcome::LotAdded) << one.name;
    EXPECT_EQ(result.LotRefID, one.ref) << one.name;
    const auto lot = FindLot(room.session, one.kind, name, {}, one.ref);
    ASSERT_TRUE(lot) << one.name;
    EXPECT_EQ(lot->LotQty, 2.5F) << one.name;
    EXPECT_EQ(lot->LotNumber + "/" + lot->LotLoc + "/" + lot->LotContID, "N1/SHELF 2/K9") << one.name;
    EXPECT_EQ(lot->LotPrice, one.price) << one.name;
    EXPECT_EQ(lot->LotDate->ToText(), one.date) << one.name;
    EXPECT_FALSE(lot->LotConsignment) << one.name;
  }
  // The label of a Basic Color brings its reference, unless it brings none.
  LotTarget label = target;
  label.LotRefID = 31;
  EXPECT_EQ(PostStock(room.session, {ScanReturn, kBasic, "RED", {}, 1, label}).LotRefID, 31);
  label.LotRefID = 0;
  EXPECT_EQ(PostStock(room.session, {ScanReturn, kBasic, "RED", {}, 1, label}).LotRefID, 5);

  // Without a lot number, or with Lotted Inventory off, what a Batch makes is unlotted.
  LotTarget unnamed = target;
  unnamed.LotNumber = " ";
  EXPECT_EQ(PostStock(room.session, {BatchMakes, kMix, "PURPLE", {}, 1, unnamed}).LotRefID, 0);
  room.session.InvLotTracking = 0;
  EXPECT_EQ(PostStock(room.session, {BatchMakes, kMix, "PURPLE", {}, 1, target}).quantity, 2.0F);
  EXPECT_EQ(room.Inventory(kMix, "PURPLE"), Value(2.0F));
}

TEST(Posting, IsToldOnCommitAndUndoneWithItsTransaction) {
  StockRoom room;
  room.Color(kMix, "PURPLE", 8);
  std::vector<Change> told;
  const auto subscription = room.session.changes.Subscribe(
      [&told](const std::vector<Change>& changes) { told.insert(told.end(), changes.begin(), changes.end()); });
  {
    Transaction outer(room.session.File());
    PostStock(room.session, {BatchTakes, kMix, "PURPLE", {}, 3, {}});
    PostStock(room.session, {BatchMakes, kMix, "PURPLE", {}, 3, LotTarget{.LotNumber = "A"}});
    EXPECT_TRUE(told.empty());
  }
  EXPECT_TRUE(told.empty());
  EXPECT_EQ(TotalStock(room.session, kMix, "PURPLE"), 8.0F);
  EXPECT_EQ(room.Scalar("SELECT LotRefID FROM INK_Mix").Whole(), 0);
  PostStock(room.session, {BatchTakes, kMix, "PURPLE", {}, 3, {}});
  EXPECT_EQ(told, (std::vector<Change>{{Change::Kind::Mix, "INK", "PURPLE", Change::What::Updated, {}}}));

  // A lot number that its field cannot hold: nothing stays, the reference neither.
  EXPECT_THROW(
      PostStock(room.session, {BatchMakes, kMix, "PURPLE", {}, 3, LotTarget{.LotNumber = std::string(31, 'X')}}),
      BadValue);
  EXPECT_EQ(room.Scalar("SELECT LotRefID FROM INK_Mix").Whole(), 0);
}

TEST(StockRules, AsSet) {
  StockRoom room;
  struct Case {
    std::string_view text;
    int unit;
    float cutoff;
  };
  for (const Case& one : std::vector<Case>{{"0.5", 1, 0.5F},
                                           {"0", 1, 0},
                                           {" 2.25 ", 3, 2.25F},
                                           {"-1", 1, 0},
                                           {"abc", 1, 0.5F},
                                           {"", 2, 0.227F},
                                           {"1,5", 3, 226.796F},
                                           {"x", 4, 8}}) {
    room.session.UMI = one.unit;
    SetSupportValue(room.session, "InvCutoff", one.text);
    EXPECT_EQ(ReadStockRules(room.session).InvCutoff, one.cutoff) << one.text;
  }
  EXPECT_FALSE(ReadStockRules(room.session).AllowNegInv);
  SetSupportValue(room.session, "AllowNegInv", "1");
  EXPECT_TRUE(ReadStockRules(room.session).AllowNegInv);
}

// A plain ledger in whole thousandths beside the real one.
struct ModelColor {
  long inventory = 0;
  std::map<std::int32_t, long> lots;
  std::map<std::int32_t, float> prices;  // also of lots that are gone
  std::int32_t counter = 0;
};

class Ledger {
 public:
  explicit Ledger(unsigned seed) : random_(seed) {}

  long Random(long low, long high) { return std::uniform_int_distribution<long>(low, high)(random_); }

  // One posting to both; what it did is compared at once.
  void Step(StockRoom& room, const StockRules& rules, const std::string& name, ColorKind kind) {
    static constexpr std::array kSources{BatchTakes,   BatchReturns, BatchTakesAgain, JobRecord,
                                         ManualAdjust, ScanReturn,   BatchMakes,      BatchUnmakes};
    PostingSource source = kSources[static_cast<std::size_t>(Random(0, kind == kMix ? 7 : 5))];
    ModelColor& color = model[{kind, name}];
    long quantity = Random(1, 3000);
    if ((source == JobRecord || source == ManualAdjust) && Random(0, 1) == 0) quantity = -quantity;
    if (Random(0, 40) == 0) {
      source = Reset;
      quantity = Random(0, 5000);
    }
    Posting posting{source, kind, name, {}, RoundSingle(static_cast<double>(quantity) / 1000, 3), {}};
    if (Random(0, 1) == 0) posting.lot = LotTarget{static_cast<std::int32_t>(Random(1, 12)), "N", "", "", {}, 1.37F};
    posting.remove = posting.lot && source == BatchTakes && Random(0, 5) == 0;
    Book(color, posting, quantity, std::lround(static_cast<double>(rules.InvCutoff) * 1000), rules.AllowNegInv);
    PostStock(room.session, rules, posting);
  }

  std::map<std::pair<ColorKind, std::string>, ModelColor> model;

 private:
  static bool Gone(PostingSource source, bool lot, ColorKind kind, bool negative, long result, long cutoff) {
    if (!lot && kind == kBasic && negative) return false;
    if (source == ScanReturn || source == BatchMakes || source == BatchReturns || source == Reset) return false;
    const bool atToo = source == BatchTakes || source == ManualAdjust || (source == BatchUnmakes && lot) ||
                       (source == BatchTakesAgain && !lot && kind == kBasic);
    return result < cutoff || (atToo && result == cutoff);
  }

  static void Book(ModelColor& color, const Posting& posting, long quantity, long cutoff, bool negative) {
    const PostingSource source = posting.source;
    const bool takes = source == BatchTakes || source == BatchTakesAgain || source == BatchUnmakes;
    const long adds = takes ? -quantity : quantity;
    if (!posting.lot) {
      const long result = source == Reset ? quantity : color.inventory + adds;
      color.inventory = Gone(source, false, posting.kind, negative, result, cutoff) ? 0 : result;
      return;
    }
    std::int32_t ref = posting.lot->LotRefID;
    const bool there = color.lots.contains(ref) && source != BatchMakes;
    if (there && source == Reset) {
      color.lots.erase(ref);
    } else if (there) {
      color.lots[ref] += adds;
      if (posting.remove || Gone(source, true, posting.kind, negative, color.lots[ref], cutoff)) color.lots.erase(ref);
    } else if (source == BatchMakes || source == ScanReturn || source == BatchReturns ||
               (source == JobRecord && quantity > 0)) {
      if (source == BatchMakes || (source == ScanReturn && posting.kind == kMix)) {
        do ++color.counter;
        while (color.lots.contains(color.counter));
        ref = color.counter;
      }
      color.lots[ref] = quantity;
      const bool brought = source == JobRecord || source == BatchReturns;
      color.prices[ref] = brought ? posting.lot->LotPrice : posting.kind == kMix ? 3.0F : 4.0F;
    }
  }

  std::mt19937 random_;
};

float ValueOf(const ModelColor& color) {
  float value = 0;
  for (const auto& [ref, quantity] : color.lots)
    value = static_cast<float>(value + static_cast<double>(RoundSingle(static_cast<double>(quantity) / 1000, 3)) *
                                           static_cast<double>(color.prices.at(ref)));
  return RoundSingle(value, 2);
}

// What the history's lines add up to: under 0 Unlotted Inventory, under its reference each lot that ever was.
void ExpectHistoryAddsUp(StockRoom& room, ColorKind kind, const std::string& name, const ModelColor& color) {
  std::map<std::int32_t, double> sums;
  std::map<std::int32_t, float> results;
  for (const StockLine& line : ListStockHistory(room.session, {.name = name, .kind = kind})) {
    sums[line.LotRefID] += line.change;
    EXPECT_EQ(RoundSingle(sums[line.LotRefID], 3), line.result) << name << " line " << line.id;
    results[line.LotRefID] = line.result;
  }
  EXPECT_EQ(results[0], RoundSingle(static_cast<double>(color.inventory) / 1000, 3)) << name;
  for (const auto& [ref, result] : results) {
    if (ref == 0) continue;
    const long left = color.lots.contains(ref) ? color.lots.at(ref) : 0;
    EXPECT_EQ(result, RoundSingle(static_cast<double>(left) / 1000, 3)) << name << " lot " << ref;
  }
  for (const auto& [ref, quantity] : color.lots) EXPECT_TRUE(results.contains(ref)) << name << " lot " << ref;
}

TEST(PostingProperty, TheTablesAndTheHistoryAgreeWithAPlainLedger) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    StockRoom room;
    Ledger ledger(seed);
    const std::vector<std::pair<ColorKind, std::string>> colors{
        {kBasic, "RED"}, {kBasic, "BLUE"}, {kMix, "PURPLE"}, {kMix, "RED"}};
    for (const auto& [kind, name] : colors) room.Color(kind, name, 0);
    const StockRules rules{std::array{0.5F, 0.0F, 0.227F, 0.5F}[seed - 1], seed % 2 == 0};
    Transaction transaction(room.session.File());
    for (int i = 0; i < 4000; ++i) {
      const auto& [kind, name] = colors[static_cast<std::size_t>(ledger.Random(0, 3))];
      ledger.Step(room, rules, name, kind);
      const ModelColor& expected = ledger.model[{kind, name}];
      std::map<std::int32_t, long> lots;
      for (const LotRow& lot : LotsOf(room.session, kind, name)) {
        lots[lot.LotRefID] = std::lround(static_cast<double>(lot.LotQty) * 1000);
        ASSERT_EQ(lot.LotQty, RoundSingle(static_cast<double>(lots[lot.LotRefID]) / 1000, 3));
      }
      ASSERT_EQ(lots, expected.lots) << "seed " << seed << " step " << i;
      ASSERT_EQ(room.Inventory(kind, name), Value(RoundSingle(static_cast<double>(expected.inventory) / 1000, 3)))
          << "seed " << seed << " step " << i;
      long sum = 0;
      for (const auto& [ref, quantity] : lots) sum += quantity;
      ASSERT_EQ(TotalStock(room.session, kind, name),
                RoundSingle(static_cast<double>(expected.inventory + sum) / 1000, 3));
      ASSERT_TRUE(expected.inventory >= 0 || (kind == kBasic && rules.AllowNegInv));
      ASSERT_EQ(LotValue(room.session, kind, name), ValueOf(expected)) << "seed " << seed << " step " << i;
    }
    for (const auto& [kind, name] : colors) ExpectHistoryAddsUp(room, kind, name, ledger.model[{kind, name}]);
    transaction.Commit();
  }
}

}  // namespace
}  // namespace vellumark::test
