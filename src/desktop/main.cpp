// The Vellumark: the desktop program.

#include <QCommandLineParser>
#include <QCoreApplication>

#include "core/shell/startup.h"
#include "desktop/backup/register.h"
#include "desktop/batch/register.h"
#include "desktop/cloud/register.h"
#include "desktop/colors/register.h"
#include "desktop/datafile/register.h"
#include "desktop/exchange/register.h"
#include "desktop/inventory/register.h"
#include "desktop/kit/application.h"
#include "desktop/kit/message_prompt.h"
#include "desktop/kit/text.h"
#include "desktop/kit/wait_progress.h"
#include "desktop/kit/window_list.h"
#include "desktop/jobs/register.h"
#include "desktop/labels/register.h"
#include "desktop/reports/register.h"
#include "desktop/scale/register.h"
#include "desktop/session/register.h"
#include "desktop/settings/register.h"
#include "desktop/shell/program.h"
#include "desktop/tools/register.h"

// NOLINTNEXTLINE(bugprone-exception-escape): what fails before there is a window ends the program with its words
int main(int argc, char** argv) {
  vellumark::desktop::Application application(argc, argv);
  QCoreApplication::setApplicationName("vellumark");
  QCoreApplication::setApplicationVersion(VELLUMARK_VERSION);
  QGuiApplication::setDesktopFileName("vellumark");

  QCommandLineParser parser;
  parser.setApplicationDescription(QCoreApplication::translate("main", "Production manager for the ink room"));
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addPositionalArgument("file", QCoreApplication::translate("main", "The Data File to open"), "[file]");
  parser.process(application);
  const QStringList files = parser.positionalArguments();

  vellumark::SystemClock clock;
  vellumark::desktop::MessagePrompt prompt;
  vellumark::desktop::WaitProgress progress;
  application.OnFailure(
      [&](const std::string& title, const std::string& text) { prompt.Tell(title, text, vellumark::Icon::Critical); });
  vellumark::Session session(prompt, progress, clock);
  vellumark::desktop::WindowList windows(session, &progress);
  vellumark::desktop::RegisterSessionWindows(windows);
  vellumark::desktop::RegisterSettingsWindows(windows);
  vellumark::desktop::RegisterColorsWindows(windows);
  vellumark::desktop::RegisterToolsWindows(windows);
  vellumark::desktop::RegisterInventoryWindows(windows);
  vellumark::desktop::RegisterBatchWindows(windows);
  vellumark::desktop::RegisterJobsWindows(windows);
  vellumark::desktop::RegisterReportsWindows(windows);
  vellumark::desktop::RegisterLabelWindows(windows);
  vellumark::desktop::RegisterExchangeWindows(windows);

  vellumark::desktop::Program program(windows);
  vellumark::desktop::RegisterDatafileWindows(windows, program.Windows());
  vellumark::desktop::RegisterBackupWindows(windows, program.Windows());
  vellumark::desktop::RegisterCloudWindows(windows, program.Windows());
  vellumark::desktop::RegisterScaleWindows(windows, program.Scale());
  vellumark::desktop::RegisterWeighing(windows, program.Scale());
  vellumark::StartOptions options;
  options.folders = vellumark::ResolveFolders(vellumark::FolderSources::OfThisProcess({}));
  options.dataFileArgument = files.isEmpty() ? std::string() : vellumark::desktop::U8(files.front());
  if (!program.Start(options)) return program.ExitStatus();
  return QCoreApplication::exec();
}
