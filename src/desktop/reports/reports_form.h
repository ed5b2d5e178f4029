#pragma once

#include "core/reports/definition.h"
#include "core/cloud/cloud_run.h"
#include "desktop/kit/window.h"

class QListWidget;

namespace vellumark::desktop {

/// The menu of all reports, in three panes, with what each tells, and of those that are saved under a name.
class ReportsForm : public Window {
  Q_OBJECT

 public:
  explicit ReportsForm(WindowList& windowList);
  /// With {"Pane", name of a list}: the focus goes there.
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  /// Of the saved report that is chosen.
  void cmdRename_Click();
  void cmdDelete_Click() override;

 private:
  QListWidget* MakePane(Form form, const QString& title, const char* name, int height);
  void Fill();
  void FillSaved();
  /// The name of the saved report that is chosen; empty without one.
  std::string Saved() const;
  void OpenSaved(const std::string& name);
  void Describe(const QString& text);
  void OpenCloudReport(const ReportDefinition& report, CloudTask task, const Arguments& arguments);
  void Open(const ReportDefinition& report, const Arguments& arguments = {});

  QListWidget* colors_ = nullptr;
  QListWidget* batches_ = nullptr;
  QListWidget* jobs_ = nullptr;
  QListWidget* saved_ = nullptr;
  CommandButton* rename_ = nullptr;
  CommandButton* delete_ = nullptr;
  QLabel* description_ = nullptr;
};

}  // namespace vellumark::desktop
