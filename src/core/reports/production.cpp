#include <fmt/format.h>

#include "core/reports/batch_rows.h"
#include "core/reports/by_name.h"
#include "core/reports/families.h"

// Production: what was made.

namespace vellumark {
namespace {

struct MadeBatch {
  BatchDetail batch;
  BatchFiguresSum sum;
};

struct Made {
  std::string name;  // of the colour or the Database
  std::optional<DateTime> lastProduced{};
  BatchFiguresSum sum{};
};

ListTable Detail(const ReportContext& context) {
  using Row = MadeBatch;
  TableOf<Row> table;
  table
      .Add(
          "Color_Name", [](const Row& r) { return r.batch.Color_Name; }, "Color Name")
      .Add(
          "BatchNo", [](const Row& r) { return r.batch.BatchNo; }, "Batch Number", Format::Number);
  AddBatchColumns(table);
  AddQuantityColumns(table, context);
  table
      .Add(
          "PercentRec", [](const Row& r) { return r.batch.PercentRec; }, "% Recycled", Format::Percent)
      .Ratio("QtyRec", "Quantity");
  AddCostColumns(table, context, "Cost of Batch", "Batch ");
  AddBatchEndColumns(table, context);
  table.Leads([](const Row& r) { return BatchTarget(r.batch); });
  return table.Of([&context](const std::function<bool(const Row&)>& take) {
    const FigureReader figures(context.session);
    const BatchQuery query{fmt::format("{}, {}", FigureColumns(), DetailColumns()), "Color_Name = ?3", {context.name}};
    ForEachReportBatch(context, context.databases.front(), query, [&](const Statement& row) {
      Row made{ReadBatchDetail(row, kFigureColumns), figures.Read(row)};
      made.batch.database = context.databases.front();
      return take(made);
    });
  });
}

template <class Row>
TableOf<Row> SummaryColumns(const ReportContext& context, const char* key, const char* caption) {
  TableOf<Row> table;
  table.Add(key, &Row::name, caption);
  table
      .Add(
          "Batches", [](const Row& r) { return r.sum.Batches; }, "Batches")
      .Sum();
  AddQuantityColumns(table, context);
  table
      .Add(
          "PercentRec", [](const Row& r) { return r.sum.RecycledShare(); }, "% Recycled", Format::Percent)
      .Ratio("QtyRec", "Quantity");
  AddCostColumns(table, context, "Cost of Batches", "");
  return table;
}

ListTable ByColor(const ReportContext& context) {
  const std::string database = context.databases.front();
  TableOf<Made> table = SummaryColumns<Made>(context, "Color_Name", "Color Name");
  table.Add("LastProduced", &Made::lastProduced, "Last Produced", Format::Date).Leads([database](const Made& r) {
    return RowTarget{RowTarget::Kind::Mix, database, r.name};
  });
  return table.Of([&context, database](const std::function<bool(const Made&)>& take) {
    const FigureReader figures(context.session);
    ByName<Made> colors;
    const BatchQuery query{fmt::format("{}, Color_Name", FigureColumns()), {}, {}, {}};
    ForEachReportBatch(context, database, query, [&](const Statement& row) {
      const std::string_view name = row.TextView(kFigureColumns);
      colors.At(name).sum += figures.Read(row);
      return true;
    });
    Statement last = context.File().Prepare(fmt::format("SELECT LastProduced FROM {} WHERE Color_Name = ?1",
                                                        context.session.QuotedTable(schema::Mix, database)));
    for (Made* made : colors.InOrder()) {
      last.Bind(1, made->name);
      if (last.Step()) made->lastProduced = last.Date(0);
      last.Reset();
      if (!take(*made)) return;
    }
  });
}

ListTable ByDatabase(const ReportContext& context) {
  TableOf<Made> table = SummaryColumns<Made>(context, "Database", "Database");
  table.Leads([](const Made& r) { return RowTarget{RowTarget::Kind::Database, r.name}; });
  return table.Of([&context](const std::function<bool(const Made&)>& take) {
    const FigureReader figures(context.session);
    BatchQuery query{std::string(FigureColumns()), {}, {}, {}};
    if (!context.name.empty()) {
      query.where = "Color_Name = ?3";
      query.parameters = {context.name};
    }
    for (const std::string& database : context.databases) {
      Made made{database};
      ForEachReportBatch(context, database, query, [&](const Statement& row) {
        made.sum += figures.Read(row);
        return true;
      });
      if (!take(made)) return;
    }
  });
}

}  // namespace

void AddProductionReports(std::vector<ReportDefinition>& catalogue) {
  catalogue.push_back({.key = "ProductionSpecificColorThisDB",
                       .group = "Production",
                       .caption = "Specific Color - this Database",
                       .window = "ProductionForm",
                       .prefix = "DetProduction",
                       .name = "Production Report",
                       .noun = "Batches",
                       .description =
                           "Lists all Batches made in the current Database within a specified date range for "
                           "the Master Formula you specify.",
                       .dateRangeKey = "ProductionDateRange",
                       .subject = ReportSubject::Formula,
                       .table = Detail});
  catalogue.push_back({.key = "ProductionSpecificColorAllDBs",
                       .group = "Production",
                       .caption = "Specific Color - all Databases",
                       .window = "ProductionColorNameSummaryForm",
                       .prefix = "Sum2Production",
                       .name = "Production Report",
                       .noun = "Databases",
                       .description =
                           "Lists all Databases in the current Datafile. For each Database, the number of "
                           "Batches made within a specified date range for the Master Formula you specify is "
                           "displayed.",
                       .dateRangeKey = "ProductionDateRange",
                       .subject = ReportSubject::Formula,
                       .scope = ReportScope::All,
                       .table = ByDatabase});
  catalogue.push_back({.key = "ProdAllColorsThisDB",
                       .group = "Production",
                       .caption = "All Colors - this Database",
                       .window = "SummarizedProductionForm",
                       .prefix = "SumProduction",
                       .name = "Production Report",
                       .noun = "Mix Colors",
                       .description = "Lists all Master Formulas in the current Database which have been produced in "
                                      "Batch Records within a specified date range.",
                       .dateRangeKey = "ProductionDateRange",
                       .table = ByColor});
  catalogue.push_back({.key = "ProdAllColorsAllDBs",
                       .group = "Production",
                       .caption = "Summary all Databases",
                       .window = "ProductionSummaryForm",
                       .prefix = "Sum2Production",
                       .name = "Production Report",
                       .noun = "Databases",
                       .description = "Lists all Databases in the current Datafile. For each Database, the number of "
                                      "Batches made within a specified date range is displayed.",
                       .dateRangeKey = "ProductionDateRange",
                       .scope = ReportScope::All,
                       .table = ByDatabase});
}

}  // namespace vellumark
