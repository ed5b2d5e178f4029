#pragma once

#include <string_view>

namespace vellumark::desktop {

/// What a menu item does when it opens one window: the window's system name. Empty for items that do something else, or
/// whose window no room has.
std::string_view DialogOfMenuItem(std::string_view item);

/// Whether that window is no dialog but stands among the operator's others.
bool OpensForm(std::string_view item);
/// Whether that window only shows something, so that the operator's work may stay open behind it.
bool OnlyShows(std::string_view item);
/// Whether a dialog asks before the operator's work is closed, which it then does itself.
bool AsksFirst(std::string_view dialog);

}  // namespace vellumark::desktop
