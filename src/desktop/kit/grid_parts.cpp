#include "desktop/kit/grid_parts.h"

#include <QKeyEvent>
#include <QLocale>
#include <QPainter>

#include "desktop/kit/fields.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kSwatch = 16;
constexpr int kMark = 16;
constexpr int kArrow = 8;
constexpr const char* kBefore = "before";  // what stood in an editor at first

void PaintArrow(QPainter& painter, const QRect& rect, bool descending, const QColor& color) {
  const QPointF center = rect.center();
  const double half = kArrow / 2.0;
  const double up = descending ? -half / 1.5 : half / 1.5;
  const QPolygonF arrow{QPointF(center.x() - half, center.y() + up), QPointF(center.x() + half, center.y() + up),
                        QPointF(center.x(), center.y() - up)};
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(color);
  painter.drawPolygon(arrow);
}

}  // namespace

GridHeader::GridHeader(Grid& grid, QWidget* parent) : QHeaderView(Qt::Horizontal, parent), grid_(grid) {
  setSectionsClickable(true);
  setSectionsMovable(false);
  setHighlightSections(false);
  setMinimumSectionSize(32);
  setContextMenuPolicy(Qt::CustomContextMenu);
}

QSize GridHeader::sectionSizeFromContents(int) const {
  return {60, 4 * space::kUnit};
}

void GridHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
  const Colors& colors = Look::Now();
  const GridColumn& column = grid_.Columns().at(static_cast<std::size_t>(section));
  const GridSort& sort = grid_.Sort();
  const bool first = section == sort.column;
  const bool second = section == sort.second;
  painter->save();
  painter->fillRect(rect, first || second ? colors.line : colors.raised);
  painter->setPen(colors.line);
  painter->drawLine(rect.topRight(), rect.bottomRight());
  painter->setPen(colors.border);
  painter->drawLine(rect.bottomLeft(), rect.bottomRight());

  QRect inner = rect.adjusted(space::kUnit, 0, -space::kUnit, 0);
  if (first || second) {
    const QRect arrow(inner.right() - kArrow, inner.top(), kArrow + 1, inner.height());
    PaintArrow(*painter, arrow, first ? sort.descending : sort.secondDescending, colors.text);
    inner.setRight(arrow.left() - space::kTight);
    if (second) {
      painter->setPen(colors.quiet);
      painter->drawText(inner, Qt::AlignRight | Qt::AlignVCenter, "2");
      inner.setRight(inner.right() - painter->fontMetrics().horizontalAdvance("2 "));
    }
  }
  painter->setPen(colors.text);
  const QString caption = painter->fontMetrics().elidedText(column.caption, Qt::ElideRight, inner.width());
  painter->drawText(inner, Qt::AlignVCenter | (column.right ? Qt::AlignRight : Qt::AlignLeft), caption);
  painter->restore();
}

GridDelegate::GridDelegate(Grid& grid) : QStyledItemDelegate(&grid), grid_(grid) {}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const Colors& colors = Look::Now();
  const GridColumn& column = grid_.Columns().at(static_cast<std::size_t>(index.column()));
  const GridSource& source = *grid_.Model().Source();
  const int row = grid_.Model().SourceRow(index.row());
  painter->save();
  const bool selected = (option.state & QStyle::State_Selected) != 0;
  if (selected) painter->fillRect(option.rect, colors.chosen);
  QRect inner = option.rect.adjusted(space::kUnit, 0, -space::kUnit, 0);

  if (const auto swatch = source.Swatch(row, index.column())) {
    const QRect box(inner.left(), inner.center().y() - kSwatch / 2, kSwatch, kSwatch);
    PaintInk(*painter, QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), *swatch, 3);
    inner.setLeft(box.right() + space::kUnit + 1);
  }
  if (const char* mark = source.Mark(row, index.column())) {
    const QRect box(inner.left(), inner.center().y() - kMark / 2, kMark, kMark);
    Icon(mark).paint(painter, box);
    inner.setLeft(box.right() + space::kUnit + 1);
  }
  if (column.scale != 1) painter->setFont(Look::Figures(column.scale));
  painter->setPen(colors.text);
  const QString text = Q(source.Text(row, index.column())).section('\n', 0, 0);
  // What does not fit loses its less telling end.
  const QString fitting =
      painter->fontMetrics().elidedText(text, column.right ? Qt::ElideLeft : Qt::ElideRight, inner.width());
  painter->drawText(inner, Qt::AlignVCenter | Qt::TextSingleLine | (column.right ? Qt::AlignRight : Qt::AlignLeft),
                    fitting);
  if (selected && (option.state & QStyle::State_HasFocus) != 0) {
    painter->setPen(colors.accent);
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
  }
  painter->restore();
}

QWidget* GridDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const {
  const GridColumn& column = grid_.Columns().at(static_cast<std::size_t>(index.column()));
  const bool number = column.sort == GridColumn::Sort::Number;
  auto* editor = new TextField("txtEdit", column.rule.value_or(number ? TextRule::Number(12) : TextRule::Any()));
  editor->setParent(parent);
  editor->setMinimumWidth(0);
  editor->setMaximumWidth(QWIDGETSIZE_MAX);
  if (column.right) editor->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  if (column.scale != 1) editor->setFont(Look::Figures(column.scale));
  editor->setAccessibleName(column.caption);
  return editor;
}

// Figures are typed without the marks between their thousands.
void GridDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto* field = qobject_cast<TextField*>(editor);
  QString text = index.data(Qt::EditRole).toString();
  if (IsNumber(index)) text.remove(QLocale().groupSeparator());
  field->SetText(U8(text));
  field->setProperty(kBefore, text);
  field->selectAll();
}

void GridDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const {
  QString text = qobject_cast<TextField*>(editor)->text();
  if (text == editor->property(kBefore).toString()) return;
  // The core reads a point.
  if (IsNumber(index)) text.replace(QLocale().decimalPoint(), ".");
  model->setData(index, text, Qt::EditRole);
}

bool GridDelegate::IsNumber(const QModelIndex& index) const {
  const GridColumn& column = grid_.Columns().at(static_cast<std::size_t>(index.column()));
  return column.sort == GridColumn::Sort::Number && column.right;
}

void GridDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option, const QModelIndex&) const {
  editor->setGeometry(option.rect);
}

bool GridDelegate::eventFilter(QObject* object, QEvent* event) {
  auto* editor = qobject_cast<TextField*>(object);
  if (editor == nullptr || event->type() != QEvent::KeyPress) return QStyledItemDelegate::eventFilter(object, event);
  const auto& key = *static_cast<QKeyEvent*>(event);
  int way = key.key();
  switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      way = (key.modifiers() & Qt::ShiftModifier) != 0 ? Qt::Key_Up : Qt::Key_Down;
      break;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      break;
    case Qt::Key_Right:
      if (editor->cursorPosition() < editor->text().size()) return false;
      break;
    case Qt::Key_Left:
      if (editor->cursorPosition() > 0 || editor->hasSelectedText()) return false;
      break;
    default:
      return QStyledItemDelegate::eventFilter(object, event);
  }
  const QPersistentModelIndex from = grid_.View().currentIndex();
  Q_EMIT commitData(editor);
  Q_EMIT closeEditor(editor, QAbstractItemDelegate::NoHint);
  grid_.MoveOn(from, way);
  return true;
}

TotalsRow::TotalsRow(Grid& grid) : QWidget(&grid), grid_(grid) {
  setVisible(false);
}

void TotalsRow::SetTexts(std::vector<std::string> texts) {
  texts_ = std::move(texts);
  setVisible(!texts_.empty());
  QStringList spoken;
  for (std::size_t i = 0; i < texts_.size() && i < grid_.Columns().size(); ++i) {
    if (!texts_[i].empty()) spoken += grid_.Columns()[i].caption + " " + Q(texts_[i]);
  }
  setAccessibleName(spoken.join(", "));
  update();
}

QSize TotalsRow::sizeHint() const {
  return {100, 4 * space::kUnit};
}

void TotalsRow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const Colors& colors = Look::Now();
  painter.fillRect(rect(), colors.raised);
  QFont font = Look::Figures();
  font.setWeight(QFont::DemiBold);
  painter.setFont(font);
  painter.setPen(colors.text);
  const QHeaderView& header = *grid_.View().horizontalHeader();
  const int edge = grid_.View().viewport()->mapTo(&grid_, QPoint(0, 0)).x() - x();
  for (std::size_t i = 0; i < texts_.size() && i < grid_.Columns().size(); ++i) {
    const int column = static_cast<int>(i);
    if (header.isSectionHidden(column) || texts_[i].empty()) continue;
    const QRect cell(edge + header.sectionViewportPosition(column), 0, header.sectionSize(column), height());
    const QRect inner = cell.adjusted(space::kUnit, 0, -space::kUnit, 0);
    const bool right = grid_.Columns()[i].right;
    const QString text =
        painter.fontMetrics().elidedText(Q(texts_[i]), right ? Qt::ElideLeft : Qt::ElideRight, inner.width());
    painter.drawText(inner, Qt::AlignVCenter | (right ? Qt::AlignRight : Qt::AlignLeft), text);
  }
}

}  // namespace vellumark::desktop
