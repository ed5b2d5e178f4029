#pragma once

#include <string_view>

#include "core/session/session.h"

namespace vellumark::desktop {

/// Whether an entry of the menus shows a page in the browser of the system.
bool IsWebLink(std::string_view menuItem);

/// Shows it: the address that the environment names for it, else its page of the manual, which is written out for the
/// browser. Tells when there is none.
void OpenWebLink(const Session& session, std::string_view menuItem);

}  // namespace vellumark::desktop
