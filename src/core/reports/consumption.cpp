#include <fmt/format.h>

#include <unordered_set>

#include "core/reports/batch_rows.h"
#include "core/reports/by_name.h"
#include "core/reports/color_book.h"
#include "core/reports/families.h"
#include "core/reports/lot_columns.h"

// Consumption: what the lines of Batches took.

namespace vellumark {
namespace {

struct ConsumingBatch {
  BatchDetail batch;
  std::string ingredient;
  bool first = true;  // of the rows of this Batch, which has its quantities
  std::int64_t quantity = 0;
  std::int64_t consumed = 0;
  std::optional<ReportLot> lot{};
};

// What was consumed of a colour, or in a Database.
struct Consumed {
  std::string name{};
  ColorKind kind = ColorKind::Basic;
  std::int64_t batches = 0;
  std::int64_t quantity = 0;  // of those Batches, each once
  std::int64_t consumed = 0;
  std::int64_t lotCost = 0;
  std::int64_t pending = 0;  // of the Batch that is being read
  bool touched = false;
  const BookColor* color = nullptr;

  void Count(std::int64_t ofBatch, std::int64_t quantityOfBatch) {
    if (ofBatch == 0) return;
    ++batches;
    quantity += quantityOfBatch;
    consumed += ofBatch;
  }
};

constexpr int kFirstLine = 3;
std::string QuantityAndLines() {
  return fmt::format("BatchNo, ActualQuantity, UMF, {}", LineColumns());
}

std::vector<ReportLot> LotsOfLine(Statement& lots, const ReportContext& context, std::int64_t batchNo) {
  std::vector<ReportLot> found;
  lots.Bind(1, batchNo).Bind(2, context.name);
  while (lots.Step())
    if (IsLineOf(context.kind, lots.Whole(kLotColumnCount)))
      found.push_back(ReadReportLot(lots, 0, context.session.DecimalPlaces));
  lots.Reset();
  return found;
}

void ForEachConsuming(const ReportContext& context, const std::function<bool(const ConsumingBatch&)>& take) {
  const std::string& database = context.databases.front();
  const bool lotted = context.session.InvLotTracking == 1;
  const ToInventoryUnit toUnit(context.session);
  const BatchQuery query{
      fmt::format("{}, {}", DetailColumns(), QuantityAndLines()), HasLineOf(context.kind), {context.name}};
  Statement lots = context.File().Prepare(
      fmt::format("SELECT {}, IngType FROM {} WHERE BatchNo = ?1 AND IngName = ?2 ORDER BY LotNumber", kLotColumns,
                  context.session.QuotedTable(schema::BatchLotInv, database)));
  std::vector<ReportLine> lines;
  std::int64_t batches = 0;
  ForEachReportBatch(context, database, query, [&](const Statement& row) {
    const std::int64_t unit = row.Whole(kDetailColumns + 2);
    ReadReportLines(row, kDetailColumns + kFirstLine, unit, toUnit, lines);
    ConsumingBatch one{ReadBatchDetail(row, 0), context.name};
    one.batch.database = database;
    one.quantity = toUnit.Thousandths(row.Single(kDetailColumns + 1), unit);
    for (const ReportLine& line : lines)
      if (IsLineOf(context.kind, line.type) && EqualNoCase(line.name, context.name)) one.consumed += line.quantity;
    if (one.consumed == 0) return true;
    context.watch.SetCount(++batches);
    if (lotted)
      for (ReportLot& lot : LotsOfLine(lots, context, one.batch.BatchNo)) {
        one.lot = std::move(lot);
        if (!take(one)) return false;
        one.first = false;
      }
    return !one.first || take(one);
  });
}

ListTable Detail(const ReportContext& context) {
  using Row = ConsumingBatch;
  TableOf<Row> table;
  const auto ofBatch = [](std::int64_t Row::*figure) {
    return [figure](const Row& r) { return r.first ? TableValue(OfWholeUnits(r.*figure, 3)) : TableValue(); };
  };
  table.Add("IngName", &Row::ingredient, "Ing Name")
      .Add(
          "BatchNo", [](const Row& r) { return r.batch.BatchNo; }, "Batch Number", Format::Number)
      .Add(
          "Color_Name", [](const Row& r) { return r.batch.Color_Name; }, "Color Name");
  AddBatchColumns(table);
  table.Add("BatchQty", ofBatch(&Row::quantity), context.InUnit("Batch Qty"), Format::Amount)
      .Sum()
      .Add("QtyConsumed", ofBatch(&Row::consumed), context.InUnit("Qty Consumed"), Format::Amount)
      .Sum()
      .Add(
          "PercentConsumed",
          [](const Row& r) { return r.first ? TableValue(ShareOf(r.consumed, r.quantity)) : TableValue(); },
          "% Consumed", Format::Percent)
      .Ratio("QtyConsumed", "BatchQty");
  AddLotColumns(table, context);
  table
      .Add(
          "Notes", [](const Row& r) { return r.batch.Notes; }, "Notes", Format::Notes)
      .Leads([](const Row& r) { return BatchTarget(r.batch); });
  return table.Of([&context](const std::function<bool(const Row&)>& take) { ForEachConsuming(context, take); });
}

// Everything that the Batches of a Database consumed.
class ConsumptionOf {
 public:
  ConsumptionOf(const ReportContext& context, std::string database)
      : context_(context), database_(std::move(database)), toUnit_(context.session) {}

  // Of one colour, that of the report.
  Consumed OfColor() {
    Consumed sum{.name = database_};
    Read({QuantityAndLines(), HasLineOf(context_.kind), {context_.name}, {}}, [&](std::int64_t quantity, std::int64_t) {
      std::int64_t ofBatch = 0;
      for (const ReportLine& line : lines_)
        if (IsLineOf(context_.kind, line.type) && EqualNoCase(line.name, context_.name)) ofBatch += line.quantity;
      sum.Count(ofBatch, quantity);
    });
    return sum;
  }

  // Of all colours of the kinds that are wanted, each with its sum; the answer is that of all of them.
  Consumed OfAll(bool basics, bool mixes, bool eachColor) {
    Consumed all{.name = database_};
    Read({QuantityAndLines(), {}, {}, {}}, [&](std::int64_t quantity, std::int64_t batchNo) {
      std::int64_t ofBatch = 0;
      bool counts = false;
      for (const ReportLine& line : lines_) {
        const bool mix = IsLineOf(ColorKind::Mix, line.type);
        if (!(mix ? mixes : basics)) continue;
        Consumed& color = (mix ? mixes_ : basics_).At(line.name);
        if (!color.touched) touched_.push_back(&color);
        color.touched = true;
        color.kind = mix ? ColorKind::Mix : ColorKind::Basic;
        color.pending += line.quantity;
        ofBatch += line.quantity;
      }
      for (Consumed* color : touched_) {
        counts = counts || color->pending != 0;
        color->Count(color->pending, quantity);
        color->pending = 0;
        color->touched = false;
      }
      touched_.clear();
      if (!counts) return;
      ++all.batches;
      all.quantity += quantity;
      all.consumed += ofBatch;
      if (eachColor) batchNos_.insert(batchNo);
    });
    return all;
  }

  // After OfAll: what the lots cost that were taken.
  void ReadLotCosts() {
    const int decimals = context_.session.DecimalPlaces;
    Statement rows = context_.File().Prepare(fmt::format("SELECT BatchNo, IngName, IngType, LotQty, LotPrice FROM {}",
                                                         context_.session.QuotedTable(schema::BatchLotInv, database_)));
    while (rows.Step()) {
      if (!batchNos_.contains(rows.Whole(0))) continue;
      auto& colors = IsLineOf(ColorKind::Mix, rows.Whole(2)) ? mixes_ : basics_;
      if (colors.Find(rows.TextView(1)) == nullptr) continue;
      colors.At(rows.TextView(1)).lotCost +=
          CostOfQty(WholeUnits(rows.Single(3), 3), WholeUnits(rows.Single(4), decimals), decimals);
    }
  }

  std::vector<Consumed*> Colors() {
    std::vector<Consumed*> all = basics_.InOrder();
    for (Consumed* mix : mixes_.InOrder()) all.push_back(mix);
    std::erase_if(all, [](const Consumed* color) { return color->batches == 0; });
    return all;
  }

 private:
  void Read(const BatchQuery& query, const std::function<void(std::int64_t quantity, std::int64_t batchNo)>& add) {
    ForEachReportBatch(context_, database_, query, [&](const Statement& row) {
      const std::int64_t unit = row.Whole(2);
      ReadReportLines(row, kFirstLine, unit, toUnit_, lines_);
      add(toUnit_.Thousandths(row.Single(1), unit), row.Whole(0));
      return true;
    });
  }

  const ReportContext& context_;
  std::string database_;
  ToInventoryUnit toUnit_;
  std::vector<ReportLine> lines_;
  ByName<Consumed> basics_;
  ByName<Consumed> mixes_;
  std::vector<Consumed*> touched_;
  std::unordered_set<std::int64_t> batchNos_;
};

void AddConsumedColumns(TableOf<Consumed>& table, const ReportContext& context) {
  table.Add("Batches", &Consumed::batches, "Batches")
      .Sum()
      .Add(
          "BatchQty", [](const Consumed& r) { return OfWholeUnits(r.quantity, 3); }, context.InUnit("Batch Qty"))
      .Sum()
      .Add(
          "QtyConsumed", [](const Consumed& r) { return OfWholeUnits(r.consumed, 3); }, context.InUnit("Qty Consumed"))
      .Sum()
      .Add(
          "PercentConsumed", [](const Consumed& r) { return ShareOf(r.consumed, r.quantity); }, "% Consumed",
          Format::Percent)
      .Ratio("QtyConsumed", "BatchQty");
}

ListTable ByColor(const ReportContext& context) {
  const std::string database = context.databases.front();
  const int decimals = context.session.DecimalPlaces;
  TableOf<Consumed> table;
  table.Add("Color_Name", &Consumed::name, "Color Name")
      .Add(
          "Color_Type", [](const Consumed& r) { return ColorTypeText(r.kind, r.color->Additive); }, "Color Type")
      .Add(
          "Color_Code", [](const Consumed& r) { return r.color->Color_Code; }, "Color Code");
  AddConsumedColumns(table, context);
  const auto cost = [&](const char* key, const char* caption, std::int64_t (*of)(const Consumed&, int)) {
    table
        .Add(
            key, [of, decimals](const Consumed& r) { return OfWholeUnits(of(r, decimals), decimals); },
            context.InMoney(caption), Format::Money, decimals)
        .Sum();
  };
  cost("BasicPurchaseCost", "Basic Purchase Cost",
       [](const Consumed& r, int places) { return CostOfQty(r.consumed, r.color->BasicCost, places); });
  cost("MixPurchaseCost", "Mix Purchase Cost", [](const Consumed& r, int places) {
    return r.kind == ColorKind::Mix ? CostOfQty(r.consumed, r.color->PurchaseCost, places) : 0;
  });
  cost("LotPurchaseCost", "Lot Purchase Cost", [](const Consumed& r, int) { return r.lotCost; });
  table
      .Add(
          "LastConsumed", [](const Consumed& r) { return r.kind == ColorKind::Basic ? r.color->last : std::nullopt; },
          "Last Consumed", Format::Date)
      .Leads([database](const Consumed& r) {
        return RowTarget{r.kind == ColorKind::Mix ? RowTarget::Kind::Mix : RowTarget::Kind::Basic, database, r.name};
      });
  return table.Of([&context, database](const std::function<bool(const Consumed&)>& take) {
    const ColorBook book(context, database);
    ConsumptionOf consumption(context, database);
    const Consumed all = consumption.OfAll(context.Option("ShowBasics") == 1, context.Option("ShowMixes") == 1, true);
    consumption.ReadLotCosts();
    context.watch.SetTotal("Batches", all.batches);
    context.watch.SetTotal("BatchQty", OfWholeUnits(all.quantity, 3));
    for (Consumed* color : consumption.Colors()) {
      color->color = &book.Of(color->kind, color->name);
      if (!take(*color)) return;
    }
  });
}

ListTable ByDatabase(const ReportContext& context) {
  TableOf<Consumed> table;
  table.Add("Database", &Consumed::name, "Database");
  AddConsumedColumns(table, context);
  table.Leads([](const Consumed& r) { return RowTarget{RowTarget::Kind::Database, r.name}; });
  return table.Of([&context](const std::function<bool(const Consumed&)>& take) {
    for (const std::string& database : context.databases) {
      ConsumptionOf consumption(context, database);
      if (!take(context.name.empty() ? consumption.OfAll(true, true, false) : consumption.OfColor())) return;
    }
  });
}

}  // namespace

void AddConsumptionReports(std::vector<ReportDefinition>& catalogue) {
  const ReportDefinition family{
      .group = "Consumption", .name = "Consumption Report", .dateRangeKey = "ConsumptionDateRange"};
  ReportDefinition detail = family;
  detail.key = "ConsSpecificColorThisDB";
  detail.caption = "Specific Color - this Database";
  detail.window = "ConsumptionForm";
  detail.prefix = "DetConsumption";
  detail.noun = "Batches";
  detail.description =
      "Lists all Batches made in the current Database within a specified date range in which the Basic / Additive or "
      "Recycled Color you specify has been consumed.";
  detail.subject = ReportSubject::Color;
  detail.table = Detail;
  catalogue.push_back(detail);

  ReportDefinition colorSummary = family;
  colorSummary.key = "ConsSpecificColorAllDBs";
  colorSummary.caption = "Specific Color- all Databases";
  colorSummary.window = "ConsumptionColorNameSummaryForm";
  colorSummary.prefix = "Sum2Consumption";
  colorSummary.noun = "Databases";
  colorSummary.description =
      "Lists all Databases in the current Datafile. For each Database, the number of Batches made within a specified "
      "date range in which the Basic / Additive or Recycled Color you specify has been consumed is displayed.";
  colorSummary.subject = ReportSubject::Color;
  colorSummary.scope = ReportScope::All;
  colorSummary.table = ByDatabase;
  catalogue.push_back(colorSummary);

  ReportDefinition byColor = family;
  byColor.key = "ConsAllColorsThisDB";
  byColor.caption = "All Colors - this Database";
  byColor.window = "SummarizedConsumptionForm";
  byColor.prefix = "SumConsumption";
  byColor.noun = "Colors";
  byColor.description =
      "A list of all Basics / Additives and Recycled Colors in the current Database which have been consumed in Batch "
      "recipe within a specified date range.";
  byColor.options = {{"ShowBasics", "1 lists Basics and Additives", 2, 1},
                     {"ShowMixes", "1 lists recycled colors", 2, 1}};
  byColor.table = ByColor;
  catalogue.push_back(byColor);

  ReportDefinition summary = family;
  summary.key = "ConsAllColorsAllDBs";
  summary.caption = "Summary all Databases";
  summary.window = "ConsumptionSummaryForm";
  summary.prefix = "Sum3Consumption";
  summary.noun = "Databases";
  summary.description =
      "Lists all Databases in the current Datafile. For each Database, the number of Batches made within a specified "
      "date range and total quantity consumed in those Batches is displayed.";
  summary.scope = ReportScope::All;
  summary.table = ByDatabase;
  catalogue.push_back(summary);
}

}  // namespace vellumark
