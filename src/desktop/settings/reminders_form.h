#pragma once

#include <optional>

#include "desktop/settings/drive_folder.h"
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

 private:
  RadioField* onOff_;
  ComboField* days_;
  std::optional<DriveFolder> folder_;
  CheckField* report_;
  CheckField* lotNumbers_;
};

}  // namespace vellumark::desktop
