// What each window does with the room that it gets: on a small screen, on a large one, and at 200 percent. The same run
// is made once more with two pixels for one.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMdiArea>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTreeView>
#include <map>

#include "core/colors/basics.h"
#include "core/session/options.h"
#include "desktop/kit/main_area.h"
#include "desktop/kit/text.h"
#include "every_window.h"

namespace vellumark::test {
namespace {

constexpr int kRowsAtLeast = 8;
constexpr int kLettersAtLeast = 12;
// Lists that share the height of a small screen with what is done to their rows.
const std::map<std::string, int> kBesideOthers{
    {"InvColorList_View", 2}, {"fgScanJobs_View", 4}, {"fgScan_View", 7},    {"lstAllMixes_ApplyTab_View", 6},
    {"LVMod_View", 5},        {"LVN_Mod_View", 5},    {"fgFormula_View", 7}, {"fgLab_View", 4},
    {"fgJobs_View", 2},       {"fgLots_View", 5},     {"lstColumns", 6}};
constexpr int kRowsDoubled = 4;
constexpr QSize kSmall{1280, 720};
constexpr QSize kUsual{1366, 768};
constexpr QSize kLarge{1920, 1080};
constexpr QSize kDoubled{960, 540};     ///< full HD at 200 percent
constexpr QSize kTitleAndPanel{8, 40};  ///< what a dialog leaves of the screen

struct SpaceTest : EveryWindow {
  SpaceTest() {
    running.program.Main().setUpdatesEnabled(true);
    running.program.Main().showNormal();
    // Lists that are longer than any window.
    Session& session = running.session;
    Transaction transaction(session.File());
    for (int n = 0; n < 40; ++n) {
      const std::string number = std::to_string(n);
      AddZeroBasic(session, "INK " + number, n % 2 != 0);
    }
    transaction.Commit();
  }

  void Find(const QWidget& widget, const std::string& what) {
    std::string at;
    for (const QWidget* above = &widget; above != nullptr && at.empty(); above = above->parentWidget())
      if (!above->objectName().isEmpty() && !above->objectName().startsWith("qt_"))
        at = above->objectName().toStdString();
    const std::string line = fmt::format("{} {}x{}: {}: {}", where, size.width(), size.height(), at, what);
    if (seen.insert(line).second) found.push_back(line);
  }

  // Texts against the room that they have.
  void CheckText(QWidget& widget) {
    if (auto* label = qobject_cast<QLabel*>(&widget); label != nullptr && !label->text().isEmpty()) {
      const int needed = label->wordWrap() ? label->heightForWidth(label->width()) : label->minimumSizeHint().height();
      if (label->height() + 2 < needed) Find(widget, "cut off below: " + label->text().toStdString());
      if (!label->wordWrap() && label->width() + 1 < label->minimumSizeHint().width())
        Find(widget, "cut off: " + label->text().toStdString());
    } else if (auto* button = qobject_cast<QAbstractButton*>(&widget); button != nullptr && !button->text().isEmpty()) {
      const QSize needed = button->minimumSizeHint();
      if (button->width() + 1 < needed.width() || button->height() + 2 < needed.height())
        Find(widget, "cut off: " + button->text().toStdString());
    } else if (auto* combo = qobject_cast<QComboBox*>(&widget)) {
      if (combo->width() < combo->fontMetrics().horizontalAdvance(combo->currentText()) + 40)
        Find(widget, "cut off: " + combo->currentText().toStdString());
    } else if (auto* bar = qobject_cast<QTabBar*>(&widget)) {
      if (size != kDoubled && bar->count() > 0 && bar->tabRect(bar->count() - 1).right() > bar->width())
        Find(widget, "has tabs out of sight");
    } else if (auto* name = dynamic_cast<desktop::NameBox*>(&widget)) {
      if (name->width() < name->fontMetrics().horizontalAdvance('N') * kLettersAtLeast + 40)
        Find(widget, fmt::format("shows a name in {} pixels", name->width()));
    }
  }

  void CheckList(QAbstractItemView& view) {
    const int row = view.sizeHintForRow(0);
    int height = row > 0 ? row : desktop::space::kRowHeight;
    if (auto* table = qobject_cast<QTableView*>(&view)) height = table->verticalHeader()->defaultSectionSize();
    const int shown = view.viewport()->height() / height;
    const auto beside = kBesideOthers.find(desktop::U8(view.objectName()));
    const int least = beside == kBesideOthers.end() ? kRowsAtLeast : beside->second;
    if (shown < (size == kDoubled ? std::min(least, kRowsDoubled) : least) && view.verticalScrollBar()->maximum() > 0)
      Find(view, fmt::format("shows {} rows of {}", shown, view.model()->rowCount()));
  }

  void CheckInside(QWidget& widget) {
    QWidget* parent = widget.parentWidget();
    if (parent == nullptr || widget.isWindow()) return;
    // What scrolls looks out of its frame on purpose.
    if (parent->objectName() == "qt_scrollarea_viewport" || qobject_cast<QTabBar*>(parent) != nullptr) return;
    if (qobject_cast<QLineEdit*>(parent) != nullptr || qobject_cast<QHeaderView*>(&widget) != nullptr) return;
    const QRect inside = parent->rect().adjusted(-2, -2, 2, 2);
    if (!inside.contains(widget.geometry())) {
      const QRect at = widget.geometry();
      Find(widget, fmt::format("{} reaches out of its parent {}: {} {} {}x{} in {}x{}",
                               widget.metaObject()->className(), parent->objectName().toStdString(), at.x(), at.y(),
                               at.width(), at.height(), parent->width(), parent->height()));
    }
  }

  // A part with many fields may scroll down; a window scrolls as a whole on the smallest screen alone.
  void CheckScrolling(QAbstractScrollArea& area) {
    const bool whole = dynamic_cast<QMdiArea*>(&area) != nullptr;
    if (size == kDoubled || (!whole && dynamic_cast<QScrollArea*>(&area) == nullptr)) return;
    if (whole && area.verticalScrollBar()->maximum() > 0)
      Find(area, fmt::format("scrolls down by {}", area.verticalScrollBar()->maximum()));
    if (area.horizontalScrollBar()->maximum() > 0)
      Find(area, fmt::format("scrolls across by {}", area.horizontalScrollBar()->maximum()));
  }

  void Measure(QWidget& root) {
    for (QWidget* widget : root.findChildren<QWidget*>()) {
      if (!widget->isVisible()) continue;
      CheckText(*widget);
      CheckInside(*widget);
      auto* area = qobject_cast<QAbstractScrollArea*>(widget);
      if (area == nullptr) continue;
      CheckScrolling(*area);
      if (auto* view = qobject_cast<QAbstractItemView*>(area);
          view != nullptr && qobject_cast<QHeaderView*>(view) == nullptr)
        CheckList(*view);
    }
  }

  void MeasurePages(const std::string& name, QWidget& root) {
    Measure(root);
    for (const QPointer<QTabWidget> tabs : root.findChildren<QTabWidget*>()) {
      const int first = tabs->currentIndex();
      for (int page = 0; page < tabs->count(); ++page) {
        if (!tabs->isVisible() || !tabs->isTabVisible(page) || !tabs->isTabEnabled(page) || page == first) continue;
        tabs->setCurrentIndex(page);
        Settle();
        where = name + ", " + tabs->tabText(page).toStdString();
        Measure(*tabs);
        if (root.window() == &running.program.Main()) CheckScrolling(running.program.Main().Area());
      }
      tabs->setCurrentIndex(first);
      where = name;
      Settle();
    }
  }

  void MeasureAtAllSizes(const std::string& name, QWidget& window) {
    where = name;
    auto* dialog = qobject_cast<QDialog*>(&window);
    const QSize own = window.size();
    for (const QSize& screen : {kSmall, kUsual, kLarge, kDoubled}) {
      size = screen;
      running.program.Main().resize(screen);
      if (dialog != nullptr) dialog->resize(own.boundedTo(screen - kTitleAndPanel));
      Settle();
      MeasurePages(name, window);
      // Now that all of its pages are there.
      CheckRoom(window, dialog != nullptr ? screen - kTitleAndPanel : running.program.Main().Area().viewport()->size());
      if (dialog == nullptr) CheckScrolling(running.program.Main().Area());
    }
  }

  void CheckRoom(QWidget& window, const QSize& room) {
    const auto* child = qobject_cast<desktop::Window*>(&window);
    // On the smallest screen the area of the windows scrolls; a dialog stands on it as a whole.
    if (child != nullptr && (size == kDoubled || child->IsFloating())) return;
    const QSize least = window.minimumSizeHint().expandedTo(window.minimumSize());
    if (least.width() > room.width() || least.height() > room.height())
      Find(window, fmt::format("needs {}x{} of {}x{}", least.width(), least.height(), room.width(), room.height()));
  }

  void MeasureWindows(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      // The windows in which labels are laid out scroll their pages of fields, across too.
      if (name.ends_with("LayoutForm")) continue;
      SCOPED_TRACE(name);
      On(name, [&](QWidget& window) { MeasureAtAllSizes(name, window); });
    }
    std::string all;
    for (const std::string& line : found) all += line + '\n';
    EXPECT_EQ(found.size(), 0U) << all;
  }

  std::string where;
  QSize size;
  Lines found;
  std::set<std::string> seen;
};

TEST_F(SpaceTest, EveryWindowFitsIntoTheScreenWithItsTextsAndLists) {
  MeasureWindows(running.windows.Names());
}

TEST_F(SpaceTest, InHighContrastTheyFitToo) {
  desktop::Look::SetTheme(desktop::Theme::DarkContrast);
  MeasureWindows(running.windows.Names());
  desktop::Look::SetTheme(desktop::Theme::Light);
}

TEST_F(SpaceTest, FieldsOfContainersFindRoomBesideThoseOfLots) {
  InventorySettings byContainer = ReadInventorySettings(running.session);
  byContainer.InvRecordMethod = 1;
  ASSERT_TRUE(SaveInventorySettings(running.session, byContainer));
  MeasureWindows({"AdjustInventoryForm", "BasicColorsForm", "MixColorsForm", "BatchForm", "StockHistoryForm"});
}

}  // namespace
}  // namespace vellumark::test
