#include "desktop/session/view_permissions_form.h"

#include "desktop/kit/tall_page.h"
#include "desktop/session/rights_panel.h"

namespace vellumark::desktop {

ViewPermissionsForm::ViewPermissionsForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "ViewPermissionsForm", tr("View Permissions")) {
  Form whole(*this);
  Form form = TallPart(*this, whole);
  ValueField* username = form.Value("lblUsername", 1);
  username->SetText(session.CurrentUser);
  form.Row(tr("Username"), username);
  auto* rights = new RightsPanel(*this);
  rights->SetRights(RightsInForce(session));
  rights->SetReadOnly();
  form.Wide(rights);
  form.Stretch();
  whole.Buttons({form.Button("cmdClose", tr("Close"))});
  FitScreen(*this);
}

}  // namespace vellumark::desktop
