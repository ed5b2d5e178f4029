// Random rooms merged, against a plain model of what must come out.

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <set>

#include "merge_room.h"

namespace vellumark {
namespace {

// In thousandths of a part.
using Parts = std::map<std::string, std::int64_t>;
struct ModelFormula {
  Parts parts;
  std::string set;
  bool operator==(const ModelFormula&) const = default;
};
struct ModelBasic {
  double cost = 0;
  bool additive = false;
  bool operator==(const ModelBasic&) const = default;
};
struct Model {
  std::map<std::string, ModelBasic> basics;
  std::map<std::string, Parts> sets;
  std::map<std::string, ModelFormula> formulas;
  bool operator==(const Model&) const = default;
};

void PrintTo(const ModelBasic& basic, std::ostream* out) { *out << basic.cost << (basic.additive ? " additive" : ""); }
void PrintTo(const ModelFormula& formula, std::ostream* out) {
  for (const auto& [name, part] : formula.parts) *out << name << "=" << part << " ";
  *out << formula.set;
}

class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}
  int Of(int sides) { return static_cast<int>(engine_() % static_cast<unsigned>(sides)); }

 private:
  std::mt19937 engine_;
};

std::int64_t Sum(const Parts& parts) {
  std::int64_t sum = 0;
  for (const auto& [name, part] : parts) sum += part;
  return sum;
}

Model RandomRoom(Dice& dice, bool isHere) {
  Model room;
  for (int n = 0; n < 8; ++n)
    if (dice.Of(3) > 0) room.basics["B" + std::to_string(n)] = {dice.Of(2000) / 100.0, dice.Of(2) == 0};
  std::vector<std::string> names;
  std::vector<std::string> additives;
  for (const auto& [name, basic] : room.basics) (basic.additive ? additives : names).push_back(name);
  names.push_back("B9");
  room.basics["B9"] = {1, false};
  std::vector<std::string> setNames{"S1", "S2", "S3"};
  if (isHere) setNames.insert(setNames.end(), {"S1 DUP", "S2 DUP", "S2 DUP 2"});
  for (const std::string& set : setNames) {
    if (additives.empty() || dice.Of(3) == 0) continue;
    Parts parts;
    for (int n = dice.Of(2); n >= 0; --n)
      parts[additives[static_cast<std::size_t>(dice.Of(static_cast<int>(additives.size())))]] = std::int64_t{1 + dice.Of(2)} * 1000;
    room.sets[set] = parts;
  }
  for (int n = 0; n < 7; ++n) {
    if (dice.Of(3) == 0) continue;
    ModelFormula formula;
    if (!room.sets.empty() && dice.Of(2) == 0) {
      auto set = room.sets.begin();
      std::advance(set, dice.Of(static_cast<int>(room.sets.size())));
      formula.set = set->first;
      formula.parts = set->second;
    }
    std::int64_t left = 100000 - Sum(formula.parts);
    const std::string& first = names[static_cast<std::size_t>(dice.Of(static_cast<int>(names.size())))];
    if (first != "B9" && dice.Of(2) == 0) {
      formula.parts[first] = std::int64_t{1 + dice.Of(20)} * 1000;
      left -= formula.parts[first];
    }
    formula.parts["B9"] = left;
    room.formulas["F" + std::to_string(n)] = formula;
  }
  return room;
}

void Furnish(test::InkRoom& room, const Model& model) {
  for (const auto& [name, basic] : model.basics)
    room.Basic(name, {{"PurchaseCost", static_cast<float>(basic.cost)}, {"Additive", basic.additive}});
  const auto recipe = [](const Parts& parts) {
    Recipe rows;
    for (const auto& [name, part] : parts) rows.push_back({name, static_cast<double>(part) / 1000});
    return rows;
  };
  for (const auto& [name, parts] : model.sets) AddSet(room, name, recipe(parts));
  for (const auto& [name, formula] : model.formulas) {
    std::vector<std::pair<std::string, float>> parts;
    for (const Ingredient& line : recipe(formula.parts)) parts.emplace_back(line.name, static_cast<float>(line.amount));
    room.Mix(name, parts, {{"AddSetName", formula.set}});
  }
}

Model ReadModel(test::InkRoom& room) {
  Model model;
  ForEachBasic(room.session, [&](const BasicColor& basic) {
    model.basics[basic.Color_Name] = {static_cast<double>(std::lround(basic.PurchaseCost * 100)) / 100, basic.Additive};
    return true;
  });
  const auto parts = [](const Recipe& recipe) {
    Parts read;
    for (const Ingredient& line : recipe) read[line.name] = std::llround(line.amount * 1000);
    return read;
  };
  for (const AdditiveSet& set : ListAdditiveSets(room.session)) model.sets[set.SetName] = parts(set.Rows());
  ForEachMix(room.session, [&](const MixColor& mix) {
    model.formulas[mix.Color_Name] = {parts(mix.Ingredients()), mix.AddSetName};
    return true;
  });
  return model;
}

// What the merge has to make of `here`; the source counts in kilograms, this program in pounds.
Model Merged(Model here, const Model& there, bool takeDifferent) {
  const Model before = here;
  std::map<std::string, std::string> setOf;
  for (const auto& [name, parts] : there.sets) {
    bool fits = true;
    for (const auto& [additive, part] : parts)
      fits = fits && (!before.basics.contains(additive) || before.basics.at(additive).additive);
    if (!fits) continue;
    std::string as = name;
    for (int n = 1; here.sets.contains(as) && here.sets.at(as) != parts; ++n)
      as = name + (n == 1 ? " DUP" : " DUP " + std::to_string(n));
    here.sets[as] = parts;
    setOf[name] = as;
  }
  for (const auto& [name, basic] : there.basics)
    if (!here.basics.contains(name))
      here.basics[name] = {std::round(basic.cost * 0.45359237 * 100) / 100, basic.additive};
  for (const auto& [name, formula] : there.formulas) {
    // A source without sets tells nothing of them.
    std::string set = formula.set.empty() || !setOf.contains(formula.set) ? "" : setOf.at(formula.set);
    const bool isHere = before.formulas.contains(name);
    if (isHere && !takeDifferent) continue;
    if (isHere && there.sets.empty()) {
      const std::string& own = before.formulas.at(name).set;
      bool held = !own.empty();
      if (held)
        for (const auto& [additive, part] : before.sets.at(own))
          held = held && formula.parts.contains(additive) && formula.parts.at(additive) == part;
      if (held && before.sets.at(own).size() < formula.parts.size()) set = own;
    }
    here.formulas[name] = {formula.parts, set};
  }
  return here;
}

TEST(FormulaMergeModel, RandomRoomsComeTogetherAsThePlainModelSays) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE(seed);
    Dice dice(seed);
    const Model there = RandomRoom(dice, false);
    const Model here = RandomRoom(dice, true);
    if (there.formulas.empty()) continue;
    test::OtherShop shop;
    Furnish(shop, there);
    test::InkRoom room;
    Furnish(room, here);
    ASSERT_EQ(ReadModel(room), here);
    const bool all = dice.Of(2) == 0;
    const auto report = ImportTable(room.session, shop.Read(room.session),
                                    {.options = {.sourceUnit = 2}, .take = all ? TakeWhat::All : TakeWhat::New});
    ASSERT_TRUE(report) << report.error().text;
    const Model wanted = Merged(here, there, all);
    const Model got = ReadModel(room);
    EXPECT_EQ(got.basics, wanted.basics);
    EXPECT_EQ(got.sets, wanted.sets);
    EXPECT_EQ(got.formulas, wanted.formulas);
    if (report->import == 0) continue;
    ASSERT_TRUE(UndoImport(room.session));
    EXPECT_EQ(ReadModel(room), here);
  }
}

}  // namespace
}  // namespace vellumark
