#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/backup/repair.h"
#include "core/base/text.h"
#include "core/datafile/color_kind.h"
#include "core/datafile/mend_fields.h"
#include "core/datafile/schema.h"
#include "core/datafile/stock_balance.h"
#include "core/datafile/stock_history.h"

namespace vellumark {

/// One run of the repair, as its steps see it: a copy of the Data File is the session's file.
class RepairRun {
 public:
  explicit RepairRun(Session& sessionOfRun, RepairReport& report)
      : session(sessionOfRun), file(sessionOfRun.File()), report_(report) {}

  Session& session;
  Database& file;

  /// Runs all steps, or those that are wanted. One that fails is tried once more; one that fails again is told, and the
  /// others go on.
  void Run(const std::function<bool(const RepairStep&)>& wanted = {});
  bool Failed() const { return failed_; }

  const std::vector<std::string>& Databases() const { return session.databaseList; }
  void ForEachKind(const std::function<void(const std::string& database, ColorKind kind)>& take) const;

  // What the step that runs did. It is in the report once the step is through.
  void Changed(std::string_view table, std::string what, std::int64_t count = 1);
  void Left(std::string_view table, std::string what, std::int64_t count = 1);
  void Lost(std::string_view table, std::string what, std::int64_t count = 1);
  void EmptyDatabase(const std::string& name) { pending_.emptyDatabases.push_back(name); }
  void Mended(std::string_view table, const std::vector<MendedField>& fields);
  /// The text of the wait window for what comes next.
  void Show(std::string_view text);

  /// What the stock history told before any step changed it; nothing where there is none.
  std::optional<double> HistoryOf(std::string_view database, ColorKind kind, std::string_view name, std::int32_t ref);
  /// "03-10-2026-09-05-00-RepairName", of the next second when a name of this one was given.
  std::string MadeUpName();
  DateTime Today() const { return session.clock.Today(); }

  /// Photos that no Design names, to be moved when the repaired file has its place.
  std::vector<std::filesystem::path> photosToMove;

 private:
  void RunStep(const RepairStep& step);

  RepairReport& report_;
  RepairReport pending_;  // of the step that runs
  double done_ = 0;       // percent
  const RepairStep* step_ = nullptr;
  bool failed_ = false;
  std::unique_ptr<StockBalance> balance_;
  std::optional<DateTime> lastMadeUp_;
};

/// A name in capitals, as sets of names compare.
inline std::string Key(std::string_view name) {
  return Upper(name);
}
/// The values of a column in capitals.
std::unordered_set<std::string> NamesOfColumn(Database& file, const std::string& table, std::string_view column);
/// The first of these names that is free.
std::string FreeName(std::unordered_set<std::string>& taken, const std::function<std::string(int number)>& name);
/// Rows without a name get one from the time.
void NameRows(RepairRun& run, const std::string& name, const Table& table, std::string_view field);
/// Rows of a name that an earlier one has get another: the first free one of those that `made` gives.
void RenameRepeated(RepairRun& run, const std::string& name, const Table& table, std::string_view field,
                    const std::function<std::string(const std::string& old, int number)>& made);
/// Adds a colour with zero figures: of the guide where it applies, at the end of the weighing order.
void MakeColor(RepairRun& run, const std::string& database, ColorKind kind, const std::string& name,
               bool additive = false);

// The steps, one group for each subject.
void RebuildDatabaseList(RepairRun& run);
void DropStrayTables(RepairRun& run);
void CompleteTables(RepairRun& run);
void MendValues(RepairRun& run);
void MendNumbers(RepairRun& run);
void FindEmptyDatabases(RepairRun& run);
void FindWhatIsLeft(RepairRun& run);

void TrimNames(RepairRun& run);
void RebuildFormulas(RepairRun& run);
void RebuildAdditiveSets(RepairRun& run);
void AddMissingIngredients(RepairRun& run);
void RenameDuplicateBasics(RepairRun& run);
void RenameDuplicateFormulas(RepairRun& run);
void MendAdditiveNames(RepairRun& run);
void SortIngredients(RepairRun& run);
void MendFormulaSets(RepairRun& run);
void ReadGuidesAgain(RepairRun& run);

void FillColorTables(RepairRun& run);
void FillDesigns(RepairRun& run);
void FillJobs(RepairRun& run);
void FillMeasurements(RepairRun& run);
void MendUserTable(RepairRun& run);
void DropNamelessDispensers(RepairRun& run);

void MendInventory(RepairRun& run);
void MendLots(RepairRun& run);
void AddColorsOfLots(RepairRun& run);
void MendBatches(RepairRun& run);
void MendStockHistory(RepairRun& run);

void MendDesigns(RepairRun& run);
void MendDesignColors(RepairRun& run);
void MendPhotos(RepairRun& run);

}  // namespace vellumark
