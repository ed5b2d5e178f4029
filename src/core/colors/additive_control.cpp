#include "core/colors/additive_control.h"

#include <fmt/format.h>

#include <functional>

#include "core/base/counted.h"
#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/colors/formula_tools.h"
#include "core/colors/names.h"
#include "core/colors/rollup.h"
#include "core/datafile/row_pieces.h"
#include "core/datafile/writer.h"
#include "core/session/acts.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {


Refusal UnknownSet(std::string_view name) {
  return {"Additive Set Name", fmt::format("Additive Set: {} is not on file.", name), "SetName"};
}

struct NewRecipe {
  Recipe recipe;
  std::string setName;
};

// A set that is left off a formula must not go unsaid.
void TellNotApplied(Session& session, std::string_view setName, const std::vector<std::string>& formulas) {
  if (formulas.empty()) return;
  session.prompt.Tell("Additive Set Application",
                      fmt::format("The Additive Set {} could not be applied to these Master Formulas, since their "
                                  "ingredients and the set's exceed {}.\nThey are without a set now:\n\n{}",
                                  setName, kMostLinesWithSet, NameLines(formulas)));
}

// What a formula becomes that is given a set; one that cannot take it is named.
NewRecipe NewRecipeOf(const MixColor& mix, const Recipe& presentSet, const AdditiveSet& set,
                      std::vector<std::string>& notApplied) {
  const AppliedSet result = WithSetApplied(mix.Ingredients(), presentSet, set.Rows());
  if (!result.applied) notApplied.push_back(mix.Color_Name);
  return {result.recipe, result.applied ? set.SetName : std::string()};
}

void RemoveSet(const Session& session, const AdditiveSet& set) {
  session.File()
      .Prepare("DELETE FROM " + session.QuotedTable(schema::Additives) + " WHERE RowKey = ?")
      .Bind(1, set.key)
      .Run();
}

// Walks the formulas, shows the progress and writes what `change` makes of each. False when the operator stopped it.
bool RewriteFormulas(const Session& session, ProgressRun& progress, Transaction& transaction,
                     const std::vector<std::int64_t>& rows, const std::function<NewRecipe(const MixColor&)>& change) {
  RecipeReader reader(session);
  RecipeWriter writer(session);
  std::size_t done = 0;
  for (const std::int64_t row : rows) {
    if (const auto mix = reader.ReadRow(row)) {
      const NewRecipe rewritten = change(*mix);
      writer.Set(rewritten.recipe, rewritten.setName).Update(row);
      transaction.Note({Change::Kind::Mix, session.CurrentDatabase, mix->Color_Name, Change::What::Updated, ""});
    }
    progress.Step(++done, rows.size());
    if (session.progress.Cancelled()) return false;
  }
  return true;
}

// Another name for a set, its lines as they are.
bool RenameInFormulas(Session& session, const AdditiveSet& set, const std::string& name) {
  Database& file = session.File();
  UpdateRow(file, schema::Additives, session.Table(schema::Additives), set.key, {{"SetName", name}});
  const std::string formulas = session.Table(schema::Mix);
  Statement update = file.Prepare("UPDATE " + Quoted(formulas) +
                                  " SET AddSetName = ?2 WHERE RowKey BETWEEN ?3 AND ?4 AND AddSetName = ?1");
  return ForRowPieces(file, formulas, [&](std::int64_t first, std::int64_t last, double percent) {
    update.Bind(1, set.SetName).Bind(2, name).Bind(3, first).Bind(4, last).Run();
    session.progress.Percent(percent);
    return !session.progress.Cancelled();
  });
}

// A set is given up for another one. Its formulas get the other's lines with the name: a formula with a set holds what
// the set says, whichever one it had before.
bool GiveFormulasTo(Session& session, ProgressRun& progress, Transaction& transaction, const AdditiveSet& set,
                    const AdditiveSet& other, std::vector<std::string>& notApplied) {
  const std::vector<std::int64_t> users = FormulaRowsWithSet(session, set.SetName);
  const bool whole = RewriteFormulas(session, progress, transaction, users, [&](const MixColor& mix) {
    return NewRecipeOf(mix, set.Rows(), other, notApplied);
  });
  if (!whole) return false;
  RemoveSet(session, set);
  if (!users.empty()) MarkRollUpsStale(session, kAllRollUps);
  return true;
}

SetPreviewRow JudgeAdd(const MixColor& mix, const AdditiveSet& set) {
  SetPreviewRow row{mix.Color_Name, "", mix.AddSetName, false};
  const Recipe recipe = mix.Ingredients();
  if (EqualNoCase(mix.AddSetName, set.SetName)) {
    row.info = "Already Uses This Additive Set";
  } else if (!mix.AddSetName.empty()) {
    row.info = "Uses Additive Set " + mix.AddSetName;
    row.modable = true;
  } else if (WithoutSet(recipe, set.Rows()).size() != recipe.size()) {
    row.info = "Has Ingredient Found In Additive Set";
  } else {
    row.info = "Contains No Additive Set";
    row.modable = true;
  }
  return row;
}

SetPreviewRow JudgeRemove(const MixColor& mix, const AdditiveSet& set) {
  SetPreviewRow row{mix.Color_Name, "", mix.AddSetName, false};
  row.modable = EqualNoCase(mix.AddSetName, set.SetName);
  row.info = row.modable              ? "Matches Additive Set"
             : mix.AddSetName.empty() ? "Contains No Additive Set"
                                      : "Uses Additive Set " + mix.AddSetName;
  return row;
}

SetPreviewRow JudgeFiltered(const MixColor& mix, const AdditiveSet& set, const SetFilter& filter) {
  if (filter.ingredient.empty()) return JudgeAdd(mix, set);
  for (const Ingredient& line : mix.Ingredients()) {
    if (!EqualNoCase(line.name, filter.ingredient)) continue;
    if (filter.atLeast ? line.amount >= filter.percent : line.amount <= filter.percent) return JudgeAdd(mix, set);
    return {mix.Color_Name, fmt::format("{} {}", filter.atLeast ? "<" : ">", ShortestText(filter.percent)),
            mix.AddSetName, false};
  }
  return {mix.Color_Name, "NO " + filter.ingredient, mix.AddSetName, false};
}

}  // namespace

AppliedSet WithSetApplied(const Recipe& recipe, const Recipe& presentSet, const Recipe& newSet) {
  const Recipe rest = WithoutSet(recipe, presentSet);
  const Recipe others = WithoutSet(rest, newSet);
  if (others.empty() || rest.size() + newSet.size() > kMostLinesWithSet)
    return {Normalise(rest.empty() ? recipe : rest), false};
  return {NormaliseWithSet(others, newSet), true};
}

Recipe WithSetRemoved(const Recipe& recipe, const Recipe& presentSet) {
  const Recipe rest = WithoutSet(recipe, presentSet);
  return Normalise(rest.empty() ? recipe : rest);
}

std::vector<std::string> FormulasWithoutSet(const Session& session) {
  std::vector<std::string> names;
  Statement row = session.File().Prepare(
      fmt::format("SELECT Color_Name FROM {} WHERE AddSetName IS NULL OR AddSetName = '' ORDER BY Color_Name",
                  session.QuotedTable(schema::Mix)));
  while (row.Step()) names.push_back(row.Text(0));
  return names;
}

Result<AdditiveSet> EditAdditiveSet(Session& session, std::string_view setName, const AdditiveSetWork& work) {
  if (auto allowed = RequireAct(session, Act::AdditiveSets); !allowed) return std::unexpected(allowed.error());
  const auto present = ReadAdditiveSet(session, setName);
  if (!present) return std::unexpected(UnknownSet(setName));
  AdditiveSetWork content = work;
  content.SetName = present->SetName;
  auto set = ValidateAdditiveSet(session, content, false);
  if (!set) return set;
  set->key = present->key;
  const std::vector<std::int64_t> users = FormulaRowsWithSet(session, present->SetName);

  ProgressRun progress(session.progress, "Updating Add Set / Updating formulas");
  std::vector<std::string> notApplied;
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::EditAdditiveSet, fmt::format("Change the Additive Set {}", set->SetName));
  UpdateRow(session.File(), schema::Additives, session.Table(schema::Additives), set->key, AdditiveSetCells(*set));
  const bool whole = RewriteFormulas(session, progress, transaction, users, [&](const MixColor& mix) {
    return NewRecipeOf(mix, present->Rows(), *set, notApplied);
  });
  if (!whole) return BulkSteps::Stopped("Additive Set Modification");
  transaction.Note({Change::Kind::AdditiveSet, session.CurrentDatabase, set->SetName, Change::What::Updated, ""});
  if (!users.empty()) MarkRollUpsStale(session, kAllRollUps);
  step.Keep();
  transaction.Commit();
  TellNotApplied(session, set->SetName, notApplied);
  return set;
}

Result<bool> RenameAdditiveSet(Session& session, std::string_view oldName, std::string_view typed) {
  if (auto allowed = RequireAct(session, Act::AdditiveSets); !allowed) return std::unexpected(allowed.error());
  const auto set = ReadAdditiveSet(session, oldName);
  if (!set) return std::unexpected(UnknownSet(oldName));
  const std::string name = ReadSetName(typed);
  if (name.empty()) return Refuse("Set Name Needed", "Please enter a new Additive Set Name.", "SetName");
  if (EqualNoCase(name, set->SetName))
    return Refuse("Recheck Set Name",
                  "The Set Name that was entered is the same as the one that is being renamed.\n\nPlease enter another "
                  "Set Name.",
                  "SetName");
  if (auto valid = CheckNewName(name, NameSource::Typed, kSetNameLength, "SetName", set->SetName); !valid)
    return std::unexpected(valid.error());
  const auto other = ReadAdditiveSet(session, name);
  if (other &&
      !session.prompt.Ask("Additive Set Name Exists",
                          "This Set Name matches another on file.\n\nDo you want to merge the two Sets?", Answer::No))
    return false;

  ProgressRun progress(session.progress, "Renaming Add Set / Updating formulas");
  std::vector<std::string> notApplied;
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::RenameAdditiveSet,
                fmt::format("{} the Additive Set {} to {}", other ? "Merge" : "Rename", set->SetName, name));
  const bool whole = other ? GiveFormulasTo(session, progress, transaction, *set, *other, notApplied)
                           : RenameInFormulas(session, *set, name);
  if (!whole) return BulkSteps::Stopped("Additive Set Modification");
  transaction.Note({Change::Kind::AdditiveSet, session.CurrentDatabase, set->SetName, Change::What::Renamed, name});
  transaction.Note({Change::Kind::Mix, session.CurrentDatabase, "", Change::What::All, ""});
  step.Keep();
  transaction.Commit();
  TellNotApplied(session, name, notApplied);
  return true;
}

Result<bool> DeleteAdditiveSet(Session& session, std::string_view setName) {
  if (auto allowed = RequireAct(session, Act::AdditiveSets); !allowed) return std::unexpected(allowed.error());
  const auto set = ReadAdditiveSet(session, setName);
  if (!set) return std::unexpected(UnknownSet(setName));
  if (!session.prompt.Ask(Padded(40, "Confirm Delete"),
                          "Delete Additive Set?\n\nIt will be removed from all formulas on the list.", Answer::No))
    return false;
  const std::vector<std::int64_t> users = FormulaRowsWithSet(session, set->SetName);

  ProgressRun progress(session.progress, "Deleting Add Set / Updating formulas");
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::DeleteAdditiveSet, fmt::format("Delete the Additive Set {}", set->SetName));
  const bool whole = RewriteFormulas(session, progress, transaction, users, [&](const MixColor& mix) {
    return NewRecipe{WithSetRemoved(mix.Ingredients(), set->Rows()), {}};
  });
  if (!whole) return BulkSteps::Stopped("Additive Set Modification");
  RemoveSet(session, *set);
  transaction.Note({Change::Kind::AdditiveSet, session.CurrentDatabase, set->SetName, Change::What::Deleted, ""});
  if (!users.empty()) MarkRollUpsStale(session, kAllRollUps);
  step.Keep();
  transaction.Commit();
  return true;
}

Result<SetFilter> ReadSetFilter(std::string_view ingredient, bool atLeast, std::string_view percent) {
  SetFilter filter{Upper(TrimView(ingredient)), atLeast};
  if (filter.ingredient.empty()) return filter;
  const auto number = ParseNumber(percent);
  if (!number || *number < 0 || *number > 100)
    return Refuse("Invalid Percentage", "Enter a valid Percent", "cmbPer_ApplyTab");
  filter.percent = *number;
  return filter;
}

Result<std::vector<SetPreviewRow>> PreviewAdditiveSet(Session& session, std::string_view setName, SetMethod method,
                                                      const SetFilter& filter, const std::vector<std::string>& colors) {
  if (colors.empty()) return Refuse("Select Master Formulas", "No Colors Selected - Step 2.");
  const auto set = ReadAdditiveSet(session, setName);
  if (!set) return std::unexpected(UnknownSet(setName));
  BulkSteps steps(session, "Generating Preview Results ...", colors.size());
  std::vector<SetPreviewRow> rows;
  RecipeReader reader(session);
  for (const std::string& color : colors) {
    if (!steps.Next()) return BulkSteps::Stopped("Additive Set Modification");
    if (const auto mix = reader.Read(color)) {
      rows.push_back(method == SetMethod::Remove        ? JudgeRemove(*mix, *set)
                     : method == SetMethod::AddByFilter ? JudgeFiltered(*mix, *set, filter)
                                                        : JudgeAdd(*mix, *set));
    }
  }
  return rows;
}

Result<bool> ApplyAdditiveSet(Session& session, std::string_view setName, SetMethod method,
                              const std::vector<std::string>& colors) {
  if (auto allowed = RequireAct(session, Act::AdditiveSets); !allowed) return std::unexpected(allowed.error());
  const auto set = ReadAdditiveSet(session, setName);
  if (!set) return std::unexpected(UnknownSet(setName));
  if (colors.empty()) return Refuse("Select Master Formulas", "No Colors Selected - Step 2.");
  std::vector<std::int64_t> rows;
  RecipeReader reader(session);
  for (const std::string& color : colors) {
    const auto mix = reader.Read(color);
    if (!mix) return Refuse("Color Not Found", color + " is not found in this database.", "Color_Name");
    const SetPreviewRow row = method == SetMethod::Remove ? JudgeRemove(*mix, *set) : JudgeAdd(*mix, *set);
    if (!row.modable) return Refuse("Additive Set Modification", fmt::format("{}: {}", row.color, row.info));
    rows.push_back(mix->key);
  }
  const Message question{Padded(30, "Additive Set Modification"),
                         fmt::format("{} color(s) are about to be modified.", colors.size()), Buttons::OkCancel,
                         Icon::Question, Answer::Ok};
  if (session.prompt.Show(question) != Answer::Ok) return false;

  std::vector<std::string> notApplied;
  {
    ProgressRun progress(session.progress, "Modifing Formulas ...");
    Transaction transaction(session.File());
    UndoStep step(session, Undoable::ApplyAdditiveSet,
                  fmt::format("{} an Additive Set: {}", method == SetMethod::Remove ? "Remove" : "Apply",
                              Counted(rows.size(), "formula")));
    AdditiveSetsOnFile sets(session);
    const bool whole = RewriteFormulas(session, progress, transaction, rows, [&](const MixColor& mix) {
      const AdditiveSet* present = sets.Find(mix.AddSetName);
      const Recipe presentRows = present == nullptr ? Recipe{} : present->Rows();
      if (method == SetMethod::Remove) return NewRecipe{WithSetRemoved(mix.Ingredients(), presentRows), {}};
      return NewRecipeOf(mix, presentRows, *set, notApplied);
    });
    if (!whole) return BulkSteps::Stopped("Additive Set Modification");
    MarkRollUpsStale(session, kAllRollUps);
    step.Keep();
    transaction.Commit();
  }
  session.prompt.Tell("Additive Set Application", "The Application Method has been applied.");
  TellNotApplied(session, set->SetName, notApplied);
  return true;
}

}  // namespace vellumark
