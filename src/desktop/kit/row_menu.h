#pragma once

#include <QMenu>
#include <QObject>
#include <functional>
#include <vector>

#include "core/base/table.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// What the rows of a grid are about. A source that knows it is one of these as well.
class RowTargets {
 public:
  virtual ~RowTargets() = default;
  /// What the row leads to, the first thing first.
  virtual std::vector<RowTarget> Targets(int row) const = 0;
};
/// Of the row of that grid; nothing where its source does not know.
std::vector<RowTarget> TargetsOf(Grid& grid, int row);

/// A source that keeps its cells, and what its rows lead to.
class LeadingTable : public TableSource, public RowTargets {
 public:
  void Clear() {
    TableSource::Clear();
    targets_.clear();
  }
  void Add(Row row, std::vector<RowTarget> targets = {}) {
    TableSource::Add(std::move(row));
    targets_.push_back(std::move(targets));
  }
  std::vector<RowTarget> Targets(int row) const override { return targets_.at(static_cast<std::size_t>(row)); }

 private:
  std::vector<std::vector<RowTarget>> targets_;
};

/// Adds what can be done with the thing that a row is about. `leave` is asked before a window opens; false stops that.
using RowActions = std::function<void(QMenu& menu, const RowTarget& target, const std::function<bool()>& leave)>;
void SetRowActions(WindowList& windows, RowActions actions);
/// Adds those of all targets. `host` has the grid: a dialog goes before another window opens.
void AddRowActions(WindowList& windows, QMenu& menu, const std::vector<RowTarget>& targets, FormHost* host);

/// The rows that are selected, as tabbed text, onto the clipboard.
void CopyRows(Grid& grid);

/// The menu over the rows of a grid, by the mouse and by the key of menus, and Ctrl+C. Every grid of a form has one.
class RowMenu : public QObject {
  Q_OBJECT

 public:
  RowMenu(Grid& grid, WindowList& windows, FormHost* host);
  static RowMenu* Of(Grid& grid) { return grid.findChild<RowMenu*>(QString(), Qt::FindDirectChildrenOnly); }
  /// What it offers over the row.
  void Fill(QMenu& menu, int row);

 Q_SIGNALS:
  /// It opens; whoever knows more that can be done with the row adds it.
  void Opens(QMenu& menu, int row);

 private:
  void Open(const QPoint& at);

  Grid& grid_;
  WindowList& windows_;
  FormHost* host_;
};

}  // namespace vellumark::desktop
