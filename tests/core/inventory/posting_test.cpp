#include "core/inventory/posting.h"

#include <map>
#include <random>

#include "core/base/number.h"
#include "core/base/text.h"
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
  const test::Arranging arranging;
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
        posting.place = {.LotRefID = 7};
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
  Posting posting{ScanReturn, kBasic, "RED", {}, 0.3F, StockPlace{.LotRefID = 1}};
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
    EXPECT_EQ(PostStock(room.session, {source, kMix, "ORPHAN", {}, 1, StockPlace{.LotRefID = 1}}).outcome,
              Outcome::NoColor);
  }
  for (const PostingSource source : {BatchTakes, BatchTakesAgain, BatchUnmakes, ManualAdjust, Reset})
    EXPECT_EQ(PostStock(room.session, {source, kBasic, "RED", {}, 1, StockPlace{.LotRefID = 9}}).outcome,
              Outcome::NoLot);
  // An issue from a lot that is gone makes none, nor does an issue of nothing.
  for (const float quantity : {-1.0F, 0.0F})
    EXPECT_EQ(PostStock(room.session, {JobRecord, kBasic, "RED", {}, quantity, StockPlace{.LotRefID = 9}}).outcome,
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
  const StockPlace target{77, "N1", "SHELF 2", "K9", DateTime{2025, 12, 24}, 6.666F};
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
      {"a return from a job", JobRecord, kMix, 77, 1.24F, "2025-12-24 00:00:00"},
      {"a return from a job", JobRecord, kBasic, 77, 2.35F, "2025-12-24 00:00:00"},
      {"a line of an opened Batch", BatchReturns, kBasic, 76, 6.67F, "2025-12-24 00:00:00"},
      {"a scanned formula", ScanReturn, kMix, 7, 1.24F, "2026-03-10 00:00:00"},
  };
  for (const Case& one : cases) {
    const std::string name = one.kind == kMix ? "PURPLE" : "RED";
    StockPlace scanned = target;
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
  // The label of a Basic Color brings its reference; without one the number finds the lot.
  StockPlace label = target;
  label.LotRefID = 31;
  EXPECT_EQ(PostStock(room.session, {ScanReturn, kBasic, "RED", {}, 1, label}).LotRefID, 31);
  label.LotRefID = 0;
  EXPECT_EQ(PostStock(room.session, {ScanReturn, kBasic, "RED", {}, 1, label}).LotRefID, 31);

  // Without a lot number, or with Lotted Inventory off, what a Batch makes is unlotted.
  StockPlace made = target;
  made.LotRefID = 0;
  for (const char* number : {" ", " unlotted inv."}) {
    made.LotNumber = number;
    EXPECT_EQ(PostStock(room.session, {BatchMakes, kMix, "PURPLE", {}, 1, made}).LotRefID, 0);
  }
  room.session.InvLotTracking = 0;
  made.LotNumber = "N1";
  EXPECT_EQ(PostStock(room.session, {BatchMakes, kMix, "PURPLE", {}, 1, made}).quantity, 3.0F);
  EXPECT_EQ(room.Inventory(kMix, "PURPLE"), Value(3.0F));
}

// A container that is scanned at another shelf: the lot has moved, and who took from it knows.
TEST(Posting, AScannedLotMovesWithItsCopies) {
  StockRoom room;
  room.Color(kBasic, "RED", 0);
  room.Lot(kBasic, "RED", 3, 5, {{"LotLoc", "SHELF 1"}, {"LotContID", "K1"}});
  room.AddRow(schema::JobRecords, {{"JobNumber", "J1"},
                                   {"Color_Name", "RED"},
                                   {"Database", "INK"},
                                   {"ItemType", 1},
                                   {"BatchNo", 1000001},
                                   {"LotRefID", 3},
                                   {"LotNumber", "L3"},
                                   {"LotLoc", "SHELF 1"}});
  room.session.File().Execute("UPDATE FileInfo SET ItemNumber = 2");
  const StockPlace scanned{.LotNumber = "l3", .LotLoc = "SHELF 2", .LotContID = {}};
  Posting posting{ScanReturn, kBasic, "RED", "ink", 2, scanned};
  PostStock(room.session, posting);
  EXPECT_EQ(FindLot(room.session, kBasic, "RED", {}, 3)->LotLoc, "SHELF 1") << "not asked to";
  posting.moveLot = true;
  PostStock(room.session, posting);
  const auto lot = FindLot(room.session, kBasic, "RED", {}, 3);
  EXPECT_EQ(lot->LotLoc + "/" + lot->LotContID, "SHELF 2/K1");
  EXPECT_EQ(lot->LotQty, 9);
  EXPECT_EQ(room.Scalar("SELECT LotLoc FROM JobRecords").Text(), "SHELF 2");
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
    PostStock(room.session, {BatchMakes, kMix, "PURPLE", {}, 3, StockPlace{.LotNumber = "A"}});
    EXPECT_TRUE(told.empty());
  }
  EXPECT_TRUE(told.empty());
  EXPECT_EQ(TotalStock(room.session, kMix, "PURPLE"), 8.0F);
  EXPECT_EQ(room.Scalar("SELECT LotRefID FROM INK_Mix").Whole(), 0);
  PostStock(room.session, {BatchTakes, kMix, "PURPLE", {}, 3, {}});
  EXPECT_EQ(told, (std::vector<Change>{{Change::Kind::Mix, "INK", "PURPLE", Change::What::Updated, {}}}));

  // A lot number that its field cannot hold: nothing stays, the reference neither.
  EXPECT_THROW(
      PostStock(room.session, {BatchMakes, kMix, "PURPLE", {}, 3, StockPlace{.LotNumber = std::string(31, 'X')}}),
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
    room.session.support->settings.SetSupportValue("InvCutoff", one.text);
    EXPECT_EQ(ReadStockRules(room.session).InvCutoff, one.cutoff) << one.text;
  }
  EXPECT_FALSE(ReadStockRules(room.session).AllowNegInv);
  room.session.support->settings.SetSupportValue("AllowNegInv", "1");
  EXPECT_TRUE(ReadStockRules(room.session).AllowNegInv);
}

// A plain ledger in whole thousandths beside the real one: what the ink room keeps on a slate for each colour.
struct ModelLot {
  std::string number;
  std::string place;  // location and container
  long quantity = 0;
  float price = 0;
  bool consigned = false;
  bool operator==(const ModelLot&) const = default;
};
struct ModelColor {
  long inventory = 0;
  std::map<std::int32_t, ModelLot> lots;
  std::int32_t counter = 0;
};
struct ColorKey {
  std::string database;
  ColorKind kind;
  std::string name;
  auto operator<=>(const ColorKey&) const = default;
};

class Ledger {
 public:
  Ledger(unsigned seed, StockRoom& room, const StockRules& rules) : random_(seed), room_(room), rules_(rules) {}

  long Random(long low, long high) { return std::uniform_int_distribution<long>(low, high)(random_); }
  bool OneIn(long n) { return Random(1, n) == 1; }

  // One posting to both; what it answers is compared at once.
  void Step(const ColorKey& key) {
    const Posting posting = Draw(key);
    ModelColor& color = model[key];
    SCOPED_TRACE(testing::Message() << "source " << static_cast<int>(posting.source) << " ref "
                                    << posting.place.LotRefID << " number " << posting.place.LotNumber << " tracking "
                                    << room_.session.InvLotTracking);
    const Outcome expected = posting.database == "GONE" ? Outcome::NoDatabase : Book(color, posting);
    const PostingResult result = PostStock(room_.session, rules_, posting);
    EXPECT_EQ(result.outcome, expected);
    ++outcomes[expected];
    if (!color.lots.empty() && OneIn(15)) Consign(key, color);
  }

  std::map<ColorKey, ModelColor> model;
  std::map<Outcome, int> outcomes;

 private:
  template <class T, std::size_t n>
  T One(const std::array<T, n>& of) {
    return of[static_cast<std::size_t>(Random(0, n - 1))];
  }

  Posting Draw(const ColorKey& key) {
    static constexpr std::array kSources{BatchTakes,   BatchReturns, BatchTakesAgain, JobRecord,
                                         ManualAdjust, ScanReturn,   BatchMakes,      BatchUnmakes};
    static constexpr std::array kNumbers{"N", "N", "n ", "M", "O", "", "Unlotted Inv.", " UNLOTTED INV."};
    static constexpr std::array kShelves{"", "S1", "S2"};
    Posting posting;
    posting.source = OneIn(40) ? Reset : kSources[static_cast<std::size_t>(Random(0, key.kind == kMix ? 7 : 5))];
    posting.kind = key.kind;
    posting.name = key.name;
    posting.database = key.database == room_.session.CurrentDatabase && OneIn(2) ? "" : key.database;
    if (OneIn(3)) posting.database = ToLower(posting.database);
    if (OneIn(100)) posting.database = "GONE";
    quantity_ = Random(1, 3000);
    if ((posting.source == JobRecord || posting.source == ManualAdjust) && OneIn(2)) quantity_ = -quantity_;
    posting.quantity = RoundSingle(static_cast<double>(quantity_) / 1000, 3);
    if (OneIn(3)) return posting;
    static constexpr std::array kOutside{-1, 999999, 1000031};
    posting.place.LotRefID = static_cast<std::int32_t>(OneIn(2) ? 0 : OneIn(20) ? One(kOutside) : Random(1, 12));
    posting.place.LotNumber = One(kNumbers);
    if (OneIn(2)) posting.place.LotLoc = One(kShelves);
    if (OneIn(2)) posting.place.LotContID = One(kShelves);
    posting.place.LotPrice = 1.37F;
    posting.moveLot = OneIn(2);
    posting.remove = posting.source == BatchTakes && OneIn(6);
    return posting;
  }

  static std::string ToLower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(c));
    return text;
  }

  void Consign(const ColorKey& key, ModelColor& color) {
    auto lot = std::next(color.lots.begin(), Random(0, static_cast<long>(color.lots.size()) - 1));
    lot->second.consigned = !lot->second.consigned;
    room_.session.File()
        .Prepare(fmt::format("UPDATE {} SET LotConsignment = ?1 WHERE LotCName = ?2 AND LotRefID = ?3",
                             room_.session.QuotedTable(LotTable(key.kind), key.database)))
        .Bind(1, lot->second.consigned ? 1 : 0)
        .Bind(2, key.name)
        .Bind(3, lot->first)
        .Run();
  }

  bool Gone(PostingSource source, bool lot, ColorKind kind, long result) const {
    const long cutoff = std::lround(static_cast<double>(rules_.InvCutoff) * 1000);
    if (!lot && kind == kBasic && rules_.AllowNegInv) return false;
    if (source == ScanReturn || source == BatchMakes || source == BatchReturns || source == Reset) return false;
    const bool atToo = source == BatchTakes || source == ManualAdjust || (source == BatchUnmakes && lot) ||
                       (source == BatchTakesAgain && !lot && kind == kBasic);
    return result < cutoff || (atToo && result == cutoff);
  }

  Outcome Book(ModelColor& color, const Posting& posting) const {
    const PostingSource source = posting.source;
    const bool takes = source == BatchTakes || source == BatchTakesAgain || source == BatchUnmakes;
    const long adds = takes ? -quantity_ : quantity_;
    const std::string number = ToLower(Trim(posting.place.LotNumber));
    const std::int32_t ref = posting.place.LotRefID;
    bool unlotted = number == "unlotted inv." || (number.empty() && ref == 0);
    // With lots switched off only what a Batch has in a lot still lies there, and a lot can be cleared away.
    const bool cuts = source != JobRecord || adds < 0;
    if (room_.session.InvLotTracking == 0 && source != Reset)
      unlotted = unlotted || ref == 0 || !(source == BatchMakes || source == BatchUnmakes || source == BatchTakesAgain);
    if (unlotted) {
      const long result = source == Reset ? quantity_ : color.inventory + adds;
      color.inventory = cuts && Gone(source, false, posting.kind, result) ? 0 : result;
      return Outcome::Posted;
    }
    const bool possible = ref >= 0 && ref <= 999998;
    if (!possible && source != BatchReturns) return Outcome::BadReference;
    const bool issues = source == BatchTakes || (source == JobRecord && adds < 0);
    bool consigned = false;
    for (auto& [has, lot] : color.lots) {
      const bool same = ToLower(lot.number) == number;
      if (ref == 0 ? source == BatchMakes || !same : has != ref || (!number.empty() && !same)) continue;
      consigned = consigned || lot.consigned;
      if (issues && lot.consigned) continue;
      if (source == Reset || posting.remove ||
          (cuts && Gone(source, true, posting.kind, lot.quantity + adds))) {
        color.lots.erase(has);
        return Outcome::LotDeleted;
      }
      lot.quantity += adds;
      if (posting.moveLot) {
        const auto slash = lot.place.find('/');
        lot.place = posting.place.LotLoc.value_or(lot.place.substr(0, slash)) + "/" +
                    posting.place.LotContID.value_or(lot.place.substr(slash + 1));
      }
      return Outcome::Posted;
    }
    if (consigned) return Outcome::Consigned;
    const bool comesBack = source == BatchReturns || (source == JobRecord && adds > 0);
    if ((!comesBack && source != BatchMakes && source != ScanReturn) || number.empty()) return Outcome::NoLot;
    std::int32_t granted = ref;
    const bool brings = comesBack || (source == ScanReturn && posting.kind == kBasic);
    if (!brings || ref == 0 || !possible || color.lots.contains(ref)) {
      do ++color.counter;
      while (color.lots.contains(color.counter));
      granted = color.counter;
    }
    const float price = source == BatchReturns ? posting.place.LotPrice : posting.kind == kMix ? 3.0F : 4.0F;
    color.lots[granted] = {Trim(posting.place.LotNumber),
                           posting.place.LotLoc.value_or("") + "/" + posting.place.LotContID.value_or(""), quantity_,
                           price, false};
    return Outcome::LotAdded;
  }

  std::mt19937 random_;
  StockRoom& room_;
  const StockRules rules_;
  long quantity_ = 0;  // of the posting, in thousandths
};

float ValueOf(const ModelColor& color) {
  float value = 0;
  for (const auto& [ref, lot] : color.lots)
    value = static_cast<float>(value + static_cast<double>(RoundSingle(static_cast<double>(lot.quantity) / 1000, 3)) *
                                           static_cast<double>(lot.price));
  return RoundSingle(value, 2);
}

// What the history's lines add up to: under 0 Unlotted Inventory, under its reference each lot that ever was.
void ExpectHistoryAddsUp(StockRoom& room, const ColorKey& key, const ModelColor& color) {
  std::map<std::int32_t, double> sums;
  std::map<std::int32_t, float> results;
  room.session.CurrentDatabase = key.database;
  for (const StockLine& line : ListStockHistory(room.session, {.name = key.name, .kind = key.kind})) {
    sums[line.LotRefID] += line.change;
    EXPECT_EQ(RoundSingle(sums[line.LotRefID], 3), line.result) << key.name << " line " << line.id;
    results[line.LotRefID] = line.result;
  }
  EXPECT_EQ(results[0], RoundSingle(static_cast<double>(color.inventory) / 1000, 3)) << key.name;
  for (const auto& [ref, result] : results) {
    if (ref == 0) continue;
    const long left = color.lots.contains(ref) ? color.lots.at(ref).quantity : 0;
    EXPECT_EQ(result, RoundSingle(static_cast<double>(left) / 1000, 3)) << key.name << " lot " << ref;
  }
  for (const auto& [ref, lot] : color.lots) EXPECT_TRUE(results.contains(ref)) << key.name << " lot " << ref;
}

TEST(PostingProperty, TheTablesAndTheHistoryAgreeWithAPlainLedger) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    StockRoom room;
    Session& session = room.session;
    CreateEmptyDatabase(session.File(), "LAB");
    session.databaseList = {"INK", "LAB"};
    const StockRules rules{std::array{0.5F, 0.0F, 0.227F, 0.5F}[seed - 1], seed % 2 == 0};
    Ledger ledger(seed, room, rules);
    std::vector<ColorKey> colors;
    for (const char* database : {"INK", "LAB"}) {
      session.CurrentDatabase = database;
      for (const auto& [kind, name] : {std::pair{kBasic, "RED"}, {kBasic, "BLUE"}, {kMix, "PURPLE"}, {kMix, "RED"}}) {
        room.Color(kind, name, 0);
        colors.push_back({database, kind, name});
      }
    }
    Transaction transaction(session.File());
    for (int i = 0; i < 6000 && !testing::Test::HasFailure(); ++i) {
      SCOPED_TRACE(testing::Message() << "seed " << seed << " step " << i);
      if (ledger.OneIn(20)) session.CurrentDatabase = session.CurrentDatabase == "INK" ? "LAB" : "INK";
      if (ledger.OneIn(20)) session.InvLotTracking = session.InvLotTracking == 0 ? 1 : 0;
      const ColorKey& key = colors[static_cast<std::size_t>(ledger.Random(0, 7))];
      ledger.Step(key);
      const ModelColor& expected = ledger.model[key];
      std::map<std::int32_t, ModelLot> lots;
      for (const LotRow& lot : LotsOf(session, key.kind, key.name, key.database))
        lots[lot.LotRefID] = {lot.LotNumber, lot.LotLoc + "/" + lot.LotContID,
                              std::lround(static_cast<double>(lot.LotQty) * 1000), lot.LotPrice, lot.LotConsignment};
      ASSERT_EQ(lots, expected.lots);
      ASSERT_EQ(UnlottedQty(session, key.kind, key.name, key.database),
                RoundSingle(static_cast<double>(expected.inventory) / 1000, 3));
      ASSERT_TRUE(expected.inventory >= 0 || (key.kind == kBasic && rules.AllowNegInv));
      ASSERT_EQ(LotValue(session, key.kind, key.name, key.database), ValueOf(expected));
    }
    for (const ColorKey& key : colors) ExpectHistoryAddsUp(room, key, ledger.model[key]);
    for (const Outcome outcome : {Outcome::Posted, Outcome::LotAdded, Outcome::LotDeleted, Outcome::NoDatabase,
                                  Outcome::NoLot, Outcome::Consigned, Outcome::BadReference})
      EXPECT_GT(ledger.outcomes[outcome], 9) << static_cast<int>(outcome);
    session.CurrentDatabase = "INK";
    session.InvLotTracking = 1;
    transaction.Commit();
  }
}

}  // namespace
}  // namespace vellumark::test
