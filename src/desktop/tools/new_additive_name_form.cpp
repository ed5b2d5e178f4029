#include "desktop/tools/new_additive_name_form.h"

#include "core/colors/additive_control.h"

namespace vellumark::desktop {
NewAdditiveNameForm::NewAdditiveNameForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "NewAdditiveNameForm", tr("Rename Additive Set")) {
  Form form(*this);
  form.Row(tr("Set"), oldName_ = form.Value("lblOldName", 1));
  form.Row(tr("&New name"), newName_ = form.Text("txtNewName", TextRule::UpperName(kSetNameLength)));
  newName_->Means("SetName");
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(440);
}

void NewAdditiveNameForm::OnOpen(const Arguments& arguments) {
  oldName_->SetText(arguments.Text("SetName"));
}

void NewAdditiveNameForm::cmdSave_Click() {
  const auto wait = Wait(WaitKind::WaitingForm_NoCancel, tr("Renaming Add Set / Updating formulas"));
  const Result<bool> renamed = RenameAdditiveSet(session, oldName_->Text(), newName_->Text());
  if (!Accepted(renamed)) return;
  if (!*renamed) {
    FocusField("txtNewName");
    return;
  }
  result.Set("NewName", ReadSetName(newName_->Text()));
  accept();
}

}  // namespace vellumark::desktop
