#include "desktop/inventory/batch_lot_inv_selector.h"

#include <QHeaderView>
#include <QKeyEvent>

#include "core/base/number.h"
#include "core/base/units.h"
#include "core/inventory/lot_picking.h"
#include "core/inventory/lot_selection_table.h"
#include "desktop/inventory/lot_grid.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

enum Column { Check, LotNum, Location, ContID, InvQty, QtyUsed, Remove, IngType };
constexpr int kCheckWidth = 40;

}  // namespace

/// The rows of the working copy behind a box to check them.
class BatchLotInvSelector::Source : public RecordSource<LotSelectionRow> {
 public:
  explicit Source(const LotSelectionWork& work) : RecordSource(LotSelectionColumns(work.unit)), work_(work) {}

  /// In the unit of the Batch.
  std::vector<GridColumn> Columns() {
    Define(LotSelectionColumns(work_.unit));
    std::vector<GridColumn> columns = RecordSource::Columns();
    columns.insert(columns.begin(), GridColumn::Text({}, kCheckWidth));
    columns.push_back(GridColumn::Text("IngType", 0));
    columns[Check].sortable = false;
    for (const Column column : {LotNum, Location, ContID}) columns[column].sort = GridColumn::Sort::TextNoCase;
    return columns;
  }
  int Rows() const override { return static_cast<int>(work_.rows.size()); }
  int FixedRows() const override { return 1; }
  std::string Text(int row, int column) const override {
    if (column == Check) return {};
    if (column == IngType) return std::to_string(static_cast<int>(ColorKindOf(work_.kind)));
    return RecordSource::Text(row, column - 1);
  }
  double Number(int row, int column) const override {
    return column == Check || column == IngType ? kNoNumber : RecordSource::Number(row, column - 1);
  }
  const char* Mark(int row, int column) const override {
    if (column == Check) return At(row).checked ? "box-checked" : "box";
    return column == LotNum && row > 0 ? "lot" : nullptr;
  }

 protected:
  const LotSelectionRow& At(int row) const override { return work_.rows.at(static_cast<std::size_t>(row)); }

 private:
  const LotSelectionWork& work_;
};

BatchLotInvSelector::BatchLotInvSelector(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "BatchLotInvSelector", tr(" Inv. Lot Selections")),
      source_(std::make_shared<Source>(work_)) {
  Form form(*this);
  form.Row(tr("Color for Consumption"), {name_ = form.Value("IngName"), kind_ = form.Hint({}, "lblKind")});
  form.Row(tr("Qty."), {need_ = form.Value("IngQty"), unit_ = form.Hint({}, "lblUnit"), form.Hint(tr("Balance")),
                        balance_ = form.Value("QtyConsumed")});
  BuildList(form);
  adjust_ = form.Number("AdjustInv", 3, {}, 12);
  adjust_->DoNotTrack();
  adjust_->installEventFilter(this);
  remove_ = form.Check("chkDelInv", tr("&Delete Inv. Balance"));
  remove_->DoNotTrack();
  update_ = form.Button("cmdUpdate", tr("&Update"), Qt::Key_F5);
  clear_ = form.Button("cmdClear", tr("C&lear"), Qt::SHIFT | Qt::Key_F5);
  form.Row(tr("&Adjust Used"), {adjust_, remove_, update_, clear_});
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel")),
                form.Button("cmdOldest", tr("&Oldest first"), Qt::Key_F2), form.Button("DSelAll", tr("D&eselect all")),
                form.Button("cmdAddLot", tr("Update &Inv."))});
  connect(list_, &Grid::CurrentRowChanged, this, &BatchLotInvSelector::ShowRow);
  connect(list_, &Grid::RowActivated, this, &BatchLotInvSelector::TakeRow);
  connect(remove_, &QCheckBox::clicked, this, &BatchLotInvSelector::RemoveClicked);
  new CheckKeys(*list_, [this](int row) { Toggle(row); });
  resize(880, 560);
}

BatchLotInvSelector::~BatchLotInvSelector() = default;

void BatchLotInvSelector::BuildList(Form& form) {
  list_ = form.Table("InvColorList");
  list_->SetColumns(source_->Columns());
  list_->SetSource(source_);
  list_->setMinimumHeight(168);
  list_->setAccessibleName(tr("Lots"));
  form.Wide(list_, 1);
}

void BatchLotInvSelector::OnOpen(const Arguments& arguments) {
  const auto earlier = arguments.Has("Selection") ? arguments.Get<LotSelection>("Selection") : LotSelection{};
  const auto withheld = arguments.Has("Withheld") ? arguments.Get<LotWithheld>("Withheld") : LotWithheld{};
  const auto work = LoadLotSelection(session, arguments.Text("IngName"), arguments.Get<LineKind>("Kind"),
                                     static_cast<float>(arguments.Get<double>("IngQty")),
                                     static_cast<int>(arguments.Number("Unit")), earlier, withheld);
  if (!Accepted(work)) {
    QMetaObject::invokeMethod(
        this, [this] { reject(); }, Qt::QueuedConnection);
    return;
  }
  work_ = *work;
  isOpen_ = true;
  name_->SetText(work_.IngName);
  kind_->setText(Q(LineKindName(work_.kind)));
  need_->SetText(Fixed(work_.IngQty, 3));
  unit_->setText(Q(UnitName(work_.unit)));
  list_->SetColumns(source_->Columns());
  ShowWork();
  list_->SetCurrentRow(static_cast<int>(FirstToTake(work_)));
  list_->setFocus();
}

// ---- Showing

void BatchLotInvSelector::ShowWork() {
  list_->Refresh();
  balance_->SetText(Fixed(work_.Balance(), 3));
  ShowRow(list_->CurrentRow());
}

void BatchLotInvSelector::ShowRow(int row) {
  if (!isOpen_) return;
  if (row < 0) {
    adjust_->SetText("");
    remove_->setChecked(false);
  } else {
    adjust_->SetText(Fixed(work_.SuggestAdjust(static_cast<std::size_t>(row)), 3));
    remove_->setChecked(work_.rows.at(static_cast<std::size_t>(row)).lot.Remove);
  }
  Changed();
}

void BatchLotInvSelector::UpdateEnabled() {
  const int row = list_->CurrentRow();
  adjust_->setEnabled(row >= 0);
  update_->setEnabled(row >= 0);
  clear_->setEnabled(row >= 0);
  remove_->setEnabled(row > 0);
}

// ---- Commands

void BatchLotInvSelector::Toggle(int row) {
  const auto index = static_cast<std::size_t>(row);
  if (work_.rows.at(index).checked) {
    work_.UncheckRow(index);
  } else {
    work_.CheckRow(index);
  }
  ShowWork();
}

// Enter takes what the line still needs. Once all of it is placed the line is done; a row that gives already is
// adjusted.
void BatchLotInvSelector::TakeRow(int row) {
  const auto index = static_cast<std::size_t>(row);
  if (work_.rows.at(index).checked || (work_.ToPlace() > 0 && !work_.CheckRow(index))) {
    FocusField("AdjustInv");
    return;
  }
  if (work_.ToPlace() == 0) return cmdSave_Click();
  ShowWork();
  list_->SetCurrentRow(static_cast<int>(FirstToTake(work_)));
}

// The lines that come after this one take theirs in the same way.
void BatchLotInvSelector::cmdOldest_Click() {
  TakeOldestFirst(work_);
  result.Set("OldestFirst", true);
  cmdSave_Click();
}

void BatchLotInvSelector::RemoveClicked(bool checked) {
  const int row = list_->CurrentRow();
  if (row < 0) return;
  work_.SetRemove(static_cast<std::size_t>(row), checked);
  ShowWork();
}

void BatchLotInvSelector::cmdUpdate_Click() {
  const int row = list_->CurrentRow();
  if (row < 0 || !Accepted(work_.UpdateRow(static_cast<std::size_t>(row), adjust_->Text()))) return;
  ShowWork();
  list_->setFocus();
}

void BatchLotInvSelector::cmdClear_Click() {
  list_->SetCurrentRow(-1);
  ShowRow(-1);
  list_->setFocus();
}

void BatchLotInvSelector::DSelAll_Click() {
  if (work_.DeselectAll(session)) ShowWork();
}

void BatchLotInvSelector::cmdSave_Click() {
  result.Set("Selection", work_.Selection());
  accept();
}

void BatchLotInvSelector::cmdAddLot_Click() {
  if (!ConfirmInventoryChange(session)) return;
  result.Set("AdjustInventory", true);
  cmdSave_Click();
}

bool BatchLotInvSelector::MayClose() {
  return !isOpen_ || ConfirmCancelLotSelection(session);
}

void BatchLotInvSelector::showEvent(QShowEvent* event) {
  Dialog::showEvent(event);
  list_->setFocus();
}

bool BatchLotInvSelector::eventFilter(QObject* watched, QEvent* event) {
  if (watched == adjust_ && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
      cmdUpdate_Click();
      return true;
    }
  }
  return Dialog::eventFilter(watched, event);
}

}  // namespace vellumark::desktop
