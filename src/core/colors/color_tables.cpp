#include "core/colors/color_tables.h"

#include "core/session/rights.h"

namespace vellumark {
RowTarget ColorTarget(const Session& session, ColorKind kind, std::string_view name, const std::string& database) {
  return {.kind = kind == ColorKind::Mix ? RowTarget::Kind::Mix : RowTarget::Kind::Basic,
          .database = database.empty() ? session.CurrentDatabase : database,
          .name = std::string(name)};
}

TableOf<BasicColor> BasicColumns(const Session& session) {
  TableOf<BasicColor> table;
  BasicFields().AddColumns(table, SeenBy(session));
  table.Show({"Color_Name", "Color_Code", "Additive", "Inventory", "Reorder", "PurchaseCost", "VOC", "HAP"});
  return table;
}

TableOf<MixColor> MixColumns(const Session& session) {
  TableOf<MixColor> table;
  MixFields().AddColumns(table, SeenBy(session));
  table
      .Add(
          "", [](const MixColor& color) { return color.Ingredients().size(); }, "Ingredients")
      .Add("", &MixColor::LastModified, "Last Modified", Format::Date)
      .Show({"Color_Name", "Color_Code", "Ingredients", "AddSetName", "Inventory", "BasicCost", "Last Modified"});
  return table;
}

TableOf<AdditiveSet> AdditiveSetColumns(const Session& session) {
  TableOf<AdditiveSet> table;
  for (const RecordField& field : AdditiveSetFields())
    table.Add(
        field.column,
        [&field](const AdditiveSet& set) {
          const TableValue cell = field.CellOf(&set);
          const auto* percent = std::get_if<float>(&cell);
          return percent == nullptr ? cell : TableValue(ShownAmount(*percent));
        },
        "", field.ShownAs(), 2);
  const auto users = [&session](const AdditiveSet& set) { return FormulasWithSet(session, set.SetName); };
  table.Add("Formulas", users, "Used by")
      .Add(
          "", [](const AdditiveSet& set) { return TotalOf(set.Rows()); }, "Percent", Format::Amount, 2)
      .Add(
          "", [users](const AdditiveSet& set) { return users(set).size(); }, "Formulas")
      .Show({"SetName", "SetList", "Percent", "Formulas"});
  return table;
}

TableOf<Ingredient> RecipeColumns(const std::string& heading, const std::string& amount, int decimals) {
  return TableOf<Ingredient>()
      .Add(heading, &Ingredient::name)
      .Add(amount, &Ingredient::amount, "", Format::Amount, decimals);
}

ListTable ListBasics(const Session& session) {
  return BasicColumns(session).Of([&session](const auto& take) { ForEachBasic(session, take); });
}

ListTable ListFormulas(const Session& session, const std::string& ingredient) {
  return MixColumns(session).Of([&session, ingredient](const auto& take) {
    ingredient.empty() ? ForEachMix(session, take) : ForEachMixUsing(session, ingredient, take);
  });
}

ListTable ListSets(const Session& session) {
  return AdditiveSetColumns(session).Of(ListAdditiveSets(session));
}

}  // namespace vellumark
