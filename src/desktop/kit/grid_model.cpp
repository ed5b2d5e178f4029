#include "desktop/kit/grid_model.h"

#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <compare>
#include <iterator>
#include <numeric>
#include <utility>

#include "core/base/text.h"
#include "desktop/kit/piece_source.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kFirstRows = 100;          // more than a window shows
constexpr std::size_t kRowsAtOnce = 500;  // looked through between two looks at the clock
constexpr int kMoment = 10;              // ms

/// The keys of one column, read once.
class SortKeys {
 public:
  SortKeys(const GridSource& source, const GridColumn& column, int index, bool descending)
      : isNumber_(column.sort == GridColumn::Sort::Number), descending_(descending) {
    const int rows = source.Rows();
    if (isNumber_) {
      numbers_.reserve(static_cast<std::size_t>(rows));
      for (int row = 0; row < rows; ++row) {
        const double number = source.Number(row, index);
        // Empty cells come before all numbers.
        numbers_.push_back(std::isnan(number) ? -std::numeric_limits<double>::infinity() : number);
      }
      return;
    }
    texts_.reserve(static_cast<std::size_t>(rows));
    for (int row = 0; row < rows; ++row) {
      std::string text = source.Text(row, index);
      texts_.push_back(column.sort == GridColumn::Sort::TextNoCase ? Upper(text) : std::move(text));
    }
  }

  std::weak_ordering Compare(int a, int b) const {
    if (descending_) std::swap(a, b);
    const auto first = static_cast<std::size_t>(a);
    const auto second = static_cast<std::size_t>(b);
    if (isNumber_) {
      if (numbers_[first] < numbers_[second]) return std::weak_ordering::less;
      if (numbers_[second] < numbers_[first]) return std::weak_ordering::greater;
      return std::weak_ordering::equivalent;
    }
    return texts_[first] <=> texts_[second];
  }

 private:
  bool isNumber_;
  bool descending_;
  std::vector<double> numbers_;
  std::vector<std::string> texts_;
};

}  // namespace

void GridModel::SetColumns(std::vector<GridColumn> columns) {
  beginResetModel();
  columns_ = std::move(columns);
  for (GridColumn& column : columns_) {
    if (column.name.isEmpty()) column.name = column.caption.section(" (", 0, 0).simplified();
  }
  haystack_.clear();
  rowStarts_.clear();
  endResetModel();
}

void GridModel::SetSource(std::shared_ptr<GridSource> source) {
  source_ = std::move(source);
  Refresh();
}

void GridModel::Refresh() {
  beginResetModel();
  haystack_.clear();
  rowStarts_.clear();
  BeginReading();
  if (more_ && !source_->IsSortedBy(sort_)) {
    sorted_.clear();
    shown_.clear();
    endResetModel();
    ReadAllAndSort();
  } else {
    SortRows();
    FilterRows();
    endResetModel();
  }
  if (onDemand_) Q_EMIT RowsRead();
}

// The program may paint while the rest is read.
void GridModel::ReadAllAndSort() {
  more_ = false;
  source_->ReadAll([this] {
    beginResetModel();
    SortRows();
    FilterRows();
    endResetModel();
  });
}

void GridModel::BeginReading() {
  std::function<bool(int)> keep;
  if (!words_.empty()) {
    keep = [this](int row) {
      const std::string text = RowText(row);
      return std::ranges::all_of(words_, [&](const std::string& word) { return text.find(word) != text.npos; });
    };
  }
  onDemand_ = source_ != nullptr && source_->BeginReading(keep);
  more_ = onDemand_ && source_->ReadOn();
}

void GridModel::fetchMore(const QModelIndex& parent) {
  if (!canFetchMore(parent)) return;
  more_ = source_->ReadOn();
  const int rows = source_->Rows();
  const int before = static_cast<int>(sorted_.size());
  if (rows > before) {
    beginInsertRows({}, before, rows - 1);
    for (int row = before; row < rows; ++row) sorted_.push_back(row);
    shown_ = sorted_;
    endInsertRows();
  }
  if (more_ && !goesOn_ && (rows == before || rows < kFirstRows)) {
    // Little in this stretch: no view asks again for rows that it did not get.
    goesOn_ = true;
    // A child of the model: a window that closes stops it.
    auto* again = new QTimer(this);
    again->setSingleShot(true);
    connect(again, &QTimer::timeout, this, [this, again] {
      again->deleteLater();
      goesOn_ = false;
      fetchMore({});
    });
    again->start(0);
  }
  Q_EMIT RowsRead();
}

void GridModel::SetSort(const GridSort& sort) {
  sort_ = sort;
  if (more_ && !source_->IsSortedBy(sort)) {
    ReadAllAndSort();
  } else {
    beginResetModel();
    SortRows();
    FilterRows();
    endResetModel();
  }
  if (onDemand_) Q_EMIT RowsRead();
}

void GridModel::SetFilter(const QString& text) {
  std::vector<std::string> words;
  const std::string upper = Upper(U8(text.simplified()));
  for (const std::string_view word : Split(upper, ' ')) {
    if (!word.empty()) words.emplace_back(word);
  }
  if (words == words_) return;
  words_ = std::move(words);
  if (onDemand_) return Refresh();
  beginResetModel();
  FilterRows();
  endResetModel();
}

int GridModel::ShownRow(int sourceRow) const {
  const auto found = std::ranges::find(shown_, sourceRow);
  return found == shown_.end() ? -1 : static_cast<int>(found - shown_.begin());
}

void GridModel::SortRows() {
  sorted_.resize(source_ == nullptr ? 0 : static_cast<std::size_t>(source_->Rows()));
  std::iota(sorted_.begin(), sorted_.end(), 0);
  const int columns = static_cast<int>(columns_.size());
  if (source_ == nullptr || sort_.column < 0 || sort_.column >= columns || source_->IsSortedBy(sort_)) return;
  const auto begin = sorted_.begin() + std::min<std::ptrdiff_t>(source_->FixedRows(), std::ssize(sorted_));
  const SortKeys first(*source_, Column(sort_.column), sort_.column, sort_.descending);
  if (sort_.second < 0 || sort_.second >= columns) {
    std::stable_sort(begin, sorted_.end(), [&](int a, int b) { return first.Compare(a, b) < 0; });
    return;
  }
  const SortKeys second(*source_, Column(sort_.second), sort_.second, sort_.secondDescending);
  std::stable_sort(begin, sorted_.end(), [&](int a, int b) {
    const auto order = first.Compare(a, b);
    return order != 0 ? order < 0 : second.Compare(a, b) < 0;
  });
}

// A list that comes in pieces is looked through in pieces too: for a moment at once, further while the program goes on.
void GridModel::MakeHaystack() {
  const std::size_t rows = source_ == nullptr ? 0 : static_cast<std::size_t>(source_->Rows());
  if (rowStarts_.size() > rows) return;
  const bool inPieces = dynamic_cast<const ReadInPieces*>(source_.get()) != nullptr;
  QElapsedTimer time;
  time.start();
  do {
    for (const std::size_t end = std::min(rows, rowStarts_.size() + kRowsAtOnce); rowStarts_.size() < end;) {
      rowStarts_.push_back(haystack_.size());
      haystack_ += RowText(static_cast<int>(rowStarts_.size()) - 1);
      haystack_ += '\n';
    }
  } while (rowStarts_.size() < rows && !(inPieces && time.elapsed() >= kMoment));
  if (rowStarts_.size() == rows) {
    rowStarts_.push_back(haystack_.size());
    return;
  }
  if (std::exchange(goesOn_, true)) return;
  auto* again = new QTimer(this);
  again->setSingleShot(true);
  connect(again, &QTimer::timeout, this, [this, again] {
    again->deleteLater();
    goesOn_ = false;
    if (words_.empty()) return;
    MakeHaystack();
    if (goesOn_) return;
    // What was found in the beginning is shown already, and may be the current row.
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList kept = persistentIndexList();
    std::vector<int> keptRows;
    for (const QModelIndex& index : kept) keptRows.push_back(SourceRow(index.row()));
    FilterRows();
    QModelIndexList now;
    for (qsizetype i = 0; i < kept.size(); ++i) {
      const int shown = ShownRow(keptRows[static_cast<std::size_t>(i)]);
      now += shown < 0 ? QModelIndex() : index(shown, kept[i].column());
    }
    changePersistentIndexList(kept, now);
    Q_EMIT layoutChanged({}, VerticalSortHint);
    Q_EMIT RowsRead();
  });
  again->start(0);
}

// What the filter looks through: the visible text of a row, in capitals.
std::string GridModel::RowText(int row) const {
  std::string text;
  for (std::size_t c = 0; c < columns_.size(); ++c) {
    if (columns_[c].width == 0 || !columns_[c].shown) continue;
    text += source_->Text(row, static_cast<int>(c));
    text += '\t';
  }
  return Upper(text);
}

void GridModel::FilterRows() {
  if (words_.empty() || onDemand_) {
    shown_ = sorted_;
    return;
  }
  MakeHaystack();
  // The longest word is looked for through the whole text at once; the others only where that one was found.
  std::vector<std::string> words = words_;
  std::ranges::sort(words, std::greater{}, &std::string::size);
  std::vector<char> matches(sorted_.size(), 0);
  std::size_t row = 0;
  const auto endOf = [this](std::size_t of) { return of + 1 < rowStarts_.size() ? rowStarts_[of + 1] : haystack_.size(); };
  for (std::size_t at = haystack_.find(words.front()); at != std::string::npos;) {
    while (endOf(row) <= at) ++row;
    const std::string_view text = std::string_view(haystack_).substr(rowStarts_[row], endOf(row) - rowStarts_[row]);
    matches[row] = std::ranges::all_of(words, [&](const std::string& word) { return text.find(word) != text.npos; });
    at = haystack_.find(words.front(), endOf(row));
  }
  shown_.clear();
  const int fixed = source_ == nullptr ? 0 : source_->FixedRows();
  for (const int candidate : sorted_) {
    if (candidate < fixed || matches[static_cast<std::size_t>(candidate)] != 0) shown_.push_back(candidate);
  }
}

int GridModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int GridModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const int row = SourceRow(index.row());
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
    case Qt::AccessibleTextRole:
      return Q(source_->Text(row, index.column()));
    case Qt::TextAlignmentRole: {
      const bool right = columns_[static_cast<std::size_t>(index.column())].right;
      return QVariant((right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    default:
      return {};
  }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
  const GridColumn& column = columns_[static_cast<std::size_t>(section)];
  if (role == Qt::DisplayRole) return column.caption;
  if (role == Qt::TextAlignmentRole)
    return QVariant((column.right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
  if (role != Qt::ToolTipRole || !column.sortable) return {};
  if (section == sort_.column) return tr("Click to reverse sort order");
  if (section == sort_.second) return tr("Click to sort  or  Shift+Click to reverse double sort order");
  return tr("Click to sort  or  Shift+Click to double sort");
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return {};
  const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  return source_->IsEditable(SourceRow(index.row()), index.column()) ? flags | Qt::ItemIsEditable : flags;
}

bool GridModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::EditRole || !index.isValid()) return false;
  const int row = SourceRow(index.row());
  const std::string text = U8(value.toString());
  if (text == source_->Text(row, index.column())) return true;
  if (const Result<void> result = source_->Edit(row, index.column(), text); !result) {
    Q_EMIT EditRefused(result.error());
    return false;
  }
  haystack_.clear();
  rowStarts_.clear();
  Q_EMIT dataChanged(index.siblingAtColumn(0), index.siblingAtColumn(columnCount() - 1));
  Q_EMIT Edited(row, index.column());
  return true;
}

}  // namespace vellumark::desktop
