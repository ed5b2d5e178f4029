#pragma once

#include <array>

#include "core/batch/record.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The user-defined fields of a Batch and what was measured on it. Opened with {"Record", BatchRecord*}; the record has
/// what was entered when the window closes with a result.
class MoreDataForm : public Dialog {
  Q_OBJECT

 public:
  MoreDataForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;
  bool MayClose() override;

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  void BuildUserFields(Form form);
  void BuildLab(Form form);
  ComboField* DropDown(Form& form, const char* name);

  BatchRecord* record_ = nullptr;

  std::array<TextField*, kBatchUserFields> texts_{};
  std::array<QLabel*, kBatchUserFields> missing_{};
  std::array<NumberField*, kBatchUserFields> numbers_{};
  std::array<NumberField*, 5> lab_{};
  ComboField* lightSource_ = nullptr;
  ComboField* substrate_ = nullptr;
  TextField* note_ = nullptr;
};

}  // namespace vellumark::desktop
