#include <memory>

#include "cli/frame.h"
#include "core/batch/dispensers.h"

namespace vellumark::cli {
namespace {

struct NewDispenser {
  std::string name;
  std::string format;
  std::string folder;
};

Json DispenserJson(const DispenserRow& row) {
  return {{"Name", row.Name},         {"Manufacturer", row.Manufacturer}, {"FileType", row.FileType},
          {"Drive", row.Drive},       {"Pathway", row.Pathway},           {"Additives", row.Additives},
          {"Recycles", row.Recycles}};
}

}  // namespace

void AddDispenserCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "dispenser", "Dispensers: list, add, remove");
  auto* list = noun->add_subcommand("list", "The dispensers by name");
  commands.AddList(list, Needs::File, "Dispensers",
                   [](Context& context) { return context.Answer(ListDispensers(context.session)); });

  auto* add = noun->add_subcommand("add", "A folder in which the software of a dispenser finds its files");
  const auto added = std::make_shared<NewDispenser>();
  add->add_option("NAME", added->name, "Its name")->required();
  add->add_option("--format", added->format, "FGI, SPK, \"JSON txt\", JSON, NFL or XNI")->required();
  add->add_option("--folder", added->folder, "The folder")->required()->type_name("DIR");
  commands.Add(add, Needs::Writable, [added](Context& context) -> Result<Json> {
    if (auto done = AddDispenser(context.session, added->name, added->format, added->folder); !done)
      return std::unexpected(done.error());
    return DispenserJson(ReadDispenser(context.session, added->name).value());
  });

  auto* remove = noun->add_subcommand("remove", "Remove a dispenser; its folder stays");
  const auto removed = std::make_shared<std::string>();
  remove->add_option("NAME", *removed, "Its name")->required();
  commands.Add(remove, Needs::Writable, [removed](Context& context) -> Result<Json> {
    if (auto done = RemoveDispensers(context.session, {*removed}); !done) return std::unexpected(done.error());
    return Json{{"Name", *removed}, {"Removed", true}};
  });
}

}  // namespace vellumark::cli
