#include "core/colors/color_tables.h"

#include "core/session/rights.h"

namespace vellumark {
namespace {

template <class Color>
auto PriceOf(const Session& session, float Color::*price) {
  return [&session, price](const Color& color) { return SeenPrice(session, color.*price); };
}

template <class Color>
void AddBookData(TableOf<Color>& table) {
  const auto add = [&](std::string key, auto field) {
    table.Add(std::move(key), [field](const Color& color) { return color.book.*field; });
  };
  add("Color_Guide", &BookData::Color_Guide);
  add("Page", &BookData::Page);
  add("Row", &BookData::Row);
  add("Red", &BookData::Red);
  add("Green", &BookData::Green);
  add("Blue", &BookData::Blue);
}

}  // namespace

TableOf<BasicColor> BasicColumns(const Session& session) {
  using C = BasicColor;
  TableOf<C> table;
  table.Add("Color_Name", &C::Color_Name)
      .Add("Color_Code", &C::Color_Code)
      .Add("Inventory", &C::Inventory)
      .Add("Reorder", &C::Reorder)
      .Add("PurchaseCost", PriceOf(session, &C::PurchaseCost), "", Format::Amount, session.DecimalPlaces)
      .Add("Date_Entered", &C::Date_Entered)
      .Add("LastConsumed", &C::LastConsumed)
      .Add("Notes", &C::Notes)
      .Add("Inv_Note", &C::Inv_Note)
      .Add("IngSort", &C::IngSort)
      .Add("Additive", &C::Additive, "", Format::Mark)
      .Add("VOC", &C::VOC)
      .Add("HAP", &C::HAP)
      .Add("LotRefID", &C::LotRefID);
  AddBookData(table);
  table.Show({"Color_Name", "Color_Code", "Additive", "Inventory", "Reorder", "PurchaseCost", "VOC", "HAP"});
  return table;
}

TableOf<MixColor> MixColumns(const Session& session) {
  using C = MixColor;
  TableOf<C> table;
  table.Add("Color_Name", &C::Color_Name);
  for (std::size_t n = 0; n < schema::kIngredientSlots; ++n)
    table.Add("BC" + std::to_string(n), [n](const C& color) { return color.BC[n]; });
  for (std::size_t n = 0; n < schema::kIngredientSlots; ++n)
    table.Add("BQ" + std::to_string(n), [n](const C& color) { return color.BQ[n]; });
  table.Add("Color_Code", &C::Color_Code)
      .Add("Inventory", &C::Inventory)
      .Add("Reorder", &C::Reorder)
      .Add("PurchaseCost", PriceOf(session, &C::PurchaseCost), "", Format::Amount, session.DecimalPlaces)
      .Add("BasicCost", PriceOf(session, &C::BasicCost), "", Format::Amount, session.DecimalPlaces)
      .Add("Recycle", &C::Recycle)
      .Add("Date_Entered", &C::Date_Entered)
      .Add("LastModified", &C::LastModified, "Modified at")
      .Add("LastProduced", &C::LastProduced)
      .Add("Color_Set", &C::Color_Set)
      .Add("Notes", &C::Notes)
      .Add("Inv_Note", &C::Inv_Note)
      .Add("AddSetName", &C::AddSetName)
      .Add("VOC", &C::VOC)
      .Add("BasicVOC", &C::BasicVOC)
      .Add("HAP", &C::HAP)
      .Add("BasicHAP", &C::BasicHAP)
      .Add("LotRefID", &C::LotRefID);
  AddBookData(table);
  table
      .Add(
          "", [](const C& color) { return color.Ingredients().size(); }, "Ingredients")
      .Add("", &C::LastModified, "LastModified", Format::Date)
      .Show({"Color_Name", "Color_Code", "Ingredients", "AddSetName", "Inventory", "BasicCost", "LastModified"});
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
