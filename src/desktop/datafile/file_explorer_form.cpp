#include "desktop/datafile/file_explorer_form.h"

#include "core/shell/data_files.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

FileExplorerForm::FileExplorerForm(WindowList& windowList, QWidget* owner, StartupWindows& startup, FileChooser choose)
    : Dialog(windowList, owner, "FileExplorerForm", tr("Open Vellumark Data File")),
      startup_(startup),
      choose_(std::move(choose)) {}

int FileExplorerForm::exec() {
  const QString path = choose_(ChoiceToOpen(session), parentWidget());
  if (path.isEmpty()) return Rejected;
  bool opened = false;
  WithFiles(session, tr("Open Data File"), [&] {
    const auto result = OpenOtherDataFile(session, U8(path), startup_);
    opened = FormHost::Accepted(result) && *result;
  });
  return opened ? QDialog::Accepted : QDialog::Rejected;
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
  WithFiles(session, tr("New Data File"), [&] { made = FormHost::Accepted(NewDataFile(session, U8(path), startup_)); });
  return made ? QDialog::Accepted : QDialog::Rejected;
}

}  // namespace vellumark::desktop
