#include "desktop/batch/recycle_panel.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>
#include <array>
#include <utility>

#include "core/batch/actions.h"
#include "core/colors/color_tables.h"
#include "desktop/batch/recycle_graphic.h"
#include "desktop/kit/look.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr std::array<RecycleColumn, 3> kColumns{RecycleColumn::Name, RecycleColumn::Recycle, RecycleColumn::Inventory};

}  // namespace

/// The rows as the core gives them; the ink of a colour is read when its row is first painted.
class RecyclePanel::Source : public RecordSource<RecycleListRow>, public RowTargets {
 public:
  explicit Source(const Session& session) : RecordSource(RecycleListColumns({}, 1)), session_(session) {}

  void Set(std::vector<RecycleListRow> rows) {
    rows_ = std::move(rows);
    inks_.assign(rows_.size(), {});
  }
  const RecycleListRow& At(int row) const override { return rows_.at(static_cast<std::size_t>(row)); }

  int Rows() const override { return static_cast<int>(rows_.size()); }
  std::vector<RowTarget> Targets(int row) const override {
    return {ColorTarget(session_, ColorKind::Mix, At(row).Color_Name)};
  }
  std::optional<QColor> Swatch(int row, int column) const override {
    if (column != 0) return std::nullopt;
    auto& [known, ink] = inks_.at(static_cast<std::size_t>(row));
    if (!std::exchange(known, true)) ink = ColorOf(InkOf(session_, ColorKind::Mix, At(row).Color_Name));
    return ink;
  }
  const char* Mark(int row, int column) const override {
    return column == 1 && At(row).highlighted ? "recycled" : nullptr;
  }

 private:
  const Session& session_;
  std::vector<RecycleListRow> rows_;
  mutable std::vector<std::pair<bool, std::optional<QColor>>> inks_;
};

RecyclePanel::RecyclePanel(FormHost& host, Form& form) : source_(std::make_shared<Source>(host.session)) {
  setObjectName("RecyclePanel");
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, space::kUnit, 0, 0);
  column->setSpacing(space::kUnit);
  CheckField* inventoryOnly = form.Check("chkInvOnly", tr("Show &Inv. Recycles"));
  inventoryOnly->setToolTip(tr("Only colors that are to be recycled and are in stock"));
  list_ = form.Table("fgRecList");
  list_->setMinimumHeight(96);
  list_->View().setAccessibleName(tr("Recycle List"));
  ShowCaptions(unit_);
  list_->SetSource(source_);
  QHeaderView* header = list_->View().horizontalHeader();
  header->setSectionResizeMode(0, QHeaderView::Stretch);
  header->setMinimumSectionSize(64);
  head_ = new QWidget;
  auto* head = new QHBoxLayout(head_);
  head->setContentsMargins(0, 0, 0, 0);
  head->addWidget(inventoryOnly);
  head->addWidget(graphic_ = new RecycleGraphic(head_));
  head->addStretch(1);
  head->addWidget(form.Link("cmdPrintRecList", tr("Print list")));
  column->addWidget(head_);
  column->addWidget(list_, 1);

  connect(inventoryOnly, &QCheckBox::toggled, this, [this](bool on) {
    view_.inventoryOnly = on;
    Q_EMIT ViewChanged();
  });
  // The list has an order of its own, which its captions tell in words.
  connect(header, &QHeaderView::sectionClicked, this, [this](int section) {
    ClickHeader(view_, kColumns.at(static_cast<std::size_t>(section)));
    Q_EMIT ViewChanged();
  });
  connect(list_, &Grid::CellClicked, this, [this](int row) { Take(row); });
  connect(list_, &Grid::RowActivated, this, &RecyclePanel::Take);
  list_->View().viewport()->installEventFilter(this);
  list_->View().installEventFilter(this);
}

void RecyclePanel::ShowCaptions(int unit) {
  unit_ = unit;
  source_->Define(RecycleListColumns(view_, unit));
  std::vector<GridColumn> columns = source_->Columns();
  for (GridColumn& column : columns) column.sortable = false;
  list_->SetColumns(std::move(columns));
}

void RecyclePanel::Show(const BatchWork& work) {
  source_->Set(RecycleListRows(work, view_));
  ShowCaptions(work.UMF);
  graphic_->setVisible(ShowsBatchGraphic(work));
  const QString empty = source_->Rows() == 0 ? EmptyText(work) : QString();
  list_->SetEmptyText(empty);
  list_->View().setAccessibleDescription(empty);
  list_->Refresh();
}

void RecyclePanel::ShowRecycled() {
  if (!graphic_->isHidden()) graphic_->Turn();
}

void RecyclePanel::PutHead(QTabWidget& pages, bool besideTitles) {
  if (besideTitles) {
    pages.setCornerWidget(head_);
    connect(&pages, &QTabWidget::currentChanged, head_,
            [this, &pages] { head_->setVisible(pages.currentWidget() == this); });
    head_->setVisible(pages.currentWidget() == this);
  } else {
    pages.disconnect(head_);
    pages.setCornerWidget(nullptr);
    qobject_cast<QVBoxLayout*>(layout())->insertWidget(0, head_);
    head_->show();
  }
}

void RecyclePanel::GoToTop() {
  list_->SetCurrentRow(list_->ShownRows().empty() ? -1 : 0);
}

// Why nothing is listed: nothing can be recycled, all of it is in the Batch already, or the filter hides it.
QString RecyclePanel::EmptyText(const BatchWork& work) const {
  if (work.Rows.empty() || work.FormulaRecycleList.empty()) return {};
  const bool taken = !work.RecycledColors.empty();
  if (!RecycleListRows(work, {}).empty())
    return taken ? tr("No other color in stock can be recycled") : tr("No color in stock can be recycled");
  return taken ? tr("Every color that can be recycled is in the Batch") : tr("No color can be recycled");
}

void RecyclePanel::Take(int row) {
  if (row < 0 || row >= source_->Rows()) return;
  const std::string name = source_->At(row).Color_Name;
  Q_EMIT Taken(name);
}

bool RecyclePanel::eventFilter(QObject* watched, QEvent* event) {
  if (watched == list_->View().viewport()) {
    // The first click of two has taken its colour; the second would take the one that moved into its place.
    if (event->type() == QEvent::MouseButtonDblClick) return true;
    if (event->type() == QEvent::MouseButtonPress &&
        !list_->View().indexAt(static_cast<QMouseEvent*>(event)->pos()).isValid())
      QApplication::beep();
  }
  // A page of the list, not the next Batch.
  if (watched == &list_->View() && event->type() == QEvent::ShortcutOverride) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_PageUp || key == Qt::Key_PageDown) event->accept();
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace vellumark::desktop
