#include "core/labels/scan_inventory.h"

#include <gtest/gtest.h>

#include <random>

#include "core/inventory/lots.h"
#include "core/labels/scan_step.h"
#include "one_scan.h"
#include "support/stock_room.h"

namespace vellumark::test {
namespace {

using State = ScanRecord::State;

struct ScanInventoryTest : testing::Test, StockRoom {
  ScanInventoryTest() {
    CreateEmptyDatabase(session.File(), "LAB");
    session.databaseList = {"INK", "LAB"};
    Color(ColorKind::Basic, "RED", 10, {{"Color_Code", "R1"}});
    Color(ColorKind::Basic, "BOTH", 0);
    Color(ColorKind::Mix, "BOTH", 0);
    Color(ColorKind::Basic, "RUBY", 0, {{"Color_Code", "R9"}});
    Color(ColorKind::Mix, "ROSE", 0, {{"Color_Code", "R9"}});
    Lot(ColorKind::Basic, "RED", 5, 20, {{"LotNumber", "A1"}, {"LotContID", "C1"}});
    Lot(ColorKind::Basic, "RED", 6, 30, {{"LotNumber", "A2"}, {"LotContID", "C1"}});
    Lot(ColorKind::Basic, "RED", 7, 40, {{"LotNumber", "A2"}, {"LotContID", "C2"}});
    InsertRow(session.File(), schema::Basic, "LAB_Basic",
              {{"Color_Name", "GRAY"}, {"IngSort", 0}, {"Inventory", 0.0F}});
    InsertRow(session.File(), schema::Basic, "LAB_Basic", {{"Color_Name", "RED"}, {"IngSort", 1}, {"Inventory", 0.0F}});
  }
  ScanRecord Scan(const std::string& text) { return OneScan(session, text, AddScannedStock); }
};

TEST_F(ScanInventoryTest, TellsOfEachBranchWhyNothingWasBooked) {
  const std::string again = "Update information - Process Again.";
  const std::string thirty = "012345678901234567890123456789";
  struct {
    std::string scan;
    std::string message;
  } const cases[] = {
      {"<LN>A1\n5", "A Color Name is required for processing.\n\n" + again},
      {"<CC>\n<LN>A1\n5", "A Color Name is required for processing.\n\n" + again},
      {"<CC>R9\n<LN>A1\n5",
       "R9 is the Color Code of 2 colors.\nEnter one of the following names - Process Again.\nRUBY\nROSE"},
      {"<CN>NONE\n<LN>A1\n5", "NONE wasn't found in any database, couldn't update the inventory."},
      {"<CN>GRAY\n<DB>INK\n<LN>A1\n5", "GRAY can't be found in Database: INK\n\n" + again},
      {"<CN>RED\n<DB>GONE\n<LN>A1\n5", "RED wasn't found in Database: GONE\nSelect another database - Process Again."},
      {"<CN>RED\n<LN>A1\n5",
       "RED exists in 2 databases.\nSelect another database from the following selections.\n\nDatabases:\nINK\nLAB"},
      {"<CN>RED\n<DB>INK\n<CT>2\n<LN>A1\n5",
       "RED is not a Formula in Database: INK\nChange the Color Type - Process Again."},
      {"<CN>BOTH\n<LN>A1\n5", "BOTH in Database: INK is a Basic and Formula.\nChoose a Color Type - Process Again"},
      {"<CN>RED\n<DB>INK\n<LN>A1", "A quantity above 0 is required for Color: RED\n\n" + again},
      {"<CN>RED\n<DB>INK\n<LN>A1\n-5", "A quantity above 0 is required for Color: RED\n\n" + again},
      {"<CN>RED\n<DB>INK\n<LN>A1\n99900",
       "99900.000 is too large.\n99898.999 is the largest amount that can be used.\nChange Quantity - Process Again."},
      {"<CN>RED\n<DB>INK\n5", "Enter a Lot Number for Color: RED\n" + again},
      {"<CN>RED\n<CC>R2\n<DB>INK\n<LN>A1\n5", "Unable to find Color: RED with supporting detail.\n" + again},
      {"<CN>RED\n<DB>INK\n<LN>A1\n<LC>C" + thirty + "\n5", TooLong("C" + thirty)},
      {"<CN>RED\n<DB>INK\n<LN>N" + thirty + "\n5", TooLong("N" + thirty)},
      {"<CN>RED\n<DB>INK\n<LN>A2\n5",
       "Multiple Lots: A2 of Color: RED\n\nLot Qty.  Lot Location  Lot Cont ID\n30.000    C1\n40.000    C2\n\n" +
           again},
  };
  ExpectFailures(*this, cases);
}

TEST_F(ScanInventoryTest, BooksOnceAndNeverAgain) {
  // By its code alone, with the mark that look-ups leave out, in small letters.
  ScanRecord record = Scan("<cn>red®\n<db>ink\n<ln>a1\n<ll>shelf 3\n2.5");
  EXPECT_EQ(record.Message, "RED inventory updated successfully.");
  EXPECT_EQ(LotQty(ColorKind::Basic, "RED", 5), Value(22.5F));
  AddScannedStock(session, record);
  EXPECT_EQ(LotQty(ColorKind::Basic, "RED", 5), Value(22.5F));
  EXPECT_EQ(LotsOf(session, ColorKind::Basic, "RED").at(0).LotLoc, "SHELF 3");
  EXPECT_EQ(Scan("<CC>R1\n<DB>INK\n<LN>A2\n<LC>C2\n1").state, State::Successful);
  EXPECT_EQ(LotQty(ColorKind::Basic, "RED", 7), Value(41.0F));
  EXPECT_EQ(Scan("<CC>R9\n<CT>2\n<LN>A1\n1").CN, "ROSE");
  // In capitals, as a scanner's texts come, it is the same lot.
  Lot(ColorKind::Basic, "RED", 8, 5, {{"LotNumber", "grün1"}, {"LotContID", "é"}});
  Lot(ColorKind::Basic, "RED", 9, 5, {{"LotNumber", "grün1"}});
  for (const char* lot : {"<LN>grün1\n<LC>é", "<LR>8\n<LN>grün1"})
    EXPECT_EQ(Scan(fmt::format("<CN>RED\n<DB>INK\n{}\n1", lot)).state, State::Successful) << lot;
  EXPECT_EQ(LotQty(ColorKind::Basic, "RED", 8), Value(7.0F));
  // A lot that is not there is made, of a Basic Color under the scanned reference, today at its cost.
  EXPECT_EQ(Scan("<CN>RED\n<DB>INK\n<LR>77\n<LN>NEW\n<LC>9\n4").state, State::Successful);
  const auto made = FindLot(session, ColorKind::Basic, "RED", "INK", 77);
  ASSERT_TRUE(made);
  EXPECT_EQ(made->LotDate, session.clock.Today());
  EXPECT_EQ(made->LotPrice, 4.0F);
  EXPECT_EQ(Scan("<CN>RED\n<DB>INK\n<LN>UNLOTTED INV.\n1").state, State::Successful);
  EXPECT_EQ(Inventory(ColorKind::Basic, "RED"), Value(11.0F));

  // What failed is mended and run again.
  record = Scan("<CN>BOTH\n<LN>B1\n3");
  record.CT = "2";
  AddScannedStock(session, record);
  EXPECT_EQ(record.state, State::Successful);
  EXPECT_EQ(LotQtyTotal(session, ColorKind::Mix, "BOTH"), 3.0F);
  Setting("InvLotTracking", "0");
  EXPECT_EQ(Scan("<CN>GRAY\n6").state, State::Successful);
  EXPECT_EQ(Scalar("SELECT Inventory FROM LAB_Basic WHERE Color_Name = 'GRAY'"), Value(6.0F));
  session.ArchiveView = true;
  EXPECT_EQ(Scan("<CN>GRAY\n6").state, State::Failed);
}

// An operator who cancels the work at a certain look.
class Impatient final : public Progress {
 public:
  void Begin(std::string_view) override {}
  void Percent(double) override {}
  bool Cancelled() override { return --patience < 0; }
  int patience = 1000;
};

TEST_F(ScanInventoryTest, WhatCannotBeBookedLeavesTheRestOfTheRunAsItIs) {
  Impatient operatorSeam;
  Session other(prompt, operatorSeam, clock);
  other.DataFileDB = std::move(session.DataFileDB);
  other.support = std::move(session.support);
  other.CurrentDatabase = "INK";
  other.databaseList = session.databaseList;
  other.InvLotTracking = session.InvLotTracking;
  std::string lines;
  for (const char* lot : {"A1", "B\xC3", "A1", "A1"}) lines += fmt::format("<CN>RED\n<DB>INK\n<LN>{}\n1\n", lot);
  std::vector<ScanRecord> records = ParseScan(lines);
  const auto states = [&] {
    std::vector<State> all;
    for (const ScanRecord& record : records) all.push_back(record.state);
    return all;
  };
  operatorSeam.patience = 3;
  ProcessScan(other, records);
  EXPECT_EQ(states(), (std::vector{State::Successful, State::Failed, State::Successful, State::Unprocessed}));
  EXPECT_TRUE(records[1].Message.starts_with("The field INK_Basic_LotInv.LotNumber cannot hold")) << records[1].Message;
  EXPECT_EQ(records[3].Message, "Not processed: the scan was cancelled before.\n\nProcess Again.");
  records[1].LN = "A1";
  operatorSeam.patience = 2;
  ProcessScan(other, records);
  EXPECT_EQ(states(), std::vector(4, State::Successful));
  session.support = std::move(other.support);
  session.DataFileDB = std::move(other.DataFileDB);
  EXPECT_EQ(LotQty(ColorKind::Basic, "RED", 5), Value(24.0F)) << "each once";
}

// Scans at random against what a ledger says: stock is what was there and what was booked.
TEST_F(ScanInventoryTest, AddsUpOverARandomStream) {
  std::mt19937 random(11);
  std::map<std::string, double> ledger{{"A1", 20}, {"A3", 0}, {"A4", 0}};
  for (int i = 0; i < 300; ++i) {
    const std::string lot = "A" + std::to_string(1 + random() % 4);
    const double quantity = static_cast<double>(random() % 4000) / 1000;
    const ScanRecord record = Scan(fmt::format("<CN>RED\n<DB>INK\n<LN>{}\n{:.3f}", lot, quantity));
    const bool can = lot != "A2" && quantity > 0;
    ASSERT_EQ(record.state == State::Successful, can) << lot << " " << quantity << ": " << record.Message;
    if (can) ledger[lot] += quantity;
  }
  for (const auto& [lot, quantity] : ledger) {
    double there = 0;
    for (const LotRow& row : LotsNumbered(session, ColorKind::Basic, "RED", "INK", lot)) there += row.LotQty;
    EXPECT_NEAR(there, quantity, 0.01) << lot;
  }
}

}  // namespace
}  // namespace vellumark::test
