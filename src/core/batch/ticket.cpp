#include "core/batch/ticket.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "core/base/units.h"
#include "core/batch/cost.h"
#include "core/batch/cost_model.h"
#include "core/batch/more_data.h"
#include "core/batch/open.h"
#include "core/batch/print_options.h"
#include "core/batch/prior_batches.h"
#include "core/batch/quick_info.h"
#include "core/batch/recycle_list.h"
#include "core/batch/rows.h"
#include "core/batch/takings.h"
#include "core/session/rights.h"

namespace vellumark {
namespace {

constexpr int kMostOtherNotes = 20;

std::string WithUnit(float amount, int unit) {
  return fmt::format("{} {}", Fixed(amount, 3), UnitName(unit));
}

std::string DateOf(const std::optional<DateTime>& date) {
  return date ? date->DateText() : "";
}

using Fields = std::vector<SheetField>;

/// Blocks that hold something.
void Add(Sheet& sheet, SheetBlock block) {
  if (!block.fields.empty() || block.table || !block.lines.empty()) sheet.blocks.push_back(std::move(block));
}

void AddIdentity(Sheet& sheet, const BatchRecord& record, const BatchPrintOptions& options) {
  const BatchFormula& formula = record.work.formula;
  SheetBlock name{.heading = record.work.Color_Name, .large = true};
  if (!formula.Color_Code.empty()) name.lines.push_back(formula.Color_Code);
  sheet.blocks.push_back(std::move(name));
  SheetBlock block;
  Fields& fields = block.fields;
  fields = {{"Batch ID #:", BatchNoText(record.BatchNo)}, {"Date Entered:", DateOf(record.Date_Entered)}};
  if (!formula.Color_Guide.empty())
    fields.insert(
        fields.end(),
        {{"Formula Guide :", formula.Color_Guide}, {"Page:", formula.Page}, {"Row:", std::to_string(formula.Row)}});
  fields.push_back({"Username:", record.Username});
  if (options.batchInfo) {
    fields.push_back({"Lot Number:", record.fields.LotNumber});
    fields.push_back({"Job Number:", record.JobNumber()});
    if (record.jobs.size() == 1)
      fields.push_back({"Qty Used:", WithUnit(record.jobs.front().QtyUsed, record.work.UMF)});
    if (record.jobs.size() > 1)
      for (const BatchJobLine& line : record.jobs)
        fields.push_back({"   " + line.JobNumber, WithUnit(line.QtyUsed, record.work.UMF)});
    fields.push_back({"Short Note:", record.fields.ShortNote});
  }
  std::erase_if(fields, [](const SheetField& field) { return field.value.empty(); });
  if (record.modifiedFormula) block.lines.emplace_back("MODIFIED FORMULA");
  sheet.blocks.push_back(std::move(block));
}

void AddRows(Sheet& sheet, const Session& session, const BatchRecord& record) {
  const BatchWork& work = record.work;
  sheet.blocks.push_back({.table = TicketColumns().Of(TicketRows(work)), .large = true});
  SheetBlock sums{.fields = {{"Recycled ", PercentRecycledText(work)}}};
  if (PriorBatchHadAdditions(session, work.Color_Name, record.BatchNo))
    sums.lines.emplace_back("NOTE - A Batch Addition was required for a previous Batch of this color.");
  if (work.zeroRows > 0) sums.lines.emplace_back(kZeroMsg);
  sheet.blocks.push_back(std::move(sums));
}

// What paper calls a line of the quick information.
std::string TicketCaption(const std::string& caption) {
  return caption == QuickInfoCaption(2) ? "Reorder" : caption == QuickInfoCaption(4) ? "Purchase Cost" : caption;
}

void AddQuickInfo(Sheet& sheet, const Session& session, const BatchWork& work) {
  const BatchOptions options = ReadBatchOptions(session);
  for (std::size_t row = 0; row < work.Rows.size(); ++row) {
    SheetBlock block{.heading = (row == 0 ? "Quick Info - " : "") + work.Rows[row].name};
    for (auto& [caption, value] : QuickInfo(session, work, row, options.QuickInfoField))
      block.fields.push_back({TicketCaption(caption), std::move(value)});
    Add(sheet, std::move(block));
  }
}

std::string CostCaption(const CostLine& line, int mixCostOption) {
  const std::string_view name = line.name;
  if (name == "lblCostOfBasics") return "Cost of Basics";
  if (name == "lblCostOfMixes")
    return mixCostOption == 0   ? "Cost of Mixes (Basic Cost)"
           : mixCostOption == 1 ? "Cost of Mixes (Purchase Cost)"
                                : "Cost of Mixes (Prepaid)";
  return name == "lblTotalCost" ? "Cost of Batch" : line.caption;
}

// The parts and their total; the ingredients as one where the model knows no parts of them.
void AddCost(Sheet& sheet, const Session& session, const BatchWork& work) {
  SheetBlock block{.heading = "Cost Detail"};
  if (session.Perm_Costs != 0) {
    for (const CostLine& line : CostDetail(session, work))
      if (line.kind != CostLine::Kind::Subtotal ||
          (work.cost.CostModelType != 0 && std::string_view(line.name) == "lblIngredientCost"))
        block.fields.push_back({CostCaption(line, work.cost.MixCostOption), line.amount.Fixed(session.DecimalPlaces)});
    block.fields.push_back({UnitCostCaption(work), work.figures.UnitCost.Fixed(UnitCostDecimals(session, work))});
  } else {
    block.heading = "VOC & HAP";
  }
  block.fields.push_back({"VOC", Fixed(work.figures.VOC, 3)});
  block.fields.push_back({"HAP", Fixed(work.figures.HAP, 3)});
  Add(sheet, std::move(block));
}

SheetBlock DataBlock(std::string heading, const std::vector<DataLine>& lines) {
  SheetBlock block{.heading = std::move(heading)};
  for (const DataLine& line : lines) block.fields.push_back({line.caption, line.value});
  return block;
}

// Of a Batch that is stored what really left; of one on the bench what its saving would take.
std::vector<BatchLotRow> LotsOf(Session& session, const BatchRecord& record) {
  if (record.key != 0 && !record.stockReturned) return ReadBatchLots(session, record.BatchNo);
  std::vector<BatchLotRow> lots;
  for (BatchTaking& taking : PlanTakings(session, record))
    lots.push_back({std::move(taking.use), std::move(taking.IngName), taking.IngType});
  return lots;
}

void AddLots(Sheet& sheet, Session& session, const BatchRecord& record) {
  if (session.InvLotTracking != 1) return;
  using Row = BatchLotRow;
  TableOf<Row> table;
  table.Add("Ingredient", &Row::IngName)
      .Add("Lot Number", [](const Row& row) { return row.LotRefID == 0 ? std::string(kUnlottedInv) : row.LotNumber; })
      .Add("Location", &Row::LotLoc)
      .Add("Cont. ID", &Row::LotContID)
      .Add("Date", &Row::LotDate, "", Format::Date)
      .Add(fmt::format("Qty ({})", UnitName(session.UMI)), &Row::LotQty);
  if (session.Perm_Costs != 0) table.Add("Price", &Row::LotPrice, "", Format::Amount, session.DecimalPlaces);
  Add(sheet, {.heading = "Ingredient Inv. Lot Consumption", .table = table.Of(LotsOf(session, record))});
}

void AddHistory(Sheet& sheet, const Session& session, const BatchRecord& record) {
  SheetBlock block{.heading = "Batch History"};
  const std::string& name = record.work.Color_Name;
  if (const auto last = LastBatchOf(session, name, record.BatchNo, false)) {
    block.fields.push_back(
        {"Last Batch", fmt::format("{}  {}", BatchNoText(last->BatchNo), DateOf(last->Date_Entered))});
    block.fields.push_back({"Qty Produced", WithUnit(last->ActualQuantity, last->UMF)});
  }
  if (const auto last = LastBatchOf(session, name, record.BatchNo, true))
    for (const BatchJobLine& line : last->jobs) {
      block.fields.push_back({"Last Job", line.JobNumber});
      block.fields.push_back({"Job Qty Used", WithUnit(line.QtyUsed, last->UMF)});
    }
  Add(sheet, std::move(block));
}

void AddNotes(Sheet& sheet, const Session& session, const BatchRecord& record, const BatchPrintOptions& options) {
  const std::string& name = record.work.Color_Name;
  const auto add = [&](std::string heading, const std::string& text) {
    if (!text.empty()) sheet.blocks.push_back({.heading = std::move(heading), .lines = {text}});
  };
  if (options.notes[3]) add("Master Formula Notes for " + name, record.work.formula.Notes);
  if (options.notes[1]) {
    SheetBlock block{.heading = "Other Batch Notes for " + name};
    for (const BatchNote& note : OtherBatchNotes(session, name, record.BatchNo, kMostOtherNotes))
      block.lines.push_back(
          fmt::format("{}  {}\n{}", BatchNoText(note.BatchNo), DateOf(note.Date_Entered), note.Notes));
    Add(sheet, std::move(block));
  }
  if (options.notes[2]) add("Ingredient Notes", record.fields.IngNotes);
}

Result<void> CheckRows(const BatchWork& work, Refusal changed) {
  if (work.QuantityChanged || work.Rows.empty()) return std::unexpected(std::move(changed));
  return {};
}

}  // namespace

TableOf<TicketRow> TicketColumns() {
  return TableOf<TicketRow>()
      .Add("Name", &TicketRow::name, "Ingredient")
      .Add("Note", &TicketRow::note, " ")
      .Add("Unit", &TicketRow::unit)
      .Add("Amount", &TicketRow::amount)
      .Total("TOTAL WEIGHT")
      .Show({"Ingredient", "Amount", "Unit", " "});
}

std::vector<TicketRow> TicketRows(const BatchWork& work) {
  std::vector<TicketRow> rows;
  for (const BatchRow& row : work.Rows) {
    const bool below = row.kind == LineKind::Mix && row.amount < RoundTo(row.max, 3);
    rows.push_back({row.name, row.amount, std::string(UnitName(work.UMF)),
                    below                            ? "(Below Max. Usable)"
                    : row.kind == LineKind::Addition ? "(Batch Addition)"
                                                     : ""});
  }
  return rows;
}

Result<Sheet> BatchTicket(Session& session, const BatchRecord& record) {
  const BatchWork& work = record.work;
  if (auto rows = CheckRows(work, {"Recalculate Batch",
                                   "The Batch quantity has changed.\n\nClick the Recycle(F2) or Mix(F3) button\n"
                                   "to recalculate the batch before printing.",
                                   "txtQuantity"});
      !rows)
    return std::unexpected(rows.error());
  const BatchPrintOptions options = ReadBatchPrintOptions(session);
  Sheet sheet{.title = "Batch"};
  AddIdentity(sheet, record, options);
  AddRows(sheet, session, record);
  if (options.quickInfo) AddQuickInfo(sheet, session, work);
  if (options.cost) AddCost(sheet, session, work);
  if (options.extraDetails) Add(sheet, DataBlock("Extra Batch Details", UserDataLines(session, record.fields)));
  if (options.lotConsumption) AddLots(sheet, session, record);
  if (options.notes[0] && !record.fields.Notes.empty())
    sheet.blocks.push_back({.heading = "Batch Note", .lines = {record.fields.Notes}});
  if (options.history) AddHistory(sheet, session, record);
  AddNotes(sheet, session, record, options);
  if (options.lab) Add(sheet, DataBlock("L-a-b - Delta - Batch Details", LabLines(session, record.fields)));
  return sheet;
}

Sheet ChangeSheet(const BatchRecord& record, std::vector<AmountChange> changes) {
  Sheet sheet{.title = "Batch"};
  sheet.blocks.push_back({.fields = {{"Batch ID #:", BatchNoText(record.BatchNo)}},
                          .lines = {record.work.Color_Name, "   MODIFIED FORMULA"}});
  sheet.blocks.push_back({.heading = "Basic Color Adjustments:",
                          .table = TableOf<AmountChange>()
                                       .Add("Ingredient", &AmountChange::name)
                                       .Add("Original Amt", &AmountChange::before)
                                       .Add("New Amt", &AmountChange::after)
                                       .Add("Difference",
                                            [](const AmountChange& change) {
                                              return RoundTo(RoundTo(change.after, 3) - RoundTo(change.before, 3), 3);
                                            })
                                       .Of(std::move(changes)),
                          .lines = {fmt::format("Amounts in {}", UnitName(record.work.UMF))}});
  return sheet;
}

Result<Sheet> RecycleListSheet(const Session& session, const BatchWork& work) {
  if (auto rows = CheckRows(work, {"Recalculate Batch",
                                   "You've changed the Quantity of this batch.\n"
                                   "Click the Recycle(F2) or Mix(F3) button to recalculate\n"
                                   "the batch before printing the Recycle List.",
                                   "txtQuantity"});
      !rows)
    return std::unexpected(rows.error());
  const BatchPrintOptions options = ReadBatchPrintOptions(session);
  std::vector<RecycleColor> colors;
  for (const RecycleListRow& row : RecycleListRows(work, {})) {
    const RecycleColor& color = work.RecycleList[row.place];
    // By the figures that are printed: 50.00 is not greater than 50.
    if (!options.recListPercent || RoundTo(row.Recycle_Percent * 100.0, 2) > options.recListPercentValue)
      colors.push_back(color);
  }
  TableOf<RecycleColor> table;
  table.Add("Color_Name", &RecycleColor::Color_Name, "Color Name")
      .Add(
          "Recycle_Percent", [](const RecycleColor& color) { return color.Recycle_Percent * 100.0; }, "Recycle Percent",
          Format::Amount, 2)
      .Add("Inventory", &RecycleColor::Inventory, fmt::format("Inventory ({})", UnitName(work.UMF)))
      .Add("Recycle", &RecycleColor::Recycle, "Recyclable", Format::Mark);
  Sheet sheet = Sheet::Of("Recycle Color List", table.Of(std::move(colors)));
  sheet.subtitle = fmt::format("{}  {} {}", work.Color_Name, Fixed(work.ShownTotal, 3), UnitName(work.UMF));
  return sheet;
}

}  // namespace vellumark
