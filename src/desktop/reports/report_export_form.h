#pragma once

#include "core/reports/report_settings.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window.h"

namespace vellumark {
struct BuiltReport;
struct ReportDefinition;
}  // namespace vellumark

namespace vellumark::desktop {

/// Export Control: where the file of a report goes, and what goes into it. Opened with {"Report", const BuiltReport*} and
/// {"Definition", const ReportDefinition*}; accepted when the file was written.
class ReportExportForm : public Dialog {
  Q_OBJECT

 public:
  ReportExportForm(WindowList& windowList, QWidget* owner, FileChooser choose);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdBrowse_Click();
  void cmdSave_Click();
  void cmdUp_Click() { Move(-1); }
  void cmdDown_Click() { Move(1); }

 private:
  ExportFormat Chosen() const;
  ExportOptions Options() const;
  static void BuildHelp(Form form);
  void ShowOrder();
  void Move(int by);

  FileChooser choose_;
  const BuiltReport* report_ = nullptr;
  const ReportDefinition* definition_ = nullptr;
  TextField* folder_;
  TextField* name_;
  CheckField* keepFolder_;
  CheckField* keepName_;
  RadioField* format_;
  CheckField* headings_;
  CheckField* data_;
  CheckField* totals_;
  RadioField* order_;
  CheckListField* columns_;
};

}  // namespace vellumark::desktop
