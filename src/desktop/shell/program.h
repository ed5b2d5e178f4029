#pragma once

#include "core/shell/startup.h"
#include "desktop/kit/window_list.h"
#include "desktop/scale/bench_scale.h"
#include "desktop/shell/desktop_startup.h"
#include "desktop/shell/main_form.h"

namespace vellumark::desktop {

/// The running program: the main window and the order of its start and end.
class Program {
 public:
  explicit Program(WindowList& windowList);

  /// From nothing to the ready main window. False when the program is to end at once.
  bool Start(const StartOptions& options);
  /// 0 after an end that the operator chose, 1 after a failure, which was shown.
  int ExitStatus() const { return status_; }

  MainForm& Main() { return main_; }
  DesktopStartup& Windows() { return startup_; }
  BenchScale& Scale() { return scale_; }

 private:
  bool End();
  void CreateSupportFiles();
  void RunScale(const std::string& item);

  WindowList& windows_;
  Session& session_;
  BenchScale scale_;
  MainForm main_;
  DesktopStartup startup_;
  int status_ = 0;
};

}  // namespace vellumark::desktop
