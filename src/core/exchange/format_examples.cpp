#include "core/exchange/format_examples.h"

#include "core/exchange/formula_writer.h"
#include "core/exchange/text_rows.h"

namespace vellumark {
namespace {

using enum FormulaFormat;

SourceColor Formula(std::string name, std::string code, Recipe recipe) {
  SourceColor formula;
  formula.name = std::move(name);
  formula.code = std::move(code);
  formula.recipe = std::move(recipe);
  return formula;
}

SourceColor Basic(std::string name, std::string code) {
  SourceColor basic;
  basic.kind = ColorKind::Basic;
  basic.name = std::move(name);
  basic.code = std::move(code);
  return basic;
}

std::vector<std::string> WordsOf(FormulaFormat format) {
  constexpr const char* kTab = "This is a Text file, the pieces of data are seperated by the TAB character.";
  constexpr const char* kRows = "A complete formula structure will be made up from multiple rows.";
  switch (format) {
    case Mfe:
      return {kTab, "The first row is the name of the Database.",
              "Every formula has its recipe formatted to a single row. An ingredient and its quantity are paired "
              "together."};
    case Rez:
      return {"This is a Text file, the pieces of data are seperated by the # character.", kRows,
              "A row is the letter O, the number of the ingredient from 0 on, the formula, its version, the ingredient "
              "and the quantity."};
    case Zg:
      return {kTab, kRows,
              "Column A holds the formula, column B its code, column C the ingredient, column D the quantity."};
    case Ja:
      return {kTab, kRows,
              "Column B is the formula, column A its code, column E the ingredient, column F the quantity."};
    default:
      break;
  }
  std::vector<std::string> words{kTab, "Every formula is a row. Column A is the formula, column B its code.",
                                 "The columns behind are the Basic Colors of the Database, in the order of their "
                                 "names: the quantity of each, or 0 "
                                 "where the formula does not have it."};
  if (format == Header2 || format == Header2Xls)
    words.emplace_back("The second row has the codes of the Basic Colors.");
  if (format == Header2Xls || format == Header1Xls)
    words.emplace_back("The text bears the name of a workbook, so that Excel opens it.");
  return words;
}

}  // namespace

const FormulaTable& ExampleFormulas() {
  static const FormulaTable table = [] {
    FormulaTable made;
    made.database = "INK ROOM";
    made.basics = {Basic("4C CYAN", "B-03"),    Basic("DENSE BLACK BASE", "B-15"), Basic("ROSE BASE", "B-10"),
                   Basic("ROYAL BASE", "B-12"), Basic("SIGNAL RED BASE", "B-08"),  Basic("TRANSPARENT WHITE", "B-17")};
    made.formulas = {
        Formula(
            "DENIM BLUE 45", "DN-45",
            {{"TRANSPARENT WHITE", 55.034}, {"ROYAL BASE", 26.491}, {"DENSE BLACK BASE", 9.677}, {"4C CYAN", 8.798}}),
        Formula("HARBOUR BLUE 12", "HB-12", {{"TRANSPARENT WHITE", 87.988}, {"ROYAL BASE", 7.227}, {"4C CYAN", 4.785}}),
        Formula("PEONY PINK 15", "PP-15",
                {{"TRANSPARENT WHITE", 85.044}, {"ROSE BASE", 12.61}, {"SIGNAL RED BASE", 2.346}}),
    };
    return made;
  }();
  return table;
}

FormatExample ExampleOf(FormulaFormat format) {
  const FormulaTable& table = ExampleFormulas();
  FormulaFileText file(format, table.database, table.basics);
  for (const SourceColor& formula : table.formulas) file.Add(formula.name, formula.code.value_or(""), formula.recipe);
  FormatExample example{
      std::string(FormulaFormats()[static_cast<std::size_t>(format)].option), WordsOf(format), file.Text(), {}};
  RowCutter rows(example.text, format == Rez ? '#' : '\t');
  while (rows.Next()) example.cells.push_back(rows.Cells());
  return example;
}

}  // namespace vellumark
