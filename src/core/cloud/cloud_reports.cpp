#include "core/cloud/cloud_reports.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/cloud/shared_accounts.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/inventory/lots.h"
#include "core/reports/catalogue.h"
#include "core/reports/color_book.h"
#include "core/reports/lot_columns.h"

namespace vellumark {
namespace {

constexpr int kOwned = 1;
constexpr int kConsigned = 2;
constexpr int kPlaceWidth = 3600;  // twips

struct ForeignStock {
  const ShareRow* share = nullptr;
  std::string database{};
  ColorKind kind = ColorKind::Basic;
  bool additive = false;
  std::string name{};
  std::string code{};
  std::string note{};
  double reorder = 0;
  std::optional<ReportLot> lot{};
  bool consigned = false;
  double quantity = 0;  ///< of the lot, or what is unlotted
  double price = 0;
};

using Take = std::function<bool(const ForeignStock&)>;

struct ForeignLot {
  ReportLot lot;
  bool consigned = false;
};
using LotsByName = std::multimap<std::string, ForeignLot>;

LotsByName LotsOf(Database& file, const std::string& database, ColorKind kind, int decimals) {
  LotsByName lots;
  Statement rows = file.Prepare(fmt::format("SELECT {}, LotConsignment, LotCName FROM {} ORDER BY LotCName, LotNumber, RowKey",
                                            kLotColumns, Quoted(TableName(database, LotTable(kind)))));
  while (rows.Step())
    lots.emplace(Upper(rows.Text(kLotColumnCount + 1)),
                 ForeignLot{ReadReportLot(rows, 0, decimals), rows.Bool(kLotColumnCount)});
  return lots;
}

// One Database of another shop, whose unit of stock is turned into ours; one that it does not tell counts as ours.
class ForeignDatabase {
 public:
  ForeignDatabase(const ReportContext& context, const ShareRow& share, Database& file, std::string name)
      : context_(context),
        share_(share),
        file_(file),
        name_(std::move(name)),
        factor_(share.UMI == 0 ? 1 : static_cast<double>(UnitFactor(share.UMI, context.session.UMI))) {}

  bool Read(ColorKind kind, const Take& take) {
    const int decimals = context_.session.DecimalPlaces;
    const LotsByName lots = LotsOf(file_, name_, kind, decimals);
    const bool mix = kind == ColorKind::Mix;
    Statement row = file_.Prepare(
        fmt::format("SELECT Color_Name, Color_Code, Inventory, Reorder, PurchaseCost, Inv_Note{} FROM {} ORDER BY Color_Name ASC",
                    mix ? "" : ", Additive", Quoted(TableName(name_, mix ? schema::Mix : schema::Basic))));
    while (row.Step()) {
      ForeignStock stock{&share_, name_, kind, !mix && row.Bool(6), row.Text(0), row.Text(1), row.Text(5)};
      if (!context_.name.empty() && !EqualNoCase(stock.name, context_.name)) continue;
      stock.quantity = OfWholeUnits(WholeUnits(row.Single(2), 3), 3) * factor_;
      stock.reorder = OfWholeUnits(WholeUnits(row.Single(3), 3), 3) * factor_;
      stock.price = OfWholeUnits(WholeUnits(row.Single(4), decimals), decimals) / factor_;
      const auto [first, last] = lots.equal_range(Upper(stock.name));
      if (context_.Option("InvOnly") == 1 && stock.quantity == 0 && first == last) continue;
      if (!TakeColor(stock, first, last, take)) return false;
    }
    return true;
  }

 private:
  bool TakeColor(ForeignStock& stock, LotsByName::const_iterator lot, LotsByName::const_iterator last, const Take& take) {
    const int consignment = context_.Option("OptConsignment");
    if (consignment != kConsigned && !take(stock)) return false;
    for (; lot != last; ++lot) {
      const ForeignLot& one = lot->second;
      if (consignment != 0 && (consignment == kConsigned) != one.consigned) continue;
      stock.lot = one.lot;
      stock.consigned = one.consigned;
      stock.quantity = OfWholeUnits(one.lot.LotQty, 3) * factor_;
      stock.price = OfWholeUnits(one.lot.price, context_.session.DecimalPlaces) / factor_;
      if (!take(stock)) return false;
    }
    return true;
  }

  const ReportContext& context_;
  const ShareRow& share_;
  Database& file_;
  std::string name_;
  double factor_;
};

bool ReadShop(const ReportContext& context, const ShareRow& share, const Take& take) {
  const auto file = Database::Open(SharedDataFile(context.session, share.AcctNum), OpenMode::ReadOnly);
  const FileInfoRow info = ReadFileInfo(*file);
  if (GateOf(info.fileVersion) != VersionGate::Current && GateOf(info.fileVersion) != VersionGate::ReadOnly)
    throw Failure(share.AcctNum, fmt::format("its Data File has the version {}", info.fileVersion));
  const auto isIn = [](const std::vector<std::string>& names, const std::string& name) {
    return std::ranges::any_of(names, [&](const std::string& one) { return EqualNoCase(one, name); });
  };
  for (const std::string& name : info.dbList) {
    // Shops call their Databases alike: of one that we have too it counts whether it is ticked.
    if (context.report.scope == ReportScope::Chosen && isIn(context.session.databaseList, name) &&
        !isIn(context.databases, name))
      continue;
    ForeignDatabase database(context, share, *file, name);
    for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix})
      if (context.Option(kind == ColorKind::Mix ? "ShowMixes" : "ShowBasics") == 1 && !database.Read(kind, take))
        return false;
  }
  return true;
}

void ReadAll(const ReportContext& context, const std::vector<ShareRow>& shares, const Take& take) {
  std::int64_t colors = 0;
  for (const ShareRow& share : shares) {
    ForeignStock fault{.share = &share, .database = "", .name = share.AcctNum};
    try {
      if (share.came && !ReadShop(context, share, [&](const ForeignStock& stock) {
            if (!stock.lot) context.watch.SetCount(++colors);
            return take(stock);
          }))
        return;
      if (!share.came) fault.note = "Nothing has been fetched of this account";
    } catch (const Failure& failure) {
      fault.note = fmt::format("{}: {}", failure.subject, failure.cause);
    }
    // What of a shop cannot be told has a row of its own.
    if (!fault.note.empty() && !take(fault)) return;
  }
}

// "2001 - INK (2026-03-09, not fetched today)"
std::string PlaceOf(const ForeignStock& stock) {
  const ShareRow& share = *stock.share;
  std::string text = share.AcctNum;
  if (!stock.database.empty()) text += " - " + stock.database;
  std::string more = share.shared ? share.shared->DateText() : std::string();
  if (!share.fetched && share.tried) more += more.empty() ? "fetch failed" : ", fetch failed";
  if (share.UMI == 0 && share.came) more += more.empty() ? "unit not told" : ", unit not told";
  return more.empty() ? text : fmt::format("{} ({})", text, more);
}

ListTable ForeignInventory(const ReportContext& context) {
  using Row = ForeignStock;
  const int decimals = context.session.DecimalPlaces;
  const auto text = [](std::string ReportLot::*field) {
    return [field](const Row& r) { return r.lot ? (*r.lot).*field : std::string(); };
  };
  const auto known = [](const Row& r) { return !r.database.empty(); };
  TableOf<Row> table;
  table.Add("Color_Name", &Row::name, "Color Name")
      .Add("Database", PlaceOf, "Database")
      .Width(kPlaceWidth)
      .Add("Account", [](const Row& r) { return r.share->AcctNum; })
      .Add("Facility", [](const Row& r) { return r.share->Facility; })
      .Add(
          "Color_Type", [known](const Row& r) { return known(r) ? ColorTypeText(r.kind, r.additive) : std::string(); },
          "Color Type")
      .Add("Color_Code", &Row::code, "Color Code")
      .Add(
          "Reorder", [known](const Row& r) { return known(r) && !r.lot ? TableValue(r.reorder) : TableValue(); },
          context.InUnit("Reorder"), Format::Amount)
      .Add("Inv_Note", &Row::note, "Inventory Note")
      .Add(
          "LotNumber",
          [known](const Row& r) { return r.lot ? r.lot->LotNumber : known(r) ? std::string(kUnlottedInv) : std::string(); },
          "Lot Number")
      .Add("LotLoc", text(&ReportLot::LotLoc), "Lot Location")
      .Add("LotContID", text(&ReportLot::LotContID), "Lot Cont. ID")
      .Add(
          "LotDate", [](const Row& r) { return r.lot ? r.lot->LotDate : std::nullopt; }, "Lot Date", Format::Date)
      .Add(
          "Inventory", [known](const Row& r) { return known(r) ? TableValue(r.quantity) : TableValue(); },
          context.InUnit("Lot Qty."), Format::Amount)
      .Sum()
      .Add(
          "Unit Cost", [known](const Row& r) { return known(r) ? TableValue(r.price) : TableValue(); },
          context.InMoney("Lot Price "), Format::Money, decimals)
      .Add(
          "TotalCost", [known](const Row& r) { return known(r) ? TableValue(r.price * r.quantity) : TableValue(); },
          context.InMoney("Total Cost"), Format::Money, decimals)
      .Sum()
      .Add("Consignment", &Row::consigned, "Consignment", Format::YesNo)
      .Add(
          "Shared", [](const Row& r) { return r.share->shared ? TableValue(*r.share->shared) : TableValue(); }, "Shared On",
          Format::When);
  return table.Of([&context, shares = SharesHere(context.session)](const std::function<bool(const Row&)>& take) {
    ReadAll(context, shares, take);
  });
}

std::vector<ReportOption> Options() {
  return {{"InvOnly", "1 lists only what is in stock", 2, 1},
          {"ShowBasics", "1 lists Basics and Additives", 2, 1},
          {"ShowMixes", "1 lists Master Formulas", 2, 1},
          {"OptConsignment", "0 all stock, 1 what is owned, 2 what is on consignment", 3}};
}

}  // namespace

const std::vector<ReportDefinition>& CloudReports() {
  static const std::vector<ReportDefinition> reports{
      {.key = "lblCloudUserInventory",
       .group = "Cloud",
       .caption = "Cloud Users - All Colors",
       .window = "CloudInvReport",
       .prefix = "CloudInvDetSelected",
       .name = "Cloud User Inventory Report",
       .noun = "Colors",
       .description = "View Inventory from Shared Cloud Users.",
       .scope = ReportScope::Chosen,
       .options = Options(),
       .table = ForeignInventory},
      {.key = "lblCloudUserInvSpecificColor",
       .group = "Cloud",
       .caption = "Cloud Users - Specific Color ",
       .window = "CloudInvReport_SpecificColor",
       .prefix = "CloudInvSpecificColor",
       .name = "Cloud User Inventory Report",
       .noun = "Colors",
       .description = "Search Cloud User Inventory by a Specific Color.",
       .subject = ReportSubject::Color,
       .options = Options(),
       .table = ForeignInventory}};
  return reports;
}

const ReportDefinition* FindAnyReport(std::string_view key) {
  for (const ReportDefinition& report : CloudReports())
    if (EqualNoCase(report.key, key) || EqualNoCase(report.window, key)) return &report;
  return FindReport(key);
}

std::optional<CloudTask> FetchTaskOf(const ReportDefinition& report) {
  if (report.window == "CloudInvReport") return CloudTask::CloudInvReport;
  if (report.window == "CloudInvReport_SpecificColor") return CloudTask::CloudInvReport_SpecificColor;
  return std::nullopt;
}

}  // namespace vellumark
