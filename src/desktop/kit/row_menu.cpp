#include "desktop/kit/row_menu.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QPointer>
#include <QShortcut>

#include "desktop/kit/access_letters.h"
#include "desktop/kit/form_host.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kActions = "RowActions";

// Kept with the list of windows that they open.
struct KeptActions : QObject {
  using QObject::QObject;
  RowActions actions;
};

}  // namespace

std::vector<RowTarget> TargetsOf(Grid& grid, int row) {
  const auto* leads = dynamic_cast<const RowTargets*>(grid.Model().Source());
  if (leads == nullptr || row < 0) return {};
  std::vector<RowTarget> targets = leads->Targets(row);
  std::erase_if(targets, [](const RowTarget& target) { return target.kind == RowTarget::Kind::None; });
  return targets;
}

void SetRowActions(WindowList& windows, RowActions actions) {
  auto* kept = new KeptActions(&windows);
  kept->setObjectName(kActions);
  kept->actions = std::move(actions);
}

void AddRowActions(WindowList& windows, QMenu& menu, const std::vector<RowTarget>& targets, FormHost* host) {
  const auto* kept = static_cast<KeptActions*>(windows.findChild<QObject*>(kActions, Qt::FindDirectChildrenOnly));
  if (kept == nullptr) return;
  // A window that opens behind a dialog could not be used, so the dialog goes first; one over another stays.
  auto* dialog = host == nullptr ? nullptr : qobject_cast<QDialog*>(&host->Self());
  if (dialog != nullptr && qobject_cast<QDialog*>(dialog->parentWidget()) != nullptr) return;
  const auto leave = [dialog = QPointer<QDialog>(dialog)] {
    if (dialog != nullptr) dialog->reject();
    return dialog == nullptr || !dialog->isVisible();
  };
  for (const RowTarget& target : targets) {
    if (!menu.isEmpty()) menu.addSeparator();
    kept->actions(menu, target, leave);
  }
}

void CopyRows(Grid& grid) {
  QString text;
  for (int shown = 0; shown < grid.Model().rowCount(); ++shown) {
    if (!grid.View().selectionModel()->isRowSelected(shown)) continue;
    QStringList cells;
    for (const int column : grid.ShownColumns())
      cells << Q(grid.Model().Source()->Text(grid.Model().SourceRow(shown), column)).replace('\t', ' ').replace('\n', ' ');
    text += cells.join('\t') + '\n';
  }
  if (!text.isEmpty()) QApplication::clipboard()->setText(text);
}

RowMenu::RowMenu(Grid& grid, WindowList& windows, FormHost* host)
    : QObject(&grid), grid_(grid), windows_(windows), host_(host) {
  grid.View().setContextMenuPolicy(Qt::CustomContextMenu);
  connect(&grid.View(), &QWidget::customContextMenuRequested, this, &RowMenu::Open);
  auto* copies = new QShortcut(QKeySequence::Copy, &grid, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
  connect(copies, &QShortcut::activated, this, [this] { CopyRows(grid_); });
}

void RowMenu::Fill(QMenu& menu, int row) {
  AddRowActions(windows_, menu, TargetsOf(grid_, row), host_);
  Q_EMIT Opens(menu, row);
  if (!menu.isEmpty()) menu.addSeparator();
  QAction* copies = menu.addAction(tr("&Copy"));
  copies->setShortcut(QKeySequence::Copy);
  copies->setShortcutContext(Qt::WidgetShortcut);
  connect(copies, &QAction::triggered, this, [this] { CopyRows(grid_); });
  LetterActions(menu.actions());
}

// The key of menus asks at the current row, wherever the pointer is.
void RowMenu::Open(const QPoint& at) {
  const int row = grid_.CurrentRow();
  if (row < 0) return;
  // What is chosen in it may close the window, and it with it.
  const QPointer<QMenu> menu = new QMenu(&grid_);
  Fill(*menu, row);
  menu->exec(grid_.View().viewport()->mapToGlobal(at));
  delete menu;
}

}  // namespace vellumark::desktop
