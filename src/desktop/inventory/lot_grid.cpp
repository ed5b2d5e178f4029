#include "desktop/inventory/lot_grid.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLocale>
#include <QStringListModel>
#include <QVBoxLayout>

#include "core/base/units.h"
#include "core/colors/names.h"
#include "core/inventory/color_name.h"
#include "desktop/kit/other_databases.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kCheckWidth = 32;

}  // namespace

QString PriceCaption(int unit) {
  const QString sign = QLocale().currencySymbol();
  return QObject::tr("Price (%1)").arg((sign.isEmpty() ? QString("$") : sign) + "/" + Q(UnitName(unit)));
}

QString WithUnit(const QString& caption, int unit) {
  return QString("%1 (%2)").arg(caption, Q(UnitName(unit)));
}

ComboField* ChoiceCombo(Form& form, const char* name, const QString& caption, int chars, int longest) {
  auto* combo = new ComboField(name);
  combo->setEditable(true);
  combo->setInsertPolicy(QComboBox::NoInsert);
  combo->setCompleter(nullptr);
  combo->lineEdit()->setMaxLength(longest);
  combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  combo->setMinimumContentsLength(chars);
  combo->setModel(new QStringListModel(combo));
  combo->setAccessibleName(caption);
  combo->MarkClean();
  return form.Add(combo);
}

void SetChoices(ComboField& combo, const std::vector<std::string>& choices) {
  QStringList texts;
  texts.reserve(static_cast<qsizetype>(choices.size()));
  for (const std::string& choice : choices) texts += Q(choice);
  const QSignalBlocker quiet(combo);
  const QSignalBlocker quietLine(combo.lineEdit());
  const QString typed = combo.currentText();
  qobject_cast<QStringListModel*>(combo.model())->setStringList(texts);
  combo.setCurrentIndex(-1);
  combo.setEditText(typed);
}

QWidget* Captioned(QWidget* row, const QString& caption, QWidget* field, const char* label) {
  auto* cell = new QWidget(row);
  auto* column = new QVBoxLayout(cell);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(2);
  auto* text = new QLabel(caption);
  text->setObjectName(label);
  text->setProperty("role", "label");
  text->setBuddy(field);
  column->addWidget(text);
  column->addWidget(field);
  return cell;
}

void EnterStockName(FormHost& host, const char* field, const std::string& typed, const StockNameSteps& steps) {
  const std::string name = SpelledOnFile(host.session, ReadName(host.session, typed));
  if (name.empty()) {
    QApplication::beep();
    host.FocusField(field);
    return;
  }
  const auto kind = steps.choose(name);
  if (!kind && OfferOtherDatabases(host.windows, name, {ColorKind::Basic, ColorKind::Mix}, U8(host.Self().objectName()),
                                   {{"FindRecord", name}}))
    return steps.clear();
  if (host.Accepted(kind)) return steps.show(*kind, name);
  steps.clear();
  host.FocusField(field);
}

CheckKeys::CheckKeys(Grid& grid, std::function<void(int row)> toggle)
    : QObject(&grid), grid_(grid), toggle_(std::move(toggle)) {
  grid.View().installEventFilter(this);
  connect(&grid, &Grid::CellClicked, this, [this](int row, int column) {
    if (column == 0) toggle_(row);
  });
}

bool CheckKeys::eventFilter(QObject* watched, QEvent* event) {
  // A page of the list, not the colour before or after.
  if (event->type() == QEvent::ShortcutOverride) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
      event->accept();
      return true;
    }
  }
  if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Space ||
      grid_.CurrentRow() < 0 || !grid_.IsShown(0))
    return QObject::eventFilter(watched, event);
  toggle_(grid_.CurrentRow());
  return true;
}

void LotSource::Show(const InventoryWork* work) {
  work_ = work;
  const bool shorter = Rows() < rows_;
  rows_ = Rows();
  std::set<std::int64_t> marks;
  for (const std::size_t row : Checked())
    if (work_->rows[row].key || !shorter) marks.insert(MarkOf(row));
  checked_ = std::move(marks);
}

std::int64_t LotSource::MarkOf(std::size_t row) const {
  const auto key = work_->rows.at(row).key;
  return key ? std::int64_t{*key} : -1 - static_cast<std::int64_t>(row);
}

void LotSource::SetChecked(std::size_t row, bool checked) {
  if (checked)
    checked_.insert(MarkOf(row));
  else
    checked_.erase(MarkOf(row));
}

std::vector<std::size_t> LotSource::Checked() const {
  std::vector<std::size_t> rows;
  for (std::size_t row = 0; !checked_.empty() && row < static_cast<std::size_t>(Rows()); ++row)
    if (IsChecked(row)) rows.push_back(row);
  return rows;
}

void LotSource::UncheckOthers(const std::vector<int>& shown) {
  if (checked_.empty()) return;
  std::set<std::int64_t> marks;
  for (const int row : shown)
    if (IsChecked(static_cast<std::size_t>(row))) marks.insert(MarkOf(static_cast<std::size_t>(row)));
  checked_ = std::move(marks);
}

std::vector<GridColumn> LotSource::Columns() {
  Define(InventoryColumns(session_));
  std::vector<GridColumn> columns = RecordSource::Columns();
  columns.insert(columns.begin(), GridColumn::Text({}, kCheckWidth));
  columns.push_back(GridColumn::Text("IngType", 0));
  for (const Column column : {LotNum, Location, ContID}) columns[column].sort = GridColumn::Sort::TextNoCase;
  columns[Check].sortable = false;
  columns[Price].caption = PriceCaption(session_.UMI);
  if (session_.Perm_Costs == 0) columns[Price].width = 0;
  return columns;
}

std::string LotSource::Text(int row, int column) const {
  if (column == Check || (column == Date && row == 0)) return {};
  if (column == IngType) return std::to_string(static_cast<int>(work_->kind));
  return RecordSource::Text(row, column - 1);
}

double LotSource::Number(int row, int column) const {
  return column == Check || column == IngType ? kNoNumber : RecordSource::Number(row, column - 1);
}

const char* LotSource::Mark(int row, int column) const {
  if (column == Check) return IsChecked(static_cast<std::size_t>(row)) ? "box-checked" : "box";
  if (column == LotNum && row > 0) return "lot";
  return nullptr;
}

}  // namespace vellumark::desktop
