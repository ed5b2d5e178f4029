#pragma once

#include <optional>

#include "core/colors/formula_work.h"
#include "desktop/colors/color_form.h"
#include "desktop/kit/bound_fields.h"

namespace vellumark::desktop {

class AdditiveSetPanel;
class IngredientsPanel;
class MixDetailsPanel;
class MixNotesPanel;

/// The window of Master Formulas. It is empty, shows a formula, or holds a new one. Opened with {"FindRecord", name} it
/// shows that formula, unless another is being edited.
class MixColorsForm : public ColorForm {
  Q_OBJECT

 public:
  explicit MixColorsForm(WindowList& windowList);

  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool MayClose() override;
  bool InEdit() const override;

  /// A figure of an ingredient, "Cost", "VOC" or "HAP", has another value.
  void ExternalUpdateBasicColor(const std::string& name, const std::string& kind, float value);
  /// Reads that formula anew if it is on screen and no edit is in progress.
  void ExternalUpdateMixColor(const std::string& name);
  /// A Batch of the formula has other notes.
  void ExternalUpdateBatchNotes();
  /// Takes the Additive Set out of the formula on screen.
  void Reset_Adds();

 public Q_SLOTS:
  void cmdSave_Click() override;
  void cmdDelete_Click() override;
  void cmdRename_Click();
  void cmdDuplicate_Click();
  void cmdAutoAdjust_Click();
  void cmdModified_Click();

 private:
  static constexpr const char* kFormulaPage = "TabFormula";
  static constexpr const char* kDetailsPage = "TabDetails";

  void BuildHead(Form& form);
  void BuildFormulaPage(Form page);
  void BuildButtons(Form& form);
  void Listen();
  void Activated();

  std::optional<Shown> OnScreen() const override;
  Result<NameEntry> Enter(const std::string& typed) override;
  void Clear() override;
  void ShowColor(const std::string& name) override;
  void ShowNew(const std::string& name) override;
  /// What is on file into the fields; `keepTyped` leaves those alone that the operator has changed.
  void Show(const MixColor& mix, FormulaWork work, bool keepTyped);
  /// The formula on screen as it is on file now. What was typed stays.
  void Reload();
  void TakeBasicChange(const Change& change);

  bool MayEdit() const;
  bool RecipeChanged() const;
  /// The formula as it stands in the fields.
  FormulaWork ReadFields() const;
  void AllowEditingClicked(bool checked);
  bool StopEditing();
  void SetPicked(const std::string& setName);
  void SaveNewSet();
  void FocusSets();
  bool SettleNewSet();

  Result<void> CheckPageInFront(const FormulaWork& work) const;
  bool Store() override;

  std::optional<FormulaWork> work_;  ///< empty while the window is; its fields as they were loaded

  BoundFields bound_;
  QLabel* hasNotes_ = nullptr;
  QTabWidget* tabs_ = nullptr;
  CheckField* allowEditing_ = nullptr;
  QLabel* clearBatch_ = nullptr;
  CommandButton* adjust_ = nullptr;
  CommandButton* modified_ = nullptr;
  IngredientsPanel* ingredients_ = nullptr;
  AdditiveSetPanel* sets_ = nullptr;
  MixDetailsPanel* details_ = nullptr;
  MixNotesPanel* notes_ = nullptr;
  CommandButton* duplicate_ = nullptr;
  bool isModified_ = false;  ///< differs from the published formula
  bool batchUses_ = false;
};

}  // namespace vellumark::desktop
