#include "core/datafile/stock_joins.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/datafile/color_kind.h"
#include "core/datafile/stock_balance.h"
#include "core/datafile/stock_trail.h"

namespace vellumark {
namespace {

constexpr std::string_view kTable = kStockHistoryTable;

// Quantities by the reference of the lot, 0 of Unlotted Inventory; none that is 0.
using Figures = std::map<std::int32_t, double>;

void Add(Figures& figures, std::int32_t ref, double quantity) {
  const double sum = RoundTo(figures[ref] + quantity, 6);
  if (sum == 0) {
    figures.erase(ref);
  } else {
    figures[ref] = sum;
  }
}

// A formula that was renamed without a word.
struct Join {
  std::string database;
  std::string oldName;
  std::string newName;
  std::int64_t before = 0;  // the first line under the new name
  DateTime when{};
};

class JoinSearch {
 public:
  JoinSearch(Database& file, const StockBalance& balance, const std::string& database)
      : file_(file), database_(database) {
    // What stands there less what the history tells, by the name in capitals.
    Statement rows = file.Prepare(fmt::format(
        "SELECT Color_Name, Inventory, 0 FROM {} WHERE Inventory <> 0 UNION ALL SELECT LotCName, LotQty, LotRefID FROM "
        "{} WHERE LotQty <> 0",
        QuotedTable(database, schema::Mix), QuotedTable(database, schema::MixLotInv)));
    while (rows.Step())
      Add(lacking_[Upper(rows.TextView(0))], static_cast<std::int32_t>(rows.Whole(2)),
          LeadingNumber(ShortestText(rows.Single(1))));
    balance.ForEach(
        [&](const std::string& of, ColorKind kind, const std::string& name, std::int32_t ref, double quantity) {
          if (kind == ColorKind::Mix && EqualNoCase(of, database)) Add(lacking_[Upper(name)], ref, -quantity);
        });
    for (const auto& [name, figures] : lacking_) ++holders_[figures];
  }

  std::vector<Join> Run() const {
    std::vector<Join> joins;
    for (const auto& [oldName, figures] : lacking_) {
      Figures moved;
      for (const auto& [ref, quantity] : figures) moved.emplace(ref, -quantity);
      const bool left = !figures.empty() && std::ranges::all_of(moved, [](const auto& one) { return one.second > 0; });
      if (!left || Holders(figures) != 1 || Holders(moved) != 1) continue;
      const auto to = std::ranges::find(lacking_, moved, &std::pair<const std::string, Figures>::second);
      if (auto join = Proven(oldName, to->first, moved)) joins.push_back(*std::move(join));
    }
    return joins;
  }

 private:
  int Holders(const Figures& figures) const {
    const auto found = holders_.find(figures);
    return found == holders_.end() ? 0 : found->second;
  }

  // The name as the formula bears it.
  std::optional<std::string> Present(const std::string& name) const {
    const Value found = file_.Scalar(
        fmt::format("SELECT Color_Name FROM {} WHERE Color_Name = ?1 LIMIT 1", QuotedTable(database_, schema::Mix)),
        {name});
    return found.IsNull() ? std::nullopt : std::optional(std::string(found.Text()));
  }

  std::vector<StockLine> Lines(const std::string& name, bool present) const {
    StockTrail trail = StockTrail::OfColor(file_, database_, ColorKind::Mix, name, present);
    std::vector<StockLine> lines;
    while (trail.ReadOn(lines)) continue;
    return lines;
  }

  std::optional<Join> Proven(const std::string& oldName, const std::string& newName, const Figures& moved) const {
    const auto name = Present(newName);
    if (!name) return std::nullopt;
    Join join{database_, oldName, *name, file_.Scalar(fmt::format("SELECT MAX(ID) FROM {}", kTable)).Whole() + 1, {}};
    const std::vector<StockLine> later = Lines(newName, true);
    if (!later.empty()) join.before = later.back().id;
    Figures sum;
    const StockLine* last = nullptr;
    const std::vector<StockLine> earlier = Lines(oldName, Present(oldName).has_value());
    for (const StockLine& line : earlier) {
      if (line.id >= join.before || line.event >= StockEvent::Renamed) continue;
      if (last == nullptr) last = &line;
      Add(sum, line.LotRefID, line.change);
    }
    if (sum != moved || last == nullptr) return std::nullopt;
    join.database = last->database;
    join.oldName = last->Color_Name;
    join.when = last->when;
    if (!later.empty() && !EqualNoCase(later.back().database, join.database)) return std::nullopt;
    return join;
  }

  Database& file_;
  const std::string& database_;
  std::map<std::string, Figures> lacking_;
  std::map<Figures, int> holders_;
};

// Makes room for two lines before the first of each new name. By way of negative numbers, since no two lines may bear
// one number at any time.
void MakeRoom(Database& file, const std::vector<Join>& joins) {
  file.Prepare(fmt::format("UPDATE {} SET ID = -ID WHERE ID >= ?1", kTable)).Bind(1, joins.front().before).Run();
  for (std::size_t i = joins.size(); i-- > 0;)
    file.Prepare(fmt::format("UPDATE {} SET ID = ?1 - ID WHERE ID <= ?2", kTable))
        .Bind(1, static_cast<std::int64_t>(2 * (i + 1)))
        .Bind(2, -joins[i].before)
        .Run();
}

void WriteJoins(Database& file, std::vector<Join> joins) {
  if (joins.empty()) return;
  std::ranges::sort(joins, {}, &Join::before);
  MakeRoom(file, joins);
  Statement place = file.Prepare(fmt::format("UPDATE {} SET ID = ?1 WHERE ID = ?2", kTable));
  for (std::size_t i = 0; i < joins.size(); ++i) {
    const Join& join = joins[i];
    StockLine line;
    line.when = join.when;
    line.kind = ColorKind::Mix;
    line.database = join.database;
    AddRenameLines(file, line, join.oldName, join.newName);
    const std::int64_t last = file.Scalar(fmt::format("SELECT MAX(ID) FROM {}", kTable)).Whole();
    const std::int64_t at = join.before + static_cast<std::int64_t>(2 * i);
    if (last == at + 1) continue;
    place.Bind(1, at).Bind(2, last - 1).Run();
    place.Bind(1, at + 1).Bind(2, last).Run();
  }
}

}  // namespace

void BringStockHistoryUpToDate(Database& file, const std::vector<std::string>& databases) {
  Transaction transaction(file);
  if (!IndexStockHistory(file)) return;
  const StockBalance balance(file);
  std::vector<Join> joins;
  for (const std::string& database : databases)
    if (file.TableExists(TableName(database, schema::Mix)) && file.TableExists(TableName(database, schema::MixLotInv)))
      for (Join& join : JoinSearch(file, balance, database).Run()) joins.push_back(std::move(join));
  WriteJoins(file, std::move(joins));
  transaction.Commit();
}

}  // namespace vellumark
