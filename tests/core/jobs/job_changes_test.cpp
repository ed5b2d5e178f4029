// What of a Job can be changed, and for how long.

#include "core/jobs/job_options.h"
#include "core/session/settings.h"
#include "job_room.h"

namespace vellumark::test {
namespace {

TEST(JobChanges, TheYearRuleCountsDays) {
  // Over a leap day and not: 365 days ago is a year, 366 is more.
  for (const DateTime today : {DateTime{2026, 3, 10, 8, 0, 0}, DateTime{2024, 3, 10, 8, 0, 0}}) {
    for (const int days : {365, 366}) {
      JobRoom room;
      const JobRecord item = room.Add("J", "RED", 10);
      room.session.File()
          .Prepare("UPDATE JobRecords SET Date_Entered = ?")
          .Bind(1, DateTime::FromDayNumber(today.DayNumber() - days).ToText())
          .Run();
      room.clock.Set(today);
      const std::vector<std::int64_t> rows{item.row};
      std::vector<std::string> told;
      for (const JobField field : {JobField::UnitCost, JobField::VOC, JobField::HAP, JobField::DesignID,
                                   JobField::UserText, JobField::DateReturned, JobField::DateCompleted})
        told.push_back(room.Told(CheckJobChange(room.session, rows, field)));
      told.push_back(room.Told(JobClosingDate(room.session, "J", today)));
      if (days == 365) {
        EXPECT_EQ(told, std::vector<std::string>(8));
        continue;
      }
      EXPECT_EQ(told,
                (std::vector<std::string>{
                    "Unit Cost - Unchangable: Prices cannot be changed on items that are older than 1 year.",
                    "VOC Value - Unchangable: VOC values cannot be changed on items that are older than 1 year.",
                    "HAP Value - Unchangable: HAP Values cannot be changed on items that are older than 1 year.",
                    "Design ID - Unchangable: Design ID cannot be changed on items that are older than 1 year.",
                    ("User Defined Data - Unchangable: Required user defined data cannot be changed on items that are "
                     "older than 1 year."),
                    "Date Returned - Unchangable: Date Returned cannot be changed on items that are older than 1 year.",
                    "Date Completed - Unchangable: Date Completed cannot be changed on Job Records older than 1 year.",
                    "Date Completed - Unchangable: Date Completed cannot be changed on Job Records older than 1 "
                    "year."}));
    }
  }
}

TEST(JobChanges, FiguresAreAskedAboutAndKept) {
  JobRoom room;
  const JobRecord item = room.Add("J", "RED", 10);
  room.clock.Set({2026, 3, 12, 1, 0, 0});
  const std::vector<std::int64_t> rows{item.row};
  room.prompt.Expect("Change Unit Cost Pricing Model", Answer::Yes,
                     "This Price was used 2 days(s) ago to generate the Total Cost.\n\n"
                     "Change the current Price per (lb.) associated with this item?");
  EXPECT_TRUE(OpenJobChange(room.session, rows, JobField::UnitCost));
  room.prompt.Expect("Change Design ID Reference", Answer::No,
                     "This Design was used 2 day(s) ago.\n\nChange the current Design ID associated with this item?");
  EXPECT_FALSE(OpenJobChange(room.session, rows, JobField::DesignID));
  ASSERT_TRUE(UpdateJobCostModel(room.session, rows, "1.005"));
  ASSERT_TRUE(UpdateJobVOCModel(room.session, rows, "0.1235"));
  StoreSettings(room.session, {setting::Jobs_UDNum_Format[0].To(3)});
  ASSERT_TRUE(UpdateJobUDText(room.session, rows, 3, " matt "));
  ASSERT_TRUE(UpdateJobUDNumeric(room.session, rows, 0, "1.23456"));
  ASSERT_TRUE(JobsNewReturnDate(room.session, rows, {2026, 3, 11, 5, 0, 0}));
  const JobRecord now = room.Row(item.row);
  EXPECT_EQ(now.UnitCost, 1.01F);
  EXPECT_EQ(now.VOC, 0.124F);
  EXPECT_EQ(now.UD_Text[3], "matt");
  EXPECT_EQ(now.UD_Numeric[0], 1.235F);
  EXPECT_EQ(now.Date_Returned->ToText(), "2026-03-11 00:00:00");
  EXPECT_EQ(room.Told(UpdateJobDesignID(room.session, rows, "NONE")),
            "Design Not Found: There is no Design NONE in this Data File.");
  room.session.CurrentUser = "BOB";
  room.session.Perm_Costs = 1;
  EXPECT_FALSE(UpdateJobCostModel(room.session, rows, "9"));
  EXPECT_EQ(room.Row(item.row).UnitCost, 1.01F);
}

TEST(JobChanges, ClosingAndReopening) {
  JobRoom room;
  room.Add("J", "RED", 10);
  room.Add("J", "PINK", 1, 0, ColorKind::Mix);
  room.Add("K", "RED", 1);
  ASSERT_TRUE(JobClosingDate(room.session, "j", {2026, 3, 9, 4, 0, 0}));
  EXPECT_EQ(LoadJob(room.session, "J").Date_Completed->ToText(), "2026-03-09 00:00:00");
  EXPECT_EQ(room.Scalar("SELECT COUNT(Date_Completed) FROM JobRecords").Whole(), 2);
  // What is added to a closed Job is closed with it.
  EXPECT_EQ(room.Add("J", "RED", 1).Date_Completed->ToText(), "2026-03-09 00:00:00");
  ASSERT_TRUE(ReopenJob(room.session, "J"));
  EXPECT_EQ(room.Scalar("SELECT COUNT(Date_Completed) FROM JobRecords").Whole(), 0);
  EXPECT_EQ(room.Told(ReopenJob(room.session, "X")), "Job Not Found: There is no Job X in this Data File.");
}

TEST(JobNumbers, FoundWalkedAndRenamed) {
  JobRoom room;
  for (const char* job : {"B2", "a1", "A10", "C", "B2"}) room.Add(job, "RED", 1);
  EXPECT_EQ(JobNumbers(room.session), (std::vector<std::string>{"a1", "A10", "B2", "C"}));
  EXPECT_EQ(CompleteJobNumber(room.session, "A1"), "a1");
  EXPECT_EQ(JobNumbersFrom(room.session, "a", 9), (std::vector<std::string>{"a1", "A10"}));
  EXPECT_EQ(NextJobNumber(room.session, "B2") + PreviousJobNumber(room.session, "B2"), "CA10");
  EXPECT_EQ(PreviousJobNumber(room.session, "") + NextJobNumber(room.session, "C"), "C");
  room.prompt.Expect("Add Job Number", Answer::No, "Create a new Job Record with this Job Number?");
  EXPECT_FALSE(AskForNewJob(room.session, "D"));
  EXPECT_TRUE(AskForNewJob(room.session, "b2"));
  EXPECT_EQ(room.Told(RenameJob(room.session, "B2", "a10")),
            "Job Number Exists: The Job Number a10 is used already.\nPlease enter a different number.");
  EXPECT_EQ(room.Told(RenameJob(room.session, "B2", "- Split -")),
            "Choose Another Job Number: - SPLIT - is not a Job Number.");
  EXPECT_EQ(room.Told(RenameJob(room.session, "C", "c")), "");
  EXPECT_EQ(room.Told(RenameJob(room.session, "b2", "<JN>D")), "");
  EXPECT_EQ(JobNumbers(room.session), (std::vector<std::string>{"a1", "A10", "c", "D"}));
  EXPECT_EQ(JobItems(room.session, "D").size(), 2U);
}

TEST(JobOptions, AreKeptAndGiveDefaults) {
  JobRoom room;
  UserFieldOptions options = ReadJobOptions(room.session);
  options.texts[1] = {"Press", true, "No. 4", true};
  options.numbers[5] = {"Sheets", 0};
  ASSERT_TRUE(SaveJobOptions(room.session, options));
  EXPECT_EQ(ReadJobOptions(room.session), options);
  EXPECT_EQ(NewJobItem(room.session).UD_Text[1], "No. 4");
  const JobRecord item = room.Add("J", "RED", 1);
  EXPECT_EQ(item.UD_Text[1], "No. 4");
  EXPECT_EQ(room.Told(UpdateJobUDText(room.session, {item.row}, 1, "")),
            "More Data Incomplete: Required User Defined Text Fields Incomplete.");
  ASSERT_TRUE(UpdateJobUDNumeric(room.session, {item.row}, 5, "12.5"));
  EXPECT_EQ(room.Row(item.row).UD_Numeric[5], 13);
  options.texts[0].caption = "a|b";
  EXPECT_EQ(SaveJobOptions(room.session, options).error().field, "txtTextCaption0");
}

}  // namespace
}  // namespace vellumark::test
