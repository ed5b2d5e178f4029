#include "core/reports/browse.h"

#include <gtest/gtest.h>

#include "core/reports/quick_find.h"
#include "report_room.h"

namespace vellumark {
namespace {

struct BrowseRoom : test::ReportRoom {
  template <class Row>
  std::vector<Row> All(const ReadPiece<Row>& read) {
    std::vector<Row> rows;
    while (read(rows)) continue;
    return rows;
  }
};

// Longer than a piece, and another length than several of them.
TEST(Browse, ReadsEveryRowOnceInItsOrder) {
  BrowseRoom room;
  room.Setting("InvLotTracking", "1");
  {
    const test::Arranging arranging;
    Transaction transaction(room.session.File());
    for (int n = 0; n < 500; ++n) room.Basic(fmt::format("c{:03}", n));
    room.Basic("Lac", {{"Additive", true}, {"Reorder", 4.0F}});
    for (int n = 1; n <= 251; ++n) room.Batch(n, "C001", {2026, 3, 1}, 1, {{"C001", 1}});
    for (int n = 0; n < 251; ++n)
      room.Job(fmt::format("J{:03}", n), "INK", "C001", 1, 1000001 + n, 2, 1.5F, 4, {2026, 3, 4});
    room.Job("j000", "INK", "C001", 1, 1000900, 2, 0.25F, 4, {2026, 3, 2}, {{"Date_Completed", DateTime{2026, 3, 9}}});
    transaction.Commit();
  }
  room.Breaks("JobBatches");
  room.Lot(ColorKind::Basic, "Lac", 1, 2.5F);
  room.Lot(ColorKind::Basic, "Lac", 2, 1.0F);

  const std::vector<BrowsedColor> colors = room.All(BrowseColors(room.session, ColorKind::Basic));
  ASSERT_EQ(colors.size(), 501U);
  EXPECT_TRUE(std::ranges::is_sorted(colors, {}, [](const BrowsedColor& color) { return Upper(color.Color_Name); }));
  const BrowsedColor& lac = colors.back();
  EXPECT_EQ(lac.Color_Name, "Lac");
  EXPECT_EQ(lac.total, 3.5F);
  EXPECT_TRUE(lac.IsLow());
  EXPECT_TRUE(lac.Additive);

  const std::vector<BatchListRow> batches = room.All(BrowseBatches(room.session));
  ASSERT_EQ(batches.size(), 251U);
  for (std::size_t i = 0; i < batches.size(); ++i) EXPECT_EQ(batches[i].BatchNo, 251 - static_cast<int>(i));

  const std::vector<BrowsedJob> jobs = room.All(BrowseJobs(room.session));
  ASSERT_EQ(jobs.size(), 251U);
  EXPECT_EQ(jobs[0].items, 2);
  EXPECT_EQ(jobs[0].QtyUsed, 1.75);
  EXPECT_EQ(jobs[0].Date_Entered->DateText(), "2026-03-02");
  EXPECT_FALSE(jobs[0].Date_Completed) << "one of its items is open";
}

struct QuickRoom : BrowseRoom {
  QuickRoom() {
    Setting("InvLotTracking", "1");
    Basic("RED", {{"Color_Code", "R-1"}});
    Basic("RED OXIDE");
    Basic("Brünn blau");
    for (const char* name : {"DARK RED", "PANTONE 185 C", "PANTONE 1185 C"}) Mix(name, {{"RED", 100}});
    for (int n : {2, 42, 420, 421, 422, 423, 424, 425})
      Batch(n, n == 2 ? "DARK RED" : "PANTONE 185 C", {2026, 3, 1}, 1, {{"RED", 1}},
            {{"JobNumber", n == 2 ? "WEB 7" : ""}});
    Lot(ColorKind::Basic, "RED", 1, 2.5F);
    session.File().Execute("UPDATE INK_Basic_LotInv SET LotNumber = '4711'");
    InsertRow(session.File(), schema::Designs, schema::Designs.name,
              {{"DesignID", "BOX 9"}, {"Description", "red wine"}});
    Job("WEB 7", "INK", "DARK RED", 2, 1000001, 1, 1, 1, {2026, 3, 1});
    Breaks("JobBatches");
    index.SetCommands({{"Stock History", "Who moved what"}});
    Read();
  }
  void Read() {
    index.Begin();
    while (index.ReadOn(std::chrono::milliseconds(1))) continue;
  }
  std::string Found(std::string_view typed, std::size_t most = 3) {
    std::string text;
    for (const QuickHit& hit : index.Find(typed, most)) text += (text.empty() ? "" : ", ") + hit.name;
    return text;
  }
  QuickIndex index{session};
};

TEST(QuickFind, PutsTheVeryNameBeforeWhatBeginsWithIt) {
  QuickRoom room;
  const std::pair<const char*, const char*> cases[] = {
      {"red", "RED, RED OXIDE, DARK RED, 000002, 4711, BOX 9"},
      {"r-1", "RED"},
      {"oxide red", "RED OXIDE"},
      {"185", "PANTONE 185 C, 000425, 000424, 000423, PANTONE 1185 C"},
      {"42", "000042, 000425, 000424"},
      {"000042", "000042, 000425, 000424"},
      {"web 7", "WEB 7, 000002"},
      {"4711", "4711"},
      {"brünn", "Brünn blau"},
      {"moved", "Stock History"},
      {"wine", "BOX 9"},
      {"red\n", "RED, RED OXIDE, DARK RED, 000002, 4711, BOX 9"},
      {"  ", ""},
      {"zzz", ""},
      {"%", ""},
  };
  for (const auto& [typed, found] : cases) EXPECT_EQ(room.Found(typed), found) << typed;
  const QuickHit lot = room.index.Find("4711").at(0);
  EXPECT_EQ(lot.owner, "RED");
  EXPECT_EQ(lot.color, ColorKind::Basic);
}

TEST(QuickFind, FollowsWhatChangesAndOtherDatabases) {
  QuickRoom room;
  room.Basic("REDDISH");
  room.session.changes.Tell({{Change::Kind::Basic, "INK", "REDDISH", Change::What::Added, ""}});
  EXPECT_EQ(room.Found("reddish"), "");
  room.Read();
  EXPECT_EQ(room.Found("reddish"), "REDDISH");
  room.AddDatabase("WEB");
  room.Use("WEB");
  room.index.Begin();
  EXPECT_EQ(room.Found("red"), "") << "of the other Database, before anything was read";
  room.Read();
  EXPECT_EQ(room.Found("red"), "BOX 9");
  room.Use("INK");
}

}  // namespace
}  // namespace vellumark
