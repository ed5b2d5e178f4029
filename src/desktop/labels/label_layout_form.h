#pragma once

#include "desktop/labels/layout_window.h"

namespace vellumark::desktop {

/// The layouts of ink labels: titles, data and bar codes of the items, grouped bar codes, the picture.
class LabelLayoutForm : public LayoutWindow {
  Q_OBJECT

 public:
  explicit LabelLayoutForm(WindowList& windowList, PrintDevices devices = PrintDevices::OfSystem());

 public Q_SLOTS:
  void cmdClearMBCD1_Click() { ClearRun(1); }
  void cmdClearMBCD2_Click() { ClearRun(2); }
  void cmdPicture_Click();
  void cmdNoPicture_Click();

 protected:
  void AddItems(Form& form) override;
  void AddPages(TabSet& tabs) override;
  TextField* AddSample(Form& form) override;
  LabelDrawing DrawData() override;
  LabelDrawing DrawSamples() override;
  void Activate(const std::string& item) override;
  QStringList Notes() const override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void AddRow(class QGridLayout& grid, Form& form, const std::string& item);
  void AddCodes(Form form);
  void AddRun(Form& form, int number);
  void AddTexts(Form form);
  void ToggleRun(const std::string& key, std::size_t field, bool on);
  void ClearRun(int number);
  void ReadSample();
  void ShowPicture();

  NameBox* color_ = nullptr;
  QLabel* image_ = nullptr;
  LabelData data_;
  QString combined_;  ///< why bar codes cannot be combined
};

}  // namespace vellumark::desktop
