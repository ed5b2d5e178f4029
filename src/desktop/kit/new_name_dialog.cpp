#include "desktop/kit/new_name_dialog.h"

#include <utility>

#include "desktop/kit/text.h"

namespace vellumark::desktop {

NewNameDialog::NewNameDialog(WindowList& windowList, QWidget* owner, NewName what)
    : Dialog(windowList, owner, what.window, what.title), what_(std::move(what)) {
  Form form(*this);
  if (!what_.hint.isEmpty()) form.Wide(form.Hint(what_.hint));
  form.Row(what_.caption, oldName_ = form.Value("lblOldName", 1));
  form.Row(tr("&New name"), newName_ = form.Text("txtNewName", what_.rule));
  newName_->Means(what_.argument);
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(440);
}

void NewNameDialog::OnOpen(const Arguments& arguments) {
  given_ = arguments;
  if (arguments.Has("Title")) setWindowTitle(Q(arguments.Text("Title")));
  oldName_->SetText(arguments.Text(what_.argument));
  if (what_.proposed != nullptr) newName_->SetText(what_.proposed(oldName_->Text()));
}

void NewNameDialog::cmdSave_Click() {
  const auto renamed = what_.rename(*this, oldName_->Text(), newName_->Text());
  if (!Accepted(renamed)) return;
  if (renamed->IsEmpty()) {
    newName_->TakeFocus();
    return;
  }
  result = *renamed;
  accept();
}

}  // namespace vellumark::desktop
