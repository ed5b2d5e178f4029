#include "desktop/datafile/other_databases_form.h"

#include "core/colors/other_databases.h"
#include "desktop/datafile/change_database.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

OtherDatabasesForm::OtherDatabasesForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "OtherDatabasesForm", Q(kColorNotFound)) {
  Form form(*this);
  message_ = Paragraph(form, {}, "lblMsg");
  form.Space();
  form.Row(tr("&Database"), databases_ = form.Combo("cmbInDB"));
  databases_->setMinimumWidth(200);
  form.Buttons({change_ = form.Button("cmdChangeDB", tr("C&hange Database")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(480);
  databases_->setFocus();
}

void OtherDatabasesForm::OnOpen(const Arguments& arguments) {
  const std::string name = arguments.Text("Color_Name");
  const auto kind = arguments.Get<ColorKind>("Kind");
  message_->setText(Q(DisplayMsg(session, name, kind)));
  databases_->SetItems(FindInOtherDatabases(session, name, kind));
  if (databases_->count() > 0) databases_->setCurrentIndex(0);
  FitHeight(*this);
}

void OtherDatabasesForm::UpdateEnabled() {
  change_->setEnabled(databases_->currentIndex() >= 0);
}

void OtherDatabasesForm::cmdChangeDB_Click() {
  const std::string name = databases_->Text();
  if (!ChangeDatabaseOnScreen(windows, name)) return;
  result.Set("Database", name);
  accept();
}

}  // namespace vellumark::desktop
