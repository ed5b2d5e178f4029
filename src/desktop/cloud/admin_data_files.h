#pragma once

#include "core/cloud/cloud_settings.h"
#include "core/shell/startup.h"
#include "desktop/cloud/cloud_parts.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The latest backup of an account, fetched by the administrator and opened to be looked at.
class CloudUtilityDataFileManager : public Dialog {
  Q_OBJECT

 public:
  CloudUtilityDataFileManager(WindowList& windowList, QWidget* owner, StartupWindows& startup);
  int exec() override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdContinue_Click();

 private:
  StartupWindows& startup_;
  std::vector<SharedAccount> accounts_;
  QListWidget* list_;
  CommandButton* continue_;
};

/// A Data File for the restore of one or several accounts, sent by the administrator.
class CloudUtilitiesDataFileUpload_SelectUsers : public Dialog {
  Q_OBJECT

 public:
  CloudUtilitiesDataFileUpload_SelectUsers(WindowList& windowList, QWidget* owner, FileChooser choose);
  int exec() override;

 public Q_SLOTS:
  void cmdBrowse_Click();
  void cmdContinue_Click();

 private:
  FileChooser choose_;
  std::vector<SharedAccount> accounts_;
  TextField* file_;
  CheckListField* list_;
};

/// Opens the Data File that the administrator works with. There is nothing to be seen.
class OpenCloudAdminDefault_DF : public Dialog {
  Q_OBJECT

 public:
  OpenCloudAdminDefault_DF(WindowList& windowList, QWidget* owner, StartupWindows& startup);
  int exec() override;

 private:
  StartupWindows& startup_;
};

}  // namespace vellumark::desktop
