#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "core/base/sheet.h"
#include "desktop/kit/print_items.h"
#include "desktop/kit/window.h"
#include "desktop/reports/print_devices.h"
#include "paper/pdf.h"

namespace vellumark::desktop {

class PagePreview;

/// Print Control: which printer, how the pages are to be, and what they look like. Opened with {"Sheet", Sheet}
/// and, where parts of it can be left out, {"Items", PrintItems}.
class PrintBoxForm : public Dialog {
  Q_OBJECT

 public:
  PrintBoxForm(WindowList& windowList, QWidget* owner, PrintDevices devices);

  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdPrint_Click();
  void cmdPDF_Click();
  void cmdPreviousPage_Click();
  void cmdNextPage_Click();

 private:
  void BuildPrinter(Form form);
  void BuildPage(Form form);
  void BuildPreview(Form form);
  void BuildItems(Form form);
  /// Another choice: the pages anew.
  void Refresh();
  void ShowPlace();
  paper::PageOptions Chosen() const;
  Result<paper::PageRange> Range() const;
  Result<int> Copies() const;
  /// Lays the sheet out, asks what has to be asked and prints; a failure is shown. Closes when it was printed.
  void Run(const std::function<int(paper::SheetLayout& layout)>& print);

  PrintDevices devices_;
  Sheet sheet_;
  PrintItems items_;
  std::optional<TabSet> tabs_;
  paper::PageOptions options_;
  bool ready_ = false;

  ComboField* printer_ = nullptr;
  NumberField* copies_ = nullptr;
  NumberField* from_ = nullptr;
  NumberField* to_ = nullptr;
  ComboField* duplex_ = nullptr;
  RadioField* orientation_ = nullptr;
  ComboField* paper_ = nullptr;
  ComboField* font_ = nullptr;
  ComboField* percent_ = nullptr;
  std::vector<std::pair<CheckField*, bool paper::PageOptions::*>> checks_;
  PagePreview* preview_ = nullptr;
  CommandButton* back_ = nullptr;
  CommandButton* forth_ = nullptr;
  QLabel* place_ = nullptr;
  QLabel* hint_ = nullptr;
  CommandButton* print_ = nullptr;
};

}  // namespace vellumark::desktop
