#include "desktop/inventory/inv_lot_instructions.h"

#include <QLayout>

#include "core/session/settings.h"

namespace vellumark::desktop {

InvLotInstructions::InvLotInstructions(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "InvLotInstructions", tr("Lotted Inventory")) {
  Form form(*this);
  form.Heading(tr("Lotted Inventory is turned on!"));
  form.Wide(form.Label("lblLots", tr("Entering Lotted Inventory requires a")));
  form.Wide(form.Label("lblLots2", tr("unique Lot Name and Lot Quantity.")));
  form.Space();
  form.Wide(never_ = form.Check("chkNever", tr("&Do not show this reminder again.")));
  form.Buttons({form.Button("cmdOK", tr("OK"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void InvLotInstructions::accept() {
  if (never_->isChecked()) StoreSettings(session, {setting::LottedInvReminder.To(false)});
  Dialog::accept();
}

void InvLotInstructions::ShowOnce(WindowList& windows) {
  static constexpr const char* kShown = "InvLotInstructionsShown";
  const Session& session = windows.session;
  if (session.InvLotTracking != 1 || windows.property(kShown).toBool() ||
      !GetSetting(session, setting::LottedInvReminder))
    return;
  windows.setProperty(kShown, true);
  windows.RunDialog("InvLotInstructions");
}

}  // namespace vellumark::desktop
