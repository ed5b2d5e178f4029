#include "core/datafile/stock_balance.h"

#include <cmath>

#include "core/base/number.h"
#include "core/datafile/stock_history.h"

namespace vellumark {
namespace {

constexpr long double kUnit = 1e9L;

// Names compare as the Data File compares them, without regard to the case of A to Z.
std::string Key(std::string_view name) {
  std::string key(name);
  for (char& c : key)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return key;
}

std::size_t Place(ColorKind kind) {
  return kind == ColorKind::Mix ? 1 : 0;
}

double Shown(long double quantity) {
  return RoundTo(static_cast<double>(quantity / kUnit), 9);
}

}  // namespace

StockBalance::Stock& StockBalance::StockOf(std::string_view database) {
  const auto [place, isNew] = databases_.try_emplace(Key(database));
  if (isNew) place->second.name = database;
  return place->second;
}

StockBalance::Color& StockBalance::At(std::string_view database, ColorKind kind, std::string_view name) {
  const auto [place, isNew] = StockOf(database).of[Place(kind)].try_emplace(Key(name));
  if (isNew) place->second.name = name;
  return place->second;
}

StockBalance::StockBalance(Database& file, const std::function<bool(std::int64_t lines)>& goOn) {
  std::int64_t lines = 0;
  ForEachStockChange(file, [&](const StockStep& step) {
    switch (step.event) {
      case StockEvent::RenamedFrom:
        // The second line of the pair: what the first one says is said again, the other way round.
        Rename(step.database, step.kind, step.reason, step.Color_Name);
        break;
      case StockEvent::DatabaseRenamedFrom:
        RenameDatabase(step.reason, step.database);
        break;
      case StockEvent::DatabaseDeleted:
        databases_.erase(Key(step.database));
        break;
      case StockEvent::Renamed:
      case StockEvent::DatabaseRenamed:
        break;
      default: {
        Color& color = At(step.database, step.kind, step.Color_Name);
        const Quantity change = std::round(static_cast<long double>(step.change) * kUnit);
        if (step.LotRefID == 0) {
          color.unlotted += change;
        } else {
          Quantity& lot = color.lots[step.LotRefID];
          lot += change;
          if (lot == 0) color.lots.erase(step.LotRefID);
        }
      }
    }
    return !goOn || goOn(++lines);
  });
}

void StockBalance::Rename(std::string_view database, ColorKind kind, std::string_view oldName,
                          std::string_view newName) {
  Colors& colors = StockOf(database).of[Place(kind)];
  auto node = colors.extract(Key(oldName));
  if (node.empty()) return;
  node.key() = Key(newName);
  node.mapped().name = newName;
  colors.erase(node.key());
  colors.insert(std::move(node));
}

void StockBalance::RenameDatabase(std::string_view oldName, std::string_view newName) {
  auto node = databases_.extract(Key(oldName));
  if (node.empty()) return;
  node.key() = Key(newName);
  node.mapped().name = newName;
  databases_.erase(node.key());
  databases_.insert(std::move(node));
}

double StockBalance::Of(std::string_view database, ColorKind kind, std::string_view name, std::int32_t ref) const {
  const auto stock = databases_.find(Key(database));
  if (stock == databases_.end()) return 0;
  const Colors& colors = stock->second.of[Place(kind)];
  const auto color = colors.find(Key(name));
  if (color == colors.end()) return 0;
  if (ref == 0) return Shown(color->second.unlotted);
  const auto lot = color->second.lots.find(ref);
  return lot == color->second.lots.end() ? 0 : Shown(lot->second);
}

void StockBalance::ForEach(const std::function<void(const std::string& database, ColorKind kind,
                                                    const std::string& name, std::int32_t ref, double quantity)>& take)
    const {
  for (const auto& [key, stock] : databases_)
    for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix})
      for (const auto& [nameKey, color] : stock.of[Place(kind)]) {
        if (color.unlotted != 0) take(stock.name, kind, color.name, 0, Shown(color.unlotted));
        for (const auto& [ref, quantity] : color.lots) take(stock.name, kind, color.name, ref, Shown(quantity));
      }
}

}  // namespace vellumark
