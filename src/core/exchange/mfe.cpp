#include "core/exchange/mfe.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/names.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

// What is wrong with a name; empty when nothing.
std::string FaultOfName(const std::string& name, int nameLength, std::string_view whose) {
  if (name.empty()) return fmt::format("{} has no name", whose);
  if (const std::size_t length = CharCount(name); length > static_cast<std::size_t>(nameLength))
    return fmt::format("the name {} has {} characters, the limit is {}", name, length, nameLength);
  if (const auto good = CheckNewName(name, NameSource::File, nameLength); !good)
    return fmt::format("the name {} has a character that no name may hold", name);
  return {};
}

// One row to a formula; what is wrong with it, or empty.
std::string ReadRow(const std::vector<std::string_view>& cells, int nameLength, MfeFile::Formula& formula) {
  formula.name = Upper(TrimView(cells[0]));
  if (std::string fault = FaultOfName(formula.name, nameLength, "the formula"); !fault.empty()) return fault;
  if (cells.size() == 1) return "the formula has no recipe";
  if (cells.size() % 2 == 0) return "an ingredient has no amount";
  const std::size_t count = (cells.size() - 1) / 2;
  if (count > schema::kIngredientSlots)
    return fmt::format("the formula has {} ingredients, the limit is {}", count, schema::kIngredientSlots);
  for (std::size_t i = 1; i < cells.size(); i += 2) {
    std::string name = Upper(TrimView(cells[i]));
    if (std::string fault = FaultOfName(name, nameLength, "an ingredient"); !fault.empty()) return fault;
    const auto amount = ParseNumber(cells[i + 1]);
    if (!amount || *amount <= 0 || *amount > 1e9)
      return fmt::format("the amount \"{}\" of {} is no number above 0", cells[i + 1], name);
    const auto same = [&](const auto& part) { return EqualNoCase(part.first, name); };
    if (std::ranges::any_of(formula.parts, same)) return fmt::format("the ingredient {} stands in it twice", name);
    formula.parts.emplace_back(std::move(name), *amount);
  }
  return {};
}

bool TotalsHundred(const MfeFile::Formula& formula) {
  double total = 0;
  for (const auto& [name, amount] : formula.parts) total += amount;
  return std::fabs(total - 100) <= 0.0015;
}

bool HasThreeDecimals(std::string_view amount) {
  const std::size_t point = amount.find('.');
  return point != std::string_view::npos && amount.size() - point - 1 == 3;
}

// A file that was cut short ends in the middle of a row, whose recipe then lacks parts or digits. Where the rows before
// total 100 the last one has to. Rows that a hand wrote come to anything and may just lack the line end; a single row
// shows whose it is by its decimals.
bool LooksCut(const MfeFile& file, const MfeFile::Formula& last, const std::vector<std::string_view>& cells) {
  if (TotalsHundred(last)) return false;
  if (!file.formulas.empty())
    return 2 * std::ranges::count_if(file.formulas, TotalsHundred) > std::ssize(file.formulas);
  const std::size_t checked = cells.size() > 3 ? cells.size() - 1 : cells.size();
  for (std::size_t i = 2; i < checked; i += 2)
    if (!HasThreeDecimals(cells[i])) return false;
  return true;
}

}  // namespace

MfeFile ReadMfe(const std::filesystem::path& path, int nameLength) {
  const std::string text = DecodeText(ReadFileBytes(path));
  if (text.empty())
    throw Failure(path.string(), "is empty: Couldn't read .mfe file correctly. The file may be corrupt.");
  if (text.find('\0') != std::string::npos)
    throw Failure(path.string(), "is no text file: Couldn't read .mfe file correctly. The file may be corrupt.");

  MfeFile file;
  std::unordered_map<std::string, int> lineOfName;
  std::string_view rest = text;
  for (int line = 1; !rest.empty(); ++line) {
    const std::size_t end = rest.find('\n');
    const bool whole = end != std::string_view::npos;
    std::string_view row = rest.substr(0, end);
    rest = whole ? rest.substr(end + 1) : std::string_view{};
    if (row.ends_with('\r')) row.remove_suffix(1);
    const auto bad = [&](std::string why) { file.badLines.push_back({line, std::string(row), std::move(why)}); };

    const std::vector<std::string_view> cells = Split(row, '\t');
    if (line == 1) {
      file.database = Upper(TrimView(row));
      if (cells.size() > 1) bad("the first row is the name of the Database alone");
      continue;
    }
    if (TrimView(row).empty()) continue;
    MfeFile::Formula formula;
    formula.line = line;
    if (std::string fault = ReadRow(cells, nameLength, formula); !fault.empty()) {
      bad(std::move(fault));
    } else if (!whole && LooksCut(file, formula, cells)) {
      bad("the file ends in the middle of this row");
    } else if (const auto [first, added] = lineOfName.emplace(formula.name, line); !added) {
      bad(fmt::format("the formula {} stands in line {} already", formula.name, first->second));
    } else {
      file.formulas.push_back(std::move(formula));
    }
  }
  return file;
}

std::string MfeRow(std::string_view name, const std::vector<std::pair<std::string, float>>& parts) {
  std::string row(name);
  for (const auto& [ingredient, amount] : parts) {
    row += "\t" + ingredient + "\t" + Fixed(amount, 3);
  }
  return row + "\r\n";
}

std::string MfeBytes(const std::string& text) {
  return FitsCp1252(text) ? ToCp1252(text) : text;
}

}  // namespace vellumark
