// What a row tells of its colour when asked, and how the colour looks.

#include "core/batch/quick_info.h"

#include <gtest/gtest.h>

#include "batch_room.h"
#include "core/batch/additions.h"
#include "core/colors/ink.h"

namespace vellumark::test {
namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

struct QuickInfoTest : testing::Test, BatchRoom {
  QuickInfoTest() {
    Setting("InvLotTracking", "0");
    Basic("RED", {{"Color_Code", "R-1"},
                  {"Inventory", 10.0F},
                  {"Reorder", 2.5F},
                  {"PurchaseCost", 4.125F},
                  {"Inv_Note", "by the door"},
                  {"VOC", 0.25F},
                  {"HAP", 0.125F}});
    Basic("BLUE");
    Ink("MADE", {{"RED", 60}, {"BLUE", 40}}, 0);
    Ink("LEFT", {{"RED", 50}, {"BLUE", 50}}, 2,
        {{"BasicVOC", 0.5F}, {"BasicHAP", 0.75F}, {"VOC", 1.0F}, {"HAP", 2.0F}, {"PurchaseCost", 3.0F}});
  }
  static std::array<bool, kQuickInfoFields> Only(std::initializer_list<std::size_t> fields) {
    std::array<bool, kQuickInfoFields> wanted{};
    for (const std::size_t field : fields) wanted.at(field) = true;
    return wanted;
  }
};

TEST_F(QuickInfoTest, LinesThatAreWantedAndMayBeSeen) {
  Breaks("RollUps");
  std::array<bool, kQuickInfoFields> all{};
  all.fill(true);
  Recycled("MADE", "10");
  ASSERT_EQ(Lines().front(), "Mix LEFT 2.000");
  EXPECT_EQ(QuickInfo(session, work, 0, Only({1, 4, 5, 8, 9})),
            (Pairs{{QuickInfoCaption(1), "2.000 lb."},
                   {QuickInfoCaption(4), "3.00 per lb."},
                   {QuickInfoCaption(5), "RED 50.000%, BLUE 50.000%"},
                   {QuickInfoCaption(8), "0.500 per lb."},
                   {QuickInfoCaption(9), "0.750 per lb."}}));
  // A basic has no formula; what is empty is left out.
  EXPECT_EQ(QuickInfo(session, work, 1, all), (Pairs{{QuickInfoCaption(0), "R-1"},
                                                     {QuickInfoCaption(1), "10.000 lb."},
                                                     {QuickInfoCaption(2), "2.500 lb."},
                                                     {QuickInfoCaption(3), "by the door"},
                                                     {QuickInfoCaption(4), "4.13 per lb."},
                                                     {QuickInfoCaption(6), "0.250 per lb."},
                                                     {QuickInfoCaption(7), "0.125 per lb."}}));
  session.Perm_Costs = 0;
  EXPECT_TRUE(QuickInfo(session, work, 1, Only({4})).empty());
  ASSERT_TRUE(AddAdditions(session, work, {{"RED", "1"}}));
  EXPECT_EQ(QuickInfo(session, work, work.Rows.size() - 1, Only({0})), (Pairs{{QuickInfoCaption(0), "R-1"}}));
}

TEST_F(QuickInfoTest, InkIsThatOfTheColorOfItsKind) {
  Breaks("RollUps");
  Basic("BOTH", {{"Red", 1}, {"Green", 2}, {"Blue", 3}});
  Ink("BOTH", {{"RED", 100}}, 0, {{"Red", 200}, {"Green", 255}, {"Blue", 0}});
  Basic("NEVER SET", {{"Red", 0}, {"Green", 0}, {"Blue", 0}});
  EXPECT_EQ(InkOf(session, ColorKind::Basic, "both"), (vellumark::Ink{1, 2, 3}));
  EXPECT_EQ(InkOf(session, ColorKind::Mix, "BOTH"), (vellumark::Ink{200, 255, 0}));
  EXPECT_FALSE(InkOf(session, ColorKind::Basic, "NEVER SET"));
  EXPECT_FALSE(InkOf(session, ColorKind::Basic, "RED"));
  EXPECT_FALSE(InkOf(session, ColorKind::Mix, "NOBODY"));
  // A formula without a swatch shows what its inks come to, as far as half of it is known.
  Basic("SKY", {{"Red", 40}, {"Green", 90}, {"Blue", 220}});
  Basic("PAPER", {{"Red", 250}, {"Green", 250}, {"Blue", 250}});
  Mix("PALE", {{"SKY", 10}, {"PAPER", 90}});
  Mix("DEEP", {{"SKY", 60}, {"PAPER", 40}});
  Mix("UNKNOWN", {{"SKY", 40}, {"RED", 60}});
  const auto pale = InkOf(session, ColorKind::Mix, "PALE"), deep = InkOf(session, ColorKind::Mix, "DEEP");
  ASSERT_TRUE(pale && deep);
  EXPECT_TRUE(pale->estimated && deep->estimated);
  EXPECT_GT(pale->Red, deep->Red);
  EXPECT_GT(deep->Blue, deep->Red);
  EXPECT_LT(pale->Red, 250);
  EXPECT_FALSE(InkOf(session, ColorKind::Mix, "UNKNOWN"));
}

TEST_F(QuickInfoTest, TheFaultyLineOfSeveralAdditions) {
  Breaks("RollUps");
  Mixed("MADE", "10");
  const struct {
    std::vector<AdditionLine> lines;
    std::optional<std::size_t> faulty;
  } cases[] = {{{{"RED", "1"}, {"BLUE", "x"}}, 1},
               {{{"NOBODY", "1"}, {"BLUE", "x"}}, 0},
               {{{"RED", "1"}, {"BLUE", "1"}, {"red", "1"}}, 2},
               {{{"RED", "-6"}, {"BLUE", "-4"}}, {}},  // refused as a whole
               {{{"RED", "1"}}, {}}};
  for (const auto& c : cases) EXPECT_EQ(FaultyAddition(session, work, c.lines), c.faulty);
  EXPECT_TRUE(work.Additions.empty());
}

}  // namespace
}  // namespace vellumark::test
