#include "core/inventory/stock_history.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <tuple>

#include "core/base/text.h"
#include "core/inventory/lots.h"

namespace vellumark {
namespace {

std::vector<StockLine> LinesOfColor(const Session& session, const std::string& database,
                                    const StockHistoryFilter& filter) {
  std::vector<StockLine> lines;
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    if (filter.kind && *filter.kind != kind) continue;
    const bool present = ColorIsThere(session, kind, *filter.name, database);
    std::vector<StockLine> traced = TraceStock(session.File(), database, kind, *filter.name, present);
    std::move(traced.begin(), traced.end(), std::back_inserter(lines));
  }
  std::sort(lines.begin(), lines.end(), [](const StockLine& a, const StockLine& b) { return a.id < b.id; });
  return lines;
}

// Whose lot a line is about. Within one colour the reference alone tells, whatever the colour was called.
using LotKey = std::tuple<ColorKind, std::string, std::int32_t>;
LotKey KeyOf(const StockLine& line, bool oneColor) {
  return {line.kind, oneColor ? std::string() : Upper(line.Color_Name), line.LotRefID};
}

// The lots that bear the number now.
std::set<LotKey> PresentLots(const Session& session, const std::string& database, const StockHistoryFilter& filter) {
  std::set<LotKey> present;
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    Statement lots = session.File().Prepare(fmt::format("SELECT LotCName, LotRefID FROM {} WHERE LotNumber = ?1{}",
                                                        Quoted(session.Table(LotTable(kind), database)),
                                                        filter.name ? " AND LotCName = ?2" : ""));
    lots.Bind(1, Trim(*filter.lot));
    if (filter.name) lots.Bind(2, *filter.name);
    while (lots.Step())
      present.emplace(kind, filter.name ? std::string() : Upper(lots.TextView(0)),
                      static_cast<std::int32_t>(lots.Whole(1)));
  }
  return present;
}

// A lot that bears the number now is meant rather than an earlier one of its colour that bore it too.
void PreferPresent(std::set<LotKey>& wanted, const std::set<LotKey>& present) {
  std::set<std::pair<ColorKind, std::string>> colors;
  for (const LotKey& key : present)
    if (wanted.contains(key)) colors.emplace(std::get<0>(key), std::get<1>(key));
  std::erase_if(wanted, [&](const LotKey& key) {
    return colors.contains({std::get<0>(key), std::get<1>(key)}) && !present.contains(key);
  });
}

void KeepLot(const Session& session, const std::string& database, const StockHistoryFilter& filter,
             std::vector<StockLine>& lines) {
  const std::string lot = Trim(*filter.lot);
  const bool oneColor = filter.name.has_value();
  const bool unlotted = EqualNoCase(lot, kUnlottedInv);
  std::set<LotKey> wanted;
  for (const StockLine& line : lines)
    if (line.LotRefID != 0 && EqualNoCase(line.LotNumber, lot)) wanted.insert(KeyOf(line, oneColor));
  if (!unlotted) PreferPresent(wanted, PresentLots(session, database, filter));
  std::erase_if(lines, [&](const StockLine& line) {
    if (line.LotRefID == 0) return !unlotted || line.event >= StockEvent::Renamed;
    return !wanted.contains(KeyOf(line, oneColor));
  });
}

}  // namespace

std::vector<StockLine> ListStockHistory(const Session& session, const StockHistoryFilter& filter) {
  if (!HasStockHistory(session.File())) return {};  // a copy for looking, made before there was one
  const std::string& database = filter.database.empty() ? session.CurrentDatabase : filter.database;
  std::vector<StockLine> lines =
      filter.name ? LinesOfColor(session, database, filter) : DatabaseStockLines(session.File(), database);
  if (!filter.name && filter.kind)
    std::erase_if(lines, [&](const StockLine& line) { return line.kind != *filter.kind; });
  if (filter.lot) KeepLot(session, database, filter, lines);
  return lines;
}

}  // namespace vellumark
