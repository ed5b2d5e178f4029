#pragma once

#include "core/base/table.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class OutRows;

/// What Jobs that are not closed still have out, by Job and container, the oldest first. A line opens its Job.
class JobsOutForm : public Window {
  Q_OBJECT

 public:
  explicit JobsOutForm(WindowList& windowList);
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdOpen_Click();
  void cmdPrint_Click() override;

 private:
  void ListLines();

  std::shared_ptr<OutRows> rows_;
  Grid* list_;
  QLabel* count_;
  CommandButton* open_ = nullptr;
  CommandButton* print_ = nullptr;
};

}  // namespace vellumark::desktop
