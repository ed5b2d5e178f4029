#include "desktop/datafile/change_database.h"

#include <QWidget>
#include <vector>

#include "core/shell/opening.h"
#include "desktop/kit/window.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {
namespace {

// They stay open across the change. The Design finder's window has another name than the one listed here and is closed
// like any other.
const std::vector<std::string> kStay{"OtherDatabasesForm", "FindMix",   "FindJob",
                                     "FindBesign",         "FindBatch", "FindBasic"};

}  // namespace

bool ChangeDatabaseOnScreen(WindowList& windows, const std::string& name) {
  Session& session = windows.session;
  if (name == session.CurrentDatabase) return true;
  const Window* active = windows.ActiveForm();
  const std::string activeName = active == nullptr ? std::string() : active->Name();
  if (!windows.CloseChildWindows(kStay)) return false;
  const auto changed = ChangeDatabase(session, name);
  if (!changed) session.prompt.Tell(changed.error().title, changed.error().text, vellumark::Icon::Exclamation);
  if (windows.IsFormOpen(activeName)) {
    windows.OpenForm(activeName);
  } else if (windows.Frame() != nullptr) {
    windows.Frame()->activateWindow();
    windows.Frame()->setFocus();
  }
  return changed.has_value();
}

}  // namespace vellumark::desktop
