#include "core/cloud/cloud_inventory.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <system_error>

#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/datafile/color_kind.h"
#include "core/datafile/lifecycle.h"
#include "core/inventory/lots.h"
#include "core/reports/color_book.h"

namespace vellumark {

namespace {

// Quantities and prices of another shop in this one's unit.
struct Converted {
  double factor = 1;
  double Qty(double quantity) const { return std::round(quantity * factor * 1000) / 1000; }
  double Price(double price) const { return price / factor; }
};

Converted UnitOf(const Session& session, const ShareRow& share) {
  if (share.UMI < UnitPound || share.UMI > UnitOunce) return {};
  return {static_cast<double>(UnitFactor(share.UMI, session.UMI))};
}

bool Wanted(const CloudStockWish& wish, bool consigned) {
  return wish.consignment == 0 || (wish.consignment == 2) == consigned;
}

bool IsAsked(const CloudStockWish& wish, const std::string& account, const std::string& database) {
  return wish.databases.empty() || std::ranges::any_of(wish.databases, [&](const std::string& name) {
           return EqualNoCase(name, account + "/" + database);
         });
}

// Upper case, as all names of colours are kept.
using LotsByName = std::map<std::string, std::vector<CloudStockRow>>;

LotsByName LotsOf(Database& file, const std::string& database, ColorKind kind, const CloudStockRow& blank,
                  const CloudStockWish& wish, const Converted& unit) {
  LotsByName lots;
  if (!file.TableExists(TableName(database, LotTable(kind)))) return lots;
  Statement rows = file.Prepare(fmt::format(
      "SELECT LotCName, LotNumber, LotLoc, LotContID, LotDate, LotQty, LotPrice, LotConsignment FROM {} "
      "ORDER BY LotNumber, LotRefID",
      QuotedTable(database, LotTable(kind))));
  while (rows.Step()) {
    if (!Wanted(wish, rows.Bool(7))) continue;
    CloudStockRow lot = blank;
    lot.LotNumber = rows.Text(1);
    lot.LotLoc = rows.Text(2);
    lot.LotContID = rows.Text(3);
    lot.LotDate = rows.Date(4);
    lot.LotQty = unit.Qty(rows.Number(5));
    lot.LotPrice = unit.Price(rows.Number(6));
    lot.Consignment = rows.Bool(7);
    lots[Upper(rows.TextView(0))].push_back(std::move(lot));
  }
  return lots;
}

void ReadColors(Database& file, const std::string& database, ColorKind kind, const CloudStockRow& blank,
                const CloudStockWish& wish, const Converted& unit, std::vector<CloudStockRow>& into) {
  const LotsByName lots = LotsOf(file, database, kind, blank, wish, unit);
  Statement rows = file.Prepare(
      fmt::format("SELECT Color_Name, Color_Code, Inventory, Reorder, PurchaseCost, Inv_Note, {} FROM {} ORDER BY Color_Name",
                  kind == ColorKind::Basic ? "Additive" : "0", QuotedTable(database, ColorTable(kind))));
  while (rows.Step()) {
    if (!wish.color.empty() && !EqualNoCase(rows.TextView(0), wish.color)) continue;
    CloudStockRow row = blank;
    row.Color_Name = rows.Text(0);
    row.Color_Code = rows.Text(1);
    row.Color_Type = ColorTypeText(kind, rows.Bool(6));
    row.Reorder = unit.Qty(rows.Number(3));
    row.Inv_Note = rows.Text(5);
    row.LotNumber = kUnlottedInv;
    row.LotQty = unit.Qty(rows.Number(2));
    row.LotPrice = unit.Price(rows.Number(4));
    if (Wanted(wish, false)) into.push_back(row);
    const auto own = lots.find(Upper(row.Color_Name));
    if (own == lots.end()) continue;
    for (CloudStockRow lot : own->second) {
      lot.Color_Name = row.Color_Name;
      lot.Color_Code = row.Color_Code;
      lot.Color_Type = row.Color_Type;
      lot.Reorder = row.Reorder;
      lot.Inv_Note = row.Inv_Note;
      into.push_back(std::move(lot));
    }
  }
}

std::vector<std::string> DatabasesIn(Database& file) {
  const FileInfoRow info = ReadFileInfo(file);
  if (GateOf(info.fileVersion) != VersionGate::Current)
    throw Failure(file.Path().string(), fmt::format("has a file version of {}", info.fileVersion));
  return info.dbList;
}

void ReadShare(const Session& session, const ShareRow& share, const CloudStockWish& wish, std::vector<CloudStockRow>& into) {
  const auto file = Database::Open(SharedDataFile(session, share.AcctNum), OpenMode::ReadOnly);
  const Converted unit = UnitOf(session, share);
  for (const std::string& database : DatabasesIn(*file)) {
    if (!IsAsked(wish, share.AcctNum, database)) continue;
    CloudStockRow blank;
    blank.share = share;
    blank.Database = database;
    if (wish.showBasics) ReadColors(*file, database, ColorKind::Basic, blank, wish, unit, into);
    if (wish.showMixes) ReadColors(*file, database, ColorKind::Mix, blank, wish, unit, into);
  }
}

std::string AgeText(const Session& session, const ShareRow& share) {
  if (!share.shared) return "";
  const std::int64_t days = session.clock.Today().DayNumber() - share.shared->DayNumber();
  return days <= 0 ? "today" : days == 1 ? "1 day" : fmt::format("{} days", days);
}

}  // namespace

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
      ReadShare(session, shares[i], wish, stock.rows);
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

std::vector<std::string> CloudDatabases(const Session& session) {
  std::vector<std::string> names;
  for (const ShareRow& share : SharesHere(session)) {
    if (!share.came) continue;
    try {
      const auto file = Database::Open(SharedDataFile(session, share.AcctNum), OpenMode::ReadOnly);
      for (const std::string& database : DatabasesIn(*file)) names.push_back(share.AcctNum + "/" + database);
    } catch (const Failure&) {
      continue;  // a file that cannot be read has no Databases to choose; the report of its stock tells why
    }
  }
  return names;
}

ListTable CloudStockTable(const Session& session, std::vector<CloudStockRow> rows) {
  using Row = CloudStockRow;
  const std::string unit(UnitName(session.UMI));
  return TableOf<Row>()
      .Add("Color_Name", &Row::Color_Name, "Color Name")
      .Add("AcctNum", [](const Row& row) { return row.share.AcctNum; }, "Account")
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
      .Add("LotQty", &Row::LotQty, fmt::format("Lot Qty. ({})", unit), Format::Amount)
      .Add("LotPrice", &Row::LotPrice, "Lot Price $", Format::Money, session.DecimalPlaces)
      .Add("Consignment", &Row::Consignment, "Consignment", Format::YesNo)
      .Add("Unit",
           [](const Row& row) {
             return row.share.UMI == 0 ? std::string("not told") : std::string(UnitName(row.share.UMI));
           },
           "Their Unit")
      .Add("Shared", [](const Row& row) { return row.share.shared; }, "Shared", Format::Moment)
      .Add("Age", [&session](const Row& row) { return AgeText(session, row.share); })
      .Add("Fetch", [](const Row& row) { return row.share.fetched ? std::string("done") : "failed: " + row.share.why; },
           "Last Fetch")
      .Of(std::move(rows));
}

}  // namespace vellumark
