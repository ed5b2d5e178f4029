#pragma once

#include "core/colors/rename.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Asks for the new name of a colour and renames it. Opened with {"Color_Name", name}; gives {"NewName", name} and
/// {"Merged", true or false} back.
class NewNameForm : public Dialog {
  Q_OBJECT

 public:
  NewNameForm(WindowList& windowList, QWidget* owner, const QString& name, const QString& title);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();

 protected:
  /// The rename of that kind of colour.
  virtual Result<Renamed> Rename(const std::string& oldName, const std::string& typed) = 0;

 private:
  ValueField* oldName_;
  TextField* newName_;
};

}  // namespace vellumark::desktop
