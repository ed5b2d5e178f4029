#include "desktop/reports/row_actions.h"

#include <QMenu>

#include "core/base/text.h"
#include "core/datafile/color_kind.h"
#include "core/shell/gating.h"
#include "desktop/jobs/open_forms.h"
#include "desktop/reports/open_row.h"

namespace vellumark::desktop {
namespace {

struct RowAction {
  QString caption;
  const char* window;
  Arguments arguments;
  const char* way = nullptr;  ///< of the interlocks that are asked
  bool isDialog = false;
};

std::vector<RowAction> ActionsOfColor(ColorKind kind, const std::string& name) {
  std::vector<RowAction> actions;
  if (kind == ColorKind::Mix)
    actions.push_back({QObject::tr("Make a &Batch"), "BatchForm", {{"Color_Name", name}}, "Batch"});
  actions.push_back(
      {QObject::tr("&Stock"), "AdjustInventoryForm", {{"FindRecord", name}, {"Kind", kind}}, "Inventory"});
  actions.push_back({QObject::tr("Stock &history"), "StockHistoryForm", {{"Color_Name", name}, {"Kind", kind}}});
  actions.push_back(
      {QObject::tr("&Where used"), "WhereUsedForm", {{"Color_Name", name}, {"Kind", kind}}, nullptr, true});
  return actions;
}

std::vector<RowAction> ActionsOf(const RowTarget& target) {
  if (target.kind == RowTarget::Kind::Basic) return ActionsOfColor(ColorKind::Basic, target.name);
  if (target.kind == RowTarget::Kind::Mix) return ActionsOfColor(ColorKind::Mix, target.name);
  if (target.kind != RowTarget::Kind::Batch) return {};
  return {{QObject::tr("&Look at it only"), "ViewBatchForm", {{"BatchNo", target.BatchNo}}}};
}

}  // namespace

bool MayGo(WindowList& windows, std::string_view way) {
  const auto allowed = CheckInterlocks(OpenFormsOf(windows), way);
  if (!allowed) windows.session.prompt.Tell(allowed.error().title, allowed.error().text, vellumark::Icon::Exclamation);
  return allowed.has_value();
}

void AddRowActions(QMenu& menu, WindowList& windows, const RowTarget& target) {
  QObject::connect(menu.addAction(QObject::tr("&Open")), &QAction::triggered, &windows,
                   [&windows, target] { OpenRow(windows, target); });
  for (const RowAction& action : ActionsOf(target)) {
    if (!windows.Knows(action.window)) continue;
    QObject::connect(menu.addAction(action.caption), &QAction::triggered, &windows, [&windows, action] {
      if (action.way != nullptr && !MayGo(windows, action.way)) return;
      if (action.isDialog)
        windows.RunDialog(action.window, action.arguments);
      else
        windows.OpenForm(action.window, action.arguments);
    });
  }
}

}  // namespace vellumark::desktop
