#pragma once

#include <map>
#include <string>

#include "core/batch/record.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// What the Batch on screen costs, line by line, with the way to its cost model. Opened with {"Record", BatchRecord*};
/// a changed model stands in the record, whichever way the window is closed.
class CostInfForm : public Dialog {
  Q_OBJECT

 public:
  CostInfForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;
  bool MayClose() override;

 public Q_SLOTS:
  void cmdCostModel_Click();

 private:
  struct Line {
    QLabel* caption;
    ValueField* amount;
  };
  void AddLine(Form& form, const QString& name, double scale = 1);
  void ShowCosts();

  BatchRecord* record_ = nullptr;

  std::map<std::string, Line> lines_;
  QLabel* blocked_;
  CheckField* print_;
  CommandButton* model_;
};

}  // namespace vellumark::desktop
