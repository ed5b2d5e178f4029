#include <random>

#include "core/batch/life_room.h"
#include "core/colors/rename.h"
#include "report_room.h"

namespace vellumark::test {
namespace {

// Batches that are really saved and given to jobs, with stock entered by hand in between.
struct HistoryRoom : LifeRoom {
  HistoryRoom() {
    StoreSettings(session, InitialValues(setting::Batches_UDNum_Format));
    Day(0);
    PinkRoom();
    session.InvLotTracking = 0;
  }

  int Pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); }

  BuiltReport Run(const std::string& key, ReportRequest request) {
    ReportWatch watch(session.progress);
    const auto context = PrepareReport(session, *FindReport(key), request, watch);
    EXPECT_TRUE(context) << (context ? "" : context.error().text);
    return BuildReport(*context);
  }

  // What stands in stock of a colour beyond what its Batches took, where the cutoff cleared it away.
  template <class Act>
  void Watched(Act act) {
    const double before[]{Red(), White()};
    const double taken[]{Consumed("RED"), Consumed("WHITE")};
    act();
    const double after[]{Red(), White()};
    for (int i = 0; i < 2; ++i) remainder[i] += before[i] - (Consumed(i == 0 ? "RED" : "WHITE") - taken[i]) - after[i];
  }
  double Consumed(const std::string& name) {
    double sum = 0;
    for (int i = 0; i < schema::kBatchLines; ++i)
      sum += Scalar(fmt::format("SELECT SUM(ROUND({}, 3)) FROM INK_Batch WHERE {} = ?1", schema::Numbered("IngQty", i),
                                schema::Numbered("IngName", i)),
                    {name})
                 .Number();
    return sum;
  }

  void Day(int day) { clock.Set(DateTime::FromDayNumber(DateTime{2026, 1, 1}.DayNumber() + day)); }

  void Step() {
    switch (Pick(0, 5)) {
      case 0:
      case 1:
        Watched([&] { numbers.push_back(Saved("PINK", std::to_string(Pick(1, 9)))); });
        return;
      case 2:
        Mixed("PINK", "8");
        ASSERT_TRUE(EnterJobNumber(session, record, "J" + std::to_string(Pick(1, 3))));
        ASSERT_TRUE(EnterQtyUsed(session, record, Fixed(Pick(1, 7000) / 1000.0, 3)));
        Watched([&] { numbers.push_back(Save()); });
        return;
      case 3:
        ASSERT_EQ(PostStock(session, {.name = Pick(0, 1) == 0 ? "RED" : "WHITE",
                                      .quantity = static_cast<float>(Pick(-9000, 40000)) / 1000})
                      .outcome,
                  PostingResult::Outcome::Posted);
        return;
      default:
        return;
    }
  }

  std::mt19937 random{20260310};
  std::vector<std::int32_t> numbers;
  double remainder[2]{};
};

double Cell(const BuiltReport& report, const std::string& color, const std::string& key) {
  return LeadingNumber(RowOf(report, color, {key}));
}

TEST(ReportsOfHistory, AgreeWithBatchesJobsAndStock) {
  for (const char* cutoff : {"0", "0.5"}) {
    SCOPED_TRACE(cutoff);
    HistoryRoom room;
    room.Setting("InvCutoff", cutoff);
    std::vector<std::string> stockOfDay;
    const auto stock = [&] {
      return Fixed(room.Red(), 3) + " " + Fixed(room.White(), 3) + " " + Fixed(room.Pink(), 3);
    };
    for (int day = 0; day < 60; ++day) {
      room.Day(day);
      for (int i = 0; i < 2; ++i) room.Step();
      stockOfDay.push_back(stock());
    }
    const DateTime first{2026, 1, 1};
    const auto on = [&](int day) { return DateTime::FromDayNumber(first.DayNumber() + day); };
    const BuiltReport all = room.Run("StockMovement", {.from = first, .to = on(59)});
    const BuiltReport made = room.Run("ProductionForm", {.from = first, .to = on(59), .color = "PINK"});
    const double byJobs = room.Scalar("SELECT SUM(QtyUsed) FROM JobRecords").Number();
    EXPECT_NEAR(Cell(all, "PINK", "Made"), LeadingNumber(TotalText(made, "Quantity")) - byJobs, 0.0005);
    const BuiltReport used = room.Run("SummarizedConsumptionForm", {.from = first, .to = on(59)});
    const char* const names[]{"RED", "WHITE"};
    for (int i = 0; i < 2; ++i) {
      EXPECT_NEAR(-Cell(all, names[i], "Used"), Cell(used, names[i], "QtyConsumed") + room.remainder[i], 0.0005)
          << names[i];
      if (std::string_view(cutoff) == "0") {
        EXPECT_NEAR(room.remainder[i], 0, 0.0005);
      }
    }

    // Whatever the days: what each begins with is what the one before ended with, and each row sums up.
    int at = 0;
    while (at < 60) {
      const int end = std::min(59, at + room.Pick(0, 20));
      const BuiltReport part = room.Run("StockMovement", {.from = on(at), .to = on(end)});
      const BuiltReport past = room.Run("InventoryAsOf", {.range = kCustomRange, .from = first, .to = on(end)});
      std::string closing;
      for (const char* name : {"RED", "WHITE", "PINK"}) {
        std::int64_t sum = 0;
        for (const char* key : {"Opening", "Made", "Received", "Used", "Returned", "WrittenOff"})
          sum += WholeUnits(Cell(part, name, key), 3);
        EXPECT_EQ(Fixed(OfWholeUnits(sum, 3), 3), RowOf(part, name, {"Closing"})) << name;
        closing += (closing.empty() ? "" : " ") + Fixed(Cell(part, name, "Closing"), 3);
        EXPECT_EQ(Cell(past, name, "Inventory"), Cell(part, name, "Closing"));
      }
      EXPECT_EQ(closing, stockOfDay[static_cast<std::size_t>(end)]) << at << " to " << end;
      at = end + 1;
    }
    // An open Batch has handed back what it took; it is not in stock all the same.
    if (room.numbers.empty()) continue;
    const BuiltReport before = room.Run("StockMovement", {.from = first, .to = on(59)});
    room.Open(room.numbers.back());
    EXPECT_EQ(TotalsOf(room.Run("StockMovement", {.from = first, .to = on(59)}), {"Used", "Closing"}),
              TotalsOf(before, {"Used", "Closing"}));
    EXPECT_EQ(TotalsOf(room.Run("InventoryForm", {}), {"Inventory"}), TotalsOf(before, {"Closing"}));
  }
}

TEST(ReportsOfHistory, ValueLotsAndFollowNames) {
  ReportRoom room;
  room.clock.Set({2026, 3, 1, 9, 0, 0});
  room.Color(ColorKind::Basic, "RED", 0);
  const auto post = [&](const DateTime& when, const char* name, PostingSource source, float quantity,
                        const StockPlace& place) {
    room.clock.Set(when);
    PostStock(room.session, {.source = source, .name = name, .quantity = quantity, .place = place});
  };
  const StockPlace lot{.LotNumber = "A1", .LotDate = DateTime{2026, 3, 2}, .LotPrice = 2.5F};
  post({2026, 3, 2, 8, 0, 0}, "RED", PostingSource::ManualAdjust, 5, {});
  post({2026, 3, 3, 8, 0, 0}, "RED", PostingSource::JobRecord, 10, lot);
  post({2026, 3, 3, 23, 59, 59}, "RED", PostingSource::BatchTakes, 4, lot);
  room.clock.Set({2026, 3, 4, 8, 0, 0});
  ASSERT_TRUE(RenameBasic(room.session, "RED", "WARM RED"));
  post({2026, 3, 5, 8, 0, 0}, "WARM RED", PostingSource::ManualAdjust, -2, {});
  const auto asOf = [&](int day) {
    return room.Run("InventoryAsOf", {.from = DateTime{2026, 3, 1}, .to = DateTime{2026, 3, day}});
  };
  EXPECT_EQ(asOf(3).title, "2026-03-05   - Inventory Report  -  INK Database  -  As of 2026-03-03");
  EXPECT_EQ(ReportText(asOf(2), {.headings = false, .totals = false}).substr(0, 8), "WARM RED") << "as it is called";
  EXPECT_EQ(RowOf(asOf(3), "WARM RED", {"LotNumber", "Inventory", "UnitCost", "TotalCost"}),
            "Unlotted Inv. 5.000 4.00 20.00 A1 6.000 2.50 15.00");
  EXPECT_EQ(RowOf(asOf(5), "WARM RED", {"LotNumber", "Inventory", "TotalCost"}),
            "Unlotted Inv. 3.000 12.00 A1 6.000 15.00");
  const BuiltReport moves = room.Run("StockMovement", {.from = DateTime{2026, 3, 3}, .to = DateTime{2026, 3, 5}});
  EXPECT_EQ(RowOf(moves, "WARM RED", {"Opening", "Made", "Received", "Used", "Returned", "WrittenOff", "Closing"}),
            "5.000 0.000 0.000 -4.000 10.000 -2.000 9.000");
  EXPECT_EQ(moves.Rows(), 1U);
  const auto early = room.Try("StockMovement", {.from = DateTime{2026, 1, 1}, .to = DateTime{2026, 2, 1}});
  ASSERT_FALSE(early);
  EXPECT_EQ(early.error().title, "Stock History");
}

}  // namespace
}  // namespace vellumark::test
