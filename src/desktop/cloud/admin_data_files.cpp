#include "desktop/cloud/admin_data_files.h"

#include "core/shell/data_files.h"
#include "desktop/cloud/cloud_works.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

QString NameOf(const SharedAccount& account) {
  return account.Facility.empty() ? Q(account.AcctNum) : Q(account.AcctNum + " - " + account.Facility);
}

// The accounts that an administrator works with; nothing after what stands in the way was told.
std::optional<std::vector<SharedAccount>> Accounts(Dialog& dialog) {
  std::optional<std::vector<SharedAccount>> accounts;
  WithFiles(dialog, dialog.windowTitle(), [&] {
    if (!dialog.FormHost::Accepted(RequireCloudAdmin(ReadCloudSettings(dialog.session)))) return;
    if (const auto shared = RequireSharedAccounts(dialog.session); dialog.FormHost::Accepted(shared)) accounts = *shared;
  });
  return accounts;
}

}  // namespace

CloudUtilityDataFileManager::CloudUtilityDataFileManager(WindowList& windowList, QWidget* owner, StartupWindows& startup)
    : Dialog(windowList, owner, "CloudUtilityDataFileManager", Q(RowOf(CloudTask::CloudUtilityDataFileManager).title)),
      startup_(startup) {
  Form form(*this);
  Paragraph(form, tr("Choose the account whose latest backup is to be fetched. It is opened here in a folder of its own; the "
                     "account keeps what it has."));
  list_ = new QListWidget;
  list_->setObjectName("lstAccounts");
  list_->setAccessibleName(tr("Accounts"));
  form.Wide(list_, 1);
  form.Buttons({continue_ = form.Button("cmdContinue", tr("C&ontinue")), form.Button("cmdCancel", tr("Cancel"))});
  connect(list_, &QListWidget::currentRowChanged, this, [this] { Changed(); });
  resize(560, 420);
}

int CloudUtilityDataFileManager::exec() {
  const auto accounts = Accounts(*this);
  if (!accounts) return Rejected;
  accounts_ = *accounts;
  for (const SharedAccount& account : accounts_) list_->addItem(NameOf(account));
  list_->setCurrentRow(0);
  list_->setFocus();
  return Dialog::exec();
}

void CloudUtilityDataFileManager::UpdateEnabled() {
  continue_->setEnabled(list_->currentRow() >= 0);
}

void CloudUtilityDataFileManager::cmdContinue_Click() {
  const SharedAccount& account = accounts_.at(static_cast<std::size_t>(list_->currentRow()));
  const auto fetched = std::make_shared<Fetched>();
  if (!windows.RunDialog("Cloud_GetPutData_Form", {{"Task", CloudTask::CloudUtilityDataFileManager},
                                                   {"Work", FetchDataFileOf(account.AcctNum, fetched)}}))
    return;
  if (!windows.CloseChildWindows()) return;
  WithFiles(*this, windowTitle(), [&] {
    if (FormHost::Accepted(OpenOtherDataFile(session, fetched->dataFile, startup_))) accept();
  });
}

CloudUtilitiesDataFileUpload_SelectUsers::CloudUtilitiesDataFileUpload_SelectUsers(WindowList& windowList, QWidget* owner,
                                                                                   FileChooser choose)
    : Dialog(windowList, owner, "CloudUtilitiesDataFileUpload_SelectUsers",
             Q(RowOf(CloudTask::CloudUtilitiesDataFileUpload_SelectUsers).title)),
      choose_(std::move(choose)) {
  Form form(*this);
  form.Row(tr("Data &File"), {file_ = form.Text("txtFile"), form.Button("cmdBrowse", tr("&Browse ..."))});
  file_->setMinimumWidth(360);
  file_->DoNotTrack();
  Paragraph(form, tr("Check box to select Cloud Account(s)."));
  list_ = form.CheckList("lstAccounts");
  list_->setAccessibleName(tr("Accounts"));
  list_->DoNotTrack();
  form.Wide(list_, 1);
  QuietParagraph(form, tr("Press Continue to send Data File to user(s) Backup folder."));
  form.Buttons({form.Button("cmdContinue", tr("C&ontinue")), form.Button("cmdCancel", tr("Cancel"))});
  resize(640, 480);
}

int CloudUtilitiesDataFileUpload_SelectUsers::exec() {
  const auto accounts = Accounts(*this);
  if (!accounts) return Rejected;
  accounts_ = *accounts;
  QStringList names;
  for (const SharedAccount& account : accounts_) names += NameOf(account);
  list_->SetItems(names);
  const std::string known = ReadCloudSettings(session).AdminDefaultDF;
  file_->SetText(known.empty() ? session.DataFileName : known);
  return Dialog::exec();
}

void CloudUtilitiesDataFileUpload_SelectUsers::cmdBrowse_Click() {
  if (const QString file = choose_(ChoiceToOpen(session), this); !file.isEmpty()) file_->SetText(U8(file));
}

void CloudUtilitiesDataFileUpload_SelectUsers::cmdContinue_Click() {
  std::vector<std::string> chosen;
  for (int row = 0; row < list_->count(); ++row)
    if (list_->IsChecked(row)) chosen.push_back(accounts_.at(static_cast<std::size_t>(row)).AcctNum);
  if (chosen.empty()) return ShowRefusal({U8(windowTitle()), "Select a User account.", "lstAccounts"});
  const CloudTask task = chosen.size() == 1 ? CloudTask::CloudUtilitiesDataFileUpload
                                            : CloudTask::CloudUtilitiesDataFileUpload_SelectUsers;
  if (windows.RunDialog("Cloud_GetPutData_Form", {{"Task", task}, {"Work", SendDataFileTo(file_->Text(), chosen)}})) accept();
}

OpenCloudAdminDefault_DF::OpenCloudAdminDefault_DF(WindowList& windowList, QWidget* owner, StartupWindows& startup)
    : Dialog(windowList, owner, "OpenCloudAdminDefault_DF", tr("Open Default Data File")), startup_(startup) {}

int OpenCloudAdminDefault_DF::exec() {
  bool opened = false;
  WithFiles(*this, windowTitle(), [&] {
    const auto file = AdminDefaultDataFile(session);
    opened = FormHost::Accepted(file) && windows.CloseChildWindows() &&
             FormHost::Accepted(OpenOtherDataFile(session, *file, startup_));
  });
  return opened || result.Has("exit") ? QDialog::Accepted : QDialog::Rejected;
}

}  // namespace vellumark::desktop
