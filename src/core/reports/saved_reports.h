#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/reports/build.h"
#include "core/reports/catalogue.h"

namespace vellumark {

/// A report as somebody set it up, under a name. Columns go by key. What is not told comes from the report's settings.
struct SavedReport {
  std::string name{};
  std::string key{};        ///< of the report
  ReportRequest request{};  ///< a range by its name, so that it moves with the days
  std::vector<std::string> columns{};
  std::vector<std::pair<std::string, int>> widths{};  ///< in twips
  std::string sort{};
  bool descending = false;
  std::string second{};
  bool secondDescending = false;
  std::string filter{};
};

/// Who knows the reports: the catalogue, or a room that has more of them.
using ReportFinder = const ReportDefinition* (*)(std::string_view key);

/// Those on file, by name. One whose report nobody knows is passed over.
std::vector<SavedReport> ReadSavedReports(const Session& session, ReportFinder finder = FindReport);
std::optional<SavedReport> FindSavedReport(const Session& session, std::string_view name, ReportFinder finder = FindReport);
/// Under its name, in the place of one that has it. Refuses a name that cannot be kept, and the 101st.
Result<void> SaveReport(Session& session, const SavedReport& report, ReportFinder finder = FindReport);
/// Refuses a name that another one has.
Result<void> RenameSavedReport(Session& session, std::string_view name, std::string_view newName);
Result<void> DeleteSavedReport(Session& session, std::string_view name);

/// What stands on screen, to be saved: what was asked, and the columns, widths, order and filter of what was built.
SavedReport SavedFrom(std::string name, const ReportDefinition& definition, const ReportRequest& request,
                      const BuiltReport& report);
/// The columns that a saved report names and the report does not have. Empty: all are there.
std::vector<std::string> LostColumns(const SavedReport& saved, const std::vector<TableColumn>& columns);
/// Gives a built report the columns, widths, order and filter of the saved one; what it does not have is passed over.
void Arrange(BuiltReport& report, const SavedReport& saved);

}  // namespace vellumark
