// The made quantity shared between jobs and stock, and the job records of a Batch.

#include "life_room.h"

namespace vellumark {
namespace {

using test::PinkRoom;

TEST(BatchJobs, OneJobTakesAllUntilToldOtherwise) {
  PinkRoom room;
  room.Mixed("PINK", "40");
  BatchRecord& record = room.record;
  EXPECT_EQ(record.ReturnedText(), "40.000");
  auto refused = EnterQtyUsed(room.session, record, "5");
  EXPECT_EQ(refused.error().title, "Batch Window - Specify a Job Number");
  EXPECT_EQ(refused.error().text, "You must specify a Job Number before editing the Qty Used field.");
  ASSERT_TRUE(SetReturnToInventory(room.session, record, false));
  EXPECT_EQ(record.ReturnedText(), "0.000");
  ASSERT_TRUE(EnterJobNumber(room.session, record, "  J-1 "));
  EXPECT_TRUE(record.ReturnToInventory);
  EXPECT_EQ(record.JobNumber(), "J-1");
  EXPECT_EQ(record.QtyUsedText(), "40.000");
  EXPECT_EQ(record.ReturnedText(), "0.000");
  EXPECT_EQ(SetReturnToInventory(room.session, record, false).error().text,
            "This option must be checked when a Job Number is specified.");
  EXPECT_TRUE(EnterQtyUsed(room.session, record, "40"));
  EXPECT_EQ(EnterQtyUsed(room.session, record, "40.001").error().text, "Qty Used must be less than Batch Quantity");
  EXPECT_EQ(EnterQtyUsed(room.session, record, "0").error().text,
            "Qty Used cannot be set to zero if a Job Number is specified.\n"
            "Clear the Job Number field to remove the Job Record.");
  EXPECT_FALSE(EnterQtyUsed(room.session, record, "4,0"));
  ASSERT_TRUE(EnterQtyUsed(room.session, record, "15.5"));
  EXPECT_EQ(record.ReturnedText(), "24.500");
  ASSERT_TRUE(EnterJobNumber(room.session, record, "J-2"));
  EXPECT_EQ(record.QtyUsedText(), "15.500");
  ASSERT_TRUE(EnterJobNumber(room.session, record, ""));
  EXPECT_EQ(record.QtyUsedText(), "");
  EXPECT_EQ(record.ReturnedText(), "40.000");
}

TEST(BatchJobs, SplitOverSeveral) {
  PinkRoom room;
  room.Mixed("PINK", "40");
  BatchRecord& record = room.record;
  EXPECT_EQ(EnterJobItemQty(record, "40.001").error().text, "You must enter an amount between 0 and 40.000");
  EXPECT_EQ(EnterJobItemQty(record, "-1").error().title, "Batch Window - Invalid Quantity");
  EXPECT_EQ(EnterJobItemQty(record, "7.1234").value(), "7.123");
  const std::vector<JobItem> split{{"A", "10"}, {"", "3"}, {"B", "0"}, {"C", "20.5"}, {"D", "9.5"}};
  EXPECT_EQ(JobItemsReturned(record, split), "0.000");
  EXPECT_EQ(SaveJobItems(room.session, record, {{"A", "1"}, {"a", "1"}}).error().text,
            "You cannot have duplicate Job Numbers.");
  EXPECT_EQ(SaveJobItems(room.session, record, {{"A", "20"}, {"B", "20.001"}}).error().text,
            "The total quantity used for all jobs cannot exceed the batch quantity made.");
  EXPECT_TRUE(record.jobs.empty());
  ASSERT_TRUE(SaveJobItems(room.session, record, split));
  ASSERT_EQ(record.jobs.size(), 3U);
  EXPECT_EQ(record.JobNumber(), "- SPLIT -");
  EXPECT_EQ(record.ReturnedText(), "0.000");
  EXPECT_EQ(CheckQtyUsedKey(record).error().text, "Click the Split button to edit Qty Used.");
  room.Save();
  EXPECT_EQ(room.OfBatch("JobNumber").Text(), "- SPLIT -");
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM JobRecords WHERE BatchNo = 1").Whole(), 3);
  EXPECT_EQ(room.Pink(), 0);
  room.Open(1);
  EXPECT_EQ(record.jobs.size(), 3U);
  ASSERT_TRUE(SaveJobItems(room.session, record, {}));
  EXPECT_EQ(record.JobNumber(), "");
  EXPECT_EQ(record.ReturnedText(), "40.000");
  room.Save();
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM JobRecords").Whole(), 0);
  EXPECT_EQ(room.Pink(), 40);
}

struct Follow {
  const char* name;
  std::vector<JobItem> jobs;
  const char* quantity;
  std::vector<float> used;
  const char* returned;
};

TEST(BatchJobs, FollowTheQuantity) {
  const std::vector<Follow> table{{"no job", {}, "30", {}, "30.000"},
                                  {"all of it grows", {{"A", "40"}}, "60", {60}, "0.000"},
                                  {"all of it shrinks", {{"A", "40"}}, "10", {10}, "0.000"},
                                  {"a part stays", {{"A", "15"}}, "60", {15}, "45.000"},
                                  {"a part stays below", {{"A", "15"}}, "20", {15}, "5.000"},
                                  {"a part is cut", {{"A", "15"}}, "10", {10}, "0.000"},
                                  {"a split stays", {{"A", "15"}, {"B", "5"}}, "60", {15, 5}, "40.000"},
                                  {"a split is lost", {{"A", "15"}, {"B", "5"}}, "39", {}, "39.000"}};
  for (const Follow& follow : table) {
    PinkRoom room;
    room.Mixed("PINK", "40");
    ASSERT_TRUE(SaveJobItems(room.session, room.record, follow.jobs)) << follow.name;
    if (follow.jobs.size() > 1 && follow.used.empty())
      room.prompt.Expect("Re-enter Job Numbers", Answer::Ok,
                         "Because you decreased the quantity of this batch,\n"
                         "you will have to re-enter your Job Numbers.");
    room.Remix(follow.quantity);
    std::vector<float> used;
    for (const BatchJobLine& line : room.record.jobs) used.push_back(line.QtyUsed);
    EXPECT_EQ(used, follow.used) << follow.name;
    EXPECT_EQ(room.record.ReturnedText(), follow.returned) << follow.name;
  }
}

TEST(BatchJobs, RecordsKeepWhatJobsAddedToThem) {
  PinkRoom room;
  room.Setting("UMF", "2");  // kilograms of pounds
  room.session.File().Execute("UPDATE INK_Basic SET VOC = 0.5, HAP = 0.25");
  room.Mixed("PINK", "10");
  room.record.fields.LotNumber = "MADE";
  ASSERT_TRUE(SaveJobItems(room.session, room.record, {{"A", "2"}, {"B", "3"}}));
  room.Save();
  // 10 kg are 22.046 lb. of which the jobs use 4.409 and 6.614; the cost of a pound is that of the mix, 1.75
  const auto job = [&](const char* field, const char* number) {
    return room.Scalar(fmt::format("SELECT {} FROM JobRecords WHERE JobNumber = ?1", Quoted(field)), {number});
  };
  EXPECT_EQ(job("QtyUsed", "A").Single(), 4.409F);
  EXPECT_EQ(job("QtyIssued", "B").Single(), 6.614F);
  EXPECT_EQ(job("UnitCost", "A").Single(), 1.75F);
  EXPECT_EQ(job("VOC", "A").Single(), 0.5F);
  EXPECT_EQ(job("HAP", "A").Single(), 0.25F);
  EXPECT_EQ(job("ItemType", "A").Whole(), 2);
  EXPECT_EQ(job("Database", "A").Text(), "INK");
  EXPECT_EQ(job("LotNumber", "A").Text(), "MADE");
  EXPECT_EQ(job("LotRefID", "A").Whole(), 1);
  EXPECT_EQ(job("Date_Completed", "A").Text(), "2026-03-10 12:00:00");
  room.session.File().Execute(
      "UPDATE JobRecords SET UD_Text3 = 'matt', UD_Numeric5 = 7.0, DesignID = 'D1', DesignDesc = 'Flag' WHERE "
      "JobNumber = 'B'");
  room.clock.Set({2026, 3, 10, 17, 0, 0});
  room.Open(1);
  EXPECT_EQ(room.record.jobs[0].QtyUsed, 2);
  ASSERT_TRUE(SaveJobItems(room.session, room.record, {{"B", "4"}, {"C", "1"}}));
  room.Save();
  EXPECT_TRUE(job("QtyUsed", "A").IsNull());
  EXPECT_EQ(job("QtyUsed", "B").Single(), 8.818F);
  EXPECT_EQ(job("UD_Text3", "B").Text(), "matt");
  EXPECT_EQ(job("UD_Numeric5", "B").Single(), 7);
  EXPECT_EQ(job("DesignID", "B").Text(), "D1");
  EXPECT_EQ(job("DesignID", "C").Text(), "");
  EXPECT_EQ(job("Date_Entered", "B").Text(), "2026-03-10 12:00:00");
  EXPECT_EQ(job("Date_Entered", "C").Text(), "2026-03-10 17:00:00");
  // 22.046 made, 8.818 and 2.205 used
  EXPECT_EQ(room.Scalar("SELECT LotQty FROM INK_Mix_LotInv").Single(), 11.023F);
}

// Another unit takes the calculation away, not the jobs: they are fitted to what is calculated next.
TEST(BatchJobs, KeepTheirAmountsWhileTheUnitGoesThereAndBack) {
  for (const bool split : {false, true}) {
    PinkRoom room;
    room.Mixed("PINK", "100");
    const std::vector<JobItem> jobs =
        split ? std::vector<JobItem>{{"A", "60"}, {"B", "30"}} : std::vector<JobItem>{{"A", "60"}};
    ASSERT_TRUE(SaveJobItems(room.session, room.record, jobs));
    const auto lines = room.record.jobs;
    const std::string returned = room.record.ReturnedText();
    for (const int unit : {2, 1}) {
      ASSERT_TRUE(EnterBatchUnit(room.session, room.record, unit));
      EXPECT_EQ(room.record.jobs, lines);
      room.Remix("100");
      EXPECT_EQ(room.record.jobs, lines);
      EXPECT_EQ(room.record.ReturnedText(), returned);
    }
  }
  PinkRoom room;
  room.Mixed("PINK", "100");
  ASSERT_TRUE(EnterBatchUnit(room.session, room.record, 2));
  ASSERT_TRUE(EnterJobNumber(room.session, room.record, "A"));  // before the next calculation
  room.Remix("80");
  EXPECT_EQ(room.record.QtyUsedText(), "80.000");
}

}  // namespace
}  // namespace vellumark
