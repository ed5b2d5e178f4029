#include "core/reports/browse.h"

#include <fmt/format.h>

#include <memory>

#include "core/base/number.h"
#include "core/base/units.h"
#include "core/datafile/schema.h"
#include "core/session/rights.h"

namespace vellumark {
namespace {

constexpr int kPiece = 250;

std::string InUnit(const Session& session, std::string_view caption) {
  return fmt::format("{} ({})", caption, UnitName(session.UMI));
}

std::string KindOf(const BrowsedColor& color) {
  return color.kind == ColorKind::Mix ? "Formula" : color.Additive ? "Additive" : "Basic";
}

// The stock that a color's lots add is asked of the index of lots, row by row.
std::string ColorQuery(const Session& session, ColorKind kind) {
  const bool mix = kind == ColorKind::Mix;
  const std::string lots = session.InvLotTracking == 1
                               ? fmt::format("(SELECT SUM(LotQty) FROM {} WHERE LotCName = colors.Color_Name)",
                                             session.QuotedTable(mix ? schema::MixLotInv : schema::BasicLotInv))
                               : "0";
  return fmt::format(
      "SELECT RowKey, Color_Name, Color_Code, Inventory, {}, Reorder, {}, {}, {}, {} FROM {} AS "
      "colors "
      "WHERE Color_Name > ?1 ORDER BY Color_Name LIMIT {}",
      lots, mix ? "BasicCost" : "PurchaseCost", mix ? "LastProduced" : "LastConsumed", mix ? "0" : "Additive",
      mix ? "AddSetName" : "''", session.QuotedTable(ColorTable(kind)), kPiece);
}

BrowsedColor ReadColor(const Statement& row, ColorKind kind) {
  return {.key = row.Whole(0),
          .Color_Name = row.Text(1),
          .Color_Code = row.Text(2),
          .kind = kind,
          .Additive = row.Bool(8),
          .total = RoundSingle(row.Single(3) + row.Single(4), 3),
          .Reorder = row.Single(5),
          .cost = row.Single(6),
          .last = row.Date(7),
          .AddSetName = row.Text(9)};
}

}  // namespace

TableOf<BrowsedColor> BrowsedColorColumns(const Session& session, ColorKind kind) {
  using Row = BrowsedColor;
  const bool mix = kind == ColorKind::Mix;
  TableOf<Row> table;
  table.Add("Color_Name", &Row::Color_Name, "Color Name")
      .Width(4200)
      .Add("Color_Code", &Row::Color_Code, "Code")
      .Width(1800);
  if (mix)
    table.Add("AddSetName", &Row::AddSetName, "Additive Set").Width(2160);
  else
    table.Add("", KindOf, "Type").Width(1320);
  table.Add("Total", &Row::total, InUnit(session, "Inventory"))
      .Width(2160)
      .Large()
      .Add("Reorder", &Row::Reorder, InUnit(session, "Reorder"))
      .Width(1800)
      .Add(
          mix ? "BasicCost" : "PurchaseCost", [&session](const Row& row) { return SeenPrice(session, row.cost); },
          "Unit Cost", Format::Money, session.DecimalPlaces)
      .Width(1560)
      .Add("Last", &Row::last, mix ? "Last Produced" : "Last Consumed", Format::Date)
      .Width(1920);
  return table.Leads([](const Row& row) {
    return RowTarget{.kind = row.kind == ColorKind::Mix ? RowTarget::Kind::Mix : RowTarget::Kind::Basic,
                     .name = row.Color_Name};
  });
}

ReadPiece<BrowsedColor> BrowseColors(const Session& session, ColorKind kind) {
  return [&session, kind, query = ColorQuery(session, kind),
          after = std::string()](std::vector<BrowsedColor>& rows) mutable {
    Statement row = session.File().Prepare(query);
    row.Bind(1, after);
    int read = 0;
    for (; row.Step(); ++read) rows.push_back(ReadColor(row, kind));
    if (read > 0) after = rows.back().Color_Name;
    return read == kPiece;
  };
}

ReadPiece<BatchListRow> BrowseBatches(const Session& session) {
  return [&session, before = std::optional<BatchListRow>()](std::vector<BatchListRow>& rows) mutable {
    std::vector<BatchListRow> piece = BatchesBefore(session, before, kPiece);
    const bool more = piece.size() == kPiece;
    if (!piece.empty()) before = piece.back();
    for (BatchListRow& row : piece) rows.push_back(std::move(row));
    return more;
  };
}

TableOf<BrowsedJob> BrowsedJobColumns(const Session& session) {
  using Row = BrowsedJob;
  TableOf<Row> table;
  table.Add("JobNumber", &Row::JobNumber, "Job Number")
      .Width(3600)
      .Add("Items", &Row::items, "Job Items")
      .Width(1440)
      .Add("QtyUsed", &Row::QtyUsed, InUnit(session, "Qty Used"))
      .Width(2160)
      .Large()
      .Add("Date_Entered", &Row::Date_Entered, "Date Entered", Format::Date)
      .Width(1920)
      .Add("Date_Completed", &Row::Date_Completed, "Date Completed", Format::Date)
      .Width(1920)
      .Add(
          "", [](const Row& row) { return std::string(row.Date_Completed ? "closed" : "open"); }, "State")
      .Width(1200);
  return table.Leads([](const Row& row) { return RowTarget{.kind = RowTarget::Kind::Job, .name = row.JobNumber}; });
}

ReadPiece<BrowsedJob> BrowseJobs(const Session& session) {
  return [&session, after = std::string()](std::vector<BrowsedJob>& rows) mutable {
    Statement row =
        session.File().Prepare(fmt::format("SELECT JobNumber, COUNT(*), SUM(QtyUsed), MIN(Date_Entered), "
                                           "MAX(Date_Completed), COUNT(Date_Completed) FROM {} "
                                           "WHERE JobNumber > ?1 GROUP BY JobNumber ORDER BY JobNumber LIMIT {}",
                                           Quoted(schema::JobRecords.name), kPiece));
    row.Bind(1, after);
    int read = 0;
    for (; row.Step(); ++read) {
      BrowsedJob job{row.Text(0), row.Whole(1), RoundTo(row.Number(2), 3), row.Date(3), {}};
      if (row.Whole(5) == job.items) job.Date_Completed = row.Date(4);
      rows.push_back(std::move(job));
    }
    if (read > 0) after = rows.back().JobNumber;
    return read == kPiece;
  };
}

}  // namespace vellumark
