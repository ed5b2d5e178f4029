#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Reminds what a lot needs, until the operator does not want to be reminded any more.
class InvLotInstructions : public Dialog {
  Q_OBJECT

 public:
  InvLotInstructions(WindowList& windowList, QWidget* owner);
  void accept() override;
  void reject() override { accept(); }

  /// Shows it in front of the first inventory window of a session, while lots are in use and the reminder is wanted.
  static void ShowOnce(WindowList& windows);

 public Q_SLOTS:
  void cmdOK_Click() { accept(); }

 private:
  CheckField* never_;
};

}  // namespace vellumark::desktop
