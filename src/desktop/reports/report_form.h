#pragma once

#include <QTimer>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "core/reports/build.h"
#include "core/reports/edit_cell.h"
#include "core/reports/saved_reports.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class ChartPanel;
class ReportSource;

/// A report of the catalogue: what is asked of it, and its rows. Opened with {"Color_Name", name}, {"Kind", ColorKind},
/// {"JobNumber", number}, {"DesignID", id}, and {"From", DateTime}, {"To", DateTime} where another window knows them,
/// it is found at once; so is one that is saved, opened with {"Saved", its name}.
class ReportForm : public Window {
  Q_OBJECT

 public:
  ReportForm(WindowList& windowList, const ReportDefinition& definition, FileChooser choose);
  ~ReportForm() override;
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool MayClose() override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdFind_Click();
  void cmdClear_Click();
  void cmdPrint_Click() override;
  /// Into a file, in `ReportExportForm`.
  void cmdExport_Click();
  /// What other shops have, once more.
  void cmdCloudGet_Click();
  /// As text into the cloud, in `CloudReportUploadForm`.
  void cmdCloudReportUpload_Click();
  /// Under a name, to be run again.
  void cmdSaveReport_Click();
  /// The dates under a name; or those of a name are forgotten.
  void cmdKeepRange_Click();
  /// The chart beside the rows comes and goes.
  void cmdChart_Click();
  void chkSelectAllColors_Click() { ChooseAllColumns(true); }
  void chkDeselectAllColors_Click() { ChooseAllColumns(false); }

 private:
  struct OptionField {
    const ReportOption* option;
    CheckField* check = nullptr;
    ComboField* combo = nullptr;
  };

  // How it is built (report_form_build.cpp).
  void BuildSubject(Form& form);
  void BuildOptions(Form& form);
  void BuildMiddle(Form& form, FileChooser choose);
  void BuildGrid(Form form);
  void BuildSide(Form form);
  void AddDates(std::vector<QWidget*>& line, Form& form);

  bool HasSubject() const { return definition_.subject != ReportSubject::None; }
  std::string Subject() const;
  ReportRequest Request() const;
  bool HasDatabase() const;
  void ChooseRange(int place);
  /// The columns as the report has them before anything was asked.
  std::vector<TableColumn> ColumnsNow() const;
  void ShowColumns();
  std::vector<std::size_t> ShownColumns() const;
  /// Another inventory unit: its name stands in captions, and what is built is of the old one.
  void FollowUnit();
  void SetColumns(const std::vector<TableColumn>& columns, const std::vector<std::size_t>& shown);
  /// The list of columns as the grid shows them, and the other way round.
  void ListColumns();
  void ChooseAllColumns(bool shown);
  /// Runs the report under a wait window; false when it was refused.
  bool Run(const QString& text);
  void Show(BuiltReport report);
  void ShowTotals();
  /// The built report as the grid shows it: columns, order, filter.
  void TakeArrangement();
  ReportSort ShownSort() const;
  void SaveArrangement();

  // Saved reports, ranges and the chart (report_form_saved.cpp).
  void OpenSaved(const std::string& name);
  void ArrangeAsSaved(BuiltReport& built);
  void ListRanges();
  /// The saved range that is chosen; nullptr when it is another.
  const NamedRange* KeptRange() const;
  void ShowChart();

  void OpenClicked(int row, int column);
  /// What a row leads to: the report that it sums up, or its record.
  void OpenOf(std::size_t row);
  std::optional<ReportCell> CellAt(int row, int column) const;
  Result<void> TakeEdit(int row, int column, const std::string& typed);
  void ToggleOrTell();
  void EditNotes(const ReportCell& cell);
  bool IsTyping() const;
  void RefreshNow();

  const ReportDefinition& definition_;
  TextField* subject_ = nullptr;
  ComboField* range_ = nullptr;
  DateField* from_ = nullptr;
  DateField* to_ = nullptr;
  ComboField* user_ = nullptr;
  std::vector<OptionField> options_;
  CheckListField* databases_ = nullptr;
  CheckListField* columns_ = nullptr;
  CommandButton* find_ = nullptr;
  CommandButton* print_ = nullptr;
  CommandButton* export_ = nullptr;
  CommandButton* upload_ = nullptr;
  CommandButton* save_ = nullptr;
  CommandButton* chart_ = nullptr;
  CommandButton* keepRange_ = nullptr;
  ChartPanel* chartPanel_ = nullptr;
  QLineEdit* filter_ = nullptr;
  QLabel* title_ = nullptr;
  QLabel* count_ = nullptr;
  Grid* grid_ = nullptr;
  std::shared_ptr<ReportSource> source_;
  std::shared_ptr<BuiltReport> report_;
  std::map<std::string, int> builtWith_;
  std::optional<ColorKind> kind_;
  std::vector<TableColumn> shownColumns_;
  int unit_ = session.UMI;
  std::vector<NamedRange> ranges_;
  std::optional<SavedReport> saved_;
  bool arrangesSaved_ = false;
  bool quiet_ = false;
  bool running_ = false;
  bool settling_ = false;
  qint64 lasted_ = 0;
  QTimer refresh_;
};

}  // namespace vellumark::desktop
