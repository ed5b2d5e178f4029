#include "core/inventory/stock_list.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"

namespace vellumark {

void ForEachStock(const Session& session, std::optional<std::string_view> name, std::optional<ColorKind> wanted,
                  const std::function<bool(const ColorStock& stock)>& take) {
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    if (wanted && *wanted != kind) continue;
    Statement colors =
        session.File().Prepare(fmt::format("SELECT Color_Name, Inventory FROM {} {} ORDER BY Color_Name, RowKey",
                                           session.QuotedTable(ColorTable(kind)), name ? "WHERE Color_Name = ?1" : ""));
    if (name) colors.Bind(1, *name);
    while (colors.Step()) {
      ColorStock one;
      one.kind = kind;
      one.Color_Name = colors.Text(0);
      one.Inventory = colors.Single(1);
      if (session.InvLotTracking == 1) one.lots = LotsOf(session, kind, one.Color_Name);
      double lotted = 0;
      for (const LotRow& lot : one.lots) lotted += static_cast<double>(lot.LotQty);
      one.lotted = RoundSingle(lotted, 3);
      one.total = RoundSingle(one.Inventory + one.lotted, 3);
      if (!take(one)) return;
    }
  }
}

std::vector<ColorStock> ListStock(const Session& session, std::optional<std::string_view> name,
                                  std::optional<ColorKind> wanted) {
  std::vector<ColorStock> stock;
  ForEachStock(session, name, wanted, [&](const ColorStock& one) {
    stock.push_back(one);
    return true;
  });
  return stock;
}

std::vector<LowStock> ColorsBelowReorder(const Session& session) {
  std::vector<LowStock> low;
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    // Which rows may be meant is told by the index of just these two figures: the rows are wide, and most are not. Lots
    // only add to what stands in the row.
    Statement colors = session.File().Prepare(
        fmt::format("SELECT Color_Name, Reorder FROM {0} WHERE RowKey IN (SELECT RowKey FROM {0} WHERE "
                    "(Reorder > 0 OR Inventory < 0) AND COALESCE(Inventory, 0) < COALESCE(Reorder, 0) + 0.001)",
                    session.QuotedTable(ColorTable(kind))));
    const auto first = static_cast<std::ptrdiff_t>(low.size());
    while (colors.Step()) {
      LowStock one{kind, colors.Text(0), 0, colors.Single(1)};
      one.total = TotalStock(session, kind, one.Color_Name);
      if (one.total < one.Reorder) low.push_back(std::move(one));
    }
    std::stable_sort(low.begin() + first, low.end(), [](const LowStock& a, const LowStock& b) {
      return CompareNoCase(a.Color_Name, b.Color_Name) < 0;
    });
  }
  return low;
}

}  // namespace vellumark
