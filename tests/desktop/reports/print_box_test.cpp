#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPrinter>
#include <QRadioButton>
#include <fstream>

#include "core/base/files.h"
#include "core/base/sheet.h"
#include "desktop/reports/page_preview.h"
#include "desktop/reports/register.h"
#include "support/desktop.h"
#include "support/ink_room.h"
#include "support/pdf_text.h"

namespace vellumark::test {
namespace {

Sheet LongList() {
  std::vector<int> rows(100);
  for (int i = 0; i < 100; ++i) rows[static_cast<std::size_t>(i)] = i;
  TableOf<int> table;
  table.Add("Color Name", [](int row) { return fmt::format("COLOR {}", row); })
      .Add("Date Entered",
           [](int) {
             return DateTime{2026, 2, 3};
           })
      .Add("Note", [](int) { return std::string("kept for the fair"); })
      .Add("Quantity (lb.)", [](int row) { return row + 0.5; })
      .Total("Totals");
  return Sheet::Of("Colors", table.Of(std::move(rows)));
}

struct PrintBoxTest : testing::Test, InkRoom {
  PrintBoxTest() {
    session.PrinterFont = "Open Sans";
    desktop::RegisterReportsWindows(
        windows, {.printers = [this] { return printers; },
                  .open =
                      [this](const std::string& device) {
                        if (gone) throw Failure(device, "This printer is no longer there.");
                        auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
                        printer->setOutputFormat(QPrinter::PdfFormat);
                        printer->setOutputFileName(QString::fromStdString((folder / "printed.pdf").string()));
                        return printer;
                      },
                  .chooseFile = [this](const desktop::FileChoice&,
                                       QWidget*) { return QString::fromStdString(chosen.string()); }});
  }
  /// True when something was printed.
  bool Run(const std::function<void(QWidget&)>& inside) {
    bool printed = false;
    WithModal([&] { printed = windows.RunDialog("PrintBoxForm", {{"Sheet", LongList()}}).has_value(); }, inside);
    return printed;
  }
  std::string OnFile(std::string_view key) const {
    return SupportFile(session.support->settings.Path(), session.support->settings.Shape()).GetSupportValue(key);
  }

  desktop::SystemPrinters printers{{{"Office (laser)", "LASER_2"}}, "LASER_2"};
  bool gone = false;
  std::filesystem::path chosen = folder / "list.pdf";
  desktop::WindowList windows{session};
};

TEST_F(PrintBoxTest, ShowsThePagesThatItPrints) {
  ASSERT_TRUE(Run([&](QWidget& dialog) {
    auto& preview = Control<desktop::PagePreview>(dialog, "Preview");
    const auto place = [&] { return Control<QLabel>(dialog, "lblPlace").text(); };
    const int pages = preview.PageCount();
    ASSERT_GE(pages, 3);
    Picture(dialog, "print-box");
    Press(dialog, Qt::Key_PageDown);
    EXPECT_EQ(place(), QString("Page 2 of %1").arg(pages));
    Press(dialog, Qt::Key_PageUp);
    Press(dialog, Qt::Key_PageUp);
    EXPECT_EQ(place(), QString("Page 1 of %1").arg(pages));
    EXPECT_FALSE(Control(dialog, "cmdPreviousPage").isEnabled());

    Control<QTabWidget>(dialog, "TabPrint").setCurrentIndex(1);
    Picture(dialog, "print-box-page");
    Click(dialog, "chkHeadings");
    Click(dialog, "optLandscape");
    EXPECT_GT(preview.PageCount(), pages);
    Control<QTabWidget>(dialog, "TabPrint").setCurrentIndex(0);
    Fill(dialog, "txtFrom", "9");
    prompt.Expect("Print Pages");
    Click(dialog, "cmdPrint");
    EXPECT_EQ(FocusName(), "txtFrom");
    Fill(dialog, "txtFrom", "2");
    Fill(dialog, "txtTo", "2");
    Click(dialog, "cmdPrint");
  }));
  EXPECT_EQ(OnFile("PControl_IncludeHeadings"), "0");
  EXPECT_EQ(OnFile("PControl_Orientation"), "1");
  const auto printed = ReadPdf(folder / "printed.pdf");
  ASSERT_EQ(printed.size(), 1U);

  // What was chosen is there again, and the whole goes into a file.
  ASSERT_TRUE(Run([&](QWidget& dialog) { Click(dialog, "cmdPDF"); }));
  const auto pdf = ReadPdf(chosen);
  ASSERT_GE(pdf.size(), 4U);
  EXPECT_EQ(LinesOf(pdf[1]), LinesOf(printed[0]));
  const auto first = LinesOf(pdf[0]);
  EXPECT_EQ(std::ranges::count_if(first, [](const std::string& line) { return line.starts_with("Color Name"); }), 0);
  EXPECT_EQ(std::ranges::count_if(first, [](const std::string& line) { return line.starts_with("COLOR 0 "); }), 1);
}

TEST_F(PrintBoxTest, TellsOfAPrinterThatIsGoneAndAsksBeforeItOverwrites) {
  gone = true;
  std::ofstream(chosen) << "kept";
  EXPECT_FALSE(Run([&](QWidget& dialog) {
    prompt.Expect("LASER_2", Answer::Ok, "This printer is no longer there.");
    Click(dialog, "cmdPrint");
    prompt.Expect("Overwrite File", Answer::No, "Overwrite existing file?");
    Click(dialog, "cmdPDF");
    chosen = folder / "nowhere/list.pdf";
    prompt.Expect(chosen.string(), Answer::Ok, "No such file or directory");
    Click(dialog, "cmdPDF");
    Press(dialog, Qt::Key_Escape);
  }));
  EXPECT_EQ(ReadFileBytes(folder / "list.pdf"), "kept");
}

TEST_F(PrintBoxTest, HasPreviewAndPdfWithoutAPrinter) {
  printers = {};
  ASSERT_TRUE(Run([&](QWidget& dialog) {
    EXPECT_FALSE(Control(dialog, "cmdPrint").isEnabled());
    EXPECT_GE(Control<desktop::PagePreview>(dialog, "Preview").PageCount(), 3);
    Click(dialog, "cmdPDF");
  }));
  EXPECT_GE(ReadPdf(chosen).size(), 3U);
}

}  // namespace
}  // namespace vellumark::test
