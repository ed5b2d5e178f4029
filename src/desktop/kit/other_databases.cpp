#include "desktop/kit/other_databases.h"

#include <algorithm>

#include "core/colors/other_databases.h"

namespace vellumark::desktop {

bool OfferOtherDatabases(WindowList& windows, const std::string& name, std::initializer_list<ColorKind> kinds,
                         const std::string& window, const Arguments& shows) {
  constexpr const char* kDialog = "OtherDatabasesForm";
  const auto* kind = std::ranges::find_if(
      kinds, [&](ColorKind one) { return !FindInOtherDatabases(windows.session, name, one).empty(); });
  if (name.empty() || kind == kinds.end() || !windows.Knows(kDialog)) return false;
  // Not in a call of the window, which goes with the change.
  QMetaObject::invokeMethod(
      &windows,
      [&windows, name, kind = *kind, window, shows] {
        if (windows.RunDialog(kDialog, {{"Color_Name", name}, {"Kind", kind}})) windows.OpenForm(window, shows);
      },
      Qt::QueuedConnection);
  return true;
}

}  // namespace vellumark::desktop
