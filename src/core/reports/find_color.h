#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "core/reports/definition.h"

namespace vellumark {

/// The colour that a report is about: of exactly that name or behind "PANTONE ", in the first of the report's Databases
/// that has it, and its kind. Of a name that both kinds bear the usage of Jobs asks which one is meant, unless `wanted`
/// tells; a report on what was consumed then counts all that bears the name, in each Database, and has no kind.
Result<std::pair<std::string, std::optional<ColorKind>>> FindReportColor(const ReportContext& context,
                                                                         std::string_view typed,
                                                                         std::optional<ColorKind> wanted);

/// The names that a text typed into the colour box of a report completes to: what stands behind "PANTONE " first, and
/// what begins with the text itself when there is none.
std::vector<std::string> CompleteReportColor(const Session& session, std::string_view typed, std::size_t most);

}  // namespace vellumark
