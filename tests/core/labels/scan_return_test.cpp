#include "core/labels/scan_return.h"

#include "core/jobs/job_room.h"
#include "one_scan.h"

#include <random>

namespace vellumark::test {
namespace {

using State = ScanRecord::State;

struct ScanReturnTest : testing::Test, JobRoom {
  ScanRecord Scan(const std::string& text) { return OneScan(session, text, BookScan); }
};

TEST_F(ScanReturnTest, TellsOfEachBranchWhyNothingCameBack) {
  Add("J1", "RED", 10, 1);
  Add("J1", "RED", 4);
  Add("J2", "PINK", 5, 1, ColorKind::Mix);
  Add("J3", "RED", 3, 1);
  Add("J3", "RED", 2, 1);
  const std::string again = "Update information - Process Again.";
  struct {
    std::string scan;
    std::string message;
  } const cases[] = {
      {"<JN>\n<CN>RED\n5", "Job Number data is missing, can't process.\n\n" + again},
      {"<JN>NONE\n<CN>RED\n5", "Job Number: NONE is not found in this Vellumark database."},
      {"<JN>J1\n5", "Color data is missing for Job: J1"},
      {"<JN>J1\n<CN>PINK\n5", "PINK not found on Job Record: J1"},
      {"<JN>J2\n<CN>PINK\n<CT>1\n5", "Color Type: Basic doesn't match Color: PINK"},
      {"<JN>J2\n<CN>PINK\n<DB>OTHER\n5", "Color: PINK on Job Number: J2 is not found in database: OTHER"},
      {"<JN>J1\n<CN>RED\n<LN>L9\n5", "Lot Number: L9 for Color: RED is not found on Job Number: J1"},
      {"<JN>J2\n<CN>PINK\n<LN>UNLOTTED INV.\n5", "No UnLotted Inventory reference for Color: PINK on Job Number: J2"},
      {"<JN>J1\n<CN>RED\n5",
       "RED is recorded on Job Number: J1 2 times.\nUse the data below to update information - Process Again.\n\n"
       "Database  Color Type  Lot Number\nINK  Basic  L1\nINK  Basic  Unlotted Inv."},
      {"<JN>J3\n<CN>RED\n<LN>L1\n1",
       "Multiple Lot Number usage for: RED on Job Number: J3\n\nJob Qty. Issued  Lot Location  Lot Cont ID\n3.000    \n"
       "2.000    \n\n" +
           again},
      {"<JN>J2\n<CN>PINK\n<LL>" + std::string(31, 'S') + "\n5", TooLong(std::string(31, 'S'))},
      {"<JN>J2\n<CN>PINK", "A quantity above 0 is required for Color: PINK\n\n" + again},
      {"<JN>J2\n<CN>PINK\n5.5",
       "Quantity returned to the Job Number: J2 was larger than issued.\nJob Qty Issued: 5.000\nStill out: 5.000\n"
       "Job Qty Returned: 5.500\nRevise the Quantity - Process Again."},
  };
  ExpectFailures(*this, cases);
}

TEST_F(ScanReturnTest, ASecondReturnCountsWhatIsStillOutAndTheLastOneTakesTheRow) {
  const std::int64_t row = Add("J1", "RED", 10, 1).row;
  ScanRecord first = Scan("<jn>j1\n<cn>red\n<ln>l1\n<ll>shelf 3\n3");
  EXPECT_EQ(first.Message, "Job Number: J1  updated successfully.");
  EXPECT_EQ(first.CC, "R1");
  BookScan(session, first);  // a success never runs again
  EXPECT_EQ(Scan("<JN>J1\n<CC>R1\n<CN>RED®\n2").state, State::Successful);
  EXPECT_EQ(Row(row).QtyUsed, 5);
  EXPECT_EQ(InLot("RED", 1), 45);
  EXPECT_EQ(Row(row).LotLoc, "SHELF 3");
  EXPECT_EQ(Scan("<JN>J1\n<CN>RED\n5.001").state, State::Failed);
  EXPECT_EQ(Scan("<JN>J1\n<CN>RED\n5").state, State::Successful);
  EXPECT_FALSE(ReadJobRecord(session, row));
  EXPECT_EQ(InLot("RED", 1), 50);

  // A scanner's capitals.
  Lot(ColorKind::Basic, "RED", 2, 9, {{"LotNumber", "grün1"}});
  JobItemEntry entry = Entry("J2", "RED", 4, 2);
  entry.takes = {{2, "grün1", 4}};
  ASSERT_TRUE(AddJobItems(session, entry));
  Add("J2", "RED", 2, 1);
  EXPECT_EQ(Scan("<JN>J2\n<CN>RED\n<LN>grün1\n1").Message, "Job Number: J2  updated successfully.");
  EXPECT_EQ(InLot("RED", 2), 6);
}

// Whatever is scanned in whatever order: stock and Jobs together hold what they held.
TEST_F(ScanReturnTest, ARandomStreamLosesNothing) {
  for (const char* job : {"J1", "J2", "J3"}) {
    Add(job, "RED", 10, 1);
    Add(job, "PINK", 3, 0, ColorKind::Mix);
  }
  const auto total = [&] {
    double sum = double{InLot("RED", 1)} + Unlotted("PINK", ColorKind::Mix);
    for (const char* job : {"J1", "J2", "J3"})
      for (const JobRecord& record : JobItems(session, job)) sum += record.QtyUsed;
    return sum;
  };
  const double before = total();
  std::mt19937 random(5);
  int booked = 0;
  for (int i = 0; i < 200; ++i) {
    const bool pink = random() % 2 == 0;
    const double quantity = static_cast<double>(random() % 3000) / 1000;
    booked += Scan(fmt::format("<JN>J{}\n<CN>{}\n{:.3f}", 1 + random() % 4, pink ? "PINK" : "RED", quantity)).state ==
              State::Successful;
    ASSERT_NEAR(total(), before, 0.002) << i;
  }
  EXPECT_GT(booked, 15);
}

}  // namespace
}  // namespace vellumark::test
