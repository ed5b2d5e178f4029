#pragma once

#include "core/session/session.h"
#include "paper/sheet_layout.h"

namespace vellumark::paper {

/// What stands on the pages of a session, its font and the paper of the locale.
PageOptions OptionsOf(const Session& session);

/// Of a table that would be hard to read on one page width: whether to spread it over several pages. False: nothing is
/// printed.
bool AskAboutFit(Session& session, SheetLayout& layout);

}  // namespace vellumark::paper
