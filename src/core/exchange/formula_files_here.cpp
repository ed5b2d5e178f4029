#include <fmt/format.h>

#include "core/base/files.h"
#include "core/exchange/formula_file.h"
#include "core/exchange/formula_writer.h"
#include "core/base/told_steps.h"
#include "core/reports/report_settings.h"
#include "core/session/settings.h"

// What reading formula files needs of the disk and of the settings.

namespace vellumark {
namespace {

// "|Farbe=Color Name|": what a list chooses of its own columns is kept so too.
const auto kToldColumns = setting::Columns.Of("FormulaFile");

}  // namespace

ColumnMapping RememberedColumns(const Session& session) {
  ColumnMapping mapping;
  // What an earlier program kept otherwise is not taken, and asked for with the next file.
  for (const std::string& told : SplitColumnSet(GetSetting(session, kToldColumns)))
    static_cast<void>(TakeMapping(mapping, told));
  return mapping;
}

void RememberColumns(Session& session, const ColumnMapping& mapping) {
  std::vector<std::string> told;
  for (const SourceColumn& column : mapping.columns)
    told.push_back(fmt::format("{}={}", column.caption, FieldText(column)));
  StoreSettings(session, {kToldColumns.To(JoinColumnSet(told))});
}

FormulaFileOptions FileOptions(const Session& session, std::optional<FormulaFormat> format) {
  FormulaFileOptions options{format, session.NameLength, RememberedColumns(session), {}};
  if (!session.ProgramFolder.empty()) options.workFolder = session.ProgramFolder / "Converted";
  return options;
}

GridHead ReadGridHead(const std::filesystem::path& path, const ColumnMapping& mapping, std::size_t rows) {
  constexpr std::size_t kFront = std::size_t{256} * 1024;
  const std::string text = TextOfAnyEncoding(ReadFileBytes(path, kFront));
  GridHead head;
  RowCutter cutter(text, SeparatorOf(text));
  std::optional<int> unit;
  if (cutter.Next()) head.columns = ColumnsOfHeading(cutter.Cells(), mapping, unit);
  while (head.rows.size() < rows && cutter.Next()) head.rows.push_back(cutter.Cells());
  return head;
}

Result<FormulaTable> ReadFormulaFile(const std::filesystem::path& path, const FormulaFileOptions& options) {
  const std::string bytes =
      InWords(path.string(), [] { return "Couldn't open textfile."; }, [&] { return ReadFileBytes(path); });
  auto table = ReadFormulaBytes(bytes, path, options);
  const bool foreign = table && table->format != FormulaFormat::Mfe && table->format != FormulaFormat::Work;
  if (foreign && !options.workFolder.empty()) WriteWorkFile(options.workFolder, *table);
  return table;
}

std::filesystem::path WriteWorkFile(const std::filesystem::path& folder, const FormulaTable& table) {
  std::filesystem::path path = folder / (std::filesystem::path(table.source).stem().string() + ".txt");
  const WorkFileText text = WorkTextOf(table);
  std::string_view step = "Couldn't print Header on the output file.";
  return InWords(path.string(), [&] { return step; }, [&] {
    MakeFolder(folder);
    FileBeside file(path, Readers::Everybody);
    // Every letter has a place in it, and the mark says which encoding it is.
    file.Write("\xEF\xBB\xBF");
    file.Write(text.heading);
    step = "Couldn't write Basics to the output file";
    file.Write(text.basics);
    step = "Couldn't write formulas to the output file";
    file.Write(text.formulas);
    file.Replace();
    return path;
  });
}

}  // namespace vellumark
