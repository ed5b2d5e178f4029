#include "core/datafile/recordset.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/writer.h"
#include "support/scratch.h"

namespace vellumark {
namespace {

struct Jobs {
  Jobs() {
    CreateFile(folder / "Jobs.vkd");
    file = Database::Open(folder / "Jobs.vkd", OpenMode::Exclusive);
  }
  std::int64_t Add(Value job, Value date, const std::string& color) {
    return InsertRow(*file, schema::JobRecords, "JobRecords",
                     {{"JobNumber", std::move(job)}, {"Date_Entered", std::move(date)}, {"Color_Name", color}});
  }
  Recordset Open(std::string where = {}, std::vector<Value> parameters = {}) {
    return Recordset(*file, schema::JobRecords, "JobRecords", {"JobNumber", "Date_Entered"}, std::move(where),
                     std::move(parameters));
  }
  test::ScratchFolder folder;
  std::unique_ptr<Database> file;
};

std::vector<std::string> Walk(Recordset& set, bool forward) {
  std::vector<std::string> seen;
  for (forward ? set.MoveFirst() : set.MoveLast(); set.HasRow(); forward ? set.MoveNext() : set.MovePrevious())
    seen.push_back(set.Text("Color_Name"));
  return seen;
}

// Every order of nulls, equal keys and cases, against a stable sort of the same rows.
TEST(Recordsets, WalkBothWaysAsASortedListWould) {
  std::mt19937 random(11);
  for (int round = 0; round < 30; ++round) {
    Jobs jobs;
    struct Row {
      std::string job, date, color;
    };
    std::vector<Row> rows;
    const int count = static_cast<int>(random() % 12);
    Transaction transaction(*jobs.file);
    for (int i = 0; i < count; ++i) {
      const char* names[] = {"", "j1", "J1", "J2", "j10"};
      const char* dates[] = {"", "2026-01-01 00:00:00", "2026-01-02 00:00:00"};
      const Row row{names[random() % 5], dates[random() % 3], "C" + std::to_string(i)};
      rows.push_back(row);
      jobs.Add(row.job.empty() ? Value{} : Value(row.job), row.date.empty() ? Value{} : Value(row.date), row.color);
    }
    transaction.Commit();
    std::ranges::stable_sort(rows, [](const Row& a, const Row& b) {
      const int jobsOrder = CompareNoCase(a.job, b.job);
      return jobsOrder != 0 ? jobsOrder < 0 : a.date < b.date;
    });
    std::vector<std::string> expected;
    for (const Row& row : rows) expected.push_back(row.color);
    Recordset set = jobs.Open();
    EXPECT_EQ(Walk(set, true), expected);
    EXPECT_TRUE(set.Eof());
    std::ranges::reverse(expected);
    EXPECT_EQ(Walk(set, false), expected);
    EXPECT_EQ(set.RecordCount(), count);
  }
}

TEST(Recordsets, EditAddFindAndDelete) {
  Jobs jobs;
  jobs.Add("J1", "2026-01-01 00:00:00", "RED");
  jobs.Add("J2", "2026-01-01 00:00:00", "O'HARA 50%_*");
  jobs.Add("J3", "2026-01-01 00:00:00", "BLUE");
  Recordset set = jobs.Open();
  EXPECT_FALSE(set.FindFirst("Color_Name = ?", {"GREEN"}));
  ASSERT_TRUE(set.FindFirst("Color_Name = ?", {"o'hara 50%_*"}));
  EXPECT_EQ(set.Mode(), Recordset::EditMode::None);
  set.Edit();
  set.Set("QtyUsed", 2.5F);
  EXPECT_EQ(static_cast<int>(set.Mode()), 1);
  EXPECT_EQ(set.Single("QtyUsed"), 2.5F);
  set.CancelUpdate();
  EXPECT_TRUE(set.Get("QtyUsed").IsNull());
  set.Edit();
  set.Set("JobNumber", "J9");
  set.Set("Color_Code", std::string(31, 'x'));
  EXPECT_THROW(set.Update(), BadValue);
  EXPECT_EQ(set.Mode(), Recordset::EditMode::InProgress);  // what was typed is not lost
  set.Set("Color_Code", "C1");
  set.Update();
  EXPECT_EQ(set.Text("JobNumber"), "J9");
  set.MovePrevious();
  EXPECT_EQ(set.Text("JobNumber"), "J3");

  set.AddNew();
  EXPECT_EQ(static_cast<int>(set.Mode()), 2);
  set.Set("JobNumber", "J0");
  set.Set("Color_Name", "WHITE");
  set.Update();
  EXPECT_EQ(set.Text("Color_Name"), "WHITE");
  set.MoveNext();
  EXPECT_EQ(set.Text("JobNumber"), "J1");
  set.Delete();
  EXPECT_FALSE(set.Refresh());
  set.MoveNext();
  EXPECT_EQ(set.Text("JobNumber"), "J3");
  EXPECT_EQ(set.RecordCount(), 3);

  Recordset narrow = jobs.Open("JobNumber > ?", {"J2"});
  EXPECT_EQ(narrow.RecordCount(), 2);
  EXPECT_FALSE(narrow.FindFirst("Color_Name = ?", {"WHITE"}));
  EXPECT_THROW(narrow.Get("Color_Name"), std::logic_error);
}

}  // namespace
}  // namespace vellumark
