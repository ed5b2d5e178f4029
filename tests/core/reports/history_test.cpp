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
    MakePink();
    session.InvLotTracking = 0;
  }

  int Pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); }

  BuiltReport Run(const std::string& key, const ReportRequest& request) {
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

  // Steps of a day are minutes apart.
  void Day(int day, int minute = 0) {
    DateTime when = DateTime::FromDayNumber(DateTime{2026, 1, 1}.DayNumber() + day);
    when.minute = minute;
    clock.Set(when);
  }

  void Step() {
    if (open != 0) return Finish();
    const int step = Pick(0, 7);
    if (step <= 2) {
      const bool toJob = step == 2;
      Mixed("PINK", toJob ? "8" : std::to_string(Pick(1, 9)));
      const int used = toJob ? Pick(1, 7000) : 0;
      if (toJob) {
        ASSERT_TRUE(EnterJobNumber(session, record, "J" + std::to_string(Pick(1, 3))));
        ASSERT_TRUE(EnterQtyUsed(session, record, Fixed(used / 1000.0, 3)));
      }
      const int quantity = static_cast<int>(WholeUnits(LeadingNumber(record.work.QuantityText), 3));
      Watched([&] { books.batches[Save()] = {quantity, used}; });
    } else if (step == 3) {
      Receive(Pick(0, 1) == 0 ? "RED" : "WHITE", Pick(-9000, 40000));
    } else if (step <= 6 && !books.batches.empty()) {
      Reopen(std::next(books.batches.begin(), Pick(0, static_cast<int>(books.batches.size()) - 1))->first);
    }
  }

  void Receive(const std::string& name, int thousandths) {
    ASSERT_EQ(PostStock(session, {.name = name, .quantity = static_cast<float>(thousandths) / 1000}).outcome,
              PostingResult::Outcome::Posted);
    books.received[name] += thousandths;
  }

  // A Batch is opened, and made of another quantity, given up, deleted, or left open till the next step.
  void Reopen(std::int32_t number) {
    const auto& [quantity, used] = books.batches.at(number);
    switch (Pick(0, used == 0 ? 3 : 1)) {
      case 0:
        return Watched([&, least = used == 0 ? 1 : 8] {
          Open(number);
          Change(number, Pick(least, 12));
        });
      case 1:
        Open(number);
        ASSERT_TRUE(CancelBatch(session, record).value());
        return;
      case 2:
        prompt.Expect("Batch Window - Delete Batch?", Answer::Yes);
        prompt.Expect("Batch Window - Update Inventories?", Answer::Yes);
        return Watched([&] {
          Open(number);
          ASSERT_TRUE(DeleteBatch(session, record, dialogs).value());
          LeaveNext();
          books.batches.erase(number);
        });
      default:
        if (!leavesOpen) return;
        Open(number);
        open = number;
    }
  }
  void Change(std::int32_t number, int quantity) {
    if (quantity * 1000 == books.batches.at(number).first) ++quantity;
    if (record.Date_Entered->Midnight() < clock.Today()) prompt.Expect("Allow Editing?", Answer::Yes);
    Remix(std::to_string(quantity));
    Save();
    LeaveNext();
    books.batches.at(number).first = quantity * 1000;
  }
  // What is saved or deleted makes room for the Batch behind it, which is then open.
  void LeaveNext() {
    if (record.state == BatchState::Edit) {
      ASSERT_TRUE(CancelBatch(session, record).value());
    }
  }
  void Finish() {
    if (Pick(0, 1) == 0) Receive("RED", Pick(1, 5000));
    if (Pick(0, 1) == 0)
      Change(open, Pick(1, 12));
    else
      ASSERT_TRUE(CancelBatch(session, record).value());
    open = 0;
  }

  // What came and went, in thousandths, apart from anything that the program counts. An open Batch is one as it was.
  struct Books {
    std::map<std::int32_t, std::pair<int, int>> batches{};  // quantity, and what of it a job used
    std::map<std::string, int> received{};
    std::string Stock() {
      int red = 100000 + received["RED"];
      int white = 200000 + received["WHITE"];
      int pink = 0;
      for (const auto& [number, batch] : batches) {
        red -= batch.first / 4;
        white -= batch.first / 4 * 3;
        pink += batch.first - batch.second;
      }
      return Fixed(red / 1000.0, 3) + " " + Fixed(white / 1000.0, 3) + " " + Fixed(pink / 1000.0, 3);
    }
  };

  std::mt19937 random{20260310};
  Books books;
  std::int32_t open = 0;
  bool leavesOpen = false;
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
    // What the cutoff clears away the books do not know.
    const bool exact = std::string_view(cutoff) == "0";
    room.leavesOpen = exact;
    std::vector<std::string> stockOfDay;
    const auto stock = [&] {
      return Fixed(room.Red(), 3) + " " + Fixed(room.White(), 3) + " " + Fixed(room.Pink(), 3);
    };
    for (int day = 0; day < 60; ++day) {
      for (int i = 0; i < 2; ++i) {
        room.Day(day, i);
        room.Step();
      }
      stockOfDay.push_back(exact ? room.books.Stock() : stock());
      if (room.open == 0) {
        ASSERT_EQ(stock(), stockOfDay.back()) << day;
      }
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
      if (exact) {
        EXPECT_NEAR(room.remainder[i], 0, 0.0005);
      }
    }

    // On no day, also of those on which a Batch was open over night, is there more than was there.
    for (int day = 0; day < 60; ++day) {
      const BuiltReport until = room.Run("StockMovement", {.from = first, .to = on(day)});
      std::string closing;
      for (const char* name : {"RED", "WHITE", "PINK"})
        closing += (closing.empty() ? "" : " ") + Fixed(Cell(until, name, "Closing"), 3);
      EXPECT_EQ(closing, stockOfDay[static_cast<std::size_t>(day)]) << day;
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
    if (room.open != 0 || room.books.batches.empty()) continue;
    const BuiltReport before = room.Run("StockMovement", {.from = first, .to = on(59)});
    room.Open(room.books.batches.rbegin()->first);
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
            "Unlotted Inv. 5.000 4.00 20.00 A1 6.000 4.00 24.00");
  EXPECT_EQ(RowOf(asOf(5), "WARM RED", {"LotNumber", "Inventory", "TotalCost"}),
            "Unlotted Inv. 3.000 12.00 A1 6.000 24.00");
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
