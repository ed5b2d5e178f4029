#pragma once

#include "core/shell/startup.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Rename Data File: another name for the open file, in its folder.
class RenameDataFileForm : public Dialog {
  Q_OBJECT

 public:
  RenameDataFileForm(WindowList& windowList, QWidget* owner, StartupWindows& startup);
  /// A file that cannot be renamed is refused before anything is asked.
  int exec() override;

 public Q_SLOTS:
  void cmdRename_Click();

 private:
  StartupWindows& startup_;
  TextField* name_;
};

}  // namespace vellumark::desktop
