#pragma once

#include <memory>
#include <optional>

#include "core/cloud/cloud_settings.h"
#include "core/cloud/connection_test.h"
#include "desktop/cloud/cloud_parts.h"
#include "desktop/cloud/meter_progress.h"
#include "desktop/kit/window.h"

class QTableWidget;
class QTabWidget;

namespace vellumark::desktop {

/// The account in the cloud: how it is reached, who shares with it, a test of what is typed, and the Data File of an
/// administrator.
class CloudAccountSettings : public Dialog {
  Q_OBJECT

 public:
  CloudAccountSettings(WindowList& windowList, QWidget* owner, CloudParts parts);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;
  bool MayClose() override;

 public Q_SLOTS:
  void cmdSave_Click();
  void cmdImport_Click();
  void cmdBrowseCert_Click();
  void cmdTest_Click();
  void cmdCancelTest_Click();
  void cmdExportLog_Click();
  void cmdAddShare_Click();
  void cmdRemoveShare_Click();
  void cmdSaveShares_Click();
  void cmdImportShares_Click();
  void cmdFetchShares_Click();
  void cmdDefaultDF_Click();

 private:
  void BuildAccount(Form form);
  void BuildShares(Form form);
  void BuildTest(Form form);
  void BuildAdmin(Form form);
  void Show(const CloudSettings& settings);
  CloudSettings Typed() const;
  void ShowShares();
  std::vector<SharedAccount> TypedShares() const;
  void ShowResults(const ConnectionTest& test);
  bool SharesAreDirty() const { return TypedShares() != shares_; }

  CloudParts parts_;
  CloudSettings stored_;
  std::vector<SharedAccount> shares_;
  QTabWidget* tabs_ = nullptr;
  // The fields and where their values stand.
  std::vector<std::pair<TextField*, std::string CloudSettings::*>> texts_;
  std::vector<std::pair<ComboField*, std::optional<bool> CloudSettings::*>> choices_;
  std::vector<std::pair<CheckField*, bool CloudSettings::*>> checks_;
  TextField* port_ = nullptr;
  TextField* certificate_ = nullptr;
  QTableWidget* shareList_ = nullptr;
  CommandButton* removeShare_ = nullptr;
  CommandButton* saveShares_ = nullptr;
  CommandButton* fetchShares_ = nullptr;
  QListWidget* results_ = nullptr;
  QListWidget* certificateFields_ = nullptr;
  QLabel* testing_ = nullptr;
  std::optional<MeterProgress> progress_;
  CommandButton* test_ = nullptr;
  CommandButton* cancelTest_ = nullptr;
  CommandButton* exportLog_ = nullptr;
  QLabel* defaultFile_ = nullptr;
  CommandButton* defaultDF_ = nullptr;
  CommandButton* save_ = nullptr;
};

}  // namespace vellumark::desktop
