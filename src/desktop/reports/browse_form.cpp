#include "desktop/reports/browse_form.h"

#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <algorithm>
#include <functional>

#include "core/base/text.h"
#include "core/colors/color_tables.h"
#include "core/reports/browse.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"
#include "desktop/reports/open_row.h"
#include "desktop/reports/row_actions.h"

namespace vellumark::desktop {
namespace {

QString TitleOf(BrowseSubject subject) {
  switch (subject) {
    case BrowseSubject::Basics:
      return BrowseForm::tr("All Basics / Additives");
    case BrowseSubject::Formulas:
      return BrowseForm::tr("All Master Formulas");
    case BrowseSubject::Batches:
      return BrowseForm::tr("All Batches");
    default:
      return BrowseForm::tr("All Jobs");
  }
}

QString IconOf(BrowseSubject subject) {
  if (subject == BrowseSubject::Batches) return "Batch";
  if (subject == BrowseSubject::Jobs) return "Job";
  return subject == BrowseSubject::Basics ? "basic" : "Color";
}

Change::Kind ChangeOf(BrowseSubject subject) {
  if (subject == BrowseSubject::Batches) return Change::Kind::Batch;
  if (subject == BrowseSubject::Jobs) return Change::Kind::Job;
  return subject == BrowseSubject::Basics ? Change::Kind::Basic : Change::Kind::Mix;
}

class AllColors : public PieceSource<BrowsedColor>, public RowTargets {
 public:
  std::vector<RowTarget> Targets(int row) const override { return {Target(row)}; }
  AllColors(const Session& session, ColorKind kind)
      : PieceSource(
            BrowsedColorColumns(session, kind), [&session, kind] { return BrowseColors(session, kind); },
            [](const BrowsedColor& color) { return color.key; }),
        session_(session) {}
  RowTarget Target(int row) const override { return ColorTarget(session_, Row(row).kind, Row(row).Color_Name); }
  std::optional<QColor> Swatch(int row, int column) const override {
    if (column != 0) return std::nullopt;
    const BrowsedColor& color = Row(row);
    return ColorOf(InkOf(session_, color.kind, color.Color_Name));
  }
  const char* Mark(int row, int column) const override {
    return column == kTotal && Row(row).IsLow() ? "low-stock" : nullptr;
  }

 private:
  static constexpr int kTotal = 3;
  const Session& session_;
};

class AllBatches : public PieceSource<BatchListRow>, public RowTargets {
 public:
  std::vector<RowTarget> Targets(int row) const override { return {Target(row)}; }
  explicit AllBatches(const Session& session)
      : PieceSource(
            BatchColumns(), [&session] { return BrowseBatches(session); },
            [](const BatchListRow& batch) { return batch.key; }),
        session_(session) {}
  RowTarget Target(int row) const override {
    return {.kind = RowTarget::Kind::Batch, .database = session_.CurrentDatabase, .BatchNo = Row(row).BatchNo};
  }

 private:
  const Session& session_;
};

class AllJobs : public PieceSource<BrowsedJob>, public RowTargets {
 public:
  std::vector<RowTarget> Targets(int row) const override { return {Target(row)}; }
  explicit AllJobs(const Session& session)
      : PieceSource(
            BrowsedJobColumns(session), [&session] { return BrowseJobs(session); },
            [](const BrowsedJob& job) {
              return static_cast<std::int64_t>(std::hash<std::string>{}(Upper(job.JobNumber)));
            }) {}
  RowTarget Target(int row) const override { return {.kind = RowTarget::Kind::Job, .name = Row(row).JobNumber}; }
};

}  // namespace

BrowseForm::BrowseForm(WindowList& windowList, const char* name, BrowseSubject subject)
    : Window(windowList, name, TitleOf(subject)), subject_(subject) {
  setWindowIcon(Icon(IconOf(subject)));
  Form form(*this);
  list_ = form.Table("fgAll");
  list_->setAccessibleName(windowTitle());
  list_->AllowManyRows();
  filter_ = list_->ShowFilter(tr("Filter"));
  list_->SetEmptyText(tr("There are none yet"));
  form.Wide(list_, 1);
  form.Buttons({open_ = form.Button("cmdOpen", tr("&Open")), form.Button("cmdClose", tr("Close"))});
  form.Wide(count_ = form.Hint({}, "lblCount"));
  MakeSource();
  connect(list_, &Grid::RowActivated, this, &BrowseForm::cmdOpen_Click);
  connect(list_, &Grid::CurrentRowChanged, this, [this] { Changed(); });
  connect(filter_, &QLineEdit::textChanged, this, &BrowseForm::ShowCount);
  connect(&list_->Model(), &GridModel::RowsRead, this, &BrowseForm::ShowCount);
  reading_.setParent(this);
  connect(&reading_, &QTimer::timeout, this, &BrowseForm::ReadOn);
  BeginReading();
  filter_->setFocus();
}

BrowseForm::~BrowseForm() = default;

// The columns are in the units and rights of the moment.
void BrowseForm::MakeSource() {
  const auto take = [this](const auto& made) {
    list_->SetColumns(made->Columns());
    source_ = made;
    pieces_ = made.get();
  };
  switch (subject_) {
    case BrowseSubject::Basics:
      take(std::make_shared<AllColors>(session, ColorKind::Basic));
      break;
    case BrowseSubject::Formulas:
      take(std::make_shared<AllColors>(session, ColorKind::Mix));
      break;
    case BrowseSubject::Batches:
      take(std::make_shared<AllBatches>(session));
      break;
    case BrowseSubject::Jobs:
      take(std::make_shared<AllJobs>(session));
      break;
  }
}

void BrowseForm::BeginReading() {
  pieces_->BeginAnew();
  if (list_->Model().Source() != source_.get())
    list_->SetSource(source_);
  else if (list_->Model().rowCount() == 0)
    list_->Refresh();
  ShowCount();
  reading_.start(0);
}

void BrowseForm::ReadOn() {
  if (!session.RecordsetsOpen || pieces_->ReadFurther()) return;
  reading_.stop();
  list_->Refresh();
  if (list_->CurrentRow() < 0 && !list_->ShownRows().empty()) list_->SetCurrentRow(list_->ShownRows().front());
  ShowCount();
}

void BrowseForm::ShowCount() {
  const auto all = QLocale().toString(source_->Rows());
  if (reading_.isActive())
    count_->setText(tr("Reading ..."));
  else if (filter_->text().isEmpty())
    count_->setText(source_->Rows() == 1 ? tr("1 row") : tr("%1 rows").arg(all));
  else
    count_->setText(tr("%1 of %2 rows").arg(QLocale().toString(list_->ShownRows().size()), all));
}

void BrowseForm::OnOpen(const Arguments& arguments) {
  if (arguments.Has("Filter")) filter_->setText(Q(arguments.Text("Filter")));
  filter_->setFocus();
}

void BrowseForm::OnChanges(const std::vector<Change>& changes) {
  const auto of = [&](Change::Kind kind) {
    return std::ranges::any_of(changes, [kind](const Change& change) { return change.kind == kind; });
  };
  if (of(Change::Kind::Settings) || of(Change::Kind::DatabaseList)) MakeSource();
  if (of(Change::Kind::Settings) || of(Change::Kind::DatabaseList) || of(ChangeOf(subject_))) BeginReading();
}

void BrowseForm::UpdateEnabled() {
  open_->setEnabled(list_->CurrentRow() >= 0);
}

void BrowseForm::cmdOpen_Click() {
  const int row = list_->CurrentRow();
  if (row < 0) return;
  const RowTarget target = pieces_->Target(row);
  if (target.kind == RowTarget::Kind::Job && !MayGo(windows, "JobForm")) return;
  OpenRow(windows, target);
}

}  // namespace vellumark::desktop
