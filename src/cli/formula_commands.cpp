#include <fmt/format.h>

#include <memory>

#include "cli/color_fields.h"
#include "cli/frame.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/colors/color_sheets.h"
#include "core/colors/color_tables.h"
#include "core/colors/duplicate.h"
#include "core/colors/formula_work.h"
#include "core/colors/guide_formulas.h"
#include "core/colors/names.h"
#include "core/colors/rename.h"
#include "core/colors/rollup.h"

namespace vellumark::cli {
namespace {

Json MixJson(const Session& session, const MixColor& mix) {
  return RowJson(MixColumns(session).Of({mix}));
}

// For people: the fields, and the recipe as a table.
std::string MixText(const Session& session, const MixColor& mix) {
  Json fields = MixJson(session, mix);
  for (int n = 0; n < static_cast<int>(schema::kIngredientSlots); ++n)
    for (const char* slot : {"BC", "BQ"}) fields.erase(schema::Numbered(slot, n));
  return ReadableText(fields) + "\n" +
         TableText(RecipeColumns("Ingredient", "Parts").Total("Total Parts").Of(mix.Ingredients()));
}

Result<Json> Answer(Context& context, const std::string& name) {
  const auto mix = ReadMix(context.session, name);
  if (!mix) return Refuse("Color Not Found", name + " is not found in this database.", "Color_Name");
  if (context.prints) context.sheet = FormulaSheet(context.session, *mix);
  if (!context.json) context.text = MixText(context.session, *mix);
  return MixJson(context.session, *mix);
}

// The formula that the words name, as the window finds it.
Result<MixColor> Found(const Session& session, const std::string& typed) {
  const auto name = TypedName(session, typed);
  if (!name) return std::unexpected(name.error());
  if (auto mix = FindMix(session, *name)) return *std::move(mix);
  return Refuse("Color Not Found", *name + " is not found in this database.", "Color_Name");
}

// The same for what is changed: by its name alone. Nobody sees which formula bears a code, and the name of one that is
// gone may be the code of another.
Result<MixColor> Named(const Session& session, const std::string& typed) {
  auto mix = Found(session, typed);
  if (mix && !SameColorName(mix->Color_Name, *TypedName(session, typed)))
    return Refuse("Color Not Found",
                  fmt::format("{} is not found in this database.\nIt is the Color Code of {}.",
                              *TypedName(session, typed), mix->Color_Name),
                  "Color_Name");
  return mix;
}

Result<Json> List(Context& context, const std::string& ingredient) {
  if (ingredient.empty()) return context.Answer(ListFormulas(context.session));
  const auto name = TypedColor(context.session, ColorKind::Basic, ingredient);
  if (!name) return std::unexpected(name.error());
  return context.Answer(ListFormulas(context.session, *name));
}

Result<void> TakeIngredient(Session& session, FormulaWork& work, std::size_t row, const std::string& typed,
                            const std::string& amount) {
  if (row >= work.grid.size())
    return Refuse("Maximum Ingredients Exceeded",
                  fmt::format("This formula already contains the maximum number of ingredients, {}.\n\n{} could not be "
                              "added to the formula.",
                              work.grid.size(), typed));
  const std::string field = schema::Numbered("BC", static_cast<int>(row));
  const auto name = TypedName(session, typed, field);
  if (!name) return std::unexpected(name.error());
  if (!BasicColorExists(session, StoredName(session, ColorKind::Basic, *name)))
    if (auto valid = CheckTypedPiece(typed, field); !valid) return valid;
  const auto entry = EnterIngredient(session, work, row, typed);
  if (!entry) return std::unexpected(entry.error());
  work.grid[row] = {entry->name, amount};
  if (entry->toAdd) work.newIngredients.push_back(*entry->toAdd);
  return {};
}

struct FormulaOptions {
  std::string name;
  std::vector<std::string> pairs;
  std::optional<std::string> additiveSet;  ///< empty text takes the set off
};

// Ingredients named are the whole new recipe; without any the recipe stays.
Result<void> TakePairs(Session& session, FormulaWork& work, const FormulaOptions& options) {
  Pairs ingredients;
  for (const std::string& text : options.pairs) {
    const auto pair = SplitPair(text);
    const RecordField* field = MixFields().FindSettable(pair->first, true);
    if (field == nullptr) {
      ingredients.push_back(*SplitPair(text, true));
    } else if (auto taken = SetTyped(*field, static_cast<MixColor*>(&work), work.typed, pair->second); !taken) {
      return taken;
    }
  }
  if (!ingredients.empty()) {
    work.AllowEditing = true;
    work.grid = {};
    for (std::size_t row = 0; row < ingredients.size(); ++row)
      if (auto taken = TakeIngredient(session, work, row, ingredients[row].first, ingredients[row].second); !taken)
        return taken;
  }
  if (!options.additiveSet) return {};
  work.AllowEditing = true;
  return ChooseAdditiveSet(session, work, *options.additiveSet);
}

// What stands beside the recipe among the pairs.
struct Beside {
  SwatchChange swatch;
  std::optional<std::string> inventory;
};

Result<Beside> TakeBeside(std::vector<std::string>& pairs) {
  auto swatch = TakeSwatch(pairs);
  if (!swatch) return std::unexpected(swatch.error());
  return Beside{*swatch, TakeInventory(pairs, true)};
}

// The recipe, the swatch and the stock, all or nothing.
Result<void> SaveAll(Session& session, FormulaWork& work, const Beside& beside) {
  const SwatchChange& swatch = beside.swatch;
  Transaction transaction(session.File());
  auto saved = SaveWithInventory(session, ColorKind::Mix, work.Color_Name, beside.inventory,
                                 [&] { return SaveMix(session, work); });
  if (!saved) return saved;
  if (swatch.Any())
    if (auto set = SetSwatch(session, ColorKind::Mix, work.Color_Name, swatch); !set) return set;
  transaction.Commit();
  return {};
}

Result<Json> Add(Context& context, FormulaOptions options) {
  const auto beside = TakeBeside(options.pairs);
  if (!beside) return std::unexpected(beside.error());
  Session& session = context.session;
  const auto valid = NewTypedName(session, options.name);
  if (!valid) return std::unexpected(valid.error());
  std::string name = *valid;
  if (name.empty()) return Refuse("Color Name Needed", "Please enter a new color name.", "Color_Name");
  if (IsPantoneBookMix(session, name)) name = GetTemplateMixName(session, name);
  if (MixColorExists(session, name))
    return Refuse("Master Formula Exists",
                  "This Master Formula already exists in the database.\n\nPlease select different name.", "Color_Name");
  if (auto allowed = CheckNewMixName(session, name); !allowed) return std::unexpected(allowed.error());
  // The verb itself says that the formula is wanted; that a Basic Color bears its name may not be known.
  if (BasicColorExists(session, name) && !AskNewMix(session, name))
    return Declined("Master Formula - New Master Formula", name);
  FormulaWork work = NewFormulaWork(session, name);
  if (auto taken = TakePairs(session, work, options); !taken) return std::unexpected(taken.error());
  if (auto saved = SaveAll(session, work, *beside); !saved) return std::unexpected(saved.error());
  return Answer(context, work.Color_Name);
}

Result<Json> Edit(Context& context, FormulaOptions options) {
  const auto beside = TakeBeside(options.pairs);
  if (!beside) return std::unexpected(beside.error());
  const auto mix = Named(context.session, options.name);
  if (!mix) return std::unexpected(mix.error());
  FormulaWork work = LoadFormulaWork(context.session, *mix);
  if (auto taken = TakePairs(context.session, work, options); !taken) return std::unexpected(taken.error());
  if (auto saved = SaveAll(context.session, work, *beside); !saved) return std::unexpected(saved.error());
  return Answer(context, work.Color_Name);
}

Result<Json> Rename(Context& context, const std::string& oldName, const std::string& newName) {
  const auto mix = Named(context.session, oldName);
  if (!mix) return std::unexpected(mix.error());
  const auto valid = NewTypedName(context.session, newName, "txtNewName", mix->Color_Name);
  if (!valid) return std::unexpected(valid.error());
  const auto renamed = RenameColor(context.session, mix->Color_Name, newName);
  if (!renamed) return std::unexpected(renamed.error());
  return Json{{"Color_Name", renamed->name}, {"OldName", mix->Color_Name}};
}

Result<Json> Delete(Context& context, const std::string& typed) {
  const auto mix = Named(context.session, typed);
  if (!mix) return std::unexpected(mix.error());
  const auto deleted = DeleteMix(context.session, mix->Color_Name);
  if (!deleted) return std::unexpected(deleted.error());
  if (!*deleted) return Declined("Master Formula - Delete Master Formula?", mix->Color_Name);
  return Json{{"Color_Name", mix->Color_Name}, {"Deleted", true}};
}

Result<Json> Duplicate(Context& context, const FormulaOptions& options, const std::string& newName,
                       const std::string& target) {
  Session& session = context.session;
  const auto mix = Named(session, options.name);
  if (!mix) return std::unexpected(mix.error());
  const auto valid = NewTypedName(session, newName, "txtNewName", mix->Color_Name);
  if (!valid) return std::unexpected(valid.error());
  const auto made =
      DuplicateFormula(session, mix->Color_Name, newName, target, options.additiveSet.value_or(std::string()));
  if (!made) return std::unexpected(made.error());
  if (!made->done) return Declined("Overwite Exisiting Master Formula?", newName);
  const auto duplicate = ReadMix(session, made->name, target);
  if (!context.json) context.text = MixText(session, *duplicate);
  return MixJson(session, *duplicate);
}

Json RecipeJson(const Recipe& recipe) {
  Json lines = Json::array();
  for (const Ingredient& line : recipe)
    lines.push_back({{"Name", line.name}, {"Amount", Number(static_cast<float>(line.amount))}});
  return lines;
}

Result<Json> Compare(Context& context, const std::string& typed) {
  const auto mix = Found(context.session, typed);
  if (!mix) return std::unexpected(mix.error());
  const auto compared = CompareFormula(context.session, mix->Color_Name);
  if (!compared) return std::unexpected(compared.error());
  if (context.prints) context.sheet = CompareSheet(*compared);
  if (!context.json) {
    const auto table = [](const std::string& heading, const Recipe& recipe) {
      return TableText(RecipeColumns(heading, "Parts").Of(recipe));
    };
    context.text = table("Original " + compared->Color_Name, compared->original) + "\n" +
                   table("Modified " + compared->Color_Name, compared->modified) + "\n" +
                   (compared->isModified ? "Modified Formula\n" : "As it was published\n");
  }
  return Json{{"Color_Name", compared->Color_Name},
              {"Modified", compared->isModified},
              {"CanRevert", compared->canRevert},
              {"Date_Entered", DateJson(compared->Date_Entered)},
              {"OriginalRows", RecipeJson(compared->original)},
              {"ModifiedRows", RecipeJson(compared->modified)}};
}

Result<Json> Revert(Context& context, const std::string& typed) {
  const auto mix = Named(context.session, typed);
  if (!mix) return std::unexpected(mix.error());
  FormulaWork work = LoadFormulaWork(context.session, *mix);
  const auto reverted = RevertToGuide(context.session, work);
  if (!reverted) return std::unexpected(reverted.error());
  if (!*reverted) return Declined("Revert Back To Original Formula?", mix->Color_Name);
  return Answer(context, work.Color_Name);
}

// Other processes may have changed colours, so every roll-up counts as pending here.
Result<Json> Passes(Context& context) {
  RunPasses(context.session, {true, true, true});
  return Json{{"Database", context.session.CurrentDatabase}, {"Formulas", MixNames(context.session).size()}};
}

std::string CheckPair(const std::string& text) {
  return SplitPair(text) ? std::string() : text + " is neither INGREDIENT=AMOUNT nor FIELD=VALUE";
}

void AddWritingVerbs(CLI::App* noun, Commands& commands) {
  auto* add = noun->add_subcommand("add", "Enter a new one; its amounts are brought to parts of 100");
  auto* edit = noun->add_subcommand("edit", "Change one; ingredients given are its whole new recipe");
  for (CLI::App* verb : {add, edit}) {
    const auto options = std::make_shared<FormulaOptions>();
    verb->add_option("NAME", options->name, "Its name")->required();
    verb->add_option("INGREDIENT=AMOUNT", options->pairs,
                     fmt::format("Ingredients with their amounts, and fields with their values: {}, Red, Green, Blue",
                                 fmt::join(MixFields().SettableColumns(), ", ")))
        ->check(CheckPair);
    verb->add_option("--additive-set", options->additiveSet, "The Additive Set it uses; \"\" for none");
    const bool isAdd = verb == add;
    commands.Add(verb, Needs::Writable, [options, isAdd](Context& context) {
      return isAdd ? Add(context, *options) : Edit(context, *options);
    });
  }

  auto* rename = noun->add_subcommand("rename", "Give one another name, everywhere");
  const auto renamed = AddRenameNames(rename);
  commands.Add(rename, Needs::Writable,
               [renamed](Context& context) { return Rename(context, renamed->oldName, renamed->newName); });

  auto* remove = noun->add_subcommand("delete", "Remove one");
  const auto removed = std::make_shared<std::string>();
  remove->add_option("NAME", *removed, "Its name")->required();
  commands.Add(remove, Needs::Writable, [removed](Context& context) { return Delete(context, *removed); });

  auto* duplicate = noun->add_subcommand("duplicate", "Copy one under a new name, also into another Database");
  const auto source = std::make_shared<FormulaOptions>();
  const auto copyName = std::make_shared<std::string>();
  const auto target = std::make_shared<std::string>();
  duplicate->add_option("NAME", source->name, "Its name")->required();
  duplicate->add_option("NEW", *copyName, "The name of the copy")->required();
  duplicate->add_option("--to", *target, "The Database of the copy (else the same)");
  duplicate->add_option("--additive-set", source->additiveSet, "An Additive Set of that Database");
  commands.Add(duplicate, Needs::Writable, [source, copyName, target](Context& context) {
    return Duplicate(context, *source, *copyName, *target);
  });
}

void AddGuideVerbs(CLI::App* noun, Commands& commands) {
  const auto name = std::make_shared<std::string>();
  auto* compare = noun->add_subcommand("compare", "One beside the recipe that its guide publishes");
  auto* revert = noun->add_subcommand("revert", "Put one back to the recipe that its guide publishes");
  for (CLI::App* verb : {compare, revert})
    verb->add_option("NAME", *name, "Its name, or its number in the guide")->required();
  commands.AddPrinting(compare);
  commands.Add(compare, Needs::File, [name](Context& context) { return Compare(context, *name); });
  commands.Add(revert, Needs::Writable, [name](Context& context) { return Revert(context, *name); });
}

}  // namespace

void AddFormulaCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(
      app, "formula",
      "Master Formulas: list, show, add, edit, rename, delete, duplicate, compare, revert, import, export, passes");
  auto* list = noun->add_subcommand("list", "All, in the order of their names");
  const auto ingredient = std::make_shared<std::string>();
  list->add_option("--using", *ingredient, "Only those with this ingredient")->check(NotEmpty);
  commands.AddList(list, Needs::File, "Master Formulas",
                   [ingredient](Context& context) { return List(context, *ingredient); });

  auto* show = noun->add_subcommand("show", "One with its recipe and all its fields");
  const auto shown = std::make_shared<std::string>();
  show->add_option("NAME", *shown, "Its name, its number in a guide, or its code")->required();
  commands.AddPrinting(show);
  commands.Add(show, Needs::File, [shown](Context& context) -> Result<Json> {
    const auto mix = Found(context.session, *shown);
    if (!mix) return std::unexpected(mix.error());
    return Answer(context, mix->Color_Name);
  });

  AddWritingVerbs(noun, commands);
  AddGuideVerbs(noun, commands);
  AddFormulaExchangeCommands(*noun, commands);
  commands.Add(noun->add_subcommand("passes", "Bring the rolled-up cost, VOC and HAP of all formulas up to date"),
               Needs::Writable, Passes);
}

}  // namespace vellumark::cli
