#include <fmt/format.h>

#include <filesystem>
#include <memory>

#include "cli/color_fields.h"
#include "core/exchange/formula_exchange.h"

namespace vellumark::cli {
namespace {

Result<Json> Import(Context& context, const std::string& path) {
  const auto report = ImportFormulas(context.session, path);
  if (!report) return std::unexpected(report.error());
  context.text = fmt::format("{} formulas added, {} changed, {} kept, {} the same already, {} new basics\n",
                             report->added, report->changed, report->kept, report->same, report->newBasics);
  return Json{{"Source", report->sourceDatabase},
              {"Added", report->added},
              {"Changed", report->changed},
              {"Kept", report->kept},
              {"Same", report->same},
              {"NewBasics", report->newBasics}};
}

Result<Json> Export(Context& context, const std::string& typedPath, const std::vector<std::string>& names) {
  const std::string path = std::filesystem::absolute(typedPath).string();
  std::vector<std::string> read;
  for (const std::string& typed : names) {
    const auto name = TypedName(context.session, typed);
    if (!name) return std::unexpected(name.error());
    read.push_back(*name);
  }
  const auto count = ExportFormulas(context.session, read, path);
  if (!count) return std::unexpected(count.error());
  context.text = fmt::format("Formulas have been exported to the file:\n\n{}\n", path);
  return Json{{"File", path}, {"Formulas", *count}};
}

}  // namespace

void AddFormulaExchangeCommands(CLI::App& formulaNoun, Commands& commands) {
  auto* import = formulaNoun.add_subcommand("import", "Bring in the formulas of an .mfe file, all or none");
  const auto source = std::make_shared<std::string>();
  import->add_option("FILE", *source, "The file")->required()->check(NotEmpty);
  commands.Add(import, Needs::Writable, [source](Context& context) { return Import(context, *source); });

  auto* exportVerb = formulaNoun.add_subcommand("export", "Write formulas to an .mfe file");
  const auto target = std::make_shared<std::string>();
  const auto names = std::make_shared<std::vector<std::string>>();
  const auto format = std::make_shared<int>(0);
  exportVerb->add_option("FILE", *target, "The file")->required()->check(NotEmpty);
  exportVerb->add_option("--format", *format, "0: .mfe (Vellumark - Text / Tab File)")->check(CLI::IsMember({0}));
  exportVerb->add_option("NAME", *names, "Formulas; all of the Database when none is named");
  commands.Add(exportVerb, Needs::File, [target, names](Context& context) { return Export(context, *target, *names); });
}

}  // namespace vellumark::cli
