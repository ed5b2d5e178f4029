#pragma once

#include "desktop/kit/window.h"

class QStackedWidget;

namespace vellumark::desktop {

/// Slides that show how containers are scanned.
class ScanningHelpForm : public Dialog {
  Q_OBJECT

 public:
  ScanningHelpForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdPrevious_Click();
  void cmdNext_Click();

 private:
  void Turn(int by);

  QStackedWidget* slides_;
  CommandButton* previous_;
  CommandButton* next_;
};

}  // namespace vellumark::desktop
