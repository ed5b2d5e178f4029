#pragma once

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "large_room.h"

namespace vellumark::bench {

/// The formulas that a recipe can be made of: their rows in order, and how many of them there is something of.
struct Recyclable {
  std::vector<std::int64_t> rows;
  std::size_t inStock = 0;
};

/// Read slot by slot from the whole table, without the search texts and without an index.
inline Recyclable ReadRecyclable(LargeRoom& room, const std::string& name) {
  std::string slots;
  for (int i = 0; i < schema::kIngredientSlots; ++i) slots += ", " + schema::Numbered("BC", i);
  Database& file = room.session.File();
  std::set<std::string> recipe{""};
  Statement asked = file.Prepare("SELECT RowKey" + slots + " FROM INK_Mix NOT INDEXED WHERE Color_Name = ?");
  asked.Bind(1, name).Step();
  for (int i = 1; i <= schema::kIngredientSlots; ++i) recipe.insert(asked.Text(i));
  std::set<std::string> lotted;
  Statement lots = file.Prepare("SELECT LotCName FROM INK_Mix_LotInv WHERE LotQty > 0");
  while (lots.Step()) lotted.insert(lots.Text(0));
  Recyclable found;
  Statement all =
      file.Prepare("SELECT RowKey" + slots + ", Inventory, Color_Name FROM INK_Mix NOT INDEXED ORDER BY RowKey");
  while (all.Step()) {
    bool held = true;
    for (int i = 1; held && i <= schema::kIngredientSlots; ++i) held = recipe.contains(all.Text(i));
    if (!held) continue;
    found.rows.push_back(all.Whole(0));
    const int next = schema::kIngredientSlots + 1;
    if (all.Number(next) > 0 || lotted.contains(all.Text(next + 1))) ++found.inStock;
  }
  return found;
}

/// The same rows, by the engine's walk over the index that holds the search texts: each is taken apart and compared.
inline std::vector<std::int64_t> ScanForRecyclable(LargeRoom& room, const std::string& name) {
  Database& file = room.session.File();
  const std::string asked = file.Scalar("SELECT Color_Set FROM INK_Mix WHERE Color_Name = ?", {name}).Text();
  std::vector<std::int64_t> rows;
  Statement sets = file.Prepare("SELECT RowKey, Color_Set FROM INK_Mix");
  while (sets.Step()) {
    std::string_view rest = sets.TextView(1);
    bool held = true;
    while (held && !rest.empty()) {
      const std::size_t end = rest.find('>') + 1;
      held = asked.find(rest.substr(0, end)) != std::string::npos;
      rest.remove_prefix(end);
    }
    if (held) rows.push_back(sets.Whole(0));
  }
  std::ranges::sort(rows);
  return rows;
}

}  // namespace vellumark::bench
