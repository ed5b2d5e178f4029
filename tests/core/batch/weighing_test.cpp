#include "core/batch/weighing.h"

#include <array>
#include <map>
#include <random>

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

// What was kept as an addition is white all the same: a Batch that grows takes it up, whether it was saved meanwhile or
// not. In the pot are 10.25 of 11.
TEST_F(Weighing, AnOverpourThatWasKeptIsTakenUpByAGrownBatch) {
  for (const char* name : {"RED", "WHITE", "BLUE"}) Basic(name, 100);
  Formula("THIRDS", {{"RED", 33.333F}, {"BLUE", 33.334F}, {"WHITE", 33.333F}});
  for (const bool reopened : {false, true}) {
    Mixed("THIRDS", "30");
    prompt.Expect("Excess Basic Color Weight", Answer::No);
    EXPECT_EQ(Pour("WHITE", 10.25), "");
    if (reopened) Open(Save());
    prompt.Expect("Excess Basic Color Weight", Answer::Yes).Expect("Change in Amounts" + std::string(50, ' '), Answer::No);
    EXPECT_EQ(Pour("RED", 11), "");
    auto left = Left();
    std::ranges::sort(left);
    EXPECT_EQ(left, (Texts{"BLUE 11.000", "WHITE 0.750"})) << reopened;
    EXPECT_TRUE(record.work.Additions.empty());
    EXPECT_EQ(Pour("WHITE", 0.75) + Pour("BLUE", 11), "");
    Save();
  }
  EXPECT_EQ(White(), 78);
}

// Rows that were weighed keep what they have when recycled ink is poured too full: reformulated, the Batch grows and its
// color stays; otherwise the rest is an addition.
TEST_F(Weighing, ARecycledRowPouredTooFullTakesNothingOutOfThePot) {
  MakePink();
  Formula("TINT", {{"RED", 25.0F}, {"WHITE", 75.0F}}, 200);
  for (const bool reformulate : {true, false}) {
    const float red = Red(), tint = Inventory(ColorKind::Mix, "TINT").Single();
    Mixed("PINK", "60");
    ASSERT_TRUE(TakeRecycled(session, record, "TINT", "40").value_or(false));
    EXPECT_EQ(Pour("RED", 5), "");
    prompt.Expect("Excess Recycle Color Weight", reformulate ? Answer::Yes : Answer::No);
    EXPECT_EQ(Pour("TINT", 48, LineKind::Mix), "");
    EXPECT_EQ(record.work.ShownTotal, reformulate ? 68 : 62);
    EXPECT_EQ(Left(), Texts{reformulate ? "WHITE 15.000" : "WHITE 9.000"});
    EXPECT_EQ(Pour("WHITE", reformulate ? 15 : 9), "");
    Save();
    EXPECT_EQ(Red(), red - 5);
    EXPECT_EQ(Inventory(ColorKind::Mix, "TINT").Single(), tint - 48);
  }
}

// A pot, and whoever pours into it exactly, too much or too little, in any order, and saves the Batch meanwhile.
struct Pot : Weighing {
  Pot() {
    Setting("AllowNegInv", "1");
    for (const char* name : {"RED", "WHITE", "BLUE"}) Basic(name, 2000);
    Formula("PLUM", {{"RED", 41.5F}, {"WHITE", 33.25F}, {"BLUE", 25.25F}});
    Formula("ROSE", {{"RED", 50.0F}, {"WHITE", 50.0F}}, 2000);
    Formula("LILAC", {{"BLUE", 40.0F}, {"WHITE", 60.0F}}, 2000);
  }
  std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(random() % limit); }
  double Amount(double least, double most) { return RoundTo(least + (most - least) * static_cast<double>(Below(1001)) / 1000, 3); }
  static std::string In(LineKind kind, const std::string& name) { return (kind == LineKind::Mix ? "Mix " : "") + name; }

  void Begin() {
    poured.clear();
    Mixed("PLUM", Fixed(Amount(5, 30), 3));
    for (const char* name : {"ROSE", "LILAC"})
      if (Below(2) == 0) (void)TakeRecycled(session, record, name, Fixed(Amount(0.5, 6), 3));
    if (Below(3) == 0) (void)AddBatchAdditions(session, record, {{"WHITE", Fixed(Amount(0.2, 2), 3)}});
  }
  void PourOne(bool exactly) {
    const auto tickets = RowsToWeigh(record, tolerance, false);
    const WeighTicket ticket = tickets.at(Below(tickets.size()));
    const double factor = exactly ? 1 : std::array{1.0, 1.0, Amount(1, 1.2), Amount(0.85, 1)}.at(Below(4));
    const double weight = std::max(0.001, RoundTo(ticket.target * factor, 3));
    if (weight > ticket.target && ticket.kind != LineKind::Addition) {
      const bool grows = Below(2) == 0;
      prompt.Expect(ticket.kind == LineKind::Mix ? "Excess Recycle Color Weight" : "Excess Basic Color Weight",
                    grows ? Answer::Yes : Answer::No);
      if (grows && ticket.kind == LineKind::Basic) prompt.Expect("Change in Amounts" + std::string(50, ' '), Answer::No);
    }
    const double total = record.work.ShownTotal;
    if (const auto taken = TakePour(session, record, ticket, weight, tolerance)) {
      poured[In(ticket.kind, ticket.name)] += weight;
      ++pours;
    } else {
      EXPECT_EQ(record.work.ShownTotal, total) << taken.error().text;
      ++refusals;
    }
  }
  std::int32_t SaveIt() {
    if (OffersFormulaChange(session, record)) dialogs.choices.push_back(ModifiedBatchChoice{});
    return Save();
  }
  // The rows are what is in the pot and what is still to be poured, of each color.
  void Compare() {
    std::map<std::string, double> rows, sums = poured;
    double total = 0;
    for (const BatchRow& row : record.work.Rows) {
      rows[In(row.kind, row.name)] += row.amount;
      total += row.amount;
    }
    for (const WeighTicket& ticket : RowsToWeigh(record, tolerance, false)) sums[In(ticket.kind, ticket.name)] += ticket.target;
    for (const auto& [color, amount] : sums) EXPECT_NEAR(rows[color], amount, 0.01) << color;
    EXPECT_NEAR(record.work.ShownTotal, total, 1e-6);
  }
  std::mt19937_64 random{20260310};
  std::map<std::string, double> poured;
  int pours = 0, refusals = 0;
};

TEST_F(Pot, StockLosesWhatIsInIt) {
  for (int batch = 0; batch < 120 && !HasFailure(); ++batch) {
    SCOPED_TRACE(batch);
    std::map<std::string, double> before;
    const auto stock = [&](const std::string& color) {
      const bool mix = color.starts_with("Mix ");
      return static_cast<double>(Inventory(mix ? ColorKind::Mix : ColorKind::Basic, mix ? color.substr(4) : color).Single());
    };
    for (const char* color : {"RED", "WHITE", "BLUE", "Mix ROSE", "Mix LILAC"}) before[color] = stock(color);
    Begin();
    for (int pour = 0; pour < 40 && !RowsToWeigh(record, tolerance, false).empty() && !HasFailure(); ++pour) {
      PourOne(pour > 10);
      Compare();
      if (Below(6) == 0) Open(SaveIt());
    }
    EXPECT_TRUE(Left().empty());
    SaveIt();
    for (const auto& [color, had] : before) EXPECT_NEAR(had - stock(color), poured[color], 0.01) << color;
  }
  EXPECT_GT(pours, 400);
  EXPECT_LT(refusals, pours / 20);
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
