#include "core/colors/rollup.h"

#include <gtest/gtest.h>

#include "core/colors/formulas.h"
#include "core/colors/resets.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

using test::InkRoom;

// Remembers the texts under which work began.
struct HeardProgress final : Progress {
  void Begin(std::string_view text) override { begun.emplace_back(text); }
  void Percent(double value) override { percents.push_back(value); }
  void End() override { ++ended; }
  std::vector<std::string> begun;
  std::vector<double> percents;
  int ended = 0;
};

TEST(RollUp, PassesWriteTheWantedFiguresOnly) {
  InkRoom room;
  room.Breaks("Ingredients");
  room.Basic("A", {{"PurchaseCost", 10.126F}, {"VOC", 0.5F}, {"HAP", 0.1F}});
  room.Basic("B", {{"PurchaseCost", 3.0F}, {"VOC", 0.25F}});
  room.Mix("HALF", {{"a", 50}, {"B", 50}});
  room.Mix("GONE", {{"A", 40}, {"NO ROW", 60}});
  room.Mix("EMPTY", {}, {{"BasicCost", 7.0F}});
  room.session.File().Execute("UPDATE INK_Mix SET BasicCost = NULL, BasicVOC = NULL, BasicHAP = NULL");
  room.session.CostChanged = true;
  room.session.VOCChanged = true;
  UpdateMixVOC(room.session);
  const auto figures = [&](const char* name) {
    const auto mix = ReadMix(room.session, name);
    return std::vector<float>{mix->BasicCost, mix->BasicVOC, mix->BasicHAP};
  };
  using V = std::vector<float>;
  EXPECT_EQ(figures("HALF"), (V{0, 0.375F, 0}));
  EXPECT_TRUE(room.session.CostChanged);
  EXPECT_FALSE(room.session.VOCChanged);
  RunPendingPasses(room.session);
  EXPECT_FALSE(room.session.CostChanged);
  EXPECT_EQ(figures("HALF"), (V{6.56F, 0.375F, 0}));
  EXPECT_EQ(figures("GONE"), (V{4.05F, 0.2F, 0}));
  EXPECT_EQ(figures("EMPTY"), (V{0, 0, 0}));
  EXPECT_TRUE(room.Scalar("SELECT BasicHAP FROM INK_Mix WHERE Color_Name = 'HALF'").IsNull());
  UpdateMixHAP(room.session);
  EXPECT_EQ(figures("HALF"), (V{6.56F, 0.375F, 0.05F}));

  EXPECT_EQ(figures("GONE"), (V{4.05F, 0.2F, 0.04F}));

  // A cost has the decimals of prices, whoever works it out: 10.126 and 3 in equal parts.
  room.session.DecimalPlaces = 3;
  EXPECT_EQ(RollUpRecipe(room.session, {{"A", 50}, {"B", 50}}).BasicCost, 6.563F);
  room.session.File().Execute("UPDATE INK_Mix SET BasicCost = 0");
  UpdateMixBasicCosts(room.session);
  EXPECT_EQ(figures("HALF").front(), 6.563F);
}

TEST(RollUp, ManyFormulasInOneWalk) {
  InkRoom room;
  room.Breaks("ColorSets");
  room.Basic("A", {{"PurchaseCost", 2.0F}});
  room.Mix("F", {{"A", 100}});
  // Past one window of reading, with a gap in the row numbers.
  room.session.File().Execute(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 9000) INSERT INTO INK_Mix (RowKey, "
      "Color_Name, BC0, BQ0) SELECT 5 * i, 'F' || i, 'A', 100.0 FROM n");
  UpdateMixBasicCosts(room.session);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Mix WHERE BasicCost = 2").Whole(), 9001);
}

TEST(RollUp, ProgressNamesThePasses) {
  InkRoom room;
  HeardProgress progress;
  Session session(room.prompt, progress, room.clock);
  session.DataFileDB = std::move(room.session.DataFileDB);
  session.CurrentDatabase = "INK";
  session.VOCChanged = true;
  session.CostChanged = true;
  session.ArchiveView = true;
  RunPendingPasses(session);
  EXPECT_TRUE(progress.begun.empty());
  session.ArchiveView = false;
  RunPendingPasses(session);
  EXPECT_EQ(
      progress.begun,
      (std::vector<std::string>{"Updating Master Formula Basic Costs...\nUpdating Master Formula VOC values..."}));
  EXPECT_EQ(progress.ended, 1);
  RunPendingPasses(session);
  EXPECT_EQ(progress.begun.size(), 1U);
}

TEST(Resets, FiguresOfEveryItem) {
  InkRoom room;
  for (const char* name : {"A", "B"}) room.Basic(name);
  room.Mix("M", {{"A", 100}}, {{"BasicCost", 10.0F}});
  room.Mix("N", {{"B", 100}}, {{"BasicCost", 99000.0F}});
  ASSERT_TRUE(ResetMixCostsFromBasics(room.session, "10", "2"));
  EXPECT_EQ(ReadMix(room.session, "M")->PurchaseCost, 13.0F);
  EXPECT_EQ(ReadMix(room.session, "N")->PurchaseCost, 99999.0F);
  EXPECT_TRUE(room.session.CostChanged);
  ASSERT_TRUE(ResetBasicCosts(room.session, "5.556"));
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Basic WHERE PurchaseCost = ?", {5.56F}).Whole(), 2);
  // The markup counts on fresh figures.
  ASSERT_TRUE(ResetMixCostsFromBasics(room.session, "0", "0"));
  EXPECT_EQ(ReadMix(room.session, "N")->PurchaseCost, 5.56F);
  ASSERT_TRUE(ResetMixCosts(room.session, "0"));
  ASSERT_TRUE(ResetEmissions(room.session, ColorKind::Basic, {.HAP = "0.1234"}));
  EXPECT_TRUE(room.session.HAPChanged);
  ASSERT_TRUE(ResetEmissions(room.session, ColorKind::Mix, {.VOC = "2"}));
  EXPECT_EQ(room.Scalar("SELECT SUM(VOC) FROM INK_Mix"), Value(4.0));
  EXPECT_EQ(room.Scalar("SELECT SUM(PurchaseCost) FROM INK_Mix"), Value(0.0));

  const struct {
    Result<void> result;
    const char* title;
    const char* text;
  } bad[] = {
      {ResetBasicCosts(room.session, "100000"), "Invalid Purchase Cost",
       "Please enter a Purchase Cost between 0 and 99999."},
      {ResetMixCosts(room.session, "-1"), "Invalid Dollar Value", "Please enter a Currency Value between 0 and 99999."},
      {ResetMixCostsFromBasics(room.session, "100.01", "0"), "Invalid Markup Percent",
       "Please enter a Markup Percent between 0 and 100"},
      {ResetEmissions(room.session, ColorKind::Basic, {.VOC = ""}), "Invalid VOC Value",
       "Please enter a VOC value between 0 and 99999."},
      {ResetEmissions(room.session, ColorKind::Mix, {.HAP = "x"}), "Invalid HAP Value",
       "Please enter a HAP value between 0 and 99999."},
  };
  for (const auto& c : bad) {
    ASSERT_FALSE(c.result) << c.title;
    EXPECT_EQ(c.result.error().title, c.title);
    EXPECT_EQ(c.result.error().text, c.text);
  }
}

TEST(Resets, DecimalsOfUnitCosts) {
  InkRoom room;
  room.Basic("A", {{"PurchaseCost", 10.126F}});
  room.Mix("M", {{"A", 100}});
  UpdateMixBasicCosts(room.session);
  EXPECT_EQ(ReadMix(room.session, "M")->BasicCost, 10.13F);
  EXPECT_EQ(ChangeDecimalPlaces(room.session, 4), true);
  EXPECT_EQ(ReadMix(room.session, "M")->BasicCost, 10.126F);
  EXPECT_EQ(room.session.support->settings.GetSupportValue("DecimalPlaces"), "4");
  room.prompt.Expect("Warning", Answer::No);
  room.prompt.Expect("Unit Cost Accuracy", Answer::Ok, "Unit cost data has not been modified.");
  EXPECT_EQ(ChangeDecimalPlaces(room.session, 2), false);
  EXPECT_EQ(room.session.DecimalPlaces, 4);
  room.prompt.Expect("Warning", Answer::Yes);
  EXPECT_EQ(ChangeDecimalPlaces(room.session, 2), true);
  EXPECT_EQ(ReadMix(room.session, "M")->BasicCost, 10.13F);
  EXPECT_EQ(room.Scalar("SELECT PurchaseCost FROM INK_Basic").Single(), 10.126F);
  EXPECT_FALSE(ChangeDecimalPlaces(room.session, 5));
}

}  // namespace
}  // namespace vellumark
