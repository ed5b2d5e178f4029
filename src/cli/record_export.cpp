#include "cli/record_export.h"

#include <filesystem>
#include <memory>

namespace vellumark::cli {
namespace {

struct ExportOptions {
  std::string first;
  std::string last;
  std::string from;
  std::string to;
  std::string out;
  bool all = false;
};

Result<Json> Export(Context& context, const ExportOptions& options, bool jobs) {
  const RecordRange range{options.first, options.last, ParseDateTime(options.from), ParseDateTime(options.to)};
  const auto grid =
      jobs ? GatherJobRecords(context.session, range, options.all) : GatherBatchRecords(context.session, range);
  if (!grid) return std::unexpected(grid.error());
  const auto path = std::filesystem::absolute(options.out);
  if (const auto saved = SaveRecordFile(context.session, *grid, path); !saved) return std::unexpected(saved.error());
  context.text = "\n";
  return Json{{"File", path.string()}, {"Records", grid->records}, {"Rows", grid->rows.size()}};
}

}  // namespace

void AddRecordExport(CLI::App& noun, Commands& commands, const std::string& what, bool jobs) {
  auto* verb = noun.add_subcommand("export", what + ", by number or by date, as a tab text file");
  const auto options = std::make_shared<ExportOptions>();
  auto* first = verb->add_option("--first", options->first, "First number")->type_name("NO")->check(NotEmpty);
  auto* last = verb->add_option("--last", options->last, "Last number")->type_name("NO")->check(NotEmpty)->needs(first);
  first->needs(last);
  auto* from = verb->add_option("--from", options->from, "First day")->type_name("DATE")->check(NotEmpty);
  auto* to = verb->add_option("--to", options->to, "Last day, to its end")->type_name("DATE")->check(NotEmpty);
  from->needs(to)->excludes(first);
  to->needs(from)->excludes(first);
  verb->add_option("--out", options->out, "The file")->type_name("FILE")->required()->check(NotEmpty);
  if (jobs) verb->add_flag("--all-columns", options->all, "Every column, whatever the Job Window shows");
  commands.Add(verb, Needs::File, [options, jobs](Context& context) { return Export(context, *options, jobs); });
}

}  // namespace vellumark::cli
