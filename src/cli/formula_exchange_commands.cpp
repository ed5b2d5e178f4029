#include <fmt/format.h>

#include <filesystem>
#include <memory>

#include "cli/color_fields.h"
#include "cli/formula_import_commands.h"
#include "core/base/write_over.h"
#include "core/exchange/formula_export.h"
#include "core/exchange/formula_file.h"
#include "core/exchange/text_file.h"

namespace vellumark::cli {
namespace {

struct ExportOptions {
  int format = 0;
  std::string from;
  std::string to;
  std::string by = "entered";
  std::string out;
  std::string file;
  std::vector<std::string> names;
};

Result<std::optional<DateTime>> DayOf(const std::string& typed, const char* field) {
  if (typed.empty()) return std::optional<DateTime>();
  auto day = ParseDateTime(typed);
  if (!day) return Refuse("Invalid Date", "Please enter a valid date.", field);
  return day;
}

// The file stands behind --out, or else in front of the names.
Result<Json> Export(Context& context, const ExportOptions& options) {
  std::vector<std::string> words = options.names;
  if (!options.out.empty() && !options.file.empty()) words.insert(words.begin(), options.file);
  const std::string& out = options.out.empty() ? options.file : options.out;
  if (out.empty()) return Refuse("No file name", "Enter a file name", "File");
  const auto path = std::filesystem::absolute(out);
  FormulaSelection selection;
  for (const std::string& typed : words) {
    const auto name = TypedColor(context.session, ColorKind::Mix, typed);
    if (!name) return std::unexpected(name.error());
    selection.names.push_back(*name);
  }
  const auto from = DayOf(options.from, "From");
  if (!from) return std::unexpected(from.error());
  const auto to = DayOf(options.to, "To");
  if (!to) return std::unexpected(to.error());
  selection.from = *from;
  selection.to = *to;
  if (options.by == "modified") selection.by = FormulaDate::Modified;
  MustBeNoDataFile(path);
  if (const auto may = MayWriteOver(context.session.prompt, path, "File"); !may) return std::unexpected(may.error());
  const auto report = ExportFormulas(context.session, static_cast<FormulaFormat>(options.format), selection, path);
  if (!report) return std::unexpected(report.error());
  context.text = ExportCompleteText(*report, path) + "\n";
  Json left = Json::array();
  for (const auto& [name, why] : report->left) left.push_back({{"Color_Name", name}, {"Why", why}});
  return Json{{"File", path.string()}, {"Formulas", report->formulas}, {"Left", left}, {"Lost", report->lost}};
}

std::string FormatList() {
  std::string text;
  for (const FormulaFormatRow& row : FormulaFormats())
    if (!row.option.empty())
      text += fmt::format("{}{}: {}", text.empty() ? "" : "; ", static_cast<int>(row.format), row.option);
  return text;
}

void AddExport(CLI::App& formulaNoun, Commands& commands) {
  auto* verb = formulaNoun.add_subcommand("export", "Write formulas to a file, in one of eight formats");
  const auto options = std::make_shared<ExportOptions>();
  verb->add_option("--format", options->format, FormatList())
      ->type_name("N")
      ->check(CLI::Range(0, kWrittenFormats - 1));
  verb->add_option("--from", options->from, "First day")->type_name("DATE")->check(NotEmpty);
  verb->add_option("--to", options->to, "Last day, to its end")->type_name("DATE")->check(NotEmpty);
  verb->add_option("--by", options->by, "The date that counts: entered or modified")
      ->check(CLI::IsMember({"entered", "modified"}));
  verb->add_option("--out", options->out, "The file")->type_name("FILE")->check(NotEmpty);
  verb->add_option("FILE", options->file, "The file; with --out the first formula")->check(NotEmpty);
  verb->add_option("NAME", options->names, "Formulas; all of the Database, or of the days, when none is named");
  commands.Add(verb, Needs::File, [options](Context& context) { return Export(context, *options); });
}

struct ColumnOptions {
  std::string file;
  std::vector<std::string> told;
  bool forget = false;
};

// Tells what the columns of a file are read as, after what was told anew.
Result<Json> Columns(Context& context, const ColumnOptions& options) {
  ColumnMapping mapping = options.forget ? ColumnMapping{} : RememberedColumns(context.session);
  for (const std::string& told : options.told)
    if (auto taken = TakeMapping(mapping, told); !taken) return std::unexpected(taken.error());
  if (options.forget || !options.told.empty()) RememberColumns(context.session, mapping);
  const std::vector<SourceColumn> columns =
      options.file.empty() ? mapping.columns : ReadGridHead(options.file, mapping).columns;
  Json answer = Json::array();
  for (const SourceColumn& column : columns)
    answer.push_back({{"Column", column.caption}, {"Field", FieldText(column)}});
  return answer;
}

void AddColumns(CLI::App& formulaNoun, Commands& commands) {
  auto* verb = formulaNoun.add_subcommand(
      "columns", "What the columns of a shop's own formula files mean; what is told is remembered");
  const auto options = std::make_shared<ColumnOptions>();
  verb->add_option("FILE", options->file, "A file whose columns are listed as they would be read")->check(NotEmpty);
  verb->add_option("--column", options->told, "CAPTION=FIELD; fields are those of a table export, and Basic Color")
      ->type_name("TEXT")
      ->check(NotEmpty);
  verb->add_flag("--forget", options->forget, "Forget what was told before");
  commands.Add(verb, Needs::Writable, [options](Context& context) { return Columns(context, *options); });
}

}  // namespace

void AddFormulaExchangeCommands(CLI::App& formulaNoun, Commands& commands) {
  AddFormulaImportCommands(formulaNoun, commands);
  AddExport(formulaNoun, commands);
  AddColumns(formulaNoun, commands);
}

}  // namespace vellumark::cli
