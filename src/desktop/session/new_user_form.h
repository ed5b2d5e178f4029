#pragma once

#include "desktop/kit/window.h"
#include "desktop/session/rights_panel.h"
#include "desktop/session/user_fields.h"

namespace vellumark::desktop {

/// Adds a user with the rights chosen.
class NewUserForm : public Dialog {
  Q_OBJECT

 public:
  NewUserForm(WindowList& windowList, QWidget* owner);

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  TextField* username_;
  TextField* password_;
  RightsPanel* rights_;
};

}  // namespace vellumark::desktop
