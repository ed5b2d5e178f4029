#pragma once

#include <array>
#include <map>

#include "core/labels/label_data.h"
#include "desktop/labels/label_window.h"

namespace vellumark::desktop {

/// Prints hazard labels: what the operator types, and pictograms.
class GH_LabelForm : public LabelWindow {
  Q_OBJECT

 public:
  GH_LabelForm(WindowList& windowList, PrintDevices devices);

 protected:
  Result<std::vector<LabelDrawing>> Draw(const std::string& layout) override;
  void LayoutChosen(const std::string& layout) override;
  void ClearFields() override;
  QVariantMap Filled() const override;
  void Fill(const QVariantMap& filled) override;

 private:
  void BuildFields(Form form);
  void BuildPictograms(Form& form);
  SmallLabelData Data() const;
  QString TextOf(std::size_t item) const;
  void SetText(std::size_t item, const QString& text);

  std::array<QWidget*, 9> texts_{};  ///< of a sentence or an address a NoteField, else a TextField
  std::array<CheckField*, kPictograms> pictograms_{};
};

}  // namespace vellumark::desktop
