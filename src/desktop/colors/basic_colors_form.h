#pragma once

#include <optional>
#include <vector>

#include "desktop/colors/color_form.h"
#include "desktop/kit/bound_fields.h"

namespace vellumark::desktop {

class FigureFields;
class SwatchFields;

/// The window of Basic Colors and Additives. It is empty, shows a record, or holds a new one. Opened with
/// {"FindRecord", name} it shows that colour, unless another is being edited.
class BasicColorsForm : public ColorForm {
  Q_OBJECT

 public:
  explicit BasicColorsForm(WindowList& windowList);

  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool MayClose() override;
  bool InEdit() const override;

  /// Reads that colour anew if it is on screen and no edit is in progress.
  void ExternalUpdateBasicColor(const std::string& name);

 public Q_SLOTS:
  void cmdSave_Click() override;
  void cmdDelete_Click() override;
  void cmdRename_Click();

 private:
  void BuildColorPage(Form form);
  void BuildFigures(Form& form);
  void BuildSwatch(Form& form);

  std::optional<Shown> OnScreen() const override;
  Result<NameEntry> Enter(const std::string& typed) override;
  void Clear() override;
  void ShowColor(const std::string& name) override;
  void ShowNew(const std::string& name) override;
  /// The fields of a record; `keepTyped` leaves those alone that the operator has changed.
  void ShowFields(const BasicWork& work, const BookData& book, bool keepTyped);
  void ShowStock(const BasicColor& color);
  /// The record on screen as it is on file now. What was typed stays.
  void Reload();

  bool Store() override;
  void AdditiveClicked(bool checked);

  std::optional<BasicWork> work_;  ///< empty while the window is

  BoundFields bound_;
  CheckField* additive_;
  FigureFields* figures_;
  SwatchFields* swatch_;
  QLabel* guide_;
  QLabel* entered_;
  QLabel* consumed_;
  bool isLow_ = false;
};

}  // namespace vellumark::desktop
