#include "core/backup/look_into.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "core/backup/other_file.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/open.h"
#include "core/batch/take_back.h"
#include "core/datafile/lifecycle.h"
#include "core/exchange/formula_sources.h"
#include "core/session/acts.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kTitle = "Take Back";

// The Batches of a file by their numbers, one after the other, with all of their fields.
class BatchWalk {
 public:
  BatchWalk(Database& file, const std::string& database) : rows_(file.Prepare(Sql(database))) { Next(); }

  bool Any() const { return any_; }
  std::int64_t Number() const { return rows_.Whole(0); }
  /// "PINK, 20.000, 2026-03-09 09:00:00"
  std::string Text() const {
    return fmt::format("{}, {}, {}", rows_.Text(1), Fixed(rows_.Single(2), 3), rows_.Text(3));
  }
  Value Get(std::size_t field) const { return rows_.Get(static_cast<int>(field) + kFirstField); }
  void Next() { any_ = rows_.Step(); }

 private:
  static constexpr int kFirstField = 4;
  static std::string Sql(const std::string& database) {
    std::string columns = "BatchNo, Color_Name, ActualQuantity, Date_Entered";
    for (const Field& field : schema::Batch.fields) columns += ", " + Quoted(field.name);
    return fmt::format("SELECT {} FROM {} ORDER BY BatchNo", columns, QuotedTable(database, schema::Batch));
  }

  Statement rows_;
  bool any_ = false;
};

// A Single as the shortest decimal that it is, not as the double which holds it.
std::string Told(std::size_t field, const Value& value) {
  const bool single = schema::Batch.fields[field].type == FieldType::Single && !value.IsNull() && !value.IsText();
  return single ? ShortestText(static_cast<float>(value.Number())) : value.Text();
}

std::vector<BatchDifference> Differences(const BatchWalk& here, const BatchWalk& there) {
  std::vector<BatchDifference> found;
  for (std::size_t i = 0; i < schema::Batch.fields.size(); ++i) {
    // A lot is found by another reference after a restore; its number tells which it is.
    if (schema::Batch.fields[i].name == "LotRefID") continue;
    const Value mine = here.Get(i);
    const Value theirs = there.Get(i);
    if (mine != theirs) found.push_back({schema::Batch.fields[i].name, Told(i, mine), Told(i, theirs)});
  }
  return found;
}

std::string DifferencesText(const std::vector<BatchDifference>& differences) {
  constexpr std::size_t kMost = 6;
  std::string text;
  for (std::size_t i = 0; i < differences.size() && i < kMost; ++i) {
    const auto shown = [](const std::string& value) { return value.empty() ? std::string("empty") : value; };
    text += fmt::format("{}{} {} here, {} there", i == 0 ? "" : "; ", differences[i].field, shown(differences[i].here),
                        shown(differences[i].there));
  }
  if (differences.size() > kMost) text += fmt::format("; and {} more", differences.size() - kMost);
  return text;
}

std::string RecipeText(Session& session, const MergePlan& plan, std::size_t place) {
  std::string text;
  for (const MergeLine& line : CompareLines(session, plan, place))
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", line.name, Fixed(line.there, 3));
  return text;
}

// Every Batch of the other file that is not as it is here.
void LookForBatches(Session& session, Database& other, std::vector<LookRow>& found) {
  BatchWalk here(session.File(), session.CurrentDatabase);
  for (BatchWalk there(other, session.CurrentDatabase); there.Any(); there.Next()) {
    while (here.Any() && here.Number() < there.Number()) here.Next();
    const std::string number = BatchNoText(static_cast<std::int32_t>(there.Number()));
    if (!here.Any() || here.Number() != there.Number()) {
      found.push_back({"Batch", number, std::string(MergeModText(MergeMod::New)), there.Text()});
    } else if (const auto differences = Differences(here, there); !differences.empty()) {
      found.push_back({"Batch", number, std::string(MergeModText(MergeMod::Different)), DifferencesText(differences)});
    }
  }
}

Result<MergePlan> PlanOf(Session& session, const fs::path& dataFile) {
  auto table = ReadDataFileFormulas(session, dataFile, session.CurrentDatabase);
  if (!table) return std::unexpected(table.error());
  MergeOptions options;
  options.unusedBasics = false;
  return PlanMerge(session, *std::move(table), {}, options);
}

// The other file with the Database of this name; it must be one that the rules of today can read.
Result<std::unique_ptr<Database>> OpenOther(const Session& session, const fs::path& dataFile) {
  const auto names = DatabasesOfFile(session, dataFile);
  if (!names) return std::unexpected(names.error());
  if (std::ranges::none_of(*names, [&](const std::string& name) { return EqualNoCase(name, session.CurrentDatabase); }))
    return Refuse(std::string(kTitle),
                  fmt::format("{} has no Database {}.", dataFile.string(), session.CurrentDatabase), "SET");
  return Database::Open(dataFile, OpenMode::ReadOnly);
}

bool HasFormulas(Database& file, const std::string& database) {
  return !file.Scalar("SELECT 1 FROM " + QuotedTable(database, schema::Mix) + " LIMIT 1").IsNull();
}

std::string BatchQuestion(const Session& session, const BatchBack& back) {
  const BatchRecord& batch = back.there;
  std::string text = fmt::format(
      "The Batch {} of {}, {} {} of {}, is not in this file.\n\nIt is stored as it was. What it "
      "took leaves stock now:",
      BatchNoText(batch.BatchNo), batch.work.Color_Name, Fixed(batch.work.ShownTotal, 3), UnitName(batch.work.UMF),
      batch.Date_Entered ? batch.Date_Entered->ToText() : "no day");
  for (const OldBatchLine& line : batch.OldLines)
    text += fmt::format("\n    {} {}", line.IngName, Fixed(line.IngQty, 3));
  if (batch.returned > 0)
    text += fmt::format("\n{} {} come into stock.", Fixed(batch.returned, 3), UnitName(batch.work.UMF));
  for (const BatchJobLine& job : batch.jobs)
    text += fmt::format("\nThe job {} used {}.", job.JobNumber, Fixed(job.QtyUsed, 3));
  return text + fmt::format("\n\nStore it in {}?", session.CurrentDatabase);
}

}  // namespace

const TableOf<LookRow>& LookColumns() {
  using L = LookRow;
  static const TableOf<L> columns = TableOf<L>()
                                        .Add("Kind", &L::Kind, "Kind")
                                        .Width(1100)
                                        .Add("Name", &L::Name, "Name")
                                        .Width(2900)
                                        .Add("ModType", &L::ModType, "State")
                                        .Width(1300)
                                        .Add("What", &L::What, "What it holds, or what is different")
                                        .Width(5100);
  return columns;
}

Result<std::vector<LookRow>> LookInto(Session& session, const fs::path& dataFile) {
  auto other = OpenOther(session, dataFile);
  if (!other) return std::unexpected(other.error());
  std::vector<LookRow> found;
  if (HasFormulas(**other, session.CurrentDatabase)) {
    const auto plan = PlanOf(session, dataFile);
    if (!plan) return std::unexpected(plan.error());
    for (std::size_t n = 0; n < plan->choices.size(); ++n)
      if (const MergeMod mod = plan->choices[n].mod; mod != MergeMod::Same)
        found.push_back({"Formula", plan->table.formulas[n].name, std::string(MergeModText(mod)),
                         mod == MergeMod::New ? RecipeText(session, *plan, n) : ChangesText(session, *plan, n)});
    std::ranges::sort(found, {}, &LookRow::Name);
  }
  LookForBatches(session, **other, found);
  return found;
}

Result<FormulaBack> CompareFormula(Session& session, const fs::path& dataFile, const std::string& name) {
  if (auto other = OpenOther(session, dataFile); !other) return std::unexpected(other.error());
  auto plan = PlanOf(session, dataFile);
  if (!plan) return std::unexpected(plan.error());
  if (auto chosen = Choose(*plan, TakeWhat::All, {name}); !chosen) return std::unexpected(chosen.error());
  const auto place =
      std::ranges::find_if(plan->table.formulas, [&](const auto& formula) { return EqualNoCase(formula.name, name); });
  const auto taken = std::ranges::find_if(plan->choices, [](const MergeChoice& choice) { return choice.take; });
  const std::size_t n = taken != plan->choices.end() ? static_cast<std::size_t>(taken - plan->choices.begin())
                                                     : static_cast<std::size_t>(place - plan->table.formulas.begin());
  if (n >= plan->choices.size())
    return Refuse(std::string(kTitle), fmt::format("There is no formula {} in it.", name), "NAME");
  return FormulaBack{*std::move(plan), n};
}

Result<MergeReport> TakeFormulaBack(Session& session, const FormulaBack& back) {
  if (auto allowed = RequireAct(session, Act::ImportFormulas); !allowed) return std::unexpected(allowed.error());
  const std::string& name = back.plan.table.formulas[back.place].name;
  const std::string changes = ChangesText(session, back.plan, back.place);
  switch (back.Mod()) {
    case MergeMod::Same:
      return Refuse(std::string(kTitle), fmt::format("{} is here as it is in the backup.", name), "NAME");
    case MergeMod::Refused:
      return Refuse(std::string(kTitle), fmt::format("{} cannot be taken: {}", name, changes), "NAME");
    case MergeMod::New:
      if (session.prompt.Ask(std::string(kTitle),
                             fmt::format("{} is not in {}.\n\nTake it from the backup?", name, session.CurrentDatabase),
                             Answer::No))
        break;
      return Decline(std::string(kTitle));
    case MergeMod::Different:
      if (session.prompt.Ask(
              std::string(kTitle),
              fmt::format("{} is here with another recipe. In the backup: {}\n\nReplace the recipe that is "
                          "here by that of the backup?",
                          name, changes),
              Answer::No))
        break;
      return Decline(std::string(kTitle));
  }
  return RunMerge(session, back.plan);
}

Result<BatchBack> CompareBatch(Session& session, const fs::path& dataFile, std::int32_t batchNo) {
  auto other = OpenOther(session, dataFile);
  if (!other) return std::unexpected(other.error());
  other->reset();
  std::optional<BatchRecord> there;
  {
    const InPlaceOfOpenFile opened(session, dataFile);
    there = ReadBatch(session, batchNo);
  }
  if (!there)
    return Refuse(std::string(kTitle),
                  fmt::format("There is no Batch {} in {}.", BatchNoText(batchNo), dataFile.string()), "NUMBER");
  BatchBack back{*std::move(there), MergeMod::New, {}};
  other = Database::Open(dataFile, OpenMode::ReadOnly);
  BatchWalk here(session.File(), session.CurrentDatabase);
  while (here.Any() && here.Number() < batchNo) here.Next();
  if (!here.Any() || here.Number() != batchNo) return back;
  BatchWalk theirs(**other, session.CurrentDatabase);
  while (theirs.Number() < batchNo) theirs.Next();
  back.differences = Differences(here, theirs);
  back.mod = back.differences.empty() ? MergeMod::Same : MergeMod::Different;
  return back;
}

Result<void> TakeBatchBack(Session& session, const BatchBack& back) {
  if (auto allowed = RequireAct(session, Act::Work); !allowed) return allowed;
  const std::string number = BatchNoText(back.there.BatchNo);
  if (back.mod == MergeMod::Same)
    return Refuse(std::string(kTitle), fmt::format("The Batch {} is here as it is in the backup.", number), "NUMBER");
  if (back.mod == MergeMod::Different)
    return Refuse(std::string(kTitle),
                  fmt::format("A Batch {} is here already, and stays: {}.", number, DifferencesText(back.differences)),
                  "NUMBER");
  if (auto storable = CheckTakeBack(session, back.there); !storable) return storable;
  if (!session.prompt.Ask(std::string(kTitle), BatchQuestion(session, back), Answer::No))
    return Decline(std::string(kTitle));
  return StoreBatchAgain(session, back.there);
}

}  // namespace vellumark
