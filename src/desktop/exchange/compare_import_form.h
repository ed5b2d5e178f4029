#pragma once

#include "core/exchange/formula_merge.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// One formula of an import beside its namesake here. Opened with {"Plan", a shared pointer to it} and {"Place", which
/// formula}; closed with cmdOK it gives {"Take", whether it is to come in} back.
class ImportCompareFormulasForm : public Dialog {
  Q_OBJECT

 public:
  ImportCompareFormulasForm(WindowList& windowList, QWidget* owner, const QString& name = "ImportCompareFormulasForm");
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  std::shared_ptr<TableSource> rows_;
  QLabel* name_;
  QLabel* mod_;
  QLabel* inDatabase_;
  QLabel* remark_;
  Grid* lines_;
  CheckField* take_;
};

}  // namespace vellumark::desktop
