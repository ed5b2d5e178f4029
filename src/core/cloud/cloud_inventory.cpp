#include "core/cloud/cloud_inventory.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <system_error>

#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/datafile/color_kind.h"
#include "core/datafile/lifecycle.h"
#include "core/inventory/lots.h"
#include "core/reports/color_book.h"

namespace vellumark {

namespace {

using Take = std::function<bool(const CloudStockRow&)>;

// Quantities and prices of another shop in this one's unit, quantities from the decimals that people there see. What it
// does not tell counts as this one.
class Converted {
 public:
  Converted(const Session& session, const ShareRow& share)
      : factor_(share.UMI < UnitPound || share.UMI > UnitOunce
                    ? 1
                    : static_cast<double>(UnitFactor(share.UMI, session.UMI))) {}
  double Qty(float quantity) const { return RoundTo(OfWholeUnits(WholeUnits(quantity, 3), 3) * factor_, 3); }
  // As it stands there: a price of a gram has decimals that one of a pound does without.
  double Price(float price) const { return RoundTo(price, kDigitsOfSingle) / factor_; }

 private:
  static constexpr int kDigitsOfSingle = 9;
  double factor_;
};

bool Wanted(const CloudStockWish& wish, bool consigned) {
  return wish.consignment == 0 || (wish.consignment == 2) == consigned;
}

bool IsAsked(const CloudStockWish& wish, const std::string& account, const std::string& database) {
  if (wish.reads && !wish.reads(database)) return false;
  return wish.databases.empty() || std::ranges::any_of(wish.databases, [&](const std::string& name) {
           return EqualNoCase(name, account + "/" + database);
         });
}

// Upper case, as all names of colours are kept.
using LotsByName = std::map<std::string, std::vector<CloudStockRow>>;

LotsByName LotsOf(Database& file, const std::string& database, ColorKind kind, const CloudStockRow& blank,
                  const Converted& unit) {
  LotsByName lots;
  if (!file.TableExists(TableName(database, LotTable(kind)))) return lots;
  Statement rows = file.Prepare(
      fmt::format("SELECT LotCName, LotNumber, LotLoc, LotContID, LotDate, LotQty, LotPrice, LotConsignment FROM {} "
                  "ORDER BY LotNumber, LotRefID",
                  QuotedTable(database, LotTable(kind))));
  while (rows.Step()) {
    CloudStockRow lot = blank;
    lot.inLot = true;
    lot.LotNumber = rows.Text(1);
    lot.LotLoc = rows.Text(2);
    lot.LotContID = rows.Text(3);
    lot.LotDate = rows.Date(4);
    lot.LotQty = unit.Qty(rows.Single(5));
    lot.LotPrice = unit.Price(rows.Single(6));
    lot.Consignment = rows.Bool(7);
    lots[Upper(rows.TextView(0))].push_back(std::move(lot));
  }
  return lots;
}

// A colour's row, and a row for each of its lots.
bool TakeColor(const CloudStockRow& color, std::vector<CloudStockRow>& lots, const CloudStockWish& wish,
               const Take& take) {
  if (wish.inStockOnly && color.LotQty == 0 && lots.empty()) return true;
  if (Wanted(wish, false) && !take(color)) return false;
  for (CloudStockRow& lot : lots) {
    if (!Wanted(wish, lot.Consignment)) continue;
    lot.Color_Name = color.Color_Name;
    lot.Color_Code = color.Color_Code;
    lot.Color_Type = color.Color_Type;
    lot.Reorder = color.Reorder;
    lot.Inv_Note = color.Inv_Note;
    if (!take(lot)) return false;
  }
  return true;
}

bool ReadColors(Database& file, ColorKind kind, const CloudStockRow& blank, const CloudStockWish& wish,
                const Converted& unit, const Take& take) {
  LotsByName lots = LotsOf(file, blank.Database, kind, blank, unit);
  Statement rows = file.Prepare(fmt::format(
      "SELECT Color_Name, Color_Code, Inventory, Reorder, PurchaseCost, Inv_Note, {} FROM {} ORDER BY Color_Name",
      kind == ColorKind::Basic ? "Additive" : "0", QuotedTable(blank.Database, ColorTable(kind))));
  while (rows.Step()) {
    if (!wish.color.empty() && !EqualNoCase(rows.TextView(0), wish.color)) continue;
    CloudStockRow row = blank;
    row.Color_Name = rows.Text(0);
    row.Color_Code = rows.Text(1);
    row.Color_Type = ColorTypeText(kind, rows.Bool(6));
    row.Reorder = unit.Qty(rows.Single(3));
    row.Inv_Note = rows.Text(5);
    row.LotNumber = kUnlottedInv;
    row.LotQty = unit.Qty(rows.Single(2));
    row.LotPrice = unit.Price(rows.Single(4));
    if (!TakeColor(row, lots[Upper(row.Color_Name)], wish, take)) return false;
  }
  return true;
}

std::vector<std::string> DatabasesIn(Database& file) {
  const FileInfoRow info = ReadFileInfo(file);
  const VersionGate gate = GateOf(info.fileVersion);
  if (gate != VersionGate::Current && gate != VersionGate::ReadOnly)
    throw Failure(file.Path().string(), fmt::format("has a file version of {}", info.fileVersion));
  return info.dbList;
}

std::string AgeText(const Session& session, const ShareRow& share) {
  if (!share.shared) return "";
  const std::int64_t days = session.clock.Today().DayNumber() - share.shared->DayNumber();
  return days <= 0 ? "today" : days == 1 ? "1 day" : fmt::format("{} days", days);
}

}  // namespace

bool ReadShareStock(const Session& session, const ShareRow& share, const CloudStockWish& wish, const Take& take) {
  const auto file = Database::Open(SharedDataFile(session, share.AcctNum), OpenMode::ReadOnly);
  const Converted unit(session, share);
  for (const std::string& database : DatabasesIn(*file)) {
    if (!IsAsked(wish, share.AcctNum, database)) continue;
    CloudStockRow blank;
    blank.share = share;
    blank.Database = database;
    if (wish.showBasics && !ReadColors(*file, ColorKind::Basic, blank, wish, unit, take)) return false;
    if (wish.showMixes && !ReadColors(*file, ColorKind::Mix, blank, wish, unit, take)) return false;
  }
  return true;
}

Result<CloudStock> ReadCloudStock(Session& session, const CloudStockWish& wish) {
  if (auto accounts = RequireSharedAccounts(session); !accounts) return std::unexpected(accounts.error());
  ProgressRun progress(session.progress, "Reading Inventory ...");
  const std::vector<ShareRow> shares = SharesHere(session);
  CloudStock stock;
  for (std::size_t i = 0; i < shares.size() && !session.progress.Cancelled(); ++i) {
    progress.Step(i, shares.size());
    if (!shares[i].came) {
      stock.faults.push_back(fmt::format("{}: nothing was fetched yet", shares[i].AcctNum));
      continue;
    }
    try {
      ReadShareStock(session, shares[i], wish, [&](const CloudStockRow& row) {
        stock.rows.push_back(row);
        return true;
      });
    } catch (const Failure& failure) {
      stock.faults.push_back(fmt::format("{}: {}", shares[i].AcctNum, failure.cause));
    }
  }
  if (stock.rows.empty()) {
    std::string text = "No inventory found.";
    for (const std::string& fault : stock.faults) text += "\n" + fault;
    return Refuse("Cloud User Inventory Report", text);
  }
  return stock;
}

ListTable CloudStockTable(const Session& session, std::vector<CloudStockRow> rows) {
  using Row = CloudStockRow;
  const std::string unit(UnitName(session.UMI));
  TableOf<Row> table;
  table.Add("Color_Name", &Row::Color_Name, "Color Name")
      .Add(
          "AcctNum", [](const Row& row) { return row.share.AcctNum; }, "Account")
      .Add("Facility", [](const Row& row) { return row.share.Facility; })
      .Add("Database", &Row::Database)
      .Add("Color_Type", &Row::Color_Type, "Color Type")
      .Add("Color_Code", &Row::Color_Code, "Color Code")
      .Add("Reorder", &Row::Reorder, fmt::format("Reorder ({})", unit), Format::Amount)
      .Add("Inv_Note", &Row::Inv_Note, "Inventory Note")
      .Add("LotNumber", &Row::LotNumber, "Lot Number")
      .Add("LotLoc", &Row::LotLoc, "Lot Location")
      .Add("LotContID", &Row::LotContID, "Lot Cont. ID")
      .Add("LotDate", &Row::LotDate, "Lot Date", Format::Date)
      .Add("LotQty", &Row::LotQty, fmt::format("Lot Qty. ({})", unit), Format::Amount);
  if (session.Perm_Costs != 0)
    table.Add("LotPrice", &Row::LotPrice, "Lot Price $", Format::Money, session.DecimalPlaces);
  table.Add("Consignment", &Row::Consignment, "Consignment", Format::YesNo)
      .Add(
          "Unit",
          [](const Row& row) {
            return row.share.UMI == 0 ? std::string("not told") : std::string(UnitName(row.share.UMI));
          },
          "Their Unit")
      .Add(
          "Shared", [](const Row& row) { return row.share.shared; }, "Shared", Format::Moment)
      .Add("Age", [&session](const Row& row) { return AgeText(session, row.share); })
      .Add(
          "Fetch", [](const Row& row) { return row.share.fetched ? std::string("done") : "failed: " + row.share.why; },
          "Last Fetch");
  return table.Of(std::move(rows));
}

}  // namespace vellumark
