#include "desktop/exchange/export_formulas_form.h"

#include <QTabWidget>
#include <set>

#include "core/exchange/formula_writer.h"
#include "desktop/exchange/database_list.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/text.h"
#include "desktop/tools/checked_list.h"

namespace vellumark::desktop {
namespace {

constexpr int kLeastList = 216;  // filter, caption and some rows
constexpr int kNameWidth = 420;
constexpr int kTextWidth = 560;
// In the order of optDates.
enum Dates { kAllDates, kEntered, kModified };

QString Sentences(const std::vector<std::string>& sentences) {
  QString text;
  for (const std::string& sentence : sentences) text += (text.isEmpty() ? "" : " ") + Q(sentence);
  return text;
}

}  // namespace

class DBExport_Formulas::Names : public CheckedSource {
 public:
  void Show(std::vector<std::string> names) {
    std::set<std::string> chosen;
    for (const int row : CheckedRows()) chosen.insert(Name(row));
    names_ = std::move(names);
    ResetChecks(names_.size());
    for (int row = 0; row < Rows(); ++row)
      if (chosen.contains(Name(row))) SetChecked(row, true);
  }
  int Rows() const override { return static_cast<int>(names_.size()); }
  std::string Text(int row, int column) const override { return column == 1 ? Name(row) : std::string(); }
  const std::string& Name(int row) const { return names_.at(static_cast<std::size_t>(row)); }

 private:
  std::vector<std::string> names_;
};

DBExport_Formulas::DBExport_Formulas(WindowList& windowList, FileChooser choose)
    : Window(windowList, "DBExport_Formulas", tr("Export Formulas")),
      choose_(std::move(choose)),
      names_(std::make_shared<Names>()) {
  setWindowIcon(Icon("DBTools"));
  Form form(*this);
  TabSet tabs = form.Tabs("tabSteps");
  steps_ = tabs.Widget();
  BuildSelection(tabs.Page(tr("Step &1 - Export Formula Selection"), "tabSelection"));
  BuildFormat(tabs.Page(tr("Step &2 - File Format"), "tabFormat"));
  BuildFile(tabs.Page(tr("Step &3 - Save File To"), "tabFile"));
  form.ButtonsWithoutDefault({save_ = form.Button("cmdSave", tr("&Save")), form.Button("cmdClose", tr("Close"))});
  for (Field* field : std::initializer_list<Field*>{database_, by_, from_, to_, format_}) field->DoNotTrack();
  ListDatabases(*database_, session);
  ListFormulas();
  ShowFormat();
}

DBExport_Formulas::~DBExport_Formulas() = default;

void DBExport_Formulas::BuildSelection(Form form) {
  database_ = form.Combo("cmbDBList_Formulas");
  database_->setMinimumWidth(180);
  database_->Means("Database");
  form.Row(tr("&Database"), database_);
  by_ = form.Radio("optDates",
                   {{"optAllDates", tr("All")}, {"optEntered", tr("Date Entered")}, {"optModified", tr("Modified")}},
                   Qt::Horizontal);
  form.Row(tr("Da&tes"), by_);
  from_ = form.Date("dtFrom");
  to_ = form.Date("dtTo");
  from_->Means("From");
  to_->Means("To");
  to_->setAccessibleName(tr("Last day"));
  form.Row(tr("&From"), {from_, form.Hint(tr("to")), to_});
  Grid* grid = form.Table("lstMixes");
  grid->setAccessibleName(tr("Master Formulas"));
  list_ = new CheckedList(*grid, names_, {GridColumn::Text(tr("Color Name"), kNameWidth)});
  grid->ShowFilter(tr("Filter"));
  grid->SetEmptyText(tr("There are no Master Formulas of these days"));
  grid->setMinimumHeight(kLeastList);
  form.Wide(grid, 1);
  form.Wide(selected_ = form.Label("lblSelected"));
  form.ButtonsWithoutDefault(
      {form.Button("cmdSelectAll", tr("Select &All")), form.Button("cmdDeselectAll", tr("Deselect A&ll"))});
  database_->OnChosen([this](int) { ListFormulas(); });
  connect(by_, &RadioField::ChosenChanged, this, [this] { ListFormulas(); });
  for (DateField* date : {from_, to_}) connect(date, &QDateEdit::dateChanged, this, [this] { ListFormulas(); });
  connect(list_, &CheckedList::CheckedChanged, this, [this] { Changed(); });
}

void DBExport_Formulas::BuildFormat(Form form) {
  std::vector<RadioField::Option> options;
  for (int n = 0; n < kWrittenFormats; ++n)
    options.push_back({QString("optFormat%1").arg(n), Q(FormulaFormats()[static_cast<std::size_t>(n)].option)});
  format_ = form.Radio("optFormat", options);
  format_->Means("Format");
  form.Row(tr("Format"), format_);
  lost_ = form.Hint({}, "lblLost");
  lost_->setWordWrap(true);
  lost_->setMinimumWidth(kTextWidth);
  form.Row(tr("Left out"), lost_);
  form.Row({form.Button("cmdFormatInfo", tr("Format &Info"))});
  form.Stretch();
  connect(format_, &RadioField::ChosenChanged, this, [this] { ShowFormat(); });
}

void DBExport_Formulas::BuildFile(Form form) {
  fileName_ = form.Hint({}, "lblFile");
  fileName_->setWordWrap(true);
  fileName_->setMinimumWidth(kTextWidth);
  form.Row(tr("File"), fileName_);
  form.Row({form.Button("cmdBrowse", tr("&Browse ..."))});
  form.Stretch();
}

FormulaSelection DBExport_Formulas::Range() const {
  FormulaSelection selection;
  selection.database = database_->Text();
  if (by_->Chosen() == kAllDates) return selection;
  selection.from = from_->Date();
  selection.to = to_->Date();
  selection.by = by_->Chosen() == kModified ? FormulaDate::Modified : FormulaDate::Entered;
  return selection;
}

FormulaFormat DBExport_Formulas::Format() const {
  return static_cast<FormulaFormat>(format_->Chosen());
}

void DBExport_Formulas::ListFormulas() {
  auto names = FormulasOfRange(session, Range());
  // A range that ends before it begins has none; the operator is still at it.
  names_->Show(names ? *std::move(names) : std::vector<std::string>());
  list_->Refresh();
  Changed();
}

void DBExport_Formulas::ShowFormat() {
  lost_->setText(Sentences(WhatIsLost(Format())));
  const std::string_view extension = FormulaFormats()[static_cast<std::size_t>(Format())].extension;
  if (!file_.empty()) file_.replace_extension(extension);
  fileName_->setText(file_.empty() ? tr("Click the Browse button to choose the file.") : Q(file_.string()));
  Changed();
}

void DBExport_Formulas::UpdateEnabled() {
  if (save_ == nullptr) return;
  for (QWidget* date : {from_, to_}) date->setEnabled(by_->Chosen() != kAllDates);
  selected_->setText(tr("Colors Selected - %1").arg(names_->CheckedRows().size()) + "   " +
                     tr("of %1").arg(names_->Rows()));
}

void DBExport_Formulas::OnChanges(const std::vector<Change>& changes) {
  bool databases = false;
  bool formulas = false;
  for (const Change& change : changes) {
    databases |= change.kind == Change::Kind::DatabaseList;
    formulas |= change.kind == Change::Kind::Mix;
  }
  if (databases) ListDatabases(*database_, session);
  if (databases || formulas) ListFormulas();
}

void DBExport_Formulas::cmdSelectAll_Click() {
  list_->CheckShown(true);
}

void DBExport_Formulas::cmdDeselectAll_Click() {
  list_->UncheckAll();
}

void DBExport_Formulas::cmdFormatInfo_Click() {
  windows.OpenForm("ExportImportFileExamples", {{"Format", format_->Chosen()}});
}

void DBExport_Formulas::cmdBrowse_Click() {
  const FormulaFormatRow& row = FormulaFormats()[static_cast<std::size_t>(Format())];
  const QString extension = Q(row.extension);
  const QString path = ChooseDocument(
      choose_, session.prompt, {tr("Save File To"), tr("Formula file (*%1)").arg(extension), extension, {}}, this);
  if (path.isEmpty()) return;
  file_ = std::filesystem::path(U8(path));
  ShowFormat();
}

void DBExport_Formulas::cmdSave_Click() {
  const std::vector<int> rows = names_->CheckedRows();
  if (rows.empty()) {
    steps_->setCurrentIndex(0);
    return ShowRefusal({"No Formulas Selected", "No Master Formulas selected for export.", "lstMixes"});
  }
  if (file_.empty()) cmdBrowse_Click();
  if (file_.empty()) return;
  FormulaSelection selection = Range();
  // All of the list go out as the range that they are.
  if (static_cast<int>(rows.size()) < names_->Rows())
    for (const int row : rows) selection.names.push_back(names_->Name(row));
  Result<FormulaExport> done = FormulaExport{};
  {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Exporting Formulas ..."));
    done = ExportFormulas(session, Format(), selection, file_);
  }
  if (!Accepted(done)) return;
  session.prompt.Tell(std::string(kExportCompleteTitle), ExportCompleteText(*done, file_),
                      vellumark::Icon::Information);
  // The next file is another one, which is asked for.
  file_.clear();
  ShowFormat();
}

}  // namespace vellumark::desktop
