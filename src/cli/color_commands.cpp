#include <fmt/format.h>

#include <memory>

#include "cli/color_fields.h"
#include "cli/frame.h"
#include "core/colors/amounts.h"
#include "core/colors/basic_work.h"
#include "core/colors/color_sheets.h"
#include "core/colors/color_tables.h"
#include "core/colors/names.h"
#include "core/colors/rename.h"

namespace vellumark::cli {
namespace {

Json BasicJson(const Session& session, const BasicColor& color) {
  return RowJson(BasicColumns(session).Of({color}));
}

Result<BasicColor> Named(const Session& session, const std::string& typed) {
  const auto name = TypedColor(session, ColorKind::Basic, typed);
  if (!name) return std::unexpected(name.error());
  if (auto color = ReadBasic(session, *name)) return *std::move(color);
  return Refuse("Color Not Found", *name + " is not found in this database.", "Color_Name");
}

Result<Json> Save(Context& context, BasicWork work, std::vector<std::string> pairs) {
  const auto swatch = TakeSwatch(pairs);
  if (!swatch) return std::unexpected(swatch.error());
  const auto inventory = TakeInventory(pairs, false);
  for (const std::string& text : pairs) {
    const auto pair = SplitPair(text);
    const RecordField& field = *BasicFields().FindSettable(pair->first, false);
    if (auto taken = SetTyped(field, static_cast<BasicColor*>(&work), work.typed, pair->second); !taken)
      return std::unexpected(taken.error());
  }
  Transaction transaction(context.session.File());
  const auto saved = SaveWithInventory(context.session, ColorKind::Basic, work.Color_Name, inventory,
                                       [&] { return SaveBasic(context.session, work); });
  if (!saved) return std::unexpected(saved.error());
  if (swatch->Any())
    if (auto set = SetSwatch(context.session, ColorKind::Basic, work.Color_Name, *swatch); !set)
      return std::unexpected(set.error());
  transaction.Commit();
  return BasicJson(context.session, *ReadBasic(context.session, work.Color_Name));
}

Result<Json> Add(Context& context, const std::string& typed, const std::vector<std::string>& pairs) {
  Session& session = context.session;
  const auto valid = NewTypedName(session, typed);
  if (!valid) return std::unexpected(valid.error());
  const std::string name = StoredName(session, ColorKind::Basic, *valid);
  if (name.empty()) return Refuse("Color Name Needed", "Please enter a name.", "Color_Name");
  if (!BasicColorExists(session, name)) {
    if (auto allowed = CheckNewBasicName(session, name); !allowed) return std::unexpected(allowed.error());
    // The verb itself says that the item is wanted; that a formula bears its name may not be known.
    if (MixColorExists(session, name) && !AskNewBasic(session, name))
      return Declined("Basics / Additives - New Item", name);
  }
  return Save(context, NewBasicWork(session, name), pairs);
}

Result<Json> Set(Context& context, const std::string& typed, const std::vector<std::string>& pairs) {
  const auto color = Named(context.session, typed);
  if (!color) return std::unexpected(color.error());
  return Save(context, LoadBasicWork(context.session, *color), pairs);
}

Result<Json> Rename(Context& context, const std::string& oldName, const std::string& newName) {
  const auto color = Named(context.session, oldName);
  if (!color) return std::unexpected(color.error());
  const auto valid = NewTypedName(context.session, newName, "txtNewName", color->Color_Name);
  if (!valid) return std::unexpected(valid.error());
  const auto renamed = RenameBasic(context.session, color->Color_Name, newName);
  if (!renamed) return std::unexpected(renamed.error());
  if (!renamed->done) return Declined("Basic Color Name Exists", color->Color_Name);
  return Json{{"Color_Name", renamed->name}, {"OldName", color->Color_Name}, {"Merged", renamed->merged}};
}

Result<Json> Delete(Context& context, const std::string& typed) {
  const auto read = TypedColor(context.session, ColorKind::Basic, typed);
  if (!read) return std::unexpected(read.error());
  const std::string& name = *read;
  const auto deleted = DeleteBasic(context.session, name);
  if (!deleted) {
    std::string formulas;
    for (const std::string& formula : deleted.error().requiredBy) formulas += formula + "\n";
    if (!formulas.empty()) context.session.prompt.Tell("Basic / Additive - Formula Requirement", formulas);
    return std::unexpected(static_cast<const Refusal&>(deleted.error()));
  }
  if (!*deleted) return Declined("Basic Color Window - Delete Basic Color?", name);
  return Json{{"Color_Name", name}, {"Deleted", true}};
}

std::string FieldNames() {
  return fmt::format("{}, Red, Green, Blue", fmt::join(BasicFields().SettableColumns(), ", "));
}

std::string CheckPair(const std::string& text) {
  const auto pair = SplitPair(text);
  if (pair && (BasicFields().FindSettable(pair->first, false) != nullptr || IsSwatchPart(pair->first))) return {};
  return fmt::format("{} is not FIELD=VALUE with a field of {}", text, FieldNames());
}

}  // namespace

void AddColorCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "color", "Basic Colors and Additives: list, show, add, set, rename, delete");
  commands.AddList(noun->add_subcommand("list", "All, in the order of their names"), Needs::File, "Basic Colors",
                   [](Context& context) { return context.Answer(ListBasics(context.session)); });

  auto* show = noun->add_subcommand("show", "One with all its fields");
  const auto shown = std::make_shared<std::string>();
  show->add_option("NAME", *shown, "Its name")->required();
  commands.AddPrinting(show);
  commands.Add(show, Needs::File, [shown](Context& context) -> Result<Json> {
    const auto color = Named(context.session, *shown);
    if (!color) return std::unexpected(color.error());
    if (context.prints) context.sheet = BasicColorSheet(context.session, *color);
    return BasicJson(context.session, *color);
  });

  auto* add = noun->add_subcommand("add", "Enter a new one");
  auto* set = noun->add_subcommand("set", "Change fields of one");
  const auto name = std::make_shared<std::string>();
  const auto pairs = std::make_shared<std::vector<std::string>>();
  for (CLI::App* verb : {add, set}) {
    verb->add_option("NAME", *name, "Its name")->required();
    auto* fields =
        verb->add_option("FIELD=VALUE", *pairs, "Fields with their values: " + FieldNames())->check(CheckPair);
    if (verb == set) fields->required();
  }
  commands.Add(add, Needs::Writable, [name, pairs](Context& context) { return Add(context, *name, *pairs); });
  commands.Add(set, Needs::Writable, [name, pairs](Context& context) { return Set(context, *name, *pairs); });

  auto* rename = noun->add_subcommand("rename", "Give one another name, everywhere; onto an existing one it merges");
  const auto renamed = AddRenameNames(rename);
  commands.Add(rename, Needs::Writable,
               [renamed](Context& context) { return Rename(context, renamed->oldName, renamed->newName); });

  auto* remove = noun->add_subcommand("delete", "Remove one that nothing uses");
  const auto removed = std::make_shared<std::string>();
  remove->add_option("NAME", *removed, "Its name")->required();
  commands.Add(remove, Needs::Writable, [removed](Context& context) { return Delete(context, *removed); });
}

}  // namespace vellumark::cli
