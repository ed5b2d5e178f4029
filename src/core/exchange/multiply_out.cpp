#include "core/exchange/multiply_out.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>

#include "core/base/text.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

class Multiplier {
 public:
  Multiplier(const IngredientNames& names, std::vector<SourceColor>& formulas, bool multiply)
      : names_(names), formulas_(formulas), multiply_(multiply), out_(formulas.size()), marks_(formulas.size()) {}

  std::vector<OutMultiplied> Run() {
    for (std::size_t place = 0; place < formulas_.size(); ++place) Visit(place);
    return std::move(out_);
  }

 private:
  enum class Mark : char { None, Open, Done };

  struct Part {
    std::optional<std::size_t> place;  ///< of the source
    const Recipe* here = nullptr;
  };

  const Recipe* Here(const std::string& name) {
    const auto [found, isNew] = here_.try_emplace(name);
    if (isNew) found->second = names_.here(name);
    return found->second ? &*found->second : nullptr;
  }

  // A formula that stands as an ingredient; nothing for a Basic Color.
  Part FormulaOf(const std::string& name) {
    const auto [known, isNew] = basics_.try_emplace(name, true);
    if (!isNew && known->second) return {};
    Part part;
    if (!names_.isBasic(name)) {
      part.place = names_.inSource(name);
      if (!part.place) part.here = Here(name);
    }
    known->second = !part.place && part.here == nullptr;
    return part;
  }

  // Recipes may lean on one another to any depth, so the way is kept in a list of our own.
  void Visit(std::size_t first) {
    if (marks_[first] != Mark::None) return;
    struct Step {
      std::size_t place;
      std::size_t next;
    };
    std::vector<Step> way{{first, 0}};
    marks_[first] = Mark::Open;
    while (!way.empty()) {
      const std::size_t place = way.back().place;
      const Recipe& recipe = formulas_[place].recipe;
      if (way.back().next == recipe.size()) {
        Finish(place);
        way.pop_back();
        continue;
      }
      const Part part = FormulaOf(recipe[way.back().next++].name);
      if (!part.place && part.here == nullptr) continue;
      out_[place].hasFormulas = true;
      if (!part.place || marks_[*part.place] == Mark::Done) continue;
      if (marks_[*part.place] == Mark::None) {
        marks_[*part.place] = Mark::Open;
        way.push_back({*part.place, 0});
        continue;
      }
      std::vector<std::size_t> circle;
      for (auto step = std::ranges::find(way, *part.place, &Step::place); step != way.end(); ++step)
        circle.push_back(step->place);
      TellCircle(circle);
    }
  }

  void TellCircle(const std::vector<std::size_t>& circle) {
    for (std::size_t n = 0; n < circle.size(); ++n) {
      std::string through;
      for (std::size_t step = 1; step < circle.size(); ++step)
        through += (step == 1 ? "" : ", ") + formulas_[circle[(n + step) % circle.size()]].name;
      std::string& fault = out_[circle[n]].fault;
      if (fault.empty())
        fault = fmt::format("the formula {} names itself through {}", formulas_[circle[n]].name, through);
    }
  }

  // What it leans on is done, or stands in a circle with it.
  void Finish(std::size_t place) {
    marks_[place] = Mark::Done;
    OutMultiplied& out = out_[place];
    if (!multiply_ || !out.hasFormulas || !out.fault.empty()) return;
    Recipe whole;
    std::unordered_map<std::string, std::size_t> lines;
    const auto add = [&](const std::string& name, double amount) {
      const auto [line, isNew] = lines.try_emplace(Upper(name), whole.size());
      if (isNew) whole.push_back({name, 0});
      whole[line->second].amount += amount;
    };
    for (const Ingredient& line : formulas_[place].recipe) {
      const Part part = FormulaOf(line.name);
      if (part.place && !out_[*part.place].fault.empty()) {
        out.fault = fmt::format("its ingredient {} cannot be multiplied out", line.name);
        return;
      }
      const Recipe* recipe = part.place ? &formulas_[*part.place].recipe : part.here;
      if (recipe == nullptr) {
        add(line.name, line.amount);
        continue;
      }
      double total = 0;
      for (const Ingredient& inner : *recipe) total += inner.amount;
      for (const Ingredient& inner : *recipe) add(inner.name, line.amount * inner.amount / total);
    }
    if (whole.size() > static_cast<std::size_t>(schema::kIngredientSlots)) {
      out.fault = fmt::format("the formula has {} ingredients when it is multiplied out, the limit is {}", whole.size(),
                              schema::kIngredientSlots);
      return;
    }
    formulas_[place].recipe = std::move(whole);
    formulas_[place].addSetName.clear();
  }

  const IngredientNames& names_;
  std::vector<SourceColor>& formulas_;
  bool multiply_;
  std::vector<OutMultiplied> out_;
  std::vector<Mark> marks_;
  std::unordered_map<std::string, bool> basics_;
  std::unordered_map<std::string, std::optional<Recipe>> here_;
};

}  // namespace

std::vector<OutMultiplied> MultiplyOut(const IngredientNames& names, std::vector<SourceColor>& formulas, bool multiply) {
  return Multiplier(names, formulas, multiply).Run();
}

}  // namespace vellumark
