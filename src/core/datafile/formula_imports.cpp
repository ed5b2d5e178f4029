#include "core/datafile/formula_imports.h"

#include <fmt/format.h>

#include <charconv>
#include <variant>

#include "core/base/text.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

constexpr int kMostKept = 20;
constexpr std::string_view kImports = "MSysFormulaImports";
constexpr std::string_view kReplaced = "MSysReplacedRecipes";

// The layout is this file's own: nothing else reads or writes these tables.
const Table& ImportsTable() {
  using enum FieldType;
  static const Table table{std::string(kImports),
                           {{"Moment", Date},
                            {"Username", Text, 15, true},
                            {"DatabaseName", Text, 15},
                            {"Source", Memo, 0, true},
                            {"MadeDatabase", Boolean},
                            {"Formulas", Memo, 0, true},
                            {"Basics", Memo, 0, true},
                            {"Sets", Memo, 0, true}},
                           {}};
  return table;
}

const Table& ReplacedTable() {
  using enum FieldType;
  static const Table table{std::string(kReplaced),
                           {{"ImportID", Long},
                            {"ColorRow", Long},
                            {"Color_Name", Text, 30},
                            {"Digest", Text, 16},
                            {"Recipe", Memo, 0, true},
                            {"AddSetName", Text, 30, true},
                            {"LastModified", Date}},
                           {{"ImportID"}}};
  return table;
}

std::string RowsText(const std::vector<ImportedRow>& rows) {
  std::string text;
  for (const ImportedRow& row : rows) fmt::format_to(std::back_inserter(text), "{}\t{}\t{}\n", row.key, row.digest, row.name);
  return text;
}

std::vector<ImportedRow> RowsOf(std::string_view text) {
  std::vector<ImportedRow> rows;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    const std::vector<std::string_view> parts = Split(line, '\t');
    if (parts.size() != 3) continue;
    ImportedRow row{0, std::string(parts[2]), std::string(parts[1])};
    std::from_chars(parts[0].data(), parts[0].data() + parts[0].size(), row.key);
    rows.push_back(std::move(row));
  }
  return rows;
}

FormulaImport HeadOf(const Statement& row) {
  FormulaImport import;
  import.id = row.Whole(0);
  import.Moment = row.Date(1).value_or(DateTime{});
  import.Username = row.Text(2);
  import.database = row.Text(3);
  import.source = row.Text(4);
  import.madeDatabase = row.Bool(5);
  return import;
}

constexpr std::string_view kHead = "RowKey, Moment, Username, DatabaseName, Source, MadeDatabase";

void ForgetOldest(Database& file) {
  const std::int64_t last =
      file.Scalar(fmt::format("SELECT RowKey FROM {} ORDER BY RowKey DESC LIMIT 1 OFFSET {}", kImports, kMostKept))
          .Whole();
  for (const auto& [table, field] : {std::pair{kImports, "RowKey"}, std::pair{kReplaced, "ImportID"}})
    file.Prepare(fmt::format("DELETE FROM {} WHERE {} <= ?", table, field)).Bind(1, last).Run();
}

}  // namespace

std::int64_t AddFormulaImport(Database& file, const FormulaImport& import) {
  Transaction transaction(file);
  if (!file.TableExists(kImports)) file.CreateTable(kImports, ImportsTable());
  if (!file.TableExists(kReplaced)) file.CreateTable(kReplaced, ReplacedTable());
  const std::int64_t id = InsertRow(file, ImportsTable(), std::string(kImports),
                                    {{"Moment", import.Moment},
                                     {"Username", import.Username},
                                     {"DatabaseName", import.database},
                                     {"Source", import.source},
                                     {"MadeDatabase", import.madeDatabase},
                                     {"Formulas", RowsText(import.formulas)},
                                     {"Basics", RowsText(import.basics)},
                                     {"Sets", RowsText(import.sets)}});
  RowWriter writer(file, ReplacedTable(), std::string(kReplaced),
                   {"ImportID", "ColorRow", "Color_Name", "Digest", "Recipe", "AddSetName", "LastModified"});
  for (const ReplacedRecipe& replaced : import.replaced) {
    writer.Set(0, id).Set(1, replaced.row.key).Set(2, replaced.row.name).Set(3, replaced.row.digest);
    writer.Set(4, replaced.recipe).Set(5, replaced.AddSetName).Set(6, Value(replaced.LastModified));
    writer.Insert();
  }
  ForgetOldest(file);
  transaction.Commit();
  return id;
}

std::vector<FormulaImport> ListFormulaImports(Database& file) {
  std::vector<FormulaImport> imports;
  if (!file.TableExists(kImports)) return imports;
  Statement row = file.Prepare(fmt::format("SELECT {} FROM {} ORDER BY RowKey DESC", kHead, kImports));
  while (row.Step()) imports.push_back(HeadOf(row));
  return imports;
}

std::optional<FormulaImport> ReadFormulaImport(Database& file, std::int64_t id) {
  if (!file.TableExists(kImports)) return std::nullopt;
  Statement row = file.Prepare(fmt::format(
      "SELECT {}, Formulas, Basics, Sets FROM {} WHERE RowKey = ?1 OR ?1 = 0 ORDER BY RowKey DESC LIMIT 1", kHead,
      kImports));
  row.Bind(1, id);
  if (!row.Step()) return std::nullopt;
  FormulaImport import = HeadOf(row);
  import.formulas = RowsOf(row.TextView(6));
  import.basics = RowsOf(row.TextView(7));
  import.sets = RowsOf(row.TextView(8));
  Statement replaced = file.Prepare(
      fmt::format("SELECT ColorRow, Color_Name, Digest, Recipe, AddSetName, LastModified FROM {} WHERE ImportID = ? "
                  "ORDER BY RowKey",
                  kReplaced));
  replaced.Bind(1, import.id);
  while (replaced.Step())
    import.replaced.push_back({{replaced.Whole(0), replaced.Text(1), replaced.Text(2)},
                               replaced.Text(3),
                               replaced.Text(4),
                               replaced.Date(5)});
  return import;
}

void RemoveFormulaImport(Database& file, std::int64_t id) {
  Transaction transaction(file);
  file.Prepare(fmt::format("DELETE FROM {} WHERE RowKey = ?", kImports)).Bind(1, id).Run();
  file.Prepare(fmt::format("DELETE FROM {} WHERE ImportID = ?", kReplaced)).Bind(1, id).Run();
  transaction.Commit();
}

void RenameFormulaImports(Database& file, std::string_view database, std::string_view newName) {
  if (!file.TableExists(kImports)) return;
  file.Prepare(fmt::format("UPDATE {} SET DatabaseName = ?2 WHERE DatabaseName = ?1", kImports))
      .Bind(1, database)
      .Bind(2, newName)
      .Run();
}

void ForgetFormulaImports(Database& file, std::string_view database) {
  for (const FormulaImport& import : ListFormulaImports(file))
    if (EqualNoCase(import.database, database)) RemoveFormulaImport(file, import.id);
}

std::string RowDigest(const Statement& row, int first) {
  std::uint64_t hash = 14695981039346656037ULL;
  const auto take = [&hash](std::string_view bytes) {
    for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
    hash = (hash ^ 0x1F) * 1099511628211ULL;
  };
  const auto takeBits = [&take](const auto& value) {
    take({reinterpret_cast<const char*>(&value), sizeof(value)});
  };
  for (int column = first; column < row.ColumnCount(); ++column) {
    const Value value = row.Get(column);
    if (const auto* text = std::get_if<std::string>(&value.Held())) {
      take(*text);
    } else if (const auto* whole = std::get_if<std::int64_t>(&value.Held())) {
      takeBits(*whole);
    } else if (const auto* number = std::get_if<double>(&value.Held())) {
      takeBits(*number);
    } else {
      take("\x01");
    }
  }
  return fmt::format("{:016x}", hash);
}

}  // namespace vellumark
