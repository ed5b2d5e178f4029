#include "desktop/batch/recent_batches_form.h"

#include "core/colors/color_tables.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kMostShown = 100;

constexpr int kColorName = 1;

}  // namespace

class RecentBatchesForm::Source : public RecordRows<BatchListRow>, public RowTargets {
 public:
  explicit Source(const Session& session)
      : RecordRows(BatchColumns(), {"Batch", "Color Name", "Made", "Unit", "Date Entered", "Job Number"}),
        session_(session) {}

  std::vector<RowTarget> Targets(int row) const override {
    return {{.kind = RowTarget::Kind::Batch, .database = session_.CurrentDatabase, .BatchNo = At(row).BatchNo},
            ColorTarget(session_, ColorKind::Mix, At(row).Color_Name)};
  }
  std::optional<QColor> Swatch(int row, int column) const override {
    if (column != kColorName) return std::nullopt;
    return ColorOf(InkOf(session_, ColorKind::Mix, At(row).Color_Name));
  }

 private:
  const Session& session_;
};

RecentBatchesForm::RecentBatchesForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "RecentBatchesForm", tr("Recent Batches")), source_(std::make_shared<Source>(session)) {
  Form form(*this);
  form.Wide(list_ = form.Table("fgBatches"), 1);
  list_->SetColumns(source_->Columns());
  list_->ShowFilter(tr("Filter"));
  list_->SetEmptyText(tr("No Batch was made yet"));
  form.Buttons({open_ = form.Button("cmdOpen", tr("&Open")), form.Button("cmdCancel", tr("Cancel"))});
  resize(960, 560);
  connect(list_, &Grid::RowActivated, this, &RecentBatchesForm::cmdOpen_Click);
  connect(list_, &Grid::CurrentRowChanged, this, [this] { Changed(); });
}

RecentBatchesForm::~RecentBatchesForm() = default;

void RecentBatchesForm::OnOpen(const Arguments&) {
  source_->rows = RecentBatches(session, kMostShown);
  list_->SetSource(source_);
  if (source_->Rows() > 0) list_->SetCurrentRow(0);
  list_->View().setFocus();
}

void RecentBatchesForm::UpdateEnabled() {
  open_->setEnabled(list_->CurrentRow() >= 0);
}

void RecentBatchesForm::cmdOpen_Click() {
  const int row = list_->CurrentRow();
  if (row < 0) return;
  result.Set("BatchNo", source_->At(row).BatchNo);
  accept();
}

}  // namespace vellumark::desktop
