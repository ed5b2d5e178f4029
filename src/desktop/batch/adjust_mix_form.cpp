#include "desktop/batch/adjust_mix_form.h"

#include "desktop/kit/text.h"

namespace vellumark::desktop {

AdjustMixForm::AdjustMixForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "AdjustMixForm", tr(" Adjust ")) {
  Form form(*this);
  for (const QString& line : {tr("Enter 0 to remove it from the Batch."), tr("Enter an amount to use in the Batch."),
                              tr("Click [Maximum]  to use the largest amount possible.")})
    form.Wide(form.Hint(line));
  amount_ = form.Number("txtAmount", 3);
  form.Row(tr("&Amount"), {amount_, unit_ = form.Hint({}), form.Button("cmdMax", tr("Ma&ximum"), Qt::ALT | Qt::Key_X)});
  remove_ = form.Check("chkRemoveFromInventory", tr("Remove this color from from inventory."));
  form.Row({remove_});
  recycle_ = form.Button("cmdRecycle", tr("Recycle"), Qt::Key_F2);
  mix_ = form.Button("cmdMix", tr("Mix"), Qt::Key_F3);
  form.Row({recycle_});
  form.Row({form.Hint(tr("Recycle this ink with the amount specified, then recycle any other colors in inventory."))});
  form.Row({mix_});
  form.Row({form.Hint(tr("Recycle this ink with the amount specified. Do not recycle any more colors."))});
  form.ButtonsWithoutDefault({form.Button("cmdCancel", tr("Cancel"))});
}

void AdjustMixForm::OnOpen(const Arguments& arguments) {
  adjustment_ = arguments.Get<MixAdjustment>("Adjustment");
  setWindowTitle(Q(adjustment_.caption));
  amount_->SetText(Fixed(adjustment_.amount, 3));
  unit_->setText(Q(arguments.Has("Unit") ? arguments.Text("Unit") : std::string()));
  remove_->setVisible(adjustment_.offersRemoval);
  SetDefaultButton(adjustment_.recycleByDefault ? recycle_ : mix_);
}

void AdjustMixForm::cmdMax_Click() {
  amount_->SetText(Fixed(adjustment_.maximum, 3));
  FocusField("txtAmount");
}

void AdjustMixForm::Leave(bool recycle) {
  MixAdjustChoice choice{.amount = amount_->Text(),
                         .recycle = recycle,
                         .removeFromInventory = remove_->isVisibleTo(this) && remove_->isChecked()};
  if (!Accepted(ReadMixAmount(choice.amount))) return;
  result.Set("Choice", choice);
  accept();
}

}  // namespace vellumark::desktop
