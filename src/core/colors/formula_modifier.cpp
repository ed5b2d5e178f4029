#include "core/colors/formula_modifier.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

#include "core/base/counted.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/basics.h"
#include "core/colors/formula_tools.h"
#include "core/colors/rollup.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Database Formula Modifier";
constexpr int kMostIngredients = 14;
constexpr double kMostToAdd = 50;
constexpr double kWhole = 100;
constexpr double kLargestPercent = 99999;
constexpr std::int64_t kHundred = 100'000;  // 100.000 parts in thousandths
constexpr std::string_view kReducesToOne = "Formula uses additives, can't reduce formula to 1 ingredient";

// Amounts run in whole thousandths, where sums and halves are exact.
struct Slot {
  std::string name;
  std::int64_t amount = 0;
};
using Slots = std::vector<Slot>;

std::int64_t Thousandths(double amount) {
  return std::llround(amount * 1000);
}

std::int64_t Total(const Slots& slots) {
  std::int64_t total = 0;
  for (const Slot& slot : slots) total += slot.amount;
  return total;
}

// `share` times part over whole, a half away from zero; `whole` is above 0 and nothing is negative.
std::int64_t Portion(std::int64_t share, std::int64_t part, std::int64_t whole) {
  return (2 * share * part + whole) / (2 * whole);
}

void ApplyLine(Slots& slots, const FormulaModification& line) {
  const auto held =
      std::ranges::find_if(slots, [&](const Slot& slot) { return EqualNoCase(slot.name, line.ingredient); });
  if (held == slots.end()) {
    if (line.method == ModMethod::Add) slots.push_back({line.ingredient, Thousandths(line.percent)});
    return;
  }
  const bool up = line.method == ModMethod::Increase || line.method == ModMethod::Add;
  const double amount = static_cast<double>(held->amount) / 1000;
  held->amount = Thousandths(ChangedByPercent(amount, up ? line.percent : -line.percent));
}

// Each slot is measured against the first one, not against the largest so far. The total knows nothing of a set.
void CorrectResidue(Slots& slots) {
  if (slots.empty()) return;
  const std::int64_t total = Total(slots);
  std::size_t target = 0;
  for (std::size_t n = 0; n < slots.size(); ++n)
    if (slots[n].amount > slots[0].amount) target = n;
  slots[target].amount += kHundred - total;
}

// Brings the slots to what the set leaves of 100.
void ScaleBesideSet(Slots& slots, std::int64_t setTotal) {
  const std::int64_t total = Total(slots);
  if (total <= 0) return;
  for (Slot& slot : slots) slot.amount = Portion(kHundred - setTotal, slot.amount, total);
  if (Total(slots) + setTotal != kHundred) CorrectResidue(slots);
}

Recipe Modified(const Recipe& present, const AdditiveSet* set, const std::vector<FormulaModification>& lines) {
  Slots slots;
  for (const Ingredient& line : present) slots.push_back({line.name, Thousandths(line.amount)});
  for (const FormulaModification& line : lines) ApplyLine(slots, line);
  std::erase_if(slots, [](const Slot& slot) { return slot.amount == 0; });
  const Recipe ofSet = set == nullptr ? Recipe{} : set->Rows();
  std::erase_if(slots, [&](const Slot& slot) { return HoldsIngredient(ofSet, slot.name); });
  std::int64_t setTotal = 0;
  for (const Ingredient& row : ofSet) setTotal += Thousandths(row.amount);
  ScaleBesideSet(slots, setTotal);
  Recipe recipe;
  for (const Slot& slot : slots) recipe.push_back({slot.name, static_cast<double>(slot.amount) / 1000});
  recipe.insert(recipe.end(), ofSet.begin(), ofSet.end());
  return recipe;
}

// What the judgement of one formula carries from line to line.
struct Judgement {
  const Recipe& held;
  const Recipe& setRows;
  bool hasSet;
  int count;
  bool passes = true;
  bool skips = false;
};

// The reason of the line; empty for none.
std::string JudgeLine(Judgement& judgement, const FormulaModification& line) {
  const bool held = HoldsIngredient(judgement.held, line.ingredient);
  const bool ofSet = HoldsIngredient(judgement.setRows, line.ingredient);
  std::string reason;
  if (!held) reason = "No " + line.ingredient;
  if (ofSet) reason = line.ingredient + " - Add Set Ing.";
  const bool own = held && !ofSet;
  if (line.method == ModMethod::Add) {
    if (own) {
      judgement.skips = true;
      return "Contains " + line.ingredient;
    }
    if (judgement.count + 1 > kMostIngredients) {
      judgement.passes = false;
      return "Max Formula Ing exceeded. " + line.ingredient;
    }
    ++judgement.count;
    return reason;
  }
  if (!own) {
    judgement.passes = false;
    return reason;
  }
  if (line.method == ModMethod::Increase) return reason;
  if (line.percent == kWhole) --judgement.count;
  if ((!judgement.hasSet && judgement.count == 1) || judgement.count >= 2) return reason;
  judgement.passes = false;
  return std::string(kReducesToOne);
}

std::string FieldOf(std::string_view word, const FormulaModification& line) {
  return schema::Numbered(word, static_cast<int>(line.line));
}

// Lines whose percentages are right and may be zero.
Result<std::vector<FormulaModification>> ReadLines(const std::vector<ModifierLine>& lines) {
  std::vector<FormulaModification> chosen;
  for (std::size_t n = 0; n < lines.size(); ++n) {
    if (!lines[n].chosen) continue;
    const auto percent = ReadModifierPercent(lines[n], n);
    if (!percent) return std::unexpected(percent.error());
    chosen.push_back({lines[n].method, Upper(TrimView(lines[n].ingredient)), *percent, n});
  }
  return chosen;
}

Result<std::vector<std::int64_t>> RowsToModify(const Session& session, AdditiveSetsOnFile& sets,
                                               const std::vector<FormulaModification>& lines,
                                               const std::vector<std::string>& colors) {
  std::vector<std::int64_t> rows;
  RecipeReader reader(session);
  for (const std::string& color : DistinctNames(colors)) {
    const auto mix = reader.Read(color);
    if (!mix) return Refuse("Color Not Found", color + " is not found in this database.", "Color_Name");
    const ModifierPreviewRow row = JudgeModification(*mix, sets.Find(mix->AddSetName), lines);
    if (!row.modable) {
      std::string text = mix->Color_Name + ":";
      for (const std::string& reason : row.reasons) text += "\n" + reason;
      return Refuse(std::string(kTitle), std::move(text));
    }
    rows.push_back(mix->key);
  }
  return rows;
}

}  // namespace

Result<void> RequireFormulasToModify(const Session& session) {
  if (!session.File().Scalar("SELECT 1 FROM " + session.QuotedTable(schema::Mix) + " LIMIT 1").IsNull()) return {};
  return Refuse(std::string(kTitle), "There are no Master Formulas to modify.");
}

Result<double> ReadModifierPercent(const ModifierLine& line, std::size_t number) {
  const std::string field = schema::Numbered("txtPercent", static_cast<int>(number));
  const auto typed = ParseNumber(line.percent);
  const double percent = typed && std::abs(*typed) <= kLargestPercent ? RoundTo(*typed, 2) : -1;
  // More than all of an ingredient cannot be taken away, nor less than nothing added.
  if (percent < 0 || (line.method == ModMethod::Decrease && percent > kWhole))
    return Refuse("Invalid Percentage", "Enter a valid Percent", field);
  if (line.method == ModMethod::Remove && percent != kWhole)
    return Refuse("Mod Method Rule", "Removing a color requires a 100.00 value", field);
  if (line.method == ModMethod::Add && percent > kMostToAdd)
    return Refuse("Mod Method Rule", "Cannot exceed 50.00 when Adding a Basic", field);
  return percent;
}

Result<std::vector<FormulaModification>> CheckModifierLines(const Session& session,
                                                            const std::vector<ModifierLine>& lines,
                                                            const std::vector<std::string>& colors) {
  if (auto some = RequireFormulasToModify(session); !some) return std::unexpected(some.error());
  auto chosen = ReadLines(lines);
  if (!chosen) return chosen;
  if (colors.empty())
    return Refuse("Select Master Formulas", "No Master Formulas selected for Modification Preview.", "lstMixes");
  for (std::size_t n = 0; n < chosen->size(); ++n)
    for (std::size_t earlier = 0; earlier < n; ++earlier)
      if (EqualNoCase((*chosen)[n].ingredient, (*chosen)[earlier].ingredient))
        return Refuse("Revise Mod Info", "Can't use same ingredient in more than one mod selection.",
                      FieldOf("cmbBasics", (*chosen)[n]));
  for (const FormulaModification& line : *chosen)
    if (line.percent == 0)
      return Refuse("Verify Number Values", "Zero value being used in one or more of the modifications.",
                    FieldOf("txtPercent", line));
  if (chosen->empty()) return Refuse("Select a Modification", "No modifications selected.", "chkSel0");
  for (const FormulaModification& line : *chosen) {
    if (line.ingredient.empty())
      return Refuse("Select a Modification", "No modifications selected.", FieldOf("cmbBasics", line));
    if (!BasicColorExists(session, line.ingredient))
      return Refuse("Color Not Found", line.ingredient + " is not found in this database.", FieldOf("cmbBasics", line));
  }
  return chosen;
}

Recipe ModifiedRecipe(const MixColor& mix, const AdditiveSet* set, const std::vector<FormulaModification>& lines) {
  return Modified(mix.Ingredients(), set, lines);
}

ModifierPreviewRow JudgeModification(const MixColor& mix, const AdditiveSet* set,
                                     const std::vector<FormulaModification>& lines) {
  ModifierPreviewRow row;
  row.Color_Name = mix.Color_Name;
  row.AddSetName = mix.AddSetName;
  row.present = mix.Ingredients();
  const Recipe setRows = set == nullptr ? Recipe{} : set->Rows();
  Judgement judgement{row.present, setRows, !mix.AddSetName.empty(), static_cast<int>(row.present.size())};
  for (const FormulaModification& line : lines)
    if (std::string reason = JudgeLine(judgement, line); !reason.empty()) row.reasons.push_back(std::move(reason));
  if (!judgement.passes) return row;
  Recipe modified = Modified(row.present, set, lines);
  // A formula that rounding leaves empty cannot be stored, nor one of nothing but its set, one with a line that would
  // never be weighed or one whose set no longer fits.
  if (WithoutSet(modified, setRows).empty() || TotalOf(modified) <= 0) {
    row.reasons.emplace_back(kReducesToOne);
    return row;
  }
  if (const Ingredient* lost = LostShare(modified)) {
    row.reasons.push_back(LostShareText(*lost));
    return row;
  }
  if (modified.size() > static_cast<std::size_t>(schema::kIngredientSlots)) {
    row.reasons.push_back("Max Formula Ing exceeded. " + mix.AddSetName);
    return row;
  }
  row.modified = std::move(modified);
  row.modable = true;
  row.toModify = !judgement.skips;
  return row;
}

Result<std::vector<ModifierPreviewRow>> PreviewModifier(Session& session, const std::vector<ModifierLine>& lines,
                                                        const std::vector<std::string>& colors) {
  const auto chosen = CheckModifierLines(session, lines, colors);
  if (!chosen) return std::unexpected(chosen.error());
  const std::vector<std::string> names = DistinctNames(colors);
  AdditiveSetsOnFile sets(session);
  BulkSteps steps(session, "Preparing Preview Results ...", names.size());
  std::vector<ModifierPreviewRow> rows;
  RecipeReader reader(session);
  for (const std::string& name : names) {
    const auto mix = reader.Read(name);
    if (!mix) return Refuse("Color Not Found", name + " is not found in this database.", "Color_Name");
    rows.push_back(JudgeModification(*mix, sets.Find(mix->AddSetName), *chosen));
    if (!steps.Next()) return BulkSteps::Stopped(std::string(kTitle));
  }
  return rows;
}

Result<bool> ApplyModifier(Session& session, const std::vector<ModifierLine>& lines,
                           const std::vector<std::string>& colors) {
  if (auto allowed = RequireTools(session); !allowed) return std::unexpected(allowed.error());
  const auto chosen = CheckModifierLines(session, lines, colors);
  if (!chosen) return std::unexpected(chosen.error());
  AdditiveSetsOnFile sets(session);
  const auto rows = RowsToModify(session, sets, *chosen, colors);
  if (!rows) return std::unexpected(rows.error());
  const Message question{std::string(kTitle),
                         fmt::format("You are about to change {} Master Formula(s) in the {} Database.\n\nClick OK to "
                                     "continue.",
                                     rows->size(), session.CurrentDatabase),
                         Buttons::OkCancel, Icon::Question, Answer::Ok};
  if (session.prompt.Show(question) != Answer::Ok) return false;

  {
    BulkSteps steps(session, "Modifing Formulas ...", rows->size());
    Transaction transaction(session.File());
    UndoStep step(session, Undoable::ModifyFormulas, "Formula Modifier: " + Counted(rows->size(), "formula"));
    RecipeWriter writer(session, {}, {"LastModified"});
    writer.SetMore(0, session.clock.Now());
    RecipeReader reader(session);
    for (const std::int64_t row : *rows) {
      const auto mix = reader.ReadRow(row);
      if (!mix) throw Failure(session.CurrentDatabase, "a formula to modify is no longer there");
      writer.Set(ModifiedRecipe(*mix, sets.Find(mix->AddSetName), *chosen), mix->AddSetName).Update(row);
      transaction.Note({Change::Kind::Mix, session.CurrentDatabase, mix->Color_Name, Change::What::Updated, ""});
      if (!steps.Next()) return BulkSteps::Stopped(std::string(kTitle));
    }
    MarkRollUpsStale(session, kAllRollUps);
    step.Keep();
    transaction.Commit();
  }
  session.prompt.Tell("Master Formulas Modified", "The selected Master Formulas have been modified.");
  return true;
}

std::string RecipeText(const Recipe& recipe) {
  std::string text;
  for (const Ingredient& line : recipe)
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", line.name, Fixed(line.amount, 3));
  return text;
}

std::string ReasonsText(const ModifierPreviewRow& row) {
  return fmt::format("{}", fmt::join(row.reasons, "; "));
}

}  // namespace vellumark
