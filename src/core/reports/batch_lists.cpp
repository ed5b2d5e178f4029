#include <fmt/format.h>

#include <memory>

#include "core/batch/takings.h"
#include "core/reports/batch_rows.h"
#include "core/reports/color_book.h"
#include "core/reports/families.h"
#include "core/reports/lot_columns.h"

// Batches with what they were made of, and those with additions.

namespace vellumark {
namespace {

struct ListedLine {
  std::string name;
  std::int64_t type = 1;
  std::int64_t quantity = 0;
  std::string Color_Code{};
  std::int64_t cost = 0;  // per inventory unit, in units of DecimalPlaces
};

struct ListedBatch {
  BatchDetail batch;
  BatchFiguresSum sum;
  std::vector<ListedLine> lines{};
  std::string IngNotes{};
  bool first = true;  // of the rows of this Batch, which has its figures
  const ListedLine* line = nullptr;
  std::int64_t added = 0;
  std::optional<ReportLot> lot{};
};

std::string AllColumns() {
  return fmt::format("{}, {}, {}, IngNotes", FigureColumns(), DetailColumns(), LineColumns());
}
constexpr int kFirstLineColumn = kFigureColumns + kDetailColumns;
constexpr int kIngNotesColumn = kFirstLineColumn + 2 + 3 * schema::kBatchLines;
constexpr int kUnitColumn = 4;  // of FigureColumns

// The Batches of a Database with their lines; `additions` tells whether lines of additions are among them.
void ForEachListed(const ReportContext& context, const std::string& database, const BatchQuery& query, bool additions,
                   const std::function<bool(ListedBatch&)>& take) {
  const FigureReader figures(context.session);
  std::vector<ReportLine> lines;
  ForEachReportBatch(context, database, query, [&](const Statement& row) {
    ListedBatch listed{ReadBatchDetail(row, kFigureColumns), figures.Read(row)};
    listed.batch.database = database;
    listed.IngNotes = row.Text(kIngNotesColumn);
    ReadReportLines(row, kFirstLineColumn, row.Whole(kUnitColumn), figures.ToUnit(), lines);
    for (const ReportLine& line : lines) {
      const bool addition = LineKindOf(line.type) == LineKind::Addition;
      if (addition) listed.added += line.quantity;
      if (!addition || additions) listed.lines.push_back({std::string(line.name), line.type, line.quantity});
    }
    return take(listed);
  });
}

/// Figures that stand on the first row of a Batch only.
template <class Value>
auto OnFirst(Value value) {
  return [value](const ListedBatch& r) { return r.first ? TableValue(value(r)) : TableValue(); };
}

void AddHead(TableOf<ListedBatch>& table, bool withDatabase) {
  using Row = ListedBatch;
  table.Add(
      "BatchNo", [](const Row& r) { return r.batch.BatchNo; }, "Batch Number", Format::Number);
  if (withDatabase)
    table.Add(
        "Database", [](const Row& r) { return r.batch.database; }, "Database");
  table
      .Add(
          "Color_Name", [](const Row& r) { return r.batch.Color_Name; }, "Color Name")
      .Add(
          "Color_Code", [](const Row& r) { return r.batch.Color_Code; }, "Color Code");
  AddBatchColumns(table);
}

// Quantities and costs of a Batch that may stand in several rows.
void AddFigures(TableOf<ListedBatch>& table, const ReportContext& context) {
  using Row = ListedBatch;
  using Sum = BatchFiguresSum;
  const int decimals = context.session.DecimalPlaces;
  const auto qty = [&](const char* key, std::int64_t Sum::*figure, const std::string& caption) {
    table.Add(key, OnFirst(ShownQty<Row>(figure)), caption, Format::Amount).Sum();
  };
  const auto cost = [&](const char* key, Currency Sum::*figure, const char* caption) {
    table.Add(key, OnFirst(ShownCost<Row>(figure)), context.InMoney(caption), Format::Money, decimals).Sum();
  };
  qty("Quantity", &Sum::Quantity, context.InUnit("Quantity"));
  qty("QtyRec", &Sum::Recycled, context.InUnit("Qty Recycled"));
  table.Add("PercentRec", OnFirst([](const Row& r) { return r.batch.PercentRec; }), "% Recycled", Format::Percent)
      .Ratio("QtyRec", "Quantity");
  cost("CostOfMixes", &Sum::CostOfMixes, "Cost of Mixes");
  cost("CostOfBasics", &Sum::CostOfBasics, "Cost of Basics");
  cost("FixedCosts", &Sum::FixedCosts, "Fixed Costs");
  cost("MarkupCosts", &Sum::MarkupCosts, "Markup Costs");
  cost("CostOfBatch", &Sum::CostOfBatch, "Cost of Batch");
  qty("VOC", &Sum::VOC, "Batch VOCs");
  qty("HAP", &Sum::HAP, "Batch HAPs");
}

ListTable ByColumn(const ReportContext& context) {
  using Row = ListedBatch;
  TableOf<Row> table;
  AddHead(table, context.report.scope == ReportScope::All);
  AddFigures(table, context);
  AddBatchEndColumns(table, context);
  for (std::size_t n = 0; n < schema::kBatchLines; ++n) {
    const int number = static_cast<int>(n);
    table
        .Add(
            schema::Numbered("IngName", number),
            [n](const Row& r) { return n < r.lines.size() ? TableValue(r.lines[n].name) : TableValue(); },
            fmt::format("Ing {}", n + 1), Format::Text)
        .Add(
            schema::Numbered("IngQty", number),
            [n](const Row& r) {
              return n < r.lines.size() ? TableValue(OfWholeUnits(r.lines[n].quantity, 3)) : TableValue();
            },
            fmt::format("Qty {}", n + 1), Format::Amount)
        .Sum();
  }
  table.Leads([](const Row& r) { return BatchTarget(r.batch); });
  return table.Of([&context](const std::function<bool(const Row&)>& take) {
    for (const std::string& database : context.databases) {
      bool goesOn = true;
      ForEachListed(context, database, {AllColumns()}, context.Option("Additions") == 1,
                    [&](ListedBatch& batch) { return goesOn = take(batch); });
      if (!goesOn) return;
    }
  });
}

// A line with the code and the present cost of its colour.
void TakeFromBook(ListedLine& line, const ColorBook& book) {
  const ColorKind kind = ColorKindOf(LineKindOf(line.type));
  const BookColor& color = book.Of(kind, line.name);
  line.Color_Code = color.Color_Code;
  line.cost = color.BasicCost;
}

template <class Value>
auto OfLine(Value value) {
  return [value](const ListedBatch& r) { return r.line == nullptr ? TableValue() : TableValue(value(*r.line)); };
}

ListTable ByRow(const ReportContext& context) {
  using Row = ListedBatch;
  const int decimals = context.session.DecimalPlaces;
  TableOf<Row> table;
  AddHead(table, false);
  AddFigures(table, context);
  table.Add("IngName", OfLine([](const ListedLine& l) { return l.name; }), "Ing Name", Format::Text)
      .Add("IngCode", OfLine([](const ListedLine& l) { return l.Color_Code; }), "Ing Code", Format::Text)
      .Add("IngQty", OfLine([](const ListedLine& l) { return OfWholeUnits(l.quantity, 3); }), context.InUnit("Ing Qty"),
           Format::Amount)
      .Sum()
      .Add("IngCost", OfLine([decimals](const ListedLine& l) { return OfWholeUnits(l.cost, decimals); }),
           context.InUnit("Cost per"), Format::Money, decimals)
      .Add(
          "IngNotesCol", [](const Row& r) { return r.first ? TableValue(r.IngNotes) : TableValue(); }, "Ing Notes",
          Format::Notes);
  AddBatchEndColumns(table, context);
  table.Leads([](const Row& r) { return BatchTarget(r.batch); });
  return table.Of([&context](const std::function<bool(const Row&)>& take) {
    const std::string& database = context.databases.front();
    const ColorBook book(context, database);
    std::int64_t batches = 0;
    ForEachListed(context, database, {AllColumns()}, context.Option("Additions") == 1, [&](ListedBatch& batch) {
      context.watch.SetCount(++batches);
      if (batch.lines.empty()) return take(batch);
      const BatchDetail head = batch.batch;
      for (ListedLine& line : batch.lines) {
        TakeFromBook(line, book);
        batch.line = &line;
        if (!take(batch)) return false;
        batch.first = false;
        // Numbers of the operator's own count once for a Batch.
        batch.batch.UD_Numeric = {};
      }
      return true;
    });
  });
}

struct LotOfBatch {
  std::int32_t BatchNo = 0;
  std::string Color_Name;
  std::string JobNumber;
  std::optional<DateTime> Date_Entered;
  std::string IngName;
  std::string IngCode;
  std::string type;
  std::optional<ReportLot> lot;
  std::string database;
};

ListTable LotsOfBatches(const ReportContext& context) {
  using Row = LotOfBatch;
  TableOf<Row> table;
  table.Add("BatchNo", &Row::BatchNo, "Batch Number", Format::Number)
      .Add("Color_Name", &Row::Color_Name, "Color Name")
      .Add("JobNumber", &Row::JobNumber, "Job Number")
      .Add("Date_Entered", &Row::Date_Entered, "Date Entered", Format::Date)
      .Add("IngName", &Row::IngName, "Ing Name")
      .Add("IngCode", &Row::IngCode, "Ing Color Code")
      .Add("IngType", &Row::type, "Ing Type");
  AddLotColumns(table, context);
  table.Leads([](const Row& r) { return RowTarget{RowTarget::Kind::Batch, r.database, {}, r.BatchNo}; });
  return table.Of([&context](const std::function<bool(const Row&)>& take) {
    const std::string& database = context.databases.front();
    const ColorBook book(context, database);
    Statement lots = context.File().Prepare(
        fmt::format("SELECT {}, IngName, IngType FROM {} WHERE BatchNo = ?1 ORDER BY IngName, LotNumber", kLotColumns,
                    context.session.QuotedTable(schema::BatchLotInv, database)));
    ForEachReportBatch(context, database, {"BatchNo, Color_Name, JobNumber"}, [&](const Statement& batch) {
      lots.Bind(1, batch.Whole(0));
      bool goesOn = true;
      while (goesOn && lots.Step()) {
        const auto type = static_cast<std::uint8_t>(lots.Whole(kLotColumnCount + 1));
        const ColorKind kind = ColorKindOf(LineKindOf(type));
        const BookColor& color = book.Of(kind, lots.TextView(kLotColumnCount));
        goesOn = take({static_cast<std::int32_t>(batch.Whole(0)), batch.Text(1), batch.Text(2), batch.Date(3),
                       lots.Text(kLotColumnCount), color.Color_Code,
                       kind == ColorKind::Mix ? "Formula - Recycled Ink" : ColorTypeText(kind, color.Additive),
                       ReadReportLot(lots, 0, context.session.DecimalPlaces), database});
      }
      lots.Reset();
      return goesOn;
    });
  });
}

// ---- Additions

struct Added {
  std::string name{};
  BatchFiguresSum sum{};
  std::int64_t added = 0;
};

std::string HasAddition() {
  std::string condition;
  for (int i = 0; i < schema::kBatchLines; ++i)
    condition += fmt::format("{}({} = {} AND {} <> '')", i == 0 ? "" : " OR ", schema::Numbered("IngType", i),
                             static_cast<int>(LineKind::Addition), schema::Numbered("IngName", i));
  return "(" + condition + ")";
}

ListTable AdditionDetail(const ReportContext& context) {
  using Row = ListedBatch;
  TableOf<Row> table;
  AddHead(table, false);
  AddQuantityColumns(table, context);
  table
      .Add(
          "PercentRec", [](const Row& r) { return r.batch.PercentRec; }, "% Recycled", Format::Percent)
      .Ratio("QtyRec", "Quantity")
      .Add(
          "QtyAdded", [](const Row& r) { return OfWholeUnits(r.added, 3); }, context.InUnit("Qty Additions"))
      .Sum()
      .Add(
          "PercentAdded", [](const Row& r) { return ShareOf(r.added, r.sum.Quantity); }, "% Additions", Format::Percent)
      .Ratio("QtyAdded", "Quantity")
      .Add(
          "Additions",
          [](const Row& r) {
            std::vector<std::string> names;
            for (const ListedLine& line : r.lines)
              if (LineKindOf(line.type) == LineKind::Addition) names.push_back(line.name);
            return names;
          },
          "Additions")
      .Add(
          "Notes", [](const Row& r) { return r.batch.Notes; }, "Notes", Format::Notes)
      .Leads([](const Row& r) { return BatchTarget(r.batch); });
  return table.Of([&context](const std::function<bool(const Row&)>& take) {
    ForEachListed(context, context.databases.front(),
                  {AllColumns(), HasAddition() + " AND Color_Name = ?3", {context.name}}, true,
                  [&](ListedBatch& batch) { return take(batch); });
  });
}

ListTable AdditionsByColor(const ReportContext& context) {
  const std::string database = context.databases.front();
  TableOf<Added> table;
  table.Add("Color_Name", &Added::name, "Color Name")
      .Add(
          "Batches", [](const Added& r) { return r.sum.Batches; }, "Batches")
      .Sum();
  AddQuantityColumns(table, context);
  table
      .Add(
          "PercentRec", [](const Added& r) { return r.sum.RecycledShare(); }, "% Recycled", Format::Percent)
      .Ratio("QtyRec", "Quantity")
      .Add(
          "QtyAdded", [](const Added& r) { return OfWholeUnits(r.added, 3); }, context.InUnit("Qty Additions"))
      .Sum()
      .Add(
          "PercentAdded", [](const Added& r) { return ShareOf(r.added, r.sum.Quantity); }, "% Additions",
          Format::Percent)
      .Ratio("QtyAdded", "Quantity")
      .Leads([database](const Added& r) {
        return RowTarget{RowTarget::Kind::Mix, database, r.name};
      });
  return table.Of([&context, database](const std::function<bool(const Added&)>& take) {
    ByName<Added> colors;
    ForEachListed(context, database, {AllColumns(), HasAddition(), {}, {}}, true, [&](ListedBatch& batch) {
      Added& color = colors.At(batch.batch.Color_Name);
      color.sum += batch.sum;
      color.added += batch.added;
      return true;
    });
    for (const Added* color : colors.InOrder())
      if (!take(*color)) return;
  });
}

const ReportOption kAdditions{"Additions", "1 lists the additions among the ingredients"};

}  // namespace

void AddAdditionReports(std::vector<ReportDefinition>& catalogue) {
  catalogue.push_back({.key = "BatchAdditionsSpecificColor",
                       .group = "Batch Additions",
                       .caption = "Specific Color - this Database",
                       .window = "BatchAdditionForm",
                       .prefix = "BatchAdditions",
                       .name = "Batch Additions Report",
                       .noun = "Batches",
                       .description =
                           "Lists the Batches for a specific Master Formula in which Batch additions were made "
                           "to the recipe.",
                       .dateRangeKey = "ProductionDateRange",
                       .subject = ReportSubject::Formula,
                       .table = AdditionDetail});
  catalogue.push_back({.key = "BatchAdditionsAllColors",
                       .group = "Batch Additions",
                       .caption = "All Colors - this Database",
                       .window = "SummarizedBatchAdditionsForm",
                       .prefix = "SumBatchAdditions",
                       .name = "Batch Additions Report",
                       .noun = "Mix Colors",
                       .description =
                           "A list of all Batches in the current Database in which Batch additions were made to "
                           "the recipe.",
                       .dateRangeKey = "ProductionDateRange",
                       .table = AdditionsByColor});
}

void AddBatchListReports(std::vector<ReportDefinition>& catalogue) {
  catalogue.push_back({.key = "AllBatchesThisDB_Col",
                       .group = "Batch Details",
                       .caption = "Formula Details - this DB - by Col",
                       .window = "BatchListForm",
                       .prefix = "BatchList",
                       .name = "Batch List Report",
                       .noun = "Batches",
                       .description = "Lists all Batches made in this Database within a specified date range.\nBatch "
                                      "details are displayed in a single row.\nIngredients are listed across multiple "
                                      "columns.",
                       .dateRangeKey = "BatchListDateRange",
                       .options = {kAdditions},
                       .table = ByColumn});
  catalogue.push_back({.key = "AllBatchesThisDB_Row",
                       .group = "Batch Details",
                       .caption = "Formula Details - this DB - by Row",
                       .window = "BatchListForm_MultipleRows",
                       .prefix = "BatchListRow",
                       .name = "Batch List Report",
                       .noun = "Batches",
                       .description =
                           "Lists all Batches made in this Database within a specified date range.\nBatch "
                           "details are displayed over multiple rows.\nEach batch ingredient is displayed in a "
                           "single row.",
                       .dateRangeKey = "BatchListRowDateRange",
                       .options = {kAdditions},
                       .table = ByRow});
  catalogue.push_back({.key = "AllBatchesAllDBs",
                       .group = "Batch Details",
                       .caption = "Formula Details - All Databases",
                       .window = "BatchListDBForm",
                       .prefix = "BatchListDB",
                       .name = "Batch List Report",
                       .noun = "Batches",
                       .description = "Lists all Batches made in all Databases within a specified date range.",
                       .dateRangeKey = "BatchListDateRange",
                       .scope = ReportScope::All,
                       .options = {kAdditions},
                       .table = ByColumn});
  catalogue.push_back({.key = "AllBatchesThisDB_LotInv",
                       .group = "Batch Details",
                       .caption = "Lotted Inv. - this Database ",
                       .window = "BatchLottedInvReport",
                       .prefix = "BatchLotList",
                       .name = "Batch Lotted Inventory Report",
                       .noun = "Lot Selections",
                       .description = "Lists all the Lotted Inventory selections made for the ingredients used in the "
                                      "Batch.",
                       .dateRangeKey = "BatchLotListDateRange",
                       .table = LotsOfBatches,
                       .usesLots = true});
}

}  // namespace vellumark
