#include "desktop/kit/name_box.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QStringListModel>

#include "core/colors/names.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr std::size_t kListed = 200;

}  // namespace

NameBox::NameBox(const QString& name, const Session& session, NameSource source)
    : TextField(name, TextRule::ScannedName(session.NameLength)),
      session_(session),
      source_(std::move(source)),
      completer_(nullptr),
      names_(nullptr) {
  // What the program puts into the box is no completion.
  connect(this, &QLineEdit::textChanged, this, [this](const QString& text) {
    if (!text.startsWith(typed_)) completed_.clear();
  });
  connect(this, &QLineEdit::textEdited, this, [this] {
    if (completer_ != nullptr && completer_->popup()->isVisible()) ShowList();
  });
  if (source_.list) {
    QAction* open = addAction(Icon("down"), QLineEdit::TrailingPosition);
    connect(open, &QAction::triggered, this, &NameBox::ShowList);
  }
}

std::string NameBox::Name() const {
  return ReadName(session_, U8(completed_.isEmpty() ? text() : completed_));
}

void NameBox::keyPressEvent(QKeyEvent* event) {
  const int key = event->key();
  if (source_.list && (key == Qt::Key_F4 || key == Qt::Key_Down)) {
    ShowList();
    return;
  }
  const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == 0;
  const bool undoes = key == Qt::Key_Delete || key == Qt::Key_Backspace || key == Qt::Key_Left || key == Qt::Key_Right;
  if (plain && undoes && UndoCompletion()) return;

  const QString before = text();
  TextField::keyPressEvent(event);
  if (undoes || text() == before || event->text().isEmpty() || !event->text().front().isPrint()) {
    if (text() != before) completed_.clear();
    return;
  }
  Complete();
}

void NameBox::Complete() {
  typed_ = text();
  completed_.clear();
  if (!hinted_ && typed_.compare("PANTONE", Qt::CaseInsensitive) == 0) {
    hinted_ = true;
    Q_EMIT PantoneTyped();
  }
  // In the middle of a name nothing is filled in.
  if (session_.AutoFillText != 1 || !source_.complete || cursorPosition() != typed_.size()) return;
  const std::string found = source_.complete(U8(typed_));
  if (found.empty()) return;
  QString rest = Q(found);
  if (!rest.startsWith(typed_, Qt::CaseInsensitive)) rest = Q(StripPantonePrefix(found));
  if (!rest.startsWith(typed_, Qt::CaseInsensitive)) return;
  SetText(U8(typed_ + rest.mid(typed_.size())));
  setSelection(static_cast<int>(text().size()), static_cast<int>(typed_.size() - text().size()));
  completed_ = Q(found);
}

bool NameBox::UndoCompletion() {
  if (completed_.isEmpty() || !hasSelectedText() || selectionStart() != typed_.size()) return false;
  completed_.clear();
  SetText(U8(typed_));
  setCursorPosition(static_cast<int>(text().size()));
  return true;
}

void NameBox::ShowList() {
  if (isReadOnly()) return Refused();
  // A window has many such boxes, and few of them ever open their list.
  if (completer_ == nullptr) {
    names_ = new QStringListModel(this);
    completer_ = new QCompleter(names_, this);
    completer_->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    completer_->setWidget(this);
    completer_->setMaxVisibleItems(12);
    connect(completer_, qOverload<const QString&>(&QCompleter::activated), this, [this](const QString& picked) {
      SetText(U8(picked));
      completed_.clear();
      Q_EMIT Picked(picked);
    });
  }
  const QString typed = completed_.isEmpty() ? text() : typed_;
  QStringList names;
  for (const std::string& name : source_.list(U8(typed), kListed)) names += Q(name);
  names_->setStringList(names);
  if (names.isEmpty()) {
    completer_->popup()->hide();
    Refused();
    return;
  }
  completer_->complete();
}

void NameBox::focusInEvent(QFocusEvent* event) {
  TextField::focusInEvent(event);
  SetRule(TextRule::ScannedName(session_.NameLength));
}

void NameBox::focusOutEvent(QFocusEvent* event) {
  const bool stays = event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason;
  if (!stays) {
    const QString name = Q(Name());
    if (name != text()) SetText(U8(name));
    completed_.clear();
  }
  TextField::focusOutEvent(event);
}

}  // namespace vellumark::desktop
