#pragma once

#include "core/base/sheet.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// A Batch or colour of another Database, to be read. Opened with {"Target", RowTarget}.
class ViewRecordForm : public Dialog {
  Q_OBJECT

 public:
  ViewRecordForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdPrint_Click();

 private:
  Sheet sheet_;
  QLabel* title_;
  Grid* fields_;
  CommandButton* print_;
};

}  // namespace vellumark::desktop
