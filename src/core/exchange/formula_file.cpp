#include "core/exchange/formula_file.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/files.h"
#include "core/exchange/table_builder.h"

namespace vellumark {
namespace {

constexpr std::string_view kCorruptMfe = "Couldn't read .mfe file correctly. The file may be corrupt.";

std::unexpected<Refusal> NoFormulas(const std::filesystem::path& path, std::string_view text, std::string_view why) {
  return Refuse(std::string(kImportFormulasTitle), fmt::format("{}\n\n{}: {}", text, path.string(), why),
                path.string());
}

}  // namespace

Result<FormulaTable> ReadFormulaBytes(std::string_view bytes, const std::filesystem::path& path,
                                      const FormulaFileOptions& options) {
  const std::string text = TextOfAnyEncoding(bytes);
  if (text.empty()) return NoFormulas(path, kCorruptMfe, "the file is empty");
  if (text.find('\0') != std::string::npos) return NoFormulas(path, kCorruptMfe, "the file is no text");
  NumberStyle numbers;
  FormulaTable table;
  table.source = path.string();
  table.format = FormulaFormat::Mfe;
  TableBuilder builder(table, numbers, options.nameLength);
  RowCutter rows(text, '\t');
  ReadMfeRows(rows, builder);
  if (table.formulas.empty() && table.basics.empty() && table.badLines.empty())
    return NoFormulas(path, kCorruptMfe, "the file has no formulas");
  std::ranges::stable_sort(table.badLines, {}, &BadLine::line);
  return table;
}

Result<FormulaTable> ReadFormulaFile(const std::filesystem::path& path, const FormulaFileOptions& options) {
  std::string bytes;
  try {
    bytes = ReadFileBytes(path);
  } catch (const Failure& failure) {
    throw Failure(failure.subject, "Couldn't open textfile. " + failure.cause);
  }
  return ReadFormulaBytes(bytes, path, options);
}

}  // namespace vellumark
