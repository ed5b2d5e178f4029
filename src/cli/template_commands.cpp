#include <fmt/format.h>

#include <filesystem>
#include <memory>

#include "cli/frame.h"
#include "core/base/text.h"
#include "core/colors/template_file.h"

namespace vellumark::cli {
namespace {

Json TablesJson(const std::vector<TemplateTable>& tables) {
  Json rows = Json::array();
  for (const TemplateTable& table : tables) rows.push_back({{"Table", table.name}, {"Rows", table.rows}});
  return rows;
}

Result<Json> Build(const std::string& folder, const std::string& typedOut) {
  const std::filesystem::path out = std::filesystem::absolute(typedOut);
  // The template replaces what is there: the ending keeps it from a Data File.
  if (!EqualNoCase(out.extension().string(), ".vkt"))
    return Refuse("Guide Template", fmt::format("The name of a template ends in .vkt: {}", out.string()), "--out");
  const auto built = BuildTemplate(folder, out);
  if (!built) return std::unexpected(built.error());
  return Json{{"Template", out.string()}, {"Tables", TablesJson(*built)}};
}

Result<Json> Check(const std::string& typedPath) {
  const std::filesystem::path path = std::filesystem::absolute(typedPath);
  const TemplateReport report = CheckTemplate(path);
  if (!report.faults.empty()) {
    std::string text = path.string() + " is not a sound template:";
    for (const std::string& fault : report.faults) text += "\n" + fault;
    return Refuse("Guide Template", text);
  }
  return Json{{"Template", path.string()}, {"Sound", true}, {"Tables", TablesJson(report.tables)}};
}

}  // namespace

void AddTemplateCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "template", "The template of color guides: build, check");

  auto* build = noun->add_subcommand("build", "Make a template of a folder of tab text files");
  const auto folder = std::make_shared<std::string>();
  const auto out = std::make_shared<std::string>();
  build->add_option("FOLDER", *folder, "The folder of text files, one for each table")->required()->check(NotEmpty);
  build->add_option("--out", *out, "The template, its name ends in .vkt; an older one is replaced")
      ->required()
      ->check(NotEmpty);
  commands.Add(build, Needs::Nothing, [folder, out](Context&) { return Build(*folder, *out); });

  auto* check = noun->add_subcommand("check", "Say what is wrong with a template");
  const auto path = std::make_shared<std::string>();
  check->add_option("FILE", *path, "The template")->required()->check(NotEmpty);
  commands.Add(check, Needs::Nothing, [path](Context&) { return Check(*path); });
}

}  // namespace vellumark::cli
