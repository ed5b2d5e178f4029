#include "desktop/kit/form_host.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QShortcut>
#include <QTabWidget>
#include <QTimer>
#include <algorithm>
#include <stdexcept>

#include "desktop/kit/access_letters.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/layout_memory.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kHelp = "HelpForm";

bool IsEnter(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

/// The pages of the window that the focus stands in, or else the first of those on screen.
QTabWidget* PagesAtHand(QWidget& window) {
  for (QWidget* widget = QApplication::focusWidget(); widget != nullptr && widget != &window;
       widget = widget->parentWidget())
    if (auto* tabs = qobject_cast<QTabWidget*>(widget)) return tabs;
  for (auto* tabs : window.findChildren<QTabWidget*>())
    if (tabs->isVisible()) return tabs;
  return nullptr;
}

void TurnPage(QWidget& window, int step) {
  QTabWidget* tabs = PagesAtHand(window);
  if (tabs == nullptr) return;
  int page = tabs->currentIndex();
  do {
    page = (page + step + tabs->count()) % tabs->count();
  } while (!tabs->isTabVisible(page) || !tabs->isTabEnabled(page));
  tabs->setCurrentIndex(page);
}

/// The focus of a list stands in its view, so that is what a screen reader asks for the name of the list.
void NameLists(QWidget& part) {
  for (Grid* grid : part.findChildren<Grid*>()) {
    if (!grid->View().accessibleName().isEmpty()) continue;
    const QString own = grid->accessibleName();
    grid->View().setAccessibleName(own.isEmpty() ? part.window()->windowTitle() : own);
  }
}

/// The keys that every window has, beside those of its buttons.
void ListenToCommonKeys(QWidget& self, WindowList& windows) {
  const auto on = [&self](const QKeySequence& key, std::function<void()> act) {
    auto* shortcut = new QShortcut(key, &self, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    QObject::connect(shortcut, &QShortcut::activated, &self, std::move(act));
  };
  if (self.findChild<QTabWidget*>() != nullptr) {
    on(Qt::CTRL | Qt::Key_PageDown, [&self] { TurnPage(self, 1); });
    on(Qt::CTRL | Qt::Key_PageUp, [&self] { TurnPage(self, -1); });
  }
  // A dialog keeps the keys of the main window from being heard.
  const std::string name = U8(self.objectName());
  if (qobject_cast<QDialog*>(&self) != nullptr && name != kHelp && windows.Knows(kHelp))
    on(QKeySequence::HelpContents, [&windows, name] { windows.RunDialog(kHelp, {{"Window", name}}); });
}

}  // namespace

/// Hears Enter in the fields before they do.
class FormHost::Keys : public QObject {
 public:
  explicit Keys(FormHost& host) : host_(host) {}

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) return false;
    const auto& key = *static_cast<QKeyEvent*>(event);
    auto* widget = static_cast<QWidget*>(watched);
    if (AnswersByLetter(*widget, key)) return true;
    if (!IsEnter(key)) return false;
    const bool control = (key.modifiers() & Qt::ControlModifier) != 0;
    if ((key.modifiers() & ~(Qt::KeypadModifier | Qt::ControlModifier)) != 0) return false;
    // In a note Enter is a new line, and Ctrl+Enter what Enter is elsewhere.
    if (control != (qobject_cast<QPlainTextEdit*>(widget) != nullptr)) return false;
    if (auto* button = qobject_cast<QPushButton*>(widget)) {
      button->click();
      return true;
    }
    return host_.EnterPressed(widget);
  }

  QString layoutKey;
  LayoutMemory layout;

 private:
  // Y and N answer a question of ours as they do a message, where no text is typed.
  bool AnswersByLetter(QWidget& from, const QKeyEvent& key) const {
    if ((key.modifiers() & ~Qt::ShiftModifier) != 0 || qobject_cast<QAbstractButton*>(&from) == nullptr) return false;
    if (key.key() != Qt::Key_Y && key.key() != Qt::Key_N) return false;
    auto* answer = host_.self_.findChild<QPushButton*>(key.key() == Qt::Key_Y ? "cmdYes" : "cmdNo");
    if (answer == nullptr || !answer->isVisible() || !answer->isEnabled()) return false;
    answer->click();
    return true;
  }

  FormHost& host_;
};

FormHost::FormHost(WindowList& windowList, QWidget& self)
    : session(windowList.session), windows(windowList), self_(self), keys_(std::make_unique<Keys>(*this)) {}

FormHost::~FormHost() = default;

bool FormHost::IsDirty() const {
  return std::ranges::any_of(fields_, [](const Field* field) { return field->IsDirty(); });
}

void FormHost::MarkClean() {
  for (Field* field : fields_) field->MarkClean();
  Changed();
}

Field* FormHost::FindField(std::string_view name) const {
  const auto found = std::ranges::find_if(fields_, [&](const Field* field) { return field->IsCalled(name); });
  return found == fields_.end() ? nullptr : *found;
}

void FormHost::ShowRefusal(const Refusal& refusal) {
  if (refusal.declined) {
    FocusField(refusal.field);
    return;
  }
  session.prompt.Tell(refusal.title, refusal.text);
  Field* field = FindField(refusal.field);
  if (field != nullptr) field->SetFault(Q(refusal.text));
  FocusField(refusal.field);
}

bool FormHost::FocusField(std::string_view name) {
  if (name.empty()) return false;
  const auto find = [&]() -> QWidget* {
    Field* known = FindField(name);
    return known != nullptr ? &known->Control() : self_.findChild<QWidget*>(Q(name));
  };
  QWidget* control = find();
  while (control == nullptr && !late_.empty()) {
    BuildLate(*late_.front().page);
    control = find();
  }
  if (control == nullptr) return false;
  Field* field = FindField(name);
  for (QWidget* page = control; page != nullptr && page != &self_; page = page->parentWidget()) {
    auto* stack = page->parentWidget();
    auto* tabs = stack == nullptr ? nullptr : qobject_cast<QTabWidget*>(stack->parentWidget());
    if (tabs != nullptr) tabs->setCurrentWidget(page);
  }
  if (field != nullptr) {
    field->TakeFocus();
  } else {
    control->setFocus(Qt::OtherFocusReason);
  }
  return true;
}

WaitProgress::Scope FormHost::Wait(WaitKind kind, const QString& text, bool atOnce) {
  return {windows.Wait(), kind, text, atOnce};
}

void FormHost::Adopt(Field& field) {
  fields_.push_back(&field);
  QWidget& control = field.Control();
  control.installEventFilter(keys_.get());
  for (auto* part : control.findChildren<QWidget*>()) {
    if (qobject_cast<QLineEdit*>(part) != nullptr || qobject_cast<QRadioButton*>(part) != nullptr) {
      part->installEventFilter(keys_.get());
    }
  }
  Listen(field);
}

void FormHost::Listen(Field& field) {
  QWidget& control = field.Control();
  QObject* hears = keys_.get();
  const auto heard = [this, &field] {
    field.ClearFault();
    Changed();
  };
  if (auto* line = qobject_cast<QLineEdit*>(&control)) QObject::connect(line, &QLineEdit::textChanged, hears, heard);
  if (auto* box = qobject_cast<QCheckBox*>(&control)) QObject::connect(box, &QCheckBox::toggled, hears, heard);
  if (auto* radio = qobject_cast<RadioField*>(&control))
    QObject::connect(radio, &RadioField::ChosenChanged, hears, heard);
  if (auto* combo = qobject_cast<QComboBox*>(&control))
    QObject::connect(combo, &QComboBox::currentTextChanged, hears, heard);
  if (auto* list = qobject_cast<QListWidget*>(&control))
    QObject::connect(list, &QListWidget::itemChanged, hears, heard);
  if (auto* note = qobject_cast<QPlainTextEdit*>(&control))
    QObject::connect(note, &QPlainTextEdit::textChanged, hears, heard);
  if (auto* date = qobject_cast<QDateEdit*>(&control)) QObject::connect(date, &QDateEdit::dateChanged, hears, heard);
}

void FormHost::AdoptButton(CommandButton& button, std::function<void()> click) {
  button.installEventFilter(keys_.get());
  QWidget& self = self_;
  if (click) {
    QObject::connect(&button, &QPushButton::clicked, &self, std::move(click));
  } else {
    // The slot is found by the system's name, and a button without one is a mistake that shows at once.
    const QByteArray slot = QMetaObject::normalizedSignature((button.objectName() + "_Click()").toLatin1());
    const int index = self.metaObject()->indexOfMethod(slot);
    if (index < 0) {
      throw std::logic_error(U8(self.objectName()) + " has no slot " + slot.toStdString());
    }
    QObject::connect(&button, &QPushButton::clicked, &self,
                     [&self, index] { self.metaObject()->method(index).invoke(&self, Qt::DirectConnection); });
  }
  if (button.Key().isEmpty()) return;
  auto* shortcut = new QShortcut(button.Key(), &self, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
  QObject::connect(shortcut, &QShortcut::activated, &button, [&button] {
    // As a click would: what is being typed is left, and so read, first.
    if (!button.isEnabled()) return;
    button.setFocus(Qt::ShortcutFocusReason);
    button.click();
  });
}

void FormHost::SetDefaultButton(QPushButton* button) {
  defaultButton_ = button;
  button->setProperty("primary", true);
}

void FormHost::AddLate(QWidget& page, QWidget& before, std::function<void()> build) {
  late_.push_back({&page, &before, std::move(build)});
}

void FormHost::BuildLate(QWidget& page) {
  const auto found = std::ranges::find(late_, &page, &LatePage::page);
  if (found == late_.end()) return;
  const LatePage late = std::move(*found);
  late_.erase(found);
  const std::size_t known = fields_.size();
  const bool onScreen = !page.isHidden();
  if (onScreen) page.hide();  // what is put into a page on screen would only be shown later
  late.build();
  for (std::size_t i = known; i < fields_.size(); ++i) fields_[i]->MarkClean();
  // Made last, they would be reached last.
  std::vector<QWidget*> stops;
  for (QWidget* next = page.nextInFocusChain(); next != &page; next = next->nextInFocusChain()) {
    const bool stop = page.isAncestorOf(next) && next->focusProxy() == nullptr;
    if (stop && (next->focusPolicy() & Qt::TabFocus) != 0) stops.push_back(next);
  }
  QWidget* last = late.before;
  for (QWidget* stop : stops) {
    QWidget::setTabOrder(last, stop);
    last = stop;
  }
  if (!keys_->layoutKey.isEmpty()) keys_->layout.Begin(page, keys_->layoutKey);
  NameLists(page);
  if (onScreen) page.show();
  Changed();
}

void FormHost::Changed() {
  if (!ready_ || updating_) return;
  updating_ = true;
  UpdateEnabled();
  LetterControls(self_);
  updating_ = false;
}

void FormHost::Ready() {
  if (ready_) return;
  ready_ = true;
  keys_->layoutKey = KeyOfUser(session, "layout/" + self_.objectName());
  keys_->layout.Begin(self_, keys_->layoutKey);
  ListenToCommonKeys(self_, windows);
  NameLists(self_);
  MarkClean();
  // The first field has the focus, unless the window has put it elsewhere.
  Field* first = nullptr;
  for (Field* field : fields_) {
    QWidget& control = field->Control();
    if (first == nullptr && control.isEnabled() && control.isVisibleTo(&self_)) first = field;
    if (&control == self_.focusWidget() || control.isAncestorOf(self_.focusWidget())) {
      first = field;
      break;
    }
  }
  if (first != nullptr) first->TakeFocus();
}

void FormHost::Closing() {
  if (ready_) keys_->layout.Keep(self_);
  ready_ = false;
  for (Field* field : fields_) field->Control().blockSignals(true);
  // What it had put off would come while the window is still there, but perhaps no file any more.
  QCoreApplication::removePostedEvents(&self_, QEvent::MetaCall);
  for (QObject* part : self_.findChildren<QObject*>()) {
    QCoreApplication::removePostedEvents(part, QEvent::MetaCall);
    if (auto* timer = qobject_cast<QTimer*>(part)) timer->stop();
  }
}

bool FormHost::EnterPressed(QWidget* from) {
  // A combo with its list open takes Enter itself.
  if (auto* combo = qobject_cast<QComboBox*>(from); combo != nullptr && combo->view()->isVisible()) return false;
  const auto isField = [this](QWidget* widget) {
    for (QWidget* w = widget; w != nullptr && w != &self_; w = w->parentWidget()) {
      if (std::ranges::any_of(fields_, [&](Field* field) { return &field->Control() == w; })) return true;
    }
    return false;
  };
  QWidget* start = from;
  for (QWidget* next = start->nextInFocusChain(); next != nullptr && next != start; next = next->nextInFocusChain()) {
    if (next == &self_) break;  // past the last one
    if (!self_.isAncestorOf(next) || from->isAncestorOf(next) || next->focusProxy() != nullptr) continue;
    if ((next->focusPolicy() & Qt::TabFocus) == 0 || !next->isEnabled() || !next->isVisibleTo(&self_)) continue;
    auto* radio = qobject_cast<QRadioButton*>(next);
    if (radio != nullptr && !radio->isChecked()) continue;
    // Within one group Enter leaves the group.
    if (radio != nullptr && radio->parentWidget() == from->parentWidget()) continue;
    if (!isField(next)) continue;
    next->setFocus(Qt::TabFocusReason);
    return true;
  }
  if (defaultButton_ == nullptr) return true;
  if (defaultButton_->isEnabled()) {
    defaultButton_->setFocus(Qt::TabFocusReason);
    defaultButton_->click();
  }
  return true;
}

}  // namespace vellumark::desktop
