#pragma once

#include "core/reports/definition.h"
#include "desktop/kit/window.h"

class QListWidget;

namespace vellumark::desktop {

/// The menu of all reports, in three panes, with what each tells.
class ReportsForm : public Window {
  Q_OBJECT

 public:
  explicit ReportsForm(WindowList& windowList);
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdClose_Click() { Leave(); }

 private:
  QListWidget* MakePane(Form form, const QString& title, const char* name);
  void Fill();
  void Describe(const QString& text);
  void Open(const ReportDefinition& report);

  QListWidget* colors_ = nullptr;
  QListWidget* batches_ = nullptr;
  QListWidget* jobs_ = nullptr;
  QLabel* description_ = nullptr;
};

}  // namespace vellumark::desktop
