#include "core/inventory/stock_history.h"

#include <fmt/format.h>

#include "core/base/text.h"
#include "core/inventory/lots.h"

namespace vellumark {
namespace {

using Lot = StockTrail::Lot;

// Within one colour the reference alone tells a lot, whatever the colour was called.
Lot KeyOf(ColorKind kind, std::string_view name, std::int32_t ref, bool oneColor) {
  return {kind, oneColor ? std::string() : Upper(name), ref};
}

// The lots that bear the number now.
std::set<Lot> PresentLots(const Session& session, const std::string& database, const StockHistoryFilter& filter) {
  std::set<Lot> present;
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    Statement lots = session.File().Prepare(fmt::format("SELECT LotCName, LotRefID FROM {} WHERE LotNumber = ?1{}",
                                                        session.QuotedTable(LotTable(kind), database),
                                                        filter.name ? " AND LotCName = ?2" : ""));
    lots.Bind(1, Trim(*filter.lot));
    if (filter.name) lots.Bind(2, *filter.name);
    while (lots.Step())
      present.insert(KeyOf(kind, lots.TextView(0), static_cast<std::int32_t>(lots.Whole(1)), filter.name.has_value()));
  }
  return present;
}

// A lot that bears the number now is meant rather than an earlier one of its colour that bore it too.
void PreferPresent(std::set<Lot>& wanted, const std::set<Lot>& present) {
  std::set<std::pair<ColorKind, std::string>> colors;
  for (const Lot& lot : present)
    if (wanted.contains(lot)) colors.emplace(std::get<0>(lot), std::get<1>(lot));
  std::erase_if(wanted, [&](const Lot& lot) {
    return colors.contains({std::get<0>(lot), std::get<1>(lot)}) && !present.contains(lot);
  });
}

}  // namespace

StockHistoryReader::StockHistoryReader(const Session& session, const StockHistoryFilter& filter, LineOrder order)
    : order_(order), kind_(filter.kind), oneColor_(filter.name.has_value()) {
  Database& file = session.File();
  if (!HasStockHistory(file)) return;  // a copy for looking, made before there was one
  const std::string& database = filter.database.empty() ? session.CurrentDatabase : filter.database;
  if (!filter.name) AddTrail(StockTrail::OfDatabase(file, database));
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix})
    if (filter.name && (!filter.kind || *filter.kind == kind))
      AddTrail(
          StockTrail::OfColor(file, database, kind, *filter.name, ColorIsThere(session, kind, *filter.name, database)));
  if (filter.lot) ChooseLots(session, database, filter);
}

void StockHistoryReader::AddTrail(StockTrail trail) {
  if (order_ == LineOrder::OldestFirst) trail.ReadOldestFirst();
  parts_.push_back({std::move(trail)});
}

void StockHistoryReader::ChooseLots(const Session& session, const std::string& database,
                                    const StockHistoryFilter& filter) {
  const std::string number = Trim(*filter.lot);
  lots_.emplace();
  unlotted_ = EqualNoCase(number, kUnlottedInv);
  if (unlotted_) return;
  for (const Part& part : parts_)
    for (const auto& [kind, name, ref] : part.trail.LotsOfNumber(number))
      lots_->insert(KeyOf(kind, name, ref, oneColor_));
  PreferPresent(*lots_, PresentLots(session, database, filter));
  if (oneColor_ && !lots_->empty()) return;
  // The lines of a few colours instead of all.
  parts_.clear();
  std::set<std::pair<ColorKind, std::string>> colors;
  for (const auto& [kind, name, ref] : *lots_) colors.emplace(kind, name);
  for (const auto& [kind, name] : colors) AddTrail(StockTrail::OfName(session.File(), database, kind, name));
}

bool StockHistoryReader::IsWanted(const StockLine& line) const {
  if (kind_ && line.kind != *kind_) return false;
  if (!lots_) return true;
  if (line.LotRefID == 0) return unlotted_ && line.event < StockEvent::Renamed;
  return lots_->contains(KeyOf(line.kind, line.Color_Name, line.LotRefID, oneColor_));
}

bool StockHistoryReader::ReadOn(std::vector<StockLine>& lines) {
  for (Part& part : parts_) {
    if (part.taken < part.ahead.size() || !part.more) continue;
    part.ahead.clear();
    part.taken = 0;
    part.more = part.trail.ReadOn(part.ahead);
  }
  // The next one of all parts follows, as long as each has shown what it goes on with.
  for (;;) {
    Part* next = nullptr;
    for (Part& part : parts_) {
      if (part.taken == part.ahead.size()) {
        if (part.more) return true;
      } else if (next == nullptr ||
                 (part.ahead[part.taken].id < next->ahead[next->taken].id) == (order_ == LineOrder::OldestFirst)) {
        next = &part;
      }
    }
    if (next == nullptr) return false;
    StockLine& line = next->ahead[next->taken++];
    if (IsWanted(line)) lines.push_back(std::move(line));
  }
}

}  // namespace vellumark
