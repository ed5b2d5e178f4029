#include "desktop/cloud/manage_file_list.h"

#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

CloudManageFileList::CloudManageFileList(WindowList& windowList, QWidget* owner, ManagedFiles managed)
    : Dialog(windowList, owner, Q(managed.window), managed.title),
      managed_(std::move(managed)),
      rows_(std::make_shared<FileRows>()) {
  Form form(*this);
  QuietParagraph(form, managed_.hint);
  Grid* grid = form.Table("fgFiles");
  grid->setAccessibleName(managed_.title);
  list_ = new CheckedList(*grid, rows_, FileRows::Columns(managed_.note));
  grid->SetEmptyText(tr("None are on file"));
  form.Wide(grid, 1);
  form.Wide(count_ = form.Hint({}, "lblCount"));
  form.ButtonsWithoutDefault({form.Button("cmdClose", tr("Close")), form.Button("cmdRefresh", tr("&Refresh"), Qt::Key_F5),
                              selectAll_ = form.Button("cmdSelectAll", tr("Select &All")),
                              delete_ = form.Button("cmdDelete", tr("Delete"))});
  connect(list_, &CheckedList::CheckedChanged, this, [this] { Changed(); });
  resize(840, 480);
}

int CloudManageFileList::exec() {
  bool may = false;
  WithFiles(*this, windowTitle(), [&] { may = FormHost::Accepted(RequireCloud(session)) && Retrieve(); });
  if (!may) return Rejected;
  list_->List().View().setFocus();
  return Dialog::exec();
}

bool CloudManageFileList::Retrieve() {
  if (!windows.RunDialog(managed_.splash, {{"Work", managed_.list(rows_->files)}})) return false;
  ShowFiles();
  return true;
}

void CloudManageFileList::ShowFiles() {
  rows_->Take();
  list_->Refresh();
  Changed();
}

void CloudManageFileList::UpdateEnabled() {
  const std::size_t checked = rows_->CheckedRows().size();
  count_->setText(tr("%1 on file, %2 checked").arg(Count(static_cast<std::size_t>(rows_->Rows()))).arg(checked));
  delete_->setEnabled(checked > 0);
  selectAll_->setEnabled(rows_->Rows() > 0);
}

void CloudManageFileList::cmdSelectAll_Click() {
  list_->CheckShown(true);
}

void CloudManageFileList::cmdRefresh_Click() {
  Retrieve();
}

void CloudManageFileList::cmdDelete_Click() {
  const std::vector<CloudFile> files = rows_->CheckedFiles();
  if (!session.prompt.Ask(U8(managed_.title),
                          U8((files.size() == 1 ? tr("Delete %1 from %2? It cannot be brought back.")
                                                 : tr("Delete %1 from %2? They cannot be brought back."))
                                 .arg(Count(files.size()), managed_.where)),
                          Answer::No))
    return;
  windows.RunDialog("Cloud_GetPutData_Form", {{"Task", managed_.task}, {"Work", managed_.remove(files)}});
  Retrieve();
}

}  // namespace vellumark::desktop
