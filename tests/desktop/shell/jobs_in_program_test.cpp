// Jobs in the program with all its windows: from a Design to two Batches and an item from stock, what came back, the end
// of the Job, its page and its file; and how the Job Window and an open Batch stand back for one another.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QImage>
#include <QLineEdit>

#include "core/jobs/job_tables.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/message_prompt.h"
#include "furnished_room.h"
#include "running.h"
#include "support/pdf_text.h"

namespace vellumark::test {
namespace {

struct JobsInProgramTest : testing::Test {
  JobsInProgramTest() {
    for (const char* name : {"front.png", "back.png"}) {
      QImage image(120, 80, QImage::Format_RGB32);
      image.fill(name[0] == 'f' ? Qt::red : Qt::blue);
      image.save(QString::fromStdString((room.folder / name).string()));
    }
    for (const std::vector<std::string>& verb : std::vector<std::vector<std::string>>{
             {"design", "add", "CARTON", "TARGET=2:40", "TINT=3:20", "RED=4", "BLUE=1", "Impressions=1000", "Length=10",
              "Width=8"},
             {"design", "photo", "CARTON", "add", (room.folder / "front.png").string()},
             {"design", "photo", "CARTON", "add", (room.folder / "back.png").string()},
             {"stock", "adjust", "RED", "20", "--lot", "OLD", "--date", "2025-12-01"},
             {"settings", "set", "BatchLotNumReminder", "0"}}) {
      const CliAnswer answer = room.Run(verb);
      if (answer.status != 0) throw std::runtime_error(verb[0] + " " + verb[1] + ": " + answer.err);
    }
    running.chooseFile = [this](const desktop::FileChoice& choice) {
      file = room.folder / ("chosen" + choice.extension.toStdString());
      return QString::fromStdString(file.string());
    };
    running.prompt.SetHook([this](const Message& message) {
      told.push_back(message.title);
      if (message.text.find("Choose lots before the Batch is saved?") != std::string::npos) return Answer::No;
      return message.buttons == Buttons::Ok ? Answer::Ok : Answer::Yes;
    });
    if (!running.Start({desktop::ChooseFile, [this](const auto&) { return room.folder.Path(); }}))
      throw std::runtime_error("the program does not start");
    running.program.Main().activateWindow();
    Settle();
  }
  ~JobsInProgramTest() override {
    running.windows.CloseChildWindows();
    running.program.Main().close();
    Settle();
  }

  /// Ctrl and the figure of a toolbar button.
  void Toolbar(Qt::Key figure) {
    Press(running.program.Main(), figure, Qt::ControlModifier);
    QTest::qWait(150);  // a button shows that it was pressed, then acts
    Settle();
  }
  /// The letter of an entry of the menu that is open.
  void FromMenu(Qt::Key letter) {
    desktop::Window* menu = running.windows.Form("JobMenu");
    if (menu == nullptr) throw std::runtime_error("no menu of Jobs");
    Picture(*menu, "job-menu", menu->size());
    Press(*menu, letter);
    QTest::qWait(150);
    Settle();
    Active();
  }
  desktop::Window& FromJobMenu(Qt::Key letter, const char* window) {
    Toolbar(Qt::Key_4);
    FromMenu(letter);
    if (!running.windows.IsFormOpen(window)) throw std::runtime_error(std::string("no ") + window);
    return *running.windows.Form(window);
  }
  /// Who has come to the front gets the keys again.
  void Active() {
    running.program.Main().activateWindow();
    Settle();
  }
  bool Told(const char* title) {
    const bool was = std::ranges::find(told, title) != told.end();
    told.clear();
    return was;
  }
  std::int64_t Count(const char* table) {
    return running.session.File().Scalar(std::string("SELECT COUNT(*) FROM ") + table).Whole();
  }
  void GoTo(desktop::Window& job, int row, JobColumn column) {
    Active();
    auto& list = Control<desktop::Grid>(job, "fg");
    list.View().setFocus();
    list.View().setCurrentIndex(list.Model().index(list.Model().ShownRow(row), static_cast<int>(column)));
  }
  void TypeUsed(desktop::Window& job, int row, const char* text) {
    GoTo(job, row, JobColumn::QtyUsed);
    PressOn(Qt::Key_Return);
    TypeOn(text);
    PressOn(Qt::Key_Tab);
    Settle();
  }

  FurnishedRoom room;
  RunningProgram<desktop::MessagePrompt> running{room.folder.Path()};
  std::vector<std::string> told;
  std::filesystem::path file;
};

TEST_F(JobsInProgramTest, FromADesignToTheEndOfItsJob) {
  desktop::Window& design = FromJobMenu(Qt::Key_D, "JobDesigns");
  Type(Control(design, "cmbDesignID"), "CARTON");
  PressOn(Qt::Key_Return);
  Settle();
  Click(design, "cmdBench");
  desktop::Window* bench = running.windows.Form("DesignBenchForm");
  ASSERT_NE(bench, nullptr);
  Fill(*bench, "txtImpressions", "20000");
  Fill(*bench, "JobNumber", "J-77");
  const std::int64_t batches = Count("INK_Batch");
  for (int row = 0; row < 2; ++row) {
    running.windows.OpenForm("DesignBenchForm");
    Active();
    auto& needs = Control<desktop::Grid>(*bench, "fgNeeds");
    needs.View().setFocus();
    needs.SetCurrentRow(row);
    PressOn(Qt::Key_Return);
    Settle();
    ASSERT_TRUE(running.windows.IsInEdit("BatchForm")) << row;
    desktop::Window& batch = *running.windows.Form("BatchForm");
    EXPECT_EQ(Control<QLineEdit>(batch, "JobNumber").text(), "J-77");
    Press(batch, Qt::Key_S, Qt::ControlModifier);
    Settle();
    ASSERT_FALSE(running.windows.IsInEdit("BatchForm")) << row;
  }
  ASSERT_EQ(Count("INK_Batch"), batches + 2);

  desktop::Window& job = FromJobMenu(Qt::Key_J, "JobForm");
  TypeOn("J-77");
  PressOn(Qt::Key_Return);
  Settle();
  auto& list = Control<desktop::Grid>(job, "fg");
  ASSERT_EQ(list.Model().rowCount(), 2);
  WithModal([&] { Press(job, Qt::Key_Insert); },
            [&](QWidget& dialog) {
              Control(dialog, "cmbDesignID").setFocus(Qt::TabFocusReason);
              TypeOn("CARTON");
              PressOn(Qt::Key_Return);
              Settle();
              auto& colors = Control<desktop::Grid>(dialog, "DesignColorList");
              colors.View().setFocus();
              colors.SetCurrentRow(2);
              PressOn(Qt::Key_Return);
              PressOn(Qt::Key_F2);
              PressOn(Qt::Key_S, Qt::ControlModifier);
              PressOn(Qt::Key_Escape);
            });
  Settle();
  ASSERT_EQ(list.Model().rowCount(), 3);
  const std::vector<JobRecord> issued = JobItems(running.session, "J-77");
  EXPECT_EQ(issued[2].LotNumber + " " + issued[2].DesignID, "OLD CARTON") << "the oldest lot, not the supplier's";

  // Partly returned: of a Batch and of what was taken from stock.
  EXPECT_FALSE(Told("Usage Notice"));
  TypeUsed(job, 0, "0");
  EXPECT_TRUE(Told("Usage Notice")) << "a Batch's row does not go from here";
  PressOn(Qt::Key_Escape);
  TypeUsed(job, 0, "1.5");
  TypeUsed(job, 2, "2.25");
  const std::vector<JobRecord> used = JobItems(running.session, "J-77");
  EXPECT_EQ(used[0].QtyUsed, 1.5F);
  EXPECT_EQ(used[2].QtyUsed, 2.25F);
  EXPECT_EQ(running.session.File().Scalar("SELECT LotQty FROM INK_Basic_LotInv WHERE LotNumber = 'OLD'").Number(), 17.75);
  for (const char* other : {"BatchForm", "DesignBenchForm", "JobDesigns"}) running.windows.CloseForm(other);
  Settle();
  Picture(running.program.Main(), "main-form-job");
  EXPECT_GE(list.View().viewport()->height() / list.View().rowHeight(0), 8) << "rows at 1280x720";

  // The Batch shows what its row says.
  GoTo(job, 0, JobColumn::BatchNo);
  PressOn(Qt::Key_Return);
  Settle();
  desktop::Window& batch = *running.windows.Form("BatchForm");
  EXPECT_EQ(Control<QLineEdit>(batch, "txtQtyUsed").text(), "1.500");
  Click(batch, "cmdCancel");
  Settle();

  running.windows.OpenForm("JobForm");
  WithModal([&] { Press(job, Qt::Key_F12); },
            [](QWidget& dialog) {
              EXPECT_EQ(dialog.objectName(), "JobClosingDate");
              PressOn(Qt::Key_Return);
              if (dialog.isVisible()) PressOn(Qt::Key_Return);
            });
  EXPECT_TRUE(LoadJob(running.session, "J-77").Date_Completed);
  Active();
  list.View().setFocus();
  WithModal([&] { PressOn(Qt::Key_P, Qt::ControlModifier); }, [](QWidget& dialog) { Click(dialog, "cmdPDF"); });
  std::string page;
  for (const PdfPage& sheet : ReadPdf(file))
    for (const std::string& line : LinesOf(sheet)) page += line + "\n";
  for (const char* text : {"Job Cost Sheet", "J-77", "1.500", "2.250"})
    EXPECT_NE(page.find(text), std::string::npos) << text;
  // Under a head of two lines one for each picture: the photos of the Design.
  const std::string photos = RunTool("pdfimages -list '" + file.string() + "'");
  EXPECT_EQ(std::ranges::count(photos, '\n'), 4) << photos;
  Click(job, "cmdExportJobs");
  desktop::Window& records = *running.windows.Form("ExportJobRecords");
  Fill(records, "txtFirst", "J-77");
  Fill(records, "txtLast", "J-77");
  Click(records, "cmdGather");
  Click(records, "cmdCreateFile");
  EXPECT_NE(ReadFileBytes(file).find("J-77"), std::string::npos);
  running.windows.CloseChildWindows();
  for (const auto& [item, form] : {std::pair{"menuDFExport_Batches", "ExportBatchesForm"}, {"menuDFExport_Jobs", "ExportJobRecords"}}) {
    running.program.Main().findChild<QAction*>(item)->trigger();
    EXPECT_TRUE(running.windows.IsFormOpen(form)) << item;
  }
  running.windows.CloseChildWindows();
  running.program.Main().close();
  Settle();
  const auto shown = room.Json({"job", "show", "J-77"});
  EXPECT_EQ(shown["Items"].size(), 3U);
  EXPECT_FALSE(shown["Date_Completed"].is_null());
}

TEST_F(JobsInProgramTest, TheJobWindowAndAnOpenBatchStandBackForOneAnother) {
  desktop::Window& job = FromJobMenu(Qt::Key_J, "JobForm");
  TypeOn("J1");
  PressOn(Qt::Key_Return);
  Settle();
  GoTo(job, 0, JobColumn::QtyUsed);
  PressOn(Qt::Key_Return);
  TypeOn("14");
  ASSERT_TRUE(job.InEdit());
  Toolbar(Qt::Key_3);
  EXPECT_TRUE(Told("Job Window - in State of Edit."));
  EXPECT_FALSE(running.windows.IsFormOpen("BatchForm"));
  EXPECT_TRUE(job.InEdit()) << "what was typed still stands";
  PressOn(Qt::Key_Escape);
  ASSERT_FALSE(job.InEdit());

  running.windows.OpenForm("BatchForm", {{"BatchNo", 1}});
  Settle();
  ASSERT_TRUE(running.windows.IsInEdit("BatchForm"));
  Toolbar(Qt::Key_4);
  FromMenu(Qt::Key_J);
  EXPECT_TRUE(Told("Batch Window - in State of Edit."));
  // However it came to the front, nothing is booked past the open Batch.
  running.windows.OpenForm("JobForm", {{"JobNumber", "J1"}});
  Settle();
  const float before = JobItems(running.session, "J1")[0].QtyUsed;
  TypeUsed(job, 0, "14");
  EXPECT_TRUE(Told("Batch Window - in State of Edit."));
  PressOn(Qt::Key_Escape);
  for (const Qt::Key key : {Qt::Key_Insert, Qt::Key_F12, Qt::Key_F4}) {
    GoTo(job, 0, JobColumn::Date_Returned);
    PressOn(key);
    Settle();
    EXPECT_TRUE(Told("Batch Window - in State of Edit.")) << key;
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  }
  EXPECT_EQ(JobItems(running.session, "J1")[0].QtyUsed, before);
  Click(*running.windows.Form("BatchForm"), "cmdCancel");
  Settle();
  ASSERT_FALSE(running.windows.IsInEdit("BatchForm"));
  running.windows.OpenForm("JobForm");
  TypeUsed(job, 0, "14");
  EXPECT_EQ(JobItems(running.session, "J1")[0].QtyUsed, 14);
}

}  // namespace
}  // namespace vellumark::test
