#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

/// How a Database spells the colour of either kind, or of the one that is wanted, whose name is typed: as it stands
/// when that is on file, else as StoredName has it. A name of no colour comes back as it is.
std::string SpelledOnFile(const Session& session, const std::string& name, std::optional<ColorKind> wanted = {},
                          std::string_view database = {});

}  // namespace vellumark
