#include "core/colors/color_tables.h"

#include "core/session/rights.h"

namespace vellumark {
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
  table.Add("SetName", &AdditiveSet::SetName);
  for (std::size_t n = 0; n < schema::kSetSlots; ++n) {
    const auto line = [n](const AdditiveSet& set) { return n < set.rows.size() ? set.rows[n] : Ingredient{}; };
    table
        .Add(schema::Numbered("Add_Name", static_cast<int>(n)),
             [line](const AdditiveSet& set) { return line(set).name; })
        .Add(
            schema::Numbered("Add_Percent", static_cast<int>(n)),
            [line](const AdditiveSet& set) { return line(set).amount; }, "", Format::Amount, 2);
  }
  const auto users = [&session](const AdditiveSet& set) { return FormulasWithSet(session, set.SetName); };
  table.Add("SetList", &AdditiveSet::SetList)
      .Add("Formulas", users, "Used by")
      .Add(
          "", [](const AdditiveSet& set) { return TotalOf(set.rows); }, "Percent", Format::Amount, 2)
      .Add(
          "", [users](const AdditiveSet& set) { return users(set).size(); }, "Formulas")
      .Show({"SetName", "SetList", "Percent", "Formulas"});
  return table;
}

TableOf<Ingredient> RecipeColumns(std::string heading, std::string amount, int decimals) {
  return TableOf<Ingredient>()
      .Add(std::move(heading), &Ingredient::name)
      .Add(std::move(amount), &Ingredient::amount, "", Format::Amount, decimals);
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
