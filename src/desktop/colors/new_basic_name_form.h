#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Asks for the new name of a Basic Color and renames it, or merges it into the colour that bears the name.
/// Opened with {"Color_Name", name}; gives {"NewName", name} and {"Merged", true or false} back.
class NewBasicNameForm : public Dialog {
  Q_OBJECT

 public:
  NewBasicNameForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();
  void cmdCancel_Click() { reject(); }

 private:
  ValueField* oldName_;
  TextField* newName_;
};

}  // namespace vellumark::desktop
