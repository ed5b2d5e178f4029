#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/settings/ladder.h"
#include "core/shell/folders.h"
#include "core/shell/opening.h"

namespace vellumark {

/// The default Data File, in the program folder.
inline constexpr std::string_view kDefaultDataFile = "Vellumark Data.vkd";

/// What the start and the end of the program ask of the windows and of the subsystems around the Data File. Each is
/// called at its place in the order of StartUp and EndSession.
class StartupWindows : public OpeningWindows {
 public:
  /// True when this program already runs on the same data folder.
  virtual bool AnotherInstanceRuns(const Session& session) = 0;
  virtual void ShowMainWindow(const std::string& caption) = 0;
  /// `NewSetupForm`: units and printer of a first start, stored by the window.
  virtual void ShowNewSetup(Session& session) = 0;
  /// The default printer and its font.
  virtual void TakePrinter(Session& session) = 0;
  virtual void PrepareCloud(Session& session) = 0;
  virtual void LoadScalePort(Session& session) = 0;
  virtual void ShowSplash() = 0;
  virtual void ShowCloudLine(Session& session) = 0;
  virtual void CloseAllChildWindows() = 0;
  virtual void RemindBackup(Session& session) = 0;
  virtual void PowerOffScale(Session& session) = 0;
};

struct StartOptions {
  Folders folders;
  std::string dataFileArgument;  ///< the command line's one argument, quotes allowed; empty when none
};

/// Support Files and settings, without a Data File: writes what is missing, reads the settings into the session and
/// works out `DataFileName`. A settings file that is none is kept beside and told of. True when the settings file was
/// made now, on a first start.
bool PrepareSupportFiles(Session& session, const Folders& folders);

/// Runs the ladder of the Support Files against the session's open Data File, reads the settings again when it changed
/// any, and tells of values that mean nothing in their setting.
void RunSupportLadder(Session& session);

/// From the first instruction to the ready main window, in its fixed order. False when the program must end at once
/// because another instance runs.
bool StartUp(Session& session, const StartOptions& options, StartupWindows& windows);

/// Whether the main window may close: not while a Database loads. Runs the backup reminder where it is due.
bool MayEnd(Session& session, StartupWindows& windows);

/// The end, in its order. A Data File that was created but never got a Database is removed: one
/// whose own list of them is empty, and that has no tables of any.
void EndSession(Session& session, StartupWindows& windows);

}  // namespace vellumark
