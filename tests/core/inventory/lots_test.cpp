#include "core/inventory/lots.h"

#include <ctime>
#include <random>
#include <set>

#include "core/inventory/adjust.h"
#include "core/inventory/posting.h"
#include "core/inventory/stock_list.h"
#include "support/stock_room.h"

namespace vellumark::test {
namespace {

// The rule as it is told: count up from the counter, one question for each reference, going round twice.
std::int32_t ToldNext(const std::set<std::int32_t>& used, std::int32_t counter, std::int32_t last) {
  std::int32_t ref = counter >= last ? 1 : counter + 1;
  for (int wraps = 0; wraps != 2;) {
    if (!used.contains(ref)) return ref;
    if (++ref == last + 1) {
      ref = 1;
      ++wraps;
    }
  }
  return -1;
}

TEST(LotReferences, FollowTheCounterAndGoRound) {
  struct Case {
    std::string name;
    Value counter;
    std::vector<std::int32_t> used;
    std::int32_t granted;
  };
  const std::vector<Case> cases{
      {"a new colour", 0, {}, 1},
      {"a counter that was never set", nullptr, {}, 1},
      {"the counter's neighbour", 41, {1, 2, 41}, 42},
      {"a freed reference waits until the counter has gone round", 5, {1, 2, 4, 5}, 6},
      {"references in use are passed over", 5, {6, 7, 9}, 8},
      {"the last reference", 999997, {1}, 999998},
      {"the counter at the last reference", 999998, {1, 2}, 3},
      {"the counter at 999999", 999999, {}, 1},
      {"round past the end to a gap", 999996, {999997, 999998, 1, 2, 4}, 3},
      {"a counter that no colour can have", 5000000, {1}, 2},
      {"a counter below zero", -7, {1}, 2},
  };
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    StockRoom room;
    room.Breaks("LotColors");
    room.Breaks("LotReferences");
    room.Breaks("StockHistory");
    const test::Arranging arranging;
    Transaction transaction(room.session.File());
    for (std::size_t i = 0; i < cases.size(); ++i) {
      const std::string name = "C" + std::to_string(i);
      room.Color(kind, name, 0, {{"LotRefID", cases[i].counter}});
      for (const std::int32_t ref : cases[i].used) room.Lot(kind, name, ref, 1);
      // Another colour's references are its own.
      room.Lot(kind, "OTHER", cases[i].granted, 1);
      EXPECT_EQ(NextLotRefID(room.session, kind, name), cases[i].granted) << cases[i].name;
      EXPECT_EQ(LastLotRefID(room.session, kind, name, "INK"), cases[i].granted + 1) << cases[i].name;
    }
    transaction.Commit();
  }
}

TEST(LotReferences, AreThoseOfTheToldLoop) {
  StockRoom room;
  room.Breaks("LotColors");
  room.Breaks("LotReferences");
  room.Breaks("StockHistory");
  std::mt19937 random(20260310);
  const test::Arranging arranging;
  Transaction transaction(room.session.File());
  for (int round = 0; round < 300; ++round) {
    const std::string name = "R" + std::to_string(round);
    const std::int32_t last = 1 + static_cast<std::int32_t>(random() % 12);
    const auto from = static_cast<std::int32_t>(random() % static_cast<unsigned>(last + 2));
    std::set<std::int32_t> used;
    for (std::int32_t ref = 1; ref <= last; ++ref) {
      if (random() % 3 == 0) continue;
      used.insert(ref);
      room.Lot(ColorKind::Mix, name, ref, 1);
      if (random() % 5 == 0) room.Lot(ColorKind::Mix, name, ref, 1);  // nothing forbids a pair twice
    }
    EXPECT_EQ(FirstFreeLotRef(room.session, ColorKind::Mix, name, {}, from + 1, last), ToldNext(used, from, last))
        << "last " << last << " from " << from << " used " << used.size();
  }
  transaction.Commit();
}

TEST(LotReferences, FiftyThousandLotsAreNoBurden) {
  StockRoom room;
  room.Color(ColorKind::Basic, "RED", 0, {{"LotRefID", 0}});
  room.FillLots(ColorKind::Basic, "RED", 50000);
  const std::clock_t start = std::clock();
  {
    const test::Arranging arranging;
    Transaction transaction(room.session.File());
    for (int i = 1; i <= 500; ++i) {
      const std::int32_t ref = NextLotRefID(room.session, ColorKind::Basic, "RED");
      ASSERT_EQ(ref, 50000 + i);
      room.Lot(ColorKind::Basic, "RED", ref, 1);
    }
    transaction.Commit();
  }
  EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 5);  // processor time
}

TEST(LotReferences, AFullColourGrantsNone) {
  StockRoom room;
  room.Breaks("StockHistory");
  room.Color(ColorKind::Mix, "FULL", 1, {{"LotRefID", 999998}, {"BasicCost", 2.0F}});
  room.FillLots(ColorKind::Mix, "FULL", 999998);

  const std::clock_t start = std::clock();
  const test::Arranging arranging;  // the counter of references alone, which nobody sees
  EXPECT_EQ(NextLotRefID(room.session, ColorKind::Mix, "FULL"), -1);
  EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 5);  // processor time
  EXPECT_EQ(room.Scalar("SELECT LotRefID FROM INK_Mix").Whole(), 999998);

  Posting made{PostingSource::BatchMakes, ColorKind::Mix, "FULL", {}, 5, StockPlace{.LotNumber = "B1"}};
  PostingResult result = PostStock(room.session, made);
  EXPECT_EQ(result.outcome, PostingResult::Outcome::Posted);
  EXPECT_EQ(result.LotRefID, -1);
  EXPECT_EQ(result.quantity, 6.0F);

  made.source = PostingSource::ScanReturn;
  EXPECT_EQ(PostStock(room.session, made).outcome, PostingResult::Outcome::NoLotReference);
  EXPECT_EQ(UnlottedQty(room.session, ColorKind::Mix, "FULL"), 6.0F);

  InventoryWork work = LoadInventory(room.session, ColorKind::Mix, "FULL");
  AdjustFields fields = ClearedFields(room.session, work);
  fields.lotNumber = "NEW";
  fields.quantity = 3;
  fields.count = 2;
  ASSERT_TRUE(ApplyAdjust(room.session, work, fields));
  room.prompt.Expect("                         Max Lot Number Usage", Answer::Ok,
                     "Unable to add lotted inventory references.\nMaximum lot number usage exceeded.\n\nDelete "
                     "un-needed lot number references.");
  const auto saved = SaveInventory(room.session, work);
  ASSERT_TRUE(saved);
  EXPECT_EQ(*saved, 2);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Mix_LotInv").Whole(), 999998);

  room.session.File().Execute("DELETE FROM INK_Mix_LotInv WHERE LotRefID = 500000");
  EXPECT_EQ(NextLotRefID(room.session, ColorKind::Mix, "FULL"), 500000);
}

TEST(Lots, SumsAndValuesByOwner) {
  StockRoom room;
  room.Breaks("LotColors");
  room.session.DecimalPlaces = 2;
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    room.Color(kind, "RED", 1.5F);
    room.Lot(kind, "RED", 1, 10.1F, {{"LotPrice", 2.5F}, {"LotNumber", "B"}});
    room.Lot(kind, "RED", 2, 0.2F, {{"LotPrice", 10.0F}, {"LotNumber", "a"}, {"LotConsignment", nullptr}});
    room.Lot(kind, "RED", 3, 7.777F, {{"LotPrice", 1.0F}, {"LotNumber", "C"}, {"LotConsignment", true}});
    room.Lot(kind, "RED'S", 1, 99);
    EXPECT_EQ(LotQtyTotal(room.session, kind, "red", "INK"), 18.077F);
    EXPECT_EQ(LotQtyOwned(room.session, kind, "RED"), 10.3F);
    EXPECT_EQ(LotQtyConsigned(room.session, kind, "RED"), 7.777F);
    EXPECT_EQ(LotQtyTotal(room.session, kind, "NONE"), 0.0F);
    // 25.25 + 2.00 + 7.777
    EXPECT_EQ(LotValue(room.session, kind, "RED"), 35.03F);
    EXPECT_EQ(LotValueOwned(room.session, kind, "RED"), 27.25F);
    EXPECT_EQ(LotValueConsigned(room.session, kind, "RED"), 7.78F);
    EXPECT_EQ(TotalStock(room.session, kind, "RED"), 19.577F);
    EXPECT_EQ(UnlottedQty(room.session, kind, "NONE"), 0.0F);
    const std::vector<LotRow> lots = LotsOf(room.session, kind, "RED");
    ASSERT_EQ(lots.size(), 3U);
    EXPECT_EQ(lots[0].LotNumber + lots[1].LotNumber + lots[2].LotNumber, "aBC");
    EXPECT_EQ(GetLotNumber(room.session, kind, "RED", 2), "a");
    EXPECT_EQ(GetLotDate(room.session, kind, "RED", 2), "2026-01-15");
    EXPECT_EQ(GetLotNumber(room.session, kind, "RED", 9) + GetLotDate(room.session, kind, "RED", 9), "");
    EXPECT_TRUE(LotRefIDInUse(room.session, kind, "RED", {}, 3));
    EXPECT_FALSE(LotRefIDInUse(room.session, kind, "RED", {}, 4));
  }
  room.session.InvLotTracking = 0;
  EXPECT_EQ(TotalStock(room.session, ColorKind::Mix, "RED"), 1.5F);
}

TEST(Lots, TheStockOfAllColours) {
  StockRoom room;
  room.Color(ColorKind::Mix, "RED", 1);
  room.Color(ColorKind::Basic, "RED", 2);
  room.Color(ColorKind::Basic, "BLUE", 0.1F);
  room.Lot(ColorKind::Basic, "RED", 1, 0.7F);
  room.Lot(ColorKind::Basic, "RED", 2, 0.2F);
  const auto text = [&](std::optional<std::string_view> name) {
    std::string all;
    for (const ColorStock& one : ListStock(room.session, name))
      all += fmt::format("{}{} {}+{}={} in {} lots; ", one.Color_Name, static_cast<int>(one.kind), one.Inventory,
                         one.lotted, one.total, one.lots.size());
    return all;
  };
  EXPECT_EQ(text({}), "BLUE1 0.1+0=0.1 in 0 lots; RED1 2+0.9=2.9 in 2 lots; RED2 1+0=1 in 0 lots; ");
  EXPECT_EQ(text("red"), "RED1 2+0.9=2.9 in 2 lots; RED2 1+0=1 in 0 lots; ");
  EXPECT_EQ(text("R%"), "");
  room.session.InvLotTracking = 0;
  EXPECT_EQ(text("RED"), "RED1 2+0=2 in 0 lots; RED2 1+0=1 in 0 lots; ");
}

TEST(Lots, OfAnotherDatabase) {
  StockRoom room;
  room.Breaks("StockHistory");
  CreateEmptyDatabase(room.session.File(), "WEB 2");
  const test::Arranging arranging;
  InsertRow(room.session.File(), schema::BasicLotInv, "WEB 2_Basic_LotInv",
            {{"LotRefID", 1}, {"LotCName", "RED"}, {"LotNumber", "W"}, {"LotQty", 4.0F}});
  InsertRow(room.session.File(), schema::Basic, "WEB 2_Basic",
            {{"Color_Name", "RED"}, {"Inventory", 3.0F}, {"LotRefID", 1}});
  EXPECT_EQ(TotalStock(room.session, ColorKind::Basic, "RED", "WEB 2"), 7.0F);
  EXPECT_EQ(TotalStock(room.session, ColorKind::Basic, "RED"), 0.0F);
  EXPECT_EQ(NextLotRefID(room.session, ColorKind::Basic, "RED", "WEB 2"), 2);
}

}  // namespace
}  // namespace vellumark::test
