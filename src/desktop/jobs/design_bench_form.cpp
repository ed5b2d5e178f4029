#include "desktop/jobs/design_bench_form.h"

#include "core/base/text.h"
#include "desktop/jobs/table_rows.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/job_box.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kSpotColor = 2;

}  // namespace

DesignBenchForm::DesignBenchForm(WindowList& windowList)
    : Window(windowList, "DesignBenchForm", tr("Design to the Bench")), rows_(std::make_shared<LeadingTable>()) {
  setWindowIcon(Icon("Batch"));
  Form form(*this);
  form.Row(tr("Design"), design_ = form.Label("lblDesign"));
  impressions_ = form.Text("txtImpressions", TextRule::Digits(10));
  impressions_->SetWidthInChars(10);
  impressions_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  impressions_->Means("Impressions");
  job_ = form.Text("JobNumber", TextRule::Any(kJobNumberLength));
  job_->setAccessibleName(tr("Job number"));
  form.Row(tr("&Impressions of the run"), {impressions_, form.Hint(tr("Job number")), job_});
  way_ = form.Radio("optWay",
                    {{"optStored", tr("Stored quantities")}, {"optEstimate", tr("Estimate by size and coverage")}},
                    Qt::Horizontal);
  form.Row(tr("Quantities"), way_);
  ink_ = form.Combo("cmbInkType");
  for (const std::string_view name : kInkTypeNames) ink_->addItem(Q(name));
  ink_->setCurrentIndex(kSpotColor);
  stock_ = form.Combo("cmbStockType");
  for (const std::string_view name : kStockTypeNames) stock_->addItem(Q(name));
  stock_->setAccessibleName(tr("Type of stock"));
  form.Row(tr("&Type of ink"), {ink_, form.Hint(tr("on")), stock_, form.Button("cmdShow", tr("S&how"))});
  for (Field* field : std::initializer_list<Field*>{impressions_, job_, way_, ink_, stock_}) field->DoNotTrack();
  list_ = form.Table("fgNeeds");
  list_->setAccessibleName(tr("What the run needs"));
  list_->SetColumns(ColumnsOf(RunNeedColumns(session).Of(std::vector<RunNeed>{}), {220, 80, 120, 136, 136, 136, 160}));
  list_->SetSource(rows_);
  list_->SetEmptyText(tr("Type the impressions of the run"));
  form.Wide(list_, 1);
  form.ButtonsWithoutDefault({form.Button("cmdClose", tr("Close")), print_ = form.Button("cmdPrint", tr("&Print")),
                              batch_ = form.Button("cmdBatch", tr("Make a &Batch"))});
  connect(way_, &RadioField::ChosenChanged, this, [this] { Count(false); });
  for (ComboField* combo : {ink_, stock_}) combo->OnChosen([this](int) { Count(false); });
  connect(impressions_, &QLineEdit::textChanged, this, [this] { Count(false); });
  connect(list_, &Grid::RowActivated, this, [this] { cmdBatch_Click(); });
  connect(list_, &Grid::CurrentRowChanged, this, [this] { Changed(); });
}

void DesignBenchForm::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("DesignID")) return;
  designID_ = arguments.Text("DesignID");
  const auto design = ReadDesign(session, designID_);
  impressions_->SetText(design && design->Impressions > 0 ? std::to_string(design->Impressions) : "");
  Count(false);
  impressions_->setFocus();
  impressions_->selectAll();
}

void DesignBenchForm::OnChanges(const std::vector<Change>& changes) {
  for (const Change& change : changes)
    if (change.kind == Change::Kind::Design && change.what == Change::What::Renamed &&
        EqualNoCase(change.name, designID_))
      designID_ = change.newName;
  Count(false);
}

RunWish DesignBenchForm::Wish() const {
  return {impressions_->Text(), way_->Chosen() == 1, ink_->currentIndex(), stock_->currentIndex()};
}

void DesignBenchForm::Count(bool tells) {
  needs_.clear();
  const auto design = ReadDesign(session, designID_);
  design_->setText(design ? Q(design->DesignID + "  " + design->Description) : QString());
  if (design) {
    auto needs = NeedsOfRun(session, *design, Wish());
    if (needs)
      needs_ = *std::move(needs);
    else if (tells)
      ShowRefusal(needs.error());
  }
  FillRows(*rows_, RunNeedColumns(session).Of(needs_));
  list_->Refresh();
  if (!needs_.empty() && list_->CurrentRow() < 0) list_->SetCurrentRow(0);
  Changed();
}

void DesignBenchForm::UpdateEnabled() {
  if (batch_ == nullptr) return;
  for (QWidget* field : {static_cast<QWidget*>(ink_), static_cast<QWidget*>(stock_)})
    field->setEnabled(way_->Chosen() == 1);
  const int row = list_->CurrentRow();
  batch_->setEnabled(row >= 0 && needs_.at(static_cast<std::size_t>(row)).color.Kind() == ColorKind::Mix &&
                     windows.Knows("BatchForm"));
  print_->setEnabled(CanPrint(windows) && !needs_.empty());
}

void DesignBenchForm::cmdShow_Click() {
  Count(true);
}

void DesignBenchForm::cmdPrint_Click() {
  Sheet sheet = Sheet::Of(U8(tr("Design to the Bench")), RunNeedColumns(session).Of(needs_));
  sheet.subtitle = U8(impressions_->text() == "1" ? tr("%1, 1 impression").arg(design_->text())
                                                    : tr("%1, %2 impressions").arg(design_->text(), impressions_->text()));
  PrintSheet(windows, sheet);
}

// A Batch is made in the Database that is open.
void DesignBenchForm::cmdBatch_Click() {
  const int row = list_->CurrentRow();
  if (row < 0 || !batch_->isEnabled()) return;
  const RunNeed& need = needs_.at(static_cast<std::size_t>(row));
  const auto refuse = [this](const QString& title, const QString& text) { ShowRefusal({U8(title), U8(text), {}}); };
  if (!EqualNoCase(need.color.IngDB, session.CurrentDatabase))
    return refuse(tr("Design to the Bench"),
                  tr("%1 is a color of the Database %2.\n\nChange to that Database to make a Batch of it.")
                      .arg(Q(need.color.IngName), Q(need.color.IngDB)));
  if (windows.IsInEdit("BatchForm"))
    return refuse(tr("Batch Window - in State of Edit."), tr("Save or Clear the data on the Batch Window."));
  windows.OpenForm("BatchForm", {{"Color_Name", need.color.IngName},
                                 {"Quantity", BatchQuantityText(session, need)},
                                 {"JobNumber", Trim(job_->Text())}});
}

}  // namespace vellumark::desktop
