#include "core/base/table.h"

#include <gtest/gtest.h>

namespace vellumark {
namespace {

struct Pot {
  std::string name;
  std::optional<float> weight;
  std::optional<DateTime> filled;
  int shelf = 0;
};

TableOf<Pot> PotColumns() {
  TableOf<Pot> table;
  table.Add("Name", &Pot::name)
      .Add("Weight", &Pot::weight, "Weight (lb.)")
      .Total("All")
      .Add("Filled", &Pot::filled)
      .Add("Shelf", &Pot::shelf)
      .Show({"Name", "Shelf", "Weight (lb.)"});
  return table;
}

ListTable Pots() {
  return PotColumns().Of({{"red", 10, DateTime{2026, 3, 1}, 2},
                          {"Blue", {}, DateTime{2025, 3, 1, 8}, 10},
                          {"RED", 9.5F, {}, 10},
                          {"amber", 9.5F, DateTime{2026, 3, 1}, 2}});
}

// The names of the rows, in order.
std::string Names(const ListTable& table) {
  std::string names;
  table.read([&](const TableRow& row) {
    names += CellText(table.columns[0], row.Cell(0)) + ' ';
    return true;
  });
  return names;
}

TEST(Table, IsSortedByTwoColumnsFilteredAndCut) {
  const ListTable pots = Pots();
  const auto column = [&](const char* name) { return pots.Find(name); };
  struct Case {
    const char* what;
    Arrangement arrangement;
    const char* names;
  };
  const std::vector<Case> cases{
      {"as it comes", {}, "red Blue RED amber "},
      {"texts in any case, equal ones as they came", {.sort = column("NAME")}, "amber Blue red RED "},
      {"the same from the end", {.sort = column("Name"), .descending = true}, "red RED Blue amber "},
      {"numbers by size, what is absent first", {.sort = column("weight (lb.)")}, "Blue RED amber red "},
      {"a column that is not shown, by its key", {.sort = column("Filled")}, "RED Blue red amber "},
      {"second column", {.sort = column("Shelf"), .second = column("Weight")}, "amber red Blue RED "},
      {"each its own way",
       {.sort = column("Shelf"), .descending = true, .second = column("Weight"), .secondDescending = true},
       "RED Blue red amber "},
      {"words of the filter in what is shown", {.filter = " 9.500  rE"}, "RED "},
      {"not in what is hidden", {.filter = "2026"}, ""},
      {"the first ones", {.limit = 2}, "red Blue "},
      {"the first ones of a filter", {.filter = "9.5", .limit = 1}, "RED "},
      {"the largest", {.sort = column("Weight"), .descending = true, .limit = 1}, "red "},
      {"more than there are", {.sort = column("Name"), .limit = 9}, "amber Blue red RED "},
      {"none", {.limit = 0}, ""}};
  for (const Case& c : cases) EXPECT_EQ(Names(Arranged(pots, c.arrangement)), c.names) << c.what;
}

TEST(Table, TheFirstOfManyRowsAreThoseOfTheWholeOrder) {
  constexpr std::size_t kMany = 20000;
  const ListTable many = PotColumns().Of([](const std::function<bool(const Pot&)>& take) {
    for (std::size_t i = 0; i < kMany; ++i)
      if (!take({std::to_string(i * 7919 % kMany), 1, {}, static_cast<int>(i * 7919 % kMany)})) return;
  });
  const auto shelf = many.Find("Shelf");
  EXPECT_EQ(Names(Arranged(many, {.sort = shelf, .limit = 5})), "0 1 2 3 4 ");
  EXPECT_EQ(Names(Arranged(many, {.sort = shelf, .descending = true, .limit = 3})), "19999 19998 19997 ");
  std::size_t read = 0;
  ListTable counted = many;
  counted.read = [&](const TableSink& take) { many.read([&](const TableRow& row) { return ++read, take(row); }); };
  Names(Arranged(counted, {.limit = 5}));
  EXPECT_EQ(read, 5U) << "a list that is cut is not read to its end";
}

TEST(Table, TotalsAddWhatIsThere) {
  const ListTable pots = Pots();
  TableTotals totals(pots);
  pots.read([&](const TableRow& row) {
    totals.Add(row);
    return true;
  });
  EXPECT_EQ(totals.Texts(), (std::vector<std::string>{"All", "", "29.000"}));
}

}  // namespace
}  // namespace vellumark
