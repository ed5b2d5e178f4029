#pragma once

#include <array>

#include "core/labels/label_data.h"
#include "desktop/labels/label_window.h"

namespace vellumark::desktop {

/// Prints the labels of containers of ink. Opened with {"Labels", std::vector<LabelData>} it is filled with them, one
/// label for each.
class LabelForm : public LabelWindow {
  Q_OBJECT

 public:
  LabelForm(WindowList& windowList, PrintDevices devices);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdGetColorInfo_Click();
  void cmdPreviousLabel_Click();
  void cmdNextLabel_Click();

 protected:
  Result<std::vector<LabelDrawing>> Draw(const std::string& layout) override;
  void LayoutChosen(const std::string& layout) override;
  void ClearFields() override;
  QVariantMap Filled() const override;
  void Fill(const QVariantMap& filled) override;

 private:
  static constexpr std::size_t kTexts = kLabelFields + 3;  ///< and the three hazard numbers
  void BuildFields(Form form);
  TextField* FieldOf(Form& form, std::size_t field);
  /// The labels come into the fields, what a layout says itself where they say nothing.
  void Take(std::vector<LabelData> labels);
  void Show(std::size_t label);
  /// What stands in the fields into the label shown.
  void Read();
  static std::string& TextOf(LabelData& data, std::size_t field);
  LabelOptions Options() const;

  std::vector<LabelData> labels_{1};
  std::size_t shown_ = 0;
  bool showing_ = false;
  std::array<TextField*, kTexts> fields_{};
  std::vector<QWidget*> lotRows_;
  CheckField* identifiers_ = nullptr;
  CheckField* square_ = nullptr;
  CommandButton* previous_ = nullptr;
  CommandButton* next_ = nullptr;
  QLabel* which_ = nullptr;
};

}  // namespace vellumark::desktop
