#include "desktop/kit/message_prompt.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QThread>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>
#include <vector>

#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/kit/wait_progress.h"

namespace vellumark::desktop {
namespace {

constexpr int kIconSize = 32;
constexpr int kLeastTextWidth = 280;
constexpr int kWidestText = 640;
constexpr int kFocusReturns = 100;  // ms, at most
constexpr int kBold = 115;          // percent: titles are often in a bold face
constexpr int kTitleButtons = 120;  // the icon and the buttons that the platform puts beside a title

struct Choice {
  Answer answer;
  QDialogButtonBox::StandardButton button;
  const char* text;
  const char* name;
};

std::vector<Choice> ChoicesOf(Buttons buttons) {
  const Choice ok{Answer::Ok, QDialogButtonBox::Ok, QT_TRANSLATE_NOOP("MessageDialog", "OK"), "cmdOK"};
  const Choice cancel{Answer::Cancel, QDialogButtonBox::Cancel, QT_TRANSLATE_NOOP("MessageDialog", "Cancel"),
                      "cmdCancel"};
  const Choice yes{Answer::Yes, QDialogButtonBox::Yes, QT_TRANSLATE_NOOP("MessageDialog", "&Yes"), "cmdYes"};
  const Choice no{Answer::No, QDialogButtonBox::No, QT_TRANSLATE_NOOP("MessageDialog", "&No"), "cmdNo"};
  switch (buttons) {
    case Buttons::Ok:
      return {ok};
    case Buttons::OkCancel:
      return {ok, cancel};
    case Buttons::YesNo:
      return {yes, no};
    case Buttons::YesNoCancel:
      return {yes, no, cancel};
  }
  return {ok};
}

// The answer of Escape and of the window's close button.
Answer Declined(Buttons buttons) {
  switch (buttons) {
    case Buttons::Ok:
      return Answer::Ok;
    case Buttons::YesNo:
      return Answer::No;
    case Buttons::OkCancel:
    case Buttons::YesNoCancel:
      return Answer::Cancel;
  }
  return Answer::Cancel;
}

QString IconName(vellumark::Icon icon) {
  switch (icon) {
    case Icon::None:
      return {};
    case Icon::Information:
      return "information";
    case Icon::Question:
      return "question";
    case Icon::Exclamation:
      return "warning";
    case Icon::Critical:
      return "critical";
  }
  return {};
}

// The platform gives the focus back a moment after the message has gone. A wait window that comes up in between would
// take it for good, and the keys of the window behind would be dead.
void TakeBack(const QPointer<QWidget>& owner) {
  QElapsedTimer since;
  since.start();
  while (owner != nullptr && owner->isVisible() && !owner->isActiveWindow() && since.elapsed() < kFocusReturns)
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents, kFocusReturns);
}

}  // namespace

MessageDialog::MessageDialog(const Message& message, QWidget* owner)
    : QDialog(owner), message_(message), chosen_(Declined(message.buttons)) {
  setObjectName("MessageDialog");
  setWindowTitle(Q(message.title));
  setModal(true);

  auto* text = new QLabel(Q(message.text));
  text->setObjectName("lblMessage");
  text->setTextFormat(Qt::PlainText);
  text->setTextInteractionFlags(Qt::TextSelectableByMouse);
  text->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  // Lines stand as they were written where they fit.
  if (text->sizeHint().width() > kWidestText) {
    text->setWordWrap(true);
    text->setFixedWidth(kWidestText);
  } else {
    text->ensurePolished();
    text->setMinimumWidth(std::max(kLeastTextWidth, text->sizeHint().width() + space::kGap));
  }
  const int height = text->wordWrap() ? text->heightForWidth(kWidestText) : text->sizeHint().height();

  auto* row = new QHBoxLayout;
  row->setSpacing(space::kGap);
  if (const QString icon = IconName(message.icon); !icon.isEmpty()) {
    row->addWidget(new IconView(icon, kIconSize), 0, Qt::AlignTop);
  }
  const QScreen* screen = owner != nullptr ? owner->screen() : QApplication::primaryScreen();
  const int tallest = screen->availableSize().height() / 2;
  if (height > tallest) {
    auto* area = new QScrollArea;
    area->setWidget(text);
    area->setWidgetResizable(true);
    area->setMinimumSize(text->sizeHint().width() + space::kGroup, tallest);
    row->addWidget(area, 1);
  } else {
    row->addWidget(text, 1);
  }

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(space::kGroup, space::kGroup, space::kGroup, space::kGap);
  layout->setSpacing(space::kGroup);
  layout->addLayout(row, 1);
  AddButtons();
  // A narrow message would have its title cut. Blanks that pad it in front may go.
  const int title = fontMetrics().horizontalAdvance(windowTitle().trimmed()) * kBold / 100;
  setMinimumWidth(std::min(title + kTitleButtons, kWidestText));
}

void MessageDialog::AddButtons() {
  auto* box = new QDialogButtonBox;
  for (const Choice& choice : ChoicesOf(message_.buttons)) {
    QPushButton* button = box->addButton(choice.button);
    button->setText(QCoreApplication::translate("MessageDialog", choice.text));
    button->setIcon({});
    button->setObjectName(choice.name);
    connect(button, &QPushButton::clicked, this, [this, answer = choice.answer] { Choose(answer); });
    const bool standard = choice.answer == message_.defaultAnswer || message_.buttons == Buttons::Ok;
    // Enter presses the button that has the focus, whichever is the default.
    button->setAutoDefault(true);
    button->setProperty("primary", standard);
    if (standard) standard_ = button;
  }
  layout()->addWidget(box);
  if (standard_ != nullptr) standard_->setDefault(true);
}

void MessageDialog::Choose(Answer answer) {
  chosen_ = answer;
  done(Accepted);
}

void MessageDialog::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  // The dialog itself would give the focus to the first button.
  if (standard_ != nullptr) standard_->setFocus(Qt::OtherFocusReason);
}

void MessageDialog::reject() {
  Choose(Declined(message_.buttons));
}

void MessageDialog::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    QApplication::clipboard()->setText(windowTitle() + "\n\n" + Q(message_.text));
    return;
  }
  const bool yesNo = message_.buttons == Buttons::YesNo || message_.buttons == Buttons::YesNoCancel;
  if (yesNo && (event->modifiers() & ~Qt::ShiftModifier) == 0) {
    if (event->key() == Qt::Key_Y) return Choose(Answer::Yes);
    if (event->key() == Qt::Key_N) return Choose(Answer::No);
  }
  QDialog::keyPressEvent(event);
}

bool MessagePrompt::GivesFocusBack() const {
  return givesFocusBackIn_ == QThread::currentThread()->loopLevel();
}

Answer MessagePrompt::Show(const Message& message) {
  if (hook_) {
    if (const auto answer = hook_(message)) return *answer;
  }
  // A wait window steps back while the operator is asked; the work brings it back. Its cursor goes with it.
  QPointer<QWidget> owner = QApplication::activeWindow();
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (qobject_cast<WaitWindow*>(window) == nullptr || !window->isVisible()) continue;
    if (owner == window) owner = window->parentWidget();
    window->hide();
  }
  const bool waiting = QApplication::overrideCursor() != nullptr;
  if (waiting) QApplication::setOverrideCursor(Qt::ArrowCursor);
  // Whoever owns it may go while it stands there, and takes it along.
  const QPointer<MessageDialog> dialog = new MessageDialog(message, owner);
  dialog->exec();
  const Answer chosen = dialog == nullptr ? Declined(message.buttons) : dialog->Chosen();
  delete dialog;
  const int outer = std::exchange(givesFocusBackIn_, QThread::currentThread()->loopLevel());
  TakeBack(owner);
  givesFocusBackIn_ = outer;
  if (waiting) QApplication::restoreOverrideCursor();
  return chosen;
}

}  // namespace vellumark::desktop
