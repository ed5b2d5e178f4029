#pragma once

#include <optional>
#include <string>

#include "core/datafile/color_kind.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The reorder point of one colour. Opened with {"FindRecord", name} and, where it is known, {"Kind", ColorKind} it
/// shows that colour.
class AdjustReorderForm : public Window {
  Q_OBJECT

 public:
  explicit AdjustReorderForm(WindowList& windowList);
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool MayClose() override;
  bool InEdit() const override { return shown_ && IsDirty(); }

 public Q_SLOTS:
  void cmdSave_Click() override;
  void cmdCancel_Click();

 private:
  struct Shown {
    ColorKind kind;
    std::string name;
  };
  void NameLeft(QWidget* to);
  void EnterName(const std::string& typed);
  void ShowColor(ColorKind kind, const std::string& name);
  void Reload();
  void Clear();
  bool Store();

  std::optional<Shown> shown_;
  NameBox* name_;
  QLabel* kind_;
  ValueField* stock_;
  NumberField* reorder_;
  QLabel* stockUnit_;
  QLabel* reorderUnit_;
  CommandButton* save_;
  CommandButton* cancel_;
};

}  // namespace vellumark::desktop
