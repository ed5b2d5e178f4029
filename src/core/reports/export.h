#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "core/reports/report_text.h"

namespace vellumark {

/// ".txt", ".mdb", ".xlsx".
std::string_view ExtensionOf(ExportFormat format);

/// The file that a report goes into: the folder and the name, with "-" for "\" and "/" in it and the format's extension
/// where it lacks that. Refuses an empty name, asks before a file that is there is overwritten, and throws Failure when
/// nothing can be written there.
Result<std::filesystem::path> ExportPath(Session& session, const std::filesystem::path& folder, std::string_view name,
                                         ExportFormat format);

/// Writes what is shown, in the format of the options: beside, and in the place of what stood there when it is whole.
/// `made` is the present time, which some formats tell of themselves.
void ExportReport(const BuiltReport& report, const ExportOptions& options, const DateTime& made,
                  const std::filesystem::path& file);

/// "Saved To:  " and where, to be told with the title "File Export".
std::string ExportDoneText(const std::filesystem::path& file);

}  // namespace vellumark
