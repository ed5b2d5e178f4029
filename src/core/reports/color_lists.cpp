#include <fmt/format.h>

#include "core/base/text.h"
#include "core/reports/color_book.h"
#include "core/reports/families.h"
#include "core/reports/stock_rows.h"

// Colours with their figures: details, costs, VOC and HAP.

namespace vellumark {
namespace {

struct ListedColor {
  const StockColor* color = nullptr;
  std::string database;
};

TableValue Shown(std::int64_t units, int decimals = 3) {
  return OfWholeUnits(units, decimals);
}

// What a formula alone has; of a Basic Color the cell is empty.
template <class Value>
auto OfFormula(Value value) {
  return [value](const ListedColor& r) {
    return r.color->kind == ColorKind::Mix ? TableValue(value(*r.color)) : TableValue();
  };
}

RowTarget Target(const ListedColor& row) {
  return {row.color->kind == ColorKind::Mix ? RowTarget::Kind::Mix : RowTarget::Kind::Basic, row.database,
          row.color->Color_Name};
}

void AddCode(TableOf<ListedColor>& table) {
  table.Add(
      "Color_Code", [](const ListedColor& r) { return r.color->Color_Code; }, "Color Code");
}

void AddPurchaseCost(TableOf<ListedColor>& table, const ReportContext& context) {
  const int decimals = context.session.DecimalPlaces;
  table.Add(
      "PurchaseCost", [decimals](const ListedColor& r) { return Shown(r.color->PurchaseCost, decimals); },
      context.InMoney("Purchase Cost"), Format::Money, decimals);
}

void AddBasicCost(TableOf<ListedColor>& table, const ReportContext& context) {
  const int decimals = context.session.DecimalPlaces;
  table.Add("BasicCost", OfFormula([decimals](const StockColor& c) { return Shown(c.BasicCost, decimals); }),
            context.InMoney("Basic Cost"), Format::Money, decimals);
}

void AddEmissions(TableOf<ListedColor>& table, const ReportContext& context, bool basics) {
  using Row = ListedColor;
  table.Add(
      "VOC", [](const Row& r) { return Shown(r.color->VOC); }, context.InUnit("VOC"), Format::Amount);
  if (basics)
    table.Add("BasicVOC", OfFormula([](const StockColor& c) { return Shown(c.BasicVOC); }),
              context.InUnit("VOC Basics"), Format::Amount);
  table.Add(
      "HAP", [](const Row& r) { return Shown(r.color->HAP); }, context.InUnit("HAP"), Format::Amount);
  if (basics)
    table.Add("BasicHAP", OfFormula([](const StockColor& c) { return Shown(c.BasicHAP); }),
              context.InUnit("HAP Basics"), Format::Amount);
}

void AddType(TableOf<ListedColor>& table) {
  table.Add(
      "Color_Type", [](const ListedColor& r) { return ColorTypeText(r.color->kind, r.color->Additive); }, "Color Type");
}

TableOf<ListedColor> DetailColumns(const ReportContext& context) {
  using Row = ListedColor;
  TableOf<Row> table;
  table.Add(
      "Color_Name", [](const Row& r) { return r.color->Color_Name; }, "Color Name");
  if (context.report.scope == ReportScope::All) table.Add("Database", &Row::database, "Database");
  AddType(table);
  AddCode(table);
  table
      .Add(
          "Reorder", [](const Row& r) { return Shown(r.color->Reorder); }, context.InUnit("Reorder"), Format::Amount)
      .Add(
          "Inv_Note", [](const Row& r) { return r.color->Inv_Note; }, "Inventory Note")
      .Add(
          "Inventory", [](const Row& r) { return Shown(r.color->Inventory); }, context.InUnit("Unlotted Inv."),
          Format::Amount)
      .Sum()
      .Add(
          "LottedInv", [](const Row& r) { return Shown(r.color->lotted); }, context.InUnit("Lotted Inv."),
          Format::Amount)
      .Sum();
  AddPurchaseCost(table, context);
  AddBasicCost(table, context);
  AddEmissions(table, context, true);
  table.Add("Recycle", OfFormula([](const StockColor& c) { return c.Recycle; }), "Recyclable", Format::YesNo)
      .Add(
          "Date_Entered", [](const Row& r) { return r.color->Date_Entered; }, "Date Entered", Format::Date)
      .Add(
          "LastModified", [](const Row& r) { return r.color->LastModified; }, "Last Modified", Format::Date)
      .Add(
          "LastBatch", [](const Row& r) { return r.color->last; }, "Last Batch", Format::Date)
      .Add(
          "Notes", [](const Row& r) { return r.color->Notes; }, "Notes", Format::Notes);
  for (std::size_t n = 0; n < schema::kIngredientSlots; ++n) {
    const int number = static_cast<int>(n);
    const auto has = [n](const StockColor& c) { return n < c.recipe.size(); };
    table
        .Add(
            schema::Numbered("BC", number),
            [n, has](const Row& r) { return has(*r.color) ? TableValue(r.color->recipe[n].first) : TableValue(); },
            fmt::format("Ingredient {}", n + 1), Format::Text)
        .Add(
            schema::Numbered("BQ", number),
            [n, has](const Row& r) { return has(*r.color) ? Shown(r.color->recipe[n].second) : TableValue(); },
            fmt::format("Parts {}", n + 1), Format::Amount);
  }
  table.Leads(Target);
  return table;
}

bool IsWithin(const ReportContext& context, const std::optional<DateTime>& date) {
  if (context.report.dateRangeKey.empty()) return true;
  return date && context.dates.from <= date->Midnight() && date->Midnight() <= context.dates.to;
}

// With "modified only" the dates are those of the last change; else a colour without a date is listed too, as it was
// there before dates were kept.
bool IsWanted(const ReportContext& context, const StockColor& color) {
  const bool modified = context.Option("ModifiedOnly") == 1;
  if (modified && !IsWithin(context, color.kind == ColorKind::Mix ? color.LastModified : color.Date_Entered))
    return false;
  if (!modified && color.Date_Entered && !IsWithin(context, color.Date_Entered)) return false;
  if (context.Option("NotesOnly") == 1 && color.Notes.empty()) return false;
  return context.Option("CustomOnly") == 0 || !StartsWithNoCase(color.Color_Name, "PANTONE ");
}

ListTable Details(const ReportContext& context) {
  return DetailColumns(context).Of([&context](const std::function<bool(const ListedColor&)>& take) {
    bool goesOn = true;
    for (const std::string& database : context.databases)
      for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
        if (!goesOn || context.Option(kind == ColorKind::Mix ? "ShowMixes" : "ShowBasics") != 1) continue;
        ForEachStockColor(context, database, kind, [&](const StockColor& color) {
          return !IsWanted(context, color) || (goesOn = take({&color, database}));
        });
      }
  });
}

ListTable OfKind(const ReportContext& context, ColorKind kind, const TableOf<ListedColor>& table) {
  return table.Of([&context, kind](const std::function<bool(const ListedColor&)>& take) {
    const std::string& database = context.databases.front();
    ForEachStockColor(context, database, kind, [&](const StockColor& color) { return take({&color, database}); });
  });
}

TableOf<ListedColor> NameAndCode(bool type) {
  TableOf<ListedColor> table;
  table.Add(
      "Color_Name", [](const ListedColor& r) { return r.color->Color_Name; }, "Color Name");
  if (type) AddType(table);
  AddCode(table);
  table.Leads(Target);
  return table;
}

ListTable BasicCosts(const ReportContext& context) {
  TableOf<ListedColor> table = NameAndCode(true);
  AddPurchaseCost(table, context);
  return OfKind(context, ColorKind::Basic, table);
}

ListTable BasicEmissions(const ReportContext& context) {
  TableOf<ListedColor> table = NameAndCode(true);
  AddEmissions(table, context, false);
  return OfKind(context, ColorKind::Basic, table);
}

ListTable MixCosts(const ReportContext& context) {
  TableOf<ListedColor> table = NameAndCode(false);
  AddPurchaseCost(table, context);
  AddBasicCost(table, context);
  return OfKind(context, ColorKind::Mix, table);
}

ListTable MixEmissions(const ReportContext& context) {
  TableOf<ListedColor> table = NameAndCode(false);
  AddEmissions(table, context, true);
  return OfKind(context, ColorKind::Mix, table);
}

std::vector<ReportOption> ListOptions() {
  // One set of switches for this Database and for all of them.
  return {{"ShowBasics", "1 lists Basics and Additives", 2, 1, "ColorListShowBasics"},
          {"ShowMixes", "1 lists Master Formulas", 2, 1, "ColorListShowMixes"},
          {"ModifiedOnly", "1 lists what was changed within the dates", 2, 0, "ColorListModifiedOnly"},
          {"NotesOnly", "1 lists colors with notes", 2, 0, "ColorListNotesOnly"},
          {"CustomOnly", "1 leaves out PANTONE colors", 2, 0, "ColorListCustomOnly"}};
}

}  // namespace

void AddColorReports(std::vector<ReportDefinition>& catalogue) {
  const std::string exporting = "\nThis report is useful for exporting data to other programs.";
  catalogue.push_back(
      {.key = "AllColorsThisDB",
       .group = "Basic & Formula Details",
       .caption = "This Database",
       .window = "ColorListForm",
       .prefix = "ColorList",
       .name = "Basic & Formula Detail Report",
       .noun = "Colors",
       .description = "Lists all the Basics / Additives and Master Formulas in the current Database. Certain "
                      "fields in this report are editable." +
                      exporting,
       .dateRangeKey = "ColorListDateRange",
       .options = ListOptions(),
       .table = Details,
       .edits = true});
  catalogue.push_back(
      {.key = "AllColorsAllDBs",
       .group = "Basic & Formula Details",
       .caption = "All Databases",
       .window = "ColorListDBForm",
       .prefix = "ColorListDB",
       .name = "Basic & Formula Detail Report",
       .noun = "Colors",
       .description = "Lists all the Basics / Additives and Master Formulas in every Databases. Certain "
                      "fields in this report are editable." +
                      exporting,
       .dateRangeKey = "ColorListDateRange",
       .scope = ReportScope::All,
       .options = ListOptions(),
       .table = Details,
       .edits = true});
  catalogue.push_back({.key = "BasicColorCost",
                       .group = "Basics / Additives",
                       .caption = "Costs",
                       .window = "BasicCostListForm",
                       .prefix = "BasicCostList",
                       .name = "Basics / Additives Cost Report",
                       .noun = "Colors",
                       .description = "Lists all the Basics / Additives in the current Database with their Purchase "
                                      "Costs.\nPurchase Costs in this report are editable.",
                       .table = BasicCosts,
                       .edits = true});
  catalogue.push_back({.key = "BasicColorVOC_HAP",
                       .group = "Basics / Additives",
                       .caption = "VOC - HAP",
                       .window = "BasicColors_VOC_HAP_ListForm",
                       .prefix = "Basic_VOC_HAP_List",
                       .name = "Basics / Additives VOC - HAP Report",
                       .noun = "Colors",
                       .description = "Lists all the Basics / Additives in the current Database with their VOC and HAP "
                                      "values.\nVOC and HAP values in this report are editable.",
                       .table = BasicEmissions,
                       .edits = true});
  catalogue.push_back({.key = "MixColorCost",
                       .group = "Master Formula",
                       .caption = "Costs",
                       .window = "MixCostListForm",
                       .prefix = "MixCostList",
                       .name = "Master Formula Cost Report",
                       .noun = "Mix Colors",
                       .description = "Lists all Master Formulas in the current Database with their Basic / Additive "
                                      "Purchase Costs and the Master Formula Purchase Costs.\nPurchase Costs in this "
                                      "report are editable.",
                       .table = MixCosts,
                       .edits = true});
  catalogue.push_back({.key = "MixColors_VOC_HAP_ListForm",
                       .group = "Master Formula",
                       .caption = "VOC - HAP",
                       .window = "MixColors_VOC_HAP_ListForm",
                       .prefix = "Mix_VOC_HAP_List",
                       .name = "Master Formula VOC - HAP Report",
                       .noun = "Mix Colors",
                       .description =
                           "Lists all Master Formulas in the current Database with their Basic / Additive VOC - "
                           "HAP values and the Master Formula VOC - HAP values.\nVOC and HAP values in this "
                           "report are editable.",
                       .table = MixEmissions,
                       .edits = true});
}

}  // namespace vellumark
