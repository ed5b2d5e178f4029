#pragma once

#include "core/jobs/design_bench.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// From a Design to the bench: what a run of it needs, what stock has, what is to be made. Opened with {"DesignID",
/// id}; a line opens a Batch with name, quantity and job.
class DesignBenchForm : public Window {
  Q_OBJECT

 public:
  explicit DesignBenchForm(WindowList& windowList);
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdShow_Click();
  void cmdBatch_Click();
  void cmdPrint_Click() override;

 private:
  RunWish Wish() const;
  void Count(bool tells);

  std::string designID_;
  std::vector<RunNeed> needs_;
  QLabel* design_;
  TextField* impressions_;
  RadioField* way_;
  ComboField* ink_;
  ComboField* stock_;
  TextField* job_;
  std::shared_ptr<LeadingTable> rows_;
  Grid* list_;
  CommandButton* batch_ = nullptr;
  CommandButton* print_ = nullptr;
};

}  // namespace vellumark::desktop
