#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/backup/deep_check.h"
#include "core/base/progress_run.h"
#include "core/colors/formulas.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/schema.h"

namespace vellumark {

/// One run of the check, as the rules see it.
class CheckRun {
 public:
  CheckRun(Session& session, CheckDepth depth, CheckState state);

  /// All rules of the depth, or those of them that are wanted.
  CheckAnswer Run(const std::function<bool(const CheckRule&)>& wanted = {});

  Session& session;
  Database& file;
  FileInfoRow info;

  /// The Databases whose tables are all there.
  const std::vector<std::string>& Databases() const { return databases_; }
  /// Whether global tables are all there.
  bool HasGlobalTables() const { return hasGlobalTables_; }
  void SetUsable(std::vector<std::string> databases, bool hasGlobalTables);

  /// Every row of a table was read.
  void Read(const ReadTable& table) { answer_.tables.push_back(table); }
  /// The rule that runs found this. `row` is 0 for a whole table.
  void Found(std::string_view table, std::int64_t row, std::string_view name, std::string what);
  /// Each row of a query whose first two columns are the row number and the row's name as a fault of that table.
  void FoundRows(const std::string& table, Statement& rows, const std::function<std::string(const Statement&)>& what);

  /// Shows that `done` of `all` rows are read; false when the operator asked to stop.
  bool GoOn(std::int64_t done, std::int64_t all);
  bool Stopped() const { return stopped_; }

 private:
  // What a rule found, of which the first are kept.
  struct Findings {
    const CheckRule* rule = nullptr;
    std::vector<CheckFault> faults{};
    std::size_t all = 0;
  };
  // Rules that run in a thread of their own meanwhile, on another connection.
  struct Beside {
    std::vector<const CheckRule*> rules;
    std::future<CheckAnswer> answer;
  };

  void RunRule(const CheckRule& rule);
  void RunRules(const std::vector<const CheckRule*>& rules);
  void RunLooks(const std::vector<const CheckRule*>& rules);
  void RunValues(const CheckRule& fields, const CheckRule& rows);
  void LookAtFormulas(std::span<Findings> findings);
  bool MayFail();
  void Take(Findings& findings);
  void BeginBeside(const std::vector<const CheckRule*>& rules);
  bool IsBeside(const CheckRule& rule) const;
  void EndBeside();

  CheckDepth depth_;
  CheckState state_;
  std::vector<std::string> databases_;
  bool hasGlobalTables_ = false;
  Findings* findings_ = nullptr;  // of the rule that runs
  CheckAnswer answer_;
  std::atomic<bool> stopped_ = false;
  bool alone_ = false;  // runs no rules beside
  std::vector<const CheckRule*> given_;  // to run beside, whether they have ended or not
  std::vector<Beside> beside_;  // the first to go: it reads stopped_
  std::size_t place_ = 0;  // among the rules
};

/// A formula while all are walked. The texts are valid until the next.
struct CheckedFormula {
  /// The ingredients down to the first empty slot, with their amounts as they are shown.
  const Recipe& Filled() const;

  std::int64_t row = 0;
  std::string_view Color_Name;
  std::string_view Color_Set;
  std::string_view AddSetName;
  float BasicCost = 0;
  float BasicVOC = 0;
  float BasicHAP = 0;
  std::array<std::string_view, schema::kIngredientSlots> BC{};
  std::array<float, schema::kIngredientSlots> BQ{};
  mutable Recipe filled{};
};
using FormulaLook = std::function<void(const CheckedFormula&)>;
void ForEachCheckedFormula(CheckRun& run, const std::string& database,
                           const std::function<void(const CheckedFormula&)>& take);

/// Walks the rows of a query with the progress of the rule; `all` is how many there are about.
void WalkRows(CheckRun& run, Statement& rows, std::int64_t all, const std::function<void(const Statement&)>& take);
std::int64_t RowCount(Database& file, const std::string& table);

/// Half of the last decimal in which stock is kept: figures that are nearer to each other are the same.
inline constexpr double kSameStock = 0.0005;

/// A quantity as a message shows it: three decimals at least.
std::string FigureText(double quantity);

// The rules, one group for each subject.
void CheckParts(CheckRun& run);
void CheckFileInfo(CheckRun& run);
void CheckDatabaseList(CheckRun& run);
void CheckCounters(CheckRun& run);
void CheckMarkers(CheckRun& run);
void CheckStructure(CheckRun& run);
void CheckRows(CheckRun& run);
void CheckFields(CheckRun& run);
/// The two rules above in one walk through a file that has digests of its rows; what is found within `asFields` is the
/// fields'.
void CheckFieldsWithRows(CheckRun& run, const std::function<void(const std::function<void()>&)>& asFields);
void CheckUniqueNames(CheckRun& run);
void CheckUsers(CheckRun& run);

FormulaLook LookAtFormulaSlots(CheckRun& run, const std::string& database);
FormulaLook LookAtIngredients(CheckRun& run, const std::string& database);
FormulaLook LookAtColorSets(CheckRun& run, const std::string& database);
FormulaLook LookAtFormulaTotals(CheckRun& run, const std::string& database);
FormulaLook LookAtRollUps(CheckRun& run, const std::string& database);
void CheckAdditiveSets(CheckRun& run);
void CheckFormulaSets(CheckRun& run);
void CheckDesignSets(CheckRun& run);
void CheckDesignPhotos(CheckRun& run);
void CheckDesignColors(CheckRun& run);
void CheckDesignUses(CheckRun& run);

void CheckLotColors(CheckRun& run);
void CheckLotReferences(CheckRun& run);
void CheckQuantities(CheckRun& run);
void CheckStockHistory(CheckRun& run);

void CheckBatchLines(CheckRun& run);
void CheckBatchLots(CheckRun& run);
void CheckScaleResults(CheckRun& run);
void CheckJobBatches(CheckRun& run);
void CheckJobItems(CheckRun& run);

}  // namespace vellumark
