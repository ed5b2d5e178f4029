#pragma once

#include <array>

#include "core/colors/formula_modifier.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class ColorSelection;
class PreviewLists;

/// Changes many formulas at once: choose them, say what is to change in up to five lines, look at the preview, save.
class DBFormulaModifierForm : public Window {
  Q_OBJECT

 public:
  explicit DBFormulaModifierForm(WindowList& windowList);
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool MayClose() override;
  /// Lines and lists are a tool's setting, no record that could be lost.
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdPreview_Click();
  void cmdSave_Click() override;

 private:
  struct LineFields {
    CheckField* chosen;
    ComboField* method;
    NameBox* ingredient;
    NumberField* percent;
  };
  void BuildLine(QWidget* sheet, Form& form, int number);
  ModifierLine LineAt(std::size_t number) const;
  std::vector<ModifierLine> Lines() const;
  void PercentLeft(std::size_t number, QWidget* to);
  /// What is previewed is what is saved: a change of lines or colours takes the preview back.
  void ForgetPreview();
  void EmptyLines();

  ColorSelection* colors_;
  std::array<LineFields, kModifierLines> lines_{};
  PreviewLists* preview_;
  CommandButton* save_;
};

}  // namespace vellumark::desktop
