#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "core/reports/build.h"

namespace vellumark {

/// The report whose rows a row of a summary is the sum of, and the colour that it is about; empty where it is about all.
struct ReportDetail {
  const ReportDefinition* report = nullptr;
  std::string color{};
  std::optional<ColorKind> kind{};
};

/// That of a row of a report which was asked about this colour. Nothing where there is none, such as for another
/// Database than the current one. A refusal tells that the row counts no Batch.
Result<std::optional<ReportDetail>> DetailOf(const Session& session, const ReportDefinition& definition,
                                             const BuiltReport& report, std::size_t row, const std::string& color,
                                             std::optional<ColorKind> kind);

}  // namespace vellumark
