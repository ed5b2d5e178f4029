#pragma once

#include <array>

#include "core/batch/batch_options.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The settings of the Batch Window: how it calculates, what becomes of the ink, the fields of the house's own, and the
/// quick information.
class BatchSettingsForm : public Dialog {
  Q_OBJECT

 public:
  BatchSettingsForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSave_Click();
  void cmdCancel_Click() { reject(); }

 private:
  struct TextLine {
    TextField* caption;
    CheckField* hasDefault;
    TextField* value;
    CheckField* required;
  };
  struct NumberLine {
    TextField* caption;
    ComboField* decimals;
  };
  void BuildGeneral(Form form);
  void BuildTexts(Form form);
  void BuildNumbers(Form form);
  void BuildQuickInfo(Form form);
  BatchOptions Typed() const;

  ComboField* unit_ = nullptr;
  RadioField* action_ = nullptr;
  RadioField* order_ = nullptr;
  CheckField* overpour_ = nullptr;
  CheckField* graphic_ = nullptr;
  CheckField* returns_ = nullptr;
  CheckField* lotNumber_ = nullptr;
  CheckField* complete_ = nullptr;
  std::array<TextLine, kUserFields> texts_{};
  std::array<NumberLine, kUserFields> numbers_{};
  CheckField* quickInfo_ = nullptr;
  std::array<CheckField*, kQuickInfoFields> quickFields_{};
};

}  // namespace vellumark::desktop
