#include "core/batch/recipe.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/recycle_list.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

constexpr float kLeastAmount = 0.0005F;
constexpr std::size_t kMostLinesBeforeRecycling = 19;

int RecipeSlotOf(const std::vector<BatchIngredient>& recipe, std::string_view name) {
  for (std::size_t i = 0; i < recipe.size(); ++i)
    if (EqualNoCase(recipe[i].IngName, name)) return static_cast<int>(i);
  return -1;
}

void ResolveColor(const std::vector<BatchIngredient>& recipe, RecycleColor& color) {
  std::vector<RecycleSlot> slots = *color.slots;
  for (RecycleSlot& slot : slots) slot.recipeSlot = RecipeSlotOf(recipe, slot.BC);
  color.slots = std::make_shared<const std::vector<RecycleSlot>>(std::move(slots));
}

// Where each ingredient of the recipe stands among those that remain, so that thousands of colours can be tried
// against them without comparing names.
class Remainder {
 public:
  explicit Remainder(const std::vector<BatchIngredient>& ingredients) : ingredients_(ingredients) {
    place_.fill(-1);
    for (std::size_t i = 0; i < ingredients.size(); ++i) {
      const int slot = ingredients[i].recipeSlot;
      if (slot >= 0 && place_[static_cast<std::size_t>(slot)] < 0)
        place_[static_cast<std::size_t>(slot)] = static_cast<int>(i);
    }
  }
  int Place(const RecycleSlot& slot) const {
    return slot.recipeSlot < 0 ? -1 : place_[static_cast<std::size_t>(slot.recipeSlot)];
  }
  const BatchIngredient* Find(const RecycleSlot& slot) const {
    const int place = Place(slot);
    return place < 0 ? nullptr : &ingredients_[static_cast<std::size_t>(place)];
  }

 private:
  const std::vector<BatchIngredient>& ingredients_;
  std::array<int, schema::kIngredientSlots> place_{};
};

void CalcPercent(const Remainder& remainder, RecycleColor& color) {
  float share = 1;
  for (const RecycleSlot& slot : *color.slots) {
    const BatchIngredient* ingredient = remainder.Find(slot);
    const float ratio = ingredient == nullptr || slot.BQ == 0
                            ? 0
                            : static_cast<float>(static_cast<double>(ingredient->Percent) / slot.BQ);
    share = std::min(share, ratio);
    if (share == 0) break;
  }
  color.Recycle_Percent = share;
}

void Cap(const Remainder& remainder, RecycleColor& color) {
  const std::vector<RecycleSlot>& slots = *color.slots;
  float factor = 1;
  for (std::size_t i = 0; i < slots.size() && factor != 0; ++i) {
    const BatchIngredient* ingredient = remainder.Find(slots[i]);
    // Stock booked below zero brings in less than nothing, and that cannot be used.
    const float ratio = ingredient == nullptr || color.RecAmount[i] <= 0
                            ? 0
                            : static_cast<float>(static_cast<double>(ingredient->Amount) / color.RecAmount[i]);
    factor = std::min(factor, ratio);
  }
  float sum = 0;
  for (std::size_t i = 0; i < slots.size(); ++i) {
    color.RecAmount[i] = static_cast<float>(static_cast<double>(factor) * color.RecAmount[i]);
    sum = static_cast<float>(static_cast<double>(sum) + color.RecAmount[i]);
  }
  // The texts of rounding are what costs time here, and colours without stock are many. The share goes by the amounts
  // before they are rounded: of stock in another unit, 0.00136 shown as 0.001, the recipe takes no more for that.
  const double capped = static_cast<double>(factor) * color.Usable;
  color.Usable = factor == 0 ? 0 : RoundSingle(capped, 3);
  color.Recycle_Percent =
      color.Usable == 0 ? 0 : static_cast<float>(static_cast<double>(sum) / capped * color.Recycle_Percent);
  color.Usable = sum == 0 ? 0 : RoundSingle(sum, 3);
}

// What the colour brings in is no longer to be weighed; ingredients that are used up leave the list.
void TakeFromIngredients(BatchWork& work, const RecycleColor& color) {
  const Remainder remainder(work.Ingredients);
  for (std::size_t i = 0; i < color.slots->size(); ++i) {
    const int place = remainder.Place((*color.slots)[i]);
    if (place < 0) continue;
    float& amount = work.Ingredients[static_cast<std::size_t>(place)].Amount;
    amount = static_cast<float>(static_cast<double>(amount) - color.RecAmount[i]);
  }
  std::erase_if(work.Ingredients, [](const BatchIngredient& i) { return i.Amount < kLeastAmount; });
  double sum = 0;
  for (const BatchIngredient& ingredient : work.Ingredients) sum += ingredient.Amount;
  for (BatchIngredient& ingredient : work.Ingredients)
    ingredient.Percent = static_cast<float>(static_cast<double>(ingredient.Amount) * 100 / sum);
}

// `Recycle_Percent` in millionths, rounded as its six-decimals text is.
std::int64_t SortKey(float share) {
  const double millionths = static_cast<double>(share) * 1e6;
  const double floor = std::floor(millionths);
  // The shortest decimal lies within half a step of the Single; only near a tie can that decide.
  if (std::abs(millionths - floor - 0.5) > 0.1) return static_cast<std::int64_t>(std::floor(millionths + 0.5));
  return std::llround(RoundTo(share, 6) * 1e6);
}

struct Ranked {
  std::int64_t key;
  std::uint32_t place;  ///< in RecycleList
};

void SortRanked(std::vector<Ranked>& order) {
  std::ranges::sort(
      order, [](const Ranked& a, const Ranked& b) { return a.key != b.key ? a.key > b.key : a.place < b.place; });
}

void Rank(const std::vector<RecycleColor>& list, std::vector<Ranked>& order) {
  for (Ranked& ranked : order) ranked.key = SortKey(list[ranked.place].Recycle_Percent);
  SortRanked(order);
}

void CalcPercents(BatchWork& work, const std::vector<Ranked>& colors) {
  const Remainder remainder(work.Ingredients);
  for (const Ranked& ranked : colors) CalcPercent(remainder, work.RecycleList[ranked.place]);
}

void Rearrange(std::vector<RecycleColor>& list, const std::vector<Ranked>& order) {
  std::vector<RecycleColor> arranged;
  arranged.reserve(order.size());
  for (const Ranked& ranked : order) arranged.push_back(std::move(list[ranked.place]));
  list = std::move(arranged);
}

// The first colour, by rank, of which something can be used and whose flag is set. The list is ranked, so nothing
// behind a share of 0 can be used. A colour that is passed over keeps what it was lowered to.
std::vector<Ranked>::const_iterator NextToRecycle(BatchWork& work, const std::vector<Ranked>& order) {
  const Remainder remainder(work.Ingredients);
  for (auto ranked = order.begin(); ranked != order.end(); ++ranked) {
    RecycleColor& color = work.RecycleList[ranked->place];
    if (color.Recycle_Percent == 0) break;
    Cap(remainder, color);
    if (color.Usable > 0 && color.Recycle) return ranked;
  }
  return order.end();
}

std::string FormulaSql(const Session& session) {
  std::string slots;
  for (const char* word : {"BC", "BQ"})
    for (int i = 0; i < schema::kIngredientSlots; ++i) slots += fmt::format(", {}{}", word, i);
  return fmt::format(
      "SELECT Color_Name, Color_Code, Color_Set, Notes, PurchaseCost, Color_Guide, Page, \"Row\", Red, Green, Blue{} "
      "FROM {} WHERE Color_Name = ? ORDER BY RowKey LIMIT 1",
      slots, session.QuotedTable(schema::Mix));
}

}  // namespace

std::optional<BatchIngredient> ReadBatchIngredient(Session& session, int unit, std::string_view name) {
  const std::string lots = session.InvLotTracking == 0
                               ? "NULL"
                               : fmt::format("(SELECT SUM(LotQty) FROM {} WHERE LotCName = b.Color_Name)",
                                             session.QuotedTable(schema::BasicLotInv));
  Statement row = session.File().Prepare(fmt::format(
      "SELECT Color_Name, Color_Code, PurchaseCost, Inv_Note, Inventory, Reorder, Notes, IngSort, VOC, HAP, {} "
      "FROM {} b WHERE Color_Name = ? ORDER BY RowKey LIMIT 1",
      lots, session.QuotedTable(schema::Basic)));
  if (!row.Bind(1, name).Step()) return std::nullopt;
  BatchIngredient ingredient;
  ingredient.inDatabase = true;
  ingredient.IngName = row.Text(0);
  ingredient.Color_Code = row.Text(1);
  ingredient.PurchaseCost = row.Single(2);
  ingredient.Inv_Note = row.Text(3);
  ingredient.Inventory = StockInUnit(session, unit, row.Single(4), row.Number(10));
  ingredient.Reorder = StockInUnit(session, unit, row.Single(5), 0);
  ingredient.Notes = row.Text(6);
  ingredient.IngSort = static_cast<std::int32_t>(row.Whole(7));
  ingredient.VOC = row.Single(8);
  ingredient.HAP = row.Single(9);
  return ingredient;
}

bool LoadFormulaIngredients(Session& session, BatchWork& work) {
  work.Ingredients.clear();
  work.formula = {};
  work.formulaFound = false;
  Statement row = session.File().Prepare(FormulaSql(session));
  if (!work.Color_Name.empty() && row.Bind(1, work.Color_Name).Step()) {
    work.formulaFound = true;
    work.Color_Name = row.Text(0);
    work.formula = {.Color_Code = row.Text(1),
                    .Color_Set = row.Text(2),
                    .Notes = row.Text(3),
                    .PurchaseCost = row.Single(4),
                    .Color_Guide = row.Text(5),
                    .Page = row.Text(6),
                    .Row = static_cast<std::int32_t>(row.Whole(7)),
                    .Red = static_cast<std::int32_t>(row.Whole(8)),
                    .Green = static_cast<std::int32_t>(row.Whole(9)),
                    .Blue = static_cast<std::int32_t>(row.Whole(10))};
    const double quantity = work.Quantity();
    constexpr int firstName = 11;
    constexpr int firstShare = firstName + schema::kIngredientSlots;
    for (int i = 0; i < schema::kIngredientSlots; ++i) {
      const std::string name = row.Text(firstName + i);
      if (name.empty()) break;
      BatchIngredient ingredient = ReadBatchIngredient(session, work.UMF, name).value_or(BatchIngredient{});
      ingredient.IngName = name;
      ingredient.Percent = row.Single(firstShare + i);
      ingredient.Amount = static_cast<float>(quantity * ingredient.Percent * 0.01);
      work.Ingredients.push_back(std::move(ingredient));
    }
  }
  const bool sameRecipe = std::ranges::equal(
      work.Ingredients, work.FormulaIngredients,
      [](const BatchIngredient& a, const BatchIngredient& b) { return EqualNoCase(a.IngName, b.IngName); });
  for (BatchIngredient& ingredient : work.Ingredients)
    ingredient.recipeSlot = RecipeSlotOf(work.Ingredients, ingredient.IngName);
  work.FormulaIngredients = work.Ingredients;
  if (!sameRecipe) ResolveRecipeSlots(work);
  return work.formulaFound;
}

void ResolveRecipeSlots(BatchWork& work) {
  const std::vector<BatchIngredient>& recipe = work.FormulaIngredients;
  for (auto* list : {&work.FormulaIngredients, &work.Ingredients})
    for (BatchIngredient& ingredient : *list) ingredient.recipeSlot = RecipeSlotOf(recipe, ingredient.IngName);
  for (auto* list : {&work.RecycleList, &work.RecycledColors, &work.FormulaRecycleList})
    for (RecycleColor& color : *list) ResolveColor(recipe, color);
}

void CalcRecyclePercent(const BatchWork& work, RecycleColor& color) {
  CalcPercent(Remainder(work.Ingredients), color);
}

void CapRecycleAmount(const BatchWork& work, RecycleColor& color) {
  Cap(Remainder(work.Ingredients), color);
}

void SetUsable(RecycleColor& color, float usable) {
  color.Usable = usable;
  for (std::size_t i = 0; i < color.slots->size(); ++i)
    color.RecAmount[i] = static_cast<float>(static_cast<double>((*color.slots)[i].BQ) * usable * 0.01);
}

void SortRecycleList(BatchWork& work) {
  std::vector<Ranked> order(work.RecycleList.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = {0, static_cast<std::uint32_t>(i)};
  Rank(work.RecycleList, order);
  Rearrange(work.RecycleList, order);
}

void RecalcRecycleList(BatchWork& work) {
  const Remainder remainder(work.Ingredients);
  for (RecycleColor& color : work.RecycleList) CalcPercent(remainder, color);
}

void AutoRecycle(Session& session, BatchWork& work) {
  // The colours stay where they are while their order changes with every one taken: with thousands of them, moving the
  // records would cost more than the arithmetic. Most have no stock; those can only be passed over, so their shares are
  // brought up to date once, at the end.
  std::vector<RecycleColor>& list = work.RecycleList;
  std::vector<Ranked> order;
  std::vector<Ranked> outOfStock;
  for (std::size_t i = 0; i < list.size(); ++i)
    (list[i].Usable == 0 ? outOfStock : order).push_back({0, static_cast<std::uint32_t>(i)});
  Rank(list, order);
  bool anyTaken = false;
  bool walkedThrough = false;
  while (work.Ingredients.size() + work.RecycledColors.size() <= kMostLinesBeforeRecycling) {
    const auto taken = NextToRecycle(work, order);
    walkedThrough = taken == order.end();
    if (walkedThrough) break;
    anyTaken = true;
    RecycleColor& color = list[taken->place];
    ReadChosenColor(session, work.UMF, color);
    TakeFromIngredients(work, color);
    work.RecycledColors.push_back(std::move(color));
    order.erase(taken);
    CalcPercents(work, order);
    Rank(list, order);
  }
  if (anyTaken) CalcPercents(work, outOfStock);
  for (Ranked& ranked : outOfStock) {
    float& share = list[ranked.place].Recycle_Percent;
    order.push_back({SortKey(share), ranked.place});
    if (walkedThrough) share = 0;
  }
  SortRanked(order);
  Rearrange(list, order);
}

double MostRecycled(const BatchWork& work, const RecycleColor& color, double above) {
  return (work.Quantity() - above) * color.Recycle_Percent;
}

double CutToThousandths(double most) {
  constexpr double noise = 5e-7;
  const double thousandths = most * 1000;
  const double nearest = std::round(thousandths);
  return (std::abs(thousandths - nearest) <= nearest * noise ? nearest : std::floor(thousandths)) / 1000;
}

double RecycledSoFar(const BatchWork& work) {
  double sum = 0;
  for (const RecycleColor& color : work.RecycledColors) sum += RoundTo(color.Usable, 3);
  return sum;
}

void RefitRecycledColors(BatchWork& work) {
  std::vector<RecycleColor> kept;
  double above = 0;
  for (RecycleColor& color : work.RecycledColors) {
    const double atMost = MostRecycled(work, color, above);
    SetUsable(color, Fixed(atMost, 3) == Fixed(color.Usable, 3) ? static_cast<float>(atMost) : color.Usable);
    CalcRecyclePercent(work, color);
    CapRecycleAmount(work, color);
    if (!(color.Usable > 0)) continue;
    TakeFromIngredients(work, color);
    above += RoundTo(color.Usable, 3);
    kept.push_back(std::move(color));
  }
  work.RecycledColors = std::move(kept);
  RecalcRecycleList(work);
}

bool AddRecycledColor(Session& session, BatchWork& work, std::string_view name, float amount) {
  const auto found = std::ranges::find_if(
      work.RecycleList, [&](const RecycleColor& color) { return EqualNoCase(color.Color_Name, name); });
  if (found == work.RecycleList.end()) return false;
  RecycleColor color = std::move(*found);
  work.RecycleList.erase(found);
  ReadChosenColor(session, work.UMF, color);
  const double atMost = MostRecycled(work, color, RecycledSoFar(work));
  if (Fixed(atMost, 3) == Fixed(amount, 3)) amount = static_cast<float>(atMost);
  SetUsable(color, amount);
  CapRecycleAmount(work, color);
  TakeFromIngredients(work, color);
  work.RecycledColors.push_back(std::move(color));
  RecalcRecycleList(work);
  return true;
}

void CalculateBatch(Session& session, BatchWork& work, bool doRecycle) {
  LoadFormulaIngredients(session, work);
  if (!work.RecycledColors.empty()) {
    RefitRecycledColors(work);
  } else {
    BuildRecycleList(session, work);
  }
  if (doRecycle) AutoRecycle(session, work);
}

}  // namespace vellumark
