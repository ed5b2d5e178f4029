#include "core/exchange/record_export.h"

#include <gtest/gtest.h>

#include "../batch/life_room.h"
#include "core/base/files.h"
#include "core/base/units.h"
#include "core/batch/more_data.h"
#include "core/batch/print_options.h"
#include "core/session/settings.h"

namespace vellumark::test {
namespace {

// Cancels after so many looks.
struct Impatient final : Progress {
  explicit Impatient(int looks) : left(looks) {}
  void Begin(std::string_view) override {}
  void Percent(double) override {}
  bool Cancelled() override { return left-- <= 0; }
  int left;
};

struct RecordRoom : PinkRoom {
  void Print(bool on) {
    BatchPrintOptions options;
    options.batchInfo = options.history = options.cost = options.extraDetails = options.lab = options.quickInfo = on;
    options.notes.fill(on);
    StoreSettings(session, {setting::PrintLABBatchDetails.To(on), setting::PrintRecListPercent.To(false),
                            setting::PrintRecListPercentValue.To(50)});
    ASSERT_TRUE(SaveBatchPrintOptions(session, options));
  }
  std::string Batches(const RecordRange& range, const std::string& told) {
    prompt.Expect("Export Batch Records", Answer::Ok, told);
    const auto grid = GatherBatchRecords(session, range);
    return grid ? RecordText(*grid) : grid.error().text;
  }
  void Job(const std::string& number, const std::string& date, std::int32_t item, float used = 2) {
    InsertRow(session.File(), schema::JobRecords, "JobRecords",
              {{"JobNumber", number},
               {"Color_Name", "RED"},
               {"Database", "INK"},
               {"BatchNo", 1000000 + item},
               {"ItemType", 1},
               {"Date_Entered", date},
               {"QtyIssued", 3.0F},
               {"QtyUsed", used},
               {"UnitCost", 1.255F},
               {"VOC", 0.5F},
               {"UD_Text2", "a\r\nb\tc"},
               {"UD_Numeric1", 1.23456F}});
    session.File().Execute("UPDATE FileInfo SET ItemNumber = 100");
  }
  std::vector<std::string> Numbers(const RecordRange& range, std::size_t count) {
    prompt.Expect("Export Job Records", Answer::Ok);
    const auto grid = GatherJobRecords(session, range);
    std::vector<std::string> numbers;
    if (!grid) return {grid.error().text};
    for (std::size_t i = 1; i < grid->rows.size(); ++i) numbers.push_back(grid->rows[i][0]);
    EXPECT_EQ(numbers.size(), count);
    return numbers;
  }
};

const char* const kStars = "**************************************************************\r\n";

TEST(RecordExport, ABatchIsABlockOfWhatTheSettingsPrint) {
  RecordRoom room;
  room.Mixed("PINK", "20");
  ASSERT_TRUE(EnterJobNumber(room.session, room.record, "J1"));
  ASSERT_TRUE(EnterQtyUsed(room.session, room.record, "15"));
  BatchFields& fields = room.record.fields;
  fields.LotNumber = "L9";
  fields.ShortNote = "rush";
  fields.Notes = "Second\r\nline";
  fields.UD_Text[0] = "green";
  fields.Lab_L = 33.5F;
  room.Save();
  room.Mixed("PINK", "3.333");  // 0.833 and 2.500 by themselves
  room.record.fields.Notes = "Later.";
  room.Save();
  room.session.File().Execute("UPDATE INK_Mix SET Notes = 'Stir.' WHERE Color_Name = 'PINK'");

  room.Print(false);
  const std::string bare =
      "Color Name\tPINK\r\nBatch ID #\t000001\r\nDate Entered\t2026-03-10\r\n"
      "Batch Recipe Data\tColorCode\tIngQty (lb.)\r\nWHITE\t\t15.000\r\nRED\t\t5.000\r\nTotal Weight\t\t20.000\r\n"
      "Ingredient\tLotNumber\tLotQty (lb.)\tLotContID\tLotLoc\tLotDate\r\n"
      "WHITE\tUnlotted Inv.\t15.000\t\t\t\r\nRED\tUnlotted Inv.\t5.000\t\t\t\r\n"
      "Last Produced\t2026-03-10\r\nQty Produced\t20.000 lb.\r\nPercent Recycled\t0.00%\r\nModified Formula\tNo\r\n";
  EXPECT_EQ(room.Batches({"1", "1"}, "1 Batch records were found. Click OK to continue."), bare + kStars);

  room.Print(true);
  for (int i = 0; i < 10; ++i) StoreSettings(room.session, {setting::QuickInfoField[i].To(i == 4 || i == 5)});
  EXPECT_EQ(
      room.Batches({"1", "1"}, ""),
      "Color Name\tPINK\r\nBatch ID #\t000001\r\nDate Entered\t2026-03-10\r\n"
      "Batch Recipe Data\tColorCode\tIngQty (lb.)\r\nWHITE\t\t15.000\r\nRED\t\t5.000\r\nTotal Weight\t\t20.000\r\n"
      "Ingredient\tLotNumber\tLotQty (lb.)\tLotContID\tLotLoc\tLotDate\r\n"
      "WHITE\tUnlotted Inv.\t15.000\t\t\t\r\nRED\tUnlotted Inv.\t5.000\t\t\t\r\n"
      "Master Formula Data\t\r\nColor Name\tPINK\r\nPurchase Cost\t0.00\r\nBasic Cost\t3.00\r\nIng. / Part\t\r\n"
      "RED\t25.000\r\nWHITE\t75.000\r\n"
      "Quick Info\tWHITE\r\nCost\t1.00 per lb.\r\nQuick Info\tRED\r\nCost\t4.00 per lb.\r\n"
      "Last Produced\t2026-03-10\r\nQty Produced\t20.000 lb.\r\nCost of Batch\t35.00\r\nPercent Recycled\t0.00%\r\n"
      "Batch VOCs\t0.000\r\nBatch HAPs\t0.000\r\nLot Number\tL9\r\nJob Number\tJ1\r\nQty Used (lb.)\t15.000\r\n"
      "Short Note\trush\r\nModified Formula\tNo\r\n"
      "Cost of Basics\t35.00\r\nCost of Mixes (Basic Cost)\t0.00\r\nCost of Ingredients\t35.00\r\n"
      "Fixed Cost of Batch\t0.00\r\nFixed Cost of 0.00 / lb.\t0.00\r\nMarkup Ingredients 0.0%\t0.00\r\n"
      "Total Cost of Batch\t35.00\r\nText Lbl1\tgreen\r\nLab - L\t33.50\r\nNotes - this Batch\tSecond line\r\n"
      "Master Formula Notes\tStir.\r\nPrior Batch Notes\t\r\nBatch Number 000002   Date 2026-03-10\tLater.\r\n" +
          std::string(kStars));
  // Who may not see costs gets none, whatever is printed.
  room.session.CurrentUser = "ANN";
  room.session.Perm_Costs = 0;
  EXPECT_EQ(room.Batches({"1", "1"}, "").find("Cost"), std::string::npos);
  room.session.CurrentUser.clear();
  room.session.Perm_Costs = 2;

  // The amounts of a record add up to its total.
  const std::string second = room.Batches({"2", "2"}, "");
  EXPECT_NE(second.find("WHITE\t\t2.500\r\nRED\t\t0.833\r\nTotal Weight\t\t3.333\r\n"), std::string::npos) << second;
}

TEST(RecordExport, ARangeIsFoundOrRefused) {
  RecordRoom room;
  room.Saved("PINK", "1");
  room.clock.Set({2026, 3, 11, 23, 59, 59});
  room.Saved("PINK", "2");
  const auto title = [&](const RecordRange& range) {
    const auto grid = GatherBatchRecords(room.session, range);
    return grid ? std::string() : grid.error().title + "/" + grid.error().text;
  };
  EXPECT_EQ(title({"x", "2"}), "Invalid Batch Number/Please enter a valid Batch Number.");
  EXPECT_EQ(title({"1", "1.5"}), "Invalid Batch Number/Please enter a valid Batch Number.");
  EXPECT_EQ(title({"2", "1"}), "Export Batch Records/No Batch Records were collected for export.");
  const DateTime day{2026, 3, 11};
  EXPECT_EQ(title({"", "", DateTime{2026, 3, 12}, DateTime{2026, 3, 20}}),
            "No Batch records/No Batch records found in this date range.");
  EXPECT_EQ(title({"", "", day, {}}), "Invalid Date/Please enter a valid date.");
  EXPECT_EQ(BatchExportName({"1", "5"}), "Batch ID Export 1 - 5.txt");
  EXPECT_EQ(BatchExportName({"", "", day, day}), "Batch Date Export 2026_03_11 - 2026_03_11.txt");
  EXPECT_EQ(JobExportName({"4/7", "5"}), "Export Jobs - 4_7 - 5.txt");
  const std::string found =
      room.Batches({"", "", day, day}, "1 Batch record(s) found in this date range. Click OK to continue.");
  EXPECT_NE(found.find("000002"), std::string::npos);

  // Stopped in the middle: told, and no file.
  Impatient progress(0);
  Session hasty(room.prompt, progress, room.clock);
  std::swap(hasty.DataFileDB, room.session.DataFileDB);
  std::swap(hasty.support, room.session.support);
  hasty.CurrentDatabase = "INK";
  room.prompt.Expect("Export Batch Records");
  room.prompt.Expect("Incomplete Data", Answer::Ok, "Because you decided to cancel, this data is incomplete.");
  const auto grid = GatherBatchRecords(hasty, {"1", "2"});
  ASSERT_TRUE(grid);
  EXPECT_EQ(grid->records, 1U);
  EXPECT_FALSE(SaveRecordFile(hasty, *grid, room.folder / "out.txt"));
  EXPECT_FALSE(std::filesystem::exists(room.folder / "out.txt"));
  std::swap(hasty.DataFileDB, room.session.DataFileDB);
  std::swap(hasty.support, room.session.support);
}

TEST(RecordExport, JobsComeInTheColumnsOfTheirGrid) {
  RecordRoom room;
  for (const auto& [number, date] : std::vector<std::pair<std::string, std::string>>{{"9", "2026-01-05 00:00:00"},
                                                                                     {"10", "2026-01-06 10:00:00"},
                                                                                     {"100", "2026-02-01 00:00:00"},
                                                                                     {"10A", "2026-02-01 00:00:00"},
                                                                                     {"B/1", "2026-02-02 00:00:00"}})
    room.Job(number, date, static_cast<std::int32_t>(number.size()));
  EXPECT_EQ(room.Numbers({"9", "100"}, 4), (std::vector<std::string>{"9", "10", "10A", "100"}));
  EXPECT_EQ(room.Numbers({"10", "b/2"}, 5), (std::vector<std::string>{"10", "100", "10A", "9", "B/1"}));
  EXPECT_EQ(room.Numbers({"", "", DateTime{2026, 1, 5}, DateTime{2026, 1, 6}}, 2),
            (std::vector<std::string>{"10", "9"}));
  EXPECT_EQ(GatherJobRecords(room.session, {"9", " "}).error().title, "Invalid Job Number");
  EXPECT_EQ(GatherJobRecords(room.session, {"9", "1"}).error().text, "No Job Records were selected for export.");

  for (int i = 0; i < 6; ++i) StoreSettings(room.session, {setting::Jobs_UDNum_Format[i].To(3)});
  StoreSettings(room.session,
                {setting::Columns.Of("JobRecord").To("|Batch/Item||Qty Used (kg.)||Total Cost||Num Lbl2|")});
  room.prompt.Expect("Export Job Records", Answer::Ok, "1 Job Records are selected for export. Click OK to continue.");
  EXPECT_EQ(RecordText(*GatherJobRecords(room.session, {"9", "9"})),
            "Job Number\tColor Name\tBatch ID\tQty Used (lb.)\tTotal Cost\tNum Lbl2\r\n"
            "9\tRED\t1000001\t2.000\t2.51\t1.235\r\n");
  room.prompt.Expect("Export Job Records");
  const auto all = GatherJobRecords(room.session, {"9", "9"}, true);
  EXPECT_EQ(RecordText(*all),
            "Job Number\tColor Name\tColor Code\tDatabase\tBatch ID\tDate Entered\tDate Returned\tDate Completed\tQty "
            "Issued (lb.)\tQty Used (lb.)\tLot Number\tUnit Cost\tTotal Cost\tTotal VOCs\tTotal HAPs\tText Lbl1\tText "
            "Lbl2\tText Lbl3\tText Lbl4\tText Lbl5\tText Lbl6\tNum Lbl1\tNum Lbl2\tNum Lbl3\tNum Lbl4\tNum Lbl5\tNum "
            "Lbl6\r\n9\tRED\t\tINK\t1000001\t2026-01-05\t\t\t3.000\t2.000\t\t1.26\t2.51\t1.000\t0.000\t\t\ta b "
            "c\t\t\t\t0.000\t1.235\t0.000\t0.000\t0.000\t0.000\r\n");
  room.session.UMI = UnitGram;  // which costs a fraction of a cent
  room.prompt.Expect("Export Job Records");
  EXPECT_EQ(GatherJobRecords(room.session, {"9", "9"}, true)->rows[1][11], "1.255000");
  room.session.UMI = UnitPound;
  const auto path = room.folder / "jobs.txt";
  ReplaceFile(path, "old");
  room.prompt.Expect("Overwrite?", Answer::No, "Overwrite existing jobs.txt file?");
  EXPECT_TRUE(SaveRecordFile(room.session, *all, path).error().declined);
  EXPECT_EQ(ReadFileBytes(path), "old");
  room.prompt.Expect("Overwrite?", Answer::Yes)
      .Expect("File Saved", Answer::Ok, "Your file has been saved to:\n\n" + path.string());
  ASSERT_TRUE(SaveRecordFile(room.session, *all, path));
  EXPECT_EQ(ReadFileBytes(path), RecordText(*all));
}

TEST(RecordExport, MoreCellsThanAReportHoldsAreRefused) {
  RecordRoom room;
  {
    const test::Arranging arranging;
    Transaction transaction(room.session.File());
    for (int i = 0; i < 13000; ++i) room.Job("7", "2026-01-05 00:00:00", 1);
    transaction.Commit();
  }
  room.prompt.Expect("Export Job Records");
  EXPECT_EQ(GatherJobRecords(room.session, {"7", "7"}, true).error().text,
            "The export contains too many records.\n\nSelect a smaller range of Batch IDs for export.");
}

}  // namespace
}  // namespace vellumark::test
