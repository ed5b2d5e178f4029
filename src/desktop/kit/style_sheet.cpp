#include "desktop/kit/style_sheet.h"

#include <utility>

namespace vellumark::desktop {
namespace {

// @name stands for a colour. Heights are those of look.h: a field's 32 pixels are 30 and its two edges.
constexpr auto kSheet = R"(
QLineEdit, QAbstractSpinBox, QComboBox { background: @surface; color: @text; border: 1px solid @border;
  border-radius: 4px; padding: 0 7px; min-height: 30px; selection-background-color: @accent;
  selection-color: @onAccent; }
QPlainTextEdit, QListView, QTableView, QTreeView { background: @surface; color: @text; border: 1px solid @line;
  border-radius: 4px; selection-background-color: @accent; selection-color: @onAccent; }
QPlainTextEdit { border-color: @border; padding: 3px; }
QLineEdit:focus, QAbstractSpinBox:focus, QComboBox:focus, QPlainTextEdit:focus { border: 2px solid @accent;
  padding: 0 6px; }
QPlainTextEdit:focus { padding: 2px; }
QListView:focus, QTableView:focus, QTreeView:focus { border-color: @accent; }
QLineEdit:disabled, QAbstractSpinBox:disabled, QComboBox:disabled, QPlainTextEdit:disabled,
QLineEdit:read-only { background: @window; color: @off; border-color: @line; }
QLineEdit:read-only:enabled { color: @text; }
QLineEdit[fault="true"], QAbstractSpinBox[fault="true"], QComboBox[fault="true"], QPlainTextEdit[fault="true"],
QAbstractItemView[fault="true"], QAbstractButton[fault="true"], QLineEdit[fault="true"]:focus,
QAbstractSpinBox[fault="true"]:focus, QComboBox[fault="true"]:focus, QPlainTextEdit[fault="true"]:focus {
  border: 2px solid @danger; }
QLineEdit[fault="true"], QComboBox[fault="true"], QAbstractSpinBox[fault="true"] { padding: 0 6px; }
QComboBox::drop-down, QDateEdit::drop-down { border: none; width: 24px; }
QComboBox::down-arrow, QDateEdit::down-arrow { image: url(:/icons/down-@tone.svg); width: 12px; height: 12px; }
QComboBox QAbstractItemView { border: 1px solid @border; border-radius: 0; padding: 0; outline: none; }
QComboBox QAbstractItemView::item { min-height: 28px; padding: 0 8px; }
QTableView QLineEdit { min-height: 0; border-radius: 0; }
QComboBox QLineEdit, QComboBox QLineEdit:focus, QAbstractSpinBox QLineEdit, QAbstractSpinBox QLineEdit:focus {
  border: none; padding: 0; min-height: 0; background: transparent; }
QListView::item, QTreeView::item { background: @surface; min-height: 26px; padding: 0 4px; }
QListView::item:selected, QTreeView::item:selected { background: @chosen; color: @text; }
QPushButton { background: @raised; color: @text; border: 1px solid @line; border-radius: 4px; padding: 0 13px;
  min-height: 30px; outline: none; }
QPushButton:hover { border-color: @border; }
QPushButton:pressed { background: @line; }
QPushButton:focus { border: 2px solid @accent; padding: 0 12px; }
QPushButton:disabled { color: @off; background: @window; border-color: @line; }
QPushButton[primary="true"]:enabled { background: @accent; color: @onAccent; border-color: @accent; }
QPushButton[primary="true"]:focus { border: 2px solid @text; }
QPushButton[outlined="true"]:enabled { border: 2px solid @accent; padding: 0 12px; }
QPushButton[outlined="true"]:focus, QPushButton[outlined="true"][primary="true"]:focus { border: 2px solid @text; }
QPushButton[link="true"] { background: transparent; border-color: transparent; color: @accent; padding: 0 7px;
  text-align: left; }
QPushButton[link="true"]:hover, QPushButton[link="true"]:focus { border-color: @accent; }
QToolButton { border: 1px solid transparent; border-radius: 4px; padding: 4px 8px; color: @text; }
QToolButton:hover, QToolButton:checked { background: @raised; }
QToolButton:pressed { background: @line; }
QToolButton:focus { border-color: @accent; }
QToolButton:disabled { color: @off; }
QCheckBox, QRadioButton { color: @text; min-height: 24px; spacing: 8px; outline: none; }
QCheckBox:disabled, QRadioButton:disabled { color: @off; }
QCheckBox::indicator, QRadioButton::indicator, QListView::indicator { width: 16px; height: 16px;
  border: 1px solid @border; background: @surface; border-radius: 3px; }
QRadioButton::indicator { border-radius: 9px; }
QCheckBox::indicator:checked, QListView::indicator:checked { background: @accent; border-color: @accent;
  image: url(:/icons/check-@tone.svg); }
QRadioButton::indicator:checked { background: @accent; border-color: @accent; image: url(:/icons/dot-@tone.svg); }
QCheckBox::indicator:focus, QRadioButton::indicator:focus { border: 2px solid @accent; }
QCheckBox::indicator:checked:focus, QRadioButton::indicator:checked:focus { border: 2px solid @text; }
QCheckBox::indicator:disabled, QRadioButton::indicator:disabled { border-color: @line; background: @window; }
QCheckBox::indicator:checked:disabled, QRadioButton::indicator:checked:disabled { background: @off; }
QLabel { color: @text; background: transparent; }
QLabel:disabled { color: @off; }
QLabel[role="label"], QLabel[role="hint"] { color: @quiet; }
QLabel[role="label"]:disabled { color: @off; }
QLabel[role="fault"] { color: @danger; }
QHeaderView { background: @raised; border: none; }
QHeaderView::section { background: @raised; color: @text; border: none; border-right: 1px solid @line;
  border-bottom: 1px solid @line; padding: 0 8px; }
QTableView { gridline-color: @line; outline: none; }
QListView, QTreeView { outline: none; }
QTableWidget::item { background: @surface; padding: 0 5px; }
QTableWidget QHeaderView::section, QTreeView QHeaderView::section { min-height: 31px; }
QTableView::item:selected { background: @chosen; color: @text; }
QTableView QTableCornerButton::section { background: @raised; border: none; }
QTabWidget::pane { border: none; }
QTabBar::tab { background: transparent; color: @quiet; border: none; border-bottom: 2px solid transparent;
  padding: 0 16px; min-height: 34px; }
QTabBar::tab:selected { color: @text; border-bottom-color: @accent; }
QTabBar::tab:hover { color: @text; }
QTabBar::tab:focus { color: @accent; }
QTabBar::close-button { image: url(:/icons/close-@tone.svg); width: 12px; height: 12px; margin: 4px; }
QMenuBar { background: @window; color: @text; }
QMenuBar::item { padding: 6px 10px; border-radius: 4px; background: transparent; }
QMenuBar::item:selected { background: @raised; }
QMenu { background: @surface; color: @text; border: 1px solid @border; padding: 4px 0; }
QMenu::item { padding: 6px 24px 6px 28px; }
QMenu::item:selected { background: @chosen; color: @text; }
QMenu::item:disabled { color: @off; }
QMenu::separator { height: 1px; background: @line; margin: 4px 0; }
QToolBar { background: @window; border: none; border-bottom: 1px solid @line; spacing: 4px; padding: 4px 8px; }
QStatusBar { background: @window; color: @quiet; }
QProgressBar { background: @line; border: none; border-radius: 4px; min-height: 8px; max-height: 8px; }
QProgressBar::chunk { background: @accent; border-radius: 4px; }
QScrollArea { border: none; background: transparent; }
QScrollBar:vertical { background: transparent; width: 12px; margin: 0; }
QScrollBar:horizontal { background: transparent; height: 12px; margin: 0; }
QScrollBar::handle { background: @border; border-radius: 4px; margin: 2px; }
QScrollBar::handle:vertical { min-height: 32px; }
QScrollBar::handle:horizontal { min-width: 32px; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
QToolTip { background: @surface; color: @text; border: 1px solid @border; padding: 4px 8px; }
QMdiArea { background: @window; border: none; }
QSplitter::handle { background: @line; }
)";

}  // namespace

QString StyleSheetOf(const Colors& colors) {
  QString sheet = QString::fromLatin1(kSheet);
  const std::pair<const char*, const QColor&> names[] = {
      {"@window", colors.window},     {"@surface", colors.surface}, {"@raised", colors.raised},
      {"@line", colors.line},         {"@border", colors.border},   {"@text", colors.text},
      {"@quiet", colors.quiet},       {"@off", colors.off},         {"@accent", colors.accent},
      {"@onAccent", colors.onAccent}, {"@chosen", colors.chosen},   {"@danger", colors.danger},
      {"@warning", colors.warning},   {"@good", colors.good},
  };
  for (const auto& [name, color] : names) sheet.replace(QLatin1String(name), color.name());
  sheet.replace(QLatin1String("@tone"), colors.window.lightness() > 127 ? "light" : "dark");
  return sheet;
}

}  // namespace vellumark::desktop
