#include "desktop/settings/um_setting_form.h"

#include <QLayout>

#include "core/session/options.h"
#include "desktop/kit/text.h"
#include "desktop/settings/explain.h"

namespace vellumark::desktop {

UMSettingForm::UMSettingForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "UMSettingForm", tr("Inventory Settings")) {
  Form form(*this);
  form.Heading(tr("Unit"));
  form.Row(tr("&Inventory Unit"), unit_ = form.Combo("cmbUMI", UnitNames()));
  form.Row(Explain(form, tr("This UOM should not be changed after inventory has been entered into the database.")));
  form.Row(Explain(form, tr("To change it all the same, first use the Inventory Report of the %1 Database to reset all "
                            "inventory to 0.")
                             .arg(Q(session.CurrentDatabase))));
  form.Heading(tr("Inventory Removal / Cutoff Point"));
  form.Row(tr("&Cutoff Point"), {cutoff_ = form.Number("txtCutoff", 3, tr("0 or more")), cutoffUnit_ = form.Hint({})});
  form.Row(Explain(form, tr("The Cutoff Point helps to keep inventory accurate.  Any inventory below this amount is "
                            "automatically set to 0.")));
  form.Row(negative_ = form.Check("chkAllowNegInv", tr("Allow &negative inventory")));
  form.Row(negativeMeans_ = Explain(form, {}, "lblAllowNegInv"));
  QLabel* note =
      Explain(form, tr("Note - This feature only works with Basics && Additives using the Unlotted Inventory "
                       "method."));
  note->setBuddy(negative_);
  form.Row(note);
  form.Heading(tr("Lotted Inventory"));
  form.Row(lots_ = form.Check("chkInvLotTracking", tr("Use &Lotted Inventory")));
  form.Row(Explain(form, tr("It is not recommended to turn this feature on and off once it has been activated.")));
  form.Row(tr("Entry"), method_ = form.Radio("optInvRecordMethod",
                                             {{"optGross", tr("Enter Inv by &gross amount. (i.e. 100 lbs.)")},
                                              {"optUnit", tr("Enter Inv by &unit amount. (i.e. 5 lbs. * 20 units = 100 "
                                                             "lbs.)")}}));
  method_->Means("InvRecordMethod");
  form.Buttons({form.Button("cmdSave", tr("&Save"), QKeySequence::Save), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);

  const InventorySettings settings = ReadInventorySettings(session);
  unit_->setCurrentIndex(settings.UMI - 1);
  cutoff_->SetText(settings.InvCutoff);
  negative_->setChecked(settings.AllowNegInv);
  lots_->setChecked(settings.InvLotTracking);
  method_->Choose(settings.InvRecordMethod);
}

void UMSettingForm::UpdateEnabled() {
  cutoffUnit_->setText(unit_->currentText());
  negativeMeans_->setText(negative_->isChecked() ? tr("Inventory amounts can go below zero. The Inventory Removal / "
                                                      "Cutoff point is disabled.")
                                                 : tr("Inventory amounts never go below zero."));
  method_->setEnabled(lots_->isChecked());
}

void UMSettingForm::cmdSave_Click() {
  InventorySettings settings;
  settings.UMI = unit_->currentIndex() + 1;
  settings.InvCutoff = cutoff_->Text();
  settings.AllowNegInv = negative_->isChecked();
  settings.InvLotTracking = lots_->isChecked();
  settings.InvRecordMethod = method_->Chosen();
  if (Accepted(SaveInventorySettings(session, settings))) accept();
}

}  // namespace vellumark::desktop
