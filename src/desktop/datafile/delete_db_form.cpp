#include "desktop/datafile/delete_db_form.h"

#include "core/shell/database_menu.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

DeleteDBForm::DeleteDBForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "DeleteDBForm", tr("Delete Databases")) {
  Form form(*this);
  QLabel* warning =
      Paragraph(form, tr("WARNING - Deleting a database will permanently remove it from the Data File."), "lblWarning");
  warning->setProperty("role", "fault");
  form.Space();
  databases_ = form.CheckList("lstDatabases");
  databases_->setAccessibleName(tr("Databases"));
  QStringList names;
  for (const std::string& name : session.databaseList)
    if (name != session.CurrentDatabase) names += Q(name);
  databases_->SetItems(names);
  form.Wide(databases_, 1);
  QuietParagraph(form,
                 tr("NOTE - The active database %1 can't be selected for deletion.").arg(Q(session.CurrentDatabase)),
                 "lblNote");
  form.ButtonsWithoutDefault({delete_ = form.Button("cmdDelete", tr("&Delete")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(480);
  resize(520, 400);
  databases_->setFocus();
}

void DeleteDBForm::UpdateEnabled() {
  delete_->setEnabled(!databases_->Checked().isEmpty());
}

void DeleteDBForm::cmdDelete_Click() {
  std::vector<std::string> names;
  for (const QString& name : databases_->Checked()) names.push_back(U8(name));
  const auto deleted = DeleteDatabases(session, names);
  if (FormHost::Accepted(deleted) && *deleted) accept();
}

}  // namespace vellumark::desktop
