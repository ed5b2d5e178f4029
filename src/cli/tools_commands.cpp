#include <fmt/format.h>

#include <memory>

#include "cli/color_fields.h"
#include "cli/frame.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/basics.h"
#include "core/colors/bulk_delete.h"
#include "core/colors/bulk_rename.h"
#include "core/colors/formula_modifier.h"

namespace vellumark::cli {
namespace {

// The colours that a tool works on: those named, or all.
struct Selection {
  std::vector<std::string> names;
  bool all = false;
  bool preview = false;

  void AddTo(CLI::App* verb, const std::string& what) {
    auto* named = verb->add_option("NAME", names, "The " + what)->check(NotEmpty);
    verb->add_flag("--all", all, "All " + what)->excludes(named);
    verb->add_flag("--preview", preview, "Only show what would be done with each");
  }
  Result<std::vector<std::string>> Names(const Session& session, ColorKind kind) const {
    if (all) return kind == ColorKind::Mix ? MixNames(session) : BasicNames(session, BasicFilter::All);
    std::vector<std::string> read;
    for (const std::string& typed : names) {
      auto name = TypedColor(session, kind, typed);
      if (!name) return std::unexpected(name.error());
      read.push_back(*std::move(name));
    }
    return read;
  }
};

// ---- modify

constexpr std::array<std::string_view, 4> kMethodWords{"INCREASE", "DECREASE", "ADD", "REMOVE"};

// "increase RED=10"
std::optional<ModifierLine> ReadLine(const std::string& text) {
  const std::size_t blank = text.find(' ');
  const auto pair = SplitPair(text, true);
  if (blank == std::string::npos || !pair || pair->first.size() <= blank) return std::nullopt;
  for (std::size_t n = 0; n < kMethodWords.size(); ++n)
    if (Upper(text.substr(0, blank)) == kMethodWords[n])
      return ModifierLine{true, static_cast<ModMethod>(n), Trim(pair->first.substr(blank)), Trim(pair->second)};
  return std::nullopt;
}

std::string CheckLine(const std::string& text) {
  return ReadLine(text) ? std::string()
                        : text + " is not \"METHOD INGREDIENT=PERCENT\" with increase, decrease, add or remove";
}

Json RecipeJson(const Recipe& recipe) {
  Json lines = Json::array();
  for (const Ingredient& line : recipe)
    lines.push_back({{"Name", line.name}, {"Amount", Number(static_cast<float>(line.amount))}});
  return lines;
}

Json ModifierJson(const std::vector<ModifierPreviewRow>& rows) {
  Json answer = Json::array();
  for (const ModifierPreviewRow& row : rows)
    answer.push_back({{"Color_Name", row.Color_Name},
                      {"AddSetName", row.AddSetName},
                      {"Type", row.modable ? "Modable" : "Un Modable"},
                      {"ToModify", row.toModify},
                      {"Reasons", row.reasons},
                      {"Present", RecipeJson(row.present)},
                      {"Modified", RecipeJson(row.modified)}});
  return answer;
}

std::string ModifierText(const std::vector<ModifierPreviewRow>& rows) {
  using Row = ModifierPreviewRow;
  return TableText(
      TableOf<Row>()
          .Add("Color", &Row::Color_Name)
          .Add("", [](const Row& row) { return std::string(row.toModify ? "to be modified" : "excluded"); })
          .Add("Info", [](const Row& row) { return ReasonsText(row); })
          .Add("Modified recipe", [](const Row& row) { return RecipeText(row.modified); })
          .Of(rows));
}

struct ModifyOptions {
  Selection selection;
  std::vector<std::string> lines;
  bool held = false;
};

Result<Json> Modify(Context& context, const ModifyOptions& options) {
  Session& session = context.session;
  std::vector<ModifierLine> lines;
  for (const std::string& text : options.lines) {
    lines.push_back(*ReadLine(text));
    auto name = TypedColor(session, ColorKind::Basic, lines.back().ingredient);
    if (!name) return std::unexpected(name.error());
    lines.back().ingredient = *std::move(name);
  }
  const auto names = options.selection.Names(session, ColorKind::Mix);
  if (!names) return std::unexpected(names.error());
  auto rows = PreviewModifier(session, lines, *names);
  if (!rows) return std::unexpected(rows.error());
  if (options.held)
    for (ModifierPreviewRow& row : *rows) row.toModify = row.modable;
  if (options.selection.preview) {
    if (!context.json) context.text = ModifierText(*rows);
    return ModifierJson(*rows);
  }
  std::vector<std::string> colors;
  std::vector<ModifierPreviewRow> excluded;
  for (const ModifierPreviewRow& row : *rows) {
    if (row.toModify) {
      colors.push_back(row.Color_Name);
    } else {
      excluded.push_back(row);
    }
  }
  if (colors.empty())
    return Refuse("Database Formula Modifier", fmt::format("{}: {}", excluded[0].Color_Name, ReasonsText(excluded[0])));
  const auto applied = ApplyModifier(session, lines, colors);
  if (!applied) return std::unexpected(applied.error());
  if (!*applied) return Declined("Database Formula Modifier", session.CurrentDatabase);
  if (!context.json) context.text = ModifierText(*rows);
  return Json{{"Modified", colors}, {"Excluded", ModifierJson(excluded)}};
}

// ---- rename

struct RenameOptions {
  Selection selection;
  std::string kind = "formula";
  std::optional<std::string> prefix;
  std::optional<std::string> suffix;
  std::optional<std::string> find;
  std::string replace;
};

BulkRename RuleOf(const RenameOptions& options) {
  BulkRename rule;
  rule.kind = options.kind == "basic" ? ColorKind::Basic : ColorKind::Mix;
  rule.change = options.suffix ? NameChange::Suffix : options.find ? NameChange::Replace : NameChange::Prefix;
  rule.text = options.suffix ? *options.suffix : options.find ? *options.find : options.prefix.value_or("");
  rule.replacement = options.replace;
  return rule;
}

Json RenameJson(const std::vector<RenamePreviewRow>& rows) {
  Json answer = Json::array();
  for (const RenamePreviewRow& row : rows)
    answer.push_back({{"OldName", row.Color_Name},
                      {"Color_Name", row.renames ? Json(row.newName) : Json()},
                      {"Renames", row.renames},
                      {"Reason", row.reason}});
  return answer;
}

Result<Json> Rename(Context& context, const RenameOptions& options) {
  Session& session = context.session;
  const BulkRename rule = RuleOf(options);
  const auto names = options.selection.Names(session, rule.kind);
  if (!names) return std::unexpected(names.error());
  const auto rows = PreviewRename(session, rule, *names);
  if (!rows) return std::unexpected(rows.error());
  if (options.selection.preview) return RenameJson(*rows);
  std::vector<std::string> colors;
  for (const RenamePreviewRow& row : *rows)
    if (row.renames) colors.push_back(row.Color_Name);
  if (colors.empty())
    return Refuse("Database Color Rename", fmt::format("{}: {}", (*rows)[0].Color_Name, (*rows)[0].reason));
  const auto renamed = ApplyRename(session, rule, colors);
  if (!renamed) return std::unexpected(renamed.error());
  if (!*renamed) return Declined("Database Color Rename", session.CurrentDatabase);
  return RenameJson(*rows);
}

// ---- delete

Result<Json> Delete(Context& context, const Selection& selection) {
  Session& session = context.session;
  const auto names = selection.Names(session, ColorKind::Mix);
  if (!names) return std::unexpected(names.error());
  const auto rows = PreviewDeleteFormulas(session, *names);
  if (!rows) return std::unexpected(rows.error());
  if (selection.preview) {
    Json answer = Json::array();
    for (const DeletePreviewRow& row : *rows)
      answer.push_back({{"Color_Name", row.Color_Name}, {"Deletes", row.deletes}, {"Reason", row.reason}});
    return answer;
  }
  const auto deleted = DeleteFormulas(session, *names);
  if (!deleted) return std::unexpected(deleted.error());
  if (!*deleted) return Declined("Confirm Delete", session.CurrentDatabase);
  return Json{{"Database", session.CurrentDatabase}, {"Deleted", rows->size()}};
}

}  // namespace

void AddToolsCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "tools", "Work on many colours at once, all or nothing: modify, rename, delete");

  auto* modify = noun->add_subcommand("modify", "Change ingredients of formulas by percentages");
  const auto modifying = std::make_shared<ModifyOptions>();
  modifying->selection.AddTo(modify, "formulas");
  modify
      ->add_option("--line", modifying->lines,
                   "\"METHOD INGREDIENT=PERCENT\", METHOD being increase, decrease, add or remove (=100); up to five")
      ->take_all()
      ->allow_extra_args(false)
      ->expected(1, static_cast<int>(kModifierLines))
      ->check(CheckLine);
  modify->add_flag("--held", modifying->held, "Also formulas that hold an ingredient to add; it is increased there");
  commands.Add(modify, Needs::Writable, [modifying](Context& context) { return Modify(context, *modifying); });

  auto* rename = noun->add_subcommand("rename", "Give colours new names by a rule, everywhere");
  const auto renaming = std::make_shared<RenameOptions>();
  renaming->selection.AddTo(rename, "colours");
  rename->add_option("--kind", renaming->kind, "formula or basic (Additives too)")
      ->check(CLI::IsMember({"formula", "basic"}));
  auto* prefix = rename->add_option("--prefix", renaming->prefix, "Put before the name");
  auto* suffix = rename->add_option("--suffix", renaming->suffix, "Put behind the name")->excludes(prefix);
  auto* find = rename->add_option("--find", renaming->find, "Replaced in the name")->excludes(prefix)->excludes(suffix);
  rename->add_option("--replace", renaming->replace, "What it is replaced with (else nothing)")->needs(find);
  commands.Add(rename, Needs::Writable, [renaming](Context& context) { return Rename(context, *renaming); });

  auto* remove = noun->add_subcommand("delete", "Remove formulas with their lots and measurements");
  const auto removing = std::make_shared<Selection>();
  removing->AddTo(remove, "formulas");
  commands.Add(remove, Needs::Writable, [removing](Context& context) { return Delete(context, *removing); });
}

}  // namespace vellumark::cli
