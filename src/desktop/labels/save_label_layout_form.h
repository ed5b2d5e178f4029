#pragma once

#include <vector>

#include "desktop/kit/window.h"
#include "desktop/labels/label_windows.h"

namespace vellumark::desktop {

/// Asks for the name under which a design is kept and keeps it. Opened with {"Design", std::vector<SupportRecord>} and,
/// where the design has a name already, {"LayoutName", name}; gives {"LayoutName", name} back.
class SaveLabelLayoutForm : public Dialog {
  Q_OBJECT

 public:
  SaveLabelLayoutForm(WindowList& windowList, QWidget* owner, const LabelWindows& kind);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  LabelKind kind_;
  TextField* name_;
  std::vector<SupportRecord> design_;
};

}  // namespace vellumark::desktop
