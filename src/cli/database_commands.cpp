#include <fmt/format.h>

#include <memory>

#include "cli/frame.h"
#include "core/base/text.h"
#include "core/colors/template_file.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/shell/database_menu.h"
#include "core/shell/opening.h"

namespace vellumark::cli {
namespace {

Result<Json> CreateDatabase(Context& context, const std::string& typed, const NewDatabaseContent& content) {
  const auto name = NewDatabase(context.session, typed, content);
  if (!name) return std::unexpected(name.error());
  const DatabaseCounts counts = CountRows(context.session.File(), *name);
  return Json{{"Database", *name}, {"Basics", counts.basics}, {"Formulas", counts.formulas}};
}

Result<Json> DeleteNamed(Context& context, const std::vector<std::string>& names) {
  const auto deleted = DeleteDatabases(context.session, names);
  if (!deleted) return std::unexpected(deleted.error());
  if (!*deleted) return Refuse("Delete Databases?", "Nothing was deleted.");
  return Json{{"Databases", context.session.databaseList}};
}

std::string GuideCodes() {
  std::string codes;
  for (const Guide& guide : kGuides) codes += fmt::format("{}{}", codes.empty() ? "" : ", ", guide.code);
  return codes;
}

}  // namespace

void AddDatabaseCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "db", "The Databases of the Data File: list, use, create, rename, delete");

  commands.AddList(noun->add_subcommand("list", "The Databases in menu order"), Needs::File, "Databases",
                   [](Context& context) { return context.Answer(ListDatabases(context.session)); });

  auto* use = noun->add_subcommand("use", "Make a Database the current one");
  const auto chosen = std::make_shared<std::string>();
  use->add_option("NAME", *chosen, "The Database")->required();
  commands.Add(use, Needs::Writable, [chosen](Context& context) -> Result<Json> {
    if (auto changed = ChangeDatabase(context.session, TrimView(*chosen)); !changed)
      return std::unexpected(changed.error());
    return Json{{"Database", context.session.CurrentDatabase}};
  });

  auto* create = noun->add_subcommand("create", "Add a Database: empty, of guides, or as a copy of another");
  const auto name = std::make_shared<std::string>();
  const auto content = std::make_shared<NewDatabaseContent>();
  create->add_option("NAME", *name, "Its name, 15 characters at most")->required();
  auto* guides =
      OneEachTime(create->add_option("--guide", content->guides, "A guide of the template: " + GuideCodes()));
  create->add_option("--copy", content->source, "The Database whose colours and formulas it gets")
      ->excludes(guides)
      ->check(NotEmpty);
  commands.Add(create, Needs::Writable, [name, content](Context& context) {
    using Kind = NewDatabaseContent::Kind;
    content->kind = !content->guides.empty() ? Kind::Guides : content->source.empty() ? Kind::Empty : Kind::Copy;
    return CreateDatabase(context, *name, *content);
  });

  auto* rename = noun->add_subcommand("rename", "Give a Database another name");
  const auto renamed = std::make_shared<std::pair<std::string, std::string>>();
  rename->add_option("OLD", renamed->first, "The Database")->required();
  rename->add_option("NEW", renamed->second, "Its new name, 15 characters at most")->required();
  commands.Add(rename, Needs::Writable, [renamed](Context& context) -> Result<Json> {
    const auto newName = RenameDatabase(context.session, renamed->first, renamed->second);
    if (!newName) return std::unexpected(newName.error());
    return Json{{"Database", *newName}};
  });

  auto* remove = noun->add_subcommand("delete", "Delete Databases that are not the current one");
  const auto deleted = std::make_shared<std::vector<std::string>>();
  remove->add_option("NAME", *deleted, "The Databases")->required();
  commands.Add(remove, Needs::Writable, [deleted](Context& context) { return DeleteNamed(context, *deleted); });
}

}  // namespace vellumark::cli
