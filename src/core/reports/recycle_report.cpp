#include <memory>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/batch/recipe.h"
#include "core/colors/color_set.h"
#include "core/reports/color_book.h"
#include "core/reports/families.h"
#include "core/reports/stock_rows.h"

// Which formulas can be used up in another, or take it.

namespace vellumark {
namespace {

constexpr int kConsuming = 1;

struct RecycleRow {
  StockColor color;
  double share = 0;
};

std::string SetOf(const StockColor& color) {
  std::string set;
  for (const auto& [name, parts] : color.recipe) set += "<" + name + ">";
  return set;
}

// The largest share of `made` that `taken` can supply.
double LargestShare(const StockColor& made, const StockColor& taken) {
  BatchWork work;
  for (const auto& [name, parts] : made.recipe) {
    BatchIngredient ingredient;
    ingredient.IngName = name;
    ingredient.Amount = ingredient.Percent = static_cast<float>(OfWholeUnits(parts, 3));
    work.Ingredients.push_back(std::move(ingredient));
  }
  work.FormulaIngredients = work.Ingredients;
  std::vector<RecycleSlot> slots;
  for (const auto& [name, parts] : taken.recipe) slots.push_back({name, static_cast<float>(OfWholeUnits(parts, 3))});
  RecycleColor color;
  color.Color_Name = taken.Color_Name;
  color.slots = std::make_shared<const std::vector<RecycleSlot>>(std::move(slots));
  work.RecycleList.push_back(std::move(color));
  work.QuantityText = "100";
  ResolveRecipeSlots(work);
  CalcRecyclePercent(work, work.RecycleList.front());
  return RoundTo(work.RecycleList.front().Recycle_Percent, 4);
}

std::optional<StockColor> FindChosen(const ReportContext& context) {
  std::optional<StockColor> chosen;
  ForEachStockColor(context, context.databases.front(), ColorKind::Mix, [&](const StockColor& color) {
    if (EqualNoCase(color.Color_Name, context.name)) chosen = color;
    return !chosen;
  });
  return chosen;
}

ListTable RecycleList(const ReportContext& context) {
  using Row = RecycleRow;
  const std::string database = context.databases.front();
  const int decimals = context.session.DecimalPlaces;
  TableOf<Row> table;
  table
      .Add(
          "Color_Name", [](const Row& r) { return r.color.Color_Name; }, "Color Name")
      .Add(
          "Color_Code", [](const Row& r) { return r.color.Color_Code; }, "Color Code")
      .Add("Recycle_Percent", &Row::share, "Recycle Percent", Format::Percent)
      .Add(
          "Recycle", [](const Row& r) { return r.color.Recycle; }, "Recyclable", Format::YesNo)
      .Add(
          "Inventory", [](const Row& r) { return OfWholeUnits(r.color.total, 3); }, context.InUnit("Inventory"))
      .Add(
          "Reorder", [](const Row& r) { return OfWholeUnits(r.color.Reorder, 3); }, context.InUnit("Reorder"))
      .Add(
          "Inv_Note", [](const Row& r) { return r.color.Inv_Note; }, "Inventory Note")
      .Add(
          "PurchaseCost", [decimals](const Row& r) { return OfWholeUnits(r.color.PurchaseCost, decimals); },
          context.InMoney("Purchase Cost"), Format::Money, decimals)
      .Add(
          "BasicCost", [decimals](const Row& r) { return OfWholeUnits(r.color.BasicCost, decimals); },
          context.InMoney("Basic Cost"), Format::Money, decimals)
      .Add(
          "Date_Entered", [](const Row& r) { return r.color.Date_Entered; }, "Date Entered", Format::Date)
      .Add(
          "LastModified", [](const Row& r) { return r.color.LastModified; }, "Last Modified", Format::Date)
      .Add(
          "LastProduced", [](const Row& r) { return r.color.last; }, "Last Batch", Format::Date)
      .Add(
          "Notes", [](const Row& r) { return r.color.Notes; }, "Notes", Format::Notes)
      .Leads([database](const Row& r) {
        return RowTarget{RowTarget::Kind::Mix, database, r.color.Color_Name};
      });
  return table.Of([&context, database](const std::function<bool(const Row&)>& take) {
    const auto chosen = FindChosen(context);
    if (!chosen || chosen->recipe.empty()) return;
    const bool consuming = context.Option("Type") == kConsuming;
    const std::string chosenSet = SetOf(*chosen);
    ForEachStockColor(context, database, ColorKind::Mix, [&](const StockColor& color) {
      if (color.recipe.empty()) return true;
      const std::string set = SetOf(color);
      if (!(consuming ? ColorSetContains(set, chosenSet) : ColorSetContains(chosenSet, set))) return true;
      if (context.Option("RecyclableOnly") == 1 && !color.Recycle) return true;
      if (context.Option("InvOnly") == 1 && color.total <= 0) return true;
      return take({color, consuming ? LargestShare(color, *chosen) : LargestShare(*chosen, color)});
    });
  });
}

}  // namespace

void AddRecycleReports(std::vector<ReportDefinition>& catalogue) {
  catalogue.push_back(
      {.key = "lblRecListProdCons",
       .group = "Recycle List",
       .caption = "Producing / Consuming",
       .window = "RecycleListForm",
       .prefix = "RecList",
       .name = "Recycle List Report",
       .noun = "Mix Colors",
       .description = "Recycling oppertunities for producing new colors or consuming old colors in inventory.",
       .subject = ReportSubject::Formula,
       .options = {{"Type", "0 what the color can be made of, 1 what can be made of it"},
                   {"InvOnly", "1 lists only colors in inventory"},
                   {"RecyclableOnly", "1 lists only recyclable colors"}},
       .table = RecycleList,
       .edits = true});
}

}  // namespace vellumark
