#include "desktop/reports/report_export_form.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <array>

#include "core/reports/build.h"
#include "core/reports/export.h"
#include "core/session/settings.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kUserDefined = 1;

}  // namespace

ReportExportForm::ReportExportForm(WindowList& windowList, QWidget* owner, FileChooser choose)
    : Dialog(windowList, owner, "ReportExportForm", tr("Export Control")), choose_(std::move(choose)) {
  Form form(*this);
  TabSet tabs = form.Tabs("TabExport");
  Form file = tabs.Page(tr("&File"), "TabFile");
  file.Row(tr("F&older"), {folder_ = file.Text("txtFolder"), file.Button("cmdBrowse", tr("&Browse ..."))});
  file.Row(keepFolder_ = file.Check("chkDefaultFolder", tr("Make selected folder the default save location")));
  file.Row(tr("File &name"), name_ = file.Text("txtFileName", TextRule::Any(200)));
  file.Row(keepName_ = file.Check("chkDefaultName", tr("Make File Name the default save name")));
  file.Row(tr("Format"), format_ = file.Radio("OptFormat", {{"OptText", tr("&Text, tab delimited (.txt)")},
                                                            {"OptDatabase", tr("&Database (.mdb)")},
                                                            {"OptSpreadsheet", tr("&Spreadsheet (.xlsx)")}}));
  file.Stretch();
  Form options = tabs.Page(tr("O&ptions"), "TabOptions");
  options.Row(tr("Include"),
              {headings_ = options.Check("chkHeadings", tr("&Headings")), data_ = options.Check("chkData", tr("&Data")),
               totals_ = options.Check("chkTotals", tr("Tota&ls"))});
  options.Row(tr("Column order"), order_ = options.Radio("OptOrder", {{"OptDefault", tr("&Vellumark Default")},
                                                                      {"OptUser", tr("&User defined")}}));
  columns_ = options.CheckList("lstOrder");
  columns_->setAccessibleName(tr("Columns in their order"));
  options.Wide(columns_, 1);
  ButtonLine(options, {options.Button("cmdUp", tr("Move &up")), options.Button("cmdDown", tr("Move do&wn"))});
  BuildHelp(tabs.Page(tr("How to open an Export File with Microsoft Excel"), "TabHelp"));
  QuietParagraph(form, tr("Settings are saved automatically. Options are unique to every report."));
  form.Buttons({form.Button("cmdSave", tr("Save")), form.Button("cmdCancel", tr("Cancel"))});
  folder_->setMinimumWidth(360);
  resize(640, 460);
}

void ReportExportForm::OnOpen(const Arguments& arguments) {
  report_ = arguments.Get<const BuiltReport*>("Report");
  definition_ = arguments.Get<const ReportDefinition*>("Definition");
  const ExportOptions options = ReadExportOptions(session, *definition_);
  const QString folder = Q(GetSetting(session, setting::ReportExportForm_DefaultExportLocation));
  const bool known = !folder.isEmpty() && QFileInfo(folder).isDir();
  folder_->SetText(U8(QDir::toNativeSeparators(known ? folder : QDir::homePath())));
  keepFolder_->setChecked(known);
  name_->SetText(options.fileName.empty() ? report_->title : options.fileName);
  keepName_->setChecked(!options.fileName.empty());
  format_->Choose(static_cast<int>(options.format));
  headings_->setChecked(options.headings);
  data_->setChecked(options.data);
  totals_->setChecked(options.totals);
  order_->Choose(options.order.empty() ? 0 : kUserDefined);
  ShowOrder();
  name_->selectAll();
  name_->setFocus();
}

void ReportExportForm::BuildHelp(Form form) {
  const std::array<std::pair<QString, QString>, 3> methods{
      std::pair{tr("Method 1"), tr("Choose the format Spreadsheet (.xlsx) and open the file with a double click.")},
      {tr("Method 2"),
       tr("Start Excel, choose Open, let it show all files, choose the text file and press Finish in the "
          "Text Import Wizard: the columns are parted by tabs.")},
      {tr("Method 3"), tr("Open the text file with a text editor, select all of it, copy, and paste into an empty "
                          "sheet.")}};
  for (const auto& [title, text] : methods) {
    form.Heading(title);
    Paragraph(form, text);
  }
  form.Stretch();
}

// The kept order first; columns that it does not name stand behind it, left out.
void ReportExportForm::ShowOrder() {
  QStringList names;
  const auto list = [&](std::size_t column) {
    const QString name = Q(PlainCaption(report_->columns[column].Caption()));
    if (!names.contains(name)) names += name;
  };
  for (const std::string& name : ReadExportOrder(session, *definition_))
    for (const std::size_t column : FindReportColumns(report_->columns, name))
      if (std::ranges::find(report_->shown, column) != report_->shown.end()) list(column);
  const qsizetype kept = names.size();
  for (const std::size_t column : report_->shown) list(column);
  columns_->SetItems(names);
  for (int i = 0; i < columns_->count(); ++i) columns_->SetChecked(i, kept == 0 || i < kept);
  columns_->setCurrentRow(0);
}

void ReportExportForm::Move(int by) {
  const int row = columns_->currentRow();
  if (row < 0 || row + by < 0 || row + by >= columns_->count()) return;
  QListWidgetItem* item = columns_->takeItem(row);
  columns_->insertItem(row + by, item);
  columns_->setCurrentRow(row + by);
}

void ReportExportForm::UpdateEnabled() {
  const bool own = order_->Chosen() == kUserDefined;
  for (const char* name : {"lstOrder", "cmdUp", "cmdDown"}) findChild<QWidget*>(name)->setEnabled(own);
  const ExportFormat format = Chosen();
  data_->setEnabled(format == ExportFormat::Text);
  for (CheckField* part : {headings_, totals_}) part->setEnabled(format != ExportFormat::Jet);
}

void ReportExportForm::cmdBrowse_Click() {
  FileChoice choice{tr("Export Control"), {}, {}, QDir::fromNativeSeparators(folder_->text())};
  choice.onlyFolder = true;
  const QString folder = choose_(choice, this);
  if (!folder.isEmpty()) folder_->SetText(U8(QDir::toNativeSeparators(folder)));
}

// The choices stand in the order of the formats.
ExportFormat ReportExportForm::Chosen() const {
  return static_cast<ExportFormat>(std::max(0, format_->Chosen()));
}

ExportOptions ReportExportForm::Options() const {
  ExportOptions options{.headings = headings_->isChecked(), .data = data_->isChecked(), .totals = totals_->isChecked()};
  options.format = Chosen();
  if (order_->Chosen() == kUserDefined)
    for (const QString& name : columns_->Checked()) options.order.push_back(U8(name));
  if (keepName_->isChecked()) options.fileName = name_->Text();
  return options;
}

void ReportExportForm::cmdSave_Click() {
  WithFiles(*this, tr("File Export"), [&] {
    const ExportOptions options = Options();
    const auto path =
        ExportPath(session, U8(QDir::fromNativeSeparators(folder_->text())), name_->Text(), options.format);
    if (!FormHost::Accepted(path)) return;
    {
      const auto wait = Wait(WaitKind::WaitingForm, tr("Exporting Report ..."));
      ExportReport(*report_, options, session.clock.Now(), *path);
    }
    SaveExportOptions(session, *definition_, options, order_->Chosen() == kUserDefined);
    if (!options.order.empty()) SaveExportOrder(session, *definition_, options.order);
    StoreSettings(session, {setting::ReportExportForm_DefaultExportLocation.To(
                               keepFolder_->isChecked() ? path->parent_path().string() : std::string())});
    session.prompt.Tell("File Export", ExportDoneText(*path));
    accept();
  });
}

}  // namespace vellumark::desktop
