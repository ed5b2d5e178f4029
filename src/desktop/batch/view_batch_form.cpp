#include "desktop/batch/view_batch_form.h"

#include <algorithm>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/cost.h"
#include "core/batch/cost_model.h"
#include "core/batch/leave.h"
#include "core/batch/more_data.h"
#include "core/batch/open.h"
#include "core/batch/rows.h"
#include "core/batch/ticket.h"
#include "core/colors/color_tables.h"
#include "core/colors/guide_formulas.h"
#include "core/colors/ink.h"
#include "core/labels/batch_containers.h"
#include "core/session/rights.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/print_label.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kInkSize = 32;
constexpr int kFiguresHeight = 264;  // eight lines

const char* MarkOf(LineKind kind) {
  return kind == LineKind::Mix ? "recycled" : kind == LineKind::Basic ? "basic" : "additions";
}

// Names, places and the like, of which most are empty.
QString Joined(const std::vector<std::string>& texts) {
  QStringList filled;
  for (const std::string& text : texts)
    if (!text.empty()) filled += Q(text);
  return filled.isEmpty() ? QString::fromUtf8("–") : filled.join(QString::fromUtf8("  ·  "));
}

// What was taken from stock, each with its ink.
class LotRows : public RecordRows<BatchLotRow> {
 public:
  explicit LotRows(const Session& session)
      : RecordRows(BatchLotColumns(session), {"IngName", "LotNumber", "LotLoc", "LotContID", "LotQty", "Unit"}), session_(session) {}
  std::optional<QColor> Swatch(int row, int column) const override {
    if (column != 0) return std::nullopt;
    const BatchLotRow& lot = At(row);
    return ColorOf(InkOf(session_, ColorKindOf(lot.IngType), lot.IngName));
  }

 private:
  const Session& session_;
};

}  // namespace

ViewBatchForm::ViewBatchForm(WindowList& windowList) : Window(windowList, "ViewBatchForm", tr("View Batch")) {
  setWindowIcon(Icon("Batch"));
  Form form(*this);
  BuildHead(form);
  TabSet tabs = form.Tabs("TabBatch");
  BuildRecipe(tabs.Page(tr("Recipe"), "TabRecipe"));
  BuildLotsAndJobs(tabs.Page(tr("Lots and Jobs"), "TabLots"));
  BuildFigures(tabs.Page(tr("Costs and Data"), "TabFigures"));
  BuildNotes(tabs.Page(tr("Notes"), "TabNotes"));
  form.Buttons({form.Button("cmdClose", tr("Close")),
                formula_ = form.Button("cmdFormula", tr("Master &Formula"), Qt::Key_F6),
                compare_ = form.Button("cmdModified", tr("&Modified Formula"), Qt::Key_F7),
                print_ = form.Button("cmdPrint", tr("&Print")),
                label_ = form.Button("cmdPrintLabel", tr("&Labels"), Qt::CTRL | Qt::Key_L)});
}

void ViewBatchForm::BuildHead(Form& form) {
  form.Row(tr("Batch ID #"), {number_ = form.Value("lblBatchNo"), complete_ = form.Hint(tr("Complete"), "lblComplete"),
                              entered_ = form.Hint({}, "lblDateEntered")});
  form.Row(tr("Color Name"), {ink_ = new SwatchView("imgSwatch", {kInkSize, kInkSize}, SwatchView::Unknown::Empty),
                              color_ = form.Value("lblColorName"), code_ = form.Hint({}, "lblColorCode"),
                              modified_ = form.Label("lblModifiedFormula", tr("MODIFIED FORMULA"))});
}

void ViewBatchForm::BuildRecipe(Form form) {
  form.Row(tr("Quantity"),
           {quantity_ = form.Value("lblQuantity"), form.Hint(tr("made")), total_ = form.Value("lblTotal"),
            form.Hint(tr("recycled")), recycled_ = form.Value("lblPercentRecycled")});
  form.Wide(rows_ = form.Table("fgRows"), 1);
  rows_->SetColumns({GridColumn::Text(tr("Kind"), 128), GridColumn::Text(tr("Color Name"), 360),
                     GridColumn::Amount(tr("Amount"), 160), GridColumn::Text(tr("Unit"), 64)});
}

void ViewBatchForm::BuildLotsAndJobs(Form form) {
  form.Heading(tr("Ingredients by lot"));
  form.Wide(lots_ = form.Table("fgLots"), 2);
  lots_->SetEmptyText(tr("Nothing was taken from stock"));
  form.Heading(tr("Jobs"));
  form.Wide(jobs_ = form.Table("fgJobs"), 1);
  jobs_->SetColumns({GridColumn::Text(tr("Job Number"), 280), GridColumn::Number(tr("Qty Used"), 112),
                     GridColumn::Text(tr("Unit"), 64)});
  jobs_->SetEmptyText(tr("No job"));
  form.Row(tr("Qty Returned To Inv"), {returned_ = form.Value("lblInvQty"), madeLot_ = form.Hint({}, "lblLotNumber")});
}

void ViewBatchForm::BuildFigures(Form form) {
  std::vector<Form> columns = form.Columns(2);
  columns[0].Heading(tr("Costs and emissions"));
  columns[0].Wide(costs_ = columns[0].Table("fgCosts"), 1);
  costs_->SetColumns({GridColumn::Text(tr("Figure"), 368), GridColumn::Number(tr("Amount"), 112)});
  columns[1].Heading(tr("More Data"));
  columns[1].Wide(moreData_ = columns[1].Table("fgMoreData"), 1);
  moreData_->SetColumns({GridColumn::Text(tr("Field"), 184), GridColumn::Text(tr("Value"), 264)});
  moreData_->SetEmptyText(tr("Nothing was entered"));
  for (Grid* grid : {costs_, moreData_}) grid->setMinimumHeight(kFiguresHeight);
}

void ViewBatchForm::BuildNotes(Form form) {
  form.Row(tr("Short Note"), shortNote_ = form.Label("lblShortNote"));
  form.Row(tr("Batch Note"), notes_ = form.Note("txtNotes", 3));
  form.Row(tr("Ingredient Notes"), ingNotes_ = form.Note("txtIngNotes", 3));
  form.Row(tr("Master Formula Notes"), formulaNotes_ = form.Note("txtMixNotes", 3));
  for (NoteField* note : {notes_, ingNotes_, formulaNotes_}) {
    note->setReadOnly(true);
    note->DoNotTrack();
  }
}

// ---- Showing

void ViewBatchForm::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("BatchNo")) return;
  const auto batchNo = static_cast<std::int32_t>(arguments.Number("BatchNo"));
  if (ShowBatch(batchNo)) return;
  QString text = tr("Batch ID # %1 is not in this Database.").arg(Q(BatchNoText(batchNo)));
  if (const std::string where = WhereMoved(session, batchNo); !where.empty()) text += "\n" + Q(where);
  session.prompt.Tell(U8(tr("Batch Not Found")), U8(text));
  if (!record_) QMetaObject::invokeMethod(this, &ViewBatchForm::Leave, Qt::QueuedConnection);
}

bool ViewBatchForm::ShowBatch(std::int32_t batchNo) {
  std::optional<BatchRecord> found = ReadBatch(session, batchNo);
  if (!found) return false;
  record_ = std::move(found);
  isGuideModified_ = record_->work.formulaFound && IsFormulaModified(session, record_->work.Color_Name);
  ShowHead();
  ShowRecipe();
  ShowLotsAndJobs();
  ShowFigures();
  shortNote_->setText(Joined({record_->fields.ShortNote}));
  notes_->SetText(record_->fields.Notes);
  ingNotes_->SetText(record_->fields.IngNotes);
  formulaNotes_->SetText(record_->work.formula.Notes);
  Changed();
  return true;
}

void ViewBatchForm::ShowHead() {
  const BatchWork& work = record_->work;
  number_->SetText(BatchNoText(record_->BatchNo));
  complete_->setVisible(record_->Complete);
  const QString date = MomentText(record_->Date_Entered);
  entered_->setText(record_->Username.empty() ? tr("entered %1").arg(date)
                                              : tr("entered %1 by %2").arg(date, Q(record_->Username)));
  ink_->Show(InkOf(session, ColorKind::Mix, work.Color_Name));
  color_->SetText(work.Color_Name);
  code_->setText(work.formulaFound ? Q(work.formula.Color_Code) : tr("This Master Formula is no longer on file."));
  modified_->setVisible(record_->modifiedFormula);
}

void ViewBatchForm::ShowRecipe() {
  const BatchWork& work = record_->work;
  const std::string unit(UnitName(work.UMF));
  quantity_->SetText(work.QuantityText + " " + unit);
  total_->SetText(Fixed(work.ShownTotal, 3) + " " + unit);
  recycled_->SetText(PercentRecycledText(work));
  auto source = std::make_shared<LeadingTable>();
  for (const BatchRow& row : work.Rows) {
    TableSource::Cell kind{std::string(LineKindName(row.kind))};
    kind.mark = MarkOf(row.kind);
    TableSource::Cell name(row.name);
    name.swatch = ColorOf(InkOf(session, ColorKindOf(row.kind), row.name));
    source->Add({kind, name, Fixed(row.amount, 3), unit}, {ColorTarget(session, ColorKindOf(row.kind), row.name)});
  }
  rows_->SetSource(source);
  rows_->SetTotals({"", U8(tr("Total")), Fixed(work.ShownTotal, 3), unit});
}

void ViewBatchForm::ShowLotsAndJobs() {
  const BatchWork& work = record_->work;
  const std::string unit(UnitName(work.UMF));
  auto lots = std::make_shared<LotRows>(session);
  lots->rows = ReadBatchLots(session, record_->BatchNo);
  lots_->SetColumns(lots->Columns());
  lots_->SetSource(lots);
  auto jobs = std::make_shared<LeadingTable>();
  for (const BatchJobLine& job : record_->jobs)
    jobs->Add({job.JobNumber, Fixed(job.QtyUsed, 3), unit}, {{.kind = RowTarget::Kind::Job, .name = job.JobNumber}});
  jobs_->SetSource(jobs);
  returned_->SetText(record_->ReturnedText() + " " + unit);
  const BatchFields& fields = record_->fields;
  madeLot_->setText(tr("Lot: %1").arg(Joined({fields.LotNumber, fields.LotLoc, fields.LotContID})));
}

void ViewBatchForm::ShowFigures() {
  const BatchWork& work = record_->work;
  auto costs = std::make_shared<TableSource>();
  if (RightsInForce(session).Edit_Costs > 0) {
    for (const CostLine& line : CostDetail(session, work))
      costs->Add({line.caption, line.amount.Fixed(session.DecimalPlaces)});
    costs->Add({UnitCostCaption(work), work.figures.UnitCost.Fixed(session.DecimalPlaces)});
  } else {
    costs->Add({U8(tr("User Permissions - Price Blocked")), ""});
  }
  costs->Add({"VOC", Fixed(work.figures.VOC, 3)});
  costs->Add({"HAP", Fixed(work.figures.HAP, 3)});
  costs_->SetSource(costs);
  auto data = std::make_shared<TableSource>();
  for (const auto& lines : {UserDataLines(session, record_->fields), LabLines(session, record_->fields)})
    for (const DataLine& line : lines) data->Add({line.caption, line.value});
  moreData_->SetSource(data);
}

void ViewBatchForm::cmdPrint_Click() {
  const Result<Sheet> ticket = BatchTicket(session, *record_);
  if (Accepted(ticket)) PrintSheet(windows, *ticket);
}

void ViewBatchForm::cmdPrintLabel_Click() {
  std::vector<LabelData> labels = LabelsOfContainers(session, record_->BatchNo);
  if (!labels.empty()) OpenLabelForm(windows, std::move(labels));
}

void ViewBatchForm::UpdateEnabled() {
  const bool found = record_ && record_->work.formulaFound;
  formula_->setEnabled(found && windows.Knows("MixColorsForm"));
  print_->setEnabled(record_ && CanPrint(windows));
  label_->setEnabled(record_ && CanPrintLabels(windows));
  compare_->setEnabled(found && isGuideModified_ && windows.Knows("CompareFormulasForm"));
}

void ViewBatchForm::OnChanges(const std::vector<Change>& changes) {
  if (!record_) return;
  const std::string number = std::to_string(record_->BatchNo);
  const bool mine = std::ranges::any_of(changes, [&](const Change& change) {
    if (change.kind == Change::Kind::Settings) return true;
    if (!EqualNoCase(change.database, session.CurrentDatabase)) return false;
    const bool all = change.what == Change::What::All;
    if (change.kind == Change::Kind::Mix) return all || EqualNoCase(change.name, record_->work.Color_Name);
    return change.kind == Change::Kind::Batch && (all || ParseNumber(change.name) == ParseNumber(number));
  });
  // A Batch that is gone is no longer there to be looked at.
  if (mine && !ShowBatch(record_->BatchNo)) Leave();
}

// ---- Commands

void ViewBatchForm::cmdFormula_Click() {
  windows.OpenForm("MixColorsForm", {{"FindRecord", record_->work.Color_Name}});
}

void ViewBatchForm::cmdModified_Click() {
  windows.RunDialog("CompareFormulasForm", {{"Color_Name", record_->work.Color_Name}});
}

}  // namespace vellumark::desktop
