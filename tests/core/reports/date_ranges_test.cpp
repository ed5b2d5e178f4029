#include "core/reports/date_ranges.h"

#include <gtest/gtest.h>

#include "report_room.h"

namespace vellumark {
namespace {

std::string Days(int place, const DateTime& today) {
  const DateRange range = RangeOf(place, today);
  return range.from.DateText() + " " + range.to.DateText();
}

TEST(DateRanges, AreThoseOfTheDay) {
  struct Case {
    DateTime today;
    std::vector<std::string> from;  // in the order of the list
  };
  const std::vector<Case> cases{{{2024, 2, 29, 15, 30, 0},
                                 {"1989-02-28", "2024-02-01", "2024-01-01", "2024-01-01", "2024-02-29", "2024-02-22",
                                  "2024-01-30", "2023-12-01", "2023-09-02", "2023-03-01", "2024-02-29"}},
                                {{2026, 1, 1},
                                 {"1989-01-01", "2026-01-01", "2026-01-01", "2026-01-01", "2026-01-01", "2025-12-25",
                                  "2025-12-02", "2025-10-03", "2025-07-05", "2025-01-01", "2026-01-01"}},
                                {{2025, 12, 31},
                                 {"1989-12-31", "2025-12-01", "2025-10-01", "2025-01-01", "2025-12-31", "2025-12-24",
                                  "2025-12-01", "2025-10-02", "2025-07-04", "2024-12-31", "2025-12-31"}},
                                {{2026, 6, 30},
                                 {"1989-06-30", "2026-06-01", "2026-04-01", "2026-01-01", "2026-06-30", "2026-06-23",
                                  "2026-05-31", "2026-04-01", "2026-01-01", "2025-06-30", "2026-06-30"}},
                                {{2026, 7, 1},
                                 {"1989-07-01", "2026-07-01", "2026-07-01", "2026-01-01", "2026-07-01", "2026-06-24",
                                  "2026-06-01", "2026-04-02", "2026-01-02", "2025-07-01", "2026-07-01"}}};
  for (const Case& one : cases) {
    for (std::size_t i = 0; i < one.from.size(); ++i)
      EXPECT_EQ(Days(static_cast<int>(i), one.today), one.from[i] + " " + one.today.DateText()) << DateRangeNames()[i];
  }
  EXPECT_EQ(Days(11, {2026, 1, 31}), "2025-12-01 2025-12-31");
  EXPECT_EQ(Days(11, {2024, 3, 1}), "2024-02-01 2024-02-29");
  EXPECT_EQ(Days(12, {2026, 2, 10}), "2025-10-01 2025-12-31");
  EXPECT_EQ(Days(12, {2026, 12, 31}), "2026-07-01 2026-09-30");
  EXPECT_EQ(Days(13, {2026, 5, 5}), "2025-01-01 2025-12-31");
}

TEST(DateRanges, OfAnArchiveEndOnItsLastDay) {
  test::ReportRoom room;
  room.Basic("RED");
  room.Batch(1, "PINK", {2021, 5, 17, 9, 0, 0}, 10, {{"RED", 10}});
  room.AddDatabase("WEB");
  room.Use("WEB");
  room.Batch(2, "PINK", {2021, 6, 2, 9, 0, 0}, 10, {{"RED", 10}});
  room.Use("INK");
  EXPECT_EQ(ReportToday(room.session).DateText(), "2026-03-10");
  const std::string path = room.session.DataFileName;
  room.session.ArchiveView = true;
  EXPECT_EQ(ReportToday(room.session).DateText(), "2026-03-10") << "a backup copy is no archive";
  for (const char* name : {"/data/Ink (2020-1-1 To 2021-6-30).vkd", "/data/Ink Archive 2026.vkd"}) {
    room.session.DataFileName = name;
    EXPECT_EQ(ReportToday(room.session).DateText(), "2021-06-02") << name;
  }
  // A Job that issued ink after the last Batch was made, and was closed later still.
  room.Breaks("JobBatches");
  room.Job("J1", "INK", "RED", 1, 1000001, 2, 1, 4, {2021, 6, 9});
  EXPECT_EQ(ReportToday(room.session).DateText(), "2021-06-09");
  room.session.File().Execute("UPDATE JobRecords SET Date_Completed = '2021-07-05 00:00:00'");
  EXPECT_EQ(ReportToday(room.session).DateText(), "2021-07-05");
  room.session.DataFileName = "/data/Archive/Auto Backup/VK_Backup_03_09_2026__17_00_00/Ink.vkd";
  EXPECT_EQ(ReportToday(room.session).DateText(), "2026-03-10") << "a backup copy, wherever it lies";
  room.session.ArchiveView = false;
  room.session.DataFileName = path;
}

}  // namespace
}  // namespace vellumark
