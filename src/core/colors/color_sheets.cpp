#include "core/colors/color_sheets.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/base/units.h"
#include "core/colors/additive_control.h"
#include "core/colors/color_tables.h"
#include "core/colors/formula_notes.h"

namespace vellumark {
namespace {

struct ComparedLine {
  std::string name;
  double amount = 0;
  std::string change;
};

ListTable ComparedLines(std::vector<ComparedLine> lines) {
  return TableOf<ComparedLine>()
      .Add("Ingredient", &ComparedLine::name)
      .Add("Change", &ComparedLine::change)
      .Add("Parts", &ComparedLine::amount)
      .Total("Total")
      .Show({"Ingredient", "Parts", "Change"})
      .Of(std::move(lines));
}

/// A part of a card: the column of the colour's table, or what stands for a block of it.
struct CardItem {
  std::string_view column;
  std::string caption;
};
constexpr std::string_view kRecipe = "recipe";
constexpr std::string_view kNotes = "Notes";
constexpr std::string_view kIngredientNotes = "IngNotes";
constexpr std::string_view kBatchNotes = "BatchNotes";

// In the order of the settings; those that came later are off at first. The notes of others that a formula's window shows
// on pages of their own have settings of their own.
std::vector<CardItem> ItemsOf(ColorKind kind, const std::string& unit = {}) {
  if (kind == ColorKind::Basic)
    return {{"Color_Code", "Color Code"},
            {"Inventory", "Unlotted" + unit},
            {"Reorder", "Reorder" + unit},
            {"Inv_Note", "Inventory Note"},
            {"PurchaseCost", "Purchase Cost"},
            {"VOC", "VOC"},
            {"HAP", "HAP"},
            {"Date_Entered", "Date Entered"},
            {"LastModified", "Last Modified"},
            {kNotes, "Notes"},
            {"LastConsumed", "Last Consumed"}};
  return {{"Color_Code", "Color Code"},
          {"Color_Guide", "Formula Guide"},
          {"AddSetName", "Additive Set"},
          {"Inventory", "Unlotted" + unit},
          {"Reorder", "Reorder" + unit},
          {"Inv_Note", "Inventory Note"},
          {"PurchaseCost", "Purchase Cost"},
          {"BasicCost", "Basic Cost"},
          {"VOC", "VOC"},
          {"HAP", "HAP"},
          {"BasicVOC", "VOC from Basics"},
          {"BasicHAP", "HAP from Basics"},
          {"Recycle", "Recyclable"},
          {kRecipe, "Ingredients"},
          {kNotes, "Notes"},
          {"Date_Entered", "Date Entered"},
          {"LastModified", "Last Modified"},
          {"LastConsumed", "Last Consumed"},
          {"LastProduced", "Last Produced"},
          {kIngredientNotes, "Ingredient Notes"},
          {kBatchNotes, "Batch Notes"}};
}

bool IsBlock(std::string_view item) {
  return item == kRecipe || item == kNotes || item == kIngredientNotes || item == kBatchNotes;
}

bool IsWanted(const Session& session, ColorKind kind, std::string_view item) {
  const std::vector<CardItem> items = ItemsOf(kind);
  const auto place = std::ranges::find(items, item, &CardItem::column) - items.begin();
  return GetSetting(session, CardItemSetting(kind, static_cast<std::size_t>(place)));
}

/// The fields of the only row of a table that hold something and are wanted, under captions for people.
std::vector<SheetField> FieldsOf(const Session& session, ColorKind kind, const ListTable& table) {
  std::vector<SheetField> fields;
  table.read([&](const TableRow& row) {
    const auto add = [&](std::string_view key, const std::string& caption) {
      const auto column = table.Find(key);
      if (!column) return false;
      std::string text = CellText(table.columns[*column], row.Cell(*column));
      if (text.empty()) return false;
      fields.push_back({caption, std::move(text)});
      return true;
    };
    for (const CardItem& item : ItemsOf(kind, fmt::format(" ({})", UnitName(session.UMI)))) {
      if (IsBlock(item.column) || !IsWanted(session, kind, item.column)) continue;
      if (add(item.column, item.caption) && item.column == "Color_Guide") {
        add("Page", "Page");
        add("Row", "Row");
      }
    }
    return false;
  });
  return fields;
}

void AddNotes(Sheet& sheet, const Session& session, const MixColor& mix) {
  const auto add = [&](std::string_view item, const auto& read) {
    if (!IsWanted(session, ColorKind::Mix, item)) return;
    std::string text = read();
    if (text.empty()) return;
    const std::string heading = item == kNotes ? "Notes" : item == kIngredientNotes ? "Ingredient Notes" : "Batch Notes";
    sheet.blocks.push_back({.heading = heading, .lines = {std::move(text)}});
  };
  add(kNotes, [&] { return mix.Notes; });
  add(kIngredientNotes, [&] {
    std::vector<std::string> names;
    for (const Ingredient& line : mix.Ingredients()) names.push_back(line.name);
    return IngredientNotes(session, names);
  });
  add(kBatchNotes, [&] {
    std::string text;
    for (const BatchNote& note : BatchNotes(session, mix.Color_Name))
      text += fmt::format("{}{}  {}\n{}", text.empty() ? "" : "\n\n", note.Number(),
                          note.Date_Entered ? note.Date_Entered->DateText() : "", note.Notes);
    return text;
  });
}

}  // namespace

std::vector<std::string> CardItems(ColorKind kind) {
  std::vector<std::string> names;
  for (CardItem& item : ItemsOf(kind)) names.push_back(std::move(item.caption));
  return names;
}

NamedSetting<bool> CardItemSetting(ColorKind kind, std::size_t item) {
  const int n = static_cast<int>(item);
  if (kind != ColorKind::Mix) return setting::BC_PrintItem_[n];
  const int own = setting::MC_PrintItem_.count;
  return n < own ? setting::MC_PrintItem_[n] : setting::PrintMixNotes[n - own + 1];
}

Sheet BasicColorSheet(const Session& session, const BasicColor& color) {
  Sheet sheet{.title = color.Additive ? "Additive" : "Basic Color"};
  sheet.blocks.push_back({.heading = color.Color_Name, .large = true});
  sheet.blocks.push_back({.fields = FieldsOf(session, ColorKind::Basic, BasicColumns(session).Of({color}))});
  if (!color.Notes.empty() && IsWanted(session, ColorKind::Basic, kNotes))
    sheet.blocks.push_back({.heading = "Notes", .lines = {color.Notes}});
  return sheet;
}

Sheet FormulaSheet(const Session& session, const MixColor& mix) {
  Sheet sheet{.title = "Master Formula"};
  sheet.blocks.push_back({.heading = mix.Color_Name, .large = true});
  if (IsWanted(session, ColorKind::Mix, kRecipe))
    sheet.blocks.push_back({.table = RecipeColumns("Ingredient", "Parts").Total("Total Parts").Of(mix.Ingredients())});
  sheet.blocks.push_back({.fields = FieldsOf(session, ColorKind::Mix, MixColumns(session).Of({mix}))});
  AddNotes(sheet, session, mix);
  return sheet;
}

Sheet AdditiveSetsSheet(const Session& session, const std::vector<AdditiveSet>& sets) {
  Sheet sheet{.title = "Mix Colors using Additive Set"};
  for (const AdditiveSet& set : sets) {
    sheet.blocks.push_back({.heading = "Set Name : " + set.SetName,
                            .table = RecipeColumns("Additive", "Percent", 2).Total("Total").Of(set.Rows())});
    std::vector<std::string> formulas = FormulasWithSet(session, set.SetName);
    if (!formulas.empty())
      sheet.blocks.push_back({.heading = "Colors using this Set : ", .lines = std::move(formulas)});
  }
  return sheet;
}

Sheet CompareSheet(const FormulaComparison& compared) {
  std::vector<ComparedLine> original;
  for (const Ingredient& line : compared.original) {
    const bool missing = std::ranges::find(compared.missing, line.name) != compared.missing.end();
    original.push_back({line.name, line.amount, missing ? "missing" : ""});
  }
  std::vector<ComparedLine> modified;
  for (std::size_t n = 0; n < compared.modified.size(); ++n)
    modified.push_back({compared.modified[n].name, compared.modified[n].amount, compared.changes[n]});
  Sheet sheet{.title = "Compare Formulas"};
  sheet.blocks.push_back({.heading = "Original " + compared.Color_Name, .table = ComparedLines(std::move(original))});
  sheet.blocks.push_back({.heading = "Modified " + compared.Color_Name, .table = ComparedLines(std::move(modified))});
  if (compared.Date_Entered)
    sheet.blocks.push_back({.fields = {{"Date Modified: ", compared.Date_Entered->DateText()}}});
  return sheet;
}

Sheet FormulaRequirementSheet(std::vector<std::string> formulas) {
  Sheet sheet{.title = "Basic / Additive - Formula Requirement"};
  sheet.blocks.push_back({.table = TableOf<std::string>()
                                       .Add(
                                           "Color_Name", [](const std::string& name) { return name; }, "Color Name")
                                       .Of(std::move(formulas))});
  return sheet;
}

}  // namespace vellumark
