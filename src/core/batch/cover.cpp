#include "core/batch/cover.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/bench.h"
#include "core/batch/takings.h"

namespace vellumark {
namespace {

std::size_t FirstRowOf(const BatchRecord& record, const NetTaking& taking) {
  const auto& rows = record.work.Rows;
  const auto first = std::ranges::find_if(rows, [&](const BatchRow& row) {
    return ColorKindOf(row.kind) == taking.kind && EqualNoCase(row.name, taking.name);
  });
  return static_cast<std::size_t>(first - rows.begin());
}

// What lots hold that a Batch can consume.
double InLots(const Session& session, ColorKind kind, const std::string& name) {
  if (session.InvLotTracking == 0) return 0;
  double sum = 0;
  for (const LotRow& lot : LotsOf(session, kind, name))
    if (!lot.LotConsignment) sum += RoundTo(lot.LotQty, 3);
  return sum;
}

}  // namespace

std::vector<ShortStock> FindShortStock(Session& session, const BatchRecord& record) {
  const std::vector<NetTaking> takings = NetTakings(session, PlanTakings(session, record));
  std::vector<ShortStock> found;
  for (const NetTaking& taking : takings) {
    if (!(Covered(session, taking) < taking.place.LotQty)) continue;
    double lots = InLots(session, taking.kind, taking.name);
    for (const NetTaking& other : takings)
      if (other.place.LotRefID != 0 && other.kind == taking.kind && EqualNoCase(other.name, taking.name))
        lots -= RoundTo(other.place.LotQty, 3);
    const ShortStock line{FirstRowOf(record, taking), taking.name, taking.place.LotQty,
                          UnlottedQty(session, taking.kind, taking.name), RoundSingle(std::max(0.0, lots), 3)};
    if (line.there > 0 || line.inLots > 0) found.push_back(line);
  }
  return found;
}

std::string ShortStockText(const Session& session, const std::vector<ShortStock>& lines) {
  const std::string_view unit = UnitName(session.UMI);
  std::string text = "The Batch takes more from inventory than is there:\n";
  for (const ShortStock& line : lines) {
    text += fmt::format("\n{}: {} {} needed, {} in Unlotted Inv.", line.name, Fixed(line.takes, 3), unit,
                        Fixed(line.there, 3));
    if (line.inLots > 0) text += fmt::format(", {} in lots not chosen", Fixed(line.inLots, 3));
  }
  return text + "\n\nOnly what is there is taken.";
}

bool HasUnchosenLots(const Session& session, const BatchRecord& record) {
  for (std::size_t i = 0; i < record.work.Rows.size(); ++i) {
    const BatchRow& row = record.work.Rows[i];
    if (!row.lotLink || RowLots(record, i).CompleteFor(LotNeed(session, record, i))) continue;
    if (InLots(session, ColorKindOf(row.kind), row.name) > 0) return true;
  }
  return false;
}

}  // namespace vellumark
