#include "cli/formula_import_commands.h"

#include <fmt/format.h>

#include <filesystem>
#include <memory>

#include "cli/color_fields.h"
#include "core/base/counted.h"
#include "core/base/units.h"
#include "core/exchange/formula_import.h"
#include "core/exchange/formula_sources.h"
#include "core/exchange/text_file.h"

namespace vellumark::cli {
namespace {

struct ImportWords {
  std::string file;
  std::vector<std::string> names;
  int format = -1;
  std::string fromFile;
  std::string fromDatabase;
  std::vector<std::string> guides;
  std::string to;
  std::string unit;
  std::string take;
  std::string report;
  bool preview = false;
  bool multiplyOut = false;
  bool onlyUsed = false;
  bool stock = false;
  bool skipRefused = false;
};

// The one Database of a Data File, where none is named.
Result<std::string> DatabaseNamed(const Session& session, const ImportWords& words) {
  if (!words.fromDatabase.empty()) return words.fromDatabase;
  const auto names = DatabasesOfFile(session, words.fromFile);
  if (!names) return std::unexpected(names.error());
  if (names->size() == 1) return names->front();
  return Refuse("Import Formulas",
                fmt::format("{} has the Databases {}. Choose one with --from-db.", words.fromFile,
                            fmt::join(*names, ", ")),
                "--from-db");
}

Result<FormulaTable> ReadSource(const Session& session, ImportWords& words) {
  const bool fromFile = !words.fromFile.empty();
  // What stands in the place of the file is then a formula's name.
  if ((fromFile || !words.fromDatabase.empty() || !words.guides.empty()) && !words.file.empty())
    words.names.insert(words.names.begin(), words.file);
  if (!words.guides.empty()) return ReadGuideFormulas(session, words.guides);
  if (fromFile) {
    const auto database = DatabaseNamed(session, words);
    if (!database) return std::unexpected(database.error());
    return ReadDataFileFormulas(session, words.fromFile, *database);
  }
  if (!words.fromDatabase.empty()) return ReadDatabaseFormulas(session, words.fromDatabase);
  if (words.file.empty())
    return Refuse("Import Formulas", "Click the Browse button to select a file to import data from.", "FILE");
  std::optional<FormulaFormat> format;
  if (words.format >= 0) format = static_cast<FormulaFormat>(words.format);
  return ReadFormulas(session, words.file, format);
}

Result<ImportWish> WishOf(const Session& session, const ImportWords& words) {
  ImportWish wish;
  if (!words.to.empty()) {
    const std::string* name = session.FindDatabase(words.to);
    wish.target = {.database = name == nullptr ? words.to : *name, .make = name == nullptr};
    wish.target.ofGuides = wish.target.make && !words.guides.empty();
  }
  if (!words.unit.empty()) {
    const auto unit = ParseUnit(words.unit);
    if (!unit || UnitName(*unit).empty())
      return Refuse("Inventory Unit", fmt::format("{} is no unit: lb., kg., g. or oz.", words.unit), "--unit");
    wish.options.sourceUnit = *unit;
  }
  wish.options.multiplyOut = words.multiplyOut;
  wish.options.unusedBasics = words.names.empty() && !words.onlyUsed;
  wish.options.stock = words.stock;
  if (!words.take.empty())
    wish.take = words.take == "new" ? TakeWhat::New : words.take == "changed" ? TakeWhat::Changed : TakeWhat::All;
  wish.names = words.names;
  wish.skipRefused = words.skipRefused;
  return wish;
}

Json LinesJson(Session& session, const MergePlan& plan, std::size_t place) {
  Json lines = Json::array();
  if (plan.choices[place].mod != MergeMod::Different) return lines;
  for (const MergeLine& line : CompareLines(session, plan, place))
    if (!line.change.empty())
      lines.push_back({{"Ingredient", line.name},
                       {"Here", line.isHere ? Json(line.here) : Json()},
                       {"There", line.isThere ? Json(line.there) : Json()},
                       {"Change", line.change}});
  return lines;
}

Json PlanJson(Session& session, const MergePlan& plan) {
  Json formulas = Json::array();
  for (std::size_t n = 0; n < plan.choices.size(); ++n) {
    const MergeChoice& choice = plan.choices[n];
    const int line = plan.table.formulas[n].line;
    formulas.push_back({{"Color_Name", plan.table.formulas[n].name},
                        {"ModType", MergeModText(choice.mod)},
                        {"Take", choice.take},
                        {"Line", line == 0 ? Json() : Json(line)},
                        {"Why", choice.why.empty() ? Json() : Json(choice.why)},
                        {"IsOfFormulas", choice.hasFormulas},
                        {"Lines", LinesJson(session, plan, n)}});
  }
  Json basics = Json::array();
  for (const MergeBasic& basic : plan.basics) basics.push_back({{"Color_Name", basic.name}, {"Uses", basic.uses}});
  Json sets = Json::array();
  for (const MergeSet& set : plan.sets)
    sets.push_back({{"SetName", set.name},
                    {"Here", set.here.empty() ? Json() : Json(set.here)},
                    {"New", !set.isHere && !set.here.empty()},
                    {"Why", set.why.empty() ? Json() : Json(set.why)}});
  Json bad = Json::array();
  for (const BadLine& line : plan.table.badLines)
    bad.push_back({{"Line", line.line}, {"Content", line.content}, {"Why", line.why}});
  return {{"Source", plan.table.database}, {"Database", plan.target.database}, {"NewDatabase", plan.target.make},
          {"Formulas", formulas},          {"Basics", basics},                 {"Sets", sets},
          {"BadLines", bad}};
}

Result<MergePlan> PlanOf(Context& context, ImportWords& words, const ImportWish& wish) {
  auto table = ReadSource(context.session, words);
  if (!table) return std::unexpected(table.error());
  return PlanMerge(context.session, *std::move(table), wish.target, wish.options);
}

Result<Json> Preview(Context& context, ImportWords& words, const ImportWish& wish) {
  auto plan = PlanOf(context, words, wish);
  if (!plan) return std::unexpected(plan.error());
  if (auto chosen = Choose(*plan, wish.take.value_or(TakeWhat::New), words.names); !chosen)
    return std::unexpected(chosen.error());
  context.text = fmt::format("{} new, {} different, {} the same, {} refused, {}, {}\n",
                             plan->Count(MergeMod::New), plan->Count(MergeMod::Different), plan->Count(MergeMod::Same),
                             plan->Count(MergeMod::Refused), Counted(plan->basics.size(), "new basic"),
                             Counted(plan->table.badLines.size(), "bad line"));
  if (const std::string refused = RefusedText(*plan); !refused.empty()) context.text += refused + "\n";
  if (!context.json) context.text += TableText(PlannedDifferences(context.session, *plan));
  return PlanJson(context.session, *plan);
}

Result<Json> Import(Context& context, ImportWords& words) {
  Session& session = context.session;
  if (words.preview) {
    const auto wish = WishOf(session, words);
    if (!wish) return std::unexpected(wish.error());
    return Preview(context, words, *wish);
  }
  auto table = ReadSource(session, words);
  if (!table) return std::unexpected(table.error());
  const auto wish = WishOf(session, words);
  if (!wish) return std::unexpected(wish.error());
  const auto report = ImportTable(session, *std::move(table), *wish);
  if (!report) return std::unexpected(report.error());
  if (!words.report.empty()) WriteTextFile(words.report, ReportText(*report, session.clock.Now()));
  context.text = fmt::format("{} added, {} changed, {} kept, {} the same already, {}\n",
                             Counted(report->added.size(), "formula"), report->changed.size(), report->kept.size(),
                             report->same, Counted(report->basics.size(), "new basic"));
  for (const std::string& note : report->notes) context.text += note + "\n";
  return Json{{"Source", report->sourceDatabase},
              {"Added", report->added.size()},
              {"Changed", report->changed.size()},
              {"Kept", report->kept.size()},
              {"Same", report->same},
              {"NewBasics", report->basics.size()},
              {"Database", report->database},
              {"NewDatabase", report->madeDatabase},
              {"Left", report->left.size()},
              {"Refused", report->refused},
              {"NewSets", report->sets},
              {"Notes", report->notes},
              {"Import", report->import == 0 ? Json() : Json(report->import)}};
}

Result<Json> CompareFile(Context& context, ImportWords& words) {
  const auto wish = WishOf(context.session, words);
  if (!wish) return std::unexpected(wish.error());
  auto made = PlanOf(context, words, *wish);
  if (!made) return std::unexpected(made.error());
  const auto plan = std::make_shared<const MergePlan>(*std::move(made));
  ListTable table = PlannedDifferences(context.session, *plan);
  // The plan lives as long as its list is read.
  table.read = [plan, read = std::move(table.read)](const TableSink& take) { read(take); };
  return context.Answer(std::move(table));
}

Result<Json> Undo(Context& context, std::int64_t import) {
  const auto undone = UndoImport(context.session, import);
  if (!undone) return std::unexpected(undone.error());
  context.text = UndoneText(*undone);
  return Json{{"Source", undone->source},           {"Database", undone->database},
              {"Removed", undone->removed},         {"Restored", undone->restored},
              {"RemovedBasics", undone->basicsRemoved}, {"KeptBasics", undone->basicsKept},
              {"KeptSets", undone->setsKept},       {"DatabaseRemoved", undone->databaseRemoved}};
}

void AddSourceOptions(CLI::App* verb, ImportWords& words) {
  verb->add_option("FILE", words.file, "The formula file; of any of the formats")->check(NotEmpty);
  verb->add_option("NAME", words.names, "Formulas of it; all when none is named");
  verb->add_option("--format", words.format, "The number of its format; found by its content otherwise")
      ->check(CLI::Range(0, 8));
  auto* fromFile = verb->add_option("--from-file", words.fromFile, "Another Data File, which stays as it is")
                       ->check(NotEmpty);
  auto* fromDatabase =
      verb->add_option("--from-db", words.fromDatabase, "The Database in it, or one of this Data File")->check(NotEmpty);
  OneEachTime(verb->add_option("--guide", words.guides, "A color guide: F_Guide_A, F_Guide_B, Metallics, "
                                                         "Pastels_Neons, Goe"))
      ->check(NotEmpty)
      ->excludes(fromFile)
      ->excludes(fromDatabase);
  verb->add_option("--to", words.to, "The Database that they come into; a new one when none has the name")
      ->check(NotEmpty);
  verb->add_flag("--multiply-out", words.multiplyOut,
                 "Put in the ingredients of an ingredient that is a formula itself");
}

}  // namespace

void AddFormulaImportCommands(CLI::App& formulaNoun, Commands& commands) {
  auto* import = formulaNoun.add_subcommand(
      "import", "Bring in formulas from a file, another Data File, another Database or color guides, all or none");
  const auto words = std::make_shared<ImportWords>();
  AddSourceOptions(import, *words);
  import->add_option("--take", words->take, "new, changed or all; without it, those that differ are asked about")
      ->check(CLI::IsMember({"new", "changed", "all"}));
  import->add_option("--unit", words->unit, "The inventory unit of the source: lb., kg., g. or oz.");
  import->add_flag("--preview", words->preview, "Compare only: nothing is written");
  import->add_flag("--only-used", words->onlyUsed, "Make only those Basic Colors and sets that the formulas have");
  import->add_flag("--stock", words->stock, "Bring in the quantities of new colors too");
  import->add_flag("--skip-bad", words->skipRefused, "Leave out lines that are no formula");
  import->add_option("--report", words->report, "A text file for what was done")->check(NotEmpty);
  commands.Add(import, Needs::Writable, [words](Context& context) { return Import(context, *words); });

  auto* compare = formulaNoun.add_subcommand("compare-file", "The formulas of a source beside their namesakes here");
  const auto compared = std::make_shared<ImportWords>();
  AddSourceOptions(compare, *compared);
  commands.AddList(compare, Needs::File, "Formula Comparison",
                   [compared](Context& context) { return CompareFile(context, *compared); });

  auto* imports = formulaNoun.add_subcommand("imports", "The imports that can be undone, the latest first");
  commands.AddList(imports, Needs::File, "Formula Imports",
                   [](Context& context) { return context.Answer(ListImports(context.session)); });

  auto* undo = formulaNoun.add_subcommand("undo", "Take back an import as a whole");
  const auto number = std::make_shared<std::int64_t>(0);
  undo->add_option("IMPORT", *number, "Its number; the latest when none is given");
  commands.Add(undo, Needs::Writable, [number](Context& context) { return Undo(context, *number); });
}

}  // namespace vellumark::cli
