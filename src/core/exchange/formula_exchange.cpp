#include "core/exchange/formula_exchange.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/colors/basics.h"
#include "core/colors/figure_book.h"
#include "core/colors/formulas.h"
#include "core/exchange/formula_file.h"
#include "core/session/acts.h"

namespace vellumark {
namespace {

// A formula of the file, and what the Database has of that name.
struct Incoming {
  std::string name;
  Recipe recipe;
  std::int64_t key = 0;  // 0 for a new one
};

// The names of a file as the current Database has them, each looked up once.
class StoredNames {
 public:
  explicit StoredNames(const Session& session) : session_(session) {}
  const std::string& Of(ColorKind kind, const std::string& name) {
    const auto [place, isNew] = names_[kind].try_emplace(name);
    if (isNew) place->second = StoredName(session_, kind, name);
    return place->second;
  }

 private:
  const Session& session_;
  std::map<ColorKind, std::unordered_map<std::string, std::string>> names_;
};

std::string BadLinesText(const std::vector<BadLine>& lines) {
  std::string text;
  for (const BadLine& bad : lines) {
    std::string content = bad.content;
    std::ranges::replace(content, '\t', ' ');
    if (CharCount(content) > 100) content = Left(content, 97) + "...";
    text += fmt::format("{}Couldn't interpret textfile data at line {}: {} ({})", text.empty() ? "" : "\n", bad.line,
                        bad.why, content);
  }
  return text;
}

Recipe RecipeOf(StoredNames& names, const SourceColor& formula) {
  Recipe recipe;
  for (const Ingredient& part : formula.recipe) recipe.push_back({names.Of(ColorKind::Basic, part.name), part.amount});
  return Normalise(std::move(recipe));
}

// What is wrong with a recipe under the names of the Database; empty when nothing.
std::string FaultOf(const Recipe& recipe) {
  for (std::size_t n = 0; n < recipe.size(); ++n)
    for (std::size_t earlier = 0; earlier < n; ++earlier)
      if (EqualNoCase(recipe[earlier].name, recipe[n].name))
        return fmt::format("the ingredient {} stands in it twice", recipe[n].name);
  if (const Ingredient* lost = LostShare(recipe)) return LostShareText(*lost);
  return {};
}

// The recipes in parts of 100 under the names of the Database. What cannot be one there is told among the bad lines.
std::vector<Incoming> ReadFormulas(const Session& session, FormulaTable& file) {
  StoredNames names(session);
  std::vector<Incoming> incoming;
  std::unordered_map<std::string, int> lineOfName;
  for (const SourceColor& formula : file.formulas) {
    Incoming read{names.Of(ColorKind::Mix, formula.name), RecipeOf(names, formula), 0};
    std::string fault = FaultOf(read.recipe);
    if (const auto [first, added] = lineOfName.emplace(read.name, formula.line); fault.empty() && !added)
      fault = fmt::format("the formula {} stands in line {} already", read.name, first->second);
    if (fault.empty()) {
      incoming.push_back(std::move(read));
    } else {
      file.badLines.push_back({formula.line, formula.name, std::move(fault)});
    }
  }
  std::ranges::sort(file.badLines, {}, &BadLine::line);
  return incoming;
}

// Where the file has no order of ingredients, that of the Database is as good.
bool SameRecipe(Recipe a, Recipe b, bool ordered) {
  if (!ordered)
    for (Recipe* recipe : {&a, &b})
      std::ranges::sort(*recipe, [](const auto& x, const auto& y) { return CompareNoCase(x.name, y.name) < 0; });
  return std::ranges::equal(a, b, [](const Ingredient& x, const Ingredient& y) {
    return EqualNoCase(x.name, y.name) && static_cast<float>(x.amount) == static_cast<float>(y.amount);
  });
}

// Leaves in `incoming` what is to be written; counts the rest.
void CompareWithDatabase(Session& session, std::vector<Incoming>& incoming, bool ordered, ImportReport& report) {
  int different = 0;
  std::erase_if(incoming, [&](Incoming& formula) {
    if (!MixColorExists(session, formula.name)) return false;
    const MixColor present = *ReadMix(session, formula.name);
    if (SameRecipe(present.Ingredients(), formula.recipe, ordered)) {
      ++report.same;
      return true;
    }
    formula.key = present.key;
    ++different;
    return false;
  });
  if (different == 0) return;
  const bool change = session.prompt.Ask(
      "Formula Comparison",
      fmt::format(
          "{} formula(s) of the file are in the {} Database with another recipe.\n\nChange them to the recipes of "
          "the file?",
          different, session.CurrentDatabase));
  if (change) return;
  report.kept = different;
  std::erase_if(incoming, [](const Incoming& formula) { return formula.key != 0; });
}

int AddMissingBasics(Session& session, const std::vector<Incoming>& incoming) {
  std::unordered_set<std::string> seen;
  int added = 0;
  for (const Incoming& formula : incoming)
    for (const Ingredient& line : formula.recipe) {
      if (!seen.insert(line.name).second || BasicColorExists(session, line.name)) continue;
      AddZeroBasic(session, line.name, false);
      ++added;
    }
  return added;
}

// What the recipe gives; the fields of a new row follow them.
const std::vector<std::string> kFigures{"BasicCost", "BasicVOC", "BasicHAP", "LastModified"};

void SetFigures(const Session& session, FigureBook& book, RecipeWriter& writer, const Recipe& recipe) {
  const RolledUp figures = book.RollUp(recipe);
  writer.Set(recipe, "")
      .SetMore(0, figures.BasicCost)
      .SetMore(1, figures.BasicVOC)
      .SetMore(2, figures.BasicHAP)
      .SetMore(3, session.clock.Today());
}

class FormulaWriter {
 public:
  explicit FormulaWriter(Session& session)
      : session_(session), book_(session), changed_(session, {}, kFigures), added_(session, {}, NewRowFields()) {}

  void Write(const Incoming& formula) {
    RecipeWriter& writer = formula.key == 0 ? added_ : changed_;
    SetFigures(session_, book_, writer, formula.recipe);
    if (formula.key == 0) {
      MixColor mix;
      mix.Color_Name = formula.name;
      mix.Date_Entered = session_.clock.Today();
      mix.book = BookDataOfMix(session_, formula.name);
      std::size_t place = kFigures.size();
      for (const Cell& cell : MixFields().Cells(mix, kNewRowUses)) writer.SetMore(place++, cell.second);
      writer.Insert();
    } else {
      writer.Update(formula.key);
    }
  }

 private:
  static std::vector<std::string> NewRowFields() {
    std::vector<std::string> fields = kFigures;
    for (const Cell& cell : MixFields().Cells({}, kNewRowUses)) fields.push_back(cell.first);
    return fields;
  }

  Session& session_;
  FigureBook book_;
  RecipeWriter changed_;
  RecipeWriter added_;
};

}  // namespace

Result<ImportReport> ImportFormulas(Session& session, const std::filesystem::path& path) {
  if (auto allowed = RequireAct(session, Act::ImportFormulas); !allowed) return std::unexpected(allowed.error());
  auto read = ReadFormulaFile(path, FileOptions(session));
  if (!read) return std::unexpected(read.error());
  FormulaTable& file = *read;
  std::vector<Incoming> incoming = ReadFormulas(session, file);
  if (!file.badLines.empty()) return Refuse("Import Formulas", BadLinesText(file.badLines), path.string());
  if (incoming.empty())
    return Refuse("Import Formulas", path.string() + ": Couldn't read .mfe file correctly. The file may be corrupt.");
  ImportReport report;
  report.sourceDatabase = file.database;
  CompareWithDatabase(session, incoming, file.ordered, report);

  ProgressRun progress(session.progress, "Importing Master Formulas ...");
  Transaction transaction(session.File());
  report.newBasics = AddMissingBasics(session, incoming);
  FormulaWriter writer(session);
  std::size_t done = 0;
  for (const Incoming& formula : incoming) {
    writer.Write(formula);
    ++(formula.key == 0 ? report.added : report.changed);
    if (++done % 64 == 0) progress.Step(done, incoming.size());
    if (session.progress.Cancelled())
      return Refuse("Import Formulas", "The import was cancelled. Nothing was changed.");
  }
  transaction.Note({Change::Kind::Mix, session.CurrentDatabase, "", Change::What::All, ""});
  transaction.Commit();
  return report;
}

}  // namespace vellumark
