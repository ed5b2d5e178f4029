#pragma once

#include "core/session/session.h"
#include "desktop/kit/fields.h"

namespace vellumark::desktop {

/// The Databases of the file to choose from: the one that was chosen, else the current one.
inline void ListDatabases(ComboField& list, const Session& session) {
  const std::string before = list.count() == 0 ? session.CurrentDatabase : list.Text();
  list.SetItems(session.databaseList);
  list.SetText(before);
  if (list.currentIndex() < 0) list.SetText(session.CurrentDatabase);
}

}  // namespace vellumark::desktop
