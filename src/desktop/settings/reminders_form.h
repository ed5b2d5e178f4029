#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// What the program asks about by itself: a backup at closing, and the lots.
class RemindersForm : public Dialog {
  Q_OBJECT

 public:
  RemindersForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdOK_Click();
  void cmdBrowse_Click();
  /// Reads the drives anew; a folder that is gone gives way to the default.
  void cmdRefresh_Click();

 private:
  void ShowFolder(const QString& folder);
  void ListDrives();

  RadioField* onOff_;
  ComboField* days_;
  ComboField* drive_;
  TextField* folder_;
  CheckField* report_;
  CheckField* lotNumbers_;
};

}  // namespace vellumark::desktop
