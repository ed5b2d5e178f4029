#pragma once

#include <map>
#include <string>
#include <string_view>

#include "core/base/refusal.h"
#include "core/reports/build.h"

namespace vellumark {

/// A cell of a built report, and the options that the report was built with.
struct ReportCell {
  const ReportDefinition& definition;
  const BuiltReport& report;
  const std::map<std::string, int>& options;
  std::size_t row = 0;
  std::size_t column = 0;
};

/// Whether something can be typed into the cell or, of Yes and No, chosen there: a figure or note of a colour of the
/// current Database, in a report that edits. The refusal says why not.
Result<void> RequireEditable(const Session& session, const ReportCell& cell);

/// Writes what was typed as the colour's own window would save it, with its rights, ranges and notices; an empty figure
/// is 0. A figure that is no number or below 0 is declined without a word. What did not change is not written.
Result<void> EditReportCell(Session& session, const ReportCell& cell, std::string_view typed);

}  // namespace vellumark
