#pragma once

#include <memory>

#include "core/batch/dispensers.h"
#include "desktop/kit/window.h"

class QListWidget;
class QTabWidget;

namespace vellumark::desktop {

class CheckedList;

/// To which dispenser a Batch is sent, and with what; dispensers are added and removed here. Gives
/// {"Choice", DispenseChoice} of the core when a Batch is to be sent.
class DispenserSelector : public Dialog {
  Q_OBJECT

 public:
  DispenserSelector(WindowList& windowList, QWidget* owner);

  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSend_Click();
  void cmdSave_Click();
  void cmdDelete_Click();
  void cmdRefresh_Click();

 private:
  class Listed;
  void BuildDispense(Form form);
  void BuildAdd(Form form);
  void BuildRemove(Form form);
  /// All lists anew, with that dispenser chosen where it is there.
  void Fill(const std::string& name);
  void ShowChosen();
  void StoreChecks();
  void GoToFolder(const QString& folder);
  void EnterFolder();

  std::vector<DispenserRow> dispensers_;
  ComboField* selected_ = nullptr;
  QLabel* pathway_ = nullptr;
  CheckField* additives_ = nullptr;
  CheckField* recycles_ = nullptr;
  CommandButton* send_ = nullptr;
  TextField* name_ = nullptr;
  ComboField* manufacturer_ = nullptr;
  ComboField* drive_ = nullptr;
  TextField* folder_ = nullptr;
  QListWidget* folders_ = nullptr;
  std::shared_ptr<Listed> listed_;
  CheckedList* list_ = nullptr;
  CommandButton* save_ = nullptr;
  CommandButton* delete_ = nullptr;
};

}  // namespace vellumark::desktop
