#pragma once

#include <functional>
#include <string>

#include "desktop/kit/window.h"

namespace vellumark::desktop {

class NewNameDialog;

/// Of what a new name is asked, and what gives it.
struct NewName {
  const char* window;
  QString title;
  QString caption;       ///< of the name that stands
  const char* argument;  ///< under which the dialog is told that name; a refusal of the core calls the new one so too
  TextRule rule;
  /// What goes back to whoever asked; nothing of it, and the operator enters another one.
  std::function<Result<Arguments>(NewNameDialog& dialog, const std::string& oldName, const std::string& typed)> rename;
  std::string (*proposed)(const std::string& oldName) = nullptr;
  QString hint{};
};

/// Asks for the new name of something that has one, and renames it.
class NewNameDialog : public Dialog {
  Q_OBJECT

 public:
  NewNameDialog(WindowList& windowList, QWidget* owner, NewName what);
  /// {"Title", text} may give it another title.
  void OnOpen(const Arguments& arguments) override;
  /// What it was opened with.
  const Arguments& Given() const { return given_; }

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  NewName what_;
  Arguments given_;
  ValueField* oldName_;
  TextField* newName_;
};

}  // namespace vellumark::desktop
