#include "desktop/inventory/inventory_panel.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QTabBar>
#include <algorithm>

#include "core/base/number.h"
#include "core/base/units.h"
#include "desktop/inventory/reset_entry.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kResetTab = 1;
constexpr int kReasonLength = 60;

}  // namespace

InventoryPanel::InventoryPanel(FormHost& host)
    : QObject(&host.Self()), host_(host), source_(std::make_shared<LotSource>(host.session)) {}

InventoryPanel::InventoryPanel(FormHost& host, Form form) : InventoryPanel(host) {
  Build(form);
}

InventoryPanel::InventoryPanel(FormHost& host, TabSet& tabs) : InventoryPanel(host) {
  tabs.LatePage(tr("Inventory"), "TabInventory", [this](Form form) { Build(form); });
}

void InventoryPanel::Build(Form form) {
  BuildList(form);
  BuildTotals(form);
  BuildTabs(form);
  QWidget::setTabOrder(entry_->Last(), reason_);
  // Without a list the fields stand at the top.
  form.Wide(rest_ = new QWidget);
  Relabel();
  ShowWork();
}

InventoryPanel::~InventoryPanel() = default;

void InventoryPanel::BuildList(Form& form) {
  list_ = form.Table("InvColorList");
  list_->SetColumns(Columns());
  const QLineEdit* filter = list_->ShowFilter(tr("Find a lot, location or container"));
  list_->SetEmptyText(tr("No color"));
  list_->SetSource(source_);
  list_->setMinimumHeight(160);
  list_->setAccessibleName(tr("Inventory"));
  form.Wide(list_, 1);
  connect(filter, &QLineEdit::textChanged, this, [this] { ShowChecks(); });
  connect(list_, &Grid::CurrentRowChanged, this, &InventoryPanel::RowChosen);
  connect(list_, &Grid::RowActivated, this, [this] { entry_->Focus(); });
}

void InventoryPanel::BuildTabs(Form& form) {
  tabs_ = new QTabWidget;
  tabs_->setObjectName("Frame_Tabs");
  tabs_->setDocumentMode(true);
  tabs_->tabBar()->setDrawBase(false);
  tabs_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  auto* adjust = new QWidget;
  auto* misc = new QWidget;
  misc->setObjectName("Frame_Misc");
  tabs_->addTab(adjust, tr("Adjust"));
  tabs_->addTab(misc, tr("Reset"));
  form.Wide(tabs_);
  entry_ = new AdjustEntry(
      host_, form, *adjust, [this] { Update(); }, [this] { ClearFields(); });
  reset_ = new ResetEntry(host_, form, *misc, [this](bool checked) { CheckAll(checked); });
  connect(reset_, &ResetEntry::Done, this, &InventoryPanel::WasReset);
  connect(tabs_, &QTabWidget::currentChanged, this, &InventoryPanel::TabChanged);
  new CheckKeys(*list_, [this](int row) { Toggle(row); });
}

std::vector<GridColumn> InventoryPanel::Columns() const {
  std::vector<GridColumn> columns = source_->Columns();
  columns[LotSource::Check].shown = tabs_ != nullptr && tabs_->currentIndex() == kResetTab;
  return columns;
}

void InventoryPanel::BuildTotals(Form& form) {
  auto* box = new QWidget;
  auto* line = new QHBoxLayout(box);
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(space::kUnit);
  reason_ = form.Text("txtReason", TextRule::Any(kReasonLength));
  reason_->DoNotTrack();
  reason_->setMinimumWidth(104);
  reason_->setMaximumWidth(280);
  reason_->setToolTip(tr("Why the stock changes, for its history"));
  connect(reason_, &QLineEdit::textChanged, this, [this] {
    if (work_) work_->reason = reason_->Text();
  });
  QLabel* reason = form.Hint(tr("Reason"));
  reason->setBuddy(reason_);
  reason_->setAccessibleName(reason->text());
  line->addWidget(reason);
  line->addWidget(reason_, 1);
  line->addStretch(1);
  const auto figure = [&](const QString& caption, const char* name) {
    QLabel* label = form.Hint(caption);
    ValueField* value = form.Value(name);
    value->setAccessibleName(caption);
    line->addWidget(label);
    line->addWidget(value);
    line->addSpacing(space::kUnit);
    return std::pair{value, label};
  };
  const auto [selected, selectedCaption] = figure(tr("Selected"), "lblInvSelected");
  const auto [unlotted, unlottedCaption] = figure(tr("UnLotted"), "lblInvUnlotted");
  const auto [lotted, lottedCaption] = figure(tr("Lotted"), "lblInvLotted");
  const auto [total, totalCaption] = figure(tr("Total"), "lblInvTotal");
  selected_ = selected;
  unlotted_ = unlotted;
  lotted_ = lotted;
  total_ = total;
  unlottedOnly_ = {selected, selectedCaption};
  lottedOnly_ = {unlotted, unlottedCaption, lotted, lottedCaption};
  line->addWidget(unit_ = form.Hint({}, "lblInvUnit"));
  form.Wide(box);
}

// ---- The colour

void InventoryPanel::Take(std::optional<InventoryWork> work) {
  work_ = std::move(work);
  changed_ = false;
  source_->CheckNone();
  if (IsBuilt()) ShowWork();
}

void InventoryPanel::ShowWork() {
  reason_->SetText("");
  reason_->setEnabled(work_.has_value());
  tabs_->setCurrentIndex(0);
  loading_ = true;
  ShowList();
  list_->SetCurrentRow(-1);
  loading_ = false;
  entry_->Show(nullptr, {});
  if (work_) {
    entry_->Offer(*work_);
    entry_->Show(&*work_, ClearedFields(host_.session, *work_));
  }
  reset_->Show(onFile_ && work_ ? &*work_ : nullptr, *source_);
  ShowTotals();
}

void InventoryPanel::Load(ColorKind kind, const std::string& name) {
  onFile_ = true;
  Take(LoadInventory(host_.session, kind, name));
}

void InventoryPanel::Begin(ColorKind kind, const std::string& name) {
  onFile_ = false;
  Take(NewInventory(host_.session, kind, name));
}

void InventoryPanel::Reset() {
  onFile_ = false;
  Take(std::nullopt);
}

void InventoryPanel::TakeCosts(std::string_view purchaseCost, std::string_view basicCost) {
  if (!work_ || onFile_) return;
  TakeTypedCosts(host_.session, *work_, purchaseCost, basicCost);
  if (!IsBuilt()) return;
  list_->Refresh();
  if (!entry_->IsTouched()) RowChosen(list_->CurrentRow());
}

void InventoryPanel::Detach() {
  if (!work_ || !onFile_) return;
  onFile_ = false;
  changed_ = true;
  work_->removed.clear();
  work_->rows.front().onFile.qty = 0;
  work_->rows.front().entered = static_cast<double>(work_->rows.front().now.qty);
  for (std::size_t row = 1; row < work_->rows.size(); ++row) work_->rows[row].key.reset();
  source_->CheckNone();
  if (IsBuilt()) reset_->Show(nullptr, *source_);
}

void InventoryPanel::Refresh(const std::string& name) {
  if (!work_) return;
  work_->name = name;
  if (changed_ || !onFile_) return;
  if (!IsBuilt()) {
    *work_ = LoadInventory(host_.session, work_->kind, name);
    return;
  }
  const int row = list_->CurrentRow();
  const std::int32_t key = row < 0 ? -1 : work_->rows[static_cast<std::size_t>(row)].key.value_or(-1);
  const bool touched = entry_->IsTouched();
  *work_ = LoadInventory(host_.session, work_->kind, name);
  work_->reason = reason_->Text();
  loading_ = true;
  ShowList();
  const auto found = std::ranges::find_if(
      work_->rows, [&](const InventoryRow& candidate) { return key >= 0 && candidate.key == key; });
  const bool stays = found != work_->rows.end();
  list_->SetCurrentRow(stays ? static_cast<int>(found - work_->rows.begin()) : -1);
  loading_ = false;
  entry_->Offer(*work_);
  if (!touched) RowChosen(list_->CurrentRow());
  ShowTotals();
}

void InventoryPanel::Relabel() {
  if (!IsBuilt()) return;
  entry_->Relabel();
  const bool tracking = host_.session.InvLotTracking == 1;
  list_->SetColumns(Columns());
  list_->setVisible(tracking);
  auto* lines = qobject_cast<QGridLayout*>(list_->parentWidget()->layout());
  const auto stretch = [lines](QWidget* widget, int factor) {
    int row = 0;
    int column = 0;
    int rows = 0;
    int columns = 0;
    lines->getItemPosition(lines->indexOf(widget), &row, &column, &rows, &columns);
    lines->setRowStretch(row, factor);
  };
  stretch(list_, tracking ? 1 : 0);
  stretch(rest_, tracking ? 0 : 1);
  tabs_->setTabVisible(kResetTab, tracking);
  for (QWidget* widget : lottedOnly_) widget->setVisible(tracking);
  for (QWidget* widget : unlottedOnly_) widget->setVisible(!tracking);
  unit_->setText(Q(UnitName(host_.session.UMI)));
}

// ---- Showing

void InventoryPanel::ShowList() {
  source_->Show(work_ ? &*work_ : nullptr);
  list_->Refresh();
  ShowChecks();
}

// What the filter hides is not checked: the resets ask about what is in sight.
void InventoryPanel::ShowChecks() {
  source_->UncheckOthers(list_->ShownRows());
}

void InventoryPanel::ShowTotals() {
  if (!work_) {
    for (ValueField* value : {selected_, unlotted_, lotted_, total_}) value->SetText("");
    return;
  }
  const InventoryTotals totals = work_->Totals();
  unlotted_->SetText(Fixed(totals.unlotted, 3));
  lotted_->SetText(Fixed(totals.lotted, 3));
  total_->SetText(Fixed(totals.total, 3));
  const int row = std::max(list_->CurrentRow(), 0);
  selected_->SetText(Fixed(work_->rows[static_cast<std::size_t>(row)].now.qty, 3));
}

std::optional<LotRow> InventoryPanel::ChosenLot() const {
  const int row = IsBuilt() && work_ ? list_->CurrentRow() : -1;
  if (row < 1) return std::nullopt;
  const auto key = work_->rows[static_cast<std::size_t>(row)].key;
  return key ? FindLot(host_.session, work_->kind, work_->name, work_->database, *key) : std::nullopt;
}

void InventoryPanel::RowChosen(int row) {
  if (loading_ || !work_) return;
  entry_->Show(&*work_, row < 0 ? ClearedFields(host_.session, *work_)
                                : FieldsOfRow(host_.session, *work_, static_cast<std::size_t>(row)));
  Q_EMIT Changed();
}

// ---- Adjusting

void InventoryPanel::Update() {
  if (!work_) return;
  const int row = list_->CurrentRow();
  const auto selected = row < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(row));
  const auto fields = entry_->Read(*work_, selected);
  if (!fields) return;
  if (!host_.Accepted(ApplyAdjust(host_.session, *work_, *fields))) return;
  changed_ = true;
  loading_ = true;
  ShowList();
  loading_ = false;
  entry_->Offer(*work_);
  ShowTotals();
  ClearFields();
}

void InventoryPanel::ClearFields() {
  if (!work_) return;
  loading_ = true;
  list_->SetCurrentRow(-1);
  loading_ = false;
  entry_->Show(&*work_, ClearedFields(host_.session, *work_));
  entry_->Focus();
  Q_EMIT Changed();
}

// ---- Checked rows

void InventoryPanel::TabChanged(int tab) {
  list_->ShowColumn(LotSource::Check, tab == kResetTab);
}

void InventoryPanel::Toggle(int row) {
  const auto index = static_cast<std::size_t>(row);
  source_->SetChecked(index, !source_->IsChecked(index));
  list_->Refresh();
}

void InventoryPanel::CheckAll(bool checked) {
  source_->CheckNone();
  if (checked)
    for (const int row : list_->ShownRows()) source_->SetChecked(static_cast<std::size_t>(row), true);
  list_->Refresh();
}

void InventoryPanel::WasReset() {
  loading_ = true;
  ShowList();
  list_->SetCurrentRow(-1);
  loading_ = false;
  entry_->Offer(*work_);
  entry_->Show(&*work_, ClearedFields(host_.session, *work_));
  ShowTotals();
  Q_EMIT Changed();
}

}  // namespace vellumark::desktop
