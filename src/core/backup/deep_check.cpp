#include "core/backup/deep_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <future>
#include <iterator>
#include <optional>
#include <utility>

#include "core/backup/check_run.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/formulas.h"
#include "core/colors/rollup.h"
#include "core/datafile/engine_salvage.h"
#include "core/datafile/mend_fields.h"
#include "core/datafile/row_checks.h"
#include "core/session/acts.h"

namespace vellumark {
namespace {

// How many rows are read between two looks at the progress.
constexpr std::int64_t kStride = 1024;

constexpr CheckRule kRules[] = {
    {"Structure", "The engine finds the structure of the file whole.", CheckDepth::Short, false, CheckStructure},
    {"Parts", "Every table and field of the layout is there.", CheckDepth::Opening, false, CheckParts},
    {"FileInfo", "FileInfo has one row, of a version that this program knows.", CheckDepth::Opening, false, CheckFileInfo},
    {"DatabaseList", "DBList names each Database once, and every table belongs to one that is listed.", CheckDepth::Opening, false,
     CheckDatabaseList},
    {"Counters", "The numbers that FileInfo hands out next are ahead of those in use.", CheckDepth::Opening, false, CheckCounters},
    {"Markers", "No mark of an open Batch, of a pending pass or of an unfinished archive stands in a closed file.", CheckDepth::Opening, true, CheckMarkers},
    {"Users", "Where there are users, one of them is an administrator.", CheckDepth::Opening, false, CheckUsers},
    {"Fields", "Every value fits its field: width, range, kind, and no figure that is not finite.", CheckDepth::Deep, false,
     CheckFields},
    {"Rows", "Every row is as this program wrote it.", CheckDepth::Deep, false, CheckRows},
    {"UniqueNames",
     "Every row that has a name to be found by has its own, which can be typed, and no name stands twice.",
     CheckDepth::Deep, false, CheckUniqueNames},
    {"FormulaSlots", "Filled slots of a formula come first, none of them twice, with amounts of 0 or more.", CheckDepth::Deep, false, nullptr, LookAtFormulaSlots},
    {"Ingredients", "Every ingredient of a formula is a Basic Color of its Database.", CheckDepth::Deep, false, nullptr, LookAtIngredients},
    {"ColorSets", "Color_Set names the ingredients in their order.", CheckDepth::Deep, false, nullptr, LookAtColorSets},
    {"FormulaTotals",
     "A formula with ingredients totals 100.000; one that came out of a merge may total as much more as its Additive "
     "Set holds.",
     CheckDepth::Deep, false, nullptr, LookAtFormulaTotals},
    {"RollUps", "Costs and emissions of a formula are those of its ingredients.", CheckDepth::Deep, false, nullptr, LookAtRollUps},
    {"AdditiveSets", "An Additive Set holds Additives of its Database, each once, and SetList names them.", CheckDepth::Deep, false, CheckAdditiveSets},
    {"FormulaSets", "The Additive Set of a formula exists.", CheckDepth::Deep, false, CheckFormulaSets},
    {"DesignSets", "IngSet names the ingredients of a Design in their order.", CheckDepth::Deep, false, CheckDesignSets},
    {"DesignColors", "Filled slots of a Design come first, with quantities of 0 or more that cover 0 to 100 percent.", CheckDepth::Deep,
     false, CheckDesignColors},
    {"DesignPhotos", "PhotoSet names photos of the library, each once.", CheckDepth::Deep, false, CheckDesignPhotos},
    {"DesignUses", "A Design was last used when the latest of its Job Records was entered.", CheckDepth::Deep, false,
     CheckDesignUses},
    {"LotColors", "Every lot and measurement belongs to a color of its Database.", CheckDepth::Deep, false, CheckLotColors},
    {"LotReferences", "Lots have references from 1 to 999998, of which no color has one twice, and lot numbers.", CheckDepth::Deep, false, CheckLotReferences},
    {"Quantities", "No lot and no formula holds less than nothing, and no negative price stands in a lot.", CheckDepth::Deep, false, CheckQuantities},
    {"StockHistory", "The stock of every color and lot is the sum of its history.", CheckDepth::Deep, false, CheckStockHistory},
    {"BatchLines", "Filled lines of a Batch come first and are of a known kind.", CheckDepth::Deep, false, CheckBatchLines},
    {"BatchLots", "What was taken from stock belongs to a line of a Batch.", CheckDepth::Deep, false, CheckBatchLots},
    {"ScaleResults", "What was weighed belongs to a Batch, each color of a kind once.", CheckDepth::Deep, false, CheckScaleResults},
    {"JobBatches", "The Job Records of a Batch belong to one that exists, and it names its job.", CheckDepth::Deep, false,
     CheckJobBatches},
    {"JobItems", "An item of a Job bears its number, is of a known kind and used nothing below 0.", CheckDepth::Deep, false,
     CheckJobItems},
};

}  // namespace

std::span<const CheckRule> CheckRules() {
  return kRules;
}

CheckRun::CheckRun(Session& sessionOfRun, CheckDepth depth, CheckState state)
    : session(sessionOfRun), file(sessionOfRun.File()), info(ReadFileInfo(file)), depth_(depth), state_(state) {}

void CheckRun::SetUsable(std::vector<std::string> databases, bool hasGlobalTables) {
  databases_ = std::move(databases);
  hasGlobalTables_ = hasGlobalTables;
}

void CheckRun::Found(std::string_view table, std::int64_t row, std::string_view name, std::string what) {
  if (++findings_->all > kMostFaults) return;
  findings_->faults.push_back(
      {std::string(table), row, std::string(name), std::string(findings_->rule->name), std::move(what)});
}

void CheckRun::FoundRows(const std::string& table, Statement& rows,
                         const std::function<std::string(const Statement&)>& what) {
  while (rows.Step()) Found(table, rows.Whole(0), rows.TextView(1), what(rows));
}

bool CheckRun::GoOn(std::int64_t done, std::int64_t all) {
  if (stopped_) return false;
  if (done % kStride != 0) return true;
  const double part = all <= 0 ? 1.0 : std::min(1.0, static_cast<double>(done) / static_cast<double>(all));
  session.progress.Percent(100.0 * (static_cast<double>(place_) + part) / static_cast<double>(std::size(kRules)));
  stopped_ = session.progress.Cancelled();
  return !stopped_;
}

void CheckRun::Take(Findings& findings) {
  std::ranges::move(findings.faults, std::back_inserter(answer_.faults));
  if (findings.all > kMostFaults)
    answer_.faults.push_back(
        {"", 0, "", std::string(findings.rule->name), fmt::format("and {} more", findings.all - kMostFaults)});
  findings_ = nullptr;
}

// What cannot be read was named by a rule before; the others are checked when it is mended.
bool CheckRun::MayFail() {
  EndBeside();
  return std::ranges::any_of(
      answer_.faults, [](const CheckFault& fault) { return fault.rule == "Fields" || fault.rule == "Structure"; });
}

void CheckRun::RunRule(const CheckRule& rule) {
  Findings findings{&rule};
  findings_ = &findings;
  try {
    rule.look == nullptr ? rule.run(*this) : LookAtFormulas({&findings, 1});
  } catch (const Failure&) {
    if (!MayFail()) throw;
  }
  Take(findings);
}

void CheckRun::LookAtFormulas(std::span<Findings> findings) {
  for (const std::string& database : databases_) {
    std::vector<FormulaLook> looks;
    for (const Findings& one : findings) looks.push_back(one.rule->look(*this, database));
    ForEachCheckedFormula(*this, database, [&](const CheckedFormula& formula) {
      for (std::size_t i = 0; i < looks.size(); ++i) {
        findings_ = &findings[i];
        looks[i](formula);
      }
    });
  }
}

// In one walk. Where one of them meets what cannot be read, each for itself, so that the others go on.
void CheckRun::RunLooks(const std::vector<const CheckRule*>& rules) {
  std::vector<Findings> findings;
  for (const CheckRule* rule : rules) findings.push_back({rule});
  try {
    LookAtFormulas(findings);
  } catch (const Failure&) {
    for (const CheckRule* rule : rules) RunRule(*rule);
    return;
  }
  for (Findings& one : findings) Take(one);
}

// Where the walk meets what cannot be read, each of the two for itself, as above.
void CheckRun::RunValues(const CheckRule& fields, const CheckRule& rows) {
  Findings ofFields{&fields};
  Findings ofRows{&rows};
  const std::size_t read = answer_.tables.size();
  findings_ = &ofRows;
  try {
    CheckFieldsWithRows(*this, [&](const std::function<void()>& find) {
      findings_ = &ofFields;
      find();
      findings_ = &ofRows;
    });
  } catch (const Failure&) {
    answer_.tables.resize(read);
    RunRule(fields);
    RunRule(rows);
    return;
  }
  Take(ofFields);
  Take(ofRows);
}

namespace {

// Of rules that run beside: they stop when the run does that they belong to.
class Follower final : public Progress {
 public:
  explicit Follower(const std::atomic<bool>& stopped) : stopped_(stopped) {}
  void Begin(std::string_view) override {}
  void Percent(double) override {}
  bool Cancelled() override { return stopped_; }

 private:
  const std::atomic<bool>& stopped_;
};

}  // namespace

// A file that is open to be written lets nobody else in, not even its own program.
void CheckRun::BeginBeside(const std::vector<const CheckRule*>& rules) {
  if (alone_ || !file.IsReadOnly() || depth_ != CheckDepth::Deep) return;
  std::unique_ptr<Database> other;
  try {
    other = Database::Open(file.Path(), OpenMode::ReadOnly);
  } catch (const Failure&) {
    return;  // they run in their turn, which tells what is amiss
  }
  auto check = [this, rules, databases = databases_, global = hasGlobalTables_, other = std::move(other)]() mutable {
    Follower progress(stopped_);
    Session reader(session.prompt, progress, session.clock);
    reader.UMI = session.UMI;
    reader.UMF = session.UMF;
    reader.InvLotTracking = session.InvLotTracking;
    reader.DecimalPlaces = session.DecimalPlaces;
    reader.databaseList = session.databaseList;
    reader.DataFileDB = std::move(other);
    CheckRun run(reader, depth_, state_);
    run.alone_ = true;
    run.SetUsable(std::move(databases), global);
    run.RunRules(rules);
    run.answer_.complete = !run.stopped_;
    return std::move(run.answer_);
  };
  given_.insert(given_.end(), rules.begin(), rules.end());
  beside_.push_back({rules, std::async(std::launch::async, std::move(check))});
}

bool CheckRun::IsBeside(const CheckRule& rule) const {
  return std::ranges::find(given_, &rule) != given_.end();
}

void CheckRun::EndBeside() {
  std::vector<Beside> ended = std::exchange(beside_, {});
  std::vector<const CheckRule*> failed;
  for (Beside& beside : ended) {
    try {
      CheckAnswer answer = beside.answer.get();
      std::ranges::move(answer.faults, std::back_inserter(answer_.faults));
    } catch (const Failure&) {
      failed.insert(failed.end(), beside.rules.begin(), beside.rules.end());
    }
  }
  // What met something that cannot be read runs again in its turn, where the others tell whether it may.
  Findings* const before = findings_;
  for (const CheckRule* rule : failed) RunRule(*rule);
  findings_ = before;
}

// Rules that look at each formula share one walk.
void CheckRun::RunRules(const std::vector<const CheckRule*>& rules) {
  std::vector<const CheckRule*> looks;
  for (std::size_t i = 0; i < rules.size() && !stopped_; ++i) {
    place_ = static_cast<std::size_t>(rules[i] - kRules);
    if (!GoOn(0, 1)) break;
    // From here on it is known which tables can be read.
    if (rules[i]->run == CheckFields && !IsBeside(*rules[i])) {
      const bool together = i + 1 < rules.size() && rules[i + 1]->run == CheckRows && HasRowChecks(file);
      std::vector<const CheckRule*> beside;
      if (!together) beside.push_back(rules[i]);
      std::ranges::copy_if(rules, std::back_inserter(beside), [](const CheckRule* rule) { return rule->look != nullptr; });
      BeginBeside(beside);
      if (together) {
        RunValues(*rules[i], *rules[i + 1]);
        ++i;
        continue;
      }
    }
    if (IsBeside(*rules[i])) continue;
    if (rules[i]->look == nullptr) {
      RunRule(*rules[i]);
      continue;
    }
    looks.push_back(rules[i]);
    if (i + 1 < rules.size() && rules[i + 1]->look != nullptr) continue;
    RunLooks(std::exchange(looks, {}));
  }
}

CheckAnswer CheckRun::Run(const std::function<bool(const CheckRule&)>& wanted) {
  std::optional<ProgressRun> progress;  // what costs nothing shows nothing
  if (depth_ != CheckDepth::Opening) progress.emplace(session.progress, "Checking Data File ...");
  std::vector<const CheckRule*> rules;
  for (const CheckRule& rule : kRules)
    if (rule.depth <= depth_ && (!wanted || wanted(rule)) && !(state_ == CheckState::InUse && rule.closed))
      rules.push_back(&rule);
  if (!rules.empty() && rules.front()->run == CheckStructure) BeginBeside({rules.front()});
  RunRules(rules);
  EndBeside();
  std::ranges::stable_sort(answer_.faults, {}, [](const CheckFault& fault) {
    return std::ranges::find(kRules, fault.rule, &CheckRule::name) - std::begin(kRules);
  });
  answer_.complete = !stopped_;
  return std::move(answer_);
}

CheckAnswer CheckDataFileRules(Session& session, CheckDepth depth, CheckState state) {
  return CheckRun(session, depth, state).Run();
}

namespace {

// What is broken in a file beyond what a person would write with another tool.
const CheckFault* Damage(const std::vector<CheckFault>& faults) {
  const auto stray = [&](const CheckFault& fault) {
    return std::ranges::any_of(faults, [&](const CheckFault& other) {
      return other.rule == "Rows" && other.row == fault.row && EqualNoCase(other.Table, fault.Table);
    });
  };
  const auto found = std::ranges::find_if(faults, [&](const CheckFault& fault) {
    return fault.rule == "Structure" || (fault.rule == "Fields" && !stray(fault));
  });
  return found == faults.end() ? nullptr : &*found;
}

bool IsStray(const CheckFault& fault) {
  return fault.rule == "Rows";
}

// Figures as they are kept, and the search text of each recipe at once; the figures of formulas by the pass that is due
// from here on.
void AcceptAndFollow(Session& session, const std::vector<CheckFault>& rows) {
  Database& file = session.File();
  Transaction transaction(file);
  for (const CheckFault& row : rows)
    if (const Table* table = KnownLayout(row.Table); table != nullptr && row.row != 0)
      FitFigures(file, row.Table, *table, row.row);
  AcceptRows(file);
  for (const std::string& database : ReadFileInfo(file).dbList) {
    transaction.Note({Change::Kind::DatabaseList, database, "", Change::What::All, ""});
    bool stale = false;
    for (const CheckFault& row : rows) {
      const bool recipe = EqualNoCase(row.Table, TableName(database, schema::Mix));
      if (!recipe && !EqualNoCase(row.Table, TableName(database, schema::Basic))) continue;
      stale = true;
      if (recipe && row.row != 0) RenewColorSet(session, row.row, database);
    }
    if (stale) MarkPendingRollUps(file, database, kAllRollUps);
  }
  transaction.Commit();
}

}  // namespace

Result<AcceptedRows> AcceptStrayRows(Session& session) {
  if (auto allowed = RequireAct(session, Act::DataFiles); !allowed) return std::unexpected(allowed.error());
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  AcceptedRows accepted{{}, CheckDataFileRules(session, CheckDepth::Deep, CheckState::InUse)};
  const auto refuse = [](const std::string& what) {
    return Refuse("Data File", fmt::format("The file is damaged, and nothing was accepted: {}", what));
  };
  if (const CheckFault* damage = Damage(accepted.rest.faults)) return refuse(FaultText(*damage));
  std::ranges::copy_if(accepted.rest.faults, std::back_inserter(accepted.rows),
                       IsStray);
  if (!accepted.rest.complete) return Decline("Data File");
  if (accepted.rows.empty()) return accepted;
  try {
    AcceptAndFollow(session, accepted.rows);
  } catch (const BadValue& bad) {
    return refuse(bad.what());
  }
  RunPendingPasses(session);
  accepted.rest = CheckDataFileRules(session, CheckDepth::Deep, CheckState::InUse);
  return accepted;
}

bool HasRowsToAccept(const std::vector<CheckFault>& faults) {
  return std::ranges::any_of(faults, IsStray) && Damage(faults) == nullptr;
}

std::string FaultText(const CheckFault& fault) {
  std::string place = fault.Table;
  if (fault.row != 0) place += fmt::format(", row {}", fault.row);
  if (!fault.name.empty()) place += fmt::format(" ({})", fault.name);
  return fmt::format("{}{}{} [{}]", place, place.empty() ? "" : ": ", fault.what, fault.rule);
}

const TableOf<CheckFault>& FaultColumns() {
  using F = CheckFault;
  const auto row = [](const F& fault) { return fault.row == 0 ? std::string() : std::to_string(fault.row); };
  static const TableOf<F> columns = TableOf<F>()
                                        .Add("What", &F::what, "What is wrong")
                                        .Width(7200)
                                        .Add("Table", &F::Table, "Table")
                                        .Width(2400)
                                        .Add("Row", row, "Row")
                                        .Width(800)
                                        .Add("Name", &F::name, "Name")
                                        .Width(2000)
                                        .Add("Rule", &F::rule, "Rule")
                                        .Width(1500);
  return columns;
}

void WalkRows(CheckRun& run, Statement& rows, std::int64_t all, const std::function<void(const Statement&)>& take) {
  for (std::int64_t done = 1; rows.Step(); ++done) {
    take(rows);
    if (!run.GoOn(done, all)) return;
  }
}

std::int64_t RowCount(Database& file, const std::string& table) {
  return file.Scalar("SELECT COUNT(*) FROM " + Quoted(table)).Whole();
}

std::string FigureText(double quantity) {
  const double shown = RoundTo(quantity, 3);
  return shown == quantity ? Fixed(quantity, 3) : ShortestText(quantity);
}

}  // namespace vellumark
