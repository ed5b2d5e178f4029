#include "desktop/batch/rows_panel.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>

#include "core/base/units.h"
#include "core/batch/bench.h"
#include "core/batch/quick_info.h"
#include "core/batch/rows.h"
#include "core/colors/guides.h"
#include "desktop/batch/cell_button.h"
#include "desktop/batch/row_columns.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

// The guide in which the colour stands, and where in it.
QString GuideOf(const BatchWork& work) {
  const BatchFormula& formula = work.formula;
  QString guide = Q(GuideCaption(work.Color_Name, {.Color_Guide = formula.Color_Guide,
                                                   .Page = formula.Page,
                                                   .Row = formula.Row,
                                                   .Red = formula.Red,
                                                   .Green = formula.Green,
                                                   .Blue = formula.Blue}));
  if (guide.isEmpty()) return guide;
  guide.replace("&&", "&");  // a caption without an access key
  return RowsPanel::tr("%1, page %2, row %3").arg(guide, Q(formula.Page)).arg(formula.Row);
}

QVBoxLayout* Column(QWidget& of, int spacing) {
  auto* column = new QVBoxLayout(&of);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(spacing);
  return column;
}

}  // namespace

RowsPanel::RowsPanel(FormHost& host, Form& form, QWidget* parent) : QWidget(parent), session_(host.session) {
  setObjectName("BatchRows");
  auto* column = Column(*this, space::kUnit);
  column->addWidget(BuildTitle(form));

  scroll_ = new QScrollArea(this);
  column->addWidget(scroll_, 1);
  auto* inside = new QWidget;
  scroll_->setWidget(inside);
  auto* rows = Column(*inside, 0);
  empty_ = new QLabel(tr("Type a color and a quantity, then press Recycle (F2) or Mix (F3)."));
  empty_->setObjectName("lblNoRows");
  empty_->setProperty("role", "hint");
  empty_->setWordWrap(true);
  rows->addWidget(empty_);
  for (int slot = 0; slot < kSlots; ++slot) {
    auto* view = new RowView(slot, inside);
    view->hide();
    rows->addWidget(view);
    slots_.push_back(view);
    Connect(*view, slot);
  }
  rows->addStretch(1);
  scroll_->setObjectName("BatchRowsArea");
  scroll_->setWidgetResizable(true);
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setFocusPolicy(Qt::NoFocus);
  scroll_->setMinimumHeight(96);
  scroll_->viewport()->setAutoFillBackground(false);
  inside->setAutoFillBackground(false);

  column->addWidget(BuildTotal(form));
  zeroMsg_ = new QLabel(tr(kZeroMsg));
  zeroMsg_->setObjectName("lblZeroMsg");
  zeroMsg_->setProperty("role", "fault");
  zeroMsg_->setWordWrap(true);
  zeroMsg_->hide();
  column->addWidget(zeroMsg_);

  // The total stays under the amounts when a scroll bar takes room beside them.
  connect(scroll_->verticalScrollBar(), &QScrollBar::rangeChanged, this, [this](int least, int most) {
    const int bar = most > least ? scroll_->verticalScrollBar()->sizeHint().width() : 0;
    totalRow_->layout()->setContentsMargins(0, space::kUnit, bar, 0);
  });
}

QWidget* RowsPanel::BuildTitle(Form& form) {
  auto* line = new QWidget;
  auto* across = new QHBoxLayout(line);
  across->setContentsMargins(0, 0, 0, 0);
  across->setSpacing(space::kUnit);
  ink_ = new SwatchView("imgSwatch", {32, 32}, SwatchView::Unknown::Empty);
  title_ = form.Label("lblColorTitle");
  title_->setFont(Look::Heading());
  title_->setProperty("role", "heading");
  guide_ = form.Hint({}, "lblGuide");
  modified_ = form.Link("ImgModifiedFormula", tr("Modified formula"), [this] { Q_EMIT ModifiedClicked(); });
  modified_->setToolTip(tr("The Master Formula was changed since this Batch was saved."));
  prevAdditions_ = form.Hint(tr("Earlier additions"), "ImgPrevAdditions");
  prevAdditions_->setToolTip(tr("NOTE - A Batch Addition was required for a previous Batch of this color."));
  across->addWidget(ink_);
  across->addWidget(title_);
  across->addWidget(guide_);
  across->addStretch(1);
  across->addWidget(prevAdditions_);
  across->addWidget(modified_);
  modified_->hide();
  prevAdditions_->hide();
  line->setMinimumHeight(32);
  return line;
}

QWidget* RowsPanel::BuildTotal(Form& form) {
  totalRow_ = new QWidget;
  auto* across = new QHBoxLayout(totalRow_);
  across->setContentsMargins(0, space::kUnit, 0, 0);
  across->setSpacing(space::kUnit);
  auto* caption = new QLabel(tr("Total"));
  caption->setFont(Look::Heading());
  percent_ = form.Hint({}, "PercentRecycled");
  CommandButton* additions = form.Link("ImgAdditions", tr("&Additions"), [this] { Q_EMIT AdditionsClicked(); });
  additions->setIcon(Icon("additions"));
  additions->setToolTip(tr("Add new or extra colors to the Batch"));
  total_ = new CellButton("lblTotal", kAmountScale, Qt::AlignRight);
  total_->KeepRoomFor(kWidestAmount);
  total_->SetClickable(false);
  total_->setFocusPolicy(Qt::NoFocus);
  unit_ = form.Hint({}, "lblTotalUnit");
  unit_->setFixedWidth(UnitWidth(*unit_));
  across->addWidget(caption);
  across->addWidget(percent_);
  across->addStretch(1);
  across->addWidget(additions);
  across->addWidget(total_);
  across->addWidget(unit_);
  return totalRow_;
}

void RowsPanel::Connect(RowView& view, int slot) {
  connect(&view.Name(), &QAbstractButton::clicked, this, [this, slot] { Q_EMIT NameClicked(slot); });
  connect(&view.Amount(), &QAbstractButton::clicked, this, [this, slot] { Q_EMIT AmountClicked(slot); });
  connect(&view.MoreUsable(), &QAbstractButton::clicked, this, [this, slot] { Q_EMIT AmountClicked(slot); });
  connect(&view.Lot(), &QAbstractButton::clicked, this, [this, slot] { Q_EMIT LotsClicked(slot); });
  for (CellButton* cell : {&view.Name(), &view.Amount(), &view.MoreUsable(), &view.Lot()})
    cell->installEventFilter(this);
}

// ---- Showing

void RowsPanel::ShowTitle(const QString& text) {
  title_->setText(text);
  title_->repaint();
}

void RowsPanel::Show(const BatchRecord& record) {
  const BatchWork& work = record.work;
  const bool named = !work.Color_Name.empty();
  title_->setText(Q(work.Color_Name));
  const auto ink = named ? InkOf(session_, ColorKind::Mix, work.Color_Name) : std::nullopt;
  ink_->Show(ink);
  ink_->setVisible(ink.has_value());
  guide_->setText(named ? GuideOf(work) : QString());
  modified_->setVisible(record.modifiedFormula);
  prevAdditions_->setVisible(named && PriorBatchHadAdditions(session_, work.Color_Name, record.BatchNo));
  ShowRows(record);
  const bool rows = !work.Rows.empty();
  empty_->setVisible(!rows);
  total_->setText(rows ? Q(Fixed(work.ShownTotal, 3)) : QString());
  total_->setAccessibleName(tr("Total"));
  unit_->setText(rows ? Q(UnitName(work.UMF)) : QString());
  percent_->setText(rows ? tr("%1 recycled").arg(Q(PercentRecycledText(work))) : QString());
  totalRow_->setVisible(rows);
  zeroMsg_->setVisible(work.zeroRows > 0);
}

void RowsPanel::ShowRows(const BatchRecord& record) {
  const BatchWork& work = record.work;
  const BatchOptions options = ReadBatchOptions(session_);
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    RowView::Face face;
    if (i < work.Rows.size()) {
      const BatchRow& row = work.Rows[i];
      face.row = &row;
      face.unit = Q(UnitName(work.UMF));
      face.amountHint = Q(AmountHint(work, row));
      face.ink = InkOf(session_, ColorKindOf(row.kind), row.name);
      if (options.ShowQuickInfo) face.quickInfo = QuickInfoText(work, i, options);
      face.lotsChosen = row.lotLink && RowLots(record, i).CompleteFor(LotNeed(session_, record, i));
    }
    slots_[i]->Show(face);
  }
  if ((current_ == nullptr || !current_->isVisibleTo(this)) && !work.Rows.empty()) SetCurrent(slots_.front()->Amount());
}

QString RowsPanel::QuickInfoText(const BatchWork& work, std::size_t row, const BatchOptions& options) const {
  QStringList lines;
  for (const auto& [caption, value] : QuickInfo(session_, work, row, options.QuickInfoField))
    lines += QString("%1: %2").arg(tr(caption.c_str()), Q(value));
  return lines.join('\n');
}

// ---- The keyboard

bool RowsPanel::FocusAmount(int row) {
  const auto last =
      std::ranges::find_if(slots_.rbegin(), slots_.rend(), [](RowView* view) { return !view->isHidden(); });
  if (last == slots_.rend()) return false;
  const int shown = static_cast<int>(slots_.rend() - last);
  CellButton& cell = slots_[static_cast<std::size_t>(std::clamp(row, 0, shown - 1))]->Amount();
  SetCurrent(cell);
  cell.setFocus(Qt::OtherFocusReason);
  return true;
}

std::optional<std::size_t> RowsPanel::RowOf(const QWidget* cell) const {
  const auto at = std::ranges::find_if(slots_, [cell](const RowView* view) { return view->isAncestorOf(cell); });
  if (at == slots_.end()) return std::nullopt;
  return static_cast<std::size_t>(at - slots_.begin());
}

void RowsPanel::FocusLot(int row) {
  CellButton& cell = slots_.at(static_cast<std::size_t>(row))->Lot();
  SetCurrent(cell);
  cell.setFocus(Qt::OtherFocusReason);
}

void RowsPanel::SetCurrent(CellButton& cell) {
  if (current_ != nullptr) current_->setFocusPolicy(Qt::ClickFocus);
  current_ = &cell;
  cell.setFocusPolicy(Qt::StrongFocus);
}

CellButton* RowsPanel::Beside(CellButton& cell, int key) const {
  auto* view = qobject_cast<RowView*>(cell.parentWidget());
  const auto at = std::ranges::find(slots_, view);
  if (at == slots_.end()) return nullptr;
  if (key == Qt::Key_Left || key == Qt::Key_Right) {
    const std::vector<CellButton*> cells = view->Cells();
    const auto place = std::ranges::find(cells, &cell);
    const std::ptrdiff_t next = place - cells.begin() + (key == Qt::Key_Left ? -1 : 1);
    return next < 0 || next >= std::ssize(cells) ? nullptr : cells[static_cast<std::size_t>(next)];
  }
  const std::ptrdiff_t next = at - slots_.begin() + (key == Qt::Key_Up ? -1 : 1);
  if (next < 0 || next >= std::ssize(slots_) || slots_[static_cast<std::size_t>(next)]->isHidden()) return nullptr;
  RowView& other = *slots_[static_cast<std::size_t>(next)];
  // The same column, if the other row has it.
  if (&cell == &view->Name()) return &other.Name();
  if (&cell == &view->Lot() && !other.Lot().isHidden()) return &other.Lot();
  return &other.Amount();
}

bool RowsPanel::eventFilter(QObject* watched, QEvent* event) {
  auto* cell = qobject_cast<CellButton*>(watched);
  if (cell == nullptr) return QWidget::eventFilter(watched, event);
  if (event->type() == QEvent::FocusIn) {
    SetCurrent(*cell);
    scroll_->ensureWidgetVisible(cell, 2 * space::kGap, space::kUnit);
    return false;
  }
  if (event->type() != QEvent::KeyPress) return false;
  const auto& key = *static_cast<QKeyEvent*>(event);
  const bool arrow =
      key.key() == Qt::Key_Up || key.key() == Qt::Key_Down || key.key() == Qt::Key_Left || key.key() == Qt::Key_Right;
  if (!arrow || (key.modifiers() & ~Qt::KeypadModifier) != 0) return false;
  if (CellButton* next = Beside(*cell, key.key())) {
    next->setFocus(Qt::TabFocusReason);
  } else {
    QApplication::beep();
  }
  return true;
}

}  // namespace vellumark::desktop
