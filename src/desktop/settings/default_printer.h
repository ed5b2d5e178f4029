#pragma once

#include "desktop/kit/window.h"
#include "desktop/settings/printers.h"

namespace vellumark::desktop {

/// The printer and the font of reports and labels.
class Default_Printer : public Dialog {
  Q_OBJECT

 public:
  Default_Printer(WindowList& windowList, QWidget* owner, const SystemPrinters& printers);

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  void ShowSample();

  ComboField* printer_;
  ComboField* font_;
  QLabel* sample_;
};

}  // namespace vellumark::desktop
