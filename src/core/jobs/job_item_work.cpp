#include "core/jobs/job_item_work.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/names.h"
#include "core/inventory/color_name.h"
#include "core/inventory/lots.h"

namespace vellumark {
namespace {

float Holds(const JobStockRow& row) {
  return std::max(0.0F, RoundSingle(row.stock.quantity, 3));
}

}  // namespace

Result<void> JobItemWork::ChooseColor(const Session& session, std::string_view database, std::string_view typed,
                                      std::optional<ColorKind> wanted) {
  const std::string name = SpelledOnFile(session, ReadName(session, typed), wanted, database);
  const auto kind = ChooseJobColor(session, database, name, wanted);
  if (!kind) return std::unexpected(kind.error());
  entry.Database = database;
  entry.Color_Name = name;
  entry.kind = *kind;
  chosen = true;
  rows.clear();
  Reread(session);
  return {};
}

void JobItemWork::Reread(const Session& session) {
  if (!chosen) return;
  std::vector<JobStockRow> now;
  for (JobStock& stock : JobStockOf(session, entry.Database, entry.Color_Name, entry.kind, entry.costing)) {
    JobStockRow& row = now.emplace_back(std::move(stock), 0.0F);
    const auto before = std::ranges::find_if(rows, [&](const JobStockRow& old) {
      return old.stock.LotRefID == row.stock.LotRefID && old.stock.LotNumber == row.stock.LotNumber;
    });
    if (before != rows.end()) row.take = row.stock.LotRefID == 0 ? before->take : std::min(before->take, Holds(row));
  }
  rows = std::move(now);
  if (rows.empty()) Clear();
}

void JobItemWork::Clear() {
  chosen = false;
  entry.Color_Name.clear();
  rows.clear();
}

float JobItemWork::Taken() const {
  return RoundSingle(std::accumulate(rows.begin(), rows.end(), 0.0,
                                     [](double sum, const JobStockRow& row) { return sum + RoundTo(row.take, 3); }),
                     3);
}

void JobItemWork::Toggle(std::size_t row) {
  JobStockRow& it = rows.at(row);
  it.take = it.Marked() ? 0 : Holds(it);
}

Result<void> JobItemWork::SetTake(std::size_t row, std::string_view typed) {
  JobStockRow& it = rows.at(row);
  if (const auto amount = ParseNumber(typed); TrimView(typed).empty() || (amount && RoundTo(*amount, 3) == 0)) {
    it.take = 0;
    return {};
  }
  const auto quantity = ReadTakeQty(typed);
  if (!quantity) return std::unexpected(quantity.error());
  // Of Unlotted Inventory more than is on file is asked about when the item is added.
  if (it.stock.LotRefID != 0 && *quantity > Holds(it))
    return Refuse("Exceeds Lotted",
                  fmt::format("The lot {} holds {}.", it.stock.LotNumber, Fixed(Holds(it), 3)), "QtyIssued");
  it.take = *quantity;
  return {};
}

void JobItemWork::ClearTakes() {
  for (JobStockRow& row : rows) row.take = 0;
}

Result<float> JobItemWork::Propose(std::string_view typed) {
  const auto wanted = ReadTakeQty(typed);
  if (!wanted) return std::unexpected(wanted.error());
  ClearTakes();
  std::vector<JobStockRow*> order;
  for (JobStockRow& row : rows) order.push_back(&row);
  const auto isUnlotted = [](const JobStockRow* row) { return row->stock.LotRefID == 0; };
  std::ranges::stable_sort(order, [&](const JobStockRow* a, const JobStockRow* b) {
    if (isUnlotted(a) != isUnlotted(b)) return isUnlotted(b);
    return a->stock.LotDate < b->stock.LotDate;
  });
  std::int64_t left = WholeUnits(*wanted, 3);
  for (JobStockRow* row : order) {
    const std::int64_t taken = std::min(left, WholeUnits(Holds(*row), 3));
    row->take = static_cast<float>(OfWholeUnits(taken, 3));
    left -= taken;
  }
  return static_cast<float>(OfWholeUnits(left, 3));
}

JobItemEntry JobItemWork::Entry() const {
  JobItemEntry whole = entry;
  whole.takes.clear();
  for (const JobStockRow& row : rows)
    if (row.Marked()) whole.takes.push_back({row.stock.LotRefID, row.stock.LotNumber, row.take});
  return whole;
}

}  // namespace vellumark
