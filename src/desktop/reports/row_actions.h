#pragma once

#include <functional>
#include <string_view>

#include "core/base/table.h"
#include "desktop/kit/window_list.h"

class QMenu;

namespace vellumark::desktop {

/// False, and the refusal was shown, while another window holds unsaved work that this would disturb: `way` is the key
/// of a toolbar button, or "JobForm".
bool MayGo(WindowList& windows, std::string_view way);

/// What can be done with a row that leads there: open it, its stock, its history, where it is used. `leave` is asked
/// before a window opens; false stops that.
void AddActionsOf(QMenu& menu, WindowList& windows, const RowTarget& target, const std::function<bool()>& leave);

}  // namespace vellumark::desktop
