#include <fmt/format.h>

#include <memory>

#include "cli/color_fields.h"
#include "cli/frame.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/additive_control.h"
#include "core/colors/color_sheets.h"
#include "core/colors/color_tables.h"
#include "core/colors/names.h"

namespace vellumark::cli {
namespace {

// A name longer than names of sets are is refused: cut to the length, it would be another set's.
Result<std::string> TypedSetName(const std::string& typed) {
  const std::string_view text = TrimView(typed);
  if (const std::size_t length = CharCount(text); length > static_cast<std::size_t>(kSetNameLength))
    return Refuse("Invalid Name",
                  fmt::format("The name {} has {} characters, the limit is {}.", text, length, kSetNameLength),
                  "SetName");
  return ReadSetName(typed);
}

Result<AdditiveSet> Named(const Session& session, const std::string& typed) {
  const auto name = TypedSetName(typed);
  if (!name) return std::unexpected(name.error());
  if (auto set = ReadAdditiveSet(session, *name)) return *std::move(set);
  return Refuse("Additive Set Name", fmt::format("Additive Set: {} is not on file.", *name), "SetName");
}

Result<Json> Answer(Context& context, const std::string& typed) {
  const auto set = Named(context.session, typed);
  if (!set) return std::unexpected(set.error());
  if (context.prints) context.sheet = AdditiveSetsSheet(context.session, {*set});
  if (!context.json) {
    context.text = fmt::format("{}\n\n", set->SetName) +
                   TableText(RecipeColumns("Additive", "Percent", 2).Total("Total").Of(set->Rows()));
    for (const std::string& formula : FormulasWithSet(context.session, set->SetName))
      context.text += fmt::format("\nused by {}", formula);
    if (context.text.back() != '\n') context.text += "\n";
  }
  return RowJson(AdditiveSetColumns(context.session).Of({*set}));
}

// Entering the lines of a set one after the other, as in its fields: an Additive that is new is asked about.
Result<void> TakeLines(Session& session, AdditiveSetWork& work, const std::vector<std::string>& pairs) {
  if (pairs.size() > work.rows.size())
    return Refuse("Additive Set Name", fmt::format("An Additive Set has {} ingredients at most.", work.rows.size()));
  for (std::size_t row = 0; row < pairs.size(); ++row) {
    const auto pair = SplitPair(pairs[row], true);
    const std::string field = schema::Numbered("SetIng", static_cast<int>(row));
    if (!BasicColorExists(session, StoredName(session, ColorKind::Basic, Upper(TrimView(pair->first)))))
      if (auto valid = NewTypedName(session, pair->first, field); !valid) return std::unexpected(valid.error());
    const auto name = EnterSetIngredient(session, work, row, pair->first);
    if (!name) return std::unexpected(name.error());
    work.rows[row] = {*name, pair->second};
  }
  return {};
}

Result<Json> Write(Context& context, const std::string& typed, const std::vector<std::string>& pairs, bool isNew) {
  Session& session = context.session;
  const auto name = TypedSetName(typed);
  if (!name) return std::unexpected(name.error());
  AdditiveSetWork work{*name, {}};
  if (!isNew) {
    if (const auto set = Named(session, typed); !set) return std::unexpected(set.error());
  }
  // An Additive made on the way goes again when the set is refused.
  Transaction transaction(session.File());
  if (auto taken = TakeLines(session, work, pairs); !taken) return std::unexpected(taken.error());
  const auto written = isNew ? CreateAdditiveSet(session, work) : EditAdditiveSet(session, *name, work);
  if (!written) return std::unexpected(written.error());
  transaction.Commit();
  return Answer(context, written->SetName);
}

Result<Json> Rename(Context& context, const std::string& oldName, const std::string& newName) {
  const auto set = Named(context.session, oldName);
  if (!set) return std::unexpected(set.error());
  const auto name = TypedSetName(newName);
  if (!name) return std::unexpected(name.error());
  const bool merges = AdditiveSetExists(context.session, *name);
  const auto renamed = RenameAdditiveSet(context.session, set->SetName, newName);
  if (!renamed) return std::unexpected(renamed.error());
  if (!*renamed) return Declined("Additive Set Name Exists", set->SetName);
  return Json{{"SetName", *name}, {"OldName", set->SetName}, {"Merged", merges}};
}

Result<Json> Delete(Context& context, const std::string& typed) {
  const auto set = Named(context.session, typed);
  if (!set) return std::unexpected(set.error());
  const auto deleted = DeleteAdditiveSet(context.session, set->SetName);
  if (!deleted) return std::unexpected(deleted.error());
  if (!*deleted) return Declined("Confirm Delete", set->SetName);
  return Json{{"SetName", set->SetName}, {"Deleted", true}};
}

struct ApplyOptions {
  std::string set;
  std::vector<std::string> names;
  bool preview = false;
  std::string having;  ///< INGREDIENT>=PERCENT or INGREDIENT<=PERCENT
};

Result<SetFilter> ReadFilter(const Session& session, const std::string& text) {
  for (const std::string_view sign : {">=", "<="}) {
    const std::size_t at = text.rfind(sign);
    if (at == std::string::npos) continue;
    const auto percent = ParseNumber(text.substr(at + 2));
    const std::string ingredient = StoredName(session, ColorKind::Basic, Upper(TrimView(text.substr(0, at))));
    if (percent) return SetFilter{ingredient, sign == ">=", *percent};
  }
  return Refuse("Additive Set Modification", text + " is not INGREDIENT>=PERCENT or INGREDIENT<=PERCENT.");
}

Json PreviewJson(const std::vector<SetPreviewRow>& rows) {
  Json answer = Json::array();
  for (const SetPreviewRow& row : rows)
    answer.push_back({{"Color_Name", row.color},
                      {"Info", row.info},
                      {"AddSetName", row.currentSet},
                      {"Type", row.modable ? "Modable" : "Un_Modable"}});
  return answer;
}

// The colours that the preview lets through are modified, the others are listed as excluded.
Result<Json> Apply(Context& context, const ApplyOptions& options, SetMethod method) {
  Session& session = context.session;
  const auto set = Named(session, options.set);
  if (!set) return std::unexpected(set.error());
  SetFilter filter;
  if (!options.having.empty()) {
    const auto read = ReadFilter(session, options.having);
    if (!read) return std::unexpected(read.error());
    filter = *read;
    method = SetMethod::AddByFilter;
  }
  std::vector<std::string> names;
  for (const std::string& typed : options.names) {
    const auto name = TypedColor(session, ColorKind::Mix, typed);
    if (!name) return std::unexpected(name.error());
    names.push_back(*name);
    if (!MixColorExists(session, names.back()))
      return Refuse("Color Not Found", names.back() + " is not found in this database.", "Color_Name");
  }
  if (names.empty()) names = MixNames(session);
  const auto rows = PreviewAdditiveSet(session, set->SetName, method, filter, names);
  if (!rows) return std::unexpected(rows.error());
  if (options.preview) return PreviewJson(*rows);
  std::vector<std::string> colors;
  std::vector<SetPreviewRow> excluded;
  for (const SetPreviewRow& row : *rows) {
    if (row.modable) {
      colors.push_back(row.color);
    } else {
      excluded.push_back(row);
    }
  }
  if (colors.empty())
    return Refuse("Additive Set Modification", fmt::format("{}: {}", excluded[0].color, excluded[0].info));
  const auto applied = ApplyAdditiveSet(session, set->SetName, method, colors);
  if (!applied) return std::unexpected(applied.error());
  if (!*applied) return Declined("Additive Set Modification", set->SetName);
  Json answer{{"SetName", set->SetName}, {"Modified", colors}, {"Excluded", PreviewJson(excluded)}};
  if (method != SetMethod::Remove) {
    answer["NotApplied"] = Json::array();
    for (const std::string& color : colors)
      if (!EqualNoCase(ReadMix(session, color)->AddSetName, set->SetName)) answer["NotApplied"].push_back(color);
  }
  return answer;
}

std::string CheckPair(const std::string& text) {
  return SplitPair(text) ? std::string() : text + " is not ADDITIVE=PERCENT";
}

void AddApplyVerbs(CLI::App* noun, Commands& commands) {
  auto* apply = noun->add_subcommand("apply", "Give formulas the set; those that it does not suit are left out");
  auto* remove = noun->add_subcommand("remove", "Take the set off formulas");
  for (CLI::App* verb : {apply, remove}) {
    const auto options = std::make_shared<ApplyOptions>();
    verb->add_option("SET", options->set, "The set")->required()->check(NotEmpty);
    auto* names = verb->add_option("NAME", options->names, "The formulas")->check(NotEmpty);
    verb->add_flag("--preview", options->preview, "Only show what would be done with each");
    if (verb == apply) {
      verb->add_option("--having", options->having,
                       "Only formulas with \"INGREDIENT>=PERCENT\" or \"INGREDIENT<=PERCENT\"; without names, all");
    } else {
      names->required();
    }
    const SetMethod method = verb == apply ? SetMethod::Add : SetMethod::Remove;
    commands.Add(verb, Needs::Writable, [options, method](Context& context) -> Result<Json> {
      if (options->names.empty() && options->having.empty())
        return Refuse("Select Master Formulas", "No Colors Selected - Step 2.");
      return Apply(context, *options, method);
    });
  }
}

}  // namespace

void AddAdditiveSetCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(
      app, "addset", "Additive Sets: list, show, add, edit, rename, delete, and apply to or remove from formulas");
  commands.AddList(noun->add_subcommand("list", "All, in the order of their names"), Needs::File, "Additive Sets",
                   [](Context& context) { return context.Answer(ListSets(context.session)); });

  auto* show = noun->add_subcommand("show", "One with its Additives and the formulas with it");
  const auto shown = std::make_shared<std::string>();
  show->add_option("NAME", *shown, "Its name")->required()->check(NotEmpty);
  commands.AddPrinting(show);
  commands.Add(show, Needs::File, [shown](Context& context) { return Answer(context, *shown); });

  auto* add = noun->add_subcommand("add", "Enter a new one");
  auto* edit = noun->add_subcommand("edit", "Give one new Additives, and bring every formula with it up to date");
  for (CLI::App* verb : {add, edit}) {
    const auto name = std::make_shared<std::string>();
    const auto pairs = std::make_shared<std::vector<std::string>>();
    verb->add_option("NAME", *name, "Its name")->required()->check(NotEmpty);
    verb->add_option("ADDITIVE=PERCENT", *pairs, "One to five Additives with their percentages")->check(CheckPair);
    const bool isNew = verb == add;
    commands.Add(verb, Needs::Writable,
                 [name, pairs, isNew](Context& context) { return Write(context, *name, *pairs, isNew); });
  }

  auto* rename = noun->add_subcommand("rename", "Give one another name; onto an existing one its formulas go over");
  const auto renamed = AddRenameNames(rename);
  commands.Add(rename, Needs::Writable,
               [renamed](Context& context) { return Rename(context, renamed->oldName, renamed->newName); });

  auto* remove = noun->add_subcommand("delete", "Remove one, from its formulas too");
  const auto removed = std::make_shared<std::string>();
  remove->add_option("NAME", *removed, "Its name")->required()->check(NotEmpty);
  commands.Add(remove, Needs::Writable, [removed](Context& context) { return Delete(context, *removed); });
  AddApplyVerbs(noun, commands);
}

}  // namespace vellumark::cli
