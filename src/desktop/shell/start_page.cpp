#include "desktop/shell/start_page.h"

#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "core/backup/backup_set.h"
#include "core/datafile/databases.h"
#include "core/inventory/stock_tables.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {
namespace {

constexpr int kMostShown = 200;
constexpr int kKindRole = Qt::UserRole;

QIcon Swatch(const LowStock& color) {
  QPixmap pixmap(32, 32);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Look::Now().border);
  painter.setBrush(QColor(color.Red, color.Green, color.Blue));
  painter.drawRoundedRect(QRectF(2.5, 2.5, 27, 27), 5, 5);
  return QIcon(pixmap);
}

}  // namespace

StartPage::StartPage(WindowList& windowList, QWidget* parent)
    : QWidget(parent), windows_(windowList), session_(windowList.session) {
  setObjectName("StartPage");
  auto* outer = new QHBoxLayout(this);
  auto* column = new QWidget(this);
  column->setMaximumWidth(880);
  outer->addStretch(1);
  outer->addWidget(column, 8);
  outer->addStretch(1);
  auto* lines = new QVBoxLayout(column);
  lines->setContentsMargins(space::kGroup, space::kGroup * 2, space::kGroup, space::kGroup);
  lines->setSpacing(space::kUnit);

  heading_ = new QLabel(column);
  heading_->setObjectName("lblStartHeading");
  QFont large = Look::Heading();
  large.setPointSizeF(large.pointSizeF() * 1.5);
  heading_->setFont(large);
  facts_ = new QLabel(column);
  facts_->setObjectName("lblStartFacts");
  makeBatch_ = new QPushButton(Icon("Batch"), tr("Make a &Batch"), column);
  makeBatch_->setObjectName("cmdMakeBatch");
  makeBatch_->hide();  // until a file is open
  connect(makeBatch_, &QPushButton::clicked, this, [this] { windows_.OpenForm("BatchForm"); });
  lowHeading_ = new QLabel(tr("Colors under their reorder point"), column);
  lowHeading_->setFont(Look::Heading());
  lowNone_ = new QLabel(tr("None. Every color with a reorder point has stock above it."), column);
  lowNone_->setObjectName("lblNoneLow");
  low_ = new QTableWidget(0, 4, column);
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

  lines->addWidget(heading_);
  lines->addWidget(facts_);
  lines->addSpacing(space::kGap);
  lines->addWidget(makeBatch_, 0, Qt::AlignLeft);
  lines->addSpacing(space::kGroup);
  lines->addWidget(lowHeading_);
  lines->addWidget(lowNone_);
  lines->addWidget(low_, 100);
  lines->addStretch(1);

  changes_ = session_.changes.Subscribe([this](const std::vector<Change>&) { Refresh(); });
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

void StartPage::Show() {
  if (!stale_) return;
  stale_ = false;
  const bool open = session_.RecordsetsOpen;
  makeBatch_->setVisible(open && windows_.Knows("BatchForm"));
  lowHeading_->setVisible(open);
  if (!open) {
    heading_->setText(tr("No Data File is open"));
    facts_->setText(tr("Open or make one in the Data File menu, under Advanced."));
    low_->hide();
    lowNone_->hide();
    return;
  }
  const DatabaseCounts counts = CountRows(session_.File(), session_.CurrentDatabase);
  heading_->setText(Q(session_.CurrentDatabase));
  QString facts = tr("%1   ·   %2 basics and additives   ·   %3 formulas")
                      .arg(Q(session_.FullName), locale().toString(static_cast<qlonglong>(counts.basics)),
                           locale().toString(static_cast<qlonglong>(counts.formulas)));
  if (session_.ArchiveView) facts += "   ·   " + tr("archive or backup copy, to be looked at only");
  if (!session_.ArchiveView) facts += "\n" + BackupText();
  facts_->setText(facts);
  ShowLowStock();
}

// The latest automatic backup, and whether it is known to give back what it holds.
QString StartPage::BackupText() const {
  const std::filesystem::path file = session_.DataFileName;
  std::vector<BackupSet> sets;
  try {
    sets = ListSets(file.parent_path() / kAutoBackupFolder);
  } catch (const Failure& failure) {
    return tr("The automatic backups cannot be read: %1").arg(Q(failure.cause));
  }
  std::erase_if(sets, [&](const BackupSet& set) { return set.dataFile.filename() != file.filename(); });
  if (sets.empty()) return tr("No automatic backup yet: one is made when the program closes");
  const DateTime& made = sets.back().made;
  const QDateTime time(QDate(made.year, made.month, made.day), QTime(made.hour, made.minute, made.second));
  const QString when = locale().toString(time, QLocale::ShortFormat);
  const auto& proof = sets.back().proof;
  if (!proof) return tr("Automatic backup of %1, not proven").arg(when);
  return proof->content.Sound() ? tr("Automatic backup of %1, proven").arg(when)
                                : tr("Automatic backup of %1: the Data File has faults").arg(when);
}

void StartPage::OpenStock(QTableWidgetItem* activated) {
  if (!windows_.Knows("AdjustInventoryForm")) return;
  const QTableWidgetItem& name = *low_->item(activated->row(), 0);
  windows_.OpenForm("AdjustInventoryForm",
                    {{"FindRecord", U8(name.text())}, {"Kind", static_cast<ColorKind>(name.data(kKindRole).toInt())}});
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
    name->setIcon(Swatch(color));
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
