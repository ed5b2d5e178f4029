#include "cli/batch_output.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "cli/color_fields.h"
#include "core/base/number.h"
#include "core/base/units.h"
#include "core/batch/cost.h"
#include "core/batch/recycle_list.h"
#include "core/batch/rows.h"
#include "core/session/rights.h"

namespace vellumark::cli {
namespace {

Json Money(const Session& session, Currency amount) {
  return session.Perm_Costs == 0 ? Json() : Json(amount.Fixed(session.DecimalPlaces));
}

Json UnitCost(const Session& session, const BatchWork& work) {
  return session.Perm_Costs == 0 ? Json() : Json(work.figures.UnitCost.Fixed(UnitCostDecimals(session, work)));
}

Json RowsJson(const BatchWork& work) {
  Json rows = Json::array();
  for (const BatchRow& row : work.Rows)
    rows.push_back({{"Kind", LineKindName(row.kind)},
                    {"Name", row.name},
                    {"Amount", Fixed(row.amount, 3)},
                    {"Max", row.kind == LineKind::Mix ? Json(Fixed(row.max, 3)) : Json()}});
  return rows;
}

Json RecycleListJson(const BatchWork& work) {
  Json list = Json::array();
  for (const RecycleListRow& row : RecycleListRows(work, {})) {
    const RecycleColor& color = work.RecycleList[row.place];
    list.push_back({{"Color_Name", color.Color_Name},
                    {"Recycle_Percent", Number(color.Recycle_Percent)},
                    {"Inventory", Number(color.Inventory)},
                    {"Recycle", color.Recycle}});
  }
  return list;
}

Json TotalsJson(const Session& session, const BatchWork& work) {
  return {{"Total", Fixed(work.ShownTotal, 3)},
          {"RecycledTotal", Fixed(work.RecycledTotal, 3)},
          {"AdditionsTotal", Fixed(work.AdditionsTotal, 3)},
          {"PercentRecycled", PercentRecycledText(work)},
          {"Roundoff", Number(work.Roundoff)},
          {"LargestAmountIndex", work.LargestAmountIndex},
          {"ClickedIndex", work.ClickedIndex},
          {"RecycleList", RecycleListJson(work)},
          {"CostOfBasics", Money(session, work.figures.CostOfBasics)},
          {"CostOfMixes", Money(session, work.figures.CostOfMixes)},
          {"CostOfBatch", Money(session, work.figures.TotalCost)},
          {"UnitCost", UnitCost(session, work)},
          {"VOC", Fixed(work.figures.VOC, 3)},
          {"HAP", Fixed(work.figures.HAP, 3)}};
}

Json JobsJson(const BatchRecord& record) {
  Json jobs = Json::array();
  for (const BatchJobLine& line : record.jobs)
    jobs.push_back(
        {{"JobNumber", line.JobNumber}, {"QtyIssued", Number(line.QtyIssued)}, {"QtyUsed", Number(line.QtyUsed)}});
  return jobs;
}

bool IsCost(std::string_view field) {
  return field.starts_with("CostOf") || field.starts_with("Fixed") || field == "MarkupPercent";
}

using Figures = std::vector<std::pair<std::string, std::string>>;

std::string FiguresText(const Figures& figures) {
  std::size_t label = 0;
  std::size_t value = 0;
  for (const auto& [caption, figure] : figures) {
    label = std::max(label, caption.size());
    value = std::max(value, figure.size());
  }
  std::string text;
  for (const auto& [caption, figure] : figures) text += fmt::format("{:<{}}  {:>{}}\n", caption, label, figure, value);
  return text;
}

std::string RowsText(const BatchWork& work) {
  using Line = std::array<std::string, 5>;
  const std::string unit(UnitName(work.UMF));
  std::vector<Line> lines;
  for (const BatchRow& row : work.Rows)
    lines.push_back({std::string(LineKindName(row.kind)), row.name, Fixed(row.amount, 3), unit,
                     row.kind == LineKind::Mix ? Fixed(row.max, 3) : ""});
  lines.push_back({"", "Total", Fixed(work.ShownTotal, 3), unit, ""});
  TableOf<Line> table;
  for (std::size_t i = 0; const char* caption : {"Kind", "Name", "Amount", "Unit", "Max"}) {
    table.Add(
        caption, [i](const Line& line) { return line[i]; }, "", i % 2 == 0 && i > 0 ? Format::Amount : Format::Text);
    ++i;
  }
  return TableText(table.Of(std::move(lines)));
}

Figures WorkFigures(const Session& session, const BatchWork& work) {
  Figures figures{{"Percent Recycled", PercentRecycledText(work)}};
  if (session.Perm_Costs != 0) {
    const int decimals = session.DecimalPlaces;
    figures.insert(figures.end(),
                   {{"Cost of Basics / Additives", work.figures.CostOfBasics.Fixed(decimals)},
                    {MixCostOptionText(work.cost.MixCostOption), work.figures.CostOfMixes.Fixed(decimals)},
                    {"Total Cost of Batch", work.figures.TotalCost.Fixed(decimals)},
                    {UnitCostCaption(work), work.figures.UnitCost.Fixed(UnitCostDecimals(session, work))}});
  }
  figures.insert(figures.end(), {{"VOC", Fixed(work.figures.VOC, 3)}, {"HAP", Fixed(work.figures.HAP, 3)}});
  return figures;
}

}  // namespace

Json BatchJson(const Session& session, const BatchRecord& record) {
  const BatchWork& work = record.work;
  Json answer{{"Color_Name", work.Color_Name},
              {"Color_Code", work.formula.Color_Code},
              {"Quantity", Number(static_cast<float>(work.Quantity()))},
              {"UMF", UnitName(work.UMF)},
              {"Rows", RowsJson(work)}};
  answer.update(TotalsJson(session, work));
  answer["BatchNo"] = record.BatchNo;
  return answer;
}

std::string BatchText(const Session& session, const BatchRecord& record) {
  const BatchWork& work = record.work;
  std::string text =
      fmt::format("{}{}\n\n", work.Color_Name, work.formula.Color_Code.empty() ? "" : "  " + work.formula.Color_Code);
  text += RowsText(work) + '\n' + FiguresText(WorkFigures(session, work));
  if (work.zeroRows > 0) text += fmt::format("\n{}\n", kZeroMsg);
  return text;
}

Json StoredBatchJson(const Session& session, const BatchRecord& record) {
  Json answer = Json::object();
  for (const auto& [name, value] : ReadBatchFields(session, record.BatchNo)) {
    const Field& field = schema::Batch.fields[static_cast<std::size_t>(schema::Batch.Find(name))];
    answer[name] = session.Perm_Costs == 0 && IsCost(name) ? Json() : FieldJson(field, value);
  }
  answer["UMF"] = UnitName(record.work.UMF);
  answer["Rows"] = RowsJson(record.work);
  answer["Total"] = Fixed(record.work.ShownTotal, 3);
  answer["RecycledTotal"] = Fixed(record.work.RecycledTotal, 3);
  answer["AdditionsTotal"] = Fixed(record.work.AdditionsTotal, 3);
  answer["PercentRecycled"] = PercentRecycledText(record.work);
  answer["CostOfBatch"] = Money(session, record.work.figures.TotalCost);
  answer["UnitCost"] = UnitCost(session, record.work);
  answer["ReturnedToInventory"] = Number(record.returned);
  answer["Jobs"] = JobsJson(record);
  answer["Lots"] = RowsJson(ListBatchLots(session, record.BatchNo));
  answer["Editable"] = record.formulaUnchanged;
  return answer;
}

std::string StoredBatchText(const Session& session, const BatchRecord& record) {
  const BatchWork& work = record.work;
  std::string text = fmt::format("Batch {}  {}{}\n", BatchNoText(record.BatchNo), work.Color_Name,
                                 work.formula.Color_Code.empty() ? "" : "  " + work.formula.Color_Code);
  if (record.Date_Entered) text += record.Date_Entered->ToText() + '\n';
  text += '\n' + RowsText(work) + '\n';
  Figures figures = WorkFigures(session, work);
  figures.emplace_back("Qty Returned to Inv", record.ReturnedText());
  for (const BatchJobLine& line : record.jobs) figures.emplace_back("Job " + line.JobNumber, Fixed(line.QtyUsed, 3));
  text += FiguresText(figures);
  const BatchFields& fields = record.fields;
  for (const auto& [caption, value] : Figures{{"Lot Number", fields.LotNumber},
                                              {"Short Note", fields.ShortNote},
                                              {"Notes", fields.Notes},
                                              {"Username", record.Username}})
    if (!value.empty()) text += fmt::format("{}: {}\n", caption, value);
  if (record.Complete) text += "Complete\n";
  return text + '\n' + TableText(ListBatchLots(session, record.BatchNo));
}

}  // namespace vellumark::cli
