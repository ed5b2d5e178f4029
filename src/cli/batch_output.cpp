#include "cli/batch_output.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/color_fields.h"
#include "core/base/number.h"
#include "core/base/units.h"
#include "core/batch/cost.h"
#include "core/batch/recycle_list.h"
#include "core/batch/rows.h"

namespace vellumark::cli {
namespace {

Json Money(const Session& session, Currency amount) {
  return session.Perm_Costs == 0 ? Json() : Json(amount.Fixed(session.DecimalPlaces));
}

Json RowsJson(const BatchWork& work) {
  Json rows = Json::array();
  for (const BatchRow& row : work.Rows)
    rows.push_back({{"Kind", RowKindName(row.kind)},
                    {"Name", row.name},
                    {"Amount", row.amount},
                    {"Max", row.kind == RowKind::Mix ? Json(Fixed(row.max, 3)) : Json()}});
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
  return {{"Total", work.TotalText},
          {"RecycledTotal", Fixed(work.RecycledTotal, 3)},
          {"AdditionsTotal", Fixed(work.AdditionsTotal, 3)},
          {"PercentRecycled", work.PercentRecycled},
          {"Roundoff", Number(work.Roundoff)},
          {"LargestAmountIndex", work.LargestAmountIndex},
          {"ClickedIndex", work.ClickedIndex},
          {"RecycleList", RecycleListJson(work)},
          {"CostOfBasics", Money(session, work.figures.CostOfBasics)},
          {"CostOfMixes", Money(session, work.figures.CostOfMixes)},
          {"CostOfBatch", Money(session, work.figures.TotalCost)},
          {"UnitCost", Money(session, work.figures.UnitCost)},
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

Json LotsJson(const Session& session, std::int32_t batchNo) {
  Json lots = Json::array();
  for (const BatchLotRow& lot : ReadBatchLots(session, batchNo))
    lots.push_back({{"IngName", lot.IngName},
                    {"IngType", lot.IngType},
                    {"LotRefID", lot.LotRefID},
                    {"LotNumber", lot.LotNumber},
                    {"LotLoc", lot.LotLoc},
                    {"LotContID", lot.LotContID},
                    {"LotDate", DateJson(lot.LotDate)},
                    {"LotQty", Number(lot.LotQty)},
                    {"LotPrice", Price(session, lot.LotPrice)}});
  return lots;
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
  std::vector<std::vector<std::string>> rows;
  for (const BatchRow& row : work.Rows)
    rows.push_back({std::string(RowKindName(row.kind)), row.name, row.amount, row.unit,
                    row.kind == RowKind::Mix ? Fixed(row.max, 3) : ""});
  rows.push_back({"", "Total", work.TotalText, std::string(UnitName(work.UMF)), ""});
  return TableText({"Kind", "Name", "Amount", "Unit", "Max"}, rows, {false, false, true, false, true});
}

Figures WorkFigures(const Session& session, const BatchWork& work) {
  Figures figures{{"Percent Recycled", work.PercentRecycled}};
  if (session.Perm_Costs != 0) {
    const int decimals = session.DecimalPlaces;
    figures.insert(figures.end(),
                   {{"Cost of Basics / Additives", work.figures.CostOfBasics.Fixed(decimals)},
                    {MixCostOptionText(work.cost.MixCostOption), work.figures.CostOfMixes.Fixed(decimals)},
                    {"Total Cost of Batch", work.figures.TotalCost.Fixed(decimals)},
                    {UnitCostCaption(work), work.figures.UnitCost.Fixed(decimals)}});
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
  answer["Total"] = record.work.TotalText;
  answer["RecycledTotal"] = Fixed(record.work.RecycledTotal, 3);
  answer["AdditionsTotal"] = Fixed(record.work.AdditionsTotal, 3);
  answer["PercentRecycled"] = record.work.PercentRecycled;
  answer["CostOfBatch"] = Money(session, record.work.figures.TotalCost);
  answer["UnitCost"] = Money(session, record.work.figures.UnitCost);
  answer["ReturnedToInventory"] = Number(record.returned);
  answer["Jobs"] = JobsJson(record);
  answer["Lots"] = LotsJson(session, record.BatchNo);
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
  std::vector<std::vector<std::string>> lots;
  for (const BatchLotRow& lot : ReadBatchLots(session, record.BatchNo))
    lots.push_back({lot.IngName, lot.LotNumber, lot.LotLoc, lot.LotContID, Fixed(lot.LotQty, 3)});
  const std::string used = fmt::format("Used ({})", UnitName(session.UMI));
  return text + '\n' +
         TableText({"Name", "Lot Number", "Location", "Cont. ID", used}, lots, {false, false, false, false, true});
}

Json BatchListJson(const std::vector<BatchListRow>& list) {
  Json rows = Json::array();
  for (const BatchListRow& row : list)
    rows.push_back({{"BatchNo", row.BatchNo},
                    {"Color_Name", row.Color_Name},
                    {"Date_Entered", DateJson(row.Date_Entered)},
                    {"Quantity", Number(row.Quantity)},
                    {"ActualQuantity", Number(row.ActualQuantity)},
                    {"UMF", UnitName(row.UMF)},
                    {"JobNumber", row.JobNumber},
                    {"Complete", row.Complete}});
  return rows;
}

std::string BatchListText(const std::vector<BatchListRow>& list) {
  std::vector<std::vector<std::string>> rows;
  for (const BatchListRow& row : list)
    rows.push_back({BatchNoText(row.BatchNo), row.Color_Name, row.Date_Entered ? row.Date_Entered->ToText() : "",
                    Fixed(row.ActualQuantity, 3), std::string(UnitName(row.UMF)), row.JobNumber,
                    row.Complete ? "Yes" : ""});
  return TableText({"Batch", "Color Name", "Date Entered", "Made", "Unit", "Job Number", "Complete"}, rows,
                   {false, false, false, true, false, false, false});
}

}  // namespace vellumark::cli
