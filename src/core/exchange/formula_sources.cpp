#include "core/exchange/formula_sources.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/colors/additive_sets.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/colors/guide_database.h"
#include "core/colors/name_map.h"
#include "core/colors/names.h"
#include "core/datafile/engine_work.h"
#include "core/datafile/file_kind.h"
#include "core/datafile/lifecycle.h"
#include "core/base/told_steps.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Import Formulas";

bool HasAFigure(const SourceColor& color) {
  const auto set = [](const std::optional<double>& figure) { return figure.value_or(0) != 0; };
  return set(color.inventory) || set(color.reorder) || set(color.purchaseCost) || set(color.VOC) || set(color.HAP);
}

template <class Color>
SourceColor SourceOf(const Color& color, ColorKind kind) {
  SourceColor source{.kind = kind, .name = Upper(TrimView(color.Color_Name))};
  source.code = color.Color_Code;
  source.notes = color.Notes;
  source.inventoryNote = color.Inv_Note;
  source.inventory = color.Inventory;
  source.reorder = color.Reorder;
  source.purchaseCost = color.PurchaseCost;
  source.VOC = color.VOC;
  source.HAP = color.HAP;
  source.book = color.book;
  return source;
}

// Reads tables of the shape of a Database's into the neutral one. A name that stands there already is passed over.
class TableReader {
 public:
  TableReader(FormulaTable& table, int nameLength) : table_(table), nameLength_(nameLength) {}

  void ReadBasics(Database& file, const std::string& name) {
    Statement row = file.Prepare(
        fmt::format("SELECT {} FROM {} ORDER BY IngSort, RowKey", BasicFields().Columns(), Quoted(name)));
    while (row.Step()) {
      BasicColor basic;
      BasicFields().Read(row, 0, basic);
      SourceColor source = SourceOf(basic, ColorKind::Basic);
      source.additive = basic.Additive;
      if (IsNew(basics_, source.name, "the Basic Color")) Add(std::move(source), table_.basics);
    }
  }

  void ReadFormulas(Database& file, const std::string& name) {
    Statement row =
        file.Prepare(fmt::format("SELECT {} FROM {} ORDER BY RowKey", MixFields().Columns(), Quoted(name)));
    for (int record = 1; row.Step(); ++record) {
      MixColor mix;
      MixFields().Read(row, 0, mix);
      SourceColor source = SourceOf(mix, ColorKind::Mix);
      if (!IsNew(formulas_, source.name, "the formula")) continue;
      source.recycle = mix.Recycle;
      source.addSetName = mix.AddSetName;
      source.recipe = mix.Ingredients();
      // A line that shows as nothing weighs nothing.
      std::erase_if(source.recipe, [](const Ingredient& line) { return !(line.amount > 0); });
      if (source.recipe.empty()) {
        Bad(source.name, fmt::format("Master Formula has no formula at record {}", record));
      } else {
        Add(std::move(source), table_.formulas);
      }
    }
  }

  void ReadSets(Database& file, std::string_view database) {
    Statement row = file.Prepare(fmt::format("SELECT {} FROM {} ORDER BY SetName, RowKey",
                                             AdditiveSetFields().Columns(),
                                             QuotedTable(database, schema::Additives)));
    while (row.Step()) {
      AdditiveSet set;
      AdditiveSetFields().Read(row, 0, set);
      if (!set.SetName.empty()) table_.sets.push_back({Upper(TrimView(set.SetName)), set.Rows()});
    }
  }

 private:
  void Bad(const std::string& name, std::string why) { table_.badLines.push_back({0, name, std::move(why)}); }

  bool IsNew(NamesOnce& names, const std::string& name, std::string_view what) {
    if (const auto good = CheckNewName(name, NameSource::File, nameLength_); !good) {
      Bad(name, good.error().text);
      return false;
    }
    if (!name.empty()) return names.insert(name).second;
    Bad(name, fmt::format("{} has no name", what));
    return false;
  }

  void Add(SourceColor color, std::vector<SourceColor>& to) {
    table_.hasFigures = table_.hasFigures || HasAFigure(color);
    to.push_back(std::move(color));
  }

  FormulaTable& table_;
  int nameLength_;
  NamesOnce basics_;
  NamesOnce formulas_;
};

Result<FormulaTable> ReadTables(Database& file, const std::string& database, FormulaTable table, int nameLength) {
  table.database = database;
  TableReader reader(table, nameLength);
  reader.ReadBasics(file, TableName(database, schema::Basic));
  reader.ReadFormulas(file, TableName(database, schema::Mix));
  reader.ReadSets(file, database);
  if (table.formulas.empty() && table.badLines.empty())
    return Refuse("Empty Database", "Selected Database doesn't contain formulas");
  return table;
}

Result<void> CheckVersion(int version) {
  switch (GateOf(version)) {
    case VersionGate::Current:
    case VersionGate::ReadOnly:
      return {};
    case VersionGate::Older:
      return Refuse("Incompatable File Version",
                    "The selected Data File is an older version.\n"
                    "It must be upgraded before it can be used as an import selection.\n"
                    "Use Advanced Functions -> Data File Functions -> Open Data File\n"
                    "to update the data file to current standards.");
    case VersionGate::Unusable:
      break;
  }
  return Refuse("Incompatable File Version",
                fmt::format("The selected Data File has the file version {}. This program can read data files up to "
                            "version {}.",
                            version, kFileVersion));
}

struct OpenedSource {
  std::unique_ptr<FileBeside> copy;  // of a Jet file, which is read into one of our own
  std::unique_ptr<Database> file;
  FileInfoRow info;
};

/// What is read of a source.
enum class SourceParts { Names, Formulas };

bool IsFormulaTable(std::string_view table) {
  return table.ends_with(schema::Basic.name) || table.ends_with(schema::Mix.name) || table.ends_with(schema::Additives.name);
}

// A Jet file is read into a work file of our own; of one of another version nothing but that is read.
OpenedSource OpenParts(const std::filesystem::path& path, SourceParts parts) {
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) throw Failure(path.string(), "does not exist");
  const DataFileKind kind = LookAtDataFile(path);
  OpenedSource opened;
  opened.info.fileVersion = kind.version;
  if (!CheckVersion(kind.version)) return opened;
  if (kind.jet) {
    opened.copy = std::make_unique<FileBeside>(std::filesystem::temp_directory_path() / path.filename(), Readers::Group);
    opened.file = OpenWorkFile(opened.copy->Path());
    CopyJetTables(path, *opened.file, [](std::string_view, double) {}, [&](std::string_view table) {
      return EqualNoCase(table, schema::FileInfo.name) || (parts == SourceParts::Formulas && IsFormulaTable(table));
    });
  } else {
    opened.file = Database::Open(path, OpenMode::ReadOnly);
  }
  opened.info = ReadFileInfo(*opened.file);
  return opened;
}

Result<OpenedSource> OpenSource(const std::filesystem::path& path, SourceParts parts) {
  OpenedSource source = InWords(path.string(), [] { return "Couldn't open database."; }, [&] { return OpenParts(path, parts); });
  if (auto current = CheckVersion(source.info.fileVersion); !current) return std::unexpected(current.error());
  return source;
}

}  // namespace

bool IsOwnFile(const Session& session, const std::filesystem::path& path) {
  std::error_code ignored;
  return session.DataFileDB && std::filesystem::equivalent(path, session.DataFileName, ignored);
}

Result<std::vector<std::string>> DatabasesOfFile(const Session& session, const std::filesystem::path& path) {
  if (IsOwnFile(session, path)) return session.databaseList;
  auto source = OpenSource(path, SourceParts::Names);
  if (!source) return std::unexpected(source.error());
  return std::move(source->info.dbList);
}

Result<FormulaTable> ReadDataFileFormulas(const Session& session, const std::filesystem::path& path,
                                          std::string_view database) {
  if (IsOwnFile(session, path)) return ReadDatabaseFormulas(session, database);
  const auto source = OpenSource(path, SourceParts::Formulas);
  if (!source) return std::unexpected(source.error());
  const auto& names = source->info.dbList;
  const auto named = std::ranges::find_if(
      names, [&](const std::string& name) { return EqualNoCase(name, TrimView(database)); });
  if (named == names.end())
    return Refuse("Database Not Found",
                  fmt::format("The {} Data File has no Database named {}.", path.string(), database), "cmbDBList");
  return ReadTables(*source->file, *named, {.source = path.string()}, session.NameLength);
}

Result<FormulaTable> ReadDatabaseFormulas(const Session& session, std::string_view database) {
  if (TrimView(database).empty())
    return Refuse("Database Copy Error", "Please select a database to copy formulas from", "cmbDBList");
  const std::string* name = session.FindDatabase(TrimView(database));
  if (name == nullptr)
    return Refuse("Database Not Found",
                  fmt::format("The {} Data File has no Database named {}.", session.DataFileName, database),
                  "cmbDBList");
  return ReadTables(session.File(), *name,
                    {.source = session.DataFileName, .unit = session.UMI}, schema::Mix.fields[0].size);
}

Result<FormulaTable> ReadGuideFormulas(const Session& session, const std::vector<std::string>& codes) {
  const auto guides = ChosenGuides(session, codes, kTitle, "Please select Pantone Guides to use in your database");
  if (!guides) return std::unexpected(guides.error());
  const auto file = OpenTemplate(session);
  FormulaTable table{.source = file->Path().string(), .unit = session.UMI};
  TableReader reader(table, schema::Mix.fields[0].size);
  for (const Guide* guide : *guides) {
    table.database += (table.database.empty() ? "" : ", ") + std::string(guide->title);
    reader.ReadBasics(*file, std::string(guide->basicTable));
    reader.ReadFormulas(*file, std::string(guide->mixTable));
  }
  return table;
}

}  // namespace vellumark
