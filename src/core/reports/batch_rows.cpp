#include "core/reports/batch_rows.h"

#include <fmt/format.h>

#include "core/base/units.h"
#include "core/batch/cost.h"
#include "core/batch/takings.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

constexpr int kPercentDecimals = 6;  // of a Batch's PercentRec on file
constexpr std::array<std::int64_t, 5> kTenThousandths{10000, 1000, 100, 10, 1};

// In the order of FigureColumns.
enum FigureColumn : int {
  BatchNoColumn,
  DateColumn,
  ActualColumn,
  QuantityColumn,
  UnitColumn,
  PercentColumn,
  MixesColumn,
  BasicsColumn,
  FixedColumn,
  PerUnitColumn,
  MarkupColumn,
  VocColumn,
  HapColumn,
};

std::string NumberedColumns(std::string_view word, int count) {
  std::string columns;
  for (int i = 0; i < count; ++i) columns += (i == 0 ? "" : ", ") + schema::Numbered(word, i);
  return columns;
}

std::string CustomCaption(const Session& session, const SettingGroup<std::string>& kind, int number) {
  return GetSetting(session, kind[number]);
}

}  // namespace

ToInventoryUnit::ToInventoryUnit(const Session& session) {
  factors_[0] = 1;
  for (int unit = 1; unit <= 4; ++unit) factors_[static_cast<std::size_t>(unit)] = UnitFactor(unit, session.UMI);
}

BatchFiguresSum& BatchFiguresSum::operator+=(const BatchFiguresSum& other) {
  Batches += other.Batches;
  Quantity += other.Quantity;
  Recycled += other.Recycled;
  CostOfMixes += other.CostOfMixes;
  CostOfBasics += other.CostOfBasics;
  FixedCosts += other.FixedCosts;
  MarkupCosts += other.MarkupCosts;
  CostOfBatch += other.CostOfBatch;
  VOC += other.VOC;
  HAP += other.HAP;
  return *this;
}

double ShareOf(std::int64_t part, std::int64_t whole) {
  return whole == 0 ? 0 : RoundTo(static_cast<double>(part) / static_cast<double>(whole), 4);
}

double BatchFiguresSum::RecycledShare() const {
  return ShareOf(Recycled, Quantity);
}

std::string_view FigureColumns() {
  return "BatchNo, Date_Entered, ActualQuantity, Quantity, UMF, PercentRec, CostOfMixes, CostOfBasics, "
         "FixedCostOfBatch, FixedCostPerUnit, MarkupPercent, VOC, HAP";
}

BatchFiguresSum FigureReader::Read(const Statement& row) const {
  const std::int64_t unit = row.Whole(UnitColumn);
  const double actual = OfWholeUnits(WholeUnits(row.Single(ActualColumn), 3), 3);
  const auto money = [&](int column) {
    return Currency::OfTenThousandths(WholeUnits(row.Single(column), decimals_) *
                                      kTenThousandths[static_cast<std::size_t>(decimals_)]);
  };
  const double share = OfWholeUnits(WholeUnits(row.Single(PercentColumn), kPercentDecimals), kPercentDecimals);
  const BatchCostModel model{.FixedCostOfBatch = row.Single(FixedColumn),
                             .FixedCostPerUnit = row.Single(PerUnitColumn),
                             .MarkupPercent = row.Single(MarkupColumn)};
  BatchFiguresSum sum;
  sum.Batches = 1;
  sum.Quantity = toUnit_.Thousandths(actual, unit);
  sum.Recycled = toUnit_.Thousandths(actual * share, unit);
  sum.CostOfMixes = money(MixesColumn);
  sum.CostOfBasics = money(BasicsColumn);
  const BatchCosts costs = CostsOf(model, OfWholeUnits(WholeUnits(row.Single(QuantityColumn), 3), 3),
                                   toUnit_.Factor(unit), sum.CostOfMixes + sum.CostOfBasics, decimals_);
  sum.FixedCosts = costs.fixed.Rounded(decimals_);
  sum.MarkupCosts = costs.markup;
  sum.CostOfBatch = costs.total.Rounded(decimals_);
  sum.VOC = WholeUnits(row.Single(VocColumn), 3);
  sum.HAP = WholeUnits(row.Single(HapColumn), 3);
  return sum;
}

std::string_view DetailColumns() {
  static const std::string columns = fmt::format(
      "Color_Name, Username, ShortNote, LotNumber, JobNumber, Notes, Color_Code, Complete, PercentRec, "
      "Lab_L, Lab_a, Lab_b, Lab_D, Lab_Density, Lab_LS, Lab_PT, Lab_Note, BatchNo, Date_Entered, {}, {}",
      NumberedColumns("UD_Text", kBatchUserFields), NumberedColumns("UD_Numeric", kBatchUserFields));
  return columns;
}

BatchDetail ReadBatchDetail(const Statement& row, int first) {
  BatchDetail batch;
  batch.Color_Name = row.Text(first);
  batch.Username = row.Text(first + 1);
  batch.ShortNote = row.Text(first + 2);
  batch.LotNumber = row.Text(first + 3);
  batch.JobNumber = row.Text(first + 4);
  batch.Notes = row.Text(first + 5);
  batch.Color_Code = row.Text(first + 6);
  batch.Complete = row.Bool(first + 7);
  batch.PercentRec = OfWholeUnits(WholeUnits(row.Single(first + 8), 4), 4);
  for (int i = 0; i < 5; ++i) batch.Lab[static_cast<std::size_t>(i)] = row.Single(first + 9 + i);
  batch.Lab_LS = row.Text(first + 14);
  batch.Lab_PT = row.Text(first + 15);
  batch.Lab_Note = row.Text(first + 16);
  batch.BatchNo = static_cast<std::int32_t>(row.Whole(first + 17));
  batch.Date_Entered = row.Date(first + 18);
  for (int i = 0; i < kBatchUserFields; ++i) {
    batch.UD_Text[static_cast<std::size_t>(i)] = row.Text(first + 19 + i);
    batch.UD_Numeric[static_cast<std::size_t>(i)] = row.Single(first + 19 + kBatchUserFields + i);
  }
  return batch;
}

std::string_view LineColumns() {
  static const std::string columns =
      fmt::format("Roundoff, LargestAmountIndex, {}, {}, {}", NumberedColumns("IngName", schema::kBatchLines),
                  NumberedColumns("IngType", schema::kBatchLines), NumberedColumns("IngQty", schema::kBatchLines));
  return columns;
}

void ReadReportLines(const Statement& row, int first, std::int64_t unit, const ToInventoryUnit& toUnit,
                     std::vector<ReportLine>& lines) {
  lines.clear();
  const std::int64_t largest = row.Whole(first + 1);
  for (int i = 0; i < schema::kBatchLines; ++i) {
    const std::string_view name = row.TextView(first + 2 + i);
    if (name.empty()) continue;
    ReportLine line{name, row.Whole(first + 2 + schema::kBatchLines + i), 0};
    line.quantity = toUnit.Thousandths(row.Single(first + 2 + 2 * schema::kBatchLines + i), unit);
    if (BearsRoundoff(i, LineKindOf(line.type), largest)) line.quantity += toUnit.Thousandths(row.Single(first), unit);
    lines.push_back(line);
  }
}

void ForEachReportBatch(const ReportContext& context, const std::string& database, const BatchQuery& query,
                        const std::function<bool(const Statement& row)>& take) {
  const std::string table = context.session.QuotedTable(schema::Batch, database);
  const std::string from = context.dates.from.ToText();
  const std::string end = DateTime::FromDayNumber(context.dates.to.DayNumber() + 1).ToText();
  const auto number = [&](std::string_view sql) { return context.File().Scalar(sql, {from, end}).Number(); };
  const double within =
      number(fmt::format("SELECT COUNT(*) FROM {} WHERE Date_Entered >= ?1 AND Date_Entered < ?2", table));
  const double all = context.File().Scalar(fmt::format("SELECT COUNT(*) FROM {}", table)).Number();
  // Most of a table is read faster in its own order than by way of the index of dates.
  const bool most = within * 4 > all;
  std::string where = most ? "?1 <= ?2" : "Date_Entered >= ?1 AND Date_Entered < ?2";
  if (!query.where.empty()) where += fmt::format(" AND ({})", query.where);
  const int userParameter = 3 + static_cast<int>(query.parameters.size());
  if (!context.user.empty()) where += fmt::format(" AND Username = ?{}", userParameter);
  Statement rows =
      context.File().Prepare(fmt::format("SELECT {}, Date_Entered AS Day FROM {} WHERE {}{}", query.columns, table,
                                         where, query.order.empty() ? "" : " ORDER BY " + query.order));
  rows.Bind(1, from).Bind(2, end);
  for (std::size_t i = 0; i < query.parameters.size(); ++i) rows.Bind(static_cast<int>(3 + i), query.parameters[i]);
  if (!context.user.empty()) rows.Bind(userParameter, context.user);
  const int day = rows.ColumnCount() - 1;
  double done = 0;
  while (rows.Step()) {
    const std::string_view entered = rows.TextView(day);
    if (entered < from || entered >= end) continue;
    if (!take(rows)) return;
    if (!context.watch.GoOn(std::min(100.0, 100 * ++done / within))) return;
  }
}

std::vector<std::string> BatchUsers(const Session& session) {
  Statement rows = session.File().Prepare(
      fmt::format("SELECT DISTINCT Username FROM {} WHERE Username <> '' ORDER BY Username",
                  Quoted(session.Table(schema::Batch))));
  std::vector<std::string> users;
  while (rows.Step()) users.push_back(rows.Text(0));
  return users;
}

std::string HasLineOf(std::optional<ColorKind> kind) {
  std::string condition;
  for (int i = 0; i < schema::kBatchLines; ++i) {
    condition += fmt::format("{}({} = ?3", i == 0 ? "" : " OR ", schema::Numbered("IngName", i));
    if (kind)
      condition += fmt::format(" AND COALESCE({}, 1) {} 2", schema::Numbered("IngType", i),
                               *kind == ColorKind::Mix ? "=" : "<>");
    condition += ")";
  }
  return condition;
}

bool IsLineOf(std::optional<ColorKind> kind, std::int64_t type) {
  return !kind || ColorKindOf(LineKindOf(type)) == *kind;
}

std::string UserTextCaption(const Session& session, bool job, int number) {
  return CustomCaption(session, job ? setting::JobCustomTextLabelCaption : setting::BatchCustomTextLabelCaption,
                       number);
}

std::string UserNumberCaption(const Session& session, bool job, int number) {
  return CustomCaption(session, job ? setting::JobCustomNumericLabelCaption : setting::BatchCustomNumericLabelCaption,
                       number);
}

int UserNumberDecimals(const Session& session, bool job, int number) {
  return GetSetting(session, (job ? setting::Jobs_UDNum_Format : setting::Batches_UDNum_Format)[number]);
}

}  // namespace vellumark
