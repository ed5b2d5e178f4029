#include "desktop/tools/preview_lists.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLocale>
#include <QVBoxLayout>

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/tools/checked_list.h"

namespace vellumark::desktop {
namespace {

constexpr int kNameWidth = 128;
constexpr int kLeastHeight = 96;
constexpr int kDetailLines = 2;

}  // namespace

/// The rows of the preview that stand on one side.
class PreviewLists::Side : public CheckedSource {
 public:
  Side(std::shared_ptr<std::vector<PreviewRow>> rows, bool taken) : rows_(std::move(rows)), taken_(taken) {}

  void Take() {
    mine_.clear();
    for (std::size_t n = 0; n < rows_->size(); ++n)
      if ((*rows_)[n].taken == taken_) mine_.push_back(n);
    ResetChecks(mine_.size());
  }
  PreviewRow& At(int row) const { return (*rows_)[mine_.at(static_cast<std::size_t>(row))]; }

  int Rows() const override { return static_cast<int>(mine_.size()); }
  std::string Text(int row, int column) const override {
    const PreviewRow& it = At(row);
    if (column == 0) return {};
    if (column == 1) return it.color;
    const auto cell = static_cast<std::size_t>(column) - 2;
    return cell < it.cells.size() ? it.cells[cell] : std::string();
  }
  bool CanCheck(int row) const override { return At(row).modable; }

 private:
  std::shared_ptr<std::vector<PreviewRow>> rows_;
  bool taken_;
  std::vector<std::size_t> mine_;
};

PreviewLists::PreviewLists(FormHost& host, Form form, const Captions& captions, const std::vector<GridColumn>& columns)
    : QObject(&host.Self()), rows_(std::make_shared<std::vector<PreviewRow>>()) {
  auto* box = new QWidget;
  auto* layout = new QHBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(space::kGap);
  layout->addWidget(BuildSide(form, captions.taken, "LVMod", true, columns), 1);
  layout->addWidget(BuildSide(form, captions.excluded, "LVN_Mod", false, columns), 1);
  form.Wide(box, 1);
  detail_ = form.Hint({}, "lblPreviewDetail");
  detail_->setTextFormat(Qt::PlainText);
  detail_->setWordWrap(true);
  detail_->setMinimumHeight(kDetailLines * detail_->fontMetrics().lineSpacing());
  detail_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  detail_->hide();
  form.Wide(detail_);
  ShowRows();
}

PreviewLists::~PreviewLists() = default;

QWidget* PreviewLists::BuildSide(Form& form, const QString& caption, const QString& name, bool taken,
                                 const std::vector<GridColumn>& columns) {
  auto* part = new QWidget;
  auto* layout = new QVBoxLayout(part);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(space::kUnit);
  auto* heading = new QHBoxLayout;
  QLabel* title = form.Label("lbl" + name, caption);
  title->setProperty("role", "label");
  counts_[taken] = form.Hint({}, "lbl" + name + "_Count");
  heading->addWidget(title);
  heading->addWidget(counts_[taken]);
  heading->addStretch();
  heading->addWidget(BuildMove(form, taken));
  layout->addLayout(heading);
  Grid* grid = form.Table(name);
  grid->setAccessibleName(caption);
  grid->View().setAccessibleName(caption);
  sides_[taken] = std::make_shared<Side>(rows_, taken);
  std::vector<GridColumn> all{GridColumn::Text(tr("Color"), kNameWidth)};
  all.insert(all.end(), columns.begin(), columns.end());
  lists_[taken] = new CheckedList(*grid, sides_[taken], std::move(all));
  grid->ShowFilter(tr("Filter"));
  grid->setMinimumHeight(kLeastHeight);
  layout->addWidget(grid, 1);
  connect(grid, &Grid::CurrentRowChanged, this, [this, taken](int row) { ShowDetail(*sides_[taken], row); });
  return part;
}

CommandButton* PreviewLists::BuildMove(Form& form, bool taken) {
  const QString tip = taken ? tr("Moves the checked colors to those that are left out, or the one with the frame")
                            : tr("Moves the checked colors to those that are changed, or the one with the frame");
  CommandButton*& button = taken ? moveRight_ : moveLeft_;
  button = form.Button(taken ? "cmdMoveRight" : "cmdMoveLeft", taken ? tr("Leave out") : tr("Take in"),
                       Qt::ALT | (taken ? Qt::Key_Right : Qt::Key_Left), [this, taken] { Move(!taken); });
  button->setToolTip(tip);
  return button;
}

void PreviewLists::Show(std::vector<PreviewRow> rows) {
  *rows_ = std::move(rows);
  // A tool without details leaves its place to the lists.
  if (!rows_->empty()) detail_->setVisible(!rows_->front().detail.empty());
  ShowRows();
}

bool PreviewLists::IsEmpty() const {
  return rows_->empty();
}

std::vector<std::string> PreviewLists::Taken() const {
  std::vector<std::string> colors;
  for (const PreviewRow& row : *rows_)
    if (row.taken) colors.push_back(row.color);
  return colors;
}

void PreviewLists::TakeFocus() {
  for (const bool taken : {true, false}) {
    if (sides_[taken]->Rows() == 0) continue;
    Grid& grid = lists_[taken]->List();
    grid.View().setFocus(Qt::OtherFocusReason);
    if (grid.CurrentRow() < 0) grid.SetCurrentRow(grid.ShownRows().empty() ? -1 : grid.ShownRows().front());
    return;
  }
}

void PreviewLists::Move(bool toTaken) {
  const Side& from = *sides_[!toTaken];
  Grid& grid = lists_[!toTaken]->List();
  std::vector<int> moving = from.CheckedRows();
  if (moving.empty() && grid.CurrentRow() >= 0) moving.push_back(grid.CurrentRow());
  std::erase_if(moving, [&](int row) { return !from.CanCheck(row); });
  if (moving.empty()) {
    QApplication::beep();
    return;
  }
  const int place = grid.CurrentRow();
  for (const int row : moving) from.At(row).taken = toTaken;
  ShowRows();
  // The work goes on in the list that it began in, at the same place.
  if (const int rows = from.Rows(); rows > 0) grid.SetCurrentRow(std::min(std::max(place, 0), rows - 1));
  grid.View().setFocus(Qt::OtherFocusReason);
}

void PreviewLists::ShowRows() {
  detail_->clear();
  for (const bool taken : {false, true}) {
    lists_[taken]->List().SetCurrentRow(-1);
    sides_[taken]->Take();
    lists_[taken]->Refresh();
    counts_[taken]->setText(rows_->empty() ? QString() : QLocale().toString(sides_[taken]->Rows()));
    lists_[taken]->List().SetEmptyText(rows_->empty() ? tr("No preview yet") : tr("None"));
  }
  moveRight_->setEnabled(sides_[true]->Rows() > 0);
  moveLeft_->setEnabled(sides_[false]->Rows() > 0);
  Q_EMIT TakenChanged();
}

void PreviewLists::ShowDetail(const Side& side, int row) {
  detail_->setText(row < 0 || row >= side.Rows() ? QString() : Q(side.At(row).detail));
}

}  // namespace vellumark::desktop
