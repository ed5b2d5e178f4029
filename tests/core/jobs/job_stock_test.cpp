// What Jobs take from stock, give back, and what that does to stock and history.

#include "core/base/number.h"
#include "core/colors/rename.h"
#include "core/jobs/job_bookings.h"
#include "core/jobs/job_item_work.h"
#include "core/jobs/job_tables.h"
#include "core/session/settings.h"
#include "job_room.h"

namespace vellumark::test {
namespace {

TEST(JobItems, AnAddTakesFromEachPlaceAndTellsTheHistory) {
  JobRoom room;
  JobItemEntry entry = room.Entry("J1", "RED", 10);
  entry.takes.push_back({1, "L1", 5});
  room.AddRow(schema::Designs, {{"DesignID", "FLAG"}, {"Description", "A flag"}});
  entry.DesignID = "flag";
  const auto added = AddJobItems(room.session, entry);
  ASSERT_TRUE(added) << added.error().text;
  EXPECT_EQ(room.Unlotted("RED"), 90);
  EXPECT_EQ(room.InLot("RED", 1), 45);
  const Job job = LoadJob(room.session, "j1");
  ASSERT_EQ(job.items.size(), 2U);
  const JobRecord& lotted = job.items[1];
  EXPECT_EQ(job.items[0].BatchNo, 1'000'001);
  EXPECT_EQ(lotted.BatchNo, 1'000'002);
  EXPECT_EQ(lotted.LotNumber, "L1");
  EXPECT_EQ(job.items[0].LotNumber, "Unlotted Inv.");
  EXPECT_EQ(lotted.UnitCost, 2.5F);
  EXPECT_EQ(lotted.DesignDesc, "A flag");
  EXPECT_EQ(lotted.Color_Code, "R1");
  EXPECT_FALSE(job.Date_Completed);
  EXPECT_EQ(room.Scalar("SELECT LastUsed FROM Designs").Text(), "2026-03-10 12:00:00");
  EXPECT_EQ(job.totals.QtyUsed, 15);
  EXPECT_EQ(job.totals.Cost, 37.5);
  EXPECT_EQ(job.totals.VOC, 7.5);
  EXPECT_EQ(room.Scalar("SELECT Document || ' ' || Reason FROM MSysStockHistory ORDER BY ID DESC").Text(),
            "J1 Item 1000002: Qty Used 0.000 to 5.000");
  EXPECT_EQ(room.Scalar("SELECT Change FROM MSysStockHistory ORDER BY ID DESC"), Value(-5.0));
}

TEST(JobItems, WhatIsRefusedTakesNothing) {
  JobRoom room;
  room.Lot(ColorKind::Basic, "RED", 2, 30, {{"LotConsignment", true}});
  StoreSettings(room.session, {setting::JobUDTxtRequired[2].To(true)});
  const auto told = [&](const JobItemEntry& entry) { return room.Told(AddJobItems(room.session, entry)); };
  EXPECT_EQ(told(room.Entry("J", "RED", 1)), "More Data Incomplete: Required User Defined Text Fields Incomplete.");
  StoreSettings(room.session, {setting::JobUDTxtRequired[2].To(false)});
  EXPECT_EQ(told(room.Entry(" ", "RED", 1)), "Job Number Needed: Please enter a Job Number.");
  EXPECT_EQ(told(room.Entry("- split -", "RED", 1)),
            "Choose Another Job Number: - SPLIT - is not a Job Number.");
  EXPECT_EQ(told(room.Entry("J", "BLUE", 1)), "Color Not Found: This Color was not found in the selected Database.");
  EXPECT_EQ(told(room.Entry("J", "RED", 50.001F, 1)),
            "Exceeds Lotted: Qty Used cannot be set higher than 50.000\nLot Number L1");
  EXPECT_EQ(told(room.Entry("J", "RED", 1, 2)),
            "Lot on Consignment: The lot L2 of RED is held on consignment.");
  EXPECT_EQ(told(room.Entry("J", "RED", 0)), "Add Job Item: You must enter an amount above 0, up to 99999.");
  // Two places of one lot hold no more than the lot.
  JobItemEntry twice = room.Entry("J", "RED", 30, 1);
  twice.takes.push_back(twice.takes.front());
  EXPECT_EQ(told(twice), "Exceeds Lotted: Qty Used cannot be set higher than 20.000\nLot Number L1");
  room.prompt.Expect("Exceeds UnLotted", Answer::Cancel,
                     "Amount entered is larger than inventory on file.\n\nOK - Use ammount\nCancel - Correct amount.");
  EXPECT_EQ(told(room.Entry("J", "RED", 100.001F)), "Exceeds UnLotted: ");
  room.Lot(ColorKind::Basic, "RED", 3, 5, {{"LotNumber", "L1"}, {"LotLoc", "HALL"}});
  JobItemEntry numbered = room.Entry("J", "RED", 1, 1);
  numbered.takes.front().LotRefID = 0;
  EXPECT_EQ(told(numbered),
            "Multiple Lots: RED has several lots L1. Name one by its LotRefID:\n1: 50.000  \n3: 5.000 HALL ");
  for (const JobStock& place : JobStockOf(room.session, {}, "RED", ColorKind::Basic, {})) EXPECT_NE(place.LotRefID, 2);
  EXPECT_EQ(room.Unlotted("RED"), 100);
  EXPECT_EQ(room.InLot("RED", 1), 50);
  EXPECT_EQ(room.Scalar("SELECT ItemNumber FROM FileInfo").Whole(), 1);
}

TEST(JobItems, CostingOfAFormula) {
  JobRoom room;
  struct Case {
    JobCosting costing;
    std::int32_t lot;
    float cost;
    float VOC;
    float HAP;
  };
  for (const Case& one : {Case{{0, 0, 0}, 1, 5.0F, 0.2F, 0.1F}, {{0, 1, 1}, 0, 3.0F, 0.7F, 0}, {{1, 2, 2}, 1, 6.0F, 0, 0},
                          {{2, 0, 0}, 1, 3.0F, 0.2F, 0.1F}, {{3, 0, 0}, 0, 0, 0.2F, 0.1F}}) {
    JobItemEntry entry = room.Entry("J", "PINK", 1, one.lot, ColorKind::Mix);
    entry.costing = one.costing;
    const auto added = AddJobItems(room.session, entry);
    ASSERT_TRUE(added);
    EXPECT_EQ(added->front().UnitCost, one.cost);
    EXPECT_EQ(added->front().VOC, one.VOC);
    EXPECT_EQ(added->front().HAP, one.HAP);
  }
}

TEST(JobItems, NumbersBeginAnewAndPassOverThoseInUse) {
  JobRoom room;
  const JobRecord first = room.Add("J", "RED", 1);
  room.session.File().Execute("UPDATE FileInfo SET ItemNumber = 999999");
  EXPECT_EQ(room.Add("J", "RED", 1).BatchNo, 1'999'999);
  EXPECT_EQ(room.session.ItemNumber, 1);
  EXPECT_EQ(room.Add("J", "RED", 1).BatchNo, 1'000'002);
  EXPECT_EQ(first.BatchNo, 1'000'001);
  room.Breaks("Counters");  // the highest number is the one before the first
}

TEST(JobUsed, TheCeilingOfAStockItem) {
  JobRoom room;
  room.Setting("InvCutoff", "0");
  const JobRecord lotted = room.Add("J", "RED", 20, 1);
  const auto set = [&](const JobRecord& item, const char* typed) {
    return room.Told(SetQtyUsed(room.session, item.row, typed));
  };
  EXPECT_EQ(set(lotted, "12"), "");
  EXPECT_EQ(room.InLot("RED", 1), 38);
  EXPECT_EQ(set(lotted, "50.001"), "Exceeds Lotted: Qty Used cannot be set higher than 50.000\nLot Number L1");
  // Another posting empties the lot meanwhile.
  PostStock(room.session, {.source = PostingSource::ManualAdjust, .name = "RED", .quantity = -30, .place = {.LotRefID = 1}});
  EXPECT_EQ(set(lotted, "20.001"), "Exceeds Lotted: Qty Used cannot be set higher than 20.000\nLot Number L1");
  EXPECT_EQ(set(lotted, "20"), "");
  EXPECT_EQ(room.Row(lotted.row).QtyIssued, 20);
  EXPECT_EQ(room.Row(lotted.row).Date_Returned->ToText(), "2026-03-10 00:00:00");
  EXPECT_EQ(set(lotted, "0"),
            "Usage Notice: Cannot set the Qty Used to zero.\nTo clear this Job Item, click on this item's Batch/Item "
            "Number\nand click the Delete Item button.");
  const JobRecord unlotted = room.Add("J", "RED", 90);
  room.prompt.Expect("Exceeds UnLotted", Answer::Cancel);
  EXPECT_EQ(set(unlotted, "101"), "Exceeds UnLotted: ");
  for (const bool negative : {false, true}) {
    room.Setting("AllowNegInv", negative ? "1" : "0");
    room.prompt.Expect("Exceeds UnLotted", Answer::Ok);
    EXPECT_EQ(set(unlotted, negative ? "102" : "101"), "");
    EXPECT_EQ(room.Unlotted("RED"), negative ? -1 : 0);
    EXPECT_EQ(room.Row(unlotted.row).QtyIssued, negative ? 102 : 101);
    EXPECT_EQ(set(unlotted, "91"), "");
    EXPECT_EQ(room.Unlotted("RED"), 10);
  }
}

// The cutoff takes away when stock is issued and never when it comes back; a lot that is gone comes back as it was.
TEST(JobUsed, WhatComesBackStays) {
  JobRoom room;
  const JobRecord item = room.Add("J", "RED", 49.8F, 1);
  EXPECT_EQ(room.InLot("RED", 1), -1);
  ASSERT_TRUE(SetQtyUsed(room.session, item.row, "49.4"));
  EXPECT_EQ(room.InLot("RED", 1), 0.4F);
  EXPECT_EQ(room.Scalar("SELECT LotNumber || LotDate FROM INK_Basic_LotInv").Text(), "L12026-01-15 00:00:00");
  EXPECT_EQ(room.Scalar("SELECT LotPrice FROM INK_Basic_LotInv").Number(), 1);
  const JobRecord pink = room.Add("J", "PINK", 20, 0, ColorKind::Mix);
  ASSERT_TRUE(SetQtyUsed(room.session, pink.row, "19.6"));
  EXPECT_EQ(room.Unlotted("PINK", ColorKind::Mix), 0.4F);
  // Its reference is a stranger's by now.
  ASSERT_TRUE(SetQtyUsed(room.session, item.row, "49.8"));
  room.Lot(ColorKind::Basic, "RED", 1, 7, {{"LotNumber", "STRANGER"}});
  ASSERT_TRUE(SetQtyUsed(room.session, item.row, "40"));
  EXPECT_EQ(room.InLot("RED", 1), 7);
  EXPECT_NE(room.Row(item.row).LotRefID, 1);
  EXPECT_EQ(room.InLot("RED", room.Row(item.row).LotRefID), 9.8F);
}

// Whoever emptied the lot, and whatever the Job is charged for it.
TEST(JobUsed, ALotThatWentComesBackAtThePriceThatItHad) {
  struct Case {
    ColorKind kind;
    int costing;  // of the Job
    float taken;
    float price;
  };
  for (const Case& one : {Case{ColorKind::Basic, 0, 50, 1},
                          {ColorKind::Basic, 0, 20, 7.25F},
                          {ColorKind::Mix, 0, 10, 5},
                          {ColorKind::Mix, 1, 10, 5},
                          {ColorKind::Mix, 2, 4, 7.25F},
                          {ColorKind::Mix, 3, 10, 5}}) {
    JobRoom room;
    const std::string name = one.kind == ColorKind::Mix ? "PINK" : "RED";
    JobItemEntry entry = room.Entry("J", name, one.taken, 1, one.kind);
    entry.costing.cost = one.costing;
    const auto added = AddJobItems(room.session, entry);
    ASSERT_TRUE(added);
    if (const float left = room.InLot(name, 1, one.kind); left > 0) {
      const test::Arranging arranging;
      room.session.File().Execute(
          fmt::format("UPDATE INK_{}_LotInv SET LotPrice = 7.25", one.kind == ColorKind::Mix ? "Mix" : "Basic"));
      PostStock(room.session,
                {.source = PostingSource::Reset, .kind = one.kind, .name = name, .place = {.LotRefID = 1}});
    }
    ASSERT_EQ(room.InLot(name, 1, one.kind), -1);
    const auto rename = one.kind == ColorKind::Mix ? RenameColor : RenameBasic;
    ASSERT_TRUE(rename(room.session, name, "ROSE"));
    room.prompt.Expect("Ink Inventory", Answer::Yes);
    ASSERT_TRUE(DeleteJobItem(room.session, added->front().row));
    const auto lot = FindLot(room.session, one.kind, "ROSE", {}, 1);
    ASSERT_TRUE(lot);
    EXPECT_EQ(lot->LotPrice, one.price) << name << one.costing;
  }
}

TEST(JobUsed, ReturnedTwice) {
  JobRoom room;
  const JobRecord item = room.Add("J", "RED", 10, 1);
  const auto back = [&](float quantity) {
    return ReturnFromJob(room.session, {.row = item.row, .quantity = quantity, .LotLoc = "HALL", .LotContID = {}});
  };
  EXPECT_EQ(back(4).value_or(-1), 6);
  EXPECT_EQ(room.Scalar("SELECT LotLoc FROM INK_Basic_LotInv").Text(), "HALL");
  EXPECT_EQ(room.Row(item.row).LotLoc, "HALL");
  EXPECT_EQ(room.Told(back(6.001F)).substr(0, 46), "Usage Notice: Quantity returned to the Job Num");
  EXPECT_EQ(back(6).value_or(-1), 0);
  EXPECT_FALSE(ReadJobRecord(room.session, item.row));
  EXPECT_EQ(room.InLot("RED", 1), 50);
  EXPECT_EQ(room.Told(back(1)), "Job Item Not Found: This item is no longer on a Job.");
}

TEST(JobUsed, DeletingAnItemAsksWhetherItGoesBack) {
  for (const Answer answer : {Answer::Yes, Answer::No}) {
    JobRoom room;
    room.AddRow(schema::Designs, {{"DesignID", "D"}});
    JobItemEntry entry = room.Entry("J", "RED", 10, 1);
    entry.DesignID = "D";
    const auto item = AddJobItems(room.session, entry);
    ASSERT_TRUE(item);
    ASSERT_TRUE(SetQtyUsed(room.session, item->front().row, "8"));
    room.prompt.Expect("Ink Inventory", answer, "Return Quantity Used back to inventory?");
    ASSERT_TRUE(DeleteJobItem(room.session, item->front().row));
    EXPECT_EQ(room.InLot("RED", 1), answer == Answer::Yes ? 50 : 42);
    EXPECT_FALSE(JobIsThere(room.session, "J"));
    EXPECT_TRUE(room.Scalar("SELECT LastUsed FROM Designs").IsNull());
  }
}

TEST(JobUsed, ABookingIsTakenBackByItsLineOnce) {
  JobRoom room;
  const auto last = [&] { return room.Scalar("SELECT MAX(ID) FROM MSysStockHistory").Whole(); };
  const JobRecord item = room.Add("J", "RED", 10, 1);
  const std::int64_t issued = last();
  ASSERT_TRUE(SetQtyUsed(room.session, item.row, "7"));
  const std::int64_t returned = last();
  ASSERT_TRUE(UndoJobBooking(room.session, returned));
  EXPECT_EQ(room.Row(item.row).QtyUsed, 10);
  EXPECT_EQ(room.InLot("RED", 1), 40);
  EXPECT_EQ(room.Told(UndoJobBooking(room.session, returned)),
            fmt::format("Job Booking: Line {} of the stock history was taken back already.", returned));
  PostStock(room.session, {.source = PostingSource::ManualAdjust, .name = "RED", .quantity = 1});
  EXPECT_EQ(room.Told(UndoJobBooking(room.session, last())).substr(0, 40), fmt::format("Job Booking: Line {} of the stock history is no", last()).substr(0, 40));
  ASSERT_TRUE(UndoJobBooking(room.session, issued));
  EXPECT_FALSE(ReadJobRecord(room.session, item.row));
  EXPECT_EQ(room.InLot("RED", 1), 50);
}

// What was never issued is no return: the quantity issued goes back with the booking that raised it.
TEST(JobUsed, ARaisedQuantityIsTakenBackWithWhatItIssued) {
  struct Case {
    std::vector<const char*> used;  // one after the other
    std::size_t undone;             // which of them
    float left;
    float issued;
  };
  for (const Case& one : {Case{{"12"}, 0, 10, 10},
                          {{"7", "12"}, 1, 7, 10},
                          {{"12", "15"}, 0, 13, 13},
                          {{"12", "15"}, 1, 12, 12},
                          {{"12", "4"}, 0, 2, 10},
                          {{"7", "9"}, 1, 7, 10},
                          {{"7"}, 0, 10, 10}}) {
    JobRoom room;
    const JobRecord item = room.Add("J", "RED", 10, 1);
    room.clock.Set({2026, 3, 12, 8, 0, 0});
    std::vector<std::int64_t> lines;
    for (const char* used : one.used) {
      ASSERT_TRUE(SetQtyUsed(room.session, item.row, used));
      lines.push_back(room.Scalar("SELECT MAX(ID) FROM MSysStockHistory").Whole());
    }
    const JobRecord before = room.Row(item.row);
    ASSERT_EQ(room.Told(UndoJobBooking(room.session, lines[one.undone])), "");
    const JobRecord after = room.Row(item.row);
    EXPECT_EQ(after.QtyUsed, one.left);
    EXPECT_EQ(after.QtyIssued, one.issued);
    EXPECT_EQ(after.Date_Returned, before.Date_Returned);
    EXPECT_EQ(room.InLot("RED", 1), 50 - one.left);
  }
}

TEST(JobItemWork, LotsAreProposedOldestFirst) {
  JobRoom room;
  room.Setting("InvLotTracking", "1");
  room.Lot(ColorKind::Basic, "RED", 2, 20, {{"LotDate", DateTime{2025, 11, 2}}});
  room.Lot(ColorKind::Basic, "RED", 3, 5, {{"LotDate", Value()}});
  room.Lot(ColorKind::Basic, "RED", 4, 90, {{"LotDate", DateTime{2024, 1, 1}}, {"LotConsignment", true}});
  JobItemWork work;
  work.entry = NewJobItem(room.session);
  work.entry.JobNumber = "J1";
  ASSERT_TRUE(work.ChooseColor(room.session, "INK", "RED"));
  const auto takes = [&] {
    std::string all;
    for (const JobStockRow& row : work.rows) all += row.stock.LotNumber + "=" + Fixed(row.take, 3) + " ";
    return all;
  };
  const struct {
    const char* wanted;
    float left;
    const char* takes;
  } rows[] = {{"4.5", 0, "Unlotted Inv.=0.000 L1=0.000 L2=0.000 L3=4.500 "},
              {"25.001", 0, "Unlotted Inv.=0.000 L1=0.001 L2=20.000 L3=5.000 "},
              {"175", 0, "Unlotted Inv.=100.000 L1=50.000 L2=20.000 L3=5.000 "},
              {"175.25", 0.25F, "Unlotted Inv.=100.000 L1=50.000 L2=20.000 L3=5.000 "}};
  for (const auto& row : rows) {
    const auto left = work.Propose(row.wanted);
    ASSERT_TRUE(left);
    EXPECT_EQ(*left, row.left) << row.wanted;
    EXPECT_EQ(takes(), row.takes) << row.wanted;
  }
  // What another one takes meanwhile is not marked any more.
  room.Add("J2", "RED", 45, 1);
  work.Reread(room.session);
  EXPECT_EQ(takes(), "Unlotted Inv.=100.000 L1=5.000 L2=20.000 L3=5.000 ");
  const auto added = AddJobItems(room.session, work.Entry());
  ASSERT_TRUE(added) << added.error().text;
  EXPECT_EQ(added->size(), 4U);
  EXPECT_EQ(room.Unlotted("RED"), 0);
  EXPECT_EQ(JobBookings(room.session, "j1").size(), 4U);
  EXPECT_FALSE(work.Propose("0"));
  EXPECT_FALSE(work.ChooseColor(room.session, "OTHER", "PINK"));
}

TEST(JobTotals, AHalfIsAHalfInEveryDecimalsOfMoney) {
  JobRoom room;
  EXPECT_EQ(JobAmount(1.5F, 0.35F, 2), 0.53);
  EXPECT_EQ(JobAmount(0.001F, 0.5F, 3), 0.001);
  EXPECT_EQ(JobAmount(2.005F, 1.0F, 2), 2.01);
  EXPECT_EQ(JobAmount(99999, 99999, 4), 9999800001.0);
  for (const int decimals : {2, 3, 4}) {
    room.session.DecimalPlaces = decimals;
    std::vector<JobRecord> items(3);
    for (JobRecord& item : items) {
      item.QtyUsed = 0.333F;
      item.UnitCost = 0.1235F;  // 0.0411255
    }
    EXPECT_EQ(TotalsOf(room.session, items).Cost, decimals == 2 ? 0.12 : decimals == 3 ? 0.123 : 0.1233);
  }
  room.session.DecimalPlaces = 2;
  std::vector<JobRecord> one(1);
  one.front().UnitCost = 2.925F;
  const ListTable table = JobColumns(room.session).Of(one);
  const std::size_t cost = table.Find("Unit Cost").value();
  table.read([&](const TableRow& row) {
    EXPECT_EQ(CellText(table.columns[cost], row.Cell(cost)), "2.93");
    return true;
  });
}

}  // namespace
}  // namespace vellumark::test
