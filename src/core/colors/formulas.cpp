#include "core/colors/formulas.h"

#include <fmt/format.h>

#include <stdexcept>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/told_steps.h"
#include "core/colors/basics.h"
#include "core/colors/figure_book.h"
#include "core/colors/names.h"
#include "core/datafile/references.h"

namespace vellumark {
namespace {

constexpr int kSlots = schema::kIngredientSlots;

std::string TableText(const Session& session, std::string_view database = {}) {
  return session.QuotedTable(schema::Mix, database);
}

MixColor ReadRow(const Statement& row) {
  MixColor mix;
  mix.key = row.Whole(0);
  MixFields().Read(row, 1, mix);
  return mix;
}

std::string Select(const Session& session, std::string_view rest, std::string_view database = {}) {
  return fmt::format("SELECT RowKey, {} FROM {} {}", MixFields().Columns(), TableText(session, database), rest);
}

// The narrow index finds the rows; only they are then read.
std::string UsingCondition(const std::string& table) {
  return fmt::format("RowKey IN (SELECT RowKey FROM {} WHERE Color_Set LIKE ? ESCAPE '\\')", table);
}

// A column of the formulas that meet the condition, in its own order.
Statement SelectWhere(const Session& session, std::string_view column, std::string_view condition,
                      std::string_view value) {
  Statement row = session.File().Prepare(
      fmt::format("SELECT {0} FROM {1} WHERE {2} ORDER BY {0}", column, TableText(session), condition));
  row.Bind(1, value);
  return row;
}

Statement SelectUsing(const Session& session, std::string_view column, std::string_view ingredient) {
  return SelectWhere(session, column, UsingCondition(TableText(session)), NameSetPattern(ingredient));
}

std::vector<std::string> Names(Statement row) {
  std::vector<std::string> names;
  while (row.Step()) names.push_back(row.Text(0));
  return names;
}

std::vector<std::int64_t> RowNumbers(Statement row) {
  std::vector<std::int64_t> numbers;
  while (row.Step()) numbers.push_back(row.Whole(0));
  return numbers;
}

std::string RecipeQuery(const Session& session, std::string_view condition) {
  std::string columns = "RowKey, Color_Name, AddSetName";
  for (int n = 0; n < kSlots; ++n) columns += fmt::format(", BC{0}, BQ{0}", n);
  return fmt::format("SELECT {} FROM {} WHERE {}", columns, TableText(session), condition);
}

std::vector<std::string> WriterFields(const std::vector<std::string>& more) {
  std::vector<std::string> fields;
  for (int n = 0; n < kSlots; ++n) fields.push_back(schema::Numbered("BC", n));
  for (int n = 0; n < kSlots; ++n) fields.push_back(schema::Numbered("BQ", n));
  fields.emplace_back("Color_Set");
  fields.emplace_back("AddSetName");
  fields.insert(fields.end(), more.begin(), more.end());
  return fields;
}

}  // namespace

const FieldMap<MixColor>& MixFields() {
  using C = MixColor;
  static const FieldMap<C> fields = [] {
    const FieldTraits derived{.use = FieldUse::Derived};
    FieldMap<C> map;
    map.Add("Color_Name", &C::Color_Name, {.use = FieldUse::Key, .caption = "Color Name"});
    for (std::size_t n = 0; n < kSlots; ++n)
      map.Add(
          schema::Numbered("BC", static_cast<int>(n)), [n](C & mix) -> auto& { return mix.BC[n]; }, derived);
    for (std::size_t n = 0; n < kSlots; ++n)
      map.Add(
          schema::Numbered("BQ", static_cast<int>(n)), [n](C & mix) -> auto& { return mix.BQ[n]; }, derived);
    map.Add("Color_Code", &C::Color_Code, {.use = FieldUse::Typed, .shape = TextShape::Code, .caption = "Color Code"})
        .Add("Inventory", &C::Inventory, {.use = FieldUse::Posted, .unit = true, .caption = "Inventory"})
        .Add("Reorder", &C::Reorder,
             {.use = FieldUse::Typed, .amount = AmountKey::Reorder, .unit = true, .caption = "Reorder"})
        .Add("PurchaseCost", &C::PurchaseCost,
             {.use = FieldUse::Typed, .amount = AmountKey::Currency, .price = true, .caption = "Purchase Cost"})
        .Add("BasicCost", &C::BasicCost, {.use = FieldUse::Derived, .price = true, .caption = "Basic Cost"})
        .Add("Recycle", &C::Recycle, {.use = FieldUse::Typed})
        .Add("Date_Entered", &C::Date_Entered)
        .Add("LastModified", &C::LastModified, {.use = FieldUse::Derived, .caption = "Modified at"})
        .Add("LastProduced", &C::LastProduced)
        .Add("Color_Set", &C::Color_Set, derived)
        .Add("Notes", &C::Notes, {.use = FieldUse::Typed, .shape = TextShape::Note})
        .Add("Inv_Note", &C::Inv_Note, {.use = FieldUse::Typed})
        .Add("AddSetName", &C::AddSetName, {.use = FieldUse::Derived, .caption = "Additive Set"})
        .Add("VOC", &C::VOC, {.use = FieldUse::Typed, .amount = AmountKey::VOC})
        .Add("BasicVOC", &C::BasicVOC, derived)
        .Add("HAP", &C::HAP, {.use = FieldUse::Typed, .amount = AmountKey::HAP})
        .Add("BasicHAP", &C::BasicHAP, derived)
        .Add("LotRefID", &C::LotRefID);
    AddBookFields(map);
    return map;
  }();
  return fields;
}

Recipe MixColor::Ingredients() const {
  Recipe recipe;
  for (std::size_t n = 0; n < BC.size() && !BC[n].empty(); ++n) recipe.push_back({BC[n], ShownAmount(BQ[n])});
  return recipe;
}

bool MixColorExists(const Session& session, std::string_view name, std::string_view database) {
  return !session.File()
              .Scalar(fmt::format("SELECT 1 FROM {} WHERE Color_Name = ? LIMIT 1", TableText(session, database)),
                      {name})
              .IsNull();
}

std::optional<MixColor> ReadMix(const Session& session, std::string_view name, std::string_view database) {
  Statement row = session.File().Prepare(Select(session, "WHERE Color_Name = ? ORDER BY RowKey LIMIT 1", database));
  row.Bind(1, name);
  if (!row.Step()) return std::nullopt;
  return ReadRow(row);
}

std::optional<MixColor> FindMix(const Session& session, std::string_view typed) {
  if (typed.empty()) return std::nullopt;
  Statement row = session.File().Prepare(Select(
      session, fmt::format("WHERE RowKey IN (SELECT RowKey FROM {0} WHERE Color_Name IN (?1, ?2) UNION "
                           "SELECT RowKey FROM {0} WHERE Color_Code = ?1) ORDER BY CASE WHEN Color_Name = ?1 THEN 0 "
                           "WHEN Color_Name = ?2 THEN 1 ELSE 2 END, Color_Name, RowKey LIMIT 1",
                           TableText(session))));
  row.Bind(1, typed).Bind(2, std::string(kPantonePrefix).append(typed));
  if (!row.Step()) return std::nullopt;
  return ReadRow(row);
}

void ForEachMix(const Session& session, const std::function<bool(const MixColor&)>& take) {
  Statement row = session.File().Prepare(Select(session, "ORDER BY Color_Name, RowKey"));
  while (row.Step() && take(ReadRow(row))) continue;
}

void ForEachMixUsing(const Session& session, std::string_view ingredient,
                     const std::function<bool(const MixColor&)>& take) {
  Statement row = session.File().Prepare(
      Select(session, fmt::format("WHERE {} ORDER BY Color_Name, RowKey", UsingCondition(TableText(session)))));
  row.Bind(1, NameSetPattern(ingredient));
  while (row.Step() && take(ReadRow(row))) continue;
}

std::vector<std::string> MixNames(const Session& session) {
  return Names(
      session.File().Prepare(fmt::format("SELECT Color_Name FROM {} ORDER BY Color_Name", TableText(session))));
}

std::vector<std::string> FormulasUsing(const Session& session, std::string_view ingredient) {
  return Names(SelectUsing(session, "Color_Name", ingredient));
}
std::vector<std::int64_t> FormulaRowsUsing(const Session& session, std::string_view ingredient) {
  return RowNumbers(SelectUsing(session, "RowKey", ingredient));
}

std::vector<std::string> FormulasWithSet(const Session& session, std::string_view setName) {
  return Names(SelectWhere(session, "Color_Name", "AddSetName = ?", setName));
}
std::vector<std::int64_t> FormulaRowsWithSet(const Session& session, std::string_view setName) {
  return RowNumbers(SelectWhere(session, "RowKey", "AddSetName = ?", setName));
}

FigureBook::FigureBook(const Session& session, std::string_view database)
    : session_(session),
      sql_(fmt::format("SELECT PurchaseCost, VOC, HAP FROM {} WHERE Color_Name = ? ORDER BY RowKey LIMIT 1",
                       session.QuotedTable(schema::Basic, database))) {}

const FigureBook::Figures& FigureBook::Of(const std::string& name) {
  const auto [place, isNew] = read_.try_emplace(name);
  if (isNew) {
    static constexpr std::string_view kNoCosts = "Couldn't Calculate Master Formula Basic Costs.";
    Statement row = session_.File().Prepare(sql_);
    row.Bind(1, name);
    const auto figure = [&](int column, std::string_view words) {
      return InWords(session_.DataFileName, [&] { return words; }, [&] { return row.Single(column); });
    };
    if (InWords(session_.DataFileName, [] { return kNoCosts; }, [&] { return row.Step(); }))
      place->second = {figure(0, kNoCosts), figure(1, "Couldn't Calculate Master Formula VOCs per Basic."),
                       figure(2, "Couldn't Calculate Master Formula HAPs per Basic.")};
  }
  return place->second;
}

RolledUp FigureBook::Sum(const Recipe& recipe) {
  float cost = 0;
  float voc = 0;
  float hap = 0;
  const auto added = [](float sum, float figure, double amount) {
    return static_cast<float>(sum + figure * static_cast<double>(static_cast<float>(amount)) / 100);
  };
  for (const Ingredient& line : recipe) {
    const Figures& figures = Of(line.name);
    cost = added(cost, figures.cost, line.amount);
    voc = added(voc, figures.voc, line.amount);
    hap = added(hap, figures.hap, line.amount);
  }
  return {cost, voc, hap};
}

RolledUp FigureBook::RollUp(const Recipe& recipe) {
  const RolledUp sum = Sum(recipe);
  return {RoundSingle(sum.BasicCost, session_.DecimalPlaces), RoundSingle(sum.BasicVOC, 3),
          RoundSingle(sum.BasicHAP, 3)};
}

RolledUp RollUpRecipe(const Session& session, const Recipe& recipe, std::string_view database) {
  return FigureBook(session, database).RollUp(recipe);
}

RecipeReader::RecipeReader(const Session& session)
    : byName_(session.File().Prepare(RecipeQuery(session, "Color_Name = ? ORDER BY RowKey LIMIT 1"))),
      byRow_(session.File().Prepare(RecipeQuery(session, "RowKey = ?"))) {}

std::optional<MixColor> RecipeReader::Take(Statement& row) {
  std::optional<MixColor> mix;
  if (row.Step()) {
    mix.emplace();
    mix->key = row.Whole(0);
    mix->Color_Name = row.Text(1);
    mix->AddSetName = row.Text(2);
    for (int n = 0; n < kSlots; ++n) {
      const std::string_view name = row.TextView(3 + 2 * n);
      if (name.empty()) break;
      mix->BC[static_cast<std::size_t>(n)] = name;
      mix->BQ[static_cast<std::size_t>(n)] = row.Single(4 + 2 * n);
    }
  }
  row.Reset();
  return mix;
}

std::optional<MixColor> RecipeReader::Read(std::string_view name) {
  return Take(byName_.Bind(1, name));
}

std::optional<MixColor> RecipeReader::ReadRow(std::int64_t key) {
  return Take(byRow_.Bind(1, key));
}

bool RenewColorSet(const Session& session, std::int64_t key, std::string_view database) {
  std::string columns = "Color_Set";
  for (int n = 0; n < kSlots; ++n) columns += ", " + schema::Numbered("BC", n);
  Statement row = session.File().Prepare(
      fmt::format("SELECT {} FROM {} WHERE RowKey = ?", columns, session.QuotedTable(schema::Mix, database)));
  if (!row.Bind(1, key).Step()) return false;
  std::vector<std::string> names;
  for (int n = 1; n <= kSlots; ++n)
    if (!row.TextView(n).empty()) names.push_back(row.Text(n));
  const std::string set = NameSet(names);
  if (!row.IsNull(0) && row.TextView(0) == set) return false;
  row.Reset();
  return UpdateRow(session.File(), schema::Mix, session.Table(schema::Mix, database), key, {{"Color_Set", set}});
}

RecipeWriter::RecipeWriter(const Session& session, std::string_view database, const std::vector<std::string>& more)
    : writer_(session.File(), schema::Mix, session.Table(schema::Mix, database), WriterFields(more)),
      fixedFields_(WriterFields({}).size()) {}

RecipeWriter& RecipeWriter::Set(const Recipe& recipe, std::string_view setName) {
  if (recipe.size() > static_cast<std::size_t>(kSlots)) throw std::logic_error("a recipe of more than fifteen lines");
  for (std::size_t n = 0; n < static_cast<std::size_t>(kSlots); ++n) {
    const bool filled = n < recipe.size();
    writer_.Set(n, filled ? recipe[n].name : std::string());
    writer_.Set(n + kSlots, filled ? static_cast<float>(recipe[n].amount) : 0.0F);
  }
  constexpr std::size_t kBehind = std::size_t{2} * kSlots;
  writer_.Set(kBehind, NameSet(NamesOf(recipe)));
  writer_.Set(kBehind + 1, setName);
  return *this;
}

RecipeWriter& RecipeWriter::SetMore(std::size_t place, const Value& value) {
  writer_.Set(fixedFields_ + place, value);
  return *this;
}

}  // namespace vellumark
