#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/schema.h"
#include "core/session/session.h"
#include "core/upgrade/upgrade_report.h"

namespace vellumark {

/// A field of a table as the ladder has it by now: what a row `Src` of the work file gives for it, a column, a constant,
/// or what follows from other columns. So a field of two hundred thousand rows comes, goes or gets another name without
/// a row being written; all of it is written once, at the end, in the order of the layout.
struct LadderField {
  std::string name;
  std::string sql;
};

struct LadderTable {
  std::string name;  ///< as the work file spells it
  std::vector<LadderField> fields;
  std::int64_t read = 0;  ///< rows at the start
  bool made = false;      ///< by a block
};

/// One run of the ladder on a work file.
class UpgradeRun {
 public:
  UpgradeRun(Session& sessionOfRun, Database& work, UpgradeReport& report);

  Session& session;
  Database& file;
  std::vector<std::string> databases;
  bool stockHoldsLots = false;  ///< `Inventory` of a colour counts what lies in its lots too

  // What goes on.
  void Show(std::string status, std::string_view component = {});
  /// What a failure from here on means, in words.
  void Doing(std::string failure) { failure_ = std::move(failure); }
  const std::string& Failure() const { return failure_; }
  void ForEachDatabase(const std::function<void(const std::string& database)>& take);

  // What there is.
  bool Has(std::string_view table) const { return Find(table) != nullptr; }
  bool Has(std::string_view table, std::string_view field) const;
  const LadderTable* Find(std::string_view table) const;
  const std::map<std::string, LadderTable>& Tables() const { return tables_; }
  std::int64_t Rows(std::string_view table);
  /// What a row gives for a field; NULL where the table has none.
  std::string Sql(std::string_view table, std::string_view field) const;
  /// "INK_Batch" AS Src, for FROM and UPDATE.
  std::string From(std::string_view table) const;
  /// The number with which the fields of a family begin, 0 or 1, and how many there are.
  int First(std::string_view table, std::string_view word) const;
  int Count(std::string_view table, std::string_view word) const;

  // What changes. A table or field that is not there is passed over, one that is there already stays.
  void Add(std::string_view table, std::string_view field, std::string sql);
  void AddFamily(std::string_view table, std::string_view word, int first, int count, const std::string& sql);
  void Rename(std::string_view table, std::string_view from, std::string_view to);
  void Remove(std::string_view table, std::string_view field);
  void RemoveFamily(std::string_view table, std::string_view word);
  /// The column of a field, made and filled where it has none of its own, so that single rows can be changed.
  std::string Own(std::string_view table, std::string_view field, FieldType type);
  void MakeTable(const std::string& name, const std::vector<Field>& fields);
  void Index(std::string_view table, std::string_view field);

  // What the report tells.
  void Changed(std::string_view table, std::string what, std::int64_t count = 1);
  void Renamed(std::string_view table, std::string what, std::int64_t count = 1);
  void Refused(std::string_view table, std::string what, std::int64_t count = 1);
  void ToLookAt(std::string_view table, std::string what, std::int64_t count = 1);
  /// Rows of a table that do not come in as such.
  void LeftOut(std::string_view table, std::string what, std::int64_t count);
  void StartStep(std::string step) { step_ = std::move(step); }
  std::int64_t LeftRows(std::string_view table) const;

 private:
  LadderTable* Entry(std::string_view table);

  UpgradeReport& report_;
  std::map<std::string, LadderTable> tables_;  // by their names in capitals
  std::map<std::string, std::int64_t> leftRows_;
  std::string step_;
  std::string failure_;
  int ownColumns_ = 0;
  std::size_t done_ = 0;
};

/// A block of the ladder: what makes a file of version `below` minus 1 one of `below`.
struct LadderBlock {
  int below = 0;
  std::string_view status;
  void (*run)(UpgradeRun&) = nullptr;
};
std::span<const LadderBlock> LadderBlocks();
/// Runs those that a file of this version has before it.
void ClimbLadder(UpgradeRun& run, int version);

/// A text in a statement.
std::string SqlText(std::string_view text);
/// The table of a Database, by the end of its name.
inline std::string TableOfDatabase(std::string_view database, std::string_view suffix) {
  return std::string(database).append(suffix);
}
/// Names compare as the file compares them.
std::string NameKey(std::string_view name);

// The blocks, one group for each subject.
void AddIngredientTypes(UpgradeRun& run);
void AddCostModels(UpgradeRun& run);
void WidenRecipes(UpgradeRun& run);
void SortBasics(UpgradeRun& run);
void MendIngredientNames(UpgradeRun& run);
void FixTypes(UpgradeRun& run);
void AddUsernames(UpgradeRun& run);
void AddActualQuantities(UpgradeRun& run);
void AddClickedIndexes(UpgradeRun& run);
void AddRoundoffs(UpgradeRun& run);
void MarkComplete(UpgradeRun& run);

void AddLabelFields(UpgradeRun& run);
void AddAdditiveFields(UpgradeRun& run);
void AddTemplateNames(UpgradeRun& run);
void RespellGuideNames(UpgradeRun& run);
void AddGuideColors2016(UpgradeRun& run);
void AddGuideColors2014(UpgradeRun& run);
void ReadBookPages(UpgradeRun& run);
void CompleteInfo(UpgradeRun& run);
void NameTheGuide(UpgradeRun& run, const std::string& database);

void AddJobColorCodes(UpgradeRun& run);
void RepairJobNumbers(UpgradeRun& run);
void AddQuantitiesIssued(UpgradeRun& run);
void AddDispensersAndDates(UpgradeRun& run);
void AddFileTypes(UpgradeRun& run);
void AddDesigns(UpgradeRun& run);
void AddDesignsOfJobs(UpgradeRun& run);
void BringDispensersBack(UpgradeRun& run);
void AddPhotoSets(UpgradeRun& run);
void RemoveDispensers(UpgradeRun& run);
void ShortenFileTypes(UpgradeRun& run);

void TellInkEstimates(UpgradeRun& run);
void TellReportKeys(UpgradeRun& run);
void OrderFields(UpgradeRun& run);
void TakeVersionFive(UpgradeRun& run);
void ConvertCurrency(UpgradeRun& run);
void AddExportRight(UpgradeRun& run);

void AddLotDates(UpgradeRun& run);
void MakeLotTables(UpgradeRun& run);
/// The consumption table of a file that has none, of the lines of its Batches.
void MakeConsumption(UpgradeRun& run, const std::string& database);

}  // namespace vellumark
