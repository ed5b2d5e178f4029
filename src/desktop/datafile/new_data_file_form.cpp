#include "desktop/datafile/new_data_file_form.h"

#include <QTabBar>
#include <QTabWidget>

#include "core/cloud/cloud_settings.h"
#include "core/shell/data_files.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

/// What opening a file asks, while this window is up: what the file check has to say is shown here.
class NewDataFileForm::WindowsHere final : public OpeningWindows {
 public:
  explicit WindowsHere(NewDataFileForm& form) : form_(form) {}
  void ShowNewDataFile(const std::string& startupMessage) override {
    form_.ShowStartupMessage(startupMessage);
    turnedAway = true;
  }
  std::optional<std::filesystem::path> ShowUpdateDataFile(const std::filesystem::path& path, int fileVersion) override {
    return form_.startup_.ShowUpdateDataFile(path, fileVersion);
  }
  void Login(Session& session) override { form_.startup_.Login(session); }
  void SetCaption(const std::string& caption) override { form_.startup_.SetCaption(caption); }
  void SuggestArchive(Session& session) override { form_.startup_.SuggestArchive(session); }
  void ShutdownBackup(Session& session, const std::string& label) override {
    form_.startup_.ShutdownBackup(session, label);
  }

  bool turnedAway = false;

 private:
  NewDataFileForm& form_;
};

NewDataFileForm::NewDataFileForm(WindowList& windowList, QWidget* owner, StartupWindows& startup, FileChooser choose)
    : Dialog(windowList, owner, "NewDataFileForm", tr("Data File")), startup_(startup), choose_(std::move(choose)) {
  Form form(*this);
  TabSet tabs = form.Tabs("TabDataFile");
  tabs_ = tabs.Widget();
  BuildInformation(tabs.Page(tr("&Information"), "TabInformation"));
  BuildCreate(tabs.Page(tr("&Create"), "TabCreate"));
  BuildOpen(tabs.Page(tr("&Open"), "TabOpen"));
  BuildLater(tabs);
  form.ButtonsWithoutDefault({form.Button("cmdExit", tr("E&xit"))});
  setMinimumWidth(560);
  resize(640, 480);
  tabs_->tabBar()->setFocus();
}

void NewDataFileForm::BuildInformation(Form page) {
  message_ = Paragraph(page, {}, "lblStartupMessage");
  message_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  page.Heading(tr("Standard User:"));
  for (const char* advice :
       {QT_TR_NOOP("Check local drive connections (USB Flash Drives)."), QT_TR_NOOP("Check network drive connections."),
        QT_TR_NOOP("Create - make a new data file."), QT_TR_NOOP("Open - select a specific file to use.")})
    Paragraph(page, tr(advice));
  page.Stretch();
}

void NewDataFileForm::BuildCreate(Form page) {
  page.Heading(tr("Make a new data file"));
  Paragraph(page, tr("A new data file, \"Vellumark Data.vkd\", is made in the folder"));
  Paragraph(page, Q(session.ProgramFolder.string()), "lblProgramFolder");
  ButtonLine(page, {page.Button("cmdCreate", tr("Create &New Data File"))});
  page.Stretch();
}

void NewDataFileForm::BuildOpen(Form page) {
  page.Heading(tr("Use a data file that is there"));
  Paragraph(page, tr("Select a specific file, or look for data files on the whole drive."));
  ButtonLine(page,
             {page.Button("cmdOpen", tr("O&pen Data File ...")), page.Button("cmdSearch", tr("&Search Drive ..."))});
  page.Stretch();
}

void NewDataFileForm::BuildLater(TabSet& tabs) {
  const auto off = [](Form& page, const char* name, const QString& text) {
    CommandButton* button = page.Button(name, text, [] {});
    button->setEnabled(false);
    return button;
  };
  Form restore = tabs.Page(tr("&Restore"), "TabRestore");
  restore.Heading(tr("Restore a data file from a backup"));
  Paragraph(restore, tr("The backup takes the place of the data file that cannot be used; what is left of that is kept."));
  CommandButton* fromFile = restore.Button("cmdRestore", tr("From &File Location ..."));
  CommandButton* automatic = restore.Button("cmdAutoBackup", tr("From &Automatic Backup ..."));
  fromFile->setEnabled(windows.Knows("RestoreFileLocationForm"));
  automatic->setEnabled(windows.Knows("RestoreAutomaticForm") && !session.DataFileName.empty());
  CommandButton* fromCloud = restore.Button("cmdRestoreCloud", tr("From &Cloud ..."));
  fromCloud->setEnabled(windows.Knows("CloudRestoreFileList") && !session.DataFileName.empty());
  ButtonLine(restore, {fromFile, automatic, fromCloud});
  restore.Heading(tr("Repair a data file that is damaged"));
  Paragraph(restore, tr("What can still be read of it is put into a new file in its place; a copy of it is kept."));
  CommandButton* repair = restore.Button("cmdRepair", tr("R&epair Data File"));
  repair->setEnabled(windows.Knows("RepairForm") && !session.DataFileName.empty());
  ButtonLine(restore, {repair});
  restore.Stretch();
  Form upgrade = tabs.Page(tr("&Upgrade"), "TabUpgrade");
  upgrade.Heading(tr("Version 1.3, 1.4 or 2.0 Users Only"));
  Paragraph(upgrade, tr("Data of these versions cannot be brought over: how their files BASICS.ASC and MIXES.ASC are laid out is "
                        "not known, and the converter that writes them, DOSCONV.EXE, is a program of its own."));
  ButtonLine(upgrade, {off(upgrade, "cmdUpgrade", tr("Locate DOS Files"))});
  upgrade.Stretch();
  if (!windows.Knows("OpenCloudAdminDefault_DF") || !IsCloudAdmin()) return;
  Form admin = tabs.Page(tr("C&loud Administrator"), "TabCloudAdmin");
  admin.Heading(tr("Open the data file of the administrator"));
  Paragraph(admin, tr("It is the one that Cloud Settings name as the Default Data File."));
  ButtonLine(admin, {admin.Button("cmdCloudAdminDefault_DF", tr("Open &Default Data File"))});
  admin.Stretch();
}

// The account of an administrator; one whose settings cannot be read is none here.
bool NewDataFileForm::IsCloudAdmin() {
  try {
    return ReadCloudSettings(session).IsAdmin();
  } catch (const Failure& failure) {
    message_->setToolTip(Q(failure.subject) + ": " + Q(failure.cause));
    return false;
  }
}

void NewDataFileForm::OnOpen(const Arguments& arguments) {
  ShowStartupMessage(arguments.Has("StartupMessage") ? arguments.Text("StartupMessage") : std::string());
}

void NewDataFileForm::ShowStartupMessage(const std::string& text) {
  message_->setText(Q(text));
  message_->setVisible(!text.empty());
  tabs_->setCurrentIndex(0);
  tabs_->tabBar()->setFocus();
}

void NewDataFileForm::Try(const QString& title, const std::function<void(OpeningWindows&)>& act) {
  WindowsHere here(*this);
  if (!WithFiles(*this, title, [&] { act(here); })) return;
  if (session.DataFileOpen && !here.turnedAway) accept();
}

void NewDataFileForm::cmdCreate_Click() {
  Try(tr("New Data File"), [&](OpeningWindows& here) { FormHost::Accepted(CreateDefaultDataFile(session, here)); });
}

void NewDataFileForm::OpenPath(const QString& path) {
  if (path.isEmpty()) return;
  Try(tr("Open Data File"),
      [&](OpeningWindows& here) { FormHost::Accepted(OpenOtherDataFile(session, U8(path), here)); });
}

void NewDataFileForm::cmdOpen_Click() {
  if (!windows.CloseChildWindows()) return;
  OpenPath(choose_(ChoiceToOpen(session), this));
}

void NewDataFileForm::cmdSearch_Click() {
  if (!windows.CloseChildWindows()) return;
  const auto picked = windows.RunDialog("VKD_File_ListingForm", {{"Pick", true}});
  if (picked) OpenPath(Q(picked->Text("Path")));
}

void NewDataFileForm::RestoreBy(const char* dialog) {
  if (!windows.CloseChildWindows()) return;
  const auto restored = windows.RunDialog(dialog);
  if (restored && restored->Has("exit")) return cmdExit_Click();
  if (session.DataFileOpen) accept();
}

void NewDataFileForm::cmdExit_Click() {
  result.Set("exit", true);
  accept();
}

void NewDataFileForm::reject() {
  if (session.DataFileOpen) return Dialog::reject();
  cmdExit_Click();
}

}  // namespace vellumark::desktop
