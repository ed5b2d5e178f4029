#include "core/batch/cost.h"

#include <gtest/gtest.h>

#include "batch_room.h"
#include "core/base/units.h"
#include "core/batch/additions.h"

namespace vellumark {
namespace {

struct Costed {
  std::string title;
  int decimals;
  int unit;  ///< of the Batch; inventory is in pounds
  BatchCostModel model;
  const char* basics;
  const char* mixes;
  const char* markup;
  const char* total;
  const char* perUnit;
  const char* arithmetic;
};

class CostOfBatch : public testing::TestWithParam<Costed> {};

// 100 of TARGET: 30 VIOLET recycled, 45 RED, 25 BLUE, and 2 DRIER added: 102 in all.
struct CostRoom : test::BatchRoom {
  CostRoom() {
    Setting("InvLotTracking", "0");
    Basic("RED", {{"PurchaseCost", 4.125F}, {"VOC", 0.5F}, {"HAP", 0.25F}});
    Basic("BLUE", {{"PurchaseCost", 6.0625F}, {"VOC", 1.0F}, {"HAP", 2.0F}});
    Basic("DRIER", {{"PurchaseCost", 10.5F}, {"VOC", 3.0F}, {"HAP", 0.5F}});
    Mix("TARGET", {{"RED", 60}, {"BLUE", 40}}, {{"PurchaseCost", 7.125F}});
    Ink("VIOLET", {{"RED", 50}, {"BLUE", 50}}, 30,
        {{"BasicCost", 5.25F},
         {"PurchaseCost", 8.5F},
         {"BasicVOC", 0.75F},
         {"VOC", 0.5F},
         {"BasicHAP", 1.125F},
         {"HAP", 1.0F}});
  }
};

TEST_P(CostOfBatch, GivesTheFigures) {
  const Costed& example = GetParam();
  SCOPED_TRACE(example.arithmetic);
  CostRoom room;
  room.Breaks("RollUps");
  room.Setting("DecimalPlaces", std::to_string(example.decimals));
  room.Start("TARGET", "100");
  room.work.UMF = example.unit;
  room.work.cost = example.model;
  if (example.unit == UnitOunce) room.HaveStock(ColorKind::Mix, 1.875F);  // 30 oz.
  ASSERT_TRUE(RecycleAction(room.session, room.work));
  ASSERT_TRUE(AddAdditions(room.session, room.work, {{"DRIER", "2"}}));
  ASSERT_EQ(Fixed(room.work.ShownTotal, 3), "102.000");
  const BatchFigures& figures = room.work.figures;
  EXPECT_EQ(figures.CostOfBasics.Fixed(example.decimals), example.basics);
  EXPECT_EQ(figures.CostOfMixes.Fixed(example.decimals), example.mixes);
  EXPECT_EQ(figures.Markup.Fixed(example.decimals), example.markup);
  EXPECT_EQ(figures.TotalCost.Fixed(example.decimals), example.total);
  EXPECT_EQ(figures.UnitCost.Fixed(UnitCostDecimals(room.session, room.work)), example.perUnit);
}

BatchCostModel Model(int type, int mixes, float fixed = 0, float perUnit = 0, float markup = 0) {
  return {.CostModelType = type,
          .MixCostOption = mixes,
          .FixedCostOfBatch = fixed,
          .FixedCostPerUnit = perUnit,
          .MarkupPercent = markup,
          .MixVOCModelType = 0,
          .MixHAPModelType = 0};
}

INSTANTIATE_TEST_SUITE_P(
    OnPaper, CostOfBatch,
    testing::Values(
        Costed{"BasicCosts2", 2, UnitPound, Model(0, 0), "358.19", "157.50", "0.00", "515.69", "5.06",
               "45x4.125=185.625 -> 185.63; +25x6.0625=151.5625 -> 337.19; +2x10.5=21 -> 358.19"},
        Costed{"BasicCosts3", 3, UnitPound, Model(0, 0), "358.188", "157.500", "0.000", "515.688", "5.056",
               "185.625; 337.1875 -> 337.188; 358.188; 515.688/102=5.05576"},
        Costed{"BasicCosts4", 4, UnitPound, Model(0, 0), "358.1875", "157.5000", "0.0000", "515.6875", "5.0558",
               "185.625; 337.1875; 358.1875"},
        Costed{"PurchaseCosts", 2, UnitPound, Model(0, 1), "358.19", "255.00", "0.00", "613.19", "6.01",
               "VIOLET 30x8.5"},
        Costed{"RecycledForNothing", 2, UnitPound, Model(0, 2), "358.19", "0.00", "0.00", "358.19", "3.51", ""},
        Costed{"FixedAndMarkup", 4, UnitPound, Model(0, 0, 12.5F, 0.25F, 10), "358.1875", "157.5000", "51.5688",
               "604.7563", "5.9290",
               "markup 51.56875 -> 51.5688; 100x.25=25 (not 102); 515.6875+12.5+25+51.5688; /102=5.92898"},
        Costed{"FormulaCost", 2, UnitPound, Model(1, 1), "726.75", "0.00", "0.00", "726.75", "7.13",
               "7.125x102; the option of recycled ink has no effect"},
        Costed{"FormulaCostMarkup", 3, UnitPound, Model(1, 0, 0, 0, 5), "726.750", "0.000", "36.338", "763.088",
               "7.481", "726.75x.05=36.3375 -> 36.338"},
        Costed{"OuncesTell4", 2, UnitOunce, Model(0, 2), "22.38", "0.00", "0.00", "22.38", "0.2194",
               "11.60; +9.4727 -> 21.07; +1.3125 -> 22.38; /102"},
        Costed{"OuncesOfPounds", 4, UnitOunce, Model(0, 0, 0, 0.32F), "22.3868", "9.8438", "0.0000", "34.2306",
               "0.3356", "f=1/16: 185.625/16=11.6016; +9.4727 -> 21.0743; +1.3125 -> 22.3868; 100x.32/16=2"}),
    [](const auto& info) { return info.param.title; });

TEST(Emissions, ByModelOfRecycledInk) {
  CostRoom room;
  room.Breaks("RollUps");
  room.Recycled("TARGET", "100");
  ASSERT_TRUE(AddAdditions(room.session, room.work, {{"DRIER", "2"}}));
  // Basics: VOC 45x.5 + 25x1 + 2x3 = 53.5, HAP 45x.25 + 25x2 + 2x.5 = 62.25. VIOLET 30x.75 = 22.5 or 30x.5 = 15;
  // 30x1.125 = 33.75 or 30x1 = 30.
  struct Case {
    int model;
    float voc, hap;
  };
  for (const Case& c : {Case{0, 76, 96}, Case{1, 68.5F, 92.25F}, Case{2, 53.5F, 62.25F}}) {
    room.work.cost.MixVOCModelType = c.model;
    room.work.cost.MixHAPModelType = c.model;
    CalculateFigures(room.session, room.work);
    EXPECT_EQ(room.work.figures.VOC, c.voc);
    EXPECT_EQ(room.work.figures.HAP, c.hap);
  }
}

TEST(CostDefaults, ComeFromTheSettingsAndABatchWithoutRowsCostsNothingPerUnit) {
  CostRoom room;
  room.Breaks("RollUps");
  room.Setting("MixCostOption", "1");
  room.Setting("FixedCostOfBatch", "2.5");
  room.Setting("MarkupPercent", "150");
  room.Setting("VOCModelType", "7");
  room.Setting("UMF", "4");
  room.Start("NOBODY", "10");
  EXPECT_EQ(room.work.UMF, 4);
  EXPECT_EQ(room.work.cost.MixCostOption, 1);
  EXPECT_EQ(room.work.cost.FixedCostOfBatch, 2.5F);
  EXPECT_EQ(room.work.cost.MarkupPercent, 0) << "out of range: the default";
  EXPECT_EQ(room.work.cost.MixVOCModelType, 0);
  EXPECT_EQ(UnitCostCaption(room.work), "Cost per oz.");
  ASSERT_TRUE(MixAction(room.session, room.work));
  EXPECT_EQ(room.work.figures.TotalCost.Fixed(2), "2.50");
  EXPECT_EQ(room.work.figures.UnitCost.Fixed(2), "0.00");
}

}  // namespace
}  // namespace vellumark
