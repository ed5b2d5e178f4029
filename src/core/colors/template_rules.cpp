#include "core/colors/template_rules.h"

#include <fmt/format.h>

#include <cmath>
#include <map>
#include <set>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/guides.h"
#include "core/colors/names.h"
#include "core/colors/template_file.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

struct NoCase {
  bool operator()(const std::string& a, const std::string& b) const { return CompareNoCase(a, b) < 0; }
};
struct Seen {
  std::string name;
  std::string where;
};
using NamesSeen = std::map<std::string, Seen, NoCase>;  // by the name without its prefix

const Value& ValueOf(const TemplateRow& row, const Table& shape, std::string_view field) {
  return row.values[static_cast<std::size_t>(shape.Find(field))];
}

class RowJudge {
 public:
  RowJudge(const TemplateRow& row, std::vector<std::string>& faults) : row_(row), faults_(faults) {}
  void Fault(const std::string& what) { faults_.push_back(TemplateFault(row_, what)); }

  void JudgeName(const std::string& name, NamesSeen& seen) {
    if (name.empty()) return;  // already told by whoever read the row
    if (!row_.broken) {
      if (!HasPantonePrefix(name) || StripPantonePrefix(name).empty())
        Fault(fmt::format("the name {} does not begin with \"{}\"", name, kPantonePrefix));
      if (name != Upper(TrimView(name))) Fault(fmt::format("the name {} is not trimmed and in capitals", name));
      constexpr int kLongest = 30;
      if (auto good = CheckNewName(name, NameSource::File, kLongest); !good) Fault(good.error().text);
    }
    if (const auto [first, added] = seen.emplace(StripPantonePrefix(name), Seen{name, row_.where}); !added)
      Fault(fmt::format("the name {} stands already in {}", name, first->second.where));
  }

  void JudgeRecipe(const NamesSeen& basics) {
    std::set<std::string, NoCase> used;
    std::int64_t thousandths = 0;
    bool ended = false;
    for (int n = 0; n < schema::kIngredientSlots; ++n) {
      const std::string name = ValueOf(row_, schema::Mix, schema::Numbered("BC", n)).Text();
      const float amount = ValueOf(row_, schema::Mix, schema::Numbered("BQ", n)).Single();
      if (name.empty()) {
        if (amount != 0) Fault(fmt::format("BQ{} holds an amount and BC{} no ingredient", n, n));
        ended = true;
        continue;
      }
      if (ended) Fault(fmt::format("BC{} holds an ingredient behind an empty one", n));
      const auto basic = basics.find(StripPantonePrefix(name));
      if (basic == basics.end() || !EqualNoCase(basic->second.name, name))
        Fault(fmt::format("the guide has no Basic Color {}", name));
      if (!used.insert(StripPantonePrefix(name)).second) Fault(fmt::format("the ingredient {} stands twice", name));
      thousandths += JudgeAmount(name, amount);
    }
    if (used.empty()) return Fault("the formula has no ingredients");
    if (thousandths != kHundred)
      Fault(fmt::format("the amounts total {}, not 100.000", Fixed(static_cast<double>(thousandths) / 1000, 3)));
  }

 private:
  static constexpr std::int64_t kHundred = 100'000;

  // The amount in thousandths.
  std::int64_t JudgeAmount(const std::string& name, float amount) {
    if (!(amount > 0 && amount <= 100) || RoundSingle(amount, 3) != amount)
      Fault(fmt::format("the amount {} of {} is not a number of 0.001 to 100 with at most three decimals",
                        ShortestText(amount), name));
    return std::llround(static_cast<double>(amount) * 1000);
  }

  const TemplateRow& row_;
  std::vector<std::string>& faults_;
};

}  // namespace

std::string TemplateFault(const TemplateRow& row, const std::string& what) {
  return row.where + ": " + what + (row.content.empty() ? "" : ": " + row.content);
}

void CheckGuideRows(const std::vector<TemplateRow>& basics, const std::vector<TemplateRow>& formulas,
                    std::vector<std::string>& faults) {
  NamesSeen basicNames;
  for (const TemplateRow& row : basics)
    RowJudge(row, faults).JudgeName(ValueOf(row, schema::Basic, "Color_Name").Text(), basicNames);
  NamesSeen formulaNames;
  for (const TemplateRow& row : formulas) {
    RowJudge judge(row, faults);
    judge.JudgeName(ValueOf(row, schema::Mix, "Color_Name").Text(), formulaNames);
    if (!row.broken) judge.JudgeRecipe(basicNames);
  }
}

void CheckInfoRows(const std::vector<TemplateRow>& rows, std::vector<std::string>& faults) {
  if (rows.size() != 1) {
    faults.push_back(fmt::format("{}: holds {} rows, one is needed", kTemplateInfoTable, rows.size()));
    return;
  }
  if (rows.front().broken) return;
  for (const char* field : {"FullName", "TemplateFile"})
    if (TrimView(ValueOf(rows.front(), schema::Info, field).Text()).empty())
      RowJudge(rows.front(), faults).Fault(fmt::format("{} is empty", field));
}

}  // namespace vellumark
