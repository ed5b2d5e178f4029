#include "core/inventory/lot_picking.h"

#include <algorithm>

namespace vellumark {

void TakeOldestFirst(LotSelectionWork& work) {
  std::vector<std::size_t> byAge;
  for (std::size_t row = 1; row < work.rows.size(); ++row) byAge.push_back(row);
  std::ranges::stable_sort(byAge, [&](std::size_t a, std::size_t b) {
    const auto &first = work.rows[a].lot.LotDate, &second = work.rows[b].lot.LotDate;
    return first && (!second || *first < *second);
  });
  if (!work.rows.empty()) byAge.push_back(0);
  for (const std::size_t row : byAge) work.CheckRow(row);
}

std::size_t FirstToTake(const LotSelectionWork& work) {
  for (std::size_t row = 1; row < work.rows.size(); ++row)
    if (!work.rows[row].checked && work.rows[row].Holds() > 0) return row;
  return 0;
}

}  // namespace vellumark
