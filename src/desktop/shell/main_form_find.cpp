// Ctrl+K: one field for everything that has a name, and for the commands.

#include <QAction>
#include <QCoreApplication>
#include <functional>
#include <utility>
#include <vector>

#include "core/cloud/cloud_reports.h"
#include "core/reports/quick_find.h"
#include "core/session/acts.h"
#include "desktop/kit/text.h"
#include "desktop/reports/open_row.h"
#include "desktop/reports/row_actions.h"
#include "desktop/shell/main_form.h"
#include "desktop/shell/quick_commands.h"

namespace vellumark::desktop {
namespace {

struct Command {
  QString name;
  QString detail;
  std::function<void()> run;
};

QString Plain(const QString& caption) {
  return caption.section('\t', 0, 0).remove('&');
}

}  // namespace

void MainForm::FindAnything() {
  if (!windows_.Knows("QuickFindForm") || session_.LoadingDatabase) return;
  std::vector<Command> commands;
  const auto addWindow = [&](const QString& name, const QString& detail, const std::string& window, const char* way,
                             bool isDialog) {
    const auto act = ActOfWindow(window);
    if (!session_.RecordsetsOpen || !windows_.Knows(window) || (act && !MayDo(session_, *act))) return;
    commands.push_back({name, detail, [this, window, way, isDialog] {
                          if (way != nullptr && !MayGo(windows_, way)) return;
                          if (isDialog)
                            windows_.RunDialog(window);
                          else
                            windows_.OpenForm(window);
                        }});
  };
  for (const QuickCommand& command : QuickCommands())
    addWindow(QCoreApplication::translate("QuickCommands", command.caption),
              QCoreApplication::translate("QuickCommands", command.detail), command.window, command.way,
              command.isDialog);
  for (const ReportDefinition* report : AllReports())
    addWindow(Q(report->caption).trimmed(), tr("Report  %1").arg(Q(report->group)), report->window, nullptr, false);
  // Entries of the menus as they stand now, with the way to them.
  GateMenus();
  for (const auto& [name, action] : actions_) {
    if (action->menu() != nullptr || !CanBeChosen(name)) continue;
    commands.push_back({Plain(action->text()), WayTo(name), [action = action] { action->trigger(); }});
  }
  std::vector<std::pair<std::string, std::string>> names;
  for (const Command& command : commands) names.emplace_back(U8(command.name), U8(command.detail));
  const auto found = windows_.RunDialog("QuickFindForm", {{"Commands", names}});
  if (!found) return;
  const auto hit = found->Get<QuickHit>("Hit");
  if (hit.kind == QuickHit::Kind::Command)
    commands.at(static_cast<std::size_t>(hit.number)).run();
  else
    OpenHit(hit);
}

// It and all menus on the way to it are on.
bool MainForm::CanBeChosen(const std::string& name) const {
  for (std::string next = name; !next.empty();) {
    const QAction* action = actions_.at(next);
    if (!action->isVisible() || !action->isEnabled()) return false;
    next = MenuItemNow(session_, next).parent;
  }
  return true;
}

QString MainForm::WayTo(const std::string& name) const {
  QStringList way;
  for (std::string next(MenuItemNow(session_, name).parent); !next.empty(); next = MenuItemNow(session_, next).parent)
    way.prepend(Plain(actions_.at(next)->text()));
  return way.join(" > ");
}

void MainForm::OpenHit(const QuickHit& hit) {
  using Target = RowTarget::Kind;
  const std::string& here = session_.CurrentDatabase;
  switch (hit.kind) {
    case QuickHit::Kind::Formula:
      return OpenRow(windows_, {.kind = Target::Mix, .database = here, .name = hit.name});
    case QuickHit::Kind::Basic:
      return OpenRow(windows_, {.kind = Target::Basic, .database = here, .name = hit.name});
    case QuickHit::Kind::Batch:
      return OpenRow(windows_, {.kind = Target::Batch, .database = here, .BatchNo = hit.number});
    case QuickHit::Kind::Job:
      if (MayGo(windows_, "JobForm")) OpenRow(windows_, {.kind = Target::Job, .name = hit.name});
      return;
    case QuickHit::Kind::Design:
      return OpenRow(windows_, {.kind = Target::Design, .database = here, .name = hit.name});
    case QuickHit::Kind::Lot:
      if (MayGo(windows_, "Inventory"))
        windows_.OpenForm("AdjustInventoryForm", {{"FindRecord", hit.owner}, {"Kind", hit.color}});
      return;
    case QuickHit::Kind::Command:
      break;
  }
}

}  // namespace vellumark::desktop
