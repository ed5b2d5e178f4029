#include <gtest/gtest.h>

#include <QAction>
#include <QMenu>
#include <map>
#include <set>

#include "core/session/acts.h"
#include "core/shell/gating.h"
#include "desktop/backup/register.h"
#include "desktop/batch/register.h"
#include "desktop/cloud/register.h"
#include "desktop/colors/register.h"
#include "desktop/datafile/register.h"
#include "desktop/exchange/register.h"
#include "desktop/inventory/register.h"
#include "desktop/jobs/register.h"
#include "desktop/labels/register.h"
#include "desktop/reports/register.h"
#include "desktop/scale/register.h"
#include "desktop/session/register.h"
#include "desktop/settings/register.h"
#include "desktop/shell/commands.h"
#include "desktop/shell/main_form.h"
#include "desktop/shell/program.h"
#include "desktop/tools/register.h"
#include "support/desk.h"
#include "support/desktop.h"

namespace vellumark::test {
namespace {

struct AllWindows : Desk {
  AllWindows() : program(windows) {
    desktop::RegisterSessionWindows(windows);
    desktop::RegisterSettingsWindows(windows);
    desktop::RegisterColorsWindows(windows);
    desktop::RegisterToolsWindows(windows);
    desktop::RegisterInventoryWindows(windows);
    desktop::RegisterBatchWindows(windows);
    desktop::RegisterJobsWindows(windows);
    desktop::RegisterReportsWindows(windows);
    desktop::RegisterLabelWindows(windows);
    desktop::RegisterExchangeWindows(windows);
    desktop::RegisterDatafileWindows(windows, program.Windows());
    desktop::RegisterBackupWindows(windows, program.Windows());
    desktop::RegisterCloudWindows(windows, program.Windows());
    desktop::RegisterScaleWindows(windows, program.Scale());
    desktop::RegisterWeighing(windows, program.Scale());
  }
  desktop::Program program;
};

TEST(WindowRights, EveryWindowHasItsRow) {
  AllWindows desk;
  std::set<std::string> known;
  for (const std::string& name : desk.windows.Names()) known.insert(name);
  std::set<std::string> rows;
  for (const WayIn& way : WindowWays()) rows.emplace(way.name);
  EXPECT_EQ(known, rows);
}

TEST(WindowRights, AWindowOpensOnlyForItsRights) {
  AllWindows desk;
  desk.session.CurrentUser = "ANNA";
  desk.session.IsAdminUser = false;
  for (const WayIn& way : WindowWays()) {
    const ActRow& row = RowOf(way.act);
    if (row.ownWords || (row.rights.empty() && !row.administrator)) continue;
    SCOPED_TRACE(way.name);
    for (const RightField& field : RightFields()) {
      TakeRights(desk.session, UserRights::All());
      desk.session.*field.permission = field.full - 1;
      if (RequireAtDoor(desk.session, way.act)) continue;
      desk.prompt.Expect("Permission Denied");
      const std::string name(way.name);
      bool opened = false;
      try {
        opened = desk.windows.OpenForm(name) != nullptr;
      } catch (const std::logic_error&) {
        opened = desk.windows.RunDialog(name).has_value();
      }
      EXPECT_FALSE(opened);
    }
  }
}

// An entry that can be chosen leads to a window that opens, and no right keeps an entry off that its window does not
// ask.
TEST(WindowRights, EntriesAndButtonsAreOnForTheRightsOfTheirWindows) {
  AllWindows desk;
  Session& session = desk.session;
  session.CurrentUser = "ANNA";
  session.DataFileOpen = session.RecordsetsOpen = true;
  const auto isOn = [&](std::string name) {
    bool on = true;
    for (; on && !name.empty(); name = MenuItemNow(session, name).parent)
      on = MenuItemNow(session, name).enabled && MenuItemNow(session, name).visible;
    return on;
  };
  int tried = 0;
  for (const bool administrator : {true, false}) {
    session.IsAdminUser = administrator;
    TakeRights(session, UserRights::All());
    std::map<std::string, Act> ways;
    for (const MenuItem& item : MenuItems(session))
      if (const auto act = ActOfWindow(desktop::DialogOfMenuItem(item.name))) ways.emplace(item.name, *act);
    ASSERT_GT(ways.size(), 15U);
    std::set<std::string> offAnyway;
    for (const auto& [name, act] : ways)
      if (!isOn(name)) offAnyway.insert(name);
    for (const RightField& field : RightFields()) {
      TakeRights(session, UserRights::All());
      session.*field.permission = field.full - 1;
      for (const auto& [name, act] : ways) {
        // Options that only look ask for the right of their menu.
        const bool inOptions = MenuItemNow(session, name).parent == "menuDFOptions";
        const bool inAdvanced = MenuItemNow(session, name).parent == "menuDFAdvanced";
        const bool may = MayDo(session, act) && (!inOptions || MayDo(session, Act::Options)) &&
                         (!inAdvanced || MayDo(session, Act::DataFiles));
        EXPECT_EQ(isOn(name), may && !offAnyway.contains(name)) << name << " without all of " << field.field;
        ++tried;
      }
      for (const ToolbarButton& button : ToolbarButtons(session)) {
        const auto act = ActOfWindow(button.target);
        if (!act) continue;
        EXPECT_EQ(button.enabled, MayDo(session, *act)) << button.key << " without all of " << field.field;
      }
    }
    EXPECT_EQ(offAnyway.contains("menuDFUsers_AdminOptions"), !administrator);
  }
  EXPECT_GT(tried, 300);
}

// In one state of the program or another each entry can be chosen; those of the hidden menu follow the window in front.
TEST(Menus, EveryEntryLeadsSomewhere) {
  AllWindows desk;
  Session& session = desk.session;
  std::set<std::string> never;
  for (const MenuItem& item : MenuItems(session))
    if (item.name != "menuHiddenMenu" && item.parent != "menuHiddenMenu") never.emplace(item.name);
  const auto look = [&] {
    Q_EMIT desk.program.Main().findChild<QMenu*>("MenuVK")->aboutToShow();
    std::erase_if(never, [&](const std::string& name) {
      const auto* menu = desk.program.Main().findChild<QMenu*>(QString::fromStdString(name));
      const auto* action = menu != nullptr ? menu->menuAction() : desk.program.Main().findChild<QAction*>(QString::fromStdString(name));
      return action != nullptr && action->isEnabled() && action->isVisible();
    });
  };
  session.DataFileOpen = true;
  look();
  session.RecordsetsOpen = true;
  look();
  session.CurrentUser = "ANNA";
  session.ScalePowered = 1;
  for (const bool administrator : {true, false}) {
    session.IsAdminUser = administrator;
    TakeRights(session, UserRights::All());
    look();
  }
  EXPECT_EQ(never, std::set<std::string>{});
}

}  // namespace
}  // namespace vellumark::test
