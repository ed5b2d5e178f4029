#include "desktop/colors/new_name_form.h"

namespace vellumark::desktop {

NewNameForm::NewNameForm(WindowList& windowList, QWidget* owner, const QString& name, const QString& title)
    : Dialog(windowList, owner, name, title) {
  Form form(*this);
  form.Row(tr("Name"), oldName_ = form.Value("lblOldName", 1));
  form.Row(tr("&New name"), newName_ = form.Text("txtNewName", TextRule::UpperName(session.NameLength)));
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(440);
}

void NewNameForm::OnOpen(const Arguments& arguments) {
  oldName_->SetText(arguments.Text("Color_Name"));
}

void NewNameForm::cmdSave_Click() {
  const Result<Renamed> renamed = Rename(oldName_->Text(), newName_->Text());
  if (!Accepted(renamed)) return;
  if (!renamed->done) {
    FocusField("txtNewName");
    return;
  }
  result.Set("NewName", renamed->name).Set("Merged", renamed->merged);
  accept();
}

}  // namespace vellumark::desktop
