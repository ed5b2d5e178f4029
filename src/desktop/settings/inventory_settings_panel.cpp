#include "desktop/settings/inventory_settings_panel.h"

#include <QCoreApplication>

#include "desktop/kit/text.h"
#include "desktop/settings/explain.h"

namespace vellumark::desktop {
namespace {

QString tr(const char* text) {
  return QCoreApplication::translate("InventorySettingsPanel", text);
}

}  // namespace

InventorySettingsPanel::InventorySettingsPanel(FormHost& host, Form& form, Form& lots) : host_(host) {
  form.Heading(tr("Unit"));
  form.Row(tr("&Inventory Unit"), unit_ = form.Combo("cmbUMI", UnitNames()));
  form.Row(Explain(form, tr("This UOM should not be changed after inventory has been entered into the database.")));
  form.Row(Explain(form, tr("To change it all the same, first use the Inventory Report of the %1 Database to reset all "
                            "inventory to 0.")
                             .arg(Q(host.session.CurrentDatabase))));
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
  lots.Heading(tr("Lotted Inventory"));
  lots.Row(lots_ = lots.Check("chkInvLotTracking", tr("Use &Lotted Inventory")));
  lots.Row(Explain(lots, tr("It is not recommended to turn this feature on and off once it has been activated.")));
  lots.Row(tr("Entry"), method_ = lots.Radio("optInvRecordMethod",
                                             {{"optGross", tr("Enter Inv by &gross amount. (i.e. 100 lbs.)")},
                                              {"optUnit", tr("Enter Inv by &unit amount. (i.e. 5 lbs. * 20 units = 100 "
                                                             "lbs.)")}}));
  method_->Means("InvRecordMethod");
  Show();
}

void InventorySettingsPanel::Show() {
  const InventorySettings settings = ReadInventorySettings(host_.session);
  unit_->setCurrentIndex(settings.UMI - 1);
  cutoff_->SetText(settings.InvCutoff);
  negative_->setChecked(settings.AllowNegInv);
  lots_->setChecked(settings.InvLotTracking);
  method_->Choose(settings.InvRecordMethod);
  shown_ = Read();
}

InventorySettings InventorySettingsPanel::Read() const {
  InventorySettings settings;
  settings.UMI = unit_->currentIndex() + 1;
  settings.InvCutoff = cutoff_->Text();
  settings.AllowNegInv = negative_->isChecked();
  settings.InvLotTracking = lots_->isChecked();
  settings.InvRecordMethod = method_->Chosen();
  return settings;
}

bool InventorySettingsPanel::IsChanged() const {
  const InventorySettings now = Read();
  return now.UMI != shown_.UMI || now.InvCutoff != shown_.InvCutoff || now.AllowNegInv != shown_.AllowNegInv ||
         now.InvLotTracking != shown_.InvLotTracking || now.InvRecordMethod != shown_.InvRecordMethod;
}

void InventorySettingsPanel::UpdateEnabled() {
  cutoffUnit_->setText(unit_->currentText());
  negativeMeans_->setText(negative_->isChecked() ? tr("Inventory amounts can go below zero. The Inventory Removal / "
                                                      "Cutoff point is disabled.")
                                                 : tr("Inventory amounts never go below zero."));
  method_->setEnabled(lots_->isChecked());
}

void InventorySettingsPanel::DoNotTrack() {
  for (Field* field : std::initializer_list<Field*>{unit_, cutoff_, negative_, lots_, method_}) field->DoNotTrack();
}

}  // namespace vellumark::desktop
