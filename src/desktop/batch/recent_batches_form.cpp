#include "desktop/batch/recent_batches_form.h"

#include <QDateTime>
#include <QLineEdit>
#include <QLocale>
#include <algorithm>

#include "core/base/units.h"
#include "core/batch/ink.h"
#include "core/batch/record.h"
#include "desktop/batch/ink_patch.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kMostShown = 100;

QString DateText(const std::optional<DateTime>& date) {
  if (!date) return {};
  return QLocale().toString(
      QDateTime(QDate(date->year, date->month, date->day), QTime(date->hour, date->minute, date->second)),
      QLocale::ShortFormat);
}

}  // namespace

RecentBatchesForm::RecentBatchesForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "RecentBatchesForm", tr("Recent Batches")) {
  Form form(*this);
  form.Wide(list_ = form.Table("fgBatches"), 1);
  list_->SetColumns({GridColumn::Text(tr("Batch ID #"), 112), GridColumn::Text(tr("Color Name"), 280),
                     GridColumn::Amount(tr("Quantity"), 144), GridColumn::Text(tr("Unit"), 56),
                     GridColumn::Text(tr("Date Entered"), 168), GridColumn::Text(tr("Job Number"), 144)});
  list_->ShowFilter(tr("Filter"));
  list_->SetEmptyText(tr("No Batch was made yet"));
  form.Buttons({open_ = form.Button("cmdOpen", tr("&Open")), form.Button("cmdCancel", tr("Cancel"))});
  resize(960, 560);
  connect(list_, &Grid::RowActivated, this, &RecentBatchesForm::cmdOpen_Click);
  connect(list_, &Grid::CurrentRowChanged, this, [this] { Changed(); });
}

void RecentBatchesForm::OnOpen(const Arguments&) {
  batches_ = RecentBatches(session, kMostShown);
  auto source = std::make_shared<TableSource>();
  for (const BatchListRow& batch : batches_) {
    TableSource::Cell name(batch.Color_Name);
    if (const auto ink = InkOf(session, ColorKind::Mix, batch.Color_Name)) name.swatch = ColorOf(*ink);
    source->Add({BatchNoText(batch.BatchNo), name, Fixed(batch.ActualQuantity, 3), std::string(UnitName(batch.UMF)),
                 U8(DateText(batch.Date_Entered)), batch.JobNumber});
  }
  list_->SetSource(source);
  if (!batches_.empty()) list_->SetCurrentRow(0);
  list_->View().setFocus();
}

void RecentBatchesForm::UpdateEnabled() {
  open_->setEnabled(list_->CurrentRow() >= 0);
}

void RecentBatchesForm::cmdOpen_Click() {
  const int row = list_->CurrentRow();
  if (row < 0) return;
  result.Set("BatchNo", batches_.at(static_cast<std::size_t>(row)).BatchNo);
  accept();
}

}  // namespace vellumark::desktop
