#pragma once

#include <string>
#include <string_view>

#include "core/session/session.h"

namespace vellumark {

/// Makes a Database as a copy of another of the same file, in one transaction: Basic Colors, Master Formulas, Additive
/// Sets and the long name, entered today. Lots, Batches and measurements stay behind, and so does stock unless negative
/// inventory is allowed. An ingredient that a formula names without a Basic Color gets one. The stored name.
///
/// It copies whole tables and is no import: nothing stands in the new Database that a row could meet, the names passed
/// the rules of this very file, and every field comes along as it stands. A merge compares name by name, brings recipes
/// to 100, leaves what an import has no column for, and keeps what is needed to undo it.
Result<std::string> CopyDatabase(Session& session, std::string_view source, std::string_view typedName);

}  // namespace vellumark
