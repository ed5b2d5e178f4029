#include "desktop/reports/row_actions.h"

#include <QMenu>

#include "core/base/text.h"
#include "core/datafile/color_kind.h"
#include "core/shell/gating.h"
#include "desktop/jobs/open_forms.h"
#include "desktop/kit/text.h"
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

/// Of the first thing that a menu is about simply "Open".
QString OpenCaption(const RowTarget& target, bool first) {
  if (first) return QObject::tr("&Open");
  switch (target.kind) {
    case RowTarget::Kind::Batch:
      return QObject::tr("Open the Batch");
    case RowTarget::Kind::Job:
      return QObject::tr("Open the Job");
    case RowTarget::Kind::Design:
      return QObject::tr("Open the Design");
    default:
      return QObject::tr("Open the color");
  }
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

void AddActionsOf(QMenu& menu, WindowList& windows, const RowTarget& target, const std::function<bool()>& leave) {
  const auto add = [&](const QString& caption, std::function<void()> act) {
    QObject::connect(menu.addAction(caption), &QAction::triggered, &windows, [leave, act = std::move(act)] {
      if (leave()) act();
    });
  };
  add(OpenCaption(target, menu.isEmpty()), [&windows, target] {
    if (target.kind != RowTarget::Kind::Job || MayGo(windows, "JobForm")) OpenRow(windows, target);
  });
  if (!EqualNoCase(target.database, windows.session.CurrentDatabase)) return;  // what follows works on that one
  for (const RowAction& action : ActionsOf(target)) {
    if (!windows.Knows(action.window)) continue;
    add(action.caption, [&windows, action] {
      if (action.way != nullptr && !MayGo(windows, action.way)) return;
      if (action.isDialog)
        windows.RunDialog(action.window, action.arguments);
      else
        windows.OpenForm(action.window, action.arguments);
    });
  }
}

}  // namespace vellumark::desktop
