#include "core/upgrade/ladder.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/datafile/engine_work.h"

namespace vellumark {
namespace {

constexpr LadderBlock kBlocks[] = {
    {3, "Updating database for Batch Additions...", AddIngredientTypes},
    {4, "Updating database for Cost Model Type...", AddCostModels},
    {5, "Updating database for Job Records...", AddJobColorCodes},
    {6, "Updating database for Mix Colors and Batches...", WidenRecipes},
    {7, "Updating database for Basic Colors...", SortBasics},
    {8, "Checking Master Formula Formulas...", MendIngredientNames},
    {9, "Fixing Types...", FixTypes},
    {10, "Updating Batches...", AddUsernames},
    {11, "Updating Info Table...", AddLabelFields},
    {12, "Updating Batches...", AddActualQuantities},
    {13, "Updating Additive Info...", AddAdditiveFields},
    {14, "Updating ClickedIndex Info...", AddClickedIndexes},
    {15, "Updating Roundoff Info...", AddRoundoffs},
    {16, "Updating Template File...", AddTemplateNames},
    {17, "Updating PANTONE\u00AE Usage...", RespellGuideNames},
    {18, "Updating Ink Estimator Values", TellInkEstimates},
    {19, "Job Usage Report Values", TellReportKeys},
    {20, "Checking Job Numbers ...", RepairJobNumbers},
    {21, "Updating new PANTONE\u00AE Colors...", AddGuideColors2016},
    {22, "Updating datafile for Verison 5 compatability...", TakeVersionFive},
    {23, "Updating tables, all databases", OrderFields},
    {24, "Updating tables, adding Lotted Inventory dates", AddLotDates},
    {25, "Adding new Pantone Colors:", AddGuideColors2014},
    {26, "Updating Basic and Mix tables, all databases", OrderFields},
    {27, "Updating tables, all databases - currency conversion", ConvertCurrency},
    {28, "Job table.", AddQuantitiesIssued},
    {29, "Adding new table to datafile, updating Job table:", AddDispensersAndDates},
    {30, "Updating Dispenser table:", AddFileTypes},
    {31, "Updating datafile - Pantone book page row references ...", ReadBookPages},
    {32, "Adding new table to datafile:", AddDesigns},
    {33, "Adding new field to table:", AddDesignsOfJobs},
    {34, "Adding new field to table:", MarkComplete},
    {35, "Checking Dispenser Table State:", BringDispensersBack},
    {36, "Adding Photo Info to Designs Table:", AddPhotoSets},
    {37, "Creating New Lotted Inv Tables:", MakeLotTables},
    {38, "Removing Dispenser Items:", RemoveDispensers},
    {39, "Changing Dispenser Field:", ShortenFileTypes},
    {40, "New User Control.", AddExportRight},
};

std::string ColumnSql(std::string_view column) {
  return "Src." + Quoted(column);
}

// The column, quoted, of a field that is nothing but one; empty for what is worked out.
std::string PlainColumn(const std::string& sql) {
  if (!sql.starts_with("Src.\"")) return {};
  const std::size_t end = sql.find('"', 5);
  return end == sql.size() - 1 ? sql.substr(4) : std::string();
}

}  // namespace

std::span<const LadderBlock> LadderBlocks() {
  return kBlocks;
}

void ClimbLadder(UpgradeRun& run, int version) {
  for (const LadderBlock& block : kBlocks) {
    if (version >= block.below) continue;
    run.Doing(fmt::format("Couldn't bring the data file up to version {}", block.below));
    run.StartStep(std::string(block.status));
    run.Show(std::string(block.status));
    Transaction transaction(run.file);
    block.run(run);
    transaction.Commit();
  }
}

std::string SqlText(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') quoted += '\'';
    quoted += c;
  }
  return quoted + "'";
}

std::string NameKey(std::string_view name) {
  return Upper(TrimView(name));
}

UpgradeRun::UpgradeRun(Session& sessionOfRun, Database& work, UpgradeReport& report)
    : session(sessionOfRun), file(work), report_(report) {
  for (const std::string& name : file.TableNames()) {
    if (StartsWithNoCase(name, "MSys")) continue;
    LadderTable table{name, {}, file.Scalar("SELECT COUNT(*) FROM " + Quoted(name)).Whole(), false};
    for (const std::string& field : file.StoredFields(name)) table.fields.push_back({field, ColumnSql(field)});
    tables_.emplace(Upper(name), std::move(table));
  }
}

void UpgradeRun::Show(std::string status, std::string_view component) {
  if (!component.empty()) status.append("\n").append(component);
  session.progress.Begin(status);
  session.progress.Percent(100.0 * static_cast<double>(std::min<std::size_t>(done_++, 40)) / 100.0);
}

void UpgradeRun::ForEachDatabase(const std::function<void(const std::string& database)>& take) {
  const std::string status = step_;
  for (const std::string& database : databases) {
    Show(status, "Database: " + database);
    take(database);
  }
}

const LadderTable* UpgradeRun::Find(std::string_view table) const {
  const auto found = tables_.find(Upper(table));
  return found == tables_.end() ? nullptr : &found->second;
}
LadderTable* UpgradeRun::Entry(std::string_view table) {
  const auto found = tables_.find(Upper(table));
  return found == tables_.end() ? nullptr : &found->second;
}

namespace {

auto FieldOf(auto& table, std::string_view field) {
  return std::ranges::find_if(table.fields, [&](const LadderField& one) { return EqualNoCase(one.name, field); });
}

}  // namespace

bool UpgradeRun::Has(std::string_view table, std::string_view field) const {
  const LadderTable* found = Find(table);
  return found != nullptr && FieldOf(*found, field) != found->fields.end();
}

std::int64_t UpgradeRun::Rows(std::string_view table) {
  const LadderTable* found = Find(table);
  return found == nullptr ? 0 : file.Scalar("SELECT COUNT(*) FROM " + Quoted(found->name)).Whole();
}

std::string UpgradeRun::Sql(std::string_view table, std::string_view field) const {
  const LadderTable* found = Find(table);
  if (found == nullptr) return "NULL";
  const auto place = FieldOf(*found, field);
  return place == found->fields.end() ? "NULL" : place->sql;
}

std::string UpgradeRun::From(std::string_view table) const {
  const LadderTable* found = Find(table);
  return Quoted(found == nullptr ? table : std::string_view(found->name)) + " AS Src";
}

int UpgradeRun::First(std::string_view table, std::string_view word) const {
  return Has(table, schema::Numbered(word, 0)) ? 0 : 1;
}

int UpgradeRun::Count(std::string_view table, std::string_view word) const {
  const int first = First(table, word);
  int count = 0;
  while (Has(table, schema::Numbered(word, first + count))) ++count;
  return count;
}

void UpgradeRun::Add(std::string_view table, std::string_view field, std::string sql) {
  LadderTable* found = Entry(table);
  if (found == nullptr || Has(table, field)) return;
  found->fields.push_back({std::string(field), std::move(sql)});
}

void UpgradeRun::AddFamily(std::string_view table, std::string_view word, int first, int count, const std::string& sql) {
  for (int n = first; n < first + count; ++n) Add(table, schema::Numbered(word, n), sql);
}

void UpgradeRun::Rename(std::string_view table, std::string_view from, std::string_view to) {
  LadderTable* found = Entry(table);
  if (found == nullptr || Has(table, to)) return;
  if (const auto place = FieldOf(*found, from); place != found->fields.end()) place->name = to;
}

void UpgradeRun::Remove(std::string_view table, std::string_view field) {
  LadderTable* found = Entry(table);
  if (found == nullptr) return;
  if (const auto place = FieldOf(*found, field); place != found->fields.end()) found->fields.erase(place);
}

void UpgradeRun::RemoveFamily(std::string_view table, std::string_view word) {
  const int first = First(table, word);
  for (int n = first + Count(table, word) - 1; n >= first; --n) Remove(table, schema::Numbered(word, n));
}

std::string UpgradeRun::Own(std::string_view table, std::string_view field, FieldType type) {
  LadderTable* found = Entry(table);
  const auto place = FieldOf(*found, field);
  if (std::string column = PlainColumn(place->sql); !column.empty()) return column;
  const std::string column = fmt::format("Own {}", ++ownColumns_);
  AddColumn(file, found->name, column, type);
  if (place->sql != "NULL")
    file.Prepare(fmt::format("UPDATE {} SET {} = {}", From(table), Quoted(column), place->sql)).Run();
  place->sql = ColumnSql(column);
  return Quoted(column);
}

void UpgradeRun::MakeTable(const std::string& name, const std::vector<Field>& fields) {
  if (Has(name)) return;
  file.CreateTable(name, {name, fields, {}});
  LadderTable table{name, {}, 0, true};
  for (const Field& field : fields) table.fields.push_back({field.name, ColumnSql(field.name)});
  tables_.emplace(Upper(name), std::move(table));
}

void UpgradeRun::Index(std::string_view table, std::string_view field) {
  const LadderTable* found = Find(table);
  if (found == nullptr) return;
  const auto place = FieldOf(*found, field);
  if (place == found->fields.end()) return;
  const std::string column = PlainColumn(place->sql);
  if (column.empty()) return;
  const std::string bare = column.substr(1, column.size() - 2);
  file.EnsureIndex(found->name, found->name + "_" + bare + "_Index", {bare});
}

void UpgradeRun::Changed(std::string_view table, std::string what, std::int64_t count) {
  if (count > 0) report_.changes.push_back({step_, std::string(table), count, std::move(what)});
}
void UpgradeRun::Renamed(std::string_view table, std::string what, std::int64_t count) {
  report_.names.push_back({step_, std::string(table), count, std::move(what)});
}
void UpgradeRun::Refused(std::string_view table, std::string what, std::int64_t count) {
  report_.refused.push_back({step_, std::string(table), count, std::move(what)});
}
void UpgradeRun::ToLookAt(std::string_view table, std::string what, std::int64_t count) {
  report_.left.push_back({step_, std::string(table), count, std::move(what)});
}
void UpgradeRun::LeftOut(std::string_view table, std::string what, std::int64_t count) {
  if (count == 0) return;
  leftRows_[Upper(table)] += count;
  Changed(table, std::move(what), count);
}
std::int64_t UpgradeRun::LeftRows(std::string_view table) const {
  const auto found = leftRows_.find(Upper(table));
  return found == leftRows_.end() ? 0 : found->second;
}

}  // namespace vellumark
