#pragma once

#include "core/labels/label_data.h"
#include "desktop/labels/label_window.h"

namespace vellumark::desktop {

/// Prints the recipe of a formula. Opened with {"Color_Name", name} and, where it is of another Database,
/// {"Database", name}.
class Formula_LabelForm : public LabelWindow {
  Q_OBJECT

 public:
  Formula_LabelForm(WindowList& windowList, PrintDevices devices);
  void OnOpen(const Arguments& arguments) override;

 protected:
  Result<std::vector<LabelDrawing>> Draw(const std::string& layout) override;
  Result<void> MayPrint() override;
  void LayoutChosen(const std::string&) override {}
  void ClearFields() override;
  QVariantMap Filled() const override;
  void Fill(const QVariantMap& filled) override;

 private:
  void BuildFields(Form form);
  /// The recipe of the name that stands in its field.
  Result<void> Load();

  ComboField* database_ = nullptr;
  NameBox* name_ = nullptr;
  TextField* code_ = nullptr;
  TextField* date_ = nullptr;
  NoteField* formula_ = nullptr;
  std::string loaded_;  ///< the name whose recipe stands there
};

}  // namespace vellumark::desktop
