#include "core/exchange/formula_file.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/exchange/table_builder.h"

namespace vellumark {
namespace {

using enum FormulaFormat;

bool HasExtension(const std::filesystem::path& path, std::string_view extension) {
  return EqualNoCase(path.extension().string(), extension);
}

// What a file is by its name is told in the words for that.
std::unexpected<Refusal> NoFormulas(const std::filesystem::path& path, std::string_view text, std::string_view why) {
  if (HasExtension(path, ".mfe")) text = kCorruptMfe;
  return Refuse(std::string(kImportFormulasTitle), fmt::format("{}\n\n{}: {}", text, path.string(), why),
                path.string());
}

bool BeginsWith(const std::vector<std::string>& cells, FormulaFormat format) {
  const std::vector<std::string_view>& names = HeadingOf(format);
  return !cells.empty() && EqualNoCase(TrimView(cells[0]), names[0]) &&
         (cells.size() > 1 && EqualNoCase(TrimView(cells[1]), names[1]));
}

// Whether the heading tells of colors: by their names, or by so much else that nothing but those can be missing.
bool IsGrid(const std::vector<std::string>& heading, const ColumnMapping& mapping, bool& ownColumns) {
  std::optional<int> unit;
  bool name = false;
  int known = 0;
  ownColumns = false;
  for (const SourceColumn& column : ColumnsOfHeading(heading, mapping, unit)) {
    name |= column.field == SourceField::ColorName;
    known += column.field == SourceField::NoField ? 0 : 1;
    ownColumns |= mapping.Find(column.caption) != nullptr;
  }
  return name || known > 1;
}

// What such a file is when a person opens it, and what to do with it.
std::string_view Workbook(std::string_view bytes) {
  if (bytes.starts_with("\xD0\xCF\x11\xE0") || bytes.starts_with("PK\x03\x04"))
    return "the file is a workbook; save it in Excel as a text with tabs";
  return {};
}

FormatFault ReadRows(FormulaFormat format, std::string_view text, TableBuilder& builder, const ColumnMapping& mapping) {
  const bool grid = format == Work || format == Columns;
  RowCutter rows(text, format == Rez ? '#' : grid ? SeparatorOf(text) : '\t');
  switch (format) {
    case Mfe:
      return ReadMfeRows(rows, builder);
    case Rez:
    case Zg:
    case Ja:
      return ReadIngredientRows(format, rows, builder);
    case Work:
    case Columns:
      return ReadGridRows(rows, builder, mapping);
    default:
      return ReadHeaderRows(rows, builder);
  }
}

// Numbers of a file with commas are read when it is known what the commas are.
NumberStyle NumbersOf(FormulaFormat format, std::string_view text, const FormulaFileOptions& options) {
  NumberStyle numbers(text.find(',') != std::string_view::npos);
  if (!numbers.Learning()) return numbers;
  FormulaTable unused;
  TableBuilder builder(unused, numbers, options.nameLength);
  (void)ReadRows(format, text, builder, options.columns);
  numbers.EndLearning();
  return numbers;
}

void TellWhatIsLacking(FormulaTable& table) {
  const auto lacks = [&](std::string_view sentence) { table.lacks.emplace_back(sentence); };
  if (*table.format == Work || *table.format == Columns) return;
  if (*table.format == Mfe || *table.format == Rez) lacks("The file has no codes.");
  if (*table.format >= Header2 && *table.format <= Header1Xls)
    lacks("The ingredients come in the order of the file's columns, not in that of the recipe.");
  lacks("The file has no notes, costs, emissions, stock and Additive Sets.");
}

}  // namespace

std::optional<FormulaFormat> RecogniseFormat(std::string_view text, const std::filesystem::path& path,
                                             const ColumnMapping& columns) {
  const bool xls = HasExtension(path, ".xls");
  RowCutter rows(text, '\t');
  if (!rows.Next()) return std::nullopt;
  const std::vector<std::string> first = rows.Cells();
  for (const FormulaFormat format : {Zg, Ja})
    if (BeginsWith(first, format)) return format;
  if (BeginsWith(first, Header1)) {
    const bool codes = rows.Next() && rows.Cells().size() > 2 && TrimView(rows.Cells()[0]).empty();
    return codes ? (xls ? Header2Xls : Header2) : xls ? Header1Xls : Header1;
  }
  const std::string_view row = TrimView(first[0]);
  if (StartsWithNoCase(row, "O#") && std::ranges::count(row, '#') >= 5) return Rez;
  RowCutter heading(text, SeparatorOf(text));
  bool ownColumns = false;
  if (heading.Next() && IsGrid(heading.Cells(), columns, ownColumns)) return ownColumns ? Columns : Work;
  if (HasExtension(path, ".mfe") || (first.size() == 1 && rows.Next() && rows.Cells().size() >= 3)) return Mfe;
  if (HasExtension(path, ".rez")) return Rez;
  if (HasExtension(path, ".csv")) return Columns;
  return std::nullopt;
}

Result<FormulaTable> ReadFormulaBytes(std::string_view bytes, const std::filesystem::path& path,
                                      const FormulaFileOptions& options) {
  const std::string text = TextOfAnyEncoding(bytes);
  if (const std::string_view why = Workbook(bytes); !why.empty())
    return NoFormulas(path, "Couldn't open textfile.", why);
  if (const std::size_t zero = text.find('\0'); zero != std::string::npos)
    return NoFormulas(path,
                      fmt::format("Couldn't read textfile data at line {}",
                                  1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(zero), '\n')),
                      "the file is no text");
  if (text.find_first_not_of(" \t\r\n") == std::string::npos)
    return NoFormulas(path, "Couldn't read textfile Field Headers.", "the file is empty");
  const auto format = options.format ? options.format : RecogniseFormat(text, path, options.columns);
  if (!format)
    return NoFormulas(path, "Couldn't read textfile Field Headers.",
                      "the file is none of the formats of formula files");
  NumberStyle numbers = NumbersOf(*format, text, options);
  FormulaTable table;
  table.source = path.string();
  table.format = format;
  TableBuilder builder(table, numbers, options.nameLength);
  if (const FormatFault fault = ReadRows(*format, text, builder, options.columns); !fault.text.empty())
    return NoFormulas(path, fault.text, fault.why);
  if (table.formulas.empty() && table.basics.empty() && table.badLines.empty())
    return NoFormulas(path, "Couldn't read textfile data at line 1", "the file has no formulas");
  TellWhatIsLacking(table);
  std::ranges::stable_sort(table.badLines, {}, &BadLine::line);
  return table;
}

}  // namespace vellumark
