// Charts, reports that are saved, what is left out of a print, and what summaries lead to.

#include <QImage>
#include <QListWidget>
#include <QtCharts/QAbstractBarSeries>
#include <QtCharts/QBarSet>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>

#include "core/base/files.h"
#include "core/colors/basics.h"
#include "core/reports/catalogue.h"
#include "core/session/settings.h"
#include "report_windows.h"
#include "support/pdf_text.h"

namespace vellumark::test {
namespace {

using Texts = std::vector<std::string>;

// Files and paper have dates in one form, and notes in full, which no color here has.
std::string InFiles(Grid& grid, int column, const std::string& cell) {
  if (grid.Columns()[static_cast<std::size_t>(column)].caption == "Notes" && cell == "No") return "";
  const QDate day = QLocale().toDate(QString::fromStdString(cell), QLocale::ShortFormat);
  return day.isValid() ? day.toString(Qt::ISODate).toStdString() : cell;
}

struct ReportsAtWork : ReportWindowsTest {
  std::string Path(const std::string& name) const { return (room.folder.Path() / name).string(); }
  void Choose(const std::string& name) {
    running.chooseFile = [file = QString::fromStdString(Path(name))](const desktop::FileChoice&) { return file; };
  }
  // The lines of what is printed by the click.
  Texts Printed(const std::function<void()>& act) {
    Choose("printed.pdf");
    std::filesystem::remove(Path("printed.pdf"));
    WithModal(act, [](QWidget& dialog) {
      if (dialog.objectName() == "PrintBoxForm") Click(dialog, "cmdPDF");
    });
    Texts lines;
    for (const PdfPage& page : ReadPdf(Path("printed.pdf")))
      for (std::string& line : LinesOf(page)) lines.push_back(std::move(line));
    return lines;
  }
  static bool Has(const Texts& lines, const std::string& text) {
    return std::ranges::any_of(lines, [&](const std::string& line) { return line.find(text) != std::string::npos; });
  }
  // The command line works on the same files once the program has closed.
  CliAnswer AfterClosing(std::vector<std::string> words) {
    running.program.Main().close();
    Settle();
    words.insert(words.begin(), {"--now", "2026-03-10 12:00:00"});
    return room.Run(words);
  }
  void NameIt(const std::function<void()>& act, const std::string& name) {
    WithModal(act, [&](QWidget& form) {
      Fill(form, "txtName", name);
      Click(form, "cmdSave");
    });
    Settle();
  }
};

std::vector<double> Bars(QWidget& window) {
  auto* view = window.findChild<QChartView*>("ChartView");
  if (view == nullptr || view->chart()->series().isEmpty()) return {};
  std::vector<double> bars;
  const auto* series = qobject_cast<QAbstractBarSeries*>(view->chart()->series().front());
  const QBarSet& set = *series->barSets().front();
  for (int i = 0; i < set.count(); ++i) bars.push_back(set.at(i));
  return bars;
}

// When the bar came up, or else how long all of it took.
class FirstSign : public QObject {
 public:
  explicit FirstSign(const CpuTimer& timer) : timer_(timer) { qApp->installEventFilter(this); }
  double Ms() const { return shown_.value_or(timer_.Ms()); }
  bool eventFilter(QObject* object, QEvent* event) override {
    if (!shown_ && event->type() == QEvent::Show && object->objectName() == "WaitingForm") shown_ = timer_.Ms();
    return false;
  }

 private:
  const CpuTimer& timer_;
  std::optional<double> shown_;
};

TEST_F(ReportsAtWork, AChartStandsBesideTheRowsIsPrintedAndSaved) {
  StoreSettings(running.session, {setting::PControl_FitToPage.To(false)});
  desktop::Window& report = Open("BatchListForm", {{"From", DateTime{2026, 3, 1}}, {"To", DateTime{2026, 3, 31}}});
  ASSERT_EQ(Column(report, "Quantity"), (Texts{"20.000", "30.000", "10.000"}));
  Click(report, "cmdChart");
  auto& figure = Control<desktop::ComboField>(report, "cmbChartFigure");
  auto& group = Control<desktop::ComboField>(report, "cmbChartGroup");
  figure.setCurrentIndex(figure.findText("Quantity", Qt::MatchStartsWith));
  Q_EMIT figure.activated(figure.currentIndex());
  group.setCurrentIndex(group.findText("Color"));
  Q_EMIT group.activated(group.currentIndex());
  EXPECT_EQ(Bars(report), (std::vector<double>{10, 50})) << "the largest on top";
  Picture(running.program.Main(), "report-chart-color");
  group.setCurrentIndex(group.findText("Day"));
  Q_EMIT group.activated(group.currentIndex());
  EXPECT_EQ(Bars(report), (std::vector<double>{10, 50}));
  Picture(running.program.Main(), "report-chart-day");
  // What is filtered away is not drawn.
  Type(Control(report, "fg_Filter"), "tint");
  EXPECT_EQ(Bars(report), std::vector<double>{10});
  Control<QLineEdit>(report, "fg_Filter").clear();
  group.setCurrentIndex(group.findText("Color"));
  Q_EMIT group.activated(group.currentIndex());

  Choose("bars.png");
  Click(report, "cmdSaveChart");
  const QImage picture(QString::fromStdString(Path("bars.png")));
  ASSERT_FALSE(picture.isNull());
  std::size_t dark = 0;
  for (int x = 0; x < picture.width(); ++x)
    for (int y = 0; y < picture.height(); ++y) dark += qGray(picture.pixel(x, y)) < 100 ? 1 : 0;
  EXPECT_GT(dark, 20000U) << "bars that stand out where there is no colour";
  Choose("bars.svg");
  Click(report, "cmdSaveChart");
  const std::string svg = ReadFileBytes(Path("bars.svg"));
  EXPECT_NE(svg.find("TARGET"), std::string::npos);
  // A file that is there is asked about.
  prompt().Expect("Overwrite File", Answer::No);
  Click(report, "cmdSaveChart");
  EXPECT_EQ(ReadFileBytes(Path("bars.svg")), svg);

  const Texts lines = Printed([&] { Click(report, "cmdPrint"); });
  EXPECT_TRUE(Has(lines, "Quantity (lb.) by Color")) << fmt::format("{}", fmt::join(lines, "\n"));
  EXPECT_TRUE(Has(lines, "Totals"));
  // It is there the next time.
  report.Leave();
  Settle();
  desktop::Window& again = Open("BatchListForm", {{"From", DateTime{2026, 3, 1}}, {"To", DateTime{2026, 3, 31}}});
  EXPECT_EQ(Bars(again), (std::vector<double>{10, 50}));
  EXPECT_FALSE(Has(Printed([&] {
                     Click(again, "cmdChart");
                     Click(again, "cmdPrint");
                   }),
                   "by Color"));
}

TEST_F(ReportsAtWork, AReportIsSavedRunRenamedAndDeleted) {
  desktop::Window* report = &Open("ProductionForm", {{"Color_Name", "TARGET"}});
  Click(*report, "chkDeselectAllColors");
  GridOf(*report).ShowColumn(Place(*report, "Quantity"), true);
  GridOf(*report).ClickCaption(Place(*report, "Quantity"), false);
  GridOf(*report).ClickCaption(Place(*report, "Quantity"), false);
  GridOf(*report).SetColumnWidth(Place(*report, "Quantity"), 222);
  // Its dates too get a name.
  Control<desktop::DateField>(*report, "CalFrom").SetDate(DateTime{2026, 2, 1});
  Control<desktop::DateField>(*report, "CalTo").SetDate(DateTime{2026, 3, 31});
  prompt().Expect("Date Range");
  WithModal([&] { Click(*report, "cmdKeepRange"); },
            [](QWidget& form) {
              Fill(form, "txtName", "All Dates");
              Click(form, "cmdSave");
              EXPECT_EQ(FocusName(), "txtName");
              Picture(form, "report-name", {});
              Fill(form, "txtName", "Season");
              Click(form, "cmdSave");
            });
  EXPECT_EQ(Control<desktop::ComboField>(*report, "cmbDateRange").Text(), "Season");
  Click(*report, "cmdFind");
  NameIt([&] { Click(*report, "cmdSaveReport"); }, "Target of the season");
  EXPECT_EQ(report->windowTitle(), "Target of the season");
  report->Leave();
  Settle();
  // The report itself is as it was before.
  report = &Open("ProductionForm", {{"Color_Name", "TARGET"}});
  EXPECT_GT(GridOf(*report).ShownColumns().size(), 2U);
  EXPECT_EQ(Column(*report, "Quantity"), (Texts{"20.000", "30.000"}));
  report->Leave();
  Settle();

  desktop::Window& menu = Open("ReportsForm");
  auto& saved = Control<QListWidget>(menu, "lstSavedReports");
  ASSERT_EQ(saved.count(), 1);
  EXPECT_FALSE(Control(menu, "cmdRename").isEnabled());
  saved.setFocus();
  saved.setCurrentRow(0);
  EXPECT_EQ(Control<QLabel>(menu, "lblDescription").text(),
            "Production - Specific Color - this Database\nTARGET\nSeason");
  Picture(running.program.Main(), "reports-menu-saved");
  PressOn(Qt::Key_Return);
  Settle();
  report = running.windows.Form("ProductionForm");
  ASSERT_NE(report, nullptr);
  EXPECT_EQ(Column(*report, "Quantity"), (Texts{"30.000", "20.000"}));
  EXPECT_EQ(GridOf(*report).ShownColumns().size(), 2U);
  EXPECT_EQ(GridOf(*report).ColumnWidth(Place(*report, "Quantity")), 222);
  report->Leave();
  Settle();

  Open("ReportsForm");
  saved.setCurrentRow(0);
  NameIt([&] { Click(menu, "cmdRename"); }, "Spring");
  ASSERT_EQ(saved.count(), 1);
  EXPECT_EQ(saved.item(0)->text(), "Spring");
  Click(running.program.Main(), "Report");
  const CliAnswer nightly = AfterClosing({"report", "run", "--saved", "spring", "--json"});
  ASSERT_EQ(nightly.status, 0) << nightly.err;
  EXPECT_EQ(nightly.Json()["Rows"], nlohmann::ordered_json::parse(R"([["TARGET",30],["TARGET",20]])"));
  EXPECT_EQ(room.Run({"report", "rename", "Spring", "Autumn"}).status, 0);
  EXPECT_EQ(room.Run({"report", "rename", "Spring", "Autumn"}).status, 1);
  EXPECT_EQ(room.Run({"report", "chart", "--saved", "Autumn", "--by", "day", "--json"}).Json(),
            nlohmann::ordered_json::parse(R"([{"Name":"2026-03-10","Value":50}])"));
}

TEST_F(ReportsAtWork, ASavedReportGoesWhenItIsConfirmed) {
  desktop::Window& report = Open("SummarizedProductionForm");
  Click(report, "cmdFind");
  NameIt([&] { Click(report, "cmdSaveReport"); }, "Made");
  prompt().Expect("Saved Report", Answer::No);
  // The same name again: its own report is replaced without a question, another's is asked about.
  NameIt([&] { Click(report, "cmdSaveReport"); }, "Made");
  desktop::Window& other = Open("SummarizedConsumptionForm");
  Click(other, "cmdFind");
  WithModal([&] { Click(other, "cmdSaveReport"); },
            [](QWidget& form) {
              Fill(form, "txtName", "made");
              Click(form, "cmdSave");
              PressOn(Qt::Key_Escape);
            });
  desktop::Window& menu = Open("ReportsForm");
  auto& saved = Control<QListWidget>(menu, "lstSavedReports");
  saved.setCurrentRow(0);
  prompt().Expect("Saved Report", Answer::No).Expect("Saved Report", Answer::Yes);
  Click(menu, "cmdDelete");
  EXPECT_TRUE(Control(menu, "cmdDelete").isEnabled());
  Click(menu, "cmdDelete");
  EXPECT_FALSE(Control(menu, "cmdDelete").isEnabled());
}

TEST_F(ReportsAtWork, ASummaryLeadsToWhatItSums) {
  desktop::Window& databases =
      Open("ProductionColorNameSummaryForm", {{"Color_Name", "TINT"}, {"Kind", ColorKind::Mix}});
  const auto rows = Column(databases, "Database");
  const auto row = [&](const char* name) { return static_cast<int>(std::ranges::find(rows, name) - rows.begin()); };
  const auto click = [&](QWidget& window, int at) {
    QTableView& view = GridOf(window).View();
    const QPoint place = view.visualRect(GridOf(window).Model().index(at, 0)).center();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, place);
    Settle();
  };
  prompt().Expect("Color Found Batch Summary", Answer::Ok, "There are no batches in the UV database.");
  click(databases, row("UV"));
  click(databases, row("INK"));
  desktop::Window* detail = running.windows.Form("ProductionForm");
  ASSERT_NE(detail, nullptr);
  EXPECT_EQ(Column(*detail, "Color Name"), Texts{"TINT"});
  desktop::Window& consumed = Open("ConsumptionColorNameSummaryForm", {{"Color_Name", "WHITE"}});
  prompt().Expect("Color Consumption Summary", Answer::Ok, "WHITE wasn't consumed in the UV database.");
  click(consumed, row("UV"));
  desktop::Window& colors = Open("SummarizedConsumptionForm");
  Click(colors, "cmdFind");
  const auto names = Column(colors, "Color Name");
  click(colors, static_cast<int>(std::ranges::find(names, "BLUE") - names.begin()));
  detail = running.windows.Form("ConsumptionForm");
  ASSERT_NE(detail, nullptr);
  EXPECT_EQ(Control<desktop::TextField>(*detail, "cmbColorName").Text(), "BLUE");
  EXPECT_FALSE(Column(*detail, "Qty Consumed").empty());
}

TEST_F(ReportsAtWork, LotPricesAndNotesAreChangedInTheirCells) {
  desktop::Window& stock = Open("InventoryForm");
  Click(stock, "chkSelectAllColors");
  Click(stock, "cmdFind");
  const auto lots = Column(stock, "Lot Number");
  const auto at = static_cast<int>(std::ranges::find(lots, "A") - lots.begin());
  Grid& grid = GridOf(stock);
  grid.View().setFocus();
  grid.View().setCurrentIndex(grid.Model().index(at, Place(stock, "Unit Cost")));
  TypeCell("7.5");
  EXPECT_TRUE(WaitFor([&] { return Column(stock, "Unit Cost").at(static_cast<std::size_t>(at)) == "7.50"; }));
  EXPECT_EQ(running.session.File()
                .Scalar("SELECT LotPrice FROM INK_Basic_LotInv WHERE LotCName = 'RED' AND LotNumber = 'A'")
                .Single(),
            7.5F);
  EXPECT_EQ(ReadBasic(running.session, "RED")->PurchaseCost, 4.25F);
  // A lot's quantity is the room's of stock.
  grid.View().setCurrentIndex(grid.Model().index(at, Place(stock, "Inventory")));
  prompt().Expect("Not Editable");
  PressOn(Qt::Key_F2);

  const auto names = Column(stock, "Color Name");
  grid.View().setCurrentIndex(
      grid.Model().index(static_cast<int>(std::ranges::find(names, "WHITE") - names.begin()), Place(stock, "Notes")));
  WithModal([] { PressOn(Qt::Key_F2); },
            [](QWidget& form) {
              EXPECT_EQ(form.windowTitle(), "Notes of WHITE");
              Control<desktop::NoteField>(form, "txtNotes").SetText("opaque\nkeep warm");
              Click(form, "cmdSave");
            });
  EXPECT_EQ(ReadBasic(running.session, "WHITE")->Notes, "opaque\nkeep warm");
}

TEST_F(ReportsAtWork, WhatACardPrintsIsChosenBesideItsPages) {
  desktop::Window* shown = &Open("BasicColorsForm", {{"FindRecord", "RED"}});
  const auto print = [&](const std::function<void(QWidget&)>& choose) {
    Choose("card.pdf");
    std::filesystem::remove(Path("card.pdf"));
    WithModal([&] { Click(*shown, "cmdPrint"); },
              [&](QWidget& dialog) {
                choose(dialog);
                Click(dialog, "cmdPDF");
              });
    Texts lines;
    for (const PdfPage& page : ReadPdf(Path("card.pdf")))
      for (std::string& line : LinesOf(page)) lines.push_back(std::move(line));
    return lines;
  };
  EXPECT_TRUE(Has(print([](QWidget&) {}), "Purchase Cost"));
  const Texts without = print([](QWidget& dialog) {
    Control<QTabWidget>(dialog, "TabPrint").setCurrentIndex(2);
    auto& items = Control<desktop::CheckListField>(dialog, "lstItems");
    Picture(dialog, "print-contents", {});
    items.SetChecked(4, false);
  });
  EXPECT_FALSE(Has(without, "Purchase Cost"));
  EXPECT_TRUE(Has(without, "VOC"));
  EXPECT_FALSE(GetSetting(running.session, setting::BC_PrintItem_[4]));
  Click(*shown, "cmdPrintMultiple");
  ASSERT_TRUE(running.windows.IsFormOpen("ReportsForm"));
  EXPECT_EQ(FocusName(), "lstColorReports");

  // A formula prints the notes of what it is made of and of what was made of it when these are asked for.
  Database& file = running.session.File();
  file.Execute("UPDATE INK_Basic SET Notes = 'stir well'");
  file.Execute("UPDATE INK_Batch SET Notes = 'a little dark' WHERE BatchNo = (SELECT MIN(BatchNo) FROM INK_Batch "
               "WHERE Color_Name = 'TARGET')");
  shown = &Open("MixColorsForm", {{"FindRecord", "TARGET"}});
  const auto tick = [](bool on) {
    return [on](QWidget& dialog) {
      auto& items = Control<desktop::CheckListField>(dialog, "lstItems");
      for (const int item : {19, 20}) items.SetChecked(item, on);
    };
  };
  const Texts own = print(tick(false));
  EXPECT_FALSE(Has(own, "stir well") || Has(own, "a little dark"));
  const Texts noted = print(tick(true));
  for (const char* text : {"Ingredient Notes", "stir well", "Batch Notes", "a little dark"}) EXPECT_TRUE(Has(noted, text)) << text;
}

// Whatever there is to read: rows, or the bar, are seen before a tenth of a second has been worked.
TEST_F(ReportsAtWork, ALongReportShowsItsBarAtOnce) {
  running.session.File().Execute(
      "INSERT INTO INK_Batch (BatchNo, Color_Name, Date_Entered, Quantity, ActualQuantity, UMF) WITH RECURSIVE n(i) AS "
      "(SELECT 1000 UNION ALL SELECT i + 1 FROM n WHERE i < 120000) SELECT i, 'TARGET', '2026-03-01 00:00:00', 1.5, "
      "1.5, "
      "1 FROM n");
  running.session.File().Execute("UPDATE FileInfo SET BatchNumber = 120001");
  desktop::Window& report = Open("SummarizedConsumptionForm");
  const CpuTimer timer;
  FirstSign sign(timer);
  Click(report, "cmdFind");
  ASSERT_EQ(Column(report, "Color Name").empty(), false);
  EXPECT_LT(sign.Ms(), 100 * kSlower);
}

// The month's end: what the windows show is what goes on paper, into files, and what the command line says.
TEST_F(ReportsAtWork, TheMonthsEndAgreesOnScreenOnPaperInFilesAndOnTheCommandLine) {
  const std::vector<std::string> reports{"SummarizedProductionForm", "SummarizedConsumptionForm",
                                         "SummarizedJobUsageForm", "InventoryForm", "BasicColors_VOC_HAP_ListForm"};
  std::map<std::string, std::string> onScreen;
  StoreSettings(running.session, {setting::PControl_FitToPage.To(false)});
  for (const std::string& name : reports) {
    SCOPED_TRACE(name);
    const bool dated = !FindReport(name)->dateRangeKey.empty();
    desktop::Window& report = Open(name);
    if (dated) {
      Control<desktop::DateField>(report, "CalFrom").SetDate(DateTime{2026, 3, 1});
      Control<desktop::DateField>(report, "CalTo").SetDate(DateTime{2026, 3, 31});
    }
    Click(report, "chkSelectAllColors");
    Click(report, "cmdFind");
    Grid& grid = GridOf(report);
    ASSERT_FALSE(grid.ShownRows().empty());
    // As a tabbed text, the captions aside.
    std::string text;
    Texts words;
    for (const int row : grid.ShownRows())
      for (const int column : grid.ShownColumns()) {
        const std::string cell = InFiles(grid, column, grid.Model().Source()->Text(row, column));
        text += cell + (column == grid.ShownColumns().back() ? "\r\n" : "\t");
        if (!cell.empty()) words.push_back(cell);
      }
    onScreen[name] = text;
    Picture(running.program.Main(), "month-" + name);

    const Texts lines = Printed([&] { Click(report, "cmdPrint"); });
    std::string paper;
    for (const std::string& line : lines) paper += line + "\n";
    for (const std::string& word : words) EXPECT_NE(paper.find(word), std::string::npos) << word << "\n" << paper;

    prompt().Expect("File Export");
    WithModal([&] { Click(report, "cmdExport"); },
              [&](QWidget& form) {
                Fill(form, "txtFolder", room.folder.Path().string());
                Fill(form, "txtFileName", name);
                Click(form, "chkHeadings");
                Click(form, "chkTotals");
                Click(form, "cmdSave");
              });
    EXPECT_EQ(ReadFileBytes(Path(name + ".txt")), text);
    report.Leave();
    Settle();
  }
  running.program.Main().close();
  Settle();
  for (const std::string& name : reports) {
    std::vector<std::string> words{"--now", "2026-03-10 12:00:00", "report",      "export", name,           "--columns",
                                   "all",   "--no-headings",       "--no-totals", "--out",  Path("cli.txt"), "--yes"};
    if (!FindReport(name)->dateRangeKey.empty())
      words.insert(words.end(), {"--from", "2026-03-01", "--to", "2026-03-31"});
    const CliAnswer answer = room.Run(words);
    ASSERT_EQ(answer.status, 0) << answer.err;
    EXPECT_EQ(ReadFileBytes(Path("cli.txt")), onScreen[name]) << name;
  }
}

}  // namespace
}  // namespace vellumark::test
