#pragma once

#include "core/labels/label_subjects.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Which colour, job and lot a label is made of. Gives {"Labels", std::vector<LabelData>} back, or nothing where the
/// recipe of the colour was wanted on a label instead.
class LabelDataSelection : public Dialog {
  Q_OBJECT

 public:
  LabelDataSelection(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSelect_Click();
  void cmdFormulaLabel_Click();

 private:
  LabelChoice Choice() const;
  /// The colour's code and lots, as soon as it is one.
  void ShowColor();
  void ShowContainers();

  ComboField* database_;
  RadioField* type_;
  NameBox* name_;
  QLabel* code_;
  TextField* job_;
  ComboField* lot_;
  ComboField* container_;
  std::vector<QWidget*> lotRows_;
  std::string shown_;  ///< the colour whose code and lots stand there
};

}  // namespace vellumark::desktop
