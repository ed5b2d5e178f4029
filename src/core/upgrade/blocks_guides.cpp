#include <fmt/format.h>

#include <utility>
#include <system_error>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/colors/guide_books.h"
#include "core/colors/guide_database.h"
#include "core/upgrade/ladder.h"

// The blocks that change the texts of Databases and what comes from published guides.

namespace vellumark {
namespace {

constexpr std::string_view kPantone = "PANTONE";
constexpr std::string_view kMarked = "PANTONE\u00AE";
constexpr std::string_view kCustom = "Custom Database";

std::string InfoTable(const std::string& database) {
  return TableOfDatabase(database, "_Info");
}

std::string InfoText(UpgradeRun& run, const std::string& database, std::string_view field) {
  const std::string table = InfoTable(database);
  if (!run.Has(table, field)) return {};
  return run.file.Scalar(fmt::format("SELECT {} FROM {} LIMIT 1", run.Sql(table, field), run.From(table))).Text();
}

// A Database of published formulas, by its name, its long name or its template.
bool IsOfGuides(UpgradeRun& run, const std::string& database) {
  return StartsWithNoCase(database, kPantone) || FindNoCase(InfoText(run, database, "FullName"), kPantone) != std::string::npos ||
         !TrimView(InfoText(run, database, "TemplateFile")).empty();
}

void SetInfo(UpgradeRun& run, const std::string& database, std::string_view field, std::string_view text) {
  const std::string table = InfoTable(database);
  run.Add(table, field, "''");
  const std::string column = run.Own(table, field, FieldType::Memo);
  run.file.Prepare(fmt::format("UPDATE {} SET {} = ?1", run.From(table), column)).Bind(1, text).Run();
}

// The template in use; told once for a block when there is none.
std::unique_ptr<Database> Template(UpgradeRun& run) {
  try {
    if (auto guides = OpenTemplate(run.session)) return guides;
    run.ToLookAt("", "there is no template of color guides: book data and new colors of guides stay as the file has them");
  } catch (const Failure& failure) {
    run.ToLookAt("", fmt::format("the template of color guides cannot be read: {}", failure.what()));
  }
  return nullptr;
}

}  // namespace

void AddLabelFields(UpgradeRun& run) {
  run.ForEachDatabase([&](const std::string& database) {
    for (const char* field : {"LabelLayout", "LabelHealth", "LabelFire", "LabelReactivity"}) {
      run.Doing(fmt::format("Couldn't add {} field to {}", field, InfoTable(database)));
      run.Add(InfoTable(database), field, "''");
    }
  });
}

void AddAdditiveFields(UpgradeRun& run) {
  run.ForEachDatabase([&](const std::string& database) {
    const std::string table = InfoTable(database);
    run.Doing("Couldn't add Additive field to " + table);
    run.AddFamily(table, "Additive", run.First(table, "Additive"), schema::kSetSlots, "''");
    run.AddFamily(table, "Percentage", run.First(table, "Percentage"), schema::kSetSlots, "0");
  });
}

void NameTheGuide(UpgradeRun& run, const std::string& database) {
  if (!TrimView(InfoText(run, database, "TemplateFile")).empty()) return;
  const bool guides = IsOfGuides(run, database);
  SetInfo(run, database, "TemplateFile", guides ? kTemplateFileName : std::string_view());
  if (guides) run.Changed(InfoTable(database), fmt::format("TemplateFile is {}", kTemplateFileName));
}

void AddTemplateNames(UpgradeRun& run) {
  run.ForEachDatabase([&](const std::string& database) {
    run.Doing("Couldn't store the template's name in " + InfoTable(database));
    if (run.Has(InfoTable(database))) NameTheGuide(run, database);
  });
}

// "PANTONE® 123" is the colour that is called "PANTONE 123" today.
void RespellGuideNames(UpgradeRun& run) {
  run.ForEachDatabase([&](const std::string& database) {
    run.Doing(fmt::format("Couldn't Update {} Usage in {} database.", kMarked, database));
    if (!IsOfGuides(run, database)) return;
    const auto respell = [&](const std::string& table, const std::string& field, const std::string& where) {
      if (!run.Has(table, field)) return;
      const std::string sql = run.Sql(table, field);
      std::vector<std::string> names;
      Statement row = run.file.Prepare(fmt::format("SELECT DISTINCT {0} FROM {1} WHERE {0} LIKE {2} AND {3}", sql,
                                                   run.From(table), SqlText(std::string(kMarked) + "%"), where));
      while (row.Step()) names.push_back(row.Text(0));
      row.Reset();
      for (const std::string& name : names) {
        const std::string now = fmt::format("{} {}", kPantone, TrimView(std::string_view(name).substr(kMarked.size())));
        const std::string column = run.Own(table, field, FieldType::Text);
        run.Renamed(table, fmt::format("{}: {} is called {} now", field, name, now),
                    run.file
                        .Prepare(fmt::format("UPDATE {} SET {} = ?1 WHERE {} = ?2 AND {}", run.From(table), column, column, where))
                        .Bind(1, now)
                        .Bind(2, name)
                        .Run());
      }
    };
    const std::string mix = TableOfDatabase(database, "_Mix");
    const std::string batch = TableOfDatabase(database, "_Batch");
    for (const std::string& table : {TableOfDatabase(database, "_Basic"), mix, batch}) respell(table, "Color_Name", "1 = 1");
    for (const auto& [table, word] : {std::pair{mix, "BC"}, {batch, "Ingredient"}, {InfoTable(database), "Additive"}})
      for (int n = run.First(table, word), end = n + run.Count(table, word); n < end; ++n)
        respell(table, schema::Numbered(word, n), "1 = 1");
    respell("JobRecords", "Color_Name", fmt::format("{} = {}", run.Sql("JobRecords", "Database"), SqlText(database)));
  });
}

namespace {

// A list of new and changed names in the program's folder. No site has one any more; where there is none nothing is added.
void AddGuideColors(UpgradeRun& run, std::string_view list) {
  bool any = false;
  run.ForEachDatabase([&](const std::string& database) { any = any || IsOfGuides(run, database); });
  if (!any) return;
  std::error_code ignored;
  const std::filesystem::path path = run.session.ProgramFolder / list;
  const bool there = !run.session.ProgramFolder.empty() && std::filesystem::exists(path, ignored);
  run.ToLookAt("", there ? fmt::format("{} was not read: bring new colors of guides in from the template", path.string())
                         : fmt::format("{} is not there: no new colors of guides were added", list));
}

}  // namespace

void AddGuideColors2016(UpgradeRun& run) {
  run.Doing("Couldn't add the new colors");
  AddGuideColors(run, "2016PMS_Update.txt");
}
void AddGuideColors2014(UpgradeRun& run) {
  run.Doing("Couldn't add the new colors");
  AddGuideColors(run, "2014PMS_Update.txt");
}

void CompleteInfo(UpgradeRun& run) {
  std::unique_ptr<Database> guides;
  bool tried = false;
  run.ForEachDatabase([&](const std::string& database) {
    const std::string table = InfoTable(database);
    run.Doing("Couldn't complete " + table);
    if (!run.Has(table)) return;
    const bool ofGuides = IsOfGuides(run, database);
    if (ofGuides && !std::exchange(tried, true)) guides = Template(run);
    NameTheGuide(run, database);
    for (const std::string field : {"FullName", "Disclaimer", "TradeMark"}) {
      if (!TrimView(InfoText(run, database, field)).empty()) continue;
      std::string text = field == "FullName" ? std::string(ofGuides ? kPantone : kCustom) : std::string();
      if (ofGuides && guides && guides->TableExists(kTemplateInfoTable))
        if (std::string published =
                guides->Scalar(fmt::format("SELECT {} FROM {} LIMIT 1", Quoted(field), Quoted(kTemplateInfoTable))).Text();
            !published.empty())
          text = std::move(published);
      SetInfo(run, database, field, text);
      if (!text.empty()) run.Changed(table, fmt::format("{} is {}", field, field == "FullName" ? text : "that of the template"));
    }
  });
}

namespace {

// Of a colour that the template does not have what stands in the file stays.
void TakeBooks(UpgradeRun& run, const std::string& table, const GuideBooks& books) {
  if (!run.Has(table)) return;
  std::vector<std::pair<std::int64_t, const BookData*>> found;
  Statement row = run.file.Prepare(fmt::format("SELECT Src.RowKey, {} FROM {}", run.Sql(table, "Color_Name"), run.From(table)));
  while (row.Step()) {
    const std::string key = NameKey(row.TextView(1));
    auto book = books.find(key);
    if (book == books.end()) book = books.find(std::string(kPantone) + " " + key);
    if (book != books.end()) found.emplace_back(row.Whole(0), &book->second);
  }
  row.Reset();
  if (found.empty()) return;
  std::string sets;
  int parameter = 1;
  for (const RecordField& field : BookFields()) {
    const FieldType type = schema::Basic.fields[static_cast<std::size_t>(schema::Basic.Find(field.column))].type;
    sets += fmt::format("{}{} = ?{}", sets.empty() ? "" : ", ", run.Own(table, field.column, type), parameter++);
  }
  Statement update = run.file.Prepare(fmt::format("UPDATE {} SET {} WHERE RowKey = ?{}", run.From(table), sets, parameter));
  for (const auto& [key, book] : found) {
    int i = 1;
    for (const RecordField& field : BookFields()) update.Bind(i++, field.ValueIn(book));
    update.Bind(parameter, key).Run();
  }
  run.Changed(table, "guide, page and swatch are those of the template", std::ssize(found));
}

}  // namespace

// Every colour has the fields of a guide; those that a guide holds get their page and swatch.
void ReadBookPages(UpgradeRun& run) {
  std::unique_ptr<Database> guides;
  bool tried = false;
  run.ForEachDatabase([&](const std::string& database) {
    const std::string basic = TableOfDatabase(database, "_Basic");
    const std::string mix = TableOfDatabase(database, "_Mix");
    for (const std::string& table : {basic, mix}) {
      run.Doing("Couldn't add the fields of guides to " + table);
      run.Add(table, "Color_Guide", "''");
      run.Add(table, "Page", "'0'");
      for (const char* field : {"Row", "Red", "Green", "Blue"}) run.Add(table, field, "0");
    }
    if (!IsOfGuides(run, database)) return;
    if (!std::exchange(tried, true)) guides = Template(run);
    if (!guides) return;
    run.Doing("Couldn't update the book data of " + database);
    TakeBooks(run, basic, ReadGuideBooks(*guides, kGuideBasicTables));
    TakeBooks(run, mix, ReadGuideBooks(*guides, kGuideMixTables));
  });
}

}  // namespace vellumark
