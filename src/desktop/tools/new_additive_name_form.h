#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Asks for the new name of an Additive Set and renames it, or merges it into the set that bears the name. Opened with
/// {"SetName", name}; gives {"NewName", name} back.
class NewAdditiveNameForm : public Dialog {
  Q_OBJECT

 public:
  NewAdditiveNameForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  ValueField* oldName_;
  TextField* newName_;
};

}  // namespace vellumark::desktop
