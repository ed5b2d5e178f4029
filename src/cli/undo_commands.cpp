// What was done, and taking it back.

#include <memory>

#include "cli/frame.h"
#include "core/shell/undo.h"

namespace vellumark::cli {

void AddUndoCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "undo", "What was done last, and taking it back");
  auto* list = noun->add_subcommand("list", "What can be taken back, the latest first");
  commands.AddList(list, Needs::File, "Take Back",
                   [](Context& context) { return context.Answer(UndoColumns().Of(ListUndo(context.session))); });
  auto* take = noun->add_subcommand("take", "Take one back as its opposite; without an ID the latest one");
  const auto id = std::make_shared<std::int64_t>(0);
  take->add_option("ID", *id, "As the list has it")->check(CLI::PositiveNumber);
  take->footer("Refused when something else has been built on it since.");
  commands.Add(take, Needs::Writable, [id](Context& context) -> Result<Json> {
    auto taken = TakeBackAct(context.session, *id);
    if (!taken) return std::unexpected(taken.error());
    return Json{{"TakenBack", *taken}};
  });
}

}  // namespace vellumark::cli
