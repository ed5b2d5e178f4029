#include "desktop/datafile/file_explorer_form.h"

#include "core/shell/data_files.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

FileExplorerForm::FileExplorerForm(WindowList& windowList, QWidget* owner, StartupWindows& startup, FileChooser choose)
    : Dialog(windowList, owner, "FileExplorerForm", tr("Open Vellumark Data File")),
      startup_(startup),
      choose_(std::move(choose)) {}

void FileExplorerForm::OnOpen(const Arguments& arguments) {
  if (arguments.Has("OpenPath")) path_ = Q(arguments.Text("OpenPath"));
}

int FileExplorerForm::exec() {
  const QString path = path_.isEmpty() ? choose_(ChoiceToOpen(session), parentWidget()) : path_;
  if (path.isEmpty()) return Rejected;
  bool opened = false;
  WithFiles(*this, tr("Open Data File"), [&] {
    const auto answer = OpenOtherDataFile(session, U8(path), startup_);
    opened = FormHost::Accepted(answer) && *answer;
  });
  return opened || result.Has("exit") ? QDialog::Accepted : QDialog::Rejected;
}

NewFileExplorerForm::NewFileExplorerForm(WindowList& windowList, QWidget* owner, StartupWindows& startup,
                                         FileChooser choose)
    : Dialog(windowList, owner, "NewFileExplorerForm", tr("Create New Vellumark Data File")),
      startup_(startup),
      choose_(std::move(choose)) {}

int NewFileExplorerForm::exec() {
  const QString path = choose_(ChoiceToMake(session), parentWidget());
  if (path.isEmpty()) return Rejected;
  bool made = false;
  WithFiles(*this, tr("New Data File"), [&] { made = FormHost::Accepted(NewDataFile(session, U8(path), startup_)); });
  return made || result.Has("exit") ? QDialog::Accepted : QDialog::Rejected;
}

}  // namespace vellumark::desktop
