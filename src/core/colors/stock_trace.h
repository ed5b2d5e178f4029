#pragma once

#include <string>
#include <string_view>

#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

// What the stock history has to know of changes to the colours themselves. Each is called inside the transaction of the
// change.

/// Removes the lots and measurements of a colour that goes, with a line for every figure of stock that goes with it.
void GiveUpColorStock(Session& session, ColorKind kind, std::string_view database, const std::string& name,
                      std::string reason = {});

/// After a rename in the current Database.
void TraceRename(Session& session, ColorKind kind, std::string_view oldName, std::string_view newName);

}  // namespace vellumark
