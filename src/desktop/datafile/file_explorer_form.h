#pragma once

#include "core/shell/startup.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Open Data File: holds the platform's file dialog and opens what was chosen there.
class FileExplorerForm : public Dialog {
  Q_OBJECT

 public:
  FileExplorerForm(WindowList& windowList, QWidget* owner, StartupWindows& startup, FileChooser choose);
  /// {"OpenPath", file} opens that one, and nothing is chosen.
  void OnOpen(const Arguments& arguments) override;
  int exec() override;

 private:
  StartupWindows& startup_;
  FileChooser choose_;
  QString path_;
};

/// New Data File: the same dialog for the name of a new one.
class NewFileExplorerForm : public Dialog {
  Q_OBJECT

 public:
  NewFileExplorerForm(WindowList& windowList, QWidget* owner, StartupWindows& startup, FileChooser choose);
  int exec() override;

 private:
  StartupWindows& startup_;
  FileChooser choose_;
};

}  // namespace vellumark::desktop
