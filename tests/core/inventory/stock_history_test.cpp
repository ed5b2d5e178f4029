#include "core/inventory/stock_history.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <set>

#include "core/base/number.h"
#include "core/colors/basic_work.h"
#include "core/colors/rename.h"
#include "core/datafile/stock_joins.h"
#include "core/inventory/adjust.h"
#include "core/inventory/color_stock.h"
#include "core/inventory/posting.h"
#include "core/inventory/stock_resets.h"
#include "support/stock_lines.h"
#include "support/stock_room.h"

namespace vellumark::test {
namespace {

using enum PostingSource;
constexpr ColorKind kBasic = ColorKind::Basic;
constexpr ColorKind kMix = ColorKind::Mix;

struct StockHistoryTest : ::testing::Test, StockRoom {
  // A line as text: "event colour lot number change result document|reason".
  static std::string TextOf(const StockLine& line) {
    return fmt::format("{}: {} {} {} {} {} {}|{}", StockEventText(line.event), line.Color_Name, line.LotRefID,
                       line.LotNumber.empty() ? "-" : line.LotNumber, ShortestText(line.change),
                       ShortestText(line.result), line.document, line.reason);
  }
  std::vector<std::string> History(const StockHistoryFilter& filter) {
    std::vector<std::string> texts;
    for (const StockLine& line : ListStockHistory(session, filter)) texts.push_back(TextOf(line));
    // Windows read the same from its end.
    std::vector<StockLine> lines;
    StockHistoryReader latestFirst(session, filter);
    while (latestFirst.ReadOn(lines)) continue;
    std::vector<std::string> backwards;
    for (const StockLine& line : lines) backwards.insert(backwards.begin(), TextOf(line));
    EXPECT_EQ(backwards, texts);
    return texts;
  }
  void NewBasic(const std::string& name, float inventory) {
    BasicWork work = NewBasicWork(session, name);
    InventoryWork stock = NewInventory(session, kBasic, name);
    ASSERT_TRUE(SetUnlotted(session, stock, ShortestText(inventory)));
    ASSERT_TRUE(SaveWithStock(
        session, [&] { return SaveBasic(session, work); }, &stock));
  }
};

TEST_F(StockHistoryTest, EveryPostingLeavesALineThatTellsWhoAndWhy) {
  Color(kMix, "PURPLE", 0);
  session.CurrentUser = "ANNA";
  PostStock(session, {BatchMakes, kMix, "PURPLE", {}, 12.5F, StockPlace{.LotNumber = "A1"}, false, "Batch 000007"});
  PostStock(session, {BatchMakes, kMix, "PURPLE", {}, 2, {}, false, "Batch 000008"});
  session.CurrentUser = "BERT";
  clock.Set({2026, 3, 11, 8, 30, 5});
  PostStock(session, {BatchTakes, kMix, "PURPLE", {}, 4, StockPlace{.LotRefID = 1}, true, "Batch 000009"});
  PostStock(session, {BatchTakes, kMix, "PURPLE", {}, 1.8F, {}, false, "Batch 000009"});
  InventoryWork work = LoadInventory(session, kMix, "PURPLE");
  work.reason = "counted";
  AdjustFields fields = ClearedFields(session, work);
  fields.quantity = 3.001F;
  ASSERT_TRUE(ApplyAdjust(session, work, fields));
  ASSERT_TRUE(SaveInventory(session, work));
  EXPECT_EQ(History({.name = "purple"}), (std::vector<std::string>{
                                             "Batch made: PURPLE 1 A1 12.5 12.5 Batch 000007|",
                                             "Batch made: PURPLE 0 - 2 2 Batch 000008|",
                                             "Batch: PURPLE 1 A1 -4 8.5 Batch 000009|",
                                             "Batch: PURPLE 1 A1 -8.5 0 Batch 000009|Delete Inv. Balance",
                                             "Batch: PURPLE 0 - -2 0 Batch 000009|",
                                             "Manual: PURPLE 0 - 3.001 3.001 |counted",
                                         }));
  const auto lines = ListStockHistory(session, {.name = "PURPLE"});
  EXPECT_EQ(lines[1].user, "ANNA");
  EXPECT_EQ(lines[1].when.ToText(), "2026-03-10 12:00:00");
  EXPECT_EQ(lines[2].user, "BERT");
  EXPECT_EQ(lines[2].when.ToText(), "2026-03-11 08:30:05");
  EXPECT_EQ(lines[2].database, "INK");

  // What is rolled back never happened.
  {
    Transaction transaction(session.File());
    PostStock(session, {BatchTakes, kMix, "PURPLE", {}, 1, {}});
  }
  EXPECT_EQ(ListStockHistory(session, {.name = "PURPLE"}).size(), 6U);
}

TEST_F(StockHistoryTest, ALotIsFoundUnderEachOfItsNumbers) {
  Color(kBasic, "RED", 0);
  PostStock(session, {ScanReturn, kBasic, "RED", {}, 6, StockPlace{.LotNumber = "A"}});
  PostStock(session, {ScanReturn, kBasic, "RED", {}, 7, StockPlace{.LotNumber = "OTHER"}});
  PostStock(session, {ScanReturn, kBasic, "RED", {}, 1, {}});
  InventoryWork work = LoadInventory(session, kBasic, "RED");
  AdjustFields fields = FieldsOfRow(session, work, *FindRow(work, "A", "", ""));
  fields.lotNumber = "B";
  fields.quantity = -2;
  ASSERT_TRUE(ApplyAdjust(session, work, fields));
  ASSERT_TRUE(SaveInventory(session, work));
  const std::vector<std::string> expected{"Scan: RED 1 A 6 6 |", "Manual: RED 1 B 0 6 |Lot number was A",
                                          "Manual: RED 1 B -2 4 |"};
  EXPECT_EQ(History({.name = "RED", .lot = "A"}), expected);
  EXPECT_EQ(History({.lot = "b"}), expected);
  EXPECT_EQ(History({.name = "RED", .lot = "Unlotted Inv."}), (std::vector<std::string>{"Scan: RED 0 - 1 1 |"}));
  EXPECT_TRUE(History({.lot = "NONE"}).empty());
  EXPECT_TRUE(History({.name = "RED", .kind = kMix}).empty());
}

TEST_F(StockHistoryTest, ALotThatTookOverANumberShowsItsOwnLines) {
  Color(kBasic, "RED", 0);
  PostStock(session, {ScanReturn, kBasic, "RED", {}, 6, StockPlace{.LotNumber = "A"}});
  PostStock(session, {BatchTakes, kBasic, "RED", {}, 6, StockPlace{.LotRefID = 1}});
  EXPECT_EQ(History({.name = "RED", .lot = "A"}).size(), 2U);
  PostStock(session, {ScanReturn, kBasic, "RED", {}, 9, StockPlace{.LotNumber = "A"}});
  EXPECT_EQ(History({.name = "RED", .lot = "a"}), (std::vector<std::string>{"Scan: RED 2 A 9 9 |"}));
  EXPECT_EQ(History({.lot = "A"}), (std::vector<std::string>{"Scan: RED 2 A 9 9 |"}));
  InventoryWork work = LoadInventory(session, kBasic, "RED");
  AdjustFields fields = FieldsOfRow(session, work, 1);
  fields.consignment = true;
  ASSERT_TRUE(ApplyAdjust(session, work, fields));
  ASSERT_TRUE(SaveInventory(session, work));
  EXPECT_EQ(History({.name = "RED", .lot = "A"}),
            (std::vector<std::string>{"Scan: RED 2 A 9 9 |", "Manual: RED 2 A 0 9 |Now on consignment"}));
}

TEST_F(StockHistoryTest, FollowsAFormulaThroughItsNames) {
  Color(kMix, "TEAL", 0);
  PostStock(session, {BatchMakes, kMix, "TEAL", {}, 12, {}});
  ASSERT_TRUE(RenameColor(session, "TEAL", "LAGOON"));
  PostStock(session, {BatchMakes, kMix, "LAGOON", {}, 3, {}});
  EXPECT_EQ(History({.name = "LAGOON"}),
            (std::vector<std::string>{"Batch made: TEAL 0 - 12 12 |", "Renamed from: LAGOON 0 - 0 0 |TEAL",
                                      "Batch made: LAGOON 0 - 3 15 |"}));
  Color(kMix, "TEAL", 0);
  PostStock(session, {BatchMakes, kMix, "TEAL", {}, 1, {}});
  EXPECT_EQ(History({.name = "TEAL"}), (std::vector<std::string>{"Batch made: TEAL 0 - 1 1 |"}));
}

// What earlier programs left: a formula renamed without a line, under the new name and under the old one more lines,
// and an index that is not there yet.
TEST_F(StockHistoryTest, JoinsTheNamesOfAFormulaThatAnEarlierProgramRenamed) {
  const auto rename = [&](const std::string& from, const std::string& to) {
    for (const auto& [table, field] : {std::pair{"INK_Mix", "Color_Name"}, std::pair{"INK_Mix_LotInv", "LotCName"}})
      session.File()
          .Prepare(fmt::format("UPDATE {0} SET {1} = ?2 WHERE {1} = ?1", table, field))
          .Bind(1, from)
          .Bind(2, to)
          .Run();
  };
  const auto make = [&](const std::string& name, float quantity, const std::string& lot = {}) {
    PostStock(session, {ScanReturn, kMix, name, {}, quantity, {.LotNumber = lot}});
  };
  for (const char* name : {"TEAL", "ONE", "TWO", "SEA", "LAKE"}) Color(kMix, name, 0);
  make("TEAL", 12);
  make("TEAL", 3, "A");
  for (const char* same : {"ONE", "TWO"}) make(same, 5);
  make("SEA", 2);
  rename("TEAL", "LAGOON");
  rename("SEA", "OCEAN");
  for (const char* same : {"ONE", "TWO"}) rename(same, std::string("NEW ") + same);
  make("LAGOON", -4);
  make("LAKE", 1);
  Color(kMix, "TEAL", 0);
  make("TEAL", 7);
  make("LAGOON", 1, "B");
  for (const char* index : {"Turn", "LotNumber"})
    session.File().Execute(fmt::format("DROP INDEX MSysStockHistory_{}", index));

  for (int opening = 0; opening < 2; ++opening) {
    {
      const test::Arranging arranging;  // at an opening no window is there to be told
      BringStockHistoryUpToDate(session.File(), {"INK"});
    }
    EXPECT_EQ(History({.name = "LAGOON"}),
              (std::vector<std::string>{"Scan: TEAL 0 - 12 12 |", "Scan: TEAL 1 A 3 3 |",
                                        "Renamed from: LAGOON 0 - 0 0 |TEAL", "Scan: LAGOON 0 - -4 8 |",
                                        "Scan: LAGOON 2 B 1 1 |"}));
    EXPECT_EQ(History({.name = "LAGOON", .lot = "A"}), (std::vector<std::string>{"Scan: TEAL 1 A 3 3 |"}));
    EXPECT_EQ(History({.name = "TEAL"}), (std::vector<std::string>{"Scan: TEAL 0 - 7 7 |"}));
    EXPECT_EQ(History({.name = "OCEAN"}),
              (std::vector<std::string>{"Scan: SEA 0 - 2 2 |", "Renamed from: OCEAN 0 - 0 0 |SEA"}));
    EXPECT_EQ(History({.name = "LAKE"}), (std::vector<std::string>{"Scan: LAKE 0 - 1 1 |"}));
    EXPECT_TRUE(History({.name = "NEW ONE"}).empty()) << "either might have been it";
  }
  Breaks("StockHistory");
}

TEST_F(StockHistoryTest, TellsOfColorsThatComeChangeAndGo) {
  NewBasic("RED", 5);
  NewBasic("BLUE", 0);
  BasicWork work = LoadBasicWork(session, *ReadBasic(session, "RED"));
  InventoryWork stock = LoadInventory(session, kBasic, "RED");
  ASSERT_TRUE(SetUnlotted(session, stock, "4.25"));
  ASSERT_TRUE(SaveInventory(session, stock));
  ASSERT_TRUE(SaveBasic(session, work));
  PostStock(session, {ScanReturn, kBasic, "RED", {}, 2, StockPlace{.LotNumber = "A"}});
  prompt.Expect("Basic Color Window - Delete Basic Color?", Answer::Yes);
  ASSERT_TRUE(DeleteBasic(session, "RED"));
  EXPECT_EQ(History({.name = "RED"}),
            (std::vector<std::string>{"Manual: RED 0 - 5 5 |", "Manual: RED 0 - -0.75 4.25 |", "Scan: RED 1 A 2 2 |",
                                      "Color deleted: RED 0 - -4.25 0 |", "Color deleted: RED 1 A -2 0 |"}));
  EXPECT_TRUE(History({.name = "BLUE"}).empty());
}

TEST_F(StockHistoryTest, FollowsAColorThroughItsNames) {
  NewBasic("RED", 5);
  NewBasic("GREEN", 3);
  ASSERT_TRUE(RenameBasic(session, "RED", "CRIMSON"));
  PostStock(session, {ManualAdjust, kBasic, "CRIMSON", {}, 1, {}});
  ASSERT_TRUE(RenameBasic(session, "CRIMSON", "SCARLET"));
  PostStock(session, {ManualAdjust, kBasic, "SCARLET", {}, 1, {}});
  const std::vector<std::string> scarlet{"Manual: RED 0 - 5 5 |", "Renamed from: CRIMSON 0 - 0 0 |RED",
                                         "Manual: CRIMSON 0 - 1 6 |", "Renamed from: SCARLET 0 - 0 0 |CRIMSON",
                                         "Manual: SCARLET 0 - 1 7 |"};
  EXPECT_EQ(History({.name = "SCARLET"}), scarlet);
  // The old name leads to the new one, until another colour bears it.
  EXPECT_EQ(History({.name = "RED"}),
            (std::vector<std::string>{"Manual: RED 0 - 5 5 |", "Renamed to: RED 0 - 0 0 |CRIMSON"}));
  NewBasic("RED", 0.75F);
  EXPECT_EQ(History({.name = "RED"}), (std::vector<std::string>{"Manual: RED 0 - 0.75 0.75 |"}));
  // Names that change hands.
  ASSERT_TRUE(RenameBasic(session, "RED", "CRIMSON"));
  EXPECT_EQ(History({.name = "CRIMSON"}),
            (std::vector<std::string>{"Manual: RED 0 - 0.75 0.75 |", "Renamed from: CRIMSON 0 - 0 0 |RED"}));
  EXPECT_EQ(History({.name = "SCARLET"}), scarlet);
  // A colour that is merged gives its stock up; the survivor keeps its own.
  prompt.Expect(std::string(20, ' ') + "Basic Color Name Exists", Answer::Yes);
  ASSERT_TRUE(RenameBasic(session, "GREEN", "SCARLET"));
  EXPECT_EQ(
      History({.name = "GREEN"}),
      (std::vector<std::string>{"Manual: GREEN 0 - 3 3 |", "Color deleted: GREEN 0 - -3 0 |Merged into SCARLET"}));
  EXPECT_EQ(History({.name = "SCARLET"}), scarlet);
}

TEST_F(StockHistoryTest, FollowsADatabaseThroughItsNames) {
  Breaks("StockHistory");
  NewBasic("RED", 5);
  AddDatabaseRenameLines(session.File(), {.database = "INK"}, "INK", "FLEXO");
  AddStockLine(session.File(), {.database = "FLEXO", .Color_Name = "RED", .change = 1, .result = 6});
  // Another Database takes the old name, and is deleted; a third begins anew.
  AddStockLine(session.File(), {.database = "INK", .Color_Name = "GREEN", .change = 2, .result = 2});
  const std::vector<std::string> flexo{"Manual: RED 0 - 5 5 |", "Database renamed from:  0 - 0 0 |INK",
                                       "Manual: RED 0 - 1 6 |"};
  EXPECT_EQ(History({.database = "FLEXO"}), flexo);
  EXPECT_EQ(History({.database = "INK"}), (std::vector<std::string>{"Manual: GREEN 0 - 2 2 |"}));
  AddDatabaseDeletedLine(session.File(), {.database = "INK"});
  AddStockLine(session.File(), {.database = "INK", .Color_Name = "BLUE", .change = 3, .result = 3});
  EXPECT_EQ(History({.database = "INK"}), (std::vector<std::string>{"Manual: BLUE 0 - 3 3 |"}));
  EXPECT_EQ(History({.database = "FLEXO"}), flexo);
}

TEST_F(StockHistoryTest, BeginsWithWhatAFileHolds) {
  const test::Arranging arranging;  // at an opening no window is there to be told
  session.File().Execute("DROP TABLE MSysStockHistory");
  Color(kBasic, "RED", 1234.567F);
  Color(kBasic, "EMPTY", 0);
  Color(kMix, "PURPLE", 0.0625F);  // more decimals than this program writes
  Lot(kMix, "PURPLE", 3, 2);
  ASSERT_FALSE(HasStockHistory(session.File()));
  BeginStockHistory(session.File(), {"INK"}, clock.Now(), "ANNA");
  EXPECT_EQ(History({}), (std::vector<std::string>{"Opening balance: RED 0 - 1234.567 1234.567 |",
                                                   "Opening balance: PURPLE 0 - 0.0625 0.0625 |",
                                                   "Opening balance: PURPLE 3 L3 2 2 |"}));
  PostStock(session, {ManualAdjust, kMix, "PURPLE", {}, 1, {}});
  const auto lines = ListStockHistory(session, {.name = "PURPLE"});
  EXPECT_EQ(RoundTo(lines.front().change + lines.back().change, 9), 1.063);
  EXPECT_EQ(lines.back().result, 1.063F);
}

TEST_F(StockHistoryTest, LargeFiguresAddUpAsTheyRead) {
  // A Single of this size has fewer than three decimals of its own.
  NewBasic("RED", 98765.432F);
  double sum = 98765.43;
  for (int i = 0; i < 50; ++i) PostStock(session, {ManualAdjust, kBasic, "RED", {}, i % 2 == 0 ? -0.123F : 0.456F, {}});
  sum = 0;
  for (const StockLine& line : ListStockHistory(session, {.name = "RED"})) sum += line.change;
  EXPECT_EQ(static_cast<float>(RoundTo(sum, 6)), Inventory(kBasic, "RED").Single());
}

TEST_F(StockHistoryTest, AddsUpWhateverTheWindowDoes) {
  for (const char* name : {"RED", "BLUE"}) NewBasic(name, 2.5F);
  std::vector<std::string> names{"RED", "BLUE"};
  std::mt19937 random(6);
  const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  for (int step = 0; step < 300; ++step) {
    std::string& name = names[below(2)];
    InventoryWork work = LoadInventory(session, kBasic, name);
    for (std::size_t edits = below(4); edits > 0; --edits) {
      AdjustFields fields = FieldsOfRow(session, work, below(work.rows.size()));
      if (below(3) == 0) {
        fields = ClearedFields(session, work);
        fields.count = 1 + static_cast<int>(below(3));
      }
      if (below(2) == 0) fields.lotNumber = "N" + std::to_string(below(5));
      fields.quantity = RoundSingle(static_cast<double>(below(4000)) / 1000 - 1.5, 3);
      static_cast<void>(ApplyAdjust(session, work, fields));  // refused ones change nothing
    }
    ASSERT_EQ(SaveInventory(session, work), 0);
    if (below(12) == 0) {
      work = LoadInventory(session, kBasic, name);
      prompt.Expect("Reset Inventory", Answer::Yes);
      ASSERT_TRUE(*ResetRowInventories(session, work, {below(work.rows.size()), 0}));
    }
    if (below(25) == 0) {
      const std::string newName = "C" + std::to_string(step);
      ASSERT_TRUE(RenameBasic(session, name, newName));
      name = newName;
    }
  }
  for (const std::string& name : names) {
    std::map<std::int32_t, double> sums;
    for (const StockLine& line : ListStockHistory(session, {.name = name})) sums[line.LotRefID] += line.change;
    EXPECT_EQ(RoundSingle(sums[0], 3), Inventory(kBasic, name).Single());
    std::map<std::int32_t, float> lots;
    for (const LotRow& lot : LotsOf(session, kBasic, name)) lots[lot.LotRefID] = lot.LotQty;
    EXPECT_GT(lots.size(), 3U);
    for (const auto& [ref, quantity] : lots) EXPECT_TRUE(sums.contains(ref)) << name << " lot " << ref;
    sums.erase(0);
    for (const auto& [ref, sum] : sums) {
      const float expected = lots.contains(ref) ? lots.at(ref) : 0;
      EXPECT_EQ(RoundSingle(sum, 3), expected) << name << " lot " << ref;
    }
  }
}

// What a person with a slate would have: the figures of one colour, and of one window what was entered and not saved.
struct Slate {
  double unlotted = 0;
  std::map<std::int32_t, double> lots;
};
struct Entered : Slate {
  std::map<std::string, double> added;  // new lots by their numbers
  std::set<std::int32_t> removed;
};

// Saves what was entered; false, with nothing changed, where it does not fit.
bool SaveOnSlate(Slate& slate, const Entered& entered) {
  Slate after = slate;
  std::int32_t newLot = 1000000;
  after.unlotted = RoundTo(after.unlotted + entered.unlotted, 3);
  if (after.unlotted < 0) return false;
  for (const auto& [ref, quantity] : entered.lots) {
    const bool removed = entered.removed.contains(ref);
    const bool there = after.lots.contains(ref);
    if (quantity == 0 && !removed) continue;
    if (!there && removed) continue;
    if (!there && quantity <= 0) return false;
    double& lot = after.lots[there ? ref : ++newLot];
    lot = RoundTo(lot + quantity, 3);
    if (lot < 0) return false;
    if (lot == 0) after.lots.erase(ref);
  }
  for (const auto& [number, quantity] : entered.added) after.lots[++newLot] = quantity;
  slate = after;
  return true;
}

TEST_F(StockHistoryTest, TwoWindowsAndTheRoomAgreeWithASlate) {
  Setting("InvCutoff", "0");
  std::mt19937 random(11);
  const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  const auto amount = [&] { return RoundSingle(static_cast<double>(below(20000)) / 1000 - 8, 3); };
  int refused = 0;
  for (const ColorKind kind : {kBasic, kMix}) {
    Color(kind, "RED", 0);
    Slate slate;
    std::vector<std::pair<InventoryWork, Entered>> windows(2);
    for (auto& [work, entered] : windows) work = LoadInventory(session, kind, "RED");
    const auto reload = [&](auto& window) { window = {LoadInventory(session, kind, "RED"), Entered{}}; };
    for (int step = 0; step < 400; ++step) {
      auto& [work, entered] = windows[below(2)];
      const float quantity = amount();
      const auto post = [&](PostingSource source, float moved, StockPlace lot) {
        PostStock(session, {source, kind, "RED", {}, moved, std::move(lot)});
      };
      switch (below(8)) {
        case 0:
          if (below(4) == 0) reload(windows[below(2)]);
          break;
        case 1: {
          const bool saved = SaveInventory(session, work).has_value();
          ASSERT_EQ(saved, SaveOnSlate(slate, entered)) << step;
          if (!saved) ++refused;
          reload(&work == &windows[0].first ? windows[0] : windows[1]);
          break;
        }
        case 2:
          post(BatchTakes, std::abs(quantity), {});
          slate.unlotted = std::max(0.0, RoundTo(slate.unlotted - std::abs(static_cast<double>(quantity)), 3));
          break;
        case 3: {
          if (slate.lots.empty()) break;
          const auto lots = LotsOf(session, kind, "RED");
          const std::int32_t ref = lots[below(lots.size())].LotRefID;
          post(quantity < 0 ? BatchTakes : ScanReturn, std::abs(quantity), StockPlace{.LotRefID = ref});
          double& lot = slate.lots[ref];
          if (lot = RoundTo(lot + static_cast<double>(quantity), 3); lot <= 0) slate.lots.erase(ref);
          break;
        }
        default: {
          const std::size_t row = below(work.rows.size() + 1);
          AdjustFields fields = ClearedFields(session, work);
          if (row < work.rows.size()) fields = FieldsOfRow(session, work, row);
          if (row == work.rows.size()) fields.lotNumber = "N" + std::to_string(step);
          fields.quantity = quantity;
          const auto key = row < work.rows.size() ? work.rows[row].key : std::nullopt;
          if (!ApplyAdjust(session, work, fields)) break;
          double& sum = row == 0 ? entered.unlotted : key ? entered.lots[*key] : entered.added[fields.lotNumber];
          sum = RoundTo(sum + static_cast<double>(quantity), 3);
          const bool gone = std::ranges::none_of(work.rows, [&](const InventoryRow& one) {
            return row == 0 || (key ? one.key == key : one.now.lotNumber == fields.lotNumber);
          });
          if (gone && key) entered.removed.insert(*key);
          if (gone && !key) entered.added.erase(fields.lotNumber);
        }
      }
      // A new lot's reference is known from now on.
      std::map<std::int32_t, double> lots;
      std::vector<double> slateLots;
      for (const LotRow& lot : LotsOf(session, kind, "RED"))
        lots[lot.LotRefID] = RoundTo(static_cast<double>(lot.LotQty), 3);
      std::vector<double> fileLots;
      for (const auto& [ref, one] : slate.lots) slateLots.push_back(one);
      for (const auto& [ref, one] : lots) fileLots.push_back(one);
      std::ranges::sort(slateLots);
      std::ranges::sort(fileLots);
      ASSERT_EQ(slateLots, fileLots) << step;
      slate.lots = lots;
      ASSERT_EQ(Inventory(kind, "RED").Single(), static_cast<float>(slate.unlotted)) << step;
    }
  }
  EXPECT_GE(refused, 5);
}

}  // namespace
}  // namespace vellumark::test
