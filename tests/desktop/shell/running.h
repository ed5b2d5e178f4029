#pragma once

#include <filesystem>
#include <functional>

#include "desktop/backup/register.h"
#include "desktop/batch/register.h"
#include "desktop/cloud/register.h"
#include "desktop/colors/register.h"
#include "desktop/datafile/register.h"
#include "desktop/exchange/register.h"
#include "desktop/inventory/register.h"
#include "desktop/kit/wait_progress.h"
#include "desktop/jobs/register.h"
#include "desktop/labels/register.h"
#include "desktop/reports/register.h"
#include "desktop/scale/register.h"
#include "desktop/session/register.h"
#include "desktop/settings/register.h"
#include "desktop/shell/program.h"
#include "desktop/tools/register.h"
#include "support/desktop.h"

namespace vellumark::test {

/// The whole program with every window, as main() makes it, in a folder of its own.
template <class ItsPrompt>
struct RunningProgram {
  explicit RunningProgram(const std::filesystem::path& itsFolder) : folder(itsFolder) {
    options.folders = {folder / "VKDat", folder / "Program", {}};
  }

  /// `platform` answers what would be asked of the machine.
  bool Start(const desktop::DataFilePlatform& platform = {}) {
    desktop::RegisterSessionWindows(windows);
    desktop::RegisterSettingsWindows(windows, [] { return desktop::SystemPrinters{}; });
    desktop::RegisterColorsWindows(windows);
    desktop::RegisterToolsWindows(windows);
    desktop::RegisterInventoryWindows(windows);
    desktop::RegisterBatchWindows(windows);
    const auto choose = [this](const desktop::FileChoice& choice, QWidget*) { return chooseFile(choice); };
    const desktop::PrintDevices nowhere{
        .printers = [] { return desktop::SystemPrinters{}; }, .open = {}, .chooseFile = choose};
    desktop::RegisterJobsWindows(windows, choose);
    desktop::RegisterReportsWindows(windows, nowhere);
    desktop::RegisterLabelWindows(windows, nowhere);
    desktop::RegisterExchangeWindows(windows, choose);
    desktop::RegisterDatafileWindows(windows, program.Windows(), platform);
    desktop::RegisterBackupWindows(windows, program.Windows(), platform.choose);
    desktop::RegisterCloudWindows(windows, program.Windows(), cloud);
    desktop::RegisterScaleWindows(windows, program.Scale(), folder);
    desktop::RegisterWeighing(windows, program.Scale());
    program.Windows().SkipSplash();
    const bool ready = program.Start(options);
    Settle();
    return ready;
  }

  /// The file that is chosen for pages and records; none without it.
  std::function<QString(const desktop::FileChoice&)> chooseFile = [](const auto&) { return QString(); };
  desktop::CloudParts cloud;
  std::filesystem::path folder;
  FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
  ItsPrompt prompt;
  desktop::WaitProgress progress;
  Session session{prompt, progress, clock};
  desktop::WindowList windows{session, &progress};
  desktop::Program program{windows};
  StartOptions options;
};

}  // namespace vellumark::test
