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
#include "core/inventory/lots.h"

namespace vellumark {
namespace {

// Entries of one hopeless prefix that are stepped over before a seek past all of them is the cheaper way.
constexpr int kStepsBeforeSeek = 6;

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
  SetWalk(Session& session, std::string_view formulaSet, ContainedFormulas& found)
      : names_(SplitColorSet(formulaSet)), found_(found), walk_(session.File().Prepare(Sql(session))) {
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
    return fmt::format("SELECT RowKey, Color_Set FROM {} WHERE Color_Set >= ? AND Color_Set < ? ORDER BY Color_Set",
                       session.QuotedTable(schema::Mix));
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
      int items = 0;
      const std::size_t held = HeldPart(set, items);
      if (held == set.size()) {
        found_.rows.push_back(walk_.Whole(0));
        found_.mostItems = std::max(found_.mostItems, items);
        hopeless.clear();
      } else {
        const std::size_t close = set.find('>', held);
        hopeless = close == std::string_view::npos ? std::string() : std::string(set.substr(0, close + 1));
      }
    }
  }

  // Length of the part, in whole items, that the recipe holds.
  std::size_t HeldPart(std::string_view set, int& items) const {
    std::size_t at = 0;
    while (at < set.size()) {
      const std::size_t close = set.find('>', at);
      if (close == std::string_view::npos || set[at] != '<') break;
      std::string_view name = set.substr(at + 1, close - at - 1);
      if (HasPantonePrefix(name)) name.remove_prefix(kPantonePrefix.size());
      if (std::ranges::none_of(names_, [&](const std::string& n) { return EqualNoCase(n, name); })) break;
      at = close + 1;
      ++items;
    }
    return at;
  }

  std::vector<std::string> names_;
  ContainedFormulas& found_;
  Statement walk_;
};

// Rows are fetched so many at a time.
constexpr int kRowsAtOnce = 256;

// So many candidates with their first `slots` ingredients, in table order.
std::string CandidatesSql(Session& session, int slots, int rows = kRowsAtOnce) {
  std::string columns;
  for (const char* word : {"BC", "BQ"})
    for (int i = 0; i < slots; ++i) columns += fmt::format("{}{}, ", word, i);
  const std::string lotTable = session.QuotedTable(schema::MixLotInv);
  const bool lots =
      session.InvLotTracking != 0 && !session.File().Scalar(fmt::format("SELECT 1 FROM {} LIMIT 1", lotTable)).IsNull();
  std::string wanted = "?";
  for (int i = 1; i < rows; ++i) wanted += ",?";
  return fmt::format(
      "SELECT {}m.RowKey, Color_Name, Recycle, Inventory, {} FROM {} m WHERE m.RowKey IN ({}) ORDER BY m.RowKey",
      columns, lots ? fmt::format("(SELECT SUM(LotQty) FROM {} WHERE LotCName = m.Color_Name)", lotTable) : "NULL",
      session.QuotedTable(schema::Mix), wanted);
}

// What the lot holds that the open Batch itself made, when it is one of that colour.
double OwnLot(const Session& session, const BatchWork& work, std::string_view name) {
  if (session.InvLotTracking == 0 || work.made.LotRefID <= 0 || !EqualNoCase(name, work.Color_Name)) return 0;
  const auto lot = FindLot(session, ColorKind::Mix, name, {}, work.made.LotRefID);
  return lot ? RoundTo(lot->LotQty, 3) : 0;
}

RecycleColor ReadCandidate(const Session& session, const BatchWork& work, const Statement& row, int slots) {
  int used = 0;
  while (used < slots && !row.TextView(used).empty()) ++used;
  std::vector<RecycleSlot> read(static_cast<std::size_t>(used));
  for (int i = 0; i < used; ++i) {
    RecycleSlot& slot = read[static_cast<std::size_t>(i)];
    slot.BC = row.TextView(i);
    slot.BQ = row.Single(slots + i);
    for (const BatchIngredient& ingredient : work.FormulaIngredients) {
      if (!EqualNoCase(ingredient.IngName, slot.BC)) continue;
      slot.recipeSlot = ingredient.recipeSlot;
      break;
    }
  }
  RecycleColor color;
  color.slots = std::make_shared<const std::vector<RecycleSlot>>(std::move(read));
  int column = 2 * slots;
  color.key = row.Whole(column++);
  color.Color_Name = row.TextView(column++);
  color.Recycle = row.Bool(column++);
  const float inventory = row.Single(column++);
  const float own = UnlottedMade(session, work, color.Color_Name);
  color.Inventory = StockInUnit(session, work.UMF, own == 0 ? inventory : RoundSingle(RoundTo(inventory, 3) - own, 3),
                                row.Number(column) - OwnLot(session, work, color.Color_Name));
  SetUsable(color, color.Inventory);
  return color;
}

// Fills RecycleList, reading no more than so many slots of a formula; false when one of them has more.
bool ReadCandidates(Session& session, BatchWork& work, const std::vector<std::int64_t>& rows, int slots) {
  work.RecycleList.clear();
  work.RecycleList.reserve(rows.size());
  Statement candidates = session.File().Prepare(CandidatesSql(session, slots));
  for (std::size_t first = 0; first < rows.size(); first += kRowsAtOnce) {
    candidates.Reset();
    for (std::size_t i = 0; i < kRowsAtOnce; ++i)
      candidates.Bind(static_cast<int>(i + 1), rows[std::min(first + i, rows.size() - 1)]);
    while (candidates.Step()) {
      work.RecycleList.push_back(ReadCandidate(session, work, candidates, slots));
      const std::size_t used = work.RecycleList.back().slots->size();
      if (slots < schema::kIngredientSlots && used == static_cast<std::size_t>(slots)) return false;
    }
  }
  return true;
}

}  // namespace

ContainedFormulas FindContainedFormulas(Session& session, std::string_view formulaSet) {
  ContainedFormulas found;
  SetWalk(session, formulaSet, found).Run();
  // A formula without ingredients is contained in any other.
  Statement empty = session.File().Prepare(fmt::format(
      "SELECT RowKey FROM {0} WHERE Color_Set = '' UNION ALL SELECT RowKey FROM {0} WHERE Color_Set IS NULL",
      session.QuotedTable(schema::Mix)));
  while (empty.Step()) found.rows.push_back(empty.Whole(0));
  std::ranges::sort(found.rows);
  return found;
}

void BuildRecycleList(Session& session, BatchWork& work) {
  const ContainedFormulas found = FindContainedFormulas(session, work.formula.Color_Set);
  // The set tells how many slots are worth reading, but the slots are what counts.
  const int slots = std::min(found.mostItems + 1, schema::kIngredientSlots);
  if (!ReadCandidates(session, work, found.rows, slots))
    ReadCandidates(session, work, found.rows, schema::kIngredientSlots);
  RecalcRecycleList(work);
  work.FormulaRecycleList = work.RecycleList;
}

std::optional<RecycleColor> ReadRecycleColor(Session& session, const BatchWork& work, std::string_view name) {
  const std::int64_t row = session.File()
                               .Scalar(fmt::format("SELECT RowKey FROM {} WHERE Color_Name = ? ORDER BY RowKey LIMIT 1",
                                                   session.QuotedTable(schema::Mix)),
                                       {name})
                               .Whole();
  constexpr int slots = schema::kIngredientSlots;
  Statement candidate = session.File().Prepare(CandidatesSql(session, slots, 1));
  if (!candidate.Bind(1, row).Step()) return std::nullopt;
  RecycleColor color = ReadCandidate(session, work, candidate, slots);
  ReadChosenColor(session, work.UMF, color);
  return color;
}

void ReadChosenColor(Session& session, int unit, RecycleColor& color) {
  Statement row = session.File().Prepare(
      fmt::format("SELECT Color_Code, Inv_Note, Notes, PurchaseCost, BasicCost, Reorder, VOC, HAP, BasicVOC, BasicHAP "
                  "FROM {} WHERE RowKey = ?",
                  session.QuotedTable(schema::Mix)));
  if (!row.Bind(1, color.key).Step()) return;
  color.Color_Code = row.Text(0);
  color.Inv_Note = row.Text(1);
  color.Notes = row.Text(2);
  color.PurchaseCost = row.Single(3);
  color.BasicCost = row.Single(4);
  color.Reorder = StockInUnit(session, unit, row.Single(5), 0);
  color.VOC = row.Single(6);
  color.HAP = row.Single(7);
  color.BasicVOC = row.Single(8);
  color.BasicHAP = row.Single(9);
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

TableOf<RecycleListRow> RecycleListColumns(const RecycleListView& view, int unit) {
  std::string name = "Color Name", recycle = "Recycle", inventory = fmt::format("Inventory ({})", UnitName(unit));
  if (view.sorted) {
    switch (view.column) {
      case RecycleColumn::Name:
        name += view.reversed ? "  Z-A" : "  A-Z";
        break;
      case RecycleColumn::Recycle:
        recycle = view.reversed ? "<  Recycle" : ">  Recycle";
        break;
      case RecycleColumn::Inventory:
        inventory = view.reversed ? "<  Inventory" : ">  Inventory";
        break;
    }
  }
  TableOf<RecycleListRow> table;
  table.Add("Color_Name", &RecycleListRow::Color_Name, name).Width(3000);
  table
      .Add(
          "Recycle_Percent", [](const RecycleListRow& row) { return RoundTo(row.Recycle_Percent, 4); }, recycle,
          Format::Percent)
      .Width(1680);
  table.Add("Inventory", &RecycleListRow::Inventory, inventory).Width(2160);
  return table;
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
    rows.push_back({color.Color_Name, RoundSingle(color.Recycle_Percent, 4), color.Inventory,
                    color.Recycle && color.Inventory > 0, place});
  }
  return rows;
}

}  // namespace vellumark
