#include <QTabWidget>

#include "core/batch/bench.h"
#include "core/batch/jobs.h"
#include "core/batch/leave.h"
#include "core/batch/open.h"
#include "core/batch/store.h"
#include "desktop/batch/side_room.h"
#include "desktop/kit/grid.h"
#include "support/snapshot.h"

namespace vellumark::test {
namespace {

std::vector<std::string> RowsOf(QWidget& window, const char* name) {
  auto& grid = Control<desktop::Grid>(window, name);
  std::vector<std::string> rows;
  for (int row : grid.ShownRows()) {
    std::string line;
    for (int column : grid.ShownColumns())
      line += (line.empty() ? "" : " | ") + grid.Model().Source()->Text(row, column);
    rows.push_back(line);
  }
  return rows;
}

struct ViewBatchTest : SideRoom {
  /// Stores a Batch of TARGET, recycled, with an addition, shared between a job and the stock.
  std::int32_t Store(const std::string& quantity, const std::string& used = "20") {
    BatchRecord record = NewBatchRecord(session);
    EXPECT_TRUE(EnterBatchColor(session, record, "TARGET"));
    record.work.QuantityText = quantity;
    EXPECT_TRUE(RecycleBatch(session, record));
    EXPECT_TRUE(AddBatchAdditions(session, record, {{"DRIER", "2"}}));
    EXPECT_TRUE(EnterJobNumber(session, record, "J-77"));
    EXPECT_TRUE(EnterQtyUsed(session, record, used));
    record.fields.ShortNote = "rush";
    record.fields.Notes = "Washed the pan first.";
    record.fields.UD_Text[0] = "Press 4";
    record.fields.Lab_L = 52.5F;
    NoBatchDialogs dialogs;
    std::int32_t number = 0;
    EXPECT_TRUE(SaveBatch(session, record, dialogs, &number));
    return number;
  }
  desktop::Window& View(std::int32_t number) {
    desktop::Window* window = windows.OpenForm("ViewBatchForm", {{"BatchNo", number}});
    ShowActive(*window);
    return *window;
  }
};

TEST_F(ViewBatchTest, AStoredBatchIsShownWholeAndNothingMoves) {
  const std::int32_t number = Store("100", "60");
  const std::string before = Snapshot(session.File());
  desktop::Window& view = View(number);
  EXPECT_EQ(TextOf(view, "lblBatchNo"), BatchNoText(number));
  EXPECT_EQ(TextOf(view, "lblColorName"), "TARGET");
  EXPECT_EQ(TextOf(view, "lblColorCode"), "T-60-40");
  EXPECT_EQ(TextOf(view, "lblQuantity"), "100.000 lb.");
  EXPECT_EQ(TextOf(view, "lblTotal"), "102.000 lb.");
  EXPECT_EQ(TextOf(view, "lblPercentRecycled"), "29.41%");
  EXPECT_EQ(RowsOf(view, "fgRows"),
            (std::vector<std::string>{"Mix | VIOLET | 30.000 | lb.", "Basic | RED | 45.000 | lb.",
                                      "Basic | BLUE | 25.000 | lb.", "Addition | DRIER | 2.000 | lb."}));
  EXPECT_EQ(RowsOf(view, "fgJobs"), (std::vector<std::string>{"J-77 | 60.000 | lb."}));
  EXPECT_EQ(TextOf(view, "lblInvQty"), "42.000 lb.");
  EXPECT_EQ(RowsOf(view, "fgLots"),
            (std::vector<std::string>{
                "VIOLET | Unlotted Inv. |  |  | 30.000 | lb.", "RED | Unlotted Inv. |  |  | 45.000 | lb.",
                "BLUE | Unlotted Inv. |  |  | 25.000 | lb.", "DRIER | Unlotted Inv. |  |  | 2.000 | lb."}));
  const auto figures = RowsOf(view, "fgCosts");
  EXPECT_EQ(figures.front(), "Cost of Basics / Additives | 358.19");
  EXPECT_EQ(figures[figures.size() - 4], "Total Cost of Batch | 515.69");
  EXPECT_EQ(figures[figures.size() - 2], "VOC | 76.000");
  EXPECT_EQ(figures.back(), "HAP | 96.000");
  EXPECT_EQ(RowsOf(view, "fgMoreData"), (std::vector<std::string>{"Text Lbl1 | Press 4", "L | 52.50"}));
  EXPECT_EQ(Control<QPlainTextEdit>(view, "txtNotes").toPlainText().toStdString(), "Washed the pan first.");
  EXPECT_FALSE(Control(view, "lblModifiedFormula").isVisible());
  auto& tabs = Control<QTabWidget>(view, "TabBatch");
  for (const auto& [page, picture] : {std::pair{"TabRecipe", "batch-view"},
                                      {"TabLots", "batch-view-lots"},
                                      {"TabFigures", "batch-view-figures"},
                                      {"TabNotes", "batch-view-notes"}}) {
    tabs.setCurrentWidget(&Control(view, page));
    Picture(view, picture);
  }
  TypeOn("x");
  EXPECT_FALSE(view.InEdit());
  EXPECT_EQ(Snapshot(session.File()), before);
  Press(view, Qt::Key_Escape);
  EXPECT_FALSE(windows.IsFormOpen("ViewBatchForm"));
}

TEST_F(ViewBatchTest, AnotherBatchTakesThePlaceOfTheFirstAndAnUnknownOneDoesNot) {
  const std::int32_t first = Store("100");
  const std::int32_t second = Store("50");
  desktop::Window& view = View(first);
  windows.OpenForm("ViewBatchForm", {{"BatchNo", second}});
  EXPECT_EQ(TextOf(view, "lblBatchNo"), BatchNoText(second));
  prompt.Expect("Batch Not Found", Answer::Ok, "Batch ID # 004711 is not in this Database.");
  windows.OpenForm("ViewBatchForm", {{"BatchNo", 4711}});
  EXPECT_EQ(TextOf(view, "lblBatchNo"), BatchNoText(second));
  EXPECT_TRUE(windows.IsFormOpen("ViewBatchForm"));
  windows.CloseForm("ViewBatchForm");
  prompt.Expect("Batch Not Found");
  windows.OpenForm("ViewBatchForm", {{"BatchNo", 4711}});
  Settle();
  EXPECT_FALSE(windows.IsFormOpen("ViewBatchForm")) << "there is nothing to look at";
}

TEST_F(ViewBatchTest, ItFollowsWhatHappensToFormulaAndBatch) {
  const std::int32_t number = Store("100");
  desktop::Window& view = View(number);
  EXPECT_FALSE(Control(view, "cmdModified").isEnabled());
  clock.Set({2026, 3, 11, 9, 0, 0});
  session.File().Prepare("UPDATE INK_Mix SET Date_Entered = '2026-03-11 09:00:00' WHERE Color_Name = 'TARGET'").Run();
  session.changes.Tell({{Change::Kind::Mix, "INK", "TARGET", Change::What::Updated, ""}});
  windows.DeliverChanges();
  EXPECT_EQ(TextOf(view, "lblModifiedFormula"), "MODIFIED FORMULA");
  EXPECT_TRUE(Control(view, "lblModifiedFormula").isVisible());
  Picture(view, "batch-view-modified");

  BatchRecord record = NewBatchRecord(session);
  ASSERT_TRUE(OpenBatch(session, record, number));
  NoBatchDialogs dialogs;
  prompt.Expect("Batch Window - Delete Batch?", Answer::Yes).Expect("Batch Window - Update Inventories?", Answer::Yes);
  ASSERT_TRUE(DeleteBatch(session, record, dialogs));
  windows.DeliverChanges();
  Settle();
  EXPECT_FALSE(windows.IsFormOpen("ViewBatchForm")) << "a deleted Batch is not shown on";
}

/// Stands for the formula's window.
struct FormulaStandIn : desktop::Window {
  explicit FormulaStandIn(desktop::WindowList& list) : Window(list, "MixColorsForm", "Master Formulas") {}
  void OnOpen(const desktop::Arguments& arguments) override { found = arguments.Text("FindRecord"); }
  std::string found;
};

TEST_F(ViewBatchTest, TheFormulaIsOpenedByKeyboardWhileItIsThere) {
  windows.Register<FormulaStandIn>("MixColorsForm");
  const std::int32_t number = Store("100");
  desktop::Window& view = View(number);
  Press(view, Qt::Key_F6);
  const auto* formula = dynamic_cast<FormulaStandIn*>(windows.Form("MixColorsForm"));
  ASSERT_NE(formula, nullptr);
  EXPECT_EQ(formula->found, "TARGET");
  Breaks("StockHistory");
  session.File().Prepare("DELETE FROM INK_Mix WHERE Color_Name = 'TARGET'").Run();
  session.changes.Tell({{Change::Kind::Mix, "INK", "TARGET", Change::What::Deleted, ""}});
  windows.DeliverChanges();
  EXPECT_FALSE(Control(view, "cmdFormula").isEnabled());
  EXPECT_EQ(TextOf(view, "lblColorCode"), "This Master Formula is no longer on file.");
  EXPECT_EQ(RowsOf(view, "fgRows").size(), 4U) << "the Batch keeps its lines";
  EXPECT_EQ(RowsOf(view, "fgCosts").back(), "HAP | 96.000");
}

TEST_F(ViewBatchTest, PricesAreBlockedForThoseWhoMayNotSeeThem) {
  const std::int32_t number = Store("100");
  session.CurrentUser = "ANNA";
  session.Perm_Costs = 0;
  desktop::Window& view = View(number);
  EXPECT_EQ(RowsOf(view, "fgCosts"),
            (std::vector<std::string>{"User Permissions - Price Blocked | ", "VOC | 76.000", "HAP | 96.000"}));
}

TEST_F(ViewBatchTest, ARecentBatchIsTakenByKeyboard) {
  EXPECT_FALSE(Run("RecentBatchesForm", {}, [&](QWidget& dialog) {
    EXPECT_TRUE(RowsOf(dialog, "fgBatches").empty());
    EXPECT_FALSE(Control(dialog, "cmdOpen").isEnabled());
    Press(dialog, Qt::Key_Escape);
  }));
  const std::int32_t first = Store("100");
  clock.Set({2026, 3, 10, 13, 30, 0});
  const std::int32_t second = Store("50");
  const auto taken = Run("RecentBatchesForm", {}, [&](QWidget& dialog) {
    const auto rows = RowsOf(dialog, "fgBatches");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].substr(0, 6), BatchNoText(second)) << "newest first";
    EXPECT_NE(rows[1].find("TARGET | 102.000 | lb."), std::string::npos) << rows[1];
    Picture(dialog, "batch-recent", {});
    PressOn(Qt::Key_Down);
    PressOn(Qt::Key_Return);
  });
  ASSERT_TRUE(taken);
  EXPECT_EQ(taken->Number("BatchNo"), first);
}

}  // namespace
}  // namespace vellumark::test
