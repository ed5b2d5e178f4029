#include "desktop/kit/layout_memory.h"

#include <QHeaderView>
#include <QSplitter>

#include "desktop/kit/grid.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {
namespace {

// The parts of a grid's layout.
constexpr const char* kWidths = "widths";
constexpr const char* kSort = "sort";
constexpr const char* kChosen = "columns";
constexpr const char* kDown = "down";

QString NameOf(const Grid& grid, int column) {
  return grid.Columns().at(static_cast<std::size_t>(column)).name;
}

int Find(const Grid& grid, const QString& name) {
  for (int i = 0; i < static_cast<int>(grid.Columns().size()); ++i)
    if (NameOf(grid, i) == name) return i;
  return -1;
}

QStringList SortOf(const Grid& grid) {
  const GridSort& sort = grid.Sort();
  if (sort.column < 0) return {};
  QStringList names{NameOf(grid, sort.column), sort.descending ? kDown : ""};
  if (sort.second >= 0) names << NameOf(grid, sort.second) << (sort.secondDescending ? kDown : "");
  return names;
}

QVariantMap LayoutOf(Grid& grid) {
  QVariantMap widths;
  for (int i = 0; i < static_cast<int>(grid.Columns().size()); ++i)
    if (grid.View().horizontalHeader()->sectionResizeMode(i) == QHeaderView::Interactive)
      widths[NameOf(grid, i)] = grid.ColumnWidth(i);
  return {{kWidths, widths}, {kSort, SortOf(grid)}, {kChosen, Q(grid.ColumnSet())}};
}

QVariantMap Difference(const QVariantMap& plain, const QVariantMap& now) {
  QVariantMap own;
  QVariantMap widths;
  const QVariantMap before = plain[kWidths].toMap();
  const QVariantMap after = now[kWidths].toMap();
  for (auto width = after.begin(); width != after.end(); ++width)
    if (before.contains(width.key()) && before[width.key()] != width.value()) widths[width.key()] = width.value();
  if (!widths.isEmpty()) own[kWidths] = widths;
  for (const char* part : {kSort, kChosen})
    if (plain[part] != now[part]) own[part] = now[part];
  return own;
}

void Put(Grid& grid, const QVariantMap& own) {
  const QVariantMap widths = own[kWidths].toMap();
  for (auto width = widths.begin(); width != widths.end(); ++width)
    if (const int column = Find(grid, width.key()); column >= 0) grid.SetColumnWidth(column, width.value().toInt());
  if (own.contains(kChosen)) grid.SetColumnSet(U8(own[kChosen].toString()));
  const QStringList names = own[kSort].toStringList();
  if (names.isEmpty() || Find(grid, names[0]) < 0) return;
  grid.SetSort({Find(grid, names[0]), names.value(1) == kDown, Find(grid, names.value(2)), names.value(3) == kDown});
}

bool IsKept(const Grid& grid) {
  return !grid.objectName().isEmpty() && !grid.property(kLayoutInSettings).toBool();
}

}  // namespace

QString KeyOfUser(const Session& session, const QString& key) {
  // A slash in a name would part it into two.
  const QByteArray user = Q(session.CurrentUser).toUpper().toUtf8().toPercentEncoding();
  return "user/" + (user.isEmpty() ? QString("-") : QString::fromLatin1(user)) + "/" + key;
}

void LayoutMemory::Begin(const QWidget& part, const QString& key) {
  if (key_.isEmpty()) kept_ = memory::Recall(key).toMap();
  key_ = key;
  for (auto* grid : part.findChildren<Grid*>()) {
    if (!IsKept(*grid) || plain_.contains(grid->objectName())) continue;
    plain_[grid->objectName()] = LayoutOf(*grid);
    if (kept_.contains(grid->objectName())) Put(*grid, kept_[grid->objectName()].toMap());
  }
  for (auto* splitter : part.findChildren<QSplitter*>())
    if (const QByteArray state = kept_[splitter->objectName()].toByteArray(); !state.isEmpty())
      splitter->restoreState(state);
}

void LayoutMemory::Keep(const QWidget& window) const {
  if (key_.isEmpty()) return;
  QVariantMap now = kept_;
  for (auto* grid : window.findChildren<Grid*>()) {
    if (!plain_.contains(grid->objectName())) continue;
    const QVariantMap own = Difference(plain_[grid->objectName()], LayoutOf(*grid));
    if (own.isEmpty())
      now.remove(grid->objectName());
    else
      now[grid->objectName()] = own;
  }
  for (const auto* splitter : window.findChildren<QSplitter*>())
    if (!splitter->objectName().isEmpty()) now[splitter->objectName()] = splitter->saveState();
  if (now != kept_) memory::Keep(key_, now);
}

}  // namespace vellumark::desktop
