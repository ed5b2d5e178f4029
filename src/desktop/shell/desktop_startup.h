#pragma once

#include <string>

#include "core/shell/startup.h"
#include "desktop/kit/window_list.h"
#include "desktop/shell/instance_lock.h"

namespace vellumark::desktop {

class BenchScale;
class MainForm;

/// Thrown through the order of the start when the operator ends the program in one of its windows.
struct EndOfProgram {};

/// The windows of the start and the end, and of opening a Data File.
class DesktopStartup final : public StartupWindows {
 public:
  DesktopStartup(MainForm& mainForm, WindowList& windowList, BenchScale& scale)
      : main_(mainForm), windows_(windowList), scale_(scale) {}

  bool AnotherInstanceRuns(const Session& session) override;
  void ShowMainWindow(const std::string& caption) override;
  void ShowNewSetup(Session& session) override;
  void TakePrinter(Session& session) override;
  void PrepareCloud(Session& session) override;
  void LoadScalePort(Session& session) override;
  void ShowSplash() override;
  void ShowCloudLine(Session& session) override;
  void CloseAllChildWindows() override;
  void RemindBackup(Session& session) override;
  void ShutdownBackup(Session& session, const std::string& label) override;
  void PowerOffScale(Session& session) override;

  void ShowNewDataFile(const std::string& startupMessage) override;
  std::optional<std::filesystem::path> ShowUpdateDataFile(const std::filesystem::path& path, int fileVersion) override;
  void Login(Session& session) override;
  void SetCaption(const std::string& caption) override;
  void SuggestArchive(Session& session) override;

  /// A start without the splash, for a measurement.
  void SkipSplash() { splash_ = false; }

 private:
  std::optional<Arguments> RunStep(const std::string& dialog, const Arguments& arguments);

  MainForm& main_;
  WindowList& windows_;
  BenchScale& scale_;
  InstanceLock lock_;
  bool splash_ = true;
};

}  // namespace vellumark::desktop
