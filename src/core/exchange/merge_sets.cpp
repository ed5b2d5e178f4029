#include "core/exchange/merge_sets.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/colors/additive_sets.h"
#include "core/colors/basics.h"
#include "core/colors/name_map.h"
#include "core/colors/names.h"

namespace vellumark {
namespace {

bool SameRows(const Recipe& a, const Recipe& b) {
  return a.size() == b.size() && std::ranges::is_permutation(a, b, [](const Ingredient& x, const Ingredient& y) {
           return static_cast<float>(x.amount) == static_cast<float>(y.amount) && EqualNoCase(x.name, y.name);
         });
}

// Why it cannot be a set of the Database; empty when it can.
std::string FaultOf(Session& session, const MergePlan& plan, const SourceSet& set) {
  if (const auto good = CheckNewName(set.name, NameSource::File, kSetNameLength); !good) return good.error().text;
  if (set.name.empty()) return "it has no name";
  if (set.parts.empty() || set.parts.size() > static_cast<std::size_t>(schema::kSetSlots))
    return fmt::format("it has {} Additives", set.parts.size());
  NamesOnce names;
  for (const Ingredient& line : set.parts) {
    if (!names.insert(line.name).second) return fmt::format("{} stands in it twice", line.name);
    if (const auto percent = ReadSetPercent(fmt::format("{}", line.amount)); !percent)
      return fmt::format("its percentage of {} is not above 0 and at most 10", line.name);
    if (plan.target.make) continue;
    if (const auto basic = ReadBasic(session, line.name, plan.target.database); basic && !basic->Additive)
      return fmt::format("{} is a Basic Color here and no Additive", line.name);
  }
  return {};
}

class SetNames {
 public:
  SetNames(Session& session, const MergePlan& plan) {
    if (plan.target.make) return;
    for (const AdditiveSet& set : ListAdditiveSets(session, plan.target.database)) rows_.emplace(set.SetName, set.Rows());
  }

  MergeSet PlaceOf(const SourceSet& set) {
    for (int number = 0;; ++number) {
      const std::string behind = number == 0 ? "" : number == 1 ? " DUP" : fmt::format(" DUP {}", number);
      const std::string name =
          Trim(Left(set.name, static_cast<std::size_t>(kSetNameLength) - behind.size())) + behind;
      const auto held = rows_.find(name);
      if (held == rows_.end()) {
        rows_.emplace(name, set.parts);
        return {set.name, name, false, {}};
      }
      if (SameRows(held->second, set.parts)) return {set.name, name, true, {}};
    }
  }

 private:
  NameMap<Recipe> rows_;
};

}  // namespace

void PlanSets(Session& session, MergePlan& plan) {
  SetNames names(session, plan);
  for (const SourceSet& set : plan.table.sets) {
    if (std::string fault = FaultOf(session, plan, set); !fault.empty()) {
      plan.sets.push_back({set.name, {}, false, std::move(fault)});
    } else {
      plan.sets.push_back(names.PlaceOf(set));
    }
  }
}

std::string SetHere(const MergePlan& plan, std::string_view name) {
  if (name.empty()) return {};
  const auto set = std::ranges::find_if(plan.sets, [&](const MergeSet& s) { return EqualNoCase(s.name, name); });
  return set == plan.sets.end() ? std::string() : set->here;
}

}  // namespace vellumark
