#include "desktop/reports/report_form.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLocale>
#include <algorithm>

#include "core/base/text.h"
#include "core/cloud/cloud_files.h"
#include "core/cloud/cloud_reports.h"
#include "core/colors/rollup.h"
#include "core/reports/detail.h"
#include "core/reports/report_settings.h"
#include "core/reports/report_text.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/text.h"
#include "desktop/reports/chart_panel.h"
#include "desktop/reports/open_row.h"
#include "desktop/reports/report_name_form.h"
#include "desktop/reports/report_source.h"

namespace vellumark::desktop {
namespace {

constexpr qint64 kQuick = 400;  // milliseconds: a report that takes longer is not run again unasked

bool Tells(const ReportDefinition& report, const Change& change) {
  using Kind = Change::Kind;
  switch (change.kind) {
    case Kind::Basic:
    case Kind::Mix:
    case Kind::Batch:
      return !report.group.starts_with("Jobs") || change.kind == Kind::Batch;
    case Kind::Job:
    case Kind::Design:
      return report.group.starts_with("Jobs");
    default:
      return false;
  }
}

}  // namespace

void ReportForm::OnOpen(const Arguments& arguments) {
  if (arguments.Has("Saved")) return OpenSaved(arguments.Text("Saved"));
  bool told = false;
  const char* name = definition_.subject == ReportSubject::Job      ? "JobNumber"
                     : definition_.subject == ReportSubject::Design ? "DesignID"
                                                                    : "Color_Name";
  if (subject_ != nullptr && arguments.Has(name)) {
    subject_->SetText(arguments.Text(name));
    kind_ = arguments.Has("Kind") ? std::optional(arguments.Get<ColorKind>("Kind")) : std::nullopt;
    told = !arguments.Text(name).empty();
  }
  if (range_ != nullptr && arguments.Has("From") && arguments.Has("To")) {
    quiet_ = true;
    from_->SetDate(arguments.Get<DateTime>("From"));
    to_->SetDate(arguments.Get<DateTime>("To"));
    quiet_ = false;
    range_->setCurrentIndex(kCustomRange);
    told = told || !HasSubject();
  }
  told = told || arguments.Has("Run");
  if (told) QMetaObject::invokeMethod(this, &ReportForm::cmdFind_Click, Qt::QueuedConnection);
}

std::string ReportForm::Subject() const {
  if (subject_ == nullptr) return {};
  const auto* name = dynamic_cast<const NameBox*>(subject_);
  return name != nullptr ? name->Name() : Trim(subject_->Text());
}

ReportRequest ReportForm::Request() const {
  ReportRequest request{.kind = kind_};
  if (const NamedRange* kept = KeptRange()) {
    request.rangeName = kept->name;
  } else if (range_ != nullptr && range_->currentIndex() != kCustomRange) {
    request.range = range_->currentIndex();
  } else if (range_ != nullptr) {
    request.range = kCustomRange;
    request.from = from_->Date();
    request.to = to_->Date();
  }
  const std::string subject = Subject();
  if (definition_.subject == ReportSubject::Job) request.job = subject;
  if (definition_.subject == ReportSubject::Design) request.design = subject;
  if (definition_.subject == ReportSubject::Formula || definition_.subject == ReportSubject::Color)
    request.color = subject;
  if (user_ != nullptr && user_->currentIndex() > 0) request.user = user_->Text();
  if (databases_ != nullptr)
    for (const QString& name : databases_->Checked()) request.databases.push_back(U8(name));
  for (const OptionField& field : options_) {
    const int value = field.combo != nullptr ? field.combo->currentIndex() : field.check->isChecked() ? 1 : 0;
    request.options.emplace_back(field.option->name, std::to_string(value));
  }
  return request;
}

// Where they can be chosen, one has to be: with none a request is for all of them.
bool ReportForm::HasDatabase() const {
  return databases_ == nullptr || !databases_->Checked().isEmpty();
}

// ---- Columns

std::vector<TableColumn> ReportForm::ColumnsNow() const {
  ReportWatch watch(session.progress);
  ReportContext context{.session = session, .report = definition_, .watch = watch};
  context.databases = {session.CurrentDatabase};
  for (const ReportOption& option : definition_.options)
    context.options[option.name] = ReadReportOption(session, definition_, option);
  return ReportColumns(context);
}

void ReportForm::ShowColumns() {
  const std::vector<TableColumn> columns = ColumnsNow();
  SetColumns(columns, ReadShownColumns(session, definition_, columns));
  const ReportSort sort = ReadReportSort(session, definition_, columns.size());
  grid_->SetSort({static_cast<int>(sort.column), sort.descending, sort.second ? static_cast<int>(*sort.second) : -1,
                  sort.secondDescending});
  grid_->SetSource(source_);
  count_->setText(tr("0 %1").arg(Q(definition_.noun)));
}

void ReportForm::SetColumns(const std::vector<TableColumn>& columns, const std::vector<std::size_t>& shown) {
  const auto same = [](const TableColumn& a, const TableColumn& b) {
    return a.key == b.key && a.caption == b.caption && a.decimals == b.decimals && a.format == b.format;
  };
  if (std::ranges::equal(columns, shownColumns_, same)) return;
  shownColumns_ = columns;
  std::vector<GridColumn> grid;
  for (const TableColumn& column : columns) {
    grid.push_back(ShownColumn(column, grid.empty()));
    grid.back().shown = std::ranges::find(shown, grid.size() - 1) != shown.end();
  }
  grid_->SetColumns(std::move(grid));
  ListColumns();
}

void ReportForm::ListColumns() {
  quiet_ = true;
  QStringList names;
  for (std::size_t i = 1; i < grid_->Columns().size(); ++i) names += grid_->Columns()[i].caption;
  columns_->SetItems(names);
  for (int i = 0; i < columns_->count(); ++i) columns_->SetChecked(i, grid_->IsShown(i + 1));
  quiet_ = false;
}

void ReportForm::ChooseAllColumns(bool shown) {
  quiet_ = true;
  for (int i = 1; i < static_cast<int>(grid_->Columns().size()); ++i) grid_->Model().Column(i).shown = shown;
  if (grid_->Columns().size() > 1) grid_->ShowColumn(1, shown);
  quiet_ = false;
  ListColumns();
  ShowTotals();
}

// ---- Running

void ReportForm::cmdFind_Click() {
  if (running_) return;
  if (!HasDatabase()) return ShowRefusal({"Databases", "Select a Database.", "lstDatabases"});
  if (range_ != nullptr && range_->currentIndex() != kCustomRange) {
    if (KeptRange() == nullptr) SaveDateRange(session, definition_, range_->currentIndex());
    ChooseRange(range_->currentIndex());
  }
  if (Run(tr("Building Report ...")) && !report_->complete)
    session.prompt.Tell(report_->warningTitle, report_->warning);
}

bool ReportForm::Run(const QString& text) {
  running_ = true;
  ReportWatch watch(session.progress);
  RunPendingPassesOrTell(session);
  const auto context = PrepareReport(session, definition_, Request(), watch);
  running_ = false;
  if (!Accepted(context)) {
    if (context.error().title == "Color Not Found") subject_->SetText("");
    return false;
  }
  if (subject_ != nullptr) {
    subject_->SetText(context->name);
    if (definition_.subject == ReportSubject::Color) kind_ = context->kind;
  }
  if (range_ != nullptr && range_->currentIndex() == kCustomRange) {
    quiet_ = true;
    from_->SetDate(context->dates.from);
    to_->SetDate(context->dates.to);
    quiet_ = false;
  }
  running_ = true;
  QElapsedTimer time;
  time.start();
  BuiltReport built = [&] {
    const auto wait = Wait(WaitKind::WaitingForm, text);
    return BuildReport(*context);
  }();
  lasted_ = time.elapsed();
  running_ = false;
  builtWith_ = context->options;
  if (FetchTaskOf(definition_)) grid_->SetEmptyText(tr("No inventory found."));
  Show(std::move(built));
  return true;
}

void ReportForm::Show(BuiltReport built) {
  ArrangeAsSaved(built);
  report_ = std::make_shared<BuiltReport>(std::move(built));
  report_->order.clear();
  // The rows of the grid are those of the report before until all is done.
  settling_ = true;
  SetColumns(report_->columns, report_->shown);
  source_->Show(report_);
  grid_->SetEmptyText(tr("Nothing was found"));
  grid_->Refresh();
  settling_ = false;
  title_->setText(Q(report_->FullTitle()));
  count_->setText(QString("%1 %2").arg(QLocale().toString(static_cast<qlonglong>(report_->count)), Q(report_->noun)));
  ShowTotals();
  Changed();
}

ReportSort ReportForm::ShownSort() const {
  const GridSort& sort = grid_->Sort();
  ReportSort shown{.column = static_cast<std::size_t>(std::max(sort.column, 0)), .descending = sort.descending};
  if (sort.second >= 0) {
    shown.second = static_cast<std::size_t>(sort.second);
    shown.secondDescending = sort.secondDescending;
  }
  return shown;
}

std::vector<std::size_t> ReportForm::ShownColumns() const {
  const std::vector<int> shown = grid_->ShownColumns();
  return {shown.begin(), shown.end()};
}

void ReportForm::TakeArrangement() {
  report_->order.clear();
  for (const int row : grid_->ShownRows()) report_->order.push_back(static_cast<std::size_t>(row));
  report_->shown = ShownColumns();
  for (const std::size_t column : report_->shown)
    report_->columns[column].width = grid_->ColumnWidth(static_cast<int>(column)) * kTwipsPerPixel;
  report_->sort = ShownSort();
  report_->filter = U8(filter_->text());
}

void ReportForm::ShowTotals() {
  if (settling_) return;
  ShowChart();
  if (!report_ || report_->totals.empty()) {
    grid_->SetTotals({});
    return;
  }
  TakeArrangement();
  const std::vector<TableValue> sums = report_->Totals();
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < sums.size(); ++i)
    texts.push_back(std::holds_alternative<std::monostate>(sums[i]) ? std::string()
                                                                    : CellTextInWindow(report_->columns[i], sums[i]));
  if (!texts.empty() && texts.front().empty()) texts.front() = report_->totals;
  grid_->SetTotals(std::move(texts));
}

void ReportForm::cmdClear_Click() {
  report_.reset();
  source_->Show(nullptr);
  grid_->Refresh();
  grid_->SetTotals({});
  ShowChart();
  if (subject_ != nullptr) subject_->SetText("");
  kind_.reset();
  title_->setText(" " + Q(definition_.name));
  count_->setText(tr("0 %1").arg(Q(definition_.noun)));
  Changed();
  (subject_ != nullptr ? static_cast<QWidget*>(subject_) : find_)->setFocus();
}

void ReportForm::UpdateEnabled() {
  if (print_ == nullptr) return;  // it is being built
  const bool filled = report_ && report_->Rows() > 0;
  find_->setEnabled(HasDatabase());
  print_->setEnabled(filled && CanPrint(windows));
  export_->setEnabled(filled && windows.Knows("ReportExportForm"));
  upload_->setEnabled(filled && upload_->toolTip().isEmpty());
  save_->setEnabled(filled && HasDatabase() && windows.Knows("ReportNameForm"));
  chart_->setEnabled(filled || !chartPanel_->isHidden());
  if (keepRange_ == nullptr) return;
  const bool kept = KeptRange() != nullptr;
  keepRange_->setText(kept ? tr("Forget these dates") : tr("Keep these dates"));
  keepRange_->setVisible(kept || range_->currentIndex() == kCustomRange);
}

void ReportForm::cmdExport_Click() {
  TakeArrangement();
  windows.RunDialog("ReportExportForm",
                    {{"Report", static_cast<const BuiltReport*>(report_.get())}, {"Definition", &definition_}});
}

void ReportForm::cmdCloudGet_Click() {
  if (!windows.RunDialog("Cloud_GetPutData_Form", {{"Task", *FetchTaskOf(definition_)}})) return;
  if (!HasSubject() || !Subject().empty()) cmdFind_Click();
}

void ReportForm::cmdCloudReportUpload_Click() {
  const ExportOptions options = ReadExportOptions(session, definition_);
  if (!Accepted(CheckCloudFormat(options.format))) return;
  TakeArrangement();
  const std::string name = options.fileName.empty() ? CloudReportName(session, report_->FullTitle()) : options.fileName;
  windows.RunDialog("CloudReportUploadForm", {{"Name", name}, {"Text", ReportText(*report_, options)}});
}

bool ReportForm::MayClose() {
  if (running_) return false;
  // One that is saved leaves the report itself as it was.
  if (!saved_) SaveArrangement();
  return true;
}

void ReportForm::SaveArrangement() {
  std::vector<std::size_t> shown;
  for (const int column : grid_->ShownColumns()) shown.push_back(static_cast<std::size_t>(column));
  if (shown != ReadShownColumns(session, definition_, shownColumns_))
    SaveShownColumns(session, definition_, shownColumns_, shown);
  const ReportSort kept = ShownSort();
  if (kept != ReadReportSort(session, definition_, shownColumns_.size())) SaveReportSort(session, definition_, kept);
  std::vector<TableColumn> columns = shownColumns_;
  bool widened = false;
  for (const std::size_t column : shown) {
    const int width = grid_->ColumnWidth(static_cast<int>(column));
    if (width == ShownColumn(columns[column], column == 0).width) continue;
    widened = true;
    columns[column].width = width * kTwipsPerPixel;
  }
  if (widened) SaveColumnWidths(session, definition_, columns, shown);
  KeepExportOrder(session, definition_, shownColumns_, shown);
}

// ---- Rows

void ReportForm::OpenClicked(int row, int column) {
  if (QApplication::keyboardModifiers() != Qt::NoModifier) return;
  const auto cell = CellAt(row, column);
  if (!cell) return;
  if (definition_.edits) {
    const TableColumn& of = cell->report.columns[cell->column];
    if (of.key == "Recycle" || of.format == Format::Notes) ToggleOrTell();
    return;  // a double click opens
  }
  OpenOf(cell->row);
}

void ReportForm::OpenOf(std::size_t row) {
  const auto detail = DetailOf(session, definition_, *report_, row, Subject(), kind_);
  if (!detail) return ShowRefusal(detail.error());
  if (!*detail) return OpenRow(windows, report_->targets.at(row));
  Arguments arguments;
  if (const std::string& color = (*detail)->color; !color.empty()) arguments.Set("Color_Name", color);
  if ((*detail)->kind) arguments.Set("Kind", *(*detail)->kind);
  if (from_ != nullptr && from_->Date() && to_->Date())
    arguments.Set("From", *from_->Date()).Set("To", *to_->Date());
  else
    arguments.Set("Run", true);
  windows.OpenForm((*detail)->report->window, arguments);
}

std::optional<ReportCell> ReportForm::CellAt(int row, int column) const {
  if (!report_ || row < 0 || column < 0 || static_cast<std::size_t>(row) >= report_->Rows()) return std::nullopt;
  return ReportCell{definition_, *report_, builtWith_, static_cast<std::size_t>(row), static_cast<std::size_t>(column)};
}

Result<void> ReportForm::TakeEdit(int row, int column, const std::string& typed) {
  const auto cell = CellAt(row, column);
  if (!cell) return {};
  if (auto may = RequireReport(session, definition_, windows.IsInEdit("BatchForm")); !may) return may;
  return EditReportCell(session, *cell, typed);
}

// F2, and a click on Yes and No and on notes.
void ReportForm::ToggleOrTell() {
  const QModelIndex index = grid_->View().currentIndex();
  const auto cell = index.isValid() ? CellAt(grid_->CurrentRow(), index.column()) : std::nullopt;
  if (!cell) return;
  if (const auto may = RequireEditable(session, *cell); !may) return ShowRefusal(may.error());
  if (cell->report.columns[cell->column].format == Format::Notes) return EditNotes(*cell);
  if (cell->report.columns[cell->column].key != "Recycle") return grid_->View().edit(index);
  const bool yes = CellText(cell->report.columns[cell->column], cell->report.Cell(cell->row, cell->column)) == "Yes";
  static_cast<void>(
      Accepted(TakeEdit(static_cast<int>(cell->row), static_cast<int>(cell->column), yes ? "no" : "yes")));
}

void ReportForm::EditNotes(const ReportCell& cell) {
  const auto* notes = std::get_if<std::string>(&cell.report.Cell(cell.row, cell.column));
  const KeepText keep = [this, row = static_cast<int>(cell.row), column = static_cast<int>(cell.column)](
                            const std::string& text) { return TakeEdit(row, column, text); };
  windows.RunDialog("ReportNotesForm", {{"Title", U8(tr("Notes of %1").arg(Q(cell.report.targets.at(cell.row).name)))},
                                        {"Notes", notes == nullptr ? std::string() : *notes},
                                        {"Keep", keep}});
}

// ---- What others change

bool ReportForm::IsTyping() const {
  const QWidget* focus = QApplication::focusWidget();
  return focus != nullptr && focus != &grid_->View() && grid_->View().isAncestorOf(focus);
}

void ReportForm::OnChanges(const std::vector<Change>& changes) {
  if (std::ranges::any_of(changes, [](const Change& one) { return one.kind == Change::Kind::Settings; })) {
    ListRanges();
    FollowUnit();
  }
  if (report_ && std::ranges::any_of(changes, [&](const Change& change) { return Tells(definition_, change); }))
    refresh_.start();
}

void ReportForm::FollowUnit() {
  if (!session.DataFileDB || session.UMI == unit_) return;
  unit_ = session.UMI;
  if (report_)
    refresh_.start();
  else
    SetColumns(ColumnsNow(), ShownColumns());
}

void ReportForm::RefreshNow() {
  if (!report_ || !session.DataFileDB) return;
  if (running_ || IsTyping() || QApplication::activeModalWidget() != nullptr) {
    refresh_.start();
  } else if (lasted_ > kQuick) {
    count_->setText(tr("Data has changed: press Find"));
  } else {
    Run(definition_.key == "Reorder" ? tr("Updating Reorder Report...") : tr("Building Report ..."));
  }
}

}  // namespace vellumark::desktop
