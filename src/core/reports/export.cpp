#include "core/reports/export.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/base/write_over.h"
#include "core/reports/report_database.h"
#include "core/reports/spreadsheet.h"

namespace vellumark {

namespace fs = std::filesystem;

std::string_view ExtensionOf(ExportFormat format) {
  switch (format) {
    case ExportFormat::Jet:
      return ".mdb";
    case ExportFormat::Spreadsheet:
      return ".xlsx";
    case ExportFormat::Text:
      break;
  }
  return ".txt";
}

Result<fs::path> ExportPath(Session& session, const fs::path& folder, std::string_view name, ExportFormat format) {
  std::string file = Trim(name);
  if (file.empty()) return Refuse("Bad File Name", "Enter a name for the Export File", "txtFileName");
  std::ranges::replace_if(
      file, [](char c) { return c == '\\' || c == '/'; }, '-');
  const std::string_view extension = ExtensionOf(format);
  if (file.size() < extension.size() || !EqualNoCase(file.substr(file.size() - extension.size()), extension))
    file += extension;
  fs::path path = folder / file;
  if (auto may = MayWriteOver(session.prompt, path, "txtFileName"); !may) return std::unexpected(may.error());
  // Its neighbour is what is made here and goes again; the file itself is not touched.
  const FileBeside trial(path, Readers::Everybody);
  return path;
}

void ExportReport(const BuiltReport& report, const ExportOptions& options, const DateTime& made, const fs::path& file) {
  FileBeside beside(file, Readers::Everybody);
  switch (options.format) {
    case ExportFormat::Text:
      beside.Write(ReportText(report, options));
      break;
    case ExportFormat::Jet:
      WriteReportDatabase(report, options, made, beside.Path());
      break;
    case ExportFormat::Spreadsheet:
      WriteSpreadsheet(report, options, beside.Path());
      break;
  }
  beside.Replace();
}

std::string ExportDoneText(const fs::path& file) {
  return fmt::format("Saved To:  {}\nFile:  {}", file.parent_path().string(), file.filename().string());
}

}  // namespace vellumark
