#pragma once

#include "desktop/kit/window.h"
#include "desktop/settings/printers.h"

namespace vellumark::desktop {

/// The first thing a new installation asks: units and printer.
class NewSetupForm : public Dialog {
  Q_OBJECT

 public:
  NewSetupForm(WindowList& windowList, QWidget* owner, const SystemPrinters& printers);

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  ComboField* inventoryUnit_;
  ComboField* batchUnit_;
  ComboField* printer_;
};

}  // namespace vellumark::desktop
