#include "desktop/settings/autofill_form.h"

#include <QLayout>

#include "core/session/options.h"
#include "desktop/settings/explain.h"

namespace vellumark::desktop {

AutofillForm::AutofillForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "AutofillForm", tr("Autofill Text")) {
  Form form(*this);
  form.Wide(on_ = form.Check("chkAutoFillText", tr("&Complete names while they are typed")));
  form.Wide(
      Explain(form, tr("A name box then adds the rest of the first name that begins with what was typed. Typing on "
                       "replaces it.")));
  form.Buttons({form.Button("cmdSave", tr("&Save"), QKeySequence::Save), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
  on_->setChecked(session.AutoFillText == 1);
}

void AutofillForm::cmdSave_Click() {
  if (Accepted(SaveAutofill(session, on_->isChecked()))) accept();
}

}  // namespace vellumark::desktop
