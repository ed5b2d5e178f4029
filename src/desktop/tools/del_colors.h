#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

class ColorSelection;

/// Deletes many formulas of a Database at once, with their lots and measurements.
class DBDelColors : public Window {
  Q_OBJECT

 public:
  explicit DBDelColors(WindowList& windowList);
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdDelete_Click() override;

 private:
  void BuildFormula(Form& form);
  void ShowFormula();

  ComboField* databases_;
  ColorSelection* colors_;
  QWidget* frame_;
  ValueField* name_;
  QLabel* set_;
  ValueField* inventory_;
  QLabel* produced_;
  Grid* recipe_;
  CommandButton* delete_;
};

}  // namespace vellumark::desktop
