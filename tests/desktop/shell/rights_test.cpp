#include <gtest/gtest.h>

#include <set>

#include "core/session/acts.h"
#include "core/shell/gating.h"
#include "desktop/batch/register.h"
#include "desktop/colors/register.h"
#include "desktop/datafile/register.h"
#include "desktop/inventory/register.h"
#include "desktop/reports/register.h"
#include "desktop/session/register.h"
#include "desktop/settings/register.h"
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
    desktop::RegisterReportsWindows(windows);
    desktop::RegisterDatafileWindows(windows, program.Windows());
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

}  // namespace
}  // namespace vellumark::test
