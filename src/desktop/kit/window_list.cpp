#include "desktop/kit/window_list.h"

#include <QApplication>
#include <QPointer>
#include <QScopeGuard>
#include <algorithm>
#include <stdexcept>
#include <utility>

#include "core/session/acts.h"
#include "desktop/kit/wait_progress.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {
namespace {

// Rows of one kind and Database that changed beyond this many are told as "all".
constexpr std::size_t kToldSingly = 1000;

}  // namespace

WindowList::WindowList(Session& openSession, WaitProgress* wait) : session(openSession), wait_(wait) {
  deliver_.setSingleShot(true);
  deliver_.setInterval(0);
  connect(&deliver_, &QTimer::timeout, this, &WindowList::DeliverChanges);
  if (wait_ != nullptr) {
    wait_->OnIdle([this] {
      if (!pending_.empty()) deliver_.start();
    });
  }
  subscription_ = session.changes.Subscribe([this](const std::vector<Change>& changes) {
    for (const Change& change : changes) Hold(change);
    deliver_.start();
  });
}

WindowList::~WindowList() {
  // Whoever is still open goes without being asked, and finds the list as it was.
  while (!open_.empty()) delete open_.back();
  if (wait_ != nullptr) wait_->OnIdle({});
}

void WindowList::Register(const std::string& name, WindowFactory factory) {
  if (!factories_.emplace(name, std::move(factory)).second) throw std::logic_error("window registered twice: " + name);
}

void WindowList::RegisterDialog(const std::string& name, DialogFactory factory) {
  if (!dialogFactories_.emplace(name, std::move(factory)).second) {
    throw std::logic_error("dialog registered twice: " + name);
  }
}

bool WindowList::Knows(const std::string& name) const {
  return factories_.contains(name) || dialogFactories_.contains(name);
}

Window* WindowList::Form(std::string_view name) const {
  const auto found = std::ranges::find_if(open_, [&](const Window* window) { return window->Name() == name; });
  return found == open_.end() ? nullptr : *found;
}

std::vector<std::string> WindowList::Names() const {
  std::vector<std::string> names;
  for (const auto& [name, factory] : factories_) names.push_back(name);
  for (const auto& [name, factory] : dialogFactories_) names.push_back(name);
  return names;
}

bool WindowList::MayOpen(const std::string& name) {
  const auto act = ActOfWindow(name);
  if (!act) return true;
  const auto allowed = RequireAtDoor(session, *act);
  if (!allowed) session.prompt.Tell(allowed.error().title, allowed.error().text);
  return allowed.has_value();
}

Window* WindowList::OpenForm(const std::string& name, const Arguments& arguments) {
  Window* window = Form(name);
  if (window == nullptr) {
    if (!MayOpen(name)) return nullptr;
    window = Make(name);
    open_.push_back(window);
    hosts_.push_back({window, window});
    if (place_ != nullptr) {
      place_->Add(*window);
    } else {
      window->show();
      window->activateWindow();
    }
    Q_EMIT OpenFormsChanged();
  } else if (place_ != nullptr) {
    place_->BringForward(*window);
  } else {
    window->raise();
    window->activateWindow();
  }
  const QPointer<Window> stillThere = window;
  window->OnOpen(arguments);
  return stillThere;
}

Window* WindowList::Make(const std::string& name) {
  const auto factory = factories_.find(name);
  if (factory == factories_.end()) throw std::logic_error("there is no window " + name);
  std::unique_ptr<QWidget> room(place_ == nullptr ? nullptr : place_->MakeRoom());
  room_ = room.get();
  Window* window = factory->second(*this);
  room_.clear();
  if (window->Name() != name) throw std::logic_error("window " + name + " calls itself " + window->Name());
  if (window->parentWidget() == room.get()) {
    [[maybe_unused]] const QWidget* const placed = room.release();  // the place has it
  }
  return window;
}

std::optional<Arguments> WindowList::RunDialog(const std::string& name, const Arguments& arguments) {
  const auto factory = dialogFactories_.find(name);
  if (factory == dialogFactories_.end()) throw std::logic_error("there is no dialog " + name);
  if (!MayOpen(name)) return std::nullopt;
  QWidget* owner = QApplication::activeWindow();
  // Its owner may go while it stands there, and takes it along.
  const QPointer<Dialog> dialog = factory->second(*this, owner != nullptr ? owner : Frame());
  const auto end = qScopeGuard([&dialog] { delete dialog; });
  dialog->OnOpen(arguments);
  if (dialog->exec() != QDialog::Accepted || dialog == nullptr) return std::nullopt;
  return dialog->result;
}

bool WindowList::IsInEdit(std::string_view name) const {
  const Window* window = Form(name);
  return window != nullptr && window->InEdit();
}

bool WindowList::IsFormulaInUse(std::string_view formula) const {
  return std::ranges::any_of(open_, [formula](const Window* window) { return window->UsesFormula(formula); });
}

bool WindowList::CloseChildWindows(const std::vector<std::string>& except) {
  const auto goes = [&](const Window* window) { return std::ranges::find(except, window->Name()) == except.end(); };
  // Closing one window may close others, and what is asked meanwhile may open one: what stands there now counts.
  for (;;) {
    const auto last = std::ranges::find_if(open_.rbegin(), open_.rend(), goes);
    if (last == open_.rend()) return true;
    if (!(*last)->Leave()) return false;
  }
}

bool WindowList::CloseForm(std::string_view name) {
  Window* window = Form(name);
  return window == nullptr || window->Leave();
}

Window* WindowList::ActiveForm() const {
  if (place_ != nullptr) return place_->Active();
  for (QWidget* widget = QApplication::activeWindow(); widget != nullptr; widget = widget->parentWidget()) {
    auto* window = qobject_cast<Window*>(widget);
    if (window != nullptr && std::ranges::find(open_, window) != open_.end()) return window;
  }
  return nullptr;
}

std::vector<Window*> WindowList::OpenForms() const {
  return open_;
}

void WindowList::Hold(const Change& change) {
  const bool updates = change.what == Change::What::Updated;
  std::size_t* updated = updates ? &updated_[{change.kind, change.database}] : nullptr;
  if (updates && *updated > kToldSingly) return;
  // Renames are steps of one way: each counts, even one that happened before.
  const bool repeats = change.what != Change::What::Renamed &&
                       !held_.emplace(change.kind, change.what, change.database, change.name).second;
  if (repeats) return;
  if (updates && ++*updated > kToldSingly) return Hold({change.kind, change.database, "", Change::What::All, ""});
  pending_.push_back(change);
}

void WindowList::DeliverChanges() {
  if (wait_ != nullptr && wait_->IsBusy()) return;
  const std::vector<Change> changes = std::exchange(pending_, {});
  held_.clear();
  updated_.clear();
  if (changes.empty()) return;
  const std::vector<Open> hosts = hosts_;
  for (const Open& open : hosts) {
    // One that another has closed meanwhile may still be there, and hears no more.
    const auto isThis = [&](const Open& host) { return host.object == open.object; };
    if (open.object != nullptr && std::ranges::any_of(hosts_, isThis)) open.host->OnChanges(changes);
  }
}

void WindowList::Join(Dialog& dialog) {
  hosts_.push_back({&dialog, &dialog});
}

void WindowList::Forget(Window& window) {
  if (std::erase(open_, &window) == 0) return;
  Leave(window);
  if (place_ != nullptr) place_->Remove(window);
  Q_EMIT OpenFormsChanged();
}

void WindowList::Forget(Dialog& dialog) {
  Leave(dialog);
}

void WindowList::Leave(QObject& object) {
  std::erase_if(hosts_, [&](const Open& open) { return open.object == &object; });
}

}  // namespace vellumark::desktop
