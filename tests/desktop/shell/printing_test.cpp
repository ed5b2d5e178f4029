// What windows print, by the keys of an operator, read back from the file.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QTimer>

#include "core/inventory/adjust.h"
#include "desktop/batch/register.h"
#include "desktop/inventory/register.h"
#include "desktop/kit/grid.h"
#include "desktop/reports/register.h"
#include "support/desktop.h"
#include "support/ink_room.h"
#include "support/pdf_text.h"

namespace vellumark::test {
namespace {

struct PrintingTest : testing::Test, InkRoom {
  PrintingTest() {
    Setting("InvLotTracking", "0");
    Setting("Overpour", "1");
    session.PrinterFont = "Open Sans";
    session.RecordsetsOpen = true;
    RegisterBatchWindows(windows);
    RegisterInventoryWindows(windows);
    RegisterReportsWindows(windows,
                           {.printers = [] { return desktop::SystemPrinters{}; },
                            .open = {},
                            .chooseFile = [this](const desktop::FileChoice&,
                                                 QWidget*) { return QString::fromStdString(Next().string()); }});
    Basic("RED", {{"Inventory", 100.0F}, {"PurchaseCost", 4.0F}});
    Basic("BLUE", {{"Inventory", 100.0F}, {"PurchaseCost", 4.0F}});
    Mix("TARGET", {{"RED", 60}, {"BLUE", 40}}, {{"Recycle", true}, {"Inventory", 2.0F}});
  }
  std::filesystem::path Next() { return folder / fmt::format("printed-{}.pdf", ++files); }
  std::vector<std::string> Printed() const {
    std::vector<std::string> lines;
    for (const PdfPage& page : ReadPdf(folder / fmt::format("printed-{}.pdf", files)))
      for (std::string& line : LinesOf(page)) lines.push_back(std::move(line));
    return lines;
  }
  void Save(const std::function<void()>& act) {
    WithModal(act, [](QWidget& dialog) { Click(dialog, "cmdPDF"); });
  }

  int files = 0;
  desktop::WindowList windows{session};
};

bool Has(const std::vector<std::string>& lines, const std::string& line) {
  return std::ranges::find(lines, line) != lines.end();
}

TEST_F(PrintingTest, TheBatchWindowPrintsTicketRecycleListAndChange) {
  desktop::Window* form = windows.OpenForm("BatchForm");
  form->resize(1280, 720);
  ShowActive(*form);
  EXPECT_FALSE(Control(*form, "cmdPrint").isEnabled());
  TypeOn("TARGET");
  PressOn(Qt::Key_Return);
  TypeOn("10");
  PressOn(Qt::Key_F3);
  Save([] { PressOn(Qt::Key_P, Qt::ControlModifier); });
  auto lines = Printed();
  EXPECT_TRUE(Has(lines, "RED 6.000 lb.") && Has(lines, "TOTAL WEIGHT 10.000") && Has(lines, "Cost of Batch 40.00"));
  Save([&] { Click(*form, "cmdPrintRecList"); });
  lines = Printed();
  EXPECT_TRUE(Has(lines, "Recycle Color List") && Has(lines, "TARGET 100.00 2.000 Yes"))
      << fmt::format("{}", fmt::join(lines, "\n"));

  ShowActive(*form);
  Type(Control(*form, "txtQuantity"), "5");
  prompt.Expect("Recalculate Batch");
  PressOn(Qt::Key_P, Qt::ControlModifier);
  prompt.Expect("Recalculate Batch");
  Click(*form, "cmdPrintRecList");
  Fill(*form, "txtQuantity", "10");
  PressOn(Qt::Key_F3);

  // The change is printed once the window in which it was typed is gone.
  prompt.Expect("Excess Basic Color Weight", Answer::Yes)
      .Expect("Change in Amounts" + std::string(50, ' '), Answer::Yes);
  QTimer second;
  QObject::connect(&second, &QTimer::timeout, &second, [&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal->objectName() != "PrintBoxForm" || !modal->isActiveWindow()) return;
    second.stop();
    Click(*modal, "cmdPDF");
  });
  WithModal([&] { Click(*form, "lblAmount0"); },
            [&](QWidget& dialog) {
              second.start(5);
              Fill(dialog, "txtAmount", "9");
              Click(dialog, "cmdSave");
            });
  lines = Printed();
  EXPECT_TRUE(Has(lines, "MODIFIED FORMULA") && Has(lines, "RED 6.000 9.000 3.000") &&
              Has(lines, "BLUE 4.000 6.000 2.000"))
      << fmt::format("{}", fmt::join(lines, "\n"));

  // Read-only, it is printed as it was stored; the settings say with what.
  Click(*form, "cmdSave");
  Click(*form, "cmdCancel");
  WithModal([&] { Click(*form, "cmdSettings"); },
            [](QWidget& dialog) {
              Control<QTabWidget>(dialog, "TabSettings").setCurrentIndex(4);
              EXPECT_TRUE(Control<QCheckBox>(dialog, "chkPrintCost").isChecked());
              Picture(dialog, "batch-settings-printing", {});
              Click(dialog, "chkPrintCost");
              Click(dialog, "cmdSave");
            });
  desktop::Window* view = windows.OpenForm("ViewBatchForm", {{"BatchNo", 1}});
  ShowActive(*view);
  Save([&] { Click(*view, "cmdPrint"); });
  lines = Printed();
  EXPECT_TRUE(Has(lines, "Batch ID #: 000001") && Has(lines, "TOTAL WEIGHT 15.000"));
  EXPECT_FALSE(Has(lines, "Cost Detail"));
}

TEST_F(PrintingTest, TheStockHistoryPrintsTheLinesThatItShows) {
  for (const char* name : {"RED", "BLUE"}) {
    auto work = LoadInventory(session, ColorKind::Basic, name);
    AdjustFields fields = ClearedFields(session, work);
    fields.quantity = 5;
    ASSERT_TRUE(ApplyAdjust(session, work, fields));
    ASSERT_TRUE(SaveInventory(session, work));
  }
  desktop::Window* history = windows.OpenForm("StockHistoryForm", {{"Color_Name", std::string("RED")}});
  ShowActive(*history);
  Save([&] { Click(*history, "cmdPrint"); });
  const auto lines = Printed();
  const auto of = [&](const char* name) {
    return std::ranges::count_if(lines, [&](const std::string& line) { return line.find(name) != std::string::npos; });
  };
  EXPECT_EQ(of(" RED "), 2) << fmt::format("{}", fmt::join(lines, "\n"));
  EXPECT_EQ(of(" BLUE "), 0);
}

TEST_F(PrintingTest, AReportPrintsTheRowsThatItShowsInTheirOrder) {
  desktop::Window* report = windows.OpenForm("BasicCostListForm");
  report->resize(1280, 720);
  ShowActive(*report);
  EXPECT_FALSE(Control(*report, "cmdPrint").isEnabled());
  PressOn(Qt::Key_F5);
  Control<desktop::Grid>(*report, "fg").ClickCaption(0, false);  // downwards
  const auto printed = [&] {
    Save([&] { Press(*report, Qt::Key_P, Qt::ControlModifier); });
    std::string names;
    for (const std::string& line : Printed())
      for (const char* name : {"RED", "BLUE"})
        if (line.starts_with(name)) names += std::string(name) + " ";
    return names;
  };
  EXPECT_EQ(printed(), "RED BLUE ");
  ShowActive(*report);
  Type(Control(*report, "fg_Filter"), "blue");
  EXPECT_EQ(Control<desktop::Grid>(*report, "fg").ShownRows().size(), 1U);
  EXPECT_EQ(printed(), "BLUE ");
}

}  // namespace
}  // namespace vellumark::test
