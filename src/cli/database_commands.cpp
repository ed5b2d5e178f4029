#include <memory>

#include "cli/frame.h"
#include "core/base/text.h"
#include "core/colors/copy_database.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/session/rights.h"
#include "core/shell/opening.h"

namespace vellumark::cli {
namespace {

Result<Json> CreateDatabase(Context& context, const std::string& typed, const std::string& source) {
  Session& session = context.session;
  if (auto allowed = RequireCommandRight(session, CommandRight::Databases); !allowed)
    return std::unexpected(allowed.error());
  const auto name = NewDatabaseName(typed, session.databaseList, session.DataFileName);
  if (!name) return std::unexpected(name.error());
  if (source.empty()) {
    CreateEmptyDatabase(session.File(), *name);
  } else if (auto copied = CopyDatabase(session, Upper(TrimView(source)), *name); !copied) {
    return std::unexpected(copied.error());
  }
  const DatabaseCounts counts = CountRows(session.File(), *name);
  return Json{{"Database", *name}, {"Basics", counts.basics}, {"Formulas", counts.formulas}};
}

}  // namespace

void AddDatabaseCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "db", "The Databases of the Data File: list, use, create");

  commands.Add(noun->add_subcommand("list", "The Databases in menu order"), Needs::File,
               [](Context& context) -> Result<Json> {
                 Session& session = context.session;
                 const std::string current = ReadFileInfo(session.File()).currentDB;
                 Json rows = Json::array();
                 for (const std::string& name : session.databaseList)
                   rows.push_back({{"Database", name},
                                   {"FullName", ReadDatabaseInfo(session.File(), name).fullName},
                                   {"Current", EqualNoCase(name, current)}});
                 return rows;
               });

  auto* use = noun->add_subcommand("use", "Make a Database the current one");
  const auto chosen = std::make_shared<std::string>();
  use->add_option("NAME", *chosen, "The Database")->required();
  commands.Add(use, Needs::Writable, [chosen](Context& context) -> Result<Json> {
    if (auto changed = ChangeDatabase(context.session, TrimView(*chosen)); !changed)
      return std::unexpected(changed.error());
    return Json{{"Database", context.session.CurrentDatabase}};
  });

  auto* create = noun->add_subcommand("create", "Add a Database, empty or as a copy of another");
  const auto name = std::make_shared<std::string>();
  const auto source = std::make_shared<std::string>();
  create->add_option("NAME", *name, "Its name, 15 characters at most")->required();
  create->add_option("--copy", *source, "The Database whose colours and formulas it gets");
  commands.Add(create, Needs::Writable,
               [name, source](Context& context) { return CreateDatabase(context, *name, *source); });
}

}  // namespace vellumark::cli
