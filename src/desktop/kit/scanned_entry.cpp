#include "desktop/kit/scanned_entry.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <algorithm>
#include <array>
#include <utility>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/names.h"
#include "desktop/kit/caps_lock.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/name_box.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr quint64 kQuick = 40;   // ms between two keys of a scanner; a person needs more
constexpr quint64 kApart = 120;  // ms between two lines of one code
constexpr int kSilence = 100;    // ms after which a code is over that has no end
constexpr int kHeldBack = 60;    // ms that a single key is kept where nothing can be written
constexpr int kOneMoreChance = 20;
constexpr int kFew = 4;  // letters that make a code
constexpr int kTag = 4;
constexpr const char* kCollects = "collectsScans";

bool IsTag(const QString& text) {
  return text.size() == kTag && StripScanTag(U8(text + "X")) == "X";
}

bool IsModifier(int key) {
  constexpr std::array keys{Qt::Key_Shift, Qt::Key_Control,  Qt::Key_Alt,     Qt::Key_AltGr,
                            Qt::Key_Meta,  Qt::Key_CapsLock, Qt::Key_NumLock, Qt::Key_unknown};
  return std::ranges::any_of(keys, [&](Qt::Key one) { return one == key; });
}

// CR, LF (which comes as Ctrl+J) or Tab.
bool IsEnd(const QKeyEvent& key) {
  if (key.key() == Qt::Key_J) return key.modifiers() == Qt::ControlModifier;
  const bool plain = (key.modifiers() & ~Qt::KeypadModifier) == 0;
  return plain && (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter || key.key() == Qt::Key_Tab);
}

QString LetterOf(const QKeyEvent& key) {
  const bool command = (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
  const QString text = key.text();
  return !command && text.size() == 1 && text.front().isPrint() ? text : QString();
}

bool CollectsScans(const QWidget& widget) {
  return widget.property(kCollects).toBool();
}

// Where the keys of whoever has the focus end up: a drop-down or a date is written in the line inside it.
QWidget& WrittenIn(QWidget& focused) {
  QLineEdit* inside = nullptr;
  if (auto* combo = qobject_cast<QComboBox*>(&focused)) inside = combo->lineEdit();
  if (auto* spin = qobject_cast<QAbstractSpinBox*>(&focused)) inside = spin->findChild<QLineEdit*>();
  return inside != nullptr ? *inside : focused;
}

bool TakesText(const QWidget& widget) {
  if (!widget.isEnabled()) return false;
  if (const auto* line = qobject_cast<const QLineEdit*>(&widget)) return !line->isReadOnly();
  const auto* note = qobject_cast<const QPlainTextEdit*>(&widget);
  return note != nullptr && !note->isReadOnly();
}

QWidget* OpenCollector() {
  const QWidgetList all = QApplication::allWidgets();
  const auto found = std::ranges::find_if(
      all, [](const QWidget* widget) { return CollectsScans(*widget) && widget->isVisible() && TakesText(*widget); });
  return found == all.end() ? nullptr : *found;
}

// The field that a line of text is, or is the inside of.
Field* FieldOf(QWidget& line) {
  if (auto* field = dynamic_cast<Field*>(&line)) return field;
  return dynamic_cast<Field*>(line.parentWidget());
}

// Why a field cannot take the whole of a text.
QString WhyNot(QLineEdit& line, const QString& value) {
  const auto* field = qobject_cast<TextField*>(&line);
  const int longest = field != nullptr && field->Rule().MaxLength() > 0 ? field->Rule().MaxLength() : line.maxLength();
  if (value.size() > longest) return ScannedEntry::tr("What was scanned is longer than this field: %1").arg(value);
  if (qobject_cast<NumberField*>(&line) != nullptr && !ParseNumber(U8(value)))
    return ScannedEntry::tr("What was scanned is no number: %1").arg(value);
  return {};
}

void StripOnLeaving(QWidget& widget, const QFocusEvent& event) {
  auto* line = qobject_cast<QLineEdit*>(&WrittenIn(widget));
  if (line == nullptr || line->echoMode() != QLineEdit::Normal || line->isReadOnly()) return;
  if (event.reason() == Qt::PopupFocusReason || event.reason() == Qt::ActiveWindowFocusReason) return;
  const std::string text = U8(line->text());
  const std::string stripped = StripScanTag(TrimView(text));
  if (stripped == TrimView(text)) return;
  auto* field = qobject_cast<TextField*>(line);
  field != nullptr ? field->SetText(Trim(stripped)) : line->setText(Q(Trim(stripped)));
}

}  // namespace

ScannedEntry::ScannedEntry(QObject& application) : QObject(&application) {
  application.installEventFilter(this);
  timer_.setSingleShot(true);
  connect(&timer_, &QTimer::timeout, this, &ScannedEntry::TimeOut);
}

void ScannedEntry::Collects(QWidget& field) {
  field.setProperty(kCollects, true);
}

QString ScannedEntry::TagOf(const QWidget& field) {
  if (qobject_cast<const QLineEdit*>(&field) == nullptr) return {};
  struct Called {
    const char* part;
    const char* tag;
  };
  // By the system's names of controls; "Cont" before "Lot" for the lots' containers.
  // No label has a code of a Design.
  static constexpr std::array kCalled{
      Called{"Design", ""},          Called{"ContID", "<LC>"}, Called{"ScanLC", "<LC>"},    Called{"LotLoc", "<LL>"},
      Called{"cmbLocation", "<LL>"}, Called{"ScanLL", "<LL>"}, Called{"LotNum", "<LN>"},    Called{"ScanLN", "<LN>"},
      Called{"JobNum", "<JN>"},      Called{"cmbJN", "<JN>"},  Called{"ColorCode", "<CC>"}, Called{"ScanCC", "<CC>"}};
  // The inside of a combo has no name of its own.
  const QWidget* named = &field;
  while (named->objectName().isEmpty() || named->objectName().startsWith("qt_")) {
    if (named->parentWidget() == nullptr) return {};
    named = named->parentWidget();
  }
  for (const Called& called : kCalled)
    if (named->objectName().contains(QLatin1String(called.part))) return QLatin1String(called.tag);
  return qobject_cast<const NameBox*>(&field) != nullptr ? QStringLiteral("<CN>") : QString();
}

bool ScannedEntry::eventFilter(QObject* watched, QEvent* event) {
  if (!watched->isWidgetType()) return false;
  auto& widget = static_cast<QWidget&>(*watched);
  if (event->type() == QEvent::FocusOut) {
    StripOnLeaving(widget, static_cast<QFocusEvent&>(*event));
    return false;
  }
  if (event->type() != QEvent::KeyPress || &widget != QApplication::focusWidget()) return false;
  const auto& key = static_cast<QKeyEvent&>(*event);
  CapsLock::Of().Hear(key);
  if (key.timestamp() == 0 || key.isAutoRepeat() || IsModifier(key.key())) return false;
  if (QApplication::activePopupWidget() != nullptr) return false;
  return Heard(WrittenIn(widget), key);
}

bool ScannedEntry::Heard(QWidget& widget, const QKeyEvent& key) {
  const quint64 gap = key.timestamp() - last_;
  last_ = key.timestamp();
  const QString letter = LetterOf(key);
  const bool ends = IsEnd(key);
  if (holds_ != Holds::Nothing && holds_ != Holds::Other) {
    if (gap <= kApart) return HeardHeld(key, letter, ends);
    Flush();
  }
  // The LF behind a CR.
  if (ends && ended_ != 0 && key.timestamp() - ended_ <= kQuick) return true;
  const auto* line = qobject_cast<QLineEdit*>(&widget);
  if (line != nullptr && line->echoMode() != QLineEdit::Normal) return false;
  if (letter.isEmpty()) return ends && gap <= kQuick ? TypedEnds(widget, key) : (quick_ = 0, false);

  const bool quick = gap <= kQuick;
  if (!quick) quick_ = 0;
  if (quick && quick_ >= kFew - 1 && typed_ != nullptr && typed_ != &widget) {
    Begin(Holds::Rest, *typed_, key, letter);
    return true;
  }
  if (CollectsScans(widget)) return Track(widget), false;
  const bool goesOn = letter == "<" && scanned_ != nullptr && key.timestamp() - ended_ <= kApart;
  if (letter == "<") {
    Begin(Holds::Tagged, goesOn ? *scanned_ : widget, key, letter);
    if (!goesOn) scanned_ = nullptr, delivered_ = false, other_.clear();
    return true;
  }
  if (!TakesText(widget) && letter != " ") {
    Begin(Holds::Untagged, widget, key, letter);
    return true;
  }
  Track(widget);
  return false;
}

void ScannedEntry::Track(QWidget& widget) {
  if (typed_ != &widget) quick_ = 0;
  typed_ = &widget;
  ++quick_;
}

// A code without a tag that a field has taken letter by letter: what a name box has filled in behind it goes.
bool ScannedEntry::TypedEnds(QWidget& widget, const QKeyEvent& key) {
  const bool scanned = quick_ >= kFew && typed_ == &widget;
  quick_ = 0;
  if (CollectsScans(widget) || !TakesText(widget)) return false;
  if (!scanned) return false;
  ended_ = key.timestamp();
  if (auto* box = qobject_cast<NameBox*>(&widget); box != nullptr && box->hasSelectedText()) Send(*box, Qt::Key_Delete);
  if (key.key() != Qt::Key_J) return false;
  Send(widget, Qt::Key_Return);
  return true;
}

void ScannedEntry::Begin(Holds holds, QWidget& target, const QKeyEvent& key, const QString& letter) {
  holds_ = holds;
  target_ = &target;
  held_ = letter;
  keys_ = {{key.key(), key.modifiers(), key.text()}};
  late_ = false;
  timer_.start(holds == Holds::Untagged ? kHeldBack : kSilence);
}

bool ScannedEntry::HeardHeld(const QKeyEvent& key, const QString& letter, bool ends) {
  if (ends) {
    if (holds_ == Holds::Tagged && held_.size() <= kTag) {
      Flush();
      return false;
    }
    ended_ = key.timestamp();
    Complete(true);
    return true;
  }
  if (letter.isEmpty()) {
    Flush();
    return false;
  }
  held_ += letter;
  keys_.push_back({key.key(), key.modifiers(), key.text()});
  late_ = false;
  timer_.start(kSilence);
  if (holds_ == Holds::Tagged && held_.size() == kTag && !IsTag(held_)) Flush();
  return true;
}

// What the platform still has for a program that was busy comes first.
void ScannedEntry::TimeOut() {
  if (!late_) {
    late_ = true;
    timer_.start(kOneMoreChance);
    return;
  }
  if (holds_ == Holds::Other) {
    holds_ = Holds::Nothing;
    if (scanned_ != nullptr && !delivered_) Deliver(*scanned_, other_, true);
    delivered_ = true;
    return;
  }
  const bool whole = holds_ == Holds::Rest || (holds_ == Holds::Tagged && held_.size() > kTag) ||
                     (holds_ == Holds::Untagged && held_.size() >= kFew);
  whole ? Complete(false) : Flush();
}

void ScannedEntry::Flush() {
  timer_.stop();
  holds_ = Holds::Nothing;
  const std::vector<Key> keys = std::move(keys_);
  keys_.clear();
  held_.clear();
  for (const Key& key : keys)
    if (target_ != nullptr) Send(*target_, key.key, key.modifiers, key.text);
}

void ScannedEntry::Send(QWidget& target, int key, Qt::KeyboardModifiers modifiers, const QString& text) {
  const QPointer<QWidget> there = target.focusProxy() != nullptr ? target.focusProxy() : &target;
  for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
    QKeyEvent event(type, key, modifiers, text.isEmpty() && key == Qt::Key_Return ? QStringLiteral("\r") : text);
    if (there != nullptr) QCoreApplication::sendEvent(there, &event);
  }
}

void ScannedEntry::Complete(bool ended) {
  timer_.stop();
  const Holds held = std::exchange(holds_, Holds::Nothing);
  const QString line = std::exchange(held_, {});
  keys_.clear();
  quick_ = 0;
  if (target_ == nullptr || (held != Holds::Rest && !TakesText(*target_))) return Collect(line);
  if (held == Holds::Tagged) return CompleteTagged(*target_, line, ended);
  if (auto* note = qobject_cast<QPlainTextEdit*>(target_.data())) {
    note->insertPlainText(line + (ended ? "\n" : ""));
    return;
  }
  if (auto* edit = qobject_cast<QLineEdit*>(target_.data())) edit->insert(line);
  if (ended) Send(*target_, Qt::Key_Return);
}

void ScannedEntry::CompleteTagged(QWidget& target, const QString& line, bool ended) {
  const QString own = TagOf(target);
  const bool fits = own.isEmpty() || line.left(kTag).compare(own, Qt::CaseInsensitive) == 0;
  const bool goesOn = scanned_ == &target;
  scanned_ = &target;
  if (goesOn && delivered_ && qobject_cast<QLineEdit*>(&target) != nullptr) return;
  if (fits) {
    delivered_ = true;
    return Deliver(target, line, ended);
  }
  // The line that belongs here may follow.
  if (!goesOn) other_ = line;
  holds_ = Holds::Other;
  late_ = false;
  timer_.start(static_cast<int>(kApart));
}

void ScannedEntry::Deliver(QWidget& target, const QString& line, bool ended) {
  const QString value = Q(Trim(StripScanTag(U8(line))));
  if (auto* note = qobject_cast<QPlainTextEdit*>(&target)) {
    note->insertPlainText(value + (ended ? "\n" : ""));
    return;
  }
  auto& edit = *qobject_cast<QLineEdit*>(&target);
  if (const QString why = WhyNot(edit, value); !why.isEmpty()) {
    QApplication::beep();
    if (Field* field = FieldOf(edit)) field->SetFault(why);
    return;
  }
  if (auto* box = qobject_cast<NameBox*>(&edit); box != nullptr && box->hasSelectedText()) Send(*box, Qt::Key_Delete);
  edit.selectAll();
  edit.insert(value);
  if (ended) Send(target, Qt::Key_Return);
}

void ScannedEntry::Collect(const QString& line) {
  auto* note = qobject_cast<QPlainTextEdit*>(OpenCollector());
  if (note == nullptr) return QApplication::beep();
  note->moveCursor(QTextCursor::End);
  note->insertPlainText((note->textCursor().block().text().isEmpty() ? "" : "\n") + line + "\n");
}

}  // namespace vellumark::desktop
