#include "desktop/shell/desktop_startup.h"

#include <QCoreApplication>
#include <QScreen>

#include "core/cloud/cloud_backup.h"
#include "core/session/acts.h"
#include "core/settings/support_files.h"
#include "core/shell/archiving.h"
#include "core/shell/backups.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window.h"
#include "desktop/scale/bench_scale.h"
#include "desktop/shell/main_form.h"

namespace vellumark::desktop {
namespace {

constexpr int kFrame = 48;  // what the platform puts around a window, at most

}  // namespace

// A window of the start may give back the wish to end the program.
std::optional<Arguments> DesktopStartup::RunStep(const std::string& dialog, const Arguments& arguments) {
  auto result = windows_.RunDialog(dialog, arguments);
  if (result && result->Has("exit")) throw EndOfProgram{};
  main_.raise();
  main_.activateWindow();
  return result;
}

bool DesktopStartup::AnotherInstanceRuns(const Session& session) {
  return !lock_.Take(session.DataFolder);
}

void DesktopStartup::ShowMainWindow(const std::string& caption) {
  main_.SetCaption(caption);
  // On a small screen the title and a panel would push the commands at the bottom off it.
  const QSize room = main_.screen()->availableSize() - QSize(kFrame, kFrame);
  if (!main_.RecallPlace() && (main_.width() > room.width() || main_.height() > room.height())) {
    main_.showMaximized();
  } else {
    main_.show();
  }
  // It shows itself; keys and clicks wait until there is a file to work on.
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void DesktopStartup::ShowNewSetup(Session&) {
  RunStep("NewSetupForm", {});
}

// Paper has no windows of its own yet: whoever prints reads the printer from the settings.
void DesktopStartup::TakePrinter(Session&) {}

void DesktopStartup::PrepareCloud(Session& session) {
  DataFolders(session.DataFolder).MakeCloudFolders();
}

void DesktopStartup::LoadScalePort(Session&) {
  scale_.TakeOver();
}

void DesktopStartup::ShowSplash() {
  main_.EnableMenuItems();
  if (splash_) RunStep("ProductSplashFormPantone", {});
}

void DesktopStartup::ShowCloudLine(Session&) {
  main_.ShowCloudLine();
}

void DesktopStartup::CloseAllChildWindows() {
  windows_.CloseChildWindows();
}

void DesktopStartup::RemindBackup(Session& session) {
  if (DueBackupReminder(session)) windows_.RunDialog("BackupReminderForm");
}

void DesktopStartup::ShutdownBackup(Session& session, const std::string& label) {
  vellumark::ShutdownBackup(session, label);
}

void DesktopStartup::PowerOffScale(Session&) {
  scale_.SwitchOff();
}

void DesktopStartup::ShowNewDataFile(const std::string& startupMessage) {
  RunStep("NewDataFileForm", {{"StartupMessage", startupMessage}});
}

std::optional<std::filesystem::path> DesktopStartup::ShowUpdateDataFile(const std::filesystem::path& path, int fileVersion) {
  const auto result = RunStep("UpdateDataFileForm", {{"Path", path.string()}, {"FileVersion", fileVersion}});
  if (!result || !result->Has("Path")) return std::nullopt;
  return std::filesystem::path(result->Text("Path"));
}

void DesktopStartup::Login(Session&) {
  RunStep("LoginForm", {});
}

void DesktopStartup::SetCaption(const std::string& caption) {
  main_.SetCaption(caption);
  QCoreApplication::setApplicationName("vellumark");
}

void DesktopStartup::SuggestArchive(Session& session) {
  // Offered to whoever may do it.
  if (DueArchive(session) && MayDo(session, Act::BackUp) && windows_.Knows("ArchiveForm")) RunStep("ArchiveForm", {});
  if (!MayDo(session, Act::BackUp)) return;
  if (const auto due = CloudBackupReminder(session)) session.prompt.Show(*due);
}

}  // namespace vellumark::desktop
