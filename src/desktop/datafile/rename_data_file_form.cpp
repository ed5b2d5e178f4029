#include "desktop/datafile/rename_data_file_form.h"

#include "core/shell/data_files.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

RenameDataFileForm::RenameDataFileForm(WindowList& windowList, QWidget* owner, StartupWindows& startup)
    : Dialog(windowList, owner, "RenameDataFileForm", tr("Rename Data File")), startup_(startup) {
  const std::filesystem::path current(session.DataFileName);
  Form form(*this);
  Paragraph(form, tr("The current file is"));
  Paragraph(form, Q(current.string()), "lblCurrentFile");
  form.Space();
  form.Row(tr("New &name"), {name_ = form.Text("txtFileName"), form.Hint(".vkd")});
  form.Buttons({form.Button("cmdRename", tr("&Rename")), form.Button("cmdCancel", tr("Cancel"))});
  name_->SetWidthInChars(32);
  name_->SetText(current.stem().string());
  name_->selectAll();
  name_->setFocus();
  setMinimumWidth(520);
  FitHeight(*this);
}

int RenameDataFileForm::exec() {
  return FormHost::Accepted(CheckRenameDataFile(session)) ? Dialog::exec() : int{Rejected};
}

void RenameDataFileForm::cmdRename_Click() {
  bool renamed = false;
  WithFiles(*this, tr("File Name"),
            [&] { renamed = FormHost::Accepted(RenameDataFile(session, name_->Text(), startup_)); });
  if (renamed) accept();
}

}  // namespace vellumark::desktop
