#pragma once

#include "core/base/table.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// Opens what a row leads to: the Batch, colour, job or design in its own window. A Batch that would disturb a recipe
/// in edit, and what is in another Database, is shown to be read only. Beeps where a row leads nowhere.
void OpenRow(WindowList& windows, const RowTarget& target);

}  // namespace vellumark::desktop
