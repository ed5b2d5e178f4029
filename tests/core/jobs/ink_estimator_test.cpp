#include <gtest/gtest.h>

#include <utility>

#include "core/jobs/ink_estimator.h"
#include "core/session/settings.h"
#include "support/ink_room.h"

namespace vellumark::test {
namespace {

struct EstimatorTest : testing::Test, InkRoom {};

// Square inches a pound, by ink in rows and stock in columns.
constexpr int kTable[8][4] = {{300000, 375000, 400000, 400000}, {275000, 350000, 375000, 375000},
                              {275000, 350000, 375000, 375000}, {225000, 275000, 300000, 300000},
                              {125000, 150000, 175000, 175000}, {200000, 250000, 275000, 275000},
                              {125000, 150000, 150000, 150000}, {325000, 400000, 450000, 425000}};

TEST_F(EstimatorTest, SheetfedGoesByInkStockAndArea) {
  // 20,000 sheets of 10 x 15 inches are 3,000,000 square inches.
  struct Case {
    AreaType area;
    const char* percent;
    double printed;
  };
  for (const Case& area : {Case{AreaType::Solid, "", 3000000}, Case{AreaType::Halftone, "", 1500000},
                           Case{AreaType::Text, "", 600000}, Case{AreaType::Coverage, "35", 1050000}})
    for (int ink = 0; ink < kInkTypes; ++ink)
      for (int stock = 0; stock < kStockTypes; ++stock)
        for (const auto& [unit, length, width] :
             {std::tuple{LengthUnit::Inch, "10", "15"}, std::tuple{LengthUnit::Millimetre, "254", "381"}}) {
          const auto made =
              EstimateSheetfed(session, {{length, width, unit, "20000", area.percent}, ink, stock, area.area, 2});
          ASSERT_TRUE(made);
          EXPECT_NEAR(made->pounds, 2 * area.printed / kTable[ink][stock], 1e-9);
        }
  const auto made = EstimateSheetfed(session, {{"10", "15", LengthUnit::Inch, "20000", ""}, 4, 1, AreaType::Solid, 1});
  EXPECT_EQ(made->PoundsText() + " " + made->KilogramsText(), "20.00 9.09");
  const auto none = EstimateSheetfed(session, {{"10", "15", LengthUnit::Inch, "5", "0"}, 0, 0, AreaType::Coverage, 1});
  EXPECT_EQ(none->PoundsText() + none->KilogramsText(), "0.000.00");
}

TEST_F(EstimatorTest, FlexoGoesByAnilox) {
  // 30,000 labels of 6 x 4 inches are 5,000 square feet; a quarter of it is 1,250.
  const double pounds[4] = {0.625, 1.25, 1.875, 3.75};
  for (int choice = 0; choice < kAniloxChoices; ++choice) {
    EXPECT_NEAR(EstimateFlexo(session, {{"6", "4", LengthUnit::Inch, "30000", "25"}, choice})->pounds, pounds[choice],
                1e-9);
    EXPECT_NEAR(EstimateFlexo(session, {{"152.4", "101.6", LengthUnit::Millimetre, "30000", "25"}, choice})->pounds,
                pounds[choice], 1e-9);
  }
  ASSERT_TRUE(SetAniloxFactors(session, {"0.5", "1", "2", "3"}));
  const auto made = EstimateFlexo(session, {{"6", "4", LengthUnit::Inch, "30000", "25"}, 2});
  EXPECT_EQ(made->PoundsText(), "2.50");
  // Carried over as it is: 2.5 lb. in kilograms, and a quantity that shows as 0.00.
  Setting("UMI", "2");
  EXPECT_FLOAT_EQ(DesignQuantity(session, *made), 1.13398093F);
  EXPECT_FLOAT_EQ(DesignQuantity(session, {0.001234}), 0.00055973297F);
}

TEST_F(EstimatorTest, RefusesWhatIsNoFigure) {
  const auto title = [&](PrintedArea area, AreaType type = AreaType::Coverage) {
    const auto made = EstimateSheetfed(session, {std::move(area), 0, 0, type, 1});
    return made ? std::string("taken") : made.error().title + "/" + made.error().text + "/" + made.error().field;
  };
  using enum LengthUnit;
  EXPECT_EQ(title({"x", "1", Inch, "1", "1"}), "Length - Invalid Data/Bad Value for Length./Length");
  EXPECT_EQ(title({"1", "-1", Inch, "1", "1"}), "Width - Invalid Data/Bad Value for Width./Width");
  EXPECT_EQ(title({"1", "1", Inch, "", "1"}), "Impressions - Invalid Data/Bad Value for Impressions./Impressions");
  EXPECT_EQ(title({"1", "1", Inch, "1", "100.1"}), "Percentage Error/Percent value exceeds 100/Percent");
  EXPECT_EQ(title({"1", "1", Inch, "1", "200"}, AreaType::Solid), "taken");
  EXPECT_EQ(SetMileage(session, 0, 0, "0").error().field, "Mileage");
  EXPECT_EQ(SetAniloxFactors(session, {"1", "1", "no", "1"}).error().field, "Anilox2");
}

TEST_F(EstimatorTest, AMileageThatIsChangedLeavesWhatWasDelivered) {
  ASSERT_TRUE(SetMileage(session, 7, 3, "500000"));
  EXPECT_EQ(Mileage(session, 7, 3), 500000);
  EXPECT_EQ(DefaultMileage(session, 7, 3), 425000);
  EXPECT_EQ(StoredText(session, "InkEstD73") + StoredText(session, "InkEstA73"), "425000500000");
  // One that was spoilt by hand is not divided by.
  Setting("InkEstA00", "0");
  EXPECT_EQ(Mileage(session, 0, 0), 300000);
}

}  // namespace
}  // namespace vellumark::test
