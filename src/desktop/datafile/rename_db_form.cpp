#include "desktop/datafile/rename_db_form.h"

#include "core/datafile/databases.h"
#include "core/shell/database_menu.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

RenameDBForm::RenameDBForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "RenameDBForm", tr("Rename Database")) {
  Form form(*this);
  form.Wide(form.Label("lblCurrentDB", tr("The current Database name is %1").arg(Q(session.CurrentDatabase))));
  form.Space();
  name_ = form.Text("txtDBName", TextRule::DatabaseName(static_cast<int>(kDatabaseNameLength)));
  name_->SetWidthInChars(static_cast<int>(kDatabaseNameLength) + 2);
  form.Row(tr("New &name"), {name_, form.Hint(tr("(15 characters maximum)"))});
  form.Buttons({form.Button("cmdRename", tr("&Rename")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(480);
  name_->setFocus();
}

void RenameDBForm::cmdRename_Click() {
  const auto renamed = RenameDatabase(session, session.CurrentDatabase, name_->Text());
  if (!FormHost::Accepted(renamed)) return;
  result.Set("Database", *renamed);
  accept();
}

}  // namespace vellumark::desktop
