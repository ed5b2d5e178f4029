#include "desktop/datafile/update_data_file_form.h"

#include "core/datafile/lifecycle.h"
#include "core/shell/data_files.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

UpdateDataFileForm::UpdateDataFileForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "UpdateDataFileForm", tr("Update Data File")) {
  Form form(*this);
  form.Heading(tr("This data file is of an older version"));
  file_ = Paragraph(form, {}, "lblFile");
  version_ = Paragraph(form, {}, "lblFileVersion");
  form.Space();
  Paragraph(
      form,
      tr("This release cannot bring data files of the versions 2 to 39 up to date. The file stays as it is; please "
         "use another data file."),
      "lblCannotUpdate");
  copy_ = QuietParagraph(form, {}, "lblSafetyCopy");
  form.Buttons({form.Button("cmdClose", tr("&Close"))});
  setMinimumWidth(520);
}

void UpdateDataFileForm::OnOpen(const Arguments& arguments) {
  const std::filesystem::path path = arguments.Text("Path");
  file_->setText(Q(path.string()));
  version_->setText(tr("Its file version is %1; this program works with version %2.")
                        .arg(arguments.Number("FileVersion"))
                        .arg(kFileVersion));
  std::optional<std::string> fault;
  {
    const auto wait = Wait(WaitKind::WaitForm, tr("Making a safety copy ..."), true);
    fault = MakeSafetyCopy(path);
  }
  copy_->setText(fault ? tr("No safety copy could be made: %1").arg(Q(*fault))
                       : tr("A safety copy stands beside it: %1").arg(Q(SafetyCopyPath(path).string())));
  FitHeight(*this);
}

}  // namespace vellumark::desktop
