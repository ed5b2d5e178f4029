#pragma once

#include "core/shell/startup.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The one window that the operator has when no Data File can be opened: why that is so, and all ways to another one.
/// Closed without a file, it ends the program.
class NewDataFileForm : public Dialog {
  Q_OBJECT

 public:
  NewDataFileForm(WindowList& windowList, QWidget* owner, StartupWindows& startup, FileChooser choose);
  void OnOpen(const Arguments& arguments) override;
  void reject() override;

 public Q_SLOTS:
  void cmdCreate_Click();
  void cmdOpen_Click();
  void cmdSearch_Click();
  void cmdRestore_Click() { RestoreBy("RestoreFileLocationForm"); }
  void cmdAutoBackup_Click() { RestoreBy("RestoreAutomaticForm"); }
  void cmdRestoreCloud_Click() { RestoreBy("CloudRestoreFileList"); }
  void cmdCloudAdminDefault_DF_Click() { RestoreBy("OpenCloudAdminDefault_DF"); }
  void cmdRepair_Click() { RestoreBy("RepairForm"); }
  void cmdExit_Click();

 private:
  bool IsCloudAdmin();
  void RestoreBy(const char* dialog);
  class WindowsHere;
  void BuildInformation(Form page);
  void BuildCreate(Form page);
  void BuildOpen(Form page);
  void BuildLater(TabSet& tabs);
  void ShowStartupMessage(const std::string& text);
  /// Another file, by one of the ways; the window goes when one is open.
  void Try(const QString& title, const std::function<void(OpeningWindows&)>& act);
  void OpenPath(const QString& path);

  StartupWindows& startup_;
  FileChooser choose_;
  QTabWidget* tabs_ = nullptr;
  QLabel* message_ = nullptr;
};

}  // namespace vellumark::desktop
