#pragma once

#include "core/colors/formula_work.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Asks for the name, the Database and the Additive Set of a duplicate and makes it. Opened with {"Work", FormulaWork},
/// the formula as it stands on screen, whose recipe is what is duplicated; gives {"NewName", name}, {"Database", name}
/// and {"Overwritten", true or false} back once the duplicate is stored.
class DuplicateFormulaForm : public Dialog {
  Q_OBJECT

 public:
  DuplicateFormulaForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdDuplicate_Click();
  void cmdClear_Click();

 private:
  std::string ChosenSet() const;
  void ShowSets();
  void ShowIngredients();

  FormulaWork work_;
  std::vector<AdditiveSet> sets_;

  ValueField* source_;
  TextField* newName_;
  ComboField* databases_;
  ComboField* setNames_;
  CommandButton* clear_;
  Grid* ingredients_;
};

}  // namespace vellumark::desktop
