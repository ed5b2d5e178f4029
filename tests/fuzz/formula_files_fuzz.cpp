// Whatever bytes a reader of formula files is given, it comes back with what a Database may take, tells the rest by
// line, and what it has read goes out and comes in again as the same.

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <set>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/exchange/formula_file.h"
#include "core/exchange/formula_writer.h"

using namespace vellumark;

namespace {

constexpr FormulaFormat kReader = FormulaFormat::READER;

void Must(bool holds, const char* what) {
  if (holds) return;
  std::cerr << what << "\n";
  std::abort();
}

void MustBeSound(const SourceColor& color, std::set<std::string>& names) {
  Must(!color.name.empty() && CharCount(color.name) <= 30 && color.name == Upper(color.name), "a name");
  Must(names.insert(color.name).second, "a name once");
  Must(color.recipe.size() <= 15, "fifteen ingredients");
  std::set<std::string> parts;
  for (const Ingredient& line : color.recipe) {
    Must(line.amount > 0 && line.amount <= 1e9, "an amount");
    Must(parts.insert(Upper(line.name)).second, "an ingredient once");
  }
}

FormulaTable Read(const std::string& text, FormulaFormat format) {
  auto table = ReadFormulaBytes(text, "again.txt", {.format = format});
  Must(table.has_value(), "what was written is read");
  Must(table->badLines.empty(), "without a bad line");
  return *std::move(table);
}

bool Same(const SourceColor& a, const SourceColor& b) {
  return a.name == b.name && a.code == b.code && a.notes == b.notes && a.inventoryNote == b.inventoryNote &&
         a.reorder == b.reorder && a.inventory == b.inventory && a.purchaseCost == b.purchaseCost && a.VOC == b.VOC &&
         a.HAP == b.HAP && a.recycle == b.recycle && a.recipe == b.recipe;
}

void WorkFileHoldsIt(const FormulaTable& table) {
  if (table.formulas.empty() && table.basics.empty()) return;
  const WorkFileText work = WorkTextOf(table);
  const FormulaTable back = Read(work.heading + work.basics + work.formulas, FormulaFormat::Work);
  // A blank cell is a value where a column stands and none where it does not: compared is what the file can tell.
  Must(back.formulas.size() == table.formulas.size() && back.basics.size() == table.basics.size(), "as many colours");
  const auto told = [](SourceColor color) {
    for (auto* text : {&color.code, &color.notes, &color.inventoryNote}) *text = Trim(text->value_or(""));
    return color;
  };
  for (std::size_t n = 0; n < table.formulas.size(); ++n)
    Must(Same(told(table.formulas[n]), told(back.formulas[n])), "the same formula");
  for (std::size_t n = 0; n < table.basics.size(); ++n)
    Must(Same(told(table.basics[n]), told(back.basics[n])), "the same Basic Color");
}

void FileHoldsIt(const FormulaTable& table) {
  if (kReader == FormulaFormat::Work) return;
  std::vector<SourceColor> basics = table.basics;
  FormulaFileText file(kReader, "INK", basics);
  std::vector<const SourceColor*> sent;
  for (const SourceColor& formula : table.formulas) {
    const bool shows = std::ranges::all_of(formula.recipe, [](const Ingredient& line) { return line.amount >= 0.001; });
    bool holds = CanHoldName(kReader, formula.name);
    for (const Ingredient& line : formula.recipe) holds &= CanHoldName(kReader, line.name);
    if (!shows || !holds) continue;
    Must(file.Add(formula.name, formula.code.value_or(""), formula.recipe).empty(), "it can be written");
    sent.push_back(&formula);
  }
  if (sent.empty()) return;
  const FormulaTable back = Read(file.Text(), kReader);
  Must(back.formulas.size() == sent.size(), "as many formulas");
  for (std::size_t n = 0; n < sent.size(); ++n) {
    Must(back.formulas[n].name == sent[n]->name, "the same name");
    Must(Trim(back.formulas[n].code.value_or("")) == Trim(sent[n]->code.value_or("")), "the same code");
    Must(NamesOf(back.formulas[n].recipe) == NamesOf(sent[n]->recipe), "the same ingredients");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  (void)RecogniseFormat(TextOfAnyEncoding(bytes), "found.txt", {});
  const auto table = ReadFormulaBytes(bytes, "found.txt", {.format = kReader});
  if (!table) {
    Must(!table.error().text.empty(), "a refusal says why");
    return 0;
  }
  std::set<std::string> formulas;
  std::set<std::string> basics;
  for (const SourceColor& formula : table->formulas) {
    MustBeSound(formula, formulas);
    Must(!formula.recipe.empty(), "a recipe");
  }
  for (const SourceColor& basic : table->basics) MustBeSound(basic, basics);
  const auto lines = 1 + std::ranges::count_if(bytes, [](char c) { return c == '\n' || c == '\r'; });
  for (const BadLine& bad : table->badLines) Must(bad.line >= 1 && bad.line <= lines && !bad.why.empty(), "a bad line");
  WorkFileHoldsIt(*table);
  FileHoldsIt(*table);
  return 0;
}
