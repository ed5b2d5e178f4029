#include "desktop/kit/grid.h"

#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>

#include "core/base/number.h"
#include "desktop/kit/piece_source.h"
#include "desktop/kit/window.h"
#include "support/desk.h"
#include "support/desktop.h"
#include "support/loop_watch.h"

namespace vellumark::test {
namespace {

using desktop::Grid;
using desktop::GridColumn;
using desktop::GridSort;
using desktop::GridSource;
using desktop::TableSource;

/// A list of inks whose quantity can be edited, 0 to 99999.
class Inks : public TableSource {
 public:
  bool IsEditable(int row, int column) const override { return column == 1 && Text(row, 0) != "TOTAL WHITE"; }
  Result<void> Edit(int row, int column, const std::string& text) override {
    const auto number = ParseNumber(text.empty() ? "0" : text);
    if (!number) return Decline("");
    if (*number < 0) return Refuse("Invalid Quantity", "You must enter an amount between\n0 and 99999");
    At(row, column).text = Fixed(*number, 3);
    edits.push_back(Text(row, 0) + "=" + Text(row, column));
    return {};
  }
  std::vector<std::string> edits;
};

struct GridTest : testing::Test {
  GridTest() {
    grid.SetColumns({GridColumn::Text("Color Name", 240), GridColumn::Number("Quantity (lb.)").Choosable(),
                     GridColumn::Text("Lot", 120).Choosable(), GridColumn::Text("Location", 120).Choosable(false)});
    const struct {
      const char* name;
      const char* quantity;
      const char* lot;
    } rows[] = {{"RED", "9.000", "B"},
                {"BLUE", "10.000", "A"},
                {"GREEN", "", "B"},
                {"blue", "9.000", "A"},
                {"TOTAL WHITE", "100.000", "B"}};
    for (const auto& row : rows) source->Add({row.name, row.quantity, row.lot, "SHELF 7"});
    grid.SetSource(source);
    grid.resize(700, 320);
    ShowActive(grid);
  }

  /// The first column as shown.
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const int row : grid.ShownRows()) names.push_back(source->Text(row, 0));
    return names;
  }
  void ClickCaption(int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QHeaderView& header = *grid.View().horizontalHeader();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, modifiers,
                      QPoint(header.sectionViewportPosition(column) + 20, 10));
    Settle();
  }
  void ClickCell(int row, int column) {
    const QRect cell = grid.View().visualRect(grid.Model().index(grid.Model().ShownRow(row), column));
    QTest::mouseClick(grid.View().viewport(), Qt::LeftButton, Qt::NoModifier, cell.center());
    Settle();
  }

  using List = std::vector<std::string>;
  std::shared_ptr<Inks> source = std::make_shared<Inks>();
  Grid grid{"fgInks"};
};

TEST_F(GridTest, SortsByClicksOnCaptions) {
  EXPECT_EQ(Names(), (List{"RED", "BLUE", "GREEN", "blue", "TOTAL WHITE"})) << "the source's own order at first";
  ClickCaption(0);
  EXPECT_EQ(Names(), (List{"BLUE", "GREEN", "RED", "TOTAL WHITE", "blue"})) << "texts with regard to case";
  ClickCaption(0);
  EXPECT_EQ(Names(), (List{"blue", "TOTAL WHITE", "RED", "GREEN", "BLUE"}));
  ClickCaption(1);
  EXPECT_EQ(Names(), (List{"GREEN", "RED", "blue", "BLUE", "TOTAL WHITE"})) << "numbers, the empty one first";
  ClickCaption(2);
  EXPECT_EQ(Names(), (List{"BLUE", "blue", "RED", "GREEN", "TOTAL WHITE"}));
  ClickCaption(1, Qt::ShiftModifier);
  EXPECT_EQ(Names(), (List{"blue", "BLUE", "GREEN", "RED", "TOTAL WHITE"}));
  ClickCaption(1, Qt::ShiftModifier);
  EXPECT_EQ(Names(), (List{"BLUE", "blue", "TOTAL WHITE", "RED", "GREEN"})) << "only the second sort turns round";
  ClickCaption(2, Qt::ShiftModifier);
  EXPECT_EQ(grid.Sort(), (GridSort{2, true, -1, false})) << "Shift on the first sort is a plain click";
}

TEST_F(GridTest, SaysOverEachCaptionWhatAClickDoes) {
  grid.SetSort({0, false, 1, false});
  const auto tip = [&](int column) {
    return grid.Model().headerData(column, Qt::Horizontal, Qt::ToolTipRole).toString().toStdString();
  };
  EXPECT_EQ(tip(0), "Click to reverse sort order");
  EXPECT_EQ(tip(1), "Click to sort  or  Shift+Click to reverse double sort order");
  EXPECT_EQ(tip(2), "Click to sort  or  Shift+Click to double sort");
}

TEST_F(GridTest, FiltersByEveryWordInAnyCaseOverTheShownColumns) {
  grid.ShowFilter("Filter");
  auto& box = Control<QLineEdit>(grid, "fgInks_Filter");
  Type(box, "blue");
  EXPECT_EQ(Names(), (List{"BLUE", "blue"}));
  Type(box, " 10");
  EXPECT_EQ(Names(), (List{"BLUE"}));
  Press(box, Qt::Key_Escape);
  EXPECT_EQ(Names().size(), 5U);
  Type(box, "shelf");
  EXPECT_TRUE(Names().empty()) << "the location is hidden";
  grid.ShowColumn(3, true);
  EXPECT_EQ(Names().size(), 5U);
}

TEST_F(GridTest, TheCurrentRowStaysThroughSortFilterAndRefresh) {
  grid.SetCurrentRow(3);
  ClickCaption(0);
  EXPECT_EQ(grid.CurrentRow(), 3);
  grid.Model().SetFilter("x");
  grid.Model().SetFilter("");
  grid.SetCurrentRow(3);
  source->Add({"CYAN", "1.000", "A"});
  grid.Refresh();
  EXPECT_EQ(grid.CurrentRow(), 3);
  EXPECT_EQ(Names().size(), 6U);
}

// Another window has changed what is listed, and the list was read again before the grid heard of it.
TEST_F(GridTest, TheCurrentRowIsNotItsNeighbourWhenRowsComeOrGoBeforeIt) {
  const auto list = [&](const std::vector<const char*>& names) {
    source->Clear();
    for (const char* name : names) source->Add({name, "1.000", "A", ""});
    grid.Refresh();
    return grid.CurrentRow() < 0 ? std::string("none") : source->Text(grid.CurrentRow(), 0);
  };
  grid.SetCurrentRow(2);
  EXPECT_EQ(list({"AMBER", "RED", "BLUE", "GREEN", "blue"}), "GREEN");
  EXPECT_EQ(list({"GREEN", "RED", "GREEN", "GREEN"}), "GREEN");
  EXPECT_EQ(grid.CurrentRow(), 3);
  EXPECT_EQ(list({"RED", "GREEN"}), "GREEN");
  EXPECT_EQ(list({"RED", "LIME"}), "LIME") << "renamed, it stays where it was";

  struct Keyed : TableSource {
    std::int64_t Key(int row) const override { return keys.at(static_cast<std::size_t>(row)); }
    int RowOf(std::int64_t key) const override {
      const auto found = std::ranges::find(keys, key);
      return found == keys.end() ? -1 : static_cast<int>(found - keys.begin());
    }
    std::vector<std::int64_t> keys;
  };
  const auto keyed = std::make_shared<Keyed>();
  const auto put = [&](const std::vector<std::int64_t>& keys) {
    keyed->Clear();
    keyed->keys = keys;
    for (std::size_t i = 0; i < keys.size(); ++i) keyed->Add({"SAME", "1.000", "A", ""});
  };
  put({7, 8, 9});
  grid.SetSource(keyed);
  grid.SetCurrentRow(1);
  put({5, 7, 8, 9});
  grid.Refresh();
  EXPECT_EQ(grid.CurrentRow(), 2);
}

TEST_F(GridTest, KeepsItsColumnsAsAColumnSet) {
  EXPECT_EQ(grid.ColumnSet(), "|Quantity||Lot|");
  EXPECT_TRUE(grid.View().isColumnHidden(3));
  grid.SetColumnSet("|Location||Lot|");
  EXPECT_EQ(grid.ShownColumns(), (std::vector<int>{0, 2, 3})) << "the first one is always there";
  EXPECT_EQ(grid.ColumnSet(), "|Lot||Location|");
  grid.SetColumnWidth(1, 200);
  EXPECT_EQ(grid.ColumnWidth(1), 200) << "of a hidden column as well";
  grid.ShowColumn(1, true);
  EXPECT_EQ(grid.View().columnWidth(1), 200);
  grid.View().horizontalHeader()->resizeSection(2, 77);
  EXPECT_EQ(grid.ColumnWidth(2), 77);
}

TEST_F(GridTest, EditsInPlaceAndGoesOnToTheNextCellThatCanBeEdited) {
  ClickCell(0, 1);
  EXPECT_EQ(FocusName(), "txtEdit");
  TypeOn("5");
  PressOn(Qt::Key_Return);
  TypeOn("6");
  PressOn(Qt::Key_Down);
  TypeOn("-1x");
  PressOn(Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_EQ(source->edits, (List{"RED=5.000", "BLUE=6.000"})) << "-1 was refused";
  EXPECT_EQ(source->Text(2, 1), "");
  EXPECT_EQ(FocusName(), "txtEdit") << "back on the second row";
  EXPECT_EQ(grid.CurrentRow(), 1);
  PressOn(Qt::Key_Escape);
  EXPECT_EQ(source->edits.size(), 2U);
}

TEST_F(GridTest, SaysWhyAValueIsRefusedButRestoresAnUnreadableOneWithoutAWord) {
  std::vector<std::string> refusals;
  QObject::connect(&grid, &Grid::EditRefused, &grid,
                   [&](const Refusal& refusal) { refusals.push_back(refusal.title); });
  ClickCell(0, 1);
  TypeOn("-3");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(refusals, (List{"Invalid Quantity"}));
  ClickCell(0, 1);
  TypeOn("1-1");
  PressOn(Qt::Key_Return);
  EXPECT_EQ(refusals.size(), 1U);
  EXPECT_EQ(source->Text(0, 1), "9.000");
}

TEST_F(GridTest, ACellThatCannotBeEditedOpensNoEditor) {
  ClickCell(4, 1);
  EXPECT_EQ(FocusName(), "fgInks_View");
}

TEST_F(GridTest, EnterAndDoubleClickActivateARow) {
  std::vector<int> activated;
  QObject::connect(&grid, &Grid::RowActivated, &grid, [&](int row) { activated.push_back(row); });
  ClickCaption(0);
  ClickCell(4, 0);
  PressOn(Qt::Key_Return);
  EXPECT_EQ(activated, (std::vector<int>{4}));
}

TEST(Grids, Look) {
  Desk desk;
  struct ReportForm : desktop::Window {
    explicit ReportForm(desktop::WindowList& list) : Window(list, "ReportForm", "Report") {
      desktop::Form form(*this);
      form.Heading("Inventory");
      grid = form.Table("fg");
      grid->ShowFilter("Filter");
      form.Wide(grid, 1);
      form.Buttons({form.Button("cmdPrint", "&Print", QKeySequence::Print)});
    }
    Grid* grid;
  };
  ReportForm form(desk.windows);
  form.grid->SetColumns({GridColumn::Text("Color Name", 320), GridColumn::Text("Color Type", 144),
                         GridColumn::Amount("Quantity (lb.)"), GridColumn::Number("Cost $"), GridColumn::Text("Lot")});
  const auto source = std::make_shared<TableSource>();
  const struct {
    const char* name;
    const char* type;
    const char* mark;
    QColor ink;
    const char* quantity;
  } rows[] = {
      {"HARBOUR BLUE", "Formula", nullptr, "#20458f", "1204.350"},
      {"LEMON YELLOW", "Basic", "basic", "#f7e017", "12.000"},
      {"RETURNED MAGENTA 12", "Recycled", "recycled", "#b5176b", "7.250"},
      {"DRYER", "Addition", "additions", "#e8e4d8", "0.500"},
      {"TRANSPARENT WHITE, a name that is much too long for its column", "Basic", "low-stock", "#ffffff", "3.100"}};
  for (int round = 0; round < 8; ++round) {
    for (const auto& row : rows) {
      TableSource::Cell name(row.name);
      name.swatch = row.ink;
      TableSource::Cell type(row.type);
      type.mark = row.mark;
      source->Add({name, type, row.quantity, "4.25", "L-00" + std::to_string(round)});
    }
  }
  form.grid->SetSource(source);
  form.grid->SetTotals({"Totals", "", "9817.600", "170.00", ""});
  form.grid->SetSort({0, false, 2, true});
  form.grid->SetCurrentRow(9);
  Picture(form, "kit-grid");
}

// --- size ---------------------------------------------------------------------------------------------------------

/// Rows made up as they are asked for, so that only the grid's own work is measured.
class ManyRows : public GridSource {
 public:
  explicit ManyRows(int rows) : rows_(rows) {}
  int Rows() const override { return rows_; }
  std::string Text(int row, int column) const override {
    const auto mixed = static_cast<unsigned>(row) * 2654435761U % 100000U;
    switch (column) {
      case 0:
        return "PANTONE " + std::to_string(mixed) + " C";
      case 1:
        return std::to_string(mixed / 10) + "." + std::to_string(mixed % 10) + "00";
      default:
        return mixed % 3 == 0 ? "Basic" : "Formula";
    }
  }

 private:
  int rows_;
};

struct LargeGridTest : testing::Test {
  LargeGridTest() {
    grid.SetColumns({GridColumn::Text("Color Name", 240), GridColumn::Number("Quantity"), GridColumn::Text("Type")});
    grid.ShowFilter("Filter");
    grid.resize(800, 600);
    ShowActive(grid);
  }
  /// Milliseconds until the screen shows what `act` did.
  double Time(const char* what, const std::function<void()>& act) {
    const CpuTimer timer;
    act();
    QApplication::processEvents();
    grid.grab();
    const double ms = timer.Ms();
    std::cout << what << ": " << ms << " ms\n";
    return ms;
  }
  Grid grid{"fg"};
};

TEST_F(LargeGridTest, AHundredThousandRowsAreSortedAndFilteredWithoutAStutter) {
  EXPECT_LT(Time("show 100,000 rows", [&] { grid.SetSource(std::make_shared<ManyRows>(100'000)); }), 100 * kSlower);
  EXPECT_LT(Time("sort by text", [&] { grid.ClickCaption(0, false); }), 300 * kSlower);
  EXPECT_LT(Time("sort by number", [&] { grid.ClickCaption(1, false); }), 300 * kSlower);
  EXPECT_LT(Time("second sort", [&] { grid.ClickCaption(0, true); }), 400 * kSlower);
  auto& box = Control<QLineEdit>(grid, "fg_Filter");
  // The first key reads the text of all rows once.
  EXPECT_LT(Time("first key of the filter", [&] { QTest::keyClick(&box, '1'); }), 200 * kSlower);
  for (const char key : {'2', '3', '4'}) {
    EXPECT_LT(Time("next key", [&] { QTest::keyClick(&box, key); }), 60 * kSlower);
  }
  EXPECT_FALSE(grid.ShownRows().empty());
  for (const int row : grid.ShownRows()) {
    const GridSource& source = *grid.Model().Source();
    EXPECT_NE((source.Text(row, 0) + "\t" + source.Text(row, 1)).find("1234"), std::string::npos);
  }
  EXPECT_LT(Time("filter off", [&] { box.clear(); }), 100 * kSlower);
}

/// Rows that have come in pieces.
class ManyInPieces : public ManyRows, public desktop::ReadInPieces {
 public:
  using ManyRows::ManyRows;
  void BeginAnew() override {}
  bool ReadFurther() override { return false; }
  RowTarget Target(int) const override { return {}; }
};

// No key waits for it; what is there at the end is what was typed last.
TEST_F(LargeGridTest, AFilterLooksThroughALongListWhileTheProgramGoesOn) {
  constexpr int kRows = 300'000;
  const auto source = std::make_shared<ManyInPieces>(kRows);
  grid.SetSource(source);
  std::vector<int> expected;
  for (int row = 0; row < kRows; ++row)
    if ((source->Text(row, 0) + "\t" + source->Text(row, 1)).find("123") != std::string::npos) expected.push_back(row);
  auto& box = Control<QLineEdit>(grid, "fg_Filter");
  LoopWatch watch;
  const auto isThrough = [&] { return grid.ShownRows().size() == expected.size(); };
  for (const char key : {'1', '2', '3'}) watch.Step(std::string("key ") + key, [&] { QTest::keyClick(&box, key); });
  EXPECT_FALSE(isThrough());
  ASSERT_FALSE(grid.ShownRows().empty()) << "those of the beginning are there at once";
  grid.SetCurrentRow(expected[1]);
  grid.SetSort({1, true, -1, false});
  EXPECT_FALSE(isThrough());
  watch.Step("the rest", [&] { EXPECT_TRUE(WaitFor(isThrough)); });
  const double slow = MachineSlowness() * kSlower;
  for (const auto& [step, block] : watch.Longest()) EXPECT_LT(block.ms, 100 * slow) << step << ": " << block.event;
  EXPECT_EQ(grid.CurrentRow(), expected[1]);
  EXPECT_EQ(grid.SelectedRows(), std::vector{expected[1]});
  std::vector<int> shown = grid.ShownRows();
  EXPECT_TRUE(std::ranges::is_sorted(shown, std::greater{}, [&](int row) { return source->Number(row, 1); }));
  std::ranges::sort(shown);
  EXPECT_EQ(shown, expected);
  // Other rows come while it looks.
  QTest::keyClick(&box, Qt::Key_Backspace);
  grid.Refresh();
  QTest::keyClick(&box, '3');
  EXPECT_TRUE(WaitFor(isThrough));
}

TEST_F(LargeGridTest, ScrollsThrough350000Cells) {
  grid.SetSource(std::make_shared<ManyRows>(350'000 / 3 + 1));
  QScrollBar& bar = *grid.View().verticalScrollBar();
  double worst = 0;
  for (int step = 0; step < 50; ++step) {
    const CpuTimer timer;
    bar.setValue(bar.maximum() / 50 * step);
    grid.grab();
    worst = std::max(worst, timer.Ms());
  }
  std::cout << "worst scroll step: " << worst << " ms\n";
  EXPECT_LT(worst, 50 * kSlower);
}

}  // namespace
}  // namespace vellumark::test
