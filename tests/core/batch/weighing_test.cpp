#include "core/batch/weighing.h"

#include "life_room.h"

namespace vellumark::test {
namespace {

using Texts = std::vector<std::string>;

struct Weighing : LifeRoom, testing::Test {
  Weighing() {
    Setting("InvLotTracking", "0");
    session.InvLotTracking = 0;
  }
  Texts Left() {
    Texts left;
    for (const WeighTicket& ticket : RowsToWeigh(record, tolerance, false))
      left.push_back(ticket.name + " " + Fixed(ticket.target, 3));
    return left;
  }
  /// What the operator does with the row of that name: the title of the refusal, or nothing.
  std::string Pour(const std::string& name, double amount, LineKind kind = LineKind::Basic) {
    for (std::size_t i = 0; i < record.work.Rows.size(); ++i) {
      if (record.work.Rows[i].name != name || record.work.Rows[i].kind != kind) continue;
      const auto ticket = OpenWeighing(session, record, i);
      if (!ticket) return ticket.error().text;
      const auto taken = TakePour(session, record, *ticket, amount, tolerance);
      return taken ? "" : taken.error().text;
    }
    return "no row";
  }
  Texts Results() {
    Texts rows;
    Statement row = session.File().Prepare(
        "SELECT ColorName, IngType, BeginningWeight, EndingWeight FROM INK_BatchScaleResults WHERE BatchID = 1 ORDER BY RowKey");
    while (row.Step())
      rows.push_back(fmt::format("{} {} {} {}", row.Text(0), row.Whole(1), ShortestText(row.Single(2)),
                                 ShortestText(row.Single(3))));
    return rows;
  }
  WeighTolerance tolerance;
};

TEST_F(Weighing, AnOverpourReformulatesAndWhatStandsIsToppedUp) {
  MakePink();
  Mixed("PINK", "100");
  EXPECT_EQ(Left(), (Texts{"WHITE 75.000", "RED 25.000"}));
  EXPECT_EQ(Pour("WHITE", 75), "");
  EXPECT_EQ(Pour("WHITE", 1), "WHITE needs no more to be weighed.");
  EXPECT_EQ(Left(), Texts{"RED 25.000"});
  prompt.Expect("Excess Basic Color Weight", Answer::Yes).Expect("Change in Amounts" + std::string(50, ' '), Answer::No);
  EXPECT_EQ(Pour("RED", 26), "");
  EXPECT_EQ(Left(), Texts{"WHITE 3.000"});
  EXPECT_EQ(Pour("WHITE", 3), "");
  EXPECT_EQ(Left(), Texts{});
  EXPECT_FALSE(record.work.settings.Overpour);
  Save();
  EXPECT_EQ(Red(), 74);
  EXPECT_EQ(White(), 122);
  const Texts weighed{"WHITE 1 78 78", "RED 1 25 26"};
  EXPECT_EQ(Results(), weighed);
  // Kept by a save that has nothing to do with the scale; gone with the Batch.
  Open(1);
  EXPECT_FALSE(RecordHasChanged(session, record));
  ASSERT_TRUE(EnterBatchField(session, record, "Notes", "later"));
  Save();
  EXPECT_EQ(Results(), weighed);
  Open(1);
  prompt.Expect("Batch Window - Delete Batch?", Answer::Yes).Expect("Batch Window - Update Inventories?", Answer::Yes);
  ASSERT_TRUE(DeleteBatch(session, record, dialogs).value_or(false));
  EXPECT_EQ(Results(), Texts{});
}

// What was poured is what stock loses, and the formula is not asked about.
TEST_F(Weighing, TooLittleAndANoAreRecordedAsWeighed) {
  MakePink();
  Mixed("PINK", "100");
  ASSERT_TRUE(AddBatchAdditions(session, record, {{"WHITE", "2"}}));
  EXPECT_EQ(Pour("RED", 24), "");
  prompt.Expect("Excess Basic Color Weight", Answer::No);
  EXPECT_EQ(Pour("WHITE", 80), "");
  EXPECT_EQ(Left(), Texts{"WHITE 2.000"});  // the addition that was wanted
  EXPECT_EQ(Pour("WHITE", 1.5, LineKind::Addition), "");
  EXPECT_EQ(Left(), Texts{});
  EXPECT_EQ(record.work.ShownTotal, 105.5);
  ASSERT_TRUE(ApplyAdditionRow(session, record, 2, "5"));  // what weighing left alone, and no more
  Save();
  EXPECT_EQ(Red(), 76);
  EXPECT_EQ(White(), 120);
}

TEST_F(Weighing, ARecycledRowTakesItsWeightAndLeavesTheOthers) {
  MakePink();
  Formula("TINT", {{"RED", 50.0F}, {"WHITE", 50.0F}}, 30);
  Formula("TONE", {{"RED", 10.0F}, {"WHITE", 90.0F}}, 10);
  Mixed("PINK", "100");
  ASSERT_TRUE(TakeRecycled(session, record, "TINT", "30").value_or(false));
  ASSERT_TRUE(TakeRecycled(session, record, "TONE", "10").value_or(false));
  EXPECT_EQ(Pour("TINT", 20.5, LineKind::Mix), "");
  EXPECT_EQ(record.work.Rows.at(0).amount, 20.5);
  EXPECT_EQ(record.work.Rows.at(1).amount, 10);
  EXPECT_EQ(record.work.ShownTotal, 100);
  // Beyond what the recipe takes, and not to be reformulated: nothing is taken.
  const std::string before = Fixed(record.work.ShownTotal, 3);
  prompt.Expect("Excess Recycle Color Weight", Answer::No);
  EXPECT_NE(Pour("TONE", 90, LineKind::Mix).find("does not take"), std::string::npos);
  EXPECT_EQ(Fixed(record.work.ShownTotal, 3), before);
  EXPECT_EQ(record.work.Rows.at(1).amount, 10);
  EXPECT_EQ(Pour("TONE", 10, LineKind::Mix), "");
  EXPECT_EQ(Left().size(), 2U);
  Save();
  EXPECT_EQ(Inventory(ColorKind::Mix, "TINT").Single(), 9.5F);
  EXPECT_EQ(Inventory(ColorKind::Mix, "TONE").Single(), 0);
}

TEST_F(Weighing, ARowThatIsAnotherByNowIsRefusedAndToleranceHolds) {
  MakePink();
  Mixed("PINK", "100");
  const auto ticket = OpenWeighing(session, record, 0);
  ASSERT_TRUE(ticket);
  Remix("200");
  EXPECT_EQ(Title(TakePour(session, record, *ticket, 75, {})), "Weigh Ingredient");
  EXPECT_TRUE(record.weighed.empty());
  SetQuantityText(record.work, "300");
  EXPECT_EQ(Title(OpenWeighing(session, record, 0)), "Recalculate Batch");
  Remix("100");
  tolerance = {1, true};
  EXPECT_EQ(Pour("WHITE", 75.7), "");  // less than a percent over
  EXPECT_EQ(Pour("RED", 24.8), "");
  EXPECT_EQ(Left(), Texts{});
  EXPECT_TRUE(record.work.Additions.empty());
  tolerance = {500, false};
  EXPECT_EQ(Fixed(tolerance.Of(75, 1), 3), "1.102");  // grams in pounds
}

TEST(WeighProgress, FollowsThePour) {
  const struct {
    double poured, tolerance;
    int p;
    WeighColor color;
    const char* percent;
  } cases[] = {{-0.001, 0, -1, WeighColor::Red, "0%"},         {0, 0, 0, WeighColor::White, "0%"},
               {7.499, 0, 74, WeighColor::White, "75%"},       {7.5, 0, 75, WeighColor::LightGreen, "75%"},
               {8.999, 0, 89, WeighColor::LightGreen, "90%"},  {9, 0, 90, WeighColor::Green, "90%"},
               {9.499, 0, 94, WeighColor::Green, "95%"},       {9.5, 0, 95, WeighColor::FullGreen, "95%"},
               {10, 0, 100, WeighColor::FullGreen, "100%"},    {10.001, 0, 101, WeighColor::Red, "100%"},
               {10.1, 0.1, 101, WeighColor::FullGreen, "101%"}, {9, 1, 90, WeighColor::FullGreen, "90%"}};
  for (const auto& [poured, tolerance, p, color, percent] : cases) {
    const WeighProgress progress = FollowPour(poured, 10, tolerance);
    EXPECT_EQ(progress.p, p) << poured;
    EXPECT_EQ(progress.color, color) << poured;
    EXPECT_EQ(progress.percent, percent) << poured;
  }
  EXPECT_EQ(FollowPour(0.285, 0.3).p, 95);
  ScriptedPrompt prompt;
  EXPECT_TRUE(AcceptPour(prompt, 10, 10));
  prompt.Expect("Scale weight is over desired amount", Answer::No, "OK to use overweight value?");
  EXPECT_FALSE(AcceptPour(prompt, 10.001, 10));
  prompt.Expect("Scale weight is under desired amount", Answer::Yes, "OK to use underweight value?");
  EXPECT_TRUE(AcceptPour(prompt, 9.999, 10));
  EXPECT_EQ(InBatchUnit(1000, 3, 2), 1);
  EXPECT_EQ(InBatchUnit(1.2345, 0, 1), 1.235);
}

}  // namespace
}  // namespace vellumark::test
