#include "core/colors/guide_database.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <system_error>

#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/colors/basics.h"
#include "core/datafile/databases.h"
#include "core/datafile/references.h"
#include "core/datafile/schema.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

struct NoCase {
  bool operator()(const std::string& a, const std::string& b) const { return CompareNoCase(a, b) < 0; }
};
struct Figures {
  float cost = 0;
  float voc = 0;
  float hap = 0;
};

std::size_t PlaceOf(const Table& table, std::string_view field) {
  return static_cast<std::size_t>(table.Find(field));
}

/// Walks the rows of a template table, all fields in the order of its shape.
class TemplateTableReader {
 public:
  TemplateTableReader(Database& file, std::string_view table, const Table& shape, std::string_view order)
      : shape_(shape), rows_(file.Prepare(Select(table, shape, order))) {}
  bool Step() { return rows_.Step(); }
  Value Get(std::string_view field) const { return rows_.Get(shape_.Find(field)); }
  std::vector<Value> Values() const {
    std::vector<Value> values;
    for (std::size_t i = 0; i < shape_.fields.size(); ++i) values.push_back(rows_.Get(static_cast<int>(i)));
    return values;
  }

 private:
  static std::string Select(std::string_view table, const Table& shape, std::string_view order) {
    std::string columns;
    for (const Field& field : shape.fields) columns += (columns.empty() ? "" : ", ") + Quoted(field.name);
    return fmt::format("SELECT {} FROM {} ORDER BY {}", columns, Quoted(table), order);
  }

  const Table& shape_;
  Statement rows_;
};

std::vector<std::string> FieldNames(const Table& table) {
  std::vector<std::string> names;
  for (const Field& field : table.fields) names.push_back(field.name);
  return names;
}

/// Copies guides into the empty tables of one Database.
class GuideCopier {
 public:
  GuideCopier(Session& session, Database& templateFile, const std::string& database)
      : session_(session),
        template_(templateFile),
        database_(database),
        basicWriter_(session.File(), schema::Basic, TableName(database, schema::Basic), FieldNames(schema::Basic)),
        mixWriter_(session.File(), schema::Mix, TableName(database, schema::Mix), FieldNames(schema::Mix)) {}

  void CopyBasics(const Guide& guide) {
    TemplateTableReader rows(template_, guide.basicTable, schema::Basic, "IngSort, RowKey");
    while (rows.Step()) {
      const Figures figures{rows.Get("PurchaseCost").Single(), rows.Get("VOC").Single(), rows.Get("HAP").Single()};
      if (!basics_.emplace(rows.Get("Color_Name").Text(), figures).second) continue;
      std::vector<Value> values = rows.Values();
      // The weighing order of a Database has no gaps, which the orders of two guides together would leave.
      values[PlaceOf(schema::Basic, "IngSort")] = basics_.size() - 1;
      Date(schema::Basic, "Date_Entered", values);
      Insert(basicWriter_, values);
    }
  }

  void CopyFormulas(const Guide& guide) {
    TemplateTableReader rows(template_, guide.mixTable, schema::Mix, "RowKey");
    while (rows.Step()) {
      if (!formulas_.emplace(rows.Get("Color_Name").Text(), true).second) continue;
      std::vector<Value> values = rows.Values();
      std::vector<std::string> names;
      Figures sum;
      for (int n = 0; n < schema::kIngredientSlots; ++n) {
        std::string name = rows.Get(schema::Numbered("BC", n)).Text();
        if (!name.empty()) AddShare(sum, rows.Get(schema::Numbered("BQ", n)).Single(), BasicFigures(name));
        names.push_back(std::move(name));
      }
      values[PlaceOf(schema::Mix, "Color_Set")] = NameSet(names);
      values[PlaceOf(schema::Mix, "BasicCost")] = RoundSingle(sum.cost, session_.DecimalPlaces);
      values[PlaceOf(schema::Mix, "BasicVOC")] = RoundSingle(sum.voc, 3);
      values[PlaceOf(schema::Mix, "BasicHAP")] = RoundSingle(sum.hap, 3);
      Date(schema::Mix, "Date_Entered", values);
      Date(schema::Mix, "LastModified", values);
      Insert(mixWriter_, values);
    }
  }

 private:
  // A formula never stands without its ingredients, even if the template was filled carelessly.
  const Figures& BasicFigures(const std::string& name) {
    const auto [basic, missing] = basics_.emplace(name, Figures{});
    if (missing) AddZeroBasic(session_, name, false, database_);
    return basic->second;
  }

  static void AddShare(Figures& sum, float amount, const Figures& basic) {
    const auto share = [amount](float of) { return static_cast<double>(amount) * static_cast<double>(of) / 100.0; };
    sum.cost = static_cast<float>(static_cast<double>(sum.cost) + share(basic.cost));
    sum.voc = static_cast<float>(static_cast<double>(sum.voc) + share(basic.voc));
    sum.hap = static_cast<float>(static_cast<double>(sum.hap) + share(basic.hap));
  }

  void Date(const Table& table, std::string_view field, std::vector<Value>& values) const {
    Value& date = values[PlaceOf(table, field)];
    if (date.IsNull()) date = session_.clock.Today();
  }

  static void Insert(RowWriter& writer, const std::vector<Value>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) writer.Set(i, values[i]);
    writer.Insert();
  }

  Session& session_;
  Database& template_;
  const std::string& database_;
  RowWriter basicWriter_;
  RowWriter mixWriter_;
  std::map<std::string, Figures, NoCase> basics_;
  std::map<std::string, bool, NoCase> formulas_;
};

bool HoldsGuide(Database& file, const Guide& guide) {
  return file.TableExists(guide.basicTable) && file.TableExists(guide.mixTable) &&
         !file.Scalar(fmt::format("SELECT 1 FROM {} LIMIT 1", Quoted(guide.mixTable))).IsNull();
}

}  // namespace

fs::path TemplatePath(const Session& session) {
  std::error_code ignored;
  for (const fs::path& folder : {session.ProgramFolder, session.ShippedFolder}) {
    if (folder.empty()) continue;
    if (fs::path path = folder / kTemplateFileName; fs::exists(path, ignored)) return path;
  }
  return {};
}

std::unique_ptr<Database> OpenTemplate(const Session& session) {
  const fs::path path = TemplatePath(session);
  return path.empty() ? nullptr : Database::Open(path, OpenMode::ReadOnly);
}

void CopyTemplateInfo(Session& session, Database& templateFile, const std::string& database) {
  TemplateTableReader info(templateFile, kTemplateInfoTable, schema::Info, "RowKey");
  if (!info.Step()) return;
  const std::string table = TableName(database, schema::Info);
  const std::int64_t row = session.File().Scalar("SELECT RowKey FROM " + Quoted(table)).Whole();
  std::vector<Cell> cells;
  for (const Field& field : schema::Info.fields) cells.emplace_back(field.name, info.Get(field.name));
  UpdateRow(session.File(), schema::Info, table, row, cells);
}

Result<std::vector<const Guide*>> ChosenGuides(const Session& session, const std::vector<std::string>& codes,
                                               std::string_view title, std::string_view whenNone) {
  std::vector<const Guide*> chosen;
  for (const std::string& code : codes)
    if (FindGuide(TrimView(code)) == nullptr)
      return Refuse(std::string(title), fmt::format("There is no guide named {}.", code), "lstPantoneData");
  for (const Guide& guide : kGuides)
    if (std::ranges::any_of(codes, [&](const std::string& c) { return EqualNoCase(TrimView(c), guide.code); }))
      chosen.push_back(&guide);
  if (chosen.empty())
    return Refuse("No Content Choosen", std::string(whenNone), "lstPantoneData");
  if (chosen.size() > 1 && chosen[0]->code == "F_Guide_A" && chosen[1]->code == "F_Guide_B")
    return Refuse("Pantone Formula Guide Selection",
                  "Cannot create a new Database with both Pantone Formula Guide selections.\n"
                  "Each guide uses different formulas, only one can be selected for content.\n"
                  "GP1601A - Published prior to December of 2022.\n"
                  "GP1601B - Published in December of 2022.\n"
                  "Over 200 new colors added to the guide.\n"
                  "Colors are created with new formulas and basic colors.",
                  "lstPantoneData");
  const auto templateFile = OpenTemplate(session);
  if (!templateFile)
    return Refuse(std::string(title), "There is no template.\n" + HowToGetTemplate(session), "lstPantoneData");
  for (const Guide* guide : chosen)
    if (!HoldsGuide(*templateFile, *guide))
      return Refuse(std::string(title),
                    fmt::format("The template {} does not hold the guide {} ({}).", templateFile->Path().string(),
                                guide->title, guide->code),
                    "lstPantoneData");
  return chosen;
}

std::string HowToGetTemplate(const Session& session) {
  return fmt::format(
      "The formulas of the color guides come from the template {0}, which belongs in the folder {1}. The publisher of "
      "your guides supplies its contents; the command\nvellumark-cli template build FOLDER --out {0}\nmakes it from "
      "text files. With the template in its place, the New command of the Database menu makes a Database from guides.",
      kTemplateFileName, session.ProgramFolder.string());
}

std::vector<const Guide*> GuidesInTemplate(const Session& session) {
  std::vector<const Guide*> held;
  if (const auto file = OpenTemplate(session)) {
    for (const Guide& guide : kGuides)
      if (HoldsGuide(*file, guide)) held.push_back(&guide);
  }
  return held;
}

Result<std::string> CreateGuideDatabase(Session& session, std::string_view typedName,
                                        const std::vector<std::string>& codes) {
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  auto name = NewDatabaseName(typedName, session.databaseList, session.DataFileName);
  if (!name) return name;
  const auto guides = ChosenGuides(session, codes, "New Database", "Please select Pantone Guides for your database");
  if (!guides) return std::unexpected(guides.error());
  const auto templateFile = OpenTemplate(session);

  ProgressRun progress(session.progress, "Creating Database ...");
  const std::size_t steps = 2 * guides->size();
  std::size_t done = 0;
  Transaction transaction(session.File());
  CreateEmptyDatabase(session.File(), *name);
  GuideCopier copier(session, *templateFile, *name);
  for (const Guide* guide : *guides) {
    copier.CopyBasics(*guide);
    progress.Step(++done, steps);
  }
  for (const Guide* guide : *guides) {
    copier.CopyFormulas(*guide);
    progress.Step(++done, steps);
  }
  CopyTemplateInfo(session, *templateFile, *name);
  // Whoever hears of the commit finds the list as it is now.
  session.databaseList.push_back(*name);
  try {
    transaction.Commit();
  } catch (...) {
    session.databaseList.pop_back();
    throw;
  }
  return name;
}

}  // namespace vellumark
