#pragma once

#include <QDialog>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/base/changes.h"
#include "core/session/session.h"
#include "desktop/kit/arguments.h"

namespace vellumark::desktop {

class Dialog;
class FormHost;
class WaitProgress;
class Window;

/// Where child windows are shown; the main window has one (MainArea of main_area.h is the ordinary kind).
class WindowPlace {
 public:
  virtual ~WindowPlace() = default;
  /// The empty frame of a window that is about to be made in it: a window that moves once it is filled is styled twice.
  virtual QWidget* MakeRoom() = 0;
  virtual void Add(Window& window) = 0;
  virtual void BringForward(Window& window) = 0;
  /// The window is closing; it deletes itself.
  virtual void Remove(Window& window) = 0;
  virtual Window* Active() const = 0;
  /// Owner of dialogs.
  virtual QWidget* Frame() = 0;
};

/// The shell's list of windows: opens them by name, one of each kind, closes them, and tells them of changes. No window
/// includes another's header; it asks here.
class WindowList : public QObject {
  Q_OBJECT

 public:
  /// `wait` shows long work; without one (a test's session) work shows nothing.
  explicit WindowList(Session& openSession, WaitProgress* wait = nullptr);
  ~WindowList() override;

  Session& session;

  /// Without a place, windows stand alone on the screen.
  void SetPlace(WindowPlace* place) { place_ = place; }
  QWidget* Frame() const { return place_ == nullptr ? nullptr : place_->Frame(); }
  WaitProgress* Wait() const { return wait_; }

  using WindowFactory = std::function<Window*(WindowList&)>;
  using DialogFactory = std::function<Dialog*(WindowList&, QWidget* owner)>;
  void Register(const std::string& name, WindowFactory factory);
  void RegisterDialog(const std::string& name, DialogFactory factory);
  template <class W>
  void Register(const std::string& name) {
    Register(name, [](WindowList& list) -> Window* { return new W(list); });
  }
  template <class D>
  void RegisterDialog(const std::string& name) {
    RegisterDialog(name, [](WindowList& list, QWidget* owner) -> Dialog* { return new D(list, owner); });
  }
  /// Windows and dialogs under the names of their classes.
  template <class... W>
  void RegisterAll() {
    (RegisterOne<W>(), ...);
  }
  /// True when a window or a dialog of that name can be opened.
  bool Knows(const std::string& name) const;
  /// All of them.
  std::vector<std::string> Names() const;

  bool IsFormOpen(std::string_view name) const { return Form(name) != nullptr; }
  /// The open window of that name, or null.
  Window* Form(std::string_view name) const;
  /// Opens it, or brings it forward when it is open, and passes the arguments on. A name that nobody registered is the
  /// caller's mistake: std::logic_error. Null, and the refusal was shown, when the user lacks the window's right.
  Window* OpenForm(const std::string& name, const Arguments& arguments = {});
  /// Runs a dialog until it closes; its result, or nothing when it was cancelled or the user lacks its right.
  std::optional<Arguments> RunDialog(const std::string& name, const Arguments& arguments = {});
  /// True when it is open and has unsaved work.
  bool IsInEdit(std::string_view name) const;
  /// True when one of the open windows has something on screen that is made of this Master Formula.
  bool IsFormulaInUse(std::string_view formula) const;

  /// Asks and closes from the last opened to the first. False, and the rest stays, when a window declines.
  bool CloseChildWindows(const std::vector<std::string>& except = {});
  bool CloseForm(std::string_view name);
  Window* ActiveForm() const;
  std::vector<Window*> OpenForms() const;

  /// Changes are told when the event loop is reached and no work is going on; this tells them now. Each is told once,
  /// and more than a thousand updated rows of one kind and Database are told as one What::All.
  void DeliverChanges();

  // For windows.
  /// What the window that is being made stands in; nothing for one that stands alone.
  QWidget* TakeRoom() { return std::exchange(room_, {}); }
  void Join(Dialog& dialog);
  void Forget(Window& window);
  void Forget(Dialog& dialog);

 Q_SIGNALS:
  void OpenFormsChanged();

 private:
  template <class W>
  void RegisterOne() {
    const std::string name = W::staticMetaObject.className();
    const std::string own = name.substr(name.rfind(':') + 1);
    if constexpr (std::is_base_of_v<QDialog, W>)
      RegisterDialog<W>(own);
    else
      Register<W>(own);
  }
  struct Open {
    QPointer<QObject> object;
    FormHost* host;
  };
  Window* Make(const std::string& name);
  void Leave(QObject& object);
  void Hold(const Change& change);
  bool MayOpen(const std::string& name);

  WaitProgress* wait_;
  WindowPlace* place_ = nullptr;
  QPointer<QWidget> room_;
  std::map<std::string, WindowFactory> factories_;
  std::map<std::string, DialogFactory> dialogFactories_;
  std::vector<Window*> open_;
  std::vector<Open> hosts_;
  std::vector<Change> pending_;
  /// What stands in `pending_` already, renames apart, and how many updates of one kind and Database.
  std::set<std::tuple<Change::Kind, Change::What, std::string, std::string>> held_;
  std::map<std::pair<Change::Kind, std::string>, std::size_t> updated_;
  QTimer deliver_;
  Changes::Subscription subscription_;
};

}  // namespace vellumark::desktop
