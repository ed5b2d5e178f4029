#pragma once

#include <array>
#include <utility>
#include <vector>

#include "core/batch/batch_options.h"
#include "core/batch/print_options.h"
#include "desktop/kit/window.h"
#include "desktop/settings/user_fields_panel.h"

namespace vellumark::desktop {

/// The settings of the Batch Window: how it calculates, what becomes of the ink, the fields of the house's own, the
/// quick information, and what is printed.
class BatchSettingsForm : public Dialog {
  Q_OBJECT

 public:
  BatchSettingsForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  void BuildGeneral(Form form);
  void BuildQuickInfo(Form form);
  void BuildPrinting(Form form);
  BatchOptions Typed() const;
  BatchPrintOptions TypedForPrint() const;

  ComboField* unit_ = nullptr;
  RadioField* action_ = nullptr;
  RadioField* order_ = nullptr;
  CheckField* overpour_ = nullptr;
  CheckField* graphic_ = nullptr;
  CheckField* returns_ = nullptr;
  CheckField* lotNumber_ = nullptr;
  CheckField* complete_ = nullptr;
  UserFieldsPanel userFields_;
  CheckField* quickInfo_ = nullptr;
  std::array<CheckField*, kQuickInfoFields> quickFields_{};

  std::vector<std::pair<CheckField*, bool BatchPrintOptions::*>> printed_;
  std::array<CheckField*, 4> printedNotes_{};
  NumberField* recListPercent_ = nullptr;
};

}  // namespace vellumark::desktop
