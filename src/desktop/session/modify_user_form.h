#pragma once

#include "desktop/kit/window.h"
#include "desktop/session/rights_panel.h"
#include "desktop/session/user_fields.h"

namespace vellumark::desktop {

/// Password, standing and rights of a user who is on file.
class ModifyUserForm : public Dialog {
  Q_OBJECT

 public:
  ModifyUserForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  void ChooseUser();
  void ShowUser();

  ComboField* username_;
  TextField* password_;
  CheckField* admin_;
  RightsPanel* rights_;
  std::string shown_;
};

}  // namespace vellumark::desktop
