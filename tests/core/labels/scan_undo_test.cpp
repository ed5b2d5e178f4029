#include "core/labels/scan_undo.h"

#include "core/colors/rename.h"
#include "core/datafile/stock_trail.h"
#include "core/inventory/taking_back.h"
#include "core/jobs/job_room.h"
#include "core/labels/scan_plan.h"
#include "core/labels/scan_return.h"

#include <random>

namespace vellumark::test {
namespace {

using State = ScanRecord::State;

struct ScanUndoTest : testing::Test, JobRoom {
  ScanRecord Scan(const std::string& text) {
    ScanRecord record = ParseScan(text).at(0);
    BookScan(session, record);
    EXPECT_EQ(record.state, State::Successful) << record.Message;
    return record;
  }
  std::string Undo(std::int64_t line) { return Told(UndoScan(session, line)); }
};

TEST_F(ScanUndoTest, TakesStockBackToWhatWasThereAndOnce) {
  const std::string once = "Scan Booking: Line {} of the stock history {}.";
  ScanRecord lot = Scan("<CN>RED\n<DB>INK\n<LN>L1\n<LC>C7\n5");
  const std::int64_t line = lot.Line;
  ASSERT_TRUE(UndoScan(session, lot));
  EXPECT_EQ(InLot("RED", 1), 50);
  EXPECT_EQ(lot.state, State::Failed);
  EXPECT_EQ(Undo(line), fmt::format(fmt::runtime(once), line, "was taken back already"));
  const std::int64_t back = LastStockLine(session.File());
  EXPECT_EQ(Undo(back), fmt::format(fmt::runtime(once), back, "takes another one back"));
  BookScan(session, lot);  // mended and run again
  EXPECT_EQ(InLot("RED", 1), 55);
  // A lot that the scan made goes; while Lotted Inventory is off, too.
  const ScanRecord made = Scan("<CN>PINK\n<LN>NEW\n3");
  Setting("InvLotTracking", "0");
  EXPECT_EQ(Undo(made.Line), "");
  EXPECT_EQ(LotQtyTotal(session, ColorKind::Mix, "PINK"), 10.0F);
  const ScanRecord unlotted = Scan("<CN>PINK\n2");
  EXPECT_EQ(Undo(unlotted.Line), "");
  EXPECT_EQ(Unlotted("PINK", ColorKind::Mix), 20);
  Setting("InvLotTracking", "1");

  // What was built on it stays.
  const ScanRecord used = Scan("<CN>PINK\n<LN>NEW\n3");
  PostStock(session, {.source = PostingSource::BatchTakes,
                      .kind = ColorKind::Mix,
                      .name = "PINK",
                      .quantity = 2,
                      .place = {.LotNumber = "NEW"}});
  EXPECT_EQ(Undo(used.Line),
            fmt::format(fmt::runtime(once), used.Line, "added 3.000, of which only 1.000 is left there"));
  PostStock(session, {.source = PostingSource::BatchTakes,
                      .kind = ColorKind::Mix,
                      .name = "PINK",
                      .quantity = 1,
                      .place = {.LotNumber = "NEW"}});
  EXPECT_EQ(Undo(used.Line), fmt::format(fmt::runtime(once), used.Line, "is of the lot NEW, which is no longer there"));
  EXPECT_EQ(Undo(99999), fmt::format(fmt::runtime(once), 99999, "does not exist"));
  const std::int64_t batch = LastStockLine(session.File());
  EXPECT_EQ(Undo(batch), fmt::format(fmt::runtime(once), batch, "is no scanned booking"));
}

TEST_F(ScanUndoTest, StockIsTakenFromTheColorThatItWentToUnderItsNewName) {
  const ScanRecord scanned = Scan("<CN>RED\n<DB>INK\n<LN>L1\n5");
  ASSERT_TRUE(RenameBasic(session, "RED", "CRIMSON"));
  Color(ColorKind::Basic, "RED", 0);
  Lot(ColorKind::Basic, "RED", 1, 50);
  EXPECT_EQ(Undo(scanned.Line), "");
  EXPECT_EQ(InLot("CRIMSON", 1), 50);
  EXPECT_EQ(InLot("RED", 1), 50);
}

TEST_F(ScanUndoTest, AReturnThatTookItsItemOffTheJobPutsItBackWhole) {
  JobRecord before = Add("J1", "RED", 10, 1);
  before = Row(before.row);
  before.UD_Text[2] = "Press 3";
  StoreJobRecord(session, before);
  const ScanRecord part = Scan("<JN>J1\n<CN>RED\n4");
  const ScanRecord all = Scan("<JN>J1\n<CN>RED\n6");
  EXPECT_FALSE(JobIsThere(session, "J1"));
  EXPECT_EQ(InLot("RED", 1), 50);
  EXPECT_EQ(Undo(part.Line).substr(0, 11), "Job Booking") << "its item is gone; the later return comes first";
  EXPECT_EQ(Undo(all.Line), "");
  EXPECT_EQ(Undo(part.Line), "");
  ASSERT_EQ(JobItems(session, "J1").size(), 1U);
  JobRecord after = JobItems(session, "J1").front();
  EXPECT_EQ(InLot("RED", 1), 40);
  EXPECT_EQ(after.QtyUsed, 10);
  EXPECT_EQ(after.QtyIssued, 10);
  EXPECT_EQ(after.UD_Text, before.UD_Text);
  EXPECT_EQ(after.BatchNo, before.BatchNo);
  EXPECT_EQ(after.Date_Entered, before.Date_Entered);
  EXPECT_NE(Undo(all.Line), "");

  // The stock has gone elsewhere meanwhile: nothing of it happens.
  const ScanRecord again = Scan("<JN>J1\n<CN>RED\n10");
  PostStock(session, {.source = PostingSource::ManualAdjust, .name = "RED", .quantity = -45, .place = {.LotRefID = 1}});
  EXPECT_NE(Undo(again.Line), "");
  EXPECT_FALSE(JobIsThere(session, "J1"));
  EXPECT_EQ(InLot("RED", 1), 5);
}

// Bookings and takings back at random: what a record booked is what its undo gives, to the last thousandth.
TEST_F(ScanUndoTest, ARandomStreamOfBookingsTakenBackEndsWhereItBegan) {
  for (const char* job : {"J1", "J2"}) Add(job, "RED", 10, 1), Add(job, "PINK", 3, 0, ColorKind::Mix);
  const auto state = [&] {
    std::string text = fmt::format("{} {} {}", InLot("RED", 1), Unlotted("PINK", ColorKind::Mix),
                                   LotQtyTotal(session, ColorKind::Basic, "RED"));
    for (const char* job : {"J1", "J2"})
      for (const JobRecord& row : JobItems(session, job))
        text += fmt::format(" {} {} {}", job, row.Color_Name, row.QtyUsed);
    return text;
  };
  std::mt19937 random(3);
  std::vector<std::pair<std::string, std::int64_t>> booked;
  for (int i = 0; i < 200; ++i) {
    if (!booked.empty() && random() % 3 == 0) {
      ASSERT_EQ(Undo(booked.back().second), "");
      ASSERT_EQ(state(), booked.back().first);
      booked.pop_back();
      continue;
    }
    const std::string quantity = fmt::format("{:.3f}", static_cast<double>(1 + random() % 4000) / 1000);
    const char* const scans[] = {"<JN>J1\n<CN>RED\n", "<JN>J2\n<CN>PINK\n", "<CN>RED\n<DB>INK\n<LN>L1\n",
                                 "<CN>RED\n<DB>INK\n<LN>X\n"};
    const std::string before = state();
    ScanRecord record = ParseScan(scans[random() % 4] + quantity).at(0);
    BookScan(session, record);
    if (record.state == State::Successful) booked.emplace_back(before, record.Line);
  }
  EXPECT_GT(booked.size(), 10U);
}

TEST_F(ScanUndoTest, APreviewTellsWhatEachRecordWillDoAndDoesNothing) {
  Add("J1", "RED", 10, 1);
  const std::int64_t lines = LastStockLine(session.File());
  ScanPreview preview;
  const auto plans = [&](const std::string& text) {
    preview.Show(session, ParseScan(text));
    std::vector<std::string> told;
    for (const ScanPlan& plan : preview.Plans()) {
      const char* const kinds[] = {"? ", "+ ", "! "};
      told.push_back(kinds[static_cast<int>(plan.kind)] + plan.name + ": " + plan.text);
    }
    return told;
  };
  using Texts = std::vector<std::string>;
  const std::string first = "<CN>PINK\n<LN>L1\n2\n";
  const std::string two = first + "<JN>j1\n<CN>red\n7\n";
  EXPECT_EQ(plans("<CN>PINK\n<LN>L1"), (Texts{"? PINK: Adds its quantity to lot L1"}));
  EXPECT_EQ(plans(two),
            (Texts{"+ PINK: Adds 2.000 lb. to lot L1", "+ RED: Brings 7.000 lb. back from Job J1, 3.000 stays out"}));
  // The second return is measured by what the first one leaves.
  EXPECT_EQ(plans(two + "<JN>J1\n<CN>RED\n3.5").at(2).substr(0, 57),
            "! RED: Quantity returned to the Job Number: J1 was larger");
  EXPECT_EQ(plans(two + "<JN>J1\n<CN>RED\n3").at(2), "+ RED: Brings 3.000 lb. back from Job J1, all of it");
  EXPECT_EQ(plans(first + "<CN>NONE\n1").at(1),
            "! NONE: NONE wasn't found in any database, couldn't update the inventory.");
  EXPECT_EQ(plans(first + "<CN>PINK\n<LN>L9\n<LL>SHELF\n1").at(1), "+ PINK: Adds 1.000 lb. to the new lot L9, SHELF");
  EXPECT_EQ(LastStockLine(session.File()), lines);
  const auto totals = TotalsOfScan(ParseScan(two + "<JN>J1\n<CN>RED\n0.25"));
  ASSERT_EQ(totals.size(), 2U);
  EXPECT_EQ(fmt::format("{} {} {}", totals[1].JobNumber, totals[1].containers, totals[1].quantity), "J1 2 7.25");
}

TEST_F(ScanUndoTest, OneOfSeveralItemsIsPicked) {
  Add("J3", "RED", 3, 1);
  const JobRecord second = Add("J3", "RED", 2, 1);
  ScanRecord record = ParseScan("<JN>J3\n<CN>RED\n<LN>L1\n1").at(0);
  BookScan(session, record);
  ASSERT_EQ(record.state, State::Failed);
  ASSERT_EQ(RowsToPick(session, record).size(), 2U);
  record.jobRow = second.row;
  BookScan(session, record);
  EXPECT_EQ(record.Message, "Job Number: J3  updated successfully.");
  EXPECT_EQ(Row(second.row).QtyUsed, 1);
  record = ParseScan("<JN>J3\n<CN>RED\n1").at(0);
  record.jobRow = 99;
  BookScan(session, record);
  EXPECT_EQ(record.Message, "The item that was picked is no longer on Job Number: J3");
}

}  // namespace
}  // namespace vellumark::test
