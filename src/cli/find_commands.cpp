#include <memory>
#include <tuple>

#include "cli/frame.h"
#include "core/base/text.h"
#include "core/reports/find.h"

namespace vellumark::cli {
namespace {

struct FindOptions {
  std::vector<std::tuple<std::string, std::string, std::string>> where;
  bool any = false;
  std::vector<std::string> databases;
};

Result<Json> RunFind(Context& context, FindSubject subject, const FindOptions& options) {
  FindRequest request{.subject = subject, .any = options.any, .databases = options.databases};
  for (const auto& [field, comparison, value] : options.where) request.terms.push_back({field, comparison, value});
  auto answer = Find(context.session, request);
  if (!answer) return std::unexpected(answer.error());
  if (!answer->complete) {
    context.exitStatus = ExitFailed;
    context.title += " - INCOMPLETE";
  }
  return context.Answer(std::move(answer->table));
}

}  // namespace

void AddFindCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "find", "Records by what stands in their fields");
  const auto add = [&](const char* name, const char* what, FindSubject subject) {
    auto options = std::make_shared<FindOptions>();
    CLI::App* verb = noun->add_subcommand(name, what);
    verb->add_option("--where", options->where,
                     "A field by its caption or column, \"is equal to\", \"contains\", \"=\", \">=\" or \"<=\", and a "
                     "value; may be "
                     "given more than once")
        ->type_name("FIELD COMPARISON VALUE");
    verb->add_flag("--any", options->any, "One of them is enough");
    if (subject != FindSubject::Design)
      OneEachTime(verb->add_option("--databases", options->databases, "A Database to search, or \"all\""))
          ->type_name("NAME")
          ->check(NotEmpty);
    commands.AddList(verb, Needs::File, what,
                     [options, subject](Context& context) { return RunFind(context, subject, *options); });
  };
  add("basic", "Basic Colors and Additives", FindSubject::Basic);
  add("mix", "Master Formulas", FindSubject::Mix);
  add("batch", "Batches", FindSubject::Batch);
  add("job", "Job Records", FindSubject::Job);
  add("design", "Designs", FindSubject::Design);
}

}  // namespace vellumark::cli
