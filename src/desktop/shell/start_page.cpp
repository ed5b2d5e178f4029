#include "desktop/shell/start_page.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <tuple>

#include "core/batch/holding.h"
#include "core/batch/open.h"
#include "core/colors/color_tables.h"
#include "core/datafile/databases.h"
#include "core/inventory/stock_tables.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window.h"
#include "desktop/reports/open_row.h"
#include "desktop/shell/status_line.h"

namespace vellumark::desktop {
namespace {

constexpr int kMostShown = 200;
constexpr int kMostDatabases = 6;
constexpr int kWidest = 1400;
constexpr int kKindRole = Qt::UserRole;
constexpr const char* kOpens = "opens";  // of a first step, the window

QIcon Swatch(const Ink& ink) {
  QPixmap pixmap(32, 32);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  PaintInk(painter, QRectF(2.5, 2.5, 27, 27), ColorOf(ink), 5);
  return QIcon(pixmap);
}

}  // namespace

class StartPage::Today : public RecordRows<BatchListRow>, public RowTargets {
 public:
  explicit Today(const Session& session)
      : RecordRows(BatchColumns(), {"Batch", "Color Name", "Made", "Unit"}), session_(session) {}
  std::vector<RowTarget> Targets(int row) const override {
    return {{.kind = RowTarget::Kind::Batch, .database = session_.CurrentDatabase, .BatchNo = At(row).BatchNo},
            ColorTarget(session_, ColorKind::Mix, At(row).Color_Name)};
  }
  std::optional<QColor> Swatch(int row, int column) const override {
    if (column != kName) return std::nullopt;
    return ColorOf(InkOf(session_, ColorKind::Mix, At(row).Color_Name));
  }
  static constexpr int kName = 1;

 private:
  const Session& session_;
};

StartPage::StartPage(WindowList& windowList, QWidget* parent, std::function<void()> find,
                     std::function<void(const QString& database)> change)
    : QWidget(parent),
      windows_(windowList),
      session_(windowList.session),
      change_(std::move(change)),
      todays_(std::make_shared<Today>(session_)) {
  setObjectName("StartPage");
  auto* outer = new QHBoxLayout(this);
  outer->setContentsMargins(0, 0, 0, 0);
  auto* column = new QWidget(this);
  column->setMaximumWidth(kWidest);
  outer->addStretch(1);
  outer->addWidget(column, 100);
  outer->addStretch(1);
  auto* lines = new QVBoxLayout(column);
  lines->setContentsMargins(space::kGroup, space::kGroup, space::kGroup, space::kGap);
  lines->setSpacing(space::kUnit);

  heading_ = new QLabel(column);
  heading_->setObjectName("lblStartHeading");
  QFont large = Look::Heading();
  large.setPointSizeF(large.pointSizeF() * 1.5);
  heading_->setFont(large);
  facts_ = new QLabel(column);
  facts_->setObjectName("lblStartFacts");
  facts_->setWordWrap(true);  // what failed of a backup may take more words than a line
  const auto button = [&](const char* name, const QString& icon, const QString& text) {
    auto* made = new QPushButton(Icon(icon), text, column);
    made->setObjectName(name);
    made->hide();  // until a file is open
    return made;
  };
  makeBatch_ = button("cmdMakeBatch", "Batch", tr("Make a &Batch"));
  connect(makeBatch_, &QPushButton::clicked, this, [this] { windows_.OpenForm("BatchForm"); });
  find_ = button("cmdFindAnything", "Find", tr("Find anything (Ctrl+K)"));
  connect(find_, &QPushButton::clicked, this, std::move(find));
  openBatch_ = button("cmdOpenBatch", "warning", {});
  connect(openBatch_, &QPushButton::clicked, this,
          [this] { windows_.OpenForm("BatchForm", {{"BatchNo", openNumber_}}); });
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(space::kUnit);
  for (QPushButton* one : {makeBatch_, find_, openBatch_}) buttons->addWidget(one);
  buttons->addStretch(1);

  lines->addWidget(heading_);
  lines->addWidget(facts_);
  lines->addWidget(databases_ = new QWidget(column));
  databases_->setObjectName("pnlDatabases");
  (new QHBoxLayout(databases_))->setContentsMargins(0, 0, 0, 0);
  lines->addSpacing(space::kUnit);
  lines->addLayout(buttons);
  lines->addSpacing(space::kUnit);
  lines->addWidget(firstSteps_ = BuildFirstSteps(column));
  lines->addWidget(lists_ = BuildLists(column), 100);
  lines->addStretch(1);

  changes_ = session_.changes.Subscribe([this](const std::vector<Change>&) { Refresh(); });
}

StartPage::~StartPage() = default;

QWidget* StartPage::BuildFirstSteps(QWidget* column) {
  auto* box = new QWidget(column);
  auto* lines = new QVBoxLayout(box);
  lines->setContentsMargins(0, 0, 0, 0);
  lines->setSpacing(space::kUnit);
  auto* heading = new QLabel(tr("The first three steps"), box);
  heading->setFont(Look::Heading());
  lines->addWidget(heading);
  const std::tuple<const char*, QString, const char*> steps[] = {
      {"cmdFirstBasics", tr("&1   Enter the inks that you buy, with their prices"), "BasicColorsForm"},
      {"cmdFirstFormula", tr("&2   Enter a Master Formula, or import yours"), "MixColorsForm"},
      {"cmdFirstBatch", tr("&3   Make the first Batch"), "BatchForm"},
  };
  for (const auto& [name, text, window] : steps) {
    auto* step = new QPushButton(text, box);
    step->setObjectName(name);
    step->setProperty(kOpens, window);
    connect(step, &QPushButton::clicked, this, [this, window = std::string(window)] { windows_.OpenForm(window); });
    lines->addWidget(step, 0, Qt::AlignLeft);
  }
  return box;
}

QWidget* StartPage::BuildLists(QWidget* column) {
  auto* box = new QWidget(column);
  auto* sides = new QHBoxLayout(box);
  sides->setContentsMargins(0, 0, 0, 0);
  sides->setSpacing(space::kGroup);
  const auto side = [&](int stretch) {
    auto* lines = new QVBoxLayout;
    lines->setSpacing(space::kUnit);
    sides->addLayout(lines, stretch);
    return lines;
  };
  QVBoxLayout* left = side(1);
  todayHeading_ = new QLabel(tr("Today's Batches"), box);
  todayHeading_->setFont(Look::Heading());
  today_ = new Grid("fgToday");
  today_->SetColumns(todays_->Columns());
  // The name takes what the others leave, so that nothing is to be moved sideways.
  today_->View().horizontalHeader()->setSectionResizeMode(Today::kName, QHeaderView::Stretch);
  today_->SetSource(todays_);
  today_->SetEmptyText(tr("None yet"));
  today_->View().setAccessibleName(todayHeading_->text());
  connect(today_, &Grid::RowActivated, this, [this](int row) { OpenRow(windows_, todays_->Targets(row).front()); });
  new RowMenu(*today_, windows_, nullptr);
  left->addWidget(todayHeading_);
  left->addWidget(today_, 1);

  QVBoxLayout* right = side(1);
  lowHeading_ = new QLabel(tr("Colors under their reorder point"), box);
  lowHeading_->setFont(Look::Heading());
  lowNone_ = new QLabel(tr("None. Every color with a reorder point has stock above it."), box);
  lowNone_->setObjectName("lblNoneLow");
  lowNone_->setWordWrap(true);
  low_ = new QTableWidget(0, 4, box);
  low_->setObjectName("lstLowStock");
  low_->setAccessibleName(lowHeading_->text());
  low_->setSelectionBehavior(QAbstractItemView::SelectRows);
  low_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  low_->setShowGrid(false);
  low_->setFrameShape(QFrame::NoFrame);
  low_->verticalHeader()->hide();
  low_->verticalHeader()->setDefaultSectionSize(space::kRowHeight);
  low_->setTabKeyNavigation(false);
  low_->setToolTip(tr("Enter or a double click shows the stock of the color"));
  connect(low_, &QTableWidget::itemActivated, this, &StartPage::OpenStock);
  right->addWidget(lowHeading_);
  right->addWidget(lowNone_);
  right->addWidget(low_, 100);
  right->addStretch(1);
  return box;
}

void StartPage::Refresh() {
  if (stale_ && !isVisible()) return;
  stale_ = true;
  if (isVisible())
    QMetaObject::invokeMethod(
        this, [this] { Show(); }, Qt::QueuedConnection);
}

void StartPage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (stale_)
    QMetaObject::invokeMethod(
        this, [this] { Show(); }, Qt::QueuedConnection);
}

void StartPage::keyPressEvent(QKeyEvent* event) {
  auto* button = qobject_cast<QPushButton*>(focusWidget());
  if (button != nullptr && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) return button->click();
  QWidget::keyPressEvent(event);
}

void StartPage::Show() {
  if (!stale_) return;
  stale_ = false;
  const bool open = session_.RecordsetsOpen;
  makeBatch_->setVisible(open && windows_.Knows("BatchForm"));
  find_->setVisible(open && windows_.Knows("QuickFindForm"));
  lists_->setVisible(open);
  firstSteps_->setVisible(false);
  openBatch_->setVisible(false);
  databases_->setVisible(false);
  if (!open) {
    heading_->setText(tr("No Data File is open"));
    facts_->setText(tr("Open or make one in the Data File menu, under Advanced."));
    return;
  }
  ShowDatabases();
  const DatabaseCounts counts = CountRows(session_.File(), session_.CurrentDatabase);
  heading_->setText(Q(session_.CurrentDatabase));
  const auto text = [this](std::int64_t count) { return locale().toString(static_cast<qlonglong>(count)); };
  QString facts = tr("%1   ·   %2   ·   %3")
                      .arg(Q(session_.FullName),
                           counts.basics == 1 ? tr("1 basic or additive")
                                              : tr("%1 basics and additives").arg(text(counts.basics)),
                           counts.formulas == 1 ? tr("1 formula") : tr("%1 formulas").arg(text(counts.formulas)));
  if (session_.ArchiveView) facts += "   ·   " + tr("archive or backup copy, to be looked at only");
  if (!session_.ArchiveView) {
    facts += "\n" + BackupText(session_);
    if (const QString cloud = CloudBackupText(session_); !cloud.isEmpty()) facts += "   ·   " + cloud;
  }
  facts_->setText(facts);
  const bool empty = counts.basics == 0 && counts.formulas == 0 && !session_.ArchiveView;
  firstSteps_->setVisible(empty);
  lists_->setVisible(!empty);
  // The day begins here, unless the focus stands somewhere already; on the first button it stands by itself.
  const auto begin = [this](QWidget& first) {
    const QWidget* focus = window()->focusWidget();
    if (focus == nullptr || !focus->isVisible() || focus == makeBatch_) first.setFocus(Qt::OtherFocusReason);
  };
  if (empty) {
    const auto steps = firstSteps_->findChildren<QPushButton*>();
    for (QPushButton* step : steps) step->setEnabled(windows_.Knows(U8(step->property(kOpens).toString())));
    return begin(*steps.front());
  }
  const std::vector<HeldStock> held = ReadHeldStock(session_.File());
  openNumber_ = held.empty() ? 0 : held.front().BatchNo;
  openBatch_->setVisible(openNumber_ != 0 && windows_.Knows("BatchForm"));
  openBatch_->setText(tr("Batch %1 is still open").arg(openNumber_, 6, 10, QChar('0')));
  ShowToday();
  ShowLowStock();
  begin(*makeBatch_);
}

// Those that were used last come first; the others of the file follow.
void StartPage::ShowDatabases() {
  const QString key = "databases/" + Q(session_.DataFileName);
  const QString here = Q(session_.CurrentDatabase);
  QStringList last = memory::Recall(key).toStringList();
  if (last.isEmpty() || last.front() != here) {
    last.removeAll(here);
    last.prepend(here);
    memory::Keep(key, QStringList(last.mid(0, kMostDatabases + 1)));
  }
  for (const std::string& name : session_.databaseList)
    if (!last.contains(Q(name))) last << Q(name);
  qDeleteAll(databases_->findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
  auto* line = static_cast<QHBoxLayout*>(databases_->layout());
  delete line->takeAt(line->count() - 1);  // the stretch behind them
  int shown = 0;
  for (const QString& name : last) {
    if (name == here || session_.FindDatabase(U8(name)) == nullptr || shown == kMostDatabases) continue;
    if (shown++ == 0) line->addWidget(new QLabel(tr("Other Databases:"), databases_));
    auto* button = new QPushButton(QString(name).replace('&', "&&"), databases_);
    button->setProperty("link", true);
    button->setAccessibleName(tr("Change to the Database %1").arg(name));
    // It goes with what it does.
    connect(
        button, &QPushButton::clicked, this, [this, name] { change_(name); }, Qt::QueuedConnection);
    line->addWidget(button);
  }
  line->addStretch(1);
  databases_->setVisible(shown > 0);
}

void StartPage::OpenStock(QTableWidgetItem* activated) {
  if (!windows_.Knows("AdjustInventoryForm")) return;
  const QTableWidgetItem& name = *low_->item(activated->row(), 0);
  windows_.OpenForm("AdjustInventoryForm",
                    {{"FindRecord", U8(name.text())}, {"Kind", static_cast<ColorKind>(name.data(kKindRole).toInt())}});
}

void StartPage::ShowToday() {
  todays_->rows = BatchesOfDay(session_, session_.clock.Today());
  today_->Refresh();
  const auto made = todays_->rows.size();
  todayHeading_->setText(made == 0 ? tr("Today's Batches") : tr("Today's Batches: %1").arg(made));
}

void StartPage::ShowLowStock() {
  std::vector<LowStock> low = ColorsBelowReorder(session_);
  lowNone_->setVisible(low.empty());
  low_->setVisible(!low.empty());
  RecordRows<LowStock> source(LowStockColumns(session_));
  const std::vector<GridColumn> columns = source.Columns();
  const auto across = [&](std::size_t column) {
    return (columns[column].right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
  };
  for (std::size_t column = 0; column < columns.size(); ++column) {
    auto* heading = new QTableWidgetItem(columns[column].caption);
    heading->setTextAlignment(across(column));
    low_->setHorizontalHeaderItem(static_cast<int>(column), heading);
  }
  const int shown = static_cast<int>(std::min<std::size_t>(low.size(), kMostShown));
  // Columns that fit their content would be measured anew with every cell that is filled in.
  low_->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  low_->setRowCount(shown);
  source.rows = std::move(low);
  for (int row = 0; row < shown; ++row) {
    for (std::size_t column = 0; column < columns.size(); ++column) {
      auto* cell = new QTableWidgetItem(Q(source.Text(row, static_cast<int>(column))));
      cell->setTextAlignment(across(column));
      if (columns[column].scale > 1) cell->setFont(Look::Figures(columns[column].scale));
      low_->setItem(row, static_cast<int>(column), cell);
    }
    QTableWidgetItem* name = low_->item(row, 0);
    const LowStock& color = source.At(row);
    if (const auto ink = InkOf(session_, color.kind, color.Color_Name)) name->setIcon(Swatch(*ink));
    name->setData(kKindRole, static_cast<int>(color.kind));
    low_->item(row, 1)->setText(color.kind == ColorKind::Mix ? tr("Master Formula") : tr("Basic / Additive"));
  }
  low_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
  for (int column = 1; column < 4; ++column) low_->resizeColumnToContents(column);
  // As tall as its rows, and no empty frame below them.
  low_->setMaximumHeight(low_->horizontalHeader()->sizeHint().height() + shown * space::kRowHeight +
                         2 * low_->frameWidth() + space::kTight);
  lowHeading_->setText(shown < source.Rows()
                           ? tr("Colors under their reorder point (the first %1 of %2)").arg(shown).arg(source.Rows())
                           : tr("Colors under their reorder point"));
}

}  // namespace vellumark::desktop
