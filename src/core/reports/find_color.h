#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "core/reports/definition.h"

namespace vellumark {

/// The colour that a report is about: of exactly that name or behind "PANTONE ", in the first of the report's Databases
/// that has it. A name that both kinds bear is asked for, unless `wanted` tells.
Result<std::pair<std::string, ColorKind>> FindReportColor(const ReportContext& context, std::string_view typed,
                                                          std::optional<ColorKind> wanted);

/// The names that a text typed into the colour box of a report completes to: what stands behind "PANTONE " first, and
/// what begins with the text itself when there is none.
std::vector<std::string> CompleteReportColor(const Session& session, std::string_view typed, std::size_t most);

}  // namespace vellumark
