#pragma once

#include "desktop/labels/layout_window.h"

namespace vellumark::desktop {

/// The layouts of hazard labels: their texts and the nine pictograms.
class GH_LabelLayoutForm : public LayoutWindow {
  Q_OBJECT

 public:
  explicit GH_LabelLayoutForm(WindowList& windowList, PrintDevices devices = PrintDevices::OfSystem());

 protected:
  void AddItems(Form& form) override;
  void AddPages(TabSet& tabs) override;
  LabelDrawing DrawData() override;
  LabelDrawing DrawSamples() override;
};

/// The layouts of formula labels.
class Formula_LabelLayoutForm : public LayoutWindow {
  Q_OBJECT

 public:
  explicit Formula_LabelLayoutForm(WindowList& windowList, PrintDevices devices = PrintDevices::OfSystem());

 protected:
  void AddItems(Form& form) override;
  TextField* AddSample(Form& form) override;
  LabelDrawing DrawData() override;
  LabelDrawing DrawSamples() override;

 private:
  void ReadSample();

  NameBox* color_ = nullptr;
};

}  // namespace vellumark::desktop
