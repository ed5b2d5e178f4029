#include "desktop/cloud/account_settings_form.h"

#include <QHeaderView>
#include <QTabWidget>
#include <QTableWidget>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/settings/support_files.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/discard.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/tall_page.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kLongText = 200;
constexpr int kAccountLength = 40;
constexpr int kPortDigits = 5;
constexpr int kFieldWidth = 240;

// Nothing is chosen until somebody has.
std::optional<bool> ChosenOf(const ComboField& combo) {
  if (combo.currentIndex() < 0) return std::nullopt;
  return combo.currentIndex() == 0;
}

void Choose(ComboField& combo, const std::optional<bool>& value) {
  combo.setCurrentIndex(!value ? -1 : *value ? 0 : 1);
}

bool IsOfLogin(std::string CloudSettings::*member) {
  return member == &CloudSettings::CloudHostUserName || member == &CloudSettings::CloudHostPassword ||
         member == &CloudSettings::AdminUsername || member == &CloudSettings::AdminPassword;
}

const char* MarkOf(bool good, const std::string& line) {
  if (line.find("ot performed") != std::string::npos) return "information";
  return good ? "checked" : "warning";
}

}  // namespace

CloudAccountSettings::CloudAccountSettings(WindowList& windowList, QWidget* owner, CloudParts parts)
    : Dialog(windowList, owner, "CloudAccountSettings", tr("Cloud Settings")), parts_(std::move(parts)) {
  Form whole(*this);
  Form form = TallPart(*this, whole);
  TabSet tabs = form.Tabs("tabCloud");
  tabs_ = tabs.Widget();
  BuildAccount(tabs.Page(tr("&Account"), "tabAccount"));
  BuildShares(tabs.Page(tr("S&hared Accounts"), "tabShares"));
  BuildTest(tabs.Page(tr("&Test"), "tabTest"));
  BuildAdmin(tabs.Page(tr("A&dministrator"), "tabAdmin"));
  whole.Buttons({save_ = form.Button("cmdSave", tr("&Save")), form.Button("cmdClose", tr("Close"))});
  FitScreen(*this, {880, 664});
}

void CloudAccountSettings::BuildAccount(Form form) {
  std::vector<Form> sides = form.Columns(2);
  using C = CloudSettings;
  const auto text = [this](Form& side, TextField* field, const QString& label, std::string C::*member) {
    field->setMinimumWidth(kFieldWidth);
    side.Row(label, field);
    texts_.emplace_back(field, member);
    return field;
  };
  Form& account = sides[0];
  account.Heading(tr("Account"));
  text(account, account.Text("Facility", TextRule::Any(kLongText)), tr("&Facility Name"), &C::Facility);
  text(account, account.Text("AcctNum", TextRule::Any(kAccountLength)), tr("Account &Number"), &C::AcctNum);
  account.Heading(tr("Host"));
  text(account, account.Text("CloudHost", TextRule::Any(kLongText)), tr("Cloud &Host Name"), &C::CloudHost);
  text(account, account.Text("CloudHostUserName", TextRule::Any(kLongText)), tr("&User Name"), &C::CloudHostUserName);
  text(account, account.Password("CloudHostPassword", kLongText), tr("Pass&word"), &C::CloudHostPassword);
  text(account, account.Text("RemoteDirectory", TextRule::Any(kLongText)), tr("&Remote Directory"), &C::RemoteDirectory)
      ->setToolTip(tr("The folder of the account at the host stands in this one"));

  sides[1].Heading(tr("Connection"));
  const QStringList yesNo{tr("Yes"), tr("No")};
  const auto choice = [&](const char* name, const QString& label, std::optional<bool> C::*member) {
    ComboField* combo = sides[1].Combo(name, yesNo);
    combo->setCurrentIndex(-1);
    sides[1].Row(label, combo);
    choices_.emplace_back(combo, member);
  };
  choice("Passive", tr("Passi&ve"), &C::Passive);
  choice("TLS", tr("T&LS"), &C::TLS);
  choice("ssl", tr("SS&L"), &C::ssl);
  port_ = sides[1].Text("Port", TextRule::Digits(kPortDigits));
  port_->SetWidthInChars(kPortDigits + 2);
  sides[1].Row(tr("&Port Number"), port_);
  sides[1].Heading(tr("Certificate"));
  certificate_ = sides[1].Text("CertFile", TextRule::Any(kLongText));
  certificate_->setMinimumWidth(160);
  certificate_->setPlaceholderText(tr("those that this computer knows"));
  texts_.emplace_back(certificate_, &C::CertFile);
  sides[1].Row(tr("&Certificate File"), {certificate_, sides[1].Button("cmdBrowseCert", tr("&Browse ..."))});
  checks_ = {{sides[1].Check("SSL_Verify", tr("The certificate of the host must be valid")), &C::SSL_Verify},
             {sides[1].Check("ClearControlChannel", tr("Clear control channel after the login")), &C::ClearControlChannel}};
  for (const auto& [check, member] : checks_) sides[1].Wide(check);
  for (Form& side : sides) side.Stretch();
  form.ButtonsWithoutDefault({form.Button("cmdImport", tr("&Import Settings ..."))});
}

void CloudAccountSettings::BuildShares(Form form) {
  Paragraph(form, tr("Formulas, Designs and inventory can be fetched from the accounts that stand here."));
  shareList_ = new QTableWidget(0, 2);
  shareList_->setObjectName("lstShares");
  shareList_->setAccessibleName(tr("Shared Accounts"));
  shareList_->setHorizontalHeaderLabels({tr("Account Number"), tr("Facility")});
  shareList_->horizontalHeader()->setStretchLastSection(true);
  shareList_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  shareList_->setColumnWidth(0, kFieldWidth);
  shareList_->verticalHeader()->hide();
  shareList_->verticalHeader()->setDefaultSectionSize(space::kRowHeight);
  shareList_->setShowGrid(false);
  shareList_->setTabKeyNavigation(false);
  connect(shareList_, &QTableWidget::itemChanged, this, [this] { Changed(); });
  connect(shareList_, &QTableWidget::currentCellChanged, this, [this] { Changed(); });
  form.Wide(shareList_, 1);
  form.ButtonsWithoutDefault({form.Button("cmdAddShare", tr("A&dd")), removeShare_ = form.Button("cmdRemoveShare", tr("&Remove")),
                              form.Button("cmdImportShares", tr("&Import ...")),
                              fetchShares_ = form.Button("cmdFetchShares", tr("&Get from Cloud")),
                              saveShares_ = form.Button("cmdSaveShares", tr("Sa&ve Accounts"))});
}

void CloudAccountSettings::BuildTest(Form form) {
  Paragraph(form, tr("Tests the settings on the Account tab, saved or not. Nothing is written at the host."));
  results_ = new QListWidget;
  results_->setObjectName("lstTest");
  results_->setAccessibleName(tr("Results"));
  results_->setWordWrap(true);
  results_->setMaximumHeight(4 * space::kRowHeight + space::kUnit);
  form.Wide(results_);
  form.Wide(form.Hint(tr("The certificate that the host showed")));
  certificateFields_ = new QListWidget;
  certificateFields_->setObjectName("lstCertificate");
  certificateFields_->setAccessibleName(tr("The certificate that the host showed"));
  certificateFields_->setMinimumHeight(2 * space::kRowHeight);
  form.Wide(certificateFields_, 1);
  testing_ = form.Label("lblUpdateInfo");
  form.Wide(testing_);
  QProgressBar* meter = MakeMeter("pbMeter");
  form.Wide(meter);
  progress_.emplace(*testing_, *meter);
  form.ButtonsWithoutDefault({test_ = form.Button("cmdTest", tr("&Test Cloud Settings"), Qt::Key_F5),
                              cancelTest_ = form.Button("cmdCancelTest", tr("Ca&ncel the test")),
                              exportLog_ = form.Button("cmdExportLog", tr("&Export Log"))});
}

void CloudAccountSettings::BuildAdmin(Form form) {
  Paragraph(form, tr("The login of the administrator of the accounts. It is left empty everywhere else."));
  TextField* user = form.Text("AdminUsername", TextRule::Any(kLongText));
  TextField* password = form.Password("AdminPassword", kLongText);
  for (TextField* field : {user, password}) field->setMinimumWidth(kFieldWidth);
  form.Row(tr("Administrator &User Name"), user);
  form.Row(tr("Administrator Pass&word"), password);
  texts_.emplace_back(user, &CloudSettings::AdminUsername);
  texts_.emplace_back(password, &CloudSettings::AdminPassword);
  form.Heading(tr("Default Data File"));
  defaultFile_ = Paragraph(form, {}, "lblAdminDefaultDF");
  form.ButtonsWithoutDefault({defaultDF_ = form.Button("cmdDefaultDF", tr("Choose &Default Data File ..."))});
  form.Stretch();
}

void CloudAccountSettings::OnOpen(const Arguments& arguments) {
  stored_ = ReadCloudSettings(session);
  shares_ = ReadSharedAccounts(session);
  Show(stored_);
  ShowShares();
  texts_.front().first->setFocus();
  if (arguments.Has("Page") && arguments.Text("Page") == "Shares") tabs_->setCurrentIndex(1);
}

void CloudAccountSettings::Show(const CloudSettings& settings) {
  for (const auto& [field, member] : texts_) field->SetText(settings.*member);
  for (const auto& [combo, member] : choices_) Choose(*combo, settings.*member);
  for (const auto& [check, member] : checks_) check->setChecked(settings.*member);
  port_->SetText(settings.Port ? std::to_string(*settings.Port) : std::string());
  defaultFile_->setText(settings.AdminDefaultDF.empty() ? tr("None has been chosen.") : Q(settings.AdminDefaultDF));
}

CloudSettings CloudAccountSettings::Typed() const {
  CloudSettings settings = stored_;
  // A login is what was typed, to the last blank.
  for (const auto& [field, member] : texts_)
    settings.*member = IsOfLogin(member) ? field->Text() : Trim(field->Text());
  for (const auto& [combo, member] : choices_) settings.*member = ChosenOf(*combo);
  for (const auto& [check, member] : checks_) settings.*member = check->isChecked();
  settings.Port = port_->text().isEmpty() ? std::nullopt : std::optional<int>(port_->text().toInt());
  if (settings.Port && (*settings.Port < 1 || *settings.Port > 65535)) settings.Port.reset();
  return settings;
}

void CloudAccountSettings::UpdateEnabled() {
  const bool running = progress_->IsRunning();
  test_->setEnabled(!running);
  cancelTest_->setVisible(running);
  exportLog_->setVisible(!running && results_->count() > 0);
  save_->setEnabled(!running);
  removeShare_->setEnabled(shareList_->currentRow() >= 0);
  saveShares_->setEnabled(SharesAreDirty());
  fetchShares_->setEnabled(stored_.Configured() && windows.Knows("Cloud_GetPutData_Form"));
  defaultDF_->setEnabled(stored_.IsAdmin());
}

bool CloudAccountSettings::MayClose() {
  if (progress_->IsRunning()) {
    progress_->Cancel();
    return false;
  }
  return (!IsDirty() && !SharesAreDirty()) || MayDiscard(session);
}

void CloudAccountSettings::cmdSave_Click() {
  const CloudSettings settings = Typed();
  WithFiles(*this, windowTitle(), [&] {
    if (!Accepted(SaveCloudSettings(session, settings))) return;
    stored_ = ReadCloudSettings(session);
    MarkClean();
    Changed();
  });
}

void CloudAccountSettings::cmdImport_Click() {
  const QString file =
      parts_.choose({tr("Import Cloud Settings From ..."), "VKCloudSettings.txt (*.txt) | *.txt", ".txt", {}}, this);
  if (file.isEmpty()) return;
  WithFiles(*this, windowTitle(), [&] {
    const auto settings = ImportCloudSettings(Typed(), U8(file), Typed().AcctNum);
    if (Accepted(settings)) Show(*settings);
  });
}

void CloudAccountSettings::cmdBrowseCert_Click() {
  const FileChoice choice{tr("Certificate File"), tr("Certificates (*.pem *.crt *.cer *.der)") + " | *.pem", ".pem",
                          Q(DataFolders(session.DataFolder).cloudCerts.string())};
  if (const QString file = parts_.choose(choice, this); !file.isEmpty()) certificate_->SetText(U8(file));
}

// ---- The test

void CloudAccountSettings::cmdTest_Click() {
  const CloudSettings settings = Typed();
  if (const auto good = CheckCloudSettings(settings); !Accepted(good)) return;
  results_->clear();
  certificateFields_->clear();
  const auto line = parts_.connect(session.clock);
  progress_->Start();
  Changed();
  WithFiles(*this, windowTitle(), [&] {
    CloudDesk desk{session, *line, *progress_};
    ShowResults(TestCloudSettings(desk, settings));
  });
  progress_->Finish();
  testing_->clear();
  Changed();
}

void CloudAccountSettings::ShowResults(const ConnectionTest& test) {
  using Result = std::pair<bool, std::string>;
  for (const auto& [good, line] : {Result{test.host, test.hostLine}, Result{test.certificate, test.certificateLine},
                                   Result{test.login, test.loginLine}, Result{test.folder, test.folderLine}})
    results_->addItem(new QListWidgetItem(Icon(MarkOf(good, line)), Q(line)));
  for (const std::string& field : test.certificateFields) certificateFields_->addItem(Q(field));
}

void CloudAccountSettings::cmdCancelTest_Click() {
  progress_->Cancel();
}

void CloudAccountSettings::cmdExportLog_Click() {
  WithFiles(*this, windowTitle(), [&] { ExportConnectionTest(session, parts_.logPlace().folder); });
}

// ---- Who shares

void CloudAccountSettings::ShowShares() {
  const QSignalBlocker quiet(shareList_);
  shareList_->setRowCount(static_cast<int>(shares_.size()));
  for (int row = 0; row < shareList_->rowCount(); ++row) {
    const SharedAccount& account = shares_[static_cast<std::size_t>(row)];
    shareList_->setItem(row, 0, new QTableWidgetItem(Q(account.AcctNum)));
    shareList_->setItem(row, 1, new QTableWidgetItem(Q(account.Facility)));
  }
}

std::vector<SharedAccount> CloudAccountSettings::TypedShares() const {
  std::vector<SharedAccount> accounts;
  const auto text = [this](int row, int column) {
    const QTableWidgetItem* item = shareList_->item(row, column);
    return item == nullptr ? std::string() : Trim(U8(item->text()));
  };
  for (int row = 0; row < shareList_->rowCount(); ++row) {
    SharedAccount account{text(row, 0), text(row, 1)};
    if (!account.AcctNum.empty() || !account.Facility.empty()) accounts.push_back(std::move(account));
  }
  return accounts;
}

void CloudAccountSettings::cmdAddShare_Click() {
  const int row = shareList_->rowCount();
  shareList_->insertRow(row);
  shareList_->setItem(row, 0, new QTableWidgetItem);
  shareList_->setItem(row, 1, new QTableWidgetItem);
  shareList_->setCurrentCell(row, 0);
  shareList_->setFocus();
  shareList_->editItem(shareList_->item(row, 0));
}

void CloudAccountSettings::cmdRemoveShare_Click() {
  shareList_->removeRow(shareList_->currentRow());
  Changed();
}

void CloudAccountSettings::cmdSaveShares_Click() {
  WithFiles(*this, windowTitle(), [&] {
    if (Accepted(SaveSharedAccounts(session, TypedShares()))) shares_ = ReadSharedAccounts(session);
    ShowShares();
    Changed();
  });
}

void CloudAccountSettings::cmdImportShares_Click() {
  const QString file = parts_.choose(
      {tr("Import Sharing Cloud Accounts From ..."), "VKCloudShareUsers.txt (*.txt) | *.txt", ".txt", {}}, this);
  if (file.isEmpty()) return;
  WithFiles(*this, windowTitle(), [&] {
    if (!Accepted(ImportSharedAccounts(session, U8(file)))) return;
    shares_ = ReadSharedAccounts(session);
    ShowShares();
    Changed();
  });
}

void CloudAccountSettings::cmdFetchShares_Click() {
  windows.RunDialog("Cloud_GetPutData_Form", {{"Task", CloudTask::ImportSharedUsers}});
  shares_ = ReadSharedAccounts(session);
  ShowShares();
  Changed();
}

// ---- The administrator

void CloudAccountSettings::cmdDefaultDF_Click() {
  FileChoice choice = ChoiceToOpen(session);
  choice.title = tr("Default Data File");
  const QString file = parts_.choose(choice, this);
  if (file.isEmpty()) return;
  WithFiles(*this, windowTitle(), [&] {
    if (!Accepted(StoreAdminDefaultDataFile(session, U8(file)))) return;
    stored_.AdminDefaultDF = ReadCloudSettings(session).AdminDefaultDF;
    defaultFile_->setText(Q(stored_.AdminDefaultDF));
  });
}

}  // namespace vellumark::desktop
