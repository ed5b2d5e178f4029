#include "desktop/batch/row_view.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <utility>

#include "core/batch/rows.h"
#include "desktop/batch/cell_button.h"
#include "desktop/batch/row_columns.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

const char* KindIcon(LineKind kind) {
  switch (kind) {
    case LineKind::Mix:
      return "recycled";
    case LineKind::Basic:
      return "basic";
    case LineKind::Addition:
      return "additions";
  }
  std::unreachable();
}

void SetTone(QLabel& label, bool danger) {
  const QString role = danger ? "fault" : "label";
  if (label.property("role").toString() == role) return;
  label.setProperty("role", role);
  // The style sheet looks at properties when a widget is polished.
  label.style()->unpolish(&label);
  label.style()->polish(&label);
}

}  // namespace

RowView::RowView(int slot, QWidget* parent) : QWidget(parent) {
  const auto named = [slot](const char* name) { return QString::fromLatin1(name) + QString::number(slot); };
  setObjectName(named("BatchRow"));
  auto* line = new QHBoxLayout(this);
  line->setContentsMargins(0, 2, 0, 2);
  line->setSpacing(space::kUnit);
  kindIcon_ = new IconView("basic", 16);
  kind_ = new QLabel;
  kind_->setObjectName(named("lblKind"));
  kind_->setProperty("role", "label");
  kind_->setMinimumWidth(kind_->fontMetrics().horizontalAdvance(tr("Addition")) + space::kTight);
  ink_ = new SwatchView(named("imgInk"), {20, 20}, SwatchView::Unknown::Empty);
  name_ = new CellButton(named("lblName"), 1, Qt::AlignLeft);
  low_ = new CellButton(named("ImgInvLow"), 1, Qt::AlignRight);
  low_->setText(tr("Low"));
  low_->setIcon(Icon("low-stock"));
  low_->setToolTip(tr("It is time to reorder this color."));
  low_->SetTone(CellButton::Tone::Quiet);
  low_->SetClickable(false);
  more_ = new CellButton(named("lblMoreUsable"), 1, Qt::AlignRight);
  more_->setText(tr("More usable"));
  more_->SetTone(CellButton::Tone::Link);
  lot_ = new CellButton(named("lblLot"), 1, Qt::AlignRight);
  lot_->setText(tr("Lot"));
  lot_->setIcon(Icon("lot"));
  lot_->SetTone(CellButton::Tone::Link);
  amount_ = new CellButton(named("lblAmount"), kAmountScale, Qt::AlignRight);
  amount_->KeepRoomFor(kWidestAmount);
  unit_ = new QLabel;
  unit_->setObjectName(named("lblUnit"));
  unit_->setProperty("role", "label");
  unit_->setFixedWidth(UnitWidth(*unit_));
  line->addWidget(kindIcon_);
  line->addWidget(kind_);
  line->addWidget(ink_);
  line->addWidget(name_, 1);
  for (QWidget* mark : {low_, more_, lot_}) line->addWidget(mark);
  line->addWidget(amount_);
  line->addWidget(unit_);
}

void RowView::Show(const Face& face) {
  setVisible(face.row != nullptr);
  if (face.row == nullptr) return;
  const BatchRow& row = *face.row;
  const QString kind = Q(LineKindName(row.kind));
  kindIcon_->Show(KindIcon(row.kind));
  kind_->setText(kind);
  ink_->Show(face.ink);
  const bool danger = row.kind == LineKind::Addition;
  const auto tone = [](bool red) { return red ? CellButton::Tone::Danger : CellButton::Tone::Normal; };
  name_->setText(Q(row.name));
  name_->SetTone(tone(danger));
  QString hint = kHintInventory;
  if (!face.quickInfo.isEmpty()) hint += "\n\n" + face.quickInfo;
  name_->setToolTip(hint);
  name_->setAccessibleName(tr("%1 %2").arg(kind, Q(row.name)));
  low_->setVisible(row.lowStock);
  more_->setVisible(row.moreUsable);
  more_->setToolTip(face.amountHint);
  lot_->setVisible(row.lotLink);
  lot_->setText(face.lotsChosen ? QString::fromUtf8("Lot ✓") : tr("Lot"));
  lot_->setToolTip(face.lotsChosen ? tr("The lots of this color are chosen") : tr("Choose the lots of this color"));
  const QString amount = Q(Fixed(row.amount, 3));
  amount_->setText(amount);
  amount_->SetTone(tone(danger || row.zero));
  amount_->setToolTip(face.amountHint);
  amount_->SetClickable(row.adjustable);
  amount_->setAccessibleName(tr("%1: %2 %3").arg(Q(row.name), amount, face.unit));
  unit_->setText(face.unit);
  SetTone(*unit_, danger || row.zero);
}

std::vector<CellButton*> RowView::Cells() const {
  std::vector<CellButton*> cells;
  for (CellButton* cell : {name_, more_, lot_, amount_})
    if (!cell->isHidden()) cells.push_back(cell);
  return cells;
}

}  // namespace vellumark::desktop
