#include "core/colors/guide_formulas.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/colors/color_set.h"
#include "core/colors/names.h"
#include "core/datafile/references.h"

namespace vellumark {
namespace {

Recipe ReadSlots(const Statement& row) {
  Recipe recipe;
  for (int n = 0; n < schema::kIngredientSlots; ++n) {
    std::string name = row.Text(n);
    if (name.empty()) break;
    recipe.push_back({std::move(name), ShownAmount(row.Single(n + schema::kIngredientSlots))});
  }
  return recipe;
}

std::string SlotColumns() {
  std::string columns;
  for (const std::string_view word : {"BC", "BQ"})
    for (int n = 0; n < schema::kIngredientSlots; ++n)
      columns += fmt::format("{}{}{}", columns.empty() ? "" : ", ", word, n);
  return columns;
}

const Ingredient* FindLine(const Recipe& recipe, std::string_view name) {
  const auto line = std::ranges::find_if(recipe, [&](const Ingredient& l) { return SameColorName(l.name, name); });
  return line == recipe.end() ? nullptr : &*line;
}

std::string ChangeOf(const Ingredient& line, const Ingredient* published) {
  if (published == nullptr) return "added";
  const double more = RoundTo(line.amount - published->amount, 3);
  if (more == 0) return {};
  return fmt::format("{}{}", more > 0 ? "+" : "", Fixed(more, 3));
}

constexpr const char* kRevertTitle = "Revert Back To Original Formula?";

Result<void> RequireRevert(const Session& session, std::string_view name) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  if (auto right = RequireFormulaRight(session); !right) return right;
  if (CanRevertToGuide(session, name)) return {};
  return Refuse(kRevertTitle,
                fmt::format("The published formula of {} is not there, or one of its ingredients is not in this "
                            "database.",
                            name),
                "cmdRevert");
}

}  // namespace

std::optional<Recipe> ReadTemplateRecipe(const Session& session, std::string_view name) {
  const TemplateOf guides(session);
  if (!guides || name.empty()) return std::nullopt;
  const std::string guide = session.File()
                                .Scalar("SELECT Color_Guide FROM " + session.QuotedTable(schema::Mix) +
                                            " WHERE Color_Name = ? ORDER BY RowKey LIMIT 1",
                                        {name})
                                .Text();
  std::optional<Recipe> first;
  for (const std::string_view table : kGuideMixTables) {
    if (!guides->TableExists(table)) continue;
    Statement row = guides->Prepare(
        fmt::format("SELECT {}, COALESCE(Color_Guide, '') FROM {} WHERE Color_Name = ?1 OR Color_Name = ?2 LIMIT 1",
                    SlotColumns(), Quoted(table)));
    row.Bind(1, name).Bind(2, std::string(kPantonePrefix).append(name));
    if (!row.Step()) continue;
    if (EqualNoCase(row.TextView(2 * schema::kIngredientSlots), guide)) return ReadSlots(row);
    if (!first) first = ReadSlots(row);
  }
  return first;
}

bool IsFormulaModified(const Session& session, std::string_view name) {
  const auto published = ReadTemplateRecipe(session, name);
  const auto mix = published ? ReadMix(session, name) : std::nullopt;
  if (!mix) return false;
  // The slots are the authority, the sets only their search form.
  const Recipe present = mix->Ingredients();
  const std::string presentSet = NameSet(NamesOf(present));
  const std::string publishedSet = NameSet(NamesOf(*published));
  if (!ColorSetContains(presentSet, publishedSet) || !ColorSetContains(publishedSet, presentSet)) return true;
  return std::ranges::any_of(*published, [&](const Ingredient& line) {
    const Ingredient* held = FindLine(present, line.name);
    return held == nullptr || held->amount != line.amount;
  });
}

bool CanRevertToGuide(const Session& session, std::string_view name) {
  const auto published = ReadTemplateRecipe(session, name);
  return published && !published->empty() &&
         std::ranges::all_of(*published, [&](const Ingredient& line) { return BasicColorExists(session, line.name); });
}

Result<FormulaComparison> CompareFormula(const Session& session, std::string_view name) {
  const auto mix = ReadMix(session, name);
  if (!mix) return Refuse("Color Not Found", fmt::format("{} is not found in this database.", name), "Color_Name");
  const auto published = ReadTemplateRecipe(session, mix->Color_Name);
  if (!published)
    return Refuse("Modified Formula", fmt::format("The guides of this database have no formula {}.", mix->Color_Name));
  FormulaComparison compared;
  compared.Color_Name = mix->Color_Name;
  compared.original = *published;
  compared.modified = mix->Ingredients();
  for (const Ingredient& line : compared.modified)
    compared.changes.push_back(ChangeOf(line, FindLine(compared.original, line.name)));
  for (const Ingredient& line : compared.original)
    if (FindLine(compared.modified, line.name) == nullptr) compared.missing.push_back(line.name);
  compared.Date_Entered = mix->Date_Entered;
  compared.isModified = IsFormulaModified(session, mix->Color_Name);
  compared.canRevert = CanRevertToGuide(session, mix->Color_Name);
  return compared;
}

Result<bool> AskRevertToGuide(Session& session, std::string_view name) {
  if (auto can = RequireRevert(session, name); !can) return std::unexpected(can.error());
  return session.prompt.Ask(kRevertTitle,
                            "This formula will be changed back to published Pantone specifi"
                            "cations.\n\nAre you sure you "
                            "want to revert back to the original Pantone formula?",
                            Answer::No);
}

Result<void> PutBackToGuide(Session& session, FormulaWork& work) {
  if (auto can = RequireRevert(session, work.Color_Name); !can) return can;
  const Recipe published = *ReadTemplateRecipe(session, work.Color_Name);
  FormulaWork reverted = work;
  reverted.AddSetName.clear();
  reverted.AllowEditing = false;
  for (std::size_t n = 0; n < reverted.grid.size(); ++n)
    reverted.grid[n] =
        n < published.size() ? FormulaWork::Row{published[n].name, Fixed(published[n].amount, 3)} : FormulaWork::Row{};
  if (auto saved = SaveFormula(session, reverted); !saved) return saved;
  work = std::move(reverted);
  return {};
}

Result<bool> RevertToGuide(Session& session, FormulaWork& work) {
  const Result<bool> agreed = AskRevertToGuide(session, work.Color_Name);
  if (!agreed || !*agreed) return agreed;
  if (auto put = PutBackToGuide(session, work); !put) return std::unexpected(put.error());
  return true;
}

}  // namespace vellumark
