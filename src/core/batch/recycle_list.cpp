#include "core/batch/recycle_list.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/recipe.h"
#include "core/colors/color_set.h"
#include "core/colors/names.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

// Entries of one hopeless prefix that are stepped over before a seek past all of them is the cheaper way.
constexpr int kStepsBeforeSeek = 8;

// The smallest text that stands behind every Color_Set beginning with `prefix`: its closing mark raised by one.
std::string BehindPrefix(std::string_view prefix) {
  std::string behind(prefix);
  behind.back() = static_cast<char>('>' + 1);
  return behind;
}

// A walk over the index on Color_Set, from the sets that begin with one ingredient of the recipe. A set is given up at
// its first ingredient that the recipe lacks; so is, by a seek, whatever else begins like it.
class SetWalk {
 public:
  SetWalk(Session& session, std::string_view formulaSet, std::vector<std::int64_t>& rows)
      : names_(SplitColorSet(formulaSet)), rows_(rows), walk_(session.File().Prepare(Sql(session))) {
    for (std::string& name : names_) name = StripPantonePrefix(name);
  }

  void Run() {
    std::vector<std::string> begun;
    for (const std::string& name : names_) {
      for (const std::string& first : {name, std::string(kPantonePrefix) + name}) {
        const bool again = std::ranges::any_of(begun, [&](const std::string& b) { return EqualNoCase(b, first); });
        if (!again) From("<" + first + ">");
        begun.push_back(first);
      }
    }
  }

 private:
  static std::string Sql(const Session& session) {
    return fmt::format("SELECT rowid, Color_Set FROM {} WHERE Color_Set >= ? AND Color_Set < ? ORDER BY Color_Set",
                       Quoted(session.Table(schema::Mix)));
  }

  void From(const std::string& first) {
    const std::string end = BehindPrefix(first);
    std::string hopeless;
    int steps = 0;
    walk_.Reset();
    walk_.Bind(1, first).Bind(2, end);
    while (walk_.Step()) {
      const std::string_view set = walk_.TextView(1);
      if (!hopeless.empty() && StartsWithNoCase(set, hopeless)) {
        if (++steps < kStepsBeforeSeek) continue;
        const std::string behind = BehindPrefix(hopeless);
        hopeless.clear();
        walk_.Reset();
        walk_.Bind(1, behind);
        continue;
      }
      steps = 0;
      const std::size_t held = HeldPart(set);
      if (held == set.size()) {
        rows_.push_back(walk_.Whole(0));
        hopeless.clear();
      } else {
        const std::size_t close = set.find('>', held);
        hopeless = close == std::string_view::npos ? std::string() : std::string(set.substr(0, close + 1));
      }
    }
  }

  // Length of the part, in whole items, that the recipe holds.
  std::size_t HeldPart(std::string_view set) const {
    std::size_t at = 0;
    while (at < set.size()) {
      const std::size_t close = set.find('>', at);
      if (close == std::string_view::npos || set[at] != '<') break;
      std::string_view name = set.substr(at + 1, close - at - 1);
      if (HasPantonePrefix(name)) name.remove_prefix(kPantonePrefix.size());
      if (std::ranges::none_of(names_, [&](const std::string& n) { return EqualNoCase(n, name); })) break;
      at = close + 1;
    }
    return at;
  }

  std::vector<std::string> names_;
  std::vector<std::int64_t>& rows_;
  Statement walk_;
};

// The columns of a candidate, the lots' total last.
std::string CandidateSql(const Session& session) {
  std::string slots;
  for (const char* word : {"BC", "BQ"})
    for (int i = 0; i < schema::kIngredientSlots; ++i) slots += fmt::format("{}{}, ", word, i);
  const std::string lots = session.InvLotTracking == 0
                               ? "NULL"
                               : fmt::format("(SELECT SUM(LotQty) FROM {} WHERE LotCName = m.Color_Name)",
                                             Quoted(session.Table(schema::MixLotInv)));
  return fmt::format(
      "SELECT {}Color_Name, Color_Code, Inventory, Reorder, PurchaseCost, BasicCost, Recycle, Inv_Note, Notes, VOC, "
      "HAP, BasicVOC, BasicHAP, {} FROM {} m WHERE rowid = ?",
      slots, lots, Quoted(session.Table(schema::Mix)));
}

RecycleColor ReadCandidate(const Session& session, const BatchWork& work, const Statement& row) {
  RecycleColor color;
  std::array<std::string_view, schema::kIngredientSlots> names;
  std::size_t used = 0;
  while (used < names.size()) {
    names[used] = row.TextView(static_cast<int>(used));
    if (names[used].empty()) break;
    ++used;
  }
  color.slots.resize(used);
  for (std::size_t i = 0; i < used; ++i) {
    RecycleSlot& slot = color.slots[i];
    slot.BC = names[i];
    slot.BQ = row.Single(schema::kIngredientSlots + static_cast<int>(i));
    for (const BatchIngredient& ingredient : work.FormulaIngredients) {
      if (!EqualNoCase(ingredient.IngName, slot.BC)) continue;
      slot.recipeSlot = ingredient.recipeSlot;
      break;
    }
  }
  int column = 2 * schema::kIngredientSlots;
  color.Color_Name = row.TextView(column++);
  color.Color_Code = row.TextView(column++);
  const float inventory = row.Single(column++);
  color.Reorder = StockInUnit(session, work.UMF, row.Single(column++), 0);
  color.PurchaseCost = row.Single(column++);
  color.BasicCost = row.Single(column++);
  color.Recycle = row.Bool(column++);
  color.Inv_Note = row.TextView(column++);
  color.Notes = row.TextView(column++);
  color.VOC = row.Single(column++);
  color.HAP = row.Single(column++);
  color.BasicVOC = row.Single(column++);
  color.BasicHAP = row.Single(column++);
  color.Inventory = StockInUnit(session, work.UMF, inventory, row.Number(column));
  SetUsable(color, color.Inventory);
  return color;
}

}  // namespace

std::vector<std::int64_t> ContainedFormulas(Session& session, std::string_view formulaSet) {
  std::vector<std::int64_t> rows;
  SetWalk(session, formulaSet, rows).Run();
  // A formula without ingredients is contained in any other.
  Statement empty = session.File().Prepare(
      fmt::format("SELECT rowid FROM {0} WHERE Color_Set = '' UNION ALL SELECT rowid FROM {0} WHERE Color_Set IS NULL",
                  Quoted(session.Table(schema::Mix))));
  while (empty.Step()) rows.push_back(empty.Whole(0));
  std::ranges::sort(rows);
  return rows;
}

void BuildRecycleList(Session& session, BatchWork& work) {
  const std::vector<std::int64_t> rows = ContainedFormulas(session, work.formula.Color_Set);
  work.RecycleList.clear();
  work.RecycleList.reserve(rows.size());
  Statement row = session.File().Prepare(CandidateSql(session));
  for (const std::int64_t rowId : rows) {
    row.Reset();
    if (row.Bind(1, rowId).Step()) work.RecycleList.push_back(ReadCandidate(session, work, row));
  }
  RecalcRecycleList(work);
  work.FormulaRecycleList = work.RecycleList;
}

void RefreshRecycleList(Session& session, BatchWork& work) {
  if (work.FormulaRecycleList.empty()) BuildRecycleList(session, work);
  std::erase_if(work.RecycleList, [&](const RecycleColor& color) {
    return std::ranges::any_of(work.RecycledColors, [&](const RecycleColor& chosen) {
      return EqualNoCase(chosen.Color_Name, color.Color_Name);
    });
  });
  RecalcRecycleList(work);
  SortRecycleList(work);
}

void ClickHeader(RecycleListView& view, RecycleColumn column) {
  view.reversed = view.sorted && view.column == column && !view.reversed;
  view.sorted = true;
  view.column = column;
}

std::array<std::string, 3> RecycleListCaptions(const RecycleListView& view, int unit) {
  std::array<std::string, 3> captions{"Color Name", "Recycle", fmt::format("Inventory ({})", UnitName(unit))};
  if (!view.sorted) return captions;
  switch (view.column) {
    case RecycleColumn::Name:
      captions[0] = view.reversed ? "Color Name  Z-A" : "Color Name  A-Z";
      break;
    case RecycleColumn::Recycle:
      captions[1] = view.reversed ? "<  Recycle" : ">  Recycle";
      break;
    case RecycleColumn::Inventory:
      captions[2] = view.reversed ? "<  Inventory" : ">  Inventory";
      break;
  }
  return captions;
}

std::vector<RecycleListRow> RecycleListRows(const BatchWork& work, const RecycleListView& view) {
  const std::vector<RecycleColor>& list = work.RecycleList;
  std::vector<std::size_t> shown;
  for (std::size_t i = 0; i < list.size(); ++i) {
    const bool inStock = list[i].Recycle && list[i].Inventory > 0;
    if (list[i].Recycle_Percent > 0 && (inStock || !view.inventoryOnly)) shown.push_back(i);
  }
  if (view.sorted) {
    const auto before = [&](std::size_t a, std::size_t b) {
      switch (view.column) {
        case RecycleColumn::Name:
          return CompareNoCase(list[a].Color_Name, list[b].Color_Name) < 0;
        case RecycleColumn::Recycle:
          return list[a].Recycle_Percent > list[b].Recycle_Percent;
        case RecycleColumn::Inventory:
          return list[a].Inventory > list[b].Inventory;
      }
      std::unreachable();
    };
    std::ranges::stable_sort(shown,
                             [&](std::size_t a, std::size_t b) { return view.reversed ? before(b, a) : before(a, b); });
  }
  std::vector<RecycleListRow> rows;
  rows.reserve(shown.size());
  for (const std::size_t place : shown) {
    const RecycleColor& color = list[place];
    rows.push_back({color.Color_Name, Fixed(static_cast<double>(color.Recycle_Percent) * 100, 2) + "%",
                    Fixed(color.Inventory, 3), color.Recycle && color.Inventory > 0, place});
  }
  return rows;
}

}  // namespace vellumark
