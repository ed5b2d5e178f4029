#include "core/cloud/cloud_reports.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/cloud/cloud_inventory.h"
#include "core/reports/catalogue.h"

namespace vellumark {
namespace {

constexpr int kPlaceWidth = 3600;  // twips

using Take = std::function<bool(const CloudStockRow&)>;

CloudStockWish WishOf(const ReportContext& context) {
  CloudStockWish wish{.color = context.name,
                      .showBasics = context.Option("ShowBasics") == 1,
                      .showMixes = context.Option("ShowMixes") == 1,
                      .inStockOnly = context.Option("InvOnly") == 1,
                      .consignment = context.Option("OptConsignment")};
  if (context.report.scope != ReportScope::Chosen) return wish;
  const auto isIn = [](const std::vector<std::string>& names, std::string_view name) {
    return std::ranges::any_of(names, [&](const std::string& one) { return EqualNoCase(one, name); });
  };
  // Shops call their Databases alike: of one that we have too it counts whether it is ticked.
  wish.reads = [&context, isIn](std::string_view name) {
    return !isIn(context.session.databaseList, name) || isIn(context.databases, name);
  };
  return wish;
}

void ReadAll(const ReportContext& context, const std::vector<ShareRow>& shares, const Take& take) {
  const CloudStockWish wish = WishOf(context);
  std::int64_t colors = 0;
  for (const ShareRow& share : shares) {
    CloudStockRow fault;
    fault.share = share;
    fault.Color_Name = share.AcctNum;
    try {
      if (share.came && !ReadShareStock(context.session, share, wish, [&](const CloudStockRow& stock) {
            if (!stock.inLot) context.watch.SetCount(++colors);
            return take(stock);
          }))
        return;
      if (!share.came) fault.Inv_Note = "Nothing has been fetched of this account";
    } catch (const Failure& failure) {
      fault.Inv_Note = fmt::format("{}: {}", failure.subject, failure.cause);
    }
    // What of a shop cannot be told has a row of its own.
    if (!fault.Inv_Note.empty() && !take(fault)) return;
  }
}

// "2001 - INK (2026-03-09, not fetched today)"
std::string PlaceOf(const CloudStockRow& stock) {
  const ShareRow& share = stock.share;
  std::string text = share.AcctNum;
  if (!stock.Database.empty()) text += " - " + stock.Database;
  std::string more = share.shared ? share.shared->DateText() : std::string();
  if (!share.fetched && share.tried) more += more.empty() ? "fetch failed" : ", fetch failed";
  if (share.UMI == 0 && share.came) more += more.empty() ? "unit not told" : ", unit not told";
  return more.empty() ? text : fmt::format("{} ({})", text, more);
}

ListTable ForeignInventory(const ReportContext& context) {
  using Row = CloudStockRow;
  const int decimals = context.session.DecimalPlaces;
  const auto known = [](const Row& r) { return !r.Database.empty(); };
  TableOf<Row> table;
  table.Add("Color_Name", &Row::Color_Name, "Color Name")
      .Add("Database", PlaceOf, "Database")
      .Width(kPlaceWidth)
      .Add("Account", [](const Row& r) { return r.share.AcctNum; })
      .Add("Facility", [](const Row& r) { return r.share.Facility; })
      .Add("Color_Type", &Row::Color_Type, "Color Type")
      .Add("Color_Code", &Row::Color_Code, "Color Code")
      .Add(
          "Reorder", [known](const Row& r) { return known(r) && !r.inLot ? TableValue(r.Reorder) : TableValue(); },
          context.InUnit("Reorder"), Format::Amount)
      .Add("Inv_Note", &Row::Inv_Note, "Inventory Note")
      .Add("LotNumber", &Row::LotNumber, "Lot Number")
      .Add("LotLoc", &Row::LotLoc, "Lot Location")
      .Add("LotContID", &Row::LotContID, "Lot Cont. ID")
      .Add("LotDate", &Row::LotDate, "Lot Date", Format::Date)
      .Add(
          "Inventory", [known](const Row& r) { return known(r) ? TableValue(r.LotQty) : TableValue(); },
          context.InUnit("Lot Qty."), Format::Amount)
      .Sum()
      .Add(
          "Unit Cost", [known](const Row& r) { return known(r) ? TableValue(r.LotPrice) : TableValue(); },
          context.InMoney("Lot Price "), Format::Money, decimals)
      .Add(
          "TotalCost", [known](const Row& r) { return known(r) ? TableValue(r.LotPrice * r.LotQty) : TableValue(); },
          context.InMoney("Total Cost"), Format::Money, decimals)
      .Sum()
      .Add("Consignment", &Row::Consignment, "Consignment", Format::YesNo)
      .Add(
          "Shared", [](const Row& r) { return r.share.shared ? TableValue(*r.share.shared) : TableValue(); },
          "Shared On", Format::When);
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
  static const std::vector<ReportDefinition> reports{{.key = "lblCloudUserInventory",
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

std::vector<const ReportDefinition*> AllReports() {
  std::vector<const ReportDefinition*> all;
  for (const auto* reports : {&ReportCatalogue(), &CloudReports()})
    for (const ReportDefinition& report : *reports) all.push_back(&report);
  return all;
}

const ReportDefinition* FindAnyReport(std::string_view key) {
  const std::vector<const ReportDefinition*> all = AllReports();
  const auto found = std::ranges::find_if(all, [&](const ReportDefinition* report) {
    return EqualNoCase(report->key, key) || EqualNoCase(report->window, key);
  });
  return found == all.end() ? nullptr : *found;
}

std::optional<CloudTask> FetchTaskOf(const ReportDefinition& report) {
  if (report.window == "CloudInvReport") return CloudTask::CloudInvReport;
  if (report.window == "CloudInvReport_SpecificColor") return CloudTask::CloudInvReport_SpecificColor;
  return std::nullopt;
}

}  // namespace vellumark
