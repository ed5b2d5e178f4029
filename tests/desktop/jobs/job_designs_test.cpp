#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>

#include "core/base/files.h"
#include "core/datafile/references.h"
#include "core/exchange/design_file.h"
#include "core/jobs/design_bench.h"
#include "designs_desk.h"
#include "desktop/jobs/photo_frame.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;

struct JobDesignsTest : testing::Test, DesignsDesk {
  // Types a new Design with two colours, one of them estimated.
  QWidget& MakeDesign() {
    form = &Open("JobDesigns");
    Type(Control(*form, "cmbDesignID"), "gloss box_1");
    PressOn(Qt::Key_Return);
    Fill(*form, "Description", "Folding box, gloss");
    Fill(*form, "Impressions", "20000");
    Fill(*form, "Length", "10");
    Fill(*form, "Width", "15");
    Tab(*form, "tabDesign", 1);
    Fill(*form, "cmbColors", "PINK");
    Fill(*form, "Quantity", "2.5");
    Fill(*form, "PercentCoverage", "40");
    Click(*form, "cmdAdd");
    Fill(*form, "cmbColors", "VIOLET");
    Fill(*form, "PercentCoverage", "35");
    Click(*form, "cmdEstimate");
    return *form;
  }
  void Drop(const fs::path& path) {
    auto& frame = Control<desktop::PhotoFrame>(*form, "picPhoto");
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path.string()))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&frame, &enter);
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&frame, &drop);
    Settle();
  }
  bool Shows(const QColor& ink) {
    auto& frame = Control<desktop::PhotoFrame>(*form, "picPhoto");
    return WaitFor(
        [&] { return !frame.Image().isNull() && std::abs(frame.Image().pixelColor(5, 5).red() - ink.red()) < 40; });
  }

  desktop::Window* form = nullptr;
};

TEST_F(JobDesignsTest, IsTypedEstimatedSavedAndMadeAtTheBench) {
  MakeDesign();
  desktop::Window* estimator = windows.Form("InkEstForm");
  ASSERT_NE(estimator, nullptr);
  ShowActive(*estimator);
  EXPECT_TRUE(Control(*estimator, "cmdTransfer_Sheetfed").isVisible());
  // 20,000 x 10 x 15 x 0.35 square inches of black on uncoated at 300,000 a pound.
  EXPECT_EQ(Text(*estimator, "lblPounds_SF") + " " + Text(*estimator, "lblKilograms_SF"), "3.50 1.59");
  test::Picture(*estimator, "ink-estimator");
  Fill(*estimator, "txtLength_SF", "10.0001");
  Click(*estimator, "cmdTransfer_Sheetfed");
  Settle();
  EXPECT_FALSE(windows.IsFormOpen("InkEstForm"));
  EXPECT_EQ(Control<desktop::Grid>(*form, "DesignColorList").Model().rowCount(), 2);
  EXPECT_EQ(Text(*form, "lblTotalCost"), "29.25");  // 2.5 x 4 + 3.500035 x 5.50
  test::Picture(*form, "job-designs-colors");
  EXPECT_FALSE(DesignExists(session, "GLOSS BOX_1"));
  Click(*form, "cmdSave");
  ASSERT_EQ(DesignIDs(session), std::vector<std::string>{"GLOSS BOX_1"});
  const Design saved = *ReadDesign(session, "GLOSS BOX_1");
  EXPECT_FLOAT_EQ(saved.slots[1].IngQty, 3.500035F);
  EXPECT_EQ(saved.slots[1].IngPercent, 35);
  EXPECT_FALSE(form->InEdit());
  Tab(*form, "tabDesign", 0);
  test::Picture(*form, "job-designs");

  Click(*form, "cmdBench");
  desktop::Window* bench = windows.Form("DesignBenchForm");
  ASSERT_NE(bench, nullptr);
  ShowActive(*bench);
  Fill(*bench, "txtImpressions", "80000");
  EXPECT_EQ(Control<desktop::Grid>(*bench, "fgNeeds").Model().rowCount(), 2);
  test::Picture(*bench, "design-bench");
}

TEST_F(JobDesignsTest, PhotosAreDroppedUsedRenamedAndShown) {
  MakeDesign();
  windows.CloseForm("InkEstForm");
  Tab(*form, "tabDesign", 2);
  Drop(Picture("front.png", Qt::red));
  EXPECT_EQ(Text(*form, "lblImageName"), "front.jpg - not linked yet: press Use");
  Click(*form, "cmdUsePhoto");
  chosen = Picture("back.jpg", Qt::blue);
  Click(*form, "cmdGetPhoto");
  EXPECT_EQ(asked.title, "Select Photo for Job Design");
  WithModal([&] { Click(*form, "cmdRenamePhoto"); },
            [](QWidget& dialog) {
              Fill(dialog, "txtNewName", "rear side");
              Click(dialog, "cmdSave");
            });
  Click(*form, "cmdUsePhoto");
  ASSERT_EQ(Control<QListWidget>(*form, "lstPhotos").count(), 2);
  EXPECT_FALSE(fs::exists(PhotoFolder(session)));
  Click(*form, "cmdSave");
  EXPECT_EQ(LibraryPhotos(session), (std::vector<std::string>{"front.jpg", "rear side.jpg"}));
  EXPECT_TRUE(Shows(Qt::blue));
  Click(*form, "cmdNext");
  EXPECT_TRUE(Shows(Qt::red));
  EXPECT_TRUE(WaitFor([&] { return !Control<QListWidget>(*form, "lstPhotos").item(1)->icon().isNull(); }));
  test::Picture(*form, "job-designs-photos");
  // Text is no picture.
  ReplaceFile(folder / "note.jpg", "text");
  prompt.Expect("Design Photo", Answer::Ok, "note.jpg cannot be used as a photo: it is no JPEG and no PNG picture.");
  Drop(folder / "note.jpg");
  fs::remove(PhotoFolder(session) / "front.jpg");
  Click(*form, "cmdClear");
  form->OnOpen({{"DesignID", "GLOSS BOX_1"}});
  EXPECT_EQ(Text(*form, "lblImageName"), "front.jpg (1 of 2)");
  prompt.Expect("Remove Design Photo", Answer::Yes);
  Click(*form, "cmdRemovePhoto");
  Click(*form, "cmdSave");
  EXPECT_EQ(ReadDesign(session, "GLOSS BOX_1")->PhotoSet, "<rear side.jpg>");
}

TEST_F(JobDesignsTest, NeverLosesWhatWasTyped) {
  MakeDesign();
  windows.CloseForm("InkEstForm");
  prompt.Expect("Save Changes", Answer::Cancel, "Save changes to Design before closing?");
  Click(*form, "cmdClose");
  EXPECT_TRUE(windows.IsFormOpen("JobDesigns"));
  Click(*form, "cmdSave");
  Tab(*form, "tabDesign", 0);
  Fill(*form, "Description", "typed");
  // What others rename meanwhile is followed, and the typed text stays.
  RenameReferences(session.File(), "INK", ColorKind::Mix, "PINK", "ROSE");
  session.File().Execute("UPDATE INK_Mix SET Color_Name = 'ROSE' WHERE Color_Name = 'PINK'");
  session.changes.Tell({{Change::Kind::Mix, "INK", "PINK", Change::What::Renamed, "ROSE"}});
  windows.DeliverChanges();
  Settle();
  EXPECT_EQ(Control<QLineEdit>(*form, "Description").text(), "typed");
  Click(*form, "cmdSave");
  EXPECT_EQ(ReadDesign(session, "GLOSS BOX_1")->IngSet, "<ROSE>");
  // Millimetres and back leave the size as it was.
  Click(Control(*form, "optMillimetre"));
  EXPECT_EQ(Control<QLineEdit>(*form, "Length").text(), "254.00");
  EXPECT_FALSE(form->InEdit());
  WithModal([&] { Click(*form, "cmdRename"); },
            [this](QWidget& dialog) {
              prompt.Expect("Design Name Needed");
              Click(dialog, "cmdSave");
              Fill(dialog, "txtNewName", "matte");
              Click(dialog, "cmdSave");
            });
  EXPECT_EQ(Control<QLineEdit>(*form, "cmbDesignID").text(), "MATTE");
  prompt.Expect("Delete Design", Answer::Yes, "Delete Design ID: MATTE");
  Click(*form, "cmdDelete");
  EXPECT_TRUE(DesignIDs(session).empty());
  WithModal([&] { Click(*form, "cmdHints"); },
            [](QWidget& dialog) {
              test::Picture(dialog, "job-designs-hints");
              Click(dialog, "cmdClose");
            });
}

TEST_F(JobDesignsTest, GoesOutToAFileAndComesIn) {
  MakeDesign();
  windows.CloseForm("InkEstForm");
  Click(*form, "cmdSave");
  Click(*form, "cmdExchange");
  desktop::Window& files = Open("DB_ImportExport_Designs");
  prompt.Expect("No Selections", Answer::Ok, "No Designs have been selected");
  Click(files, "cmdExport");
  Control<desktop::Grid>(files, "fgDesigns").View().selectAll();
  EXPECT_EQ(Text(files, "lblSelected"), "Designs Selected - 1");
  fs::create_directories(folder / "out");
  chosen = folder / "out/designs.txt";
  prompt.Expect("Export Designs", Answer::Ok, "Designs have been successfully exported");
  Click(files, "cmdExport");
  prompt.Expect("Delete Design", Answer::Yes);
  ASSERT_TRUE(DeleteDesign(session, "GLOSS BOX_1"));
  windows.DeliverChanges();
  Tab(files, "tabExchange", 1);
  Click(files, "cmdSelectFile");
  auto& compare = Control<desktop::Grid>(files, "fgCompare");
  ASSERT_EQ(compare.Model().rowCount(), 1);
  compare.SetCurrentRow(0);
  WithModal([&] { Click(files, "cmdView"); },
            [](QWidget& dialog) {
              test::Picture(dialog, "design-of-file");
              Click(dialog, "cmdClose");
            });
  test::Picture(files, "design-exchange");
  prompt.Expect("Design Import", Answer::Ok, "Designs have been imported");
  Click(files, "cmdImport");
  EXPECT_TRUE(DesignExists(session, "GLOSS BOX_1"));
  ReplaceFile(chosen, "INK\r\n");
  prompt.Expect("Design Import", Answer::Ok, "Selected file is not compatible for a Design import");
  Click(files, "cmdSelectFile");
}

struct EstimatorWindowTest : testing::Test, DesignsDesk {};

TEST_F(EstimatorWindowTest, ChecksAsAFieldIsLeftAndKeepsItsTables) {
  desktop::Window& form = Open("InkEstForm");
  EXPECT_FALSE(Control(form, "cmdTransfer_Sheetfed").isVisible());
  prompt.Expect("Width - Invalid Data", Answer::Ok, "Bad Value for Width.");
  Fill(form, "txtLength_SF", "10");
  Fill(form, "txtWidth_SF", "-5");
  EXPECT_EQ(FocusName(), "txtWidth_SF");
  Fill(form, "txtWidth_SF", "15");
  Fill(form, "txtImpressions_SF", "20000");
  EXPECT_EQ(Text(form, "lblPounds_SF"), "10.00");
  WithModal([&] { Click(form, "cmdMileage"); },
            [](QWidget& dialog) {
              Fill(dialog, "txtMileage", "150000");
              test::Picture(dialog, "ink-mileage");
              Click(dialog, "cmdSave");
            });
  EXPECT_EQ(Text(form, "lblPounds_SF"), "20.00");
  Click(Control(form, "optMillimetre"));
  EXPECT_EQ(Text(form, "lblPounds_SF"), "0.03");
  Tab(form, "tabEstimator", 1);
  WithModal([&] { Click(form, "cmdAnilox"); },
            [](QWidget& dialog) {
              test::Picture(dialog, "ink-anilox");
              Click(dialog, "cmdCancel");
            });
  test::Picture(form, "ink-estimator-flexo");
}

TEST_F(EstimatorWindowTest, JobRecordsAreGatheredAndWritten) {
  InsertRow(session.File(), schema::JobRecords, "JobRecords",
            {{"JobNumber", "7"},
             {"Color_Name", "RED"},
             {"Database", "INK"},
             {"BatchNo", 1000001},
             {"ItemType", 1},
             {"Date_Entered", "2026-01-05 00:00:00"},
             {"QtyUsed", 2.0F}});
  session.File().Execute("UPDATE FileInfo SET ItemNumber = 100");
  desktop::Window& form = Open("ExportJobRecords");
  prompt.Expect("Invalid Job Number", Answer::Ok, "Please enter a valid Job Number.");
  Click(form, "cmdGather");
  Fill(form, "txtFirst", "1");
  Fill(form, "txtLast", "9");
  prompt.Expect("Export Job Records");
  Click(form, "cmdGather");
  test::Picture(form, "export-jobs");
  chosen = folder / "jobs.txt";
  prompt.Expect("File Saved");
  Click(form, "cmdCreateFile");
  EXPECT_TRUE(ReadFileBytes(chosen).starts_with("Job Number\tColor Name\t"));
  EXPECT_TRUE(asked.folder.endsWith("/Export Jobs - 1 - 9.txt"));
  test::Picture(Open("ExportBatchesForm"), "export-batches");
}

}  // namespace
}  // namespace vellumark::test
