#pragma once

#include <vector>

#include "core/batch/additions.h"
#include "core/batch/record.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Colours and amounts to be added to the Batch. Opened with {"Record", BatchRecord*}; it changes the record, all lines
/// at once or none. The fields of a line bear its number: cmbColorName0, txtAmount0.
class AddAdditionForm : public Dialog {
  Q_OBJECT

 public:
  AddAdditionForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  struct Line {
    NameBox* name;
    NumberField* amount;
    QLabel* unit;
  };
  void AddLine(Form& form, int number);
  /// Finds the colour or offers to add it; false when the operator is to go back to the name.
  bool NameLeft(Line& line);
  std::vector<AdditionLine> Typed(std::vector<std::size_t>& places) const;
  bool eventFilter(QObject* watched, QEvent* event) override;

  BatchRecord* record_ = nullptr;
  std::vector<Line> lines_;
};

}  // namespace vellumark::desktop
