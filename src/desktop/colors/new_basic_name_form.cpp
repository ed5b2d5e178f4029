#include "desktop/colors/new_basic_name_form.h"

#include "core/colors/rename.h"

namespace vellumark::desktop {

NewBasicNameForm::NewBasicNameForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "NewBasicNameForm", tr("Rename Basic Color")) {
  Form form(*this);
  form.Row(tr("Name"), oldName_ = form.Value("lblOldName", 1));
  form.Row(tr("&New name"), newName_ = form.Text("txtNewName", TextRule::UpperName(session.NameLength)));
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(440);
}

void NewBasicNameForm::OnOpen(const Arguments& arguments) {
  oldName_->SetText(arguments.Text("Color_Name"));
}

void NewBasicNameForm::cmdSave_Click() {
  const Result<Renamed> renamed = RenameBasic(session, oldName_->Text(), newName_->Text());
  if (!Accepted(renamed)) return;
  if (!renamed->done) {
    FocusField("txtNewName");
    return;
  }
  result.Set("NewName", renamed->name).Set("Merged", renamed->merged);
  accept();
}

}  // namespace vellumark::desktop
