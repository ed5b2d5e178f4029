#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

/// The title of the window that tells of a colour in another Database.
inline constexpr std::string_view kColorNotFound = "Color Not Found";

/// The other Databases of the file, in menu order, that hold a colour of exactly that name and kind.
std::vector<std::string> FindInOtherDatabases(const Session& session, std::string_view name, ColorKind kind);

/// What the window says above their list.
std::string DisplayMsg(const Session& session, std::string_view name, ColorKind kind);

}  // namespace vellumark
