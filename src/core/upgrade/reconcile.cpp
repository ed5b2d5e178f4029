#include "core/upgrade/reconcile.h"

#include <fmt/format.h>

namespace vellumark {
namespace {

using schema::Numbered;

constexpr const char* kColorTables[] = {"_Basic", "_Mix"};

void AddUp(UpgradeRun& run, const std::string& table, const std::string& sql, ExactSum& sum, const std::string& where = "1 = 1") {
  if (!run.Has(table) || sql == "NULL") return;
  Statement row = run.file.Prepare(fmt::format("SELECT {} FROM {} WHERE {}", sql, run.From(table), where));
  while (row.Step()) sum.Add(row.Number(0));
}

void AddUpField(UpgradeRun& run, const std::string& table, std::string_view field, ExactSum& sum) {
  AddUp(run, table, run.Sql(table, field), sum);
}

}  // namespace

std::vector<FileSum> SumsOf(UpgradeRun& run) {
  ExactSum stock;
  ExactSum made;
  ExactSum taken;
  bool tellsTaken = false;
  for (const std::string& database : run.databases) {
    for (const char* suffix : kColorTables) {
      const std::string colors = TableOfDatabase(database, suffix);
      AddUpField(run, colors, "Inventory", stock);
      if (!run.stockHoldsLots)
        for (int n = run.First(colors, "ILot_Qty"), end = n + run.Count(colors, "ILot_Qty"); n < end; ++n)
          AddUpField(run, colors, Numbered("ILot_Qty", n), stock);
      AddUpField(run, colors + "_LotInv", "LotQty", stock);
    }
    const std::string batch = TableOfDatabase(database, "_Batch");
    AddUpField(run, batch, run.Has(batch, "ActualQuantity") ? "ActualQuantity" : "Quantity", made);
    const std::string old = batch + "_LotInv_Consumption";
    const std::string now = batch + "_LotInv";
    tellsTaken = tellsTaken || run.Has(old) || run.Has(now);
    for (const char* field : {"Unlotted_Inv", "ILot_Qty"}) AddUpField(run, old, field, taken);
    if (!run.Has(old)) AddUpField(run, now, "LotQty", taken);
  }
  ExactSum issued;
  ExactSum used;
  const std::string jobs = "JobRecords";
  AddUpField(run, jobs, run.Has(jobs, "QtyIssued") ? "QtyIssued" : "QtyUsed", issued);
  AddUpField(run, jobs, "QtyUsed", used);
  std::vector<FileSum> sums{{"Stock of all colors and lots", stock.Text()},
                            {"Quantities made by Batches", made.Text()},
                            {"Quantities issued to jobs", issued.Text()},
                            {"Quantities used by jobs", used.Text()}};
  if (tellsTaken) sums.push_back({"Quantities taken by Batches", taken.Text()});
  return sums;
}

LottedStock LottedStockOf(UpgradeRun& run) {
  ExactSum colors;
  ExactSum lots;
  bool any = false;
  for (const std::string& database : run.databases)
    for (const char* suffix : kColorTables) {
      const std::string table = TableOfDatabase(database, suffix);
      const int first = run.First(table, "ILot_Qty");
      const int count = run.Count(table, "ILot_Qty");
      if (count == 0) continue;
      std::string has;
      for (int n = first; n < first + count; ++n)
        has += fmt::format("{}COALESCE({}, 0) <> 0", n == first ? "" : " OR ", run.Sql(table, Numbered("ILot_Qty", n)));
      any = any || !run.file.Scalar(fmt::format("SELECT 1 FROM {} WHERE {} LIMIT 1", run.From(table), has)).IsNull();
      AddUp(run, table, run.Sql(table, "Inventory"), colors, has);
      for (int n = first; n < first + count; ++n) AddUpField(run, table, Numbered("ILot_Qty", n), lots);
    }
  return any ? LottedStock{colors.Text(), lots.Text()} : LottedStock{};
}

}  // namespace vellumark
