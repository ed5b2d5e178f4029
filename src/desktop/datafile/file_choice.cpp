#include "desktop/datafile/file_choice.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QStandardPaths>
#include <utility>

#include "core/base/write_over.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

QString Tr(const char* text) {
  return QCoreApplication::translate("FileExplorerForm", text);
}

QString FolderOfCurrent(const Session& session) {
  return session.DataFileName.empty() ? Q(session.ProgramFolder.string())
                                      : Q(std::filesystem::path(session.DataFileName).parent_path().string());
}

}  // namespace

QString ChooseFile(const FileChoice& choice, QWidget* owner) {
  QFileDialog dialog(owner, choice.title, choice.folder, choice.filter.section('|', 0, 0).trimmed());
  dialog.setAcceptMode(choice.newFile ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setFileMode(choice.onlyFolder ? QFileDialog::Directory
                     : choice.newFile ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog.setDefaultSuffix(choice.extension.mid(1));
  // A name that is taken leads to the next free one; nothing is ever written over.
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  return dialog.selectedFiles().front();
}

QString ChooseDocument(const FileChooser& choose, Prompt& prompt, FileChoice choice, QWidget* owner) {
  choice.folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  choice.newFile = true;
  QString file = choose(choice, owner);
  if (!file.isEmpty() && !MayWriteOver(prompt, U8(file))) return {};
  return file;
}

FileChoice ChoiceOfPdf() {
  return {.title = Tr("Save as PDF"), .filter = Tr("PDF (*.pdf)") + " | *.pdf", .extension = ".pdf", .folder = {}};
}

FileChoice ChoiceToOpen(const Session& session) {
  return {Tr("Open Vellumark Data File"), Tr("Vellumark Data File (*.vkd) | *.vkd"), ".vkd", FolderOfCurrent(session),
          false};
}

FileChoice ChoiceToMake(const Session& session) {
  return {Tr("Create New Vellumark Data File"), Tr("Vellumark Data File (*.vkd) | *.vkd"), ".vkd",
          FolderOfCurrent(session), true};
}

}  // namespace vellumark::desktop
