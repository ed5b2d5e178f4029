#include "desktop/settings/new_setup_form.h"

#include <QLayout>

#include "desktop/settings/explain.h"

namespace vellumark::desktop {

NewSetupForm::NewSetupForm(WindowList& windowList, QWidget* owner, const SystemPrinters& printers)
    : Dialog(windowList, owner, "NewSetupForm", tr("Default Settings - Installation Setup")) {
  Form form(*this);
  form.Heading(tr("Units"));
  form.Row(tr("&Inventory Unit"), inventoryUnit_ = form.Combo("cmbUMI", UnitNames()));
  form.Row(
      Explain(form, tr("Stock, unit costs, VOC and HAP are kept in this unit. Choose it well: it should not change "
                       "once there is inventory.")));
  form.Row(tr("&Batch Scale Unit"), batchUnit_ = form.Combo("cmbUMF", UnitNames()));
  form.Row(Explain(form, tr("The unit that your scale shows. Batches are weighed in it.")));
  form.Heading(tr("Printer"));
  form.Row(tr("Default &Printer"), printer_ = form.Combo("cmbPrinter"));
  form.Row(Explain(form, tr("It can be changed later under Data File, Options, Default Printer.")));
  form.Buttons({form.Button("cmdSave", tr("&Save"), QKeySequence::Save)});
  layout()->setSizeConstraint(QLayout::SetFixedSize);

  inventoryUnit_->setCurrentIndex(session.UMI - 1);
  batchUnit_->setCurrentIndex(session.UMF - 1);
  ShowPrinters(*printer_, printers, {});
}

void NewSetupForm::cmdSave_Click() {
  if (Accepted(
          SaveNewSetup(session, inventoryUnit_->currentIndex(), batchUnit_->currentIndex(), ChosenDevice(*printer_))))
    accept();
}

}  // namespace vellumark::desktop
