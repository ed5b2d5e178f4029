#include "core/colors/template_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <system_error>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/colors/template_rules.h"
#include "core/colors/template_text.h"
#include "core/datafile/engine.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/schema.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

using Rows = std::vector<TemplateRow>;

struct GuideRows {
  Rows basics;
  Rows formulas;
};

/// What a folder of text files holds.
struct TemplateSource {
  std::vector<GuideRows> guides;  // in the order of kGuides
  Rows info;
  std::vector<std::string> faults;
};

std::vector<std::string> FieldNames(const Table& shape) {
  std::vector<std::string> names;
  for (const Field& field : shape.fields) names.push_back(field.name);
  return names;
}

// ---- Reading the text files

fs::path TextOf(const fs::path& folder, std::string_view table) {
  return folder / (std::string(table) + ".tsv");
}

GuideRows ReadGuide(const fs::path& folder, const Guide& guide, std::vector<std::string>& faults) {
  const fs::path basicText = TextOf(folder, guide.basicTable);
  const fs::path mixText = TextOf(folder, guide.mixTable);
  std::error_code ignored;
  const bool hasBasics = fs::exists(basicText, ignored);
  const bool hasFormulas = fs::exists(mixText, ignored);
  if (!hasBasics && !hasFormulas) return {};
  for (const auto& [there, file] : {std::pair{hasBasics, basicText}, std::pair{hasFormulas, mixText}})
    if (!there) faults.push_back(file.filename().string() + ": is not there, though its guide's other file is");
  if (!hasBasics || !hasFormulas) return {};
  auto basics = ReadTemplateText(basicText, schema::Basic, faults);
  auto formulas = ReadTemplateText(mixText, schema::Mix, faults);
  // Without the one there is nothing to judge the other by.
  if (!basics || !formulas) return {};
  CheckGuideRows(*basics, *formulas, faults);
  return {std::move(*basics), std::move(*formulas)};
}

TemplateSource ReadSource(const fs::path& folder) {
  std::error_code error;
  if (!fs::is_directory(folder, error)) throw Failure(folder.string(), "is not a folder");
  TemplateSource source;
  std::size_t rows = 0;
  for (const Guide& guide : kGuides) {
    source.guides.push_back(ReadGuide(folder, guide, source.faults));
    rows += source.guides.back().formulas.size();
  }
  const fs::path info = TextOf(folder, kTemplateInfoTable);
  if (!fs::exists(info, error)) {
    source.faults.push_back(info.filename().string() + ": is not there");
  } else if (auto read = ReadTemplateText(info, schema::Info, source.faults)) {
    CheckInfoRows(*read, source.faults);
    source.info = std::move(*read);
  }
  if (rows == 0 && source.faults.empty()) source.faults.push_back(folder.string() + ": holds no formulas of any guide");
  return source;
}

// ---- Writing the tables

std::vector<TemplateTable> WriteTables(Database& file, const TemplateSource& source) {
  std::vector<TemplateTable> tables;
  Transaction transaction(file);
  const auto write = [&](std::string_view name, const Table& shape, const Rows& rows) {
    file.CreateTable(name, shape);
    RowWriter writer(file, shape, std::string(name), FieldNames(shape));
    for (const TemplateRow& row : rows) {
      for (std::size_t i = 0; i < row.values.size(); ++i) writer.Set(i, row.values[i]);
      writer.Insert();
    }
    tables.push_back({std::string(name), static_cast<std::int64_t>(rows.size())});
  };
  for (std::size_t i = 0; i < kGuides.size(); ++i) {
    write(kGuides[i].basicTable, schema::Basic, source.guides[i].basics);
    write(kGuides[i].mixTable, schema::Mix, source.guides[i].formulas);
  }
  write(kTemplateInfoTable, schema::Info, source.info);
  transaction.Commit();
  return tables;
}

// ---- Checking a finished template

/// The rows of one table, those that a field cannot hold told; nothing when the table or a field is missing.
std::optional<Rows> ReadTable(Database& file, std::string_view table, const Table& shape,
                              std::vector<std::string>& faults) {
  if (!file.TableExists(table)) {
    faults.push_back(fmt::format("{}: the table is missing", table));
    return std::nullopt;
  }
  const auto missing = MissingFields(file, std::string(table), shape);
  for (const std::string& field : missing) faults.push_back(fmt::format("{}: the field {} is missing", table, field));
  if (!missing.empty()) return std::nullopt;

  std::string columns;
  for (const Field& field : shape.fields) columns += (columns.empty() ? "" : ", ") + Quoted(field.name);
  Rows rows;
  Statement read = file.Prepare(fmt::format("SELECT {} FROM {} ORDER BY RowKey", columns, Quoted(table)));
  while (read.Step()) {
    TemplateRow row{fmt::format("{}, row {}", table, rows.size() + 1), read.Text(0), {}, false};
    for (std::size_t i = 0; i < shape.fields.size(); ++i) {
      row.values.push_back(read.Get(static_cast<int>(i)));
      try {
        FittedValue(shape.fields[i], table, row.values.back());
      } catch (const BadValue& bad) {
        faults.push_back(TemplateFault(row, bad.what()));
        row.broken = true;
      }
    }
    if (row.values.front().IsNull() && !row.broken) {
      faults.push_back(TemplateFault(row, shape.fields.front().name + " is empty"));
      row.broken = true;
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

}  // namespace

const Guide* FindGuide(std::string_view code) {
  const auto* found = std::ranges::find_if(kGuides, [&](const Guide& guide) { return EqualNoCase(guide.code, code); });
  return found == kGuides.end() ? nullptr : found;
}

Result<std::vector<TemplateTable>> BuildTemplate(const fs::path& folder, const fs::path& out) {
  const TemplateSource source = ReadSource(folder);
  if (!source.faults.empty()) {
    std::string text = fmt::format("No template was made: {} has {} fault{}.", folder.string(), source.faults.size(),
                                   source.faults.size() == 1 ? "" : "s");
    for (const std::string& fault : source.faults) text += "\n" + fault;
    return Refuse("Guide Template", text);
  }
  FileBeside place(out, Readers::Everybody);
  std::vector<TemplateTable> tables =
      WorkBeside(place, [&] { return WriteTables(*Database::Create(place.Path()), source); });
  place.Replace();
  return tables;
}

TemplateReport CheckTemplate(const fs::path& path) {
  const auto file = Database::Open(path, OpenMode::ReadOnly);
  TemplateReport report;
  for (const std::string& fault : file->Faults()) report.faults.push_back("damaged: " + fault);
  if (!report.faults.empty()) return report;
  const auto count = [&](std::string_view name, const std::optional<Rows>& rows) {
    if (rows) report.tables.push_back({std::string(name), static_cast<std::int64_t>(rows->size())});
  };
  std::size_t formulasThere = 0;
  for (const Guide& guide : kGuides) {
    const auto basics = ReadTable(*file, guide.basicTable, schema::Basic, report.faults);
    const auto formulas = ReadTable(*file, guide.mixTable, schema::Mix, report.faults);
    count(guide.basicTable, basics);
    count(guide.mixTable, formulas);
    if (basics && formulas) CheckGuideRows(*basics, *formulas, report.faults);
    if (formulas) formulasThere += formulas->size();
  }
  const auto info = ReadTable(*file, kTemplateInfoTable, schema::Info, report.faults);
  count(kTemplateInfoTable, info);
  if (info) CheckInfoRows(*info, report.faults);
  if (formulasThere == 0 && report.faults.empty()) report.faults.emplace_back("no guide holds a formula");
  return report;
}

}  // namespace vellumark
