#include "desktop/kit/fields.h"

#include <QApplication>
#include <QButtonGroup>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLocale>
#include <QPushButton>
#include <QRegularExpression>
#include <QStyle>
#include <QStyleOption>
#include <QStylePainter>
#include <QTabBar>
#include <QValidator>

#include "core/base/number.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

void Repolish(QWidget& widget) {
  widget.style()->unpolish(&widget);
  widget.style()->polish(&widget);
  widget.update();
}

constexpr int kLeastButton = 92;
constexpr int kButtonEdge = 14;  // padding and line of the style sheet
const QDate kNoDate(1752, 9, 14);  // the earliest that the control knows stands for no date

}  // namespace

bool Field::IsCalled(std::string_view name) const {
  return !name.empty() && (const_cast<Field*>(this)->Control().objectName() == Q(name) || alias_ == name);
}

void Field::SetFault(const QString& reason) {
  QWidget& control = Control();
  if (!fault_) toolTip_ = control.toolTip();
  fault_ = true;
  control.setProperty("fault", true);
  control.setToolTip(reason);
  control.setAccessibleDescription(reason);
  if (auto* line = qobject_cast<QLineEdit*>(&control); line != nullptr && mark_ == nullptr) {
    mark_ = line->addAction(Icon("fault"), QLineEdit::LeadingPosition);
  }
  Repolish(control);
}

void Field::ClearFault() {
  if (!fault_) return;
  fault_ = false;
  delete mark_;
  QWidget& control = Control();
  control.setProperty("fault", false);
  control.setToolTip(toolTip_);
  control.setAccessibleDescription({});
  Repolish(control);
}

void Field::TakeFocus() {
  QWidget& control = Control();
  control.setFocus(Qt::OtherFocusReason);
  if (auto* line = qobject_cast<QLineEdit*>(&control)) line->selectAll();
  if (auto* spin = qobject_cast<QAbstractSpinBox*>(&control)) spin->selectAll();
  if (auto* combo = qobject_cast<QComboBox*>(&control); combo != nullptr && combo->isEditable()) {
    combo->lineEdit()->selectAll();
  }
  if (auto* note = qobject_cast<QPlainTextEdit*>(&control)) note->selectAll();
}

/// Takes out of what was typed, pasted or dropped whatever the rule does not let in, and leaves the rest of the text,
/// which the program may have put there, as it is.
class RuleValidator : public QValidator {
 public:
  explicit RuleValidator(TextField* field) : QValidator(field), field_(*field) {}

  State validate(QString& input, int& pos) const override {
    if (field_.byProgram_) return Acceptable;
    const QString& old = field_.before_;
    const int shorter = static_cast<int>(std::min(old.size(), input.size()));
    int front = 0;
    while (front < shorter && front < pos && old[front] == input[front]) ++front;
    int back = 0;
    while (back < shorter - front && old[old.size() - 1 - back] == input[input.size() - 1 - back] &&
           input.size() - back > pos) {
      ++back;
    }
    const QString inserted = input.mid(front, input.size() - front - back);
    QString kept;
    for (const QChar c : inserted) {
      if (const auto key = field_.rule_.Key(c)) kept += *key;
    }
    if (const int limit = field_.rule_.MaxLength(); limit > 0) {
      const auto room = std::max<qsizetype>(limit - (input.size() - inserted.size()), 0);
      kept.truncate(std::max<qsizetype>(room, 0));
    }
    if (kept.size() < inserted.size()) {
      field_.Refused();
      pos -= static_cast<int>(inserted.size() - kept.size());
    }
    input.replace(front, inserted.size(), kept);
    return Acceptable;
  }

 private:
  TextField& field_;
};

TextField::TextField(const QString& name, TextRule rule) : rule_(rule) {
  setObjectName(name);
  setValidator(new RuleValidator(this));
  connect(this, &QLineEdit::textChanged, this, [this](const QString& text) { before_ = text; });
  if (rule.MaxLength() > 0 && rule.MaxLength() <= 40) SetWidthInChars(rule.MaxLength());
  MarkClean();
}

void TextField::SetText(std::string_view text) {
  byProgram_ = true;
  setText(Q(text));
  byProgram_ = false;
  setCursorPosition(0);
}

void TextField::SetWidthInChars(int count) {
  const int width = fontMetrics().horizontalAdvance(QLatin1Char('0')) * std::max(count, 4) + 3 * space::kUnit;
  setMaximumWidth((width + space::kUnit - 1) / space::kUnit * space::kUnit);
  setMinimumWidth(std::min(maximumWidth(), 240));
}

void TextField::Refused() {
  QApplication::beep();
}

void TextField::keyPressEvent(QKeyEvent* event) {
  const QString typed = event->text();
  const bool command = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
  if (!command && typed.size() == 1 && typed.front().isPrint() && !isReadOnly()) {
    // Checked before the line would replace its selection: a refused key changes nothing.
    const bool full = rule_.MaxLength() > 0 && !hasSelectedText() && text().size() >= rule_.MaxLength();
    if (full || !rule_.Key(typed.front())) {
      Refused();
      event->accept();
      return;
    }
  }
  QLineEdit::keyPressEvent(event);
}

void TextField::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  const bool stays = event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason ||
                     event->reason() == Qt::MenuBarFocusReason;
  if (stays) return;
  // A button that is clicked is what the operator wants done, such as Cancel; one that Tab comes to only stands next.
  QWidget* receiver = QApplication::focusWidget();
  const bool byTab = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
  const bool button = qobject_cast<QPushButton*>(receiver) != nullptr || qobject_cast<QTabBar*>(receiver) != nullptr;
  Q_EMIT Left(byTab && button ? this : receiver);
}

NumberField::NumberField(const QString& name, int decimals, int chars)
    : TextField(name, TextRule::Number(chars)), decimals_(decimals) {
  setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  SetWidthInChars(chars);
}

std::string NumberField::Text() const {
  return text().replace(QLocale().decimalPoint(), ".").toStdString();
}

void NumberField::SetText(std::string_view text) {
  TextField::SetText(U8(Q(text).replace('.', QLocale().decimalPoint())));
}

void NumberField::SetNumber(double value) {
  SetText(Fixed(value, decimals_));
}

void NumberField::SetNumber(float value) {
  SetText(Fixed(value, decimals_));
}

CheckField::CheckField(const QString& name, const QString& text) : QCheckBox(text) {
  setObjectName(name);
  MarkClean();
}

RadioField::RadioField(const QString& name, const std::vector<Option>& options, Qt::Orientation direction) {
  setObjectName(name);
  auto* layout = new QBoxLayout(direction == Qt::Vertical ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight, this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(direction == Qt::Vertical ? space::kTight : space::kGap);
  auto* group = new QButtonGroup(this);
  for (const auto& option : options) {
    auto* button = new QRadioButton(option.text);
    button->setObjectName(option.name);
    group->addButton(button, static_cast<int>(buttons_.size()));
    layout->addWidget(button);
    buttons_.push_back(button);
  }
  if (direction == Qt::Horizontal) layout->addStretch();
  connect(group, &QButtonGroup::idToggled, this, [this](int id, bool on) {
    if (on) Q_EMIT ChosenChanged(id);
  });
  if (!buttons_.empty()) {
    buttons_.front()->setChecked(true);
    setFocusProxy(buttons_.front());
  }
  MarkClean();
}

int RadioField::Chosen() const {
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    if (buttons_[i]->isChecked()) return static_cast<int>(i);
  }
  return -1;
}

void RadioField::Choose(int index) {
  buttons_.at(static_cast<std::size_t>(index))->setChecked(true);
}

ComboField::ComboField(const QString& name, const QStringList& items) {
  setObjectName(name);
  addItems(items);
  setSizeAdjustPolicy(QComboBox::AdjustToContents);
  setMaxVisibleItems(20);
  MarkClean();
}

void ComboField::SetText(std::string_view text) {
  if (isEditable()) {
    setEditText(Q(text));
  } else {
    setCurrentIndex(findText(Q(text), Qt::MatchFixedString | Qt::MatchCaseSensitive));
  }
}

void ComboField::SetItems(const std::vector<std::string>& items) {
  const std::string chosen = Text();
  clear();
  for (const auto& item : items) addItem(Q(item));
  SetText(chosen);
}

void ComboField::OnChosen(std::function<void(int)> heard) {
  connect(this, &QComboBox::activated, this, std::move(heard));
}

CheckListField::CheckListField(const QString& name) {
  setObjectName(name);
  setUniformItemSizes(true);
  MarkClean();
}

QVariant CheckListField::Content() const {
  return Checked();
}

void CheckListField::SetItems(const QStringList& items, bool checked) {
  clear();
  for (const QString& text : items) {
    auto* item = new QListWidgetItem(text, this);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    item->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
  }
  if (!items.isEmpty()) setCurrentRow(0);
}

bool CheckListField::IsChecked(int row) const {
  return item(row)->checkState() == Qt::Checked;
}

void CheckListField::SetChecked(int row, bool checked) {
  item(row)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
}

QStringList CheckListField::Checked() const {
  QStringList texts;
  for (int row = 0; row < count(); ++row) {
    if (IsChecked(row)) texts += item(row)->text();
  }
  return texts;
}

NoteField::NoteField(const QString& name, int lines) {
  setObjectName(name);
  setTabChangesFocus(true);
  setMinimumHeight(fontMetrics().lineSpacing() * lines + 2 * space::kUnit);
  MarkClean();
}

void NoteField::SetText(std::string_view text) {
  setPlainText(Q(text));
}

ValueField::ValueField(const QString& name, double scale) {
  setObjectName(name);
  setFont(Look::Figures(scale));
  setTextFormat(Qt::PlainText);
  setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void ValueField::SetText(std::string_view text) {
  setText(Q(text));
}

DateField::DateField(const QString& name) {
  setObjectName(name);
  setCalendarPopup(true);
  setMinimumDate(kNoDate);
  setSpecialValueText(QStringLiteral(" "));
  setDate(kNoDate);
  setDisplayFormat(QLocale().dateFormat(QLocale::ShortFormat).replace(QRegularExpression("\\byy\\b"), "yyyy"));
  const int widest = fontMetrics().horizontalAdvance(displayFormat() + "000") + 7 * space::kUnit;
  setFixedWidth(std::max((widest + space::kUnit - 1) / space::kUnit * space::kUnit, 136));
  MarkClean();
}

std::optional<DateTime> DateField::Date() const {
  const QDate day = date();
  if (day == kNoDate) return std::nullopt;
  return DateTime{day.year(), day.month(), day.day()};
}

void DateField::SetDate(const std::optional<DateTime>& date) {
  setDate(date ? QDate(date->year, date->month, date->day) : kNoDate);
}

CommandButton::CommandButton(const QString& name, const QString& text, const QKeySequence& key)
    : QPushButton(text), key_(key) {
  setObjectName(name);
  setAutoDefault(false);
  if (!key.isEmpty()) setAccessibleDescription(key.toString(QKeySequence::NativeText));
}

QSize CommandButton::sizeHint() const {
  QSize size = QPushButton::sizeHint();
  // Told here: a least width of the style sheet would let a layout squeeze longer words.
  if (!property("link").toBool()) size.setWidth(std::max(size.width(), kLeastButton));
  if (!key_.isEmpty()) {
    const int word = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    const int key = fontMetrics().horizontalAdvance(key_.toString(QKeySequence::NativeText));
    size.setWidth(std::max(size.width(), word + space::kUnit + key + 2 * kButtonEdge));
  }
  return size;
}

void CommandButton::paintEvent(QPaintEvent* event) {
  if (key_.isEmpty()) {
    QPushButton::paintEvent(event);
    return;
  }
  QStylePainter painter(this);
  QStyleOptionButton option;
  initStyleOption(&option);
  const QString word = option.text;
  option.text.clear();
  painter.drawControl(QStyle::CE_PushButton, option);

  const QString hint = key_.toString(QKeySequence::NativeText);
  const Colors& colors = Look::Now();
  const bool primary = property("primary").toBool();
  QColor ink = isEnabled() ? (primary ? colors.onAccent : colors.text) : colors.off;
  QColor quiet = isEnabled() ? (primary ? colors.onAccent : colors.quiet) : colors.off;
  const int wordWidth = fontMetrics().size(Qt::TextShowMnemonic, word).width();
  const int hintWidth = fontMetrics().horizontalAdvance(hint);
  int x = (width() - wordWidth - hintWidth - space::kUnit) / 2;
  const int mnemonic = style()->styleHint(QStyle::SH_UnderlineShortcut, &option, this) != 0 ? Qt::TextShowMnemonic
                                                                                            : Qt::TextHideMnemonic;
  painter.setPen(ink);
  painter.drawText(QRect(x, 0, wordWidth + 2, height()), Qt::AlignVCenter | Qt::AlignLeft | mnemonic, word);
  x += wordWidth + space::kUnit;
  painter.setPen(quiet);
  painter.drawText(QRect(x, 0, hintWidth + 2, height()), Qt::AlignVCenter | Qt::AlignLeft, hint);
}

}  // namespace vellumark::desktop
