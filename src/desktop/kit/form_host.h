#pragma once

#include <QKeySequence>
#include <QObject>
#include <QWidget>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "core/base/changes.h"
#include "core/base/refusal.h"
#include "core/session/session.h"
#include "desktop/kit/arguments.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/wait_progress.h"

namespace vellumark::desktop {

class WindowList;

/// What child windows and dialogs have in common: the session, the list of windows, their fields, how Enter goes on,
/// how a refusal is shown, and the places where a window says what is special about it.
class FormHost {
 public:
  FormHost(WindowList& windowList, QWidget& self);
  virtual ~FormHost();
  FormHost(const FormHost&) = delete;
  FormHost& operator=(const FormHost&) = delete;

  Session& session;
  WindowList& windows;

  /// Committed changes, once for each window, after the work that made them is over. A window with an edit in progress
  /// keeps what was typed.
  virtual void OnChanges(const std::vector<Change>&) {}
  /// What whoever opened the window by its name had to say; also when it was open already.
  virtual void OnOpen(const Arguments&) {}
  /// The one place that decides what can be used; called after each change of a field and when the window shows.
  virtual void UpdateEnabled() {}
  /// Asked before the window closes; asks about unsaved changes.
  virtual bool MayClose() { return true; }
  /// Unsaved work on screen, for the interlocks of other commands.
  virtual bool InEdit() const { return IsDirty(); }
  /// What the window has on screen is made of that Master Formula, so that its recipe must stand still elsewhere.
  virtual bool UsesFormula(std::string_view) const { return false; }

  bool IsDirty() const;
  void MarkClean();

  /// The message, and then the focus, the selected text and a mark on the field that the refusal names.
  void ShowRefusal(const Refusal& refusal);
  /// False after having shown the refusal: `if (!Accepted(SaveBasic(session, work))) return;`
  template <class T>
  bool Accepted(const Result<T>& result) {
    if (!result) ShowRefusal(result.error());
    return result.has_value();
  }
  /// The focus to a field by its name, its text selected, its tab page brought to the front. False: there is none.
  bool FocusField(std::string_view name);
  Field* FindField(std::string_view name) const;

  /// A wait window over what follows in this block, shown once it lasts; `atOnce` for work that reports nothing itself.
  [[nodiscard]] WaitProgress::Scope Wait(WaitKind kind, const QString& text, bool atOnce = false);

  // For the form builder.
  void Adopt(Field& field);
  void AdoptButton(CommandButton& button, std::function<void()> click);
  void SetDefaultButton(QPushButton* button);
  /// A page whose controls are made when they are first asked for; Tab reaches them behind `before`.
  void AddLate(QWidget& page, QWidget& before, std::function<void()> build);
  /// It is looked at: makes them, clean, unless that was done.
  void BuildLate(QWidget& page);
  QPushButton* DefaultButton() const { return defaultButton_; }
  QWidget& Self() const { return self_; }

 protected:
  /// Something changed: calls UpdateEnabled. The kit does so for fields; a grid or a work record tells it here.
  void Changed();
  /// First show: what fields hold now counts as clean.
  void Ready();
  /// The close was accepted: fields that lose the focus now tell nobody.
  void Closing();

 private:
  class Keys;
  void Listen(Field& field);
  bool EnterPressed(QWidget* from);

  QWidget& self_;
  std::unique_ptr<Keys> keys_;
  std::vector<Field*> fields_;
  struct LatePage {
    QWidget* page;
    QWidget* before;
    std::function<void()> build;
  };
  std::vector<LatePage> late_;
  QPushButton* defaultButton_ = nullptr;
  bool ready_ = false;
  bool updating_ = false;
};

}  // namespace vellumark::desktop
