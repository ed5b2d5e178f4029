#pragma once

#include <QLabel>
#include <QProgressBar>
#include <QTabWidget>
#include <filesystem>
#include <memory>

#include "core/upgrade/upgrade.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// A Data File of an earlier version, or of an earlier program: says what it is, brings it up to date on cmdOK, shows how
/// far that is, and then the report. A failure is told and ends it.
class UpdateDataFileForm : public Dialog {
  Q_OBJECT

 public:
  UpdateDataFileForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void reject() override;

 public Q_SLOTS:
  void cmdOK_Click();
  void cmdPrint_Click();

 private:
  enum class State { Ready, Running, Done };
  class Shown;

  void Enter(State state);
  void ShowReport();

  State state_ = State::Ready;
  std::filesystem::path path_;
  UpgradeReport report_;
  QLabel* heading_;
  QLabel* file_;
  QLabel* version_;
  QLabel* place_;
  QLabel* status_;
  QLabel* component_;
  QLabel* statement_;
  QLabel* sums_;
  QProgressBar* bar_;
  QTabWidget* tabs_;
  std::shared_ptr<RecordRows<UpgradeTable>> tables_;
  std::shared_ptr<RecordRows<StepLineOf>> lines_;
  Grid* fgTables_;
  Grid* fgReport_;
  CommandButton* ok_;
  CommandButton* print_;
  CommandButton* cancel_;
};

}  // namespace vellumark::desktop
