#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The formulas for whose sake a Basic Color cannot be deleted. Opened with {"Title", text}, {"Text", text} and
/// {"Formulas", std::vector<std::string>}; gives {"Formula", name} back when one is to be viewed.
class BasicColorUsedInMixForm : public Dialog {
  Q_OBJECT

 public:
  BasicColorUsedInMixForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdPrint_Click();

 private:
  void View(int row);

  QLabel* text_;
  Grid* formulas_;
  CommandButton* print_;
  std::vector<std::string> names_;
};

}  // namespace vellumark::desktop
