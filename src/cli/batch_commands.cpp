#include <fmt/format.h>

#include <memory>

#include "cli/batch_input.h"
#include "cli/batch_output.h"
#include "cli/color_fields.h"
#include "cli/frame.h"
#include "cli/record_export.h"
#include "cli/scale_reading.h"
#include "core/batch/bench.h"
#include "core/batch/dispense.h"
#include "core/batch/leave.h"
#include "core/batch/open.h"
#include "core/batch/row_lots.h"
#include "core/batch/store.h"
#include "core/batch/ticket.h"
#include "core/batch/weighing.h"
#include "core/scale/scale_setup.h"

namespace vellumark::cli {
namespace {

// A saved Batch for as long as a verb works on it, all in one transaction: what is refused, stands unanswered or fails
// leaves the file as it was, its history of stock too. The command line's answers are there before it begins, so no
// question waits for a person.
template <class Act>
Result<Json> OnStoredBatch(Session& session, std::int32_t batchNo, const Act& act) {
  Transaction transaction(session.File());
  BatchRecord record;
  if (!OpenBatch(session, record, batchNo)) return RefuseUnknownBatch(session, batchNo);
  auto answer = act(record);
  if (answer) transaction.Commit();
  return answer;
}

Result<Json> ShowBatch(Context& context, std::int32_t batchNo) {
  const auto record = ReadBatch(context.session, batchNo);
  if (!record) return RefuseUnknownBatch(context.session, batchNo);
  if (!context.json) context.text = StoredBatchText(context.session, *record);
  return StoredBatchJson(context.session, *record);
}

Result<Json> CalcBatch(Context& context, const BatchInput& input) {
  const auto record = NewBatch(context.session, input);
  if (!record) return std::unexpected(record.error());
  if (!context.json) context.text = BatchText(context.session, *record);
  return BatchJson(context.session, *record);
}

// Stores what was entered; why not, when it was not.
Result<std::int32_t> Store(Session& session, BatchRecord& record, const BatchInput& input) {
  OptionDialogs dialogs(input);
  std::int32_t number = 0;
  const auto saved = SaveBatch(session, record, dialogs, &number, MoveOn::Nowhere);
  if (!saved) return std::unexpected(saved.error());
  if (*saved != SaveEnd::Stays) return number;
  if (dialogs.refused) return std::unexpected(*dialogs.refused);
  return Refuse("Save Batch", "The Batch was not saved.");
}

Result<Json> SaveNewBatch(Context& context, const BatchInput& input) {
  Session& session = context.session;
  auto record = NewBatch(session, input);
  if (!record) return std::unexpected(record.error());
  if (const auto taken = TakeSaveOptions(session, *record, input); !taken) return std::unexpected(taken.error());
  BatchRecord shown = *record;
  const auto number = Store(session, *record, input);
  if (!number) return std::unexpected(number.error());
  shown.BatchNo = *number;
  if (!context.json)
    context.text = BatchText(session, shown) + fmt::format("\nSaved as Batch {}\n", BatchNoText(*number));
  return BatchJson(session, shown);
}

Result<Json> EditBatch(Context& context, std::int32_t batchNo, const BatchInput& input) {
  Session& session = context.session;
  return OnStoredBatch(session, batchNo, [&](BatchRecord& record) -> Result<Json> {
    if (const auto changed = ChangeBatch(session, record, input); !changed) return std::unexpected(changed.error());
    if (const auto taken = TakeSaveOptions(session, record, input); !taken) return std::unexpected(taken.error());
    if (!record.formulaUnchanged)
      if (const auto editable = CheckEditable(session, record); !editable) return std::unexpected(editable.error());
    if (const auto number = Store(session, record, input); !number) return std::unexpected(number.error());
    return ShowBatch(context, batchNo);
  });
}

Result<Json> DeleteStoredBatch(Context& context, std::int32_t batchNo) {
  Session& session = context.session;
  return OnStoredBatch(session, batchNo, [&](BatchRecord& record) -> Result<Json> {
    NoBatchDialogs dialogs;
    const auto deleted = DeleteBatch(session, record, dialogs, MoveOn::Nowhere);
    if (!deleted) return std::unexpected(deleted.error());
    if (!*deleted) return Declined("Batch Window - Delete Batch?", BatchNoText(batchNo));
    return Json{{"BatchNo", batchNo}, {"Deleted", true}};
  });
}

Result<Json> MarkComplete(Context& context, std::int32_t batchNo, bool complete) {
  Session& session = context.session;
  auto record = ReadBatch(session, batchNo);
  if (!record) return RefuseUnknownBatch(session, batchNo);
  if (const auto marked = CompleteBatch(session, *record, complete); !marked) return std::unexpected(marked.error());
  return Json{{"BatchNo", batchNo}, {"Complete", complete}};
}

Result<Json> PrintTicket(Context& context, std::int32_t batchNo) {
  const auto record = ReadBatch(context.session, batchNo);
  if (!record) return RefuseUnknownBatch(context.session, batchNo);
  auto ticket = BatchTicket(context.session, *record);
  if (!ticket) return std::unexpected(ticket.error());
  context.sheet = *std::move(ticket);
  return Json();
}

// The colours that could go into a Batch.
Result<Json> ListRecycles(Context& context, const BatchInput& input) {
  const auto record = NewBatch(context.session, input);
  if (!record) return std::unexpected(record.error());
  auto sheet = RecycleListSheet(context.session, record->work);
  if (!sheet) return std::unexpected(sheet.error());
  context.Answer(*sheet->blocks.front().table);
  if (context.prints) context.sheet = *std::move(sheet);
  return Json();
}

struct WeighOptions {
  std::int32_t batchNo = 0;
  std::size_t row = 1;
  std::string weight;  // typed, in the Batch's unit; else the scale's
  int seconds = 60;
  BatchInput lots;
};

// A row of a stored Batch from the scale: what the weighing window does for one row, and the save.
Result<Json> WeighRow(Context& context, const WeighOptions& options) {
  Session& session = context.session;
  const ScaleSetup setup = ReadScaleSetup(session);
  const WeighTolerance tolerance{setup.WeighTolerance, setup.WeighToleranceInPercent};
  return OnStoredBatch(session, options.batchNo, [&](BatchRecord& record) -> Result<Json> {
    const auto ticket = OpenWeighing(session, record, options.row - 1);
    if (!ticket) return std::unexpected(ticket.error());
    double poured = 0;
    if (options.weight.empty()) {
      const auto read = ReadSteadyWeight(session, options.seconds);
      if (!read) return std::unexpected(read.error());
      poured = InBatchUnit(*read, setup.ScaleUnit, ticket->UMF);
    } else if (const auto typed = ParseNumber(options.weight)) {
      poured = *typed;
    } else {
      return Refuse("Weigh Ingredient", fmt::format("{} is no weight.", options.weight), "--weight");
    }
    if (!AcceptPour(session.prompt, poured, ticket->target, tolerance.Of(ticket->target, ticket->UMF)))
      return Declined("Weigh Ingredient", ticket->name);
    const auto taken = TakePour(session, record, *ticket, poured, tolerance);
    if (!taken) return std::unexpected(taken.error());
    // A Batch that grew lets go of the lots of its Basic Colors. They stay as far as they reach; for the rest, and for
    // an addition that the pour left, there are the options.
    if (const auto kept = TakeSavedLots(session, record); !kept) return std::unexpected(kept.error());
    if (const auto lots = TakeSaveOptions(session, record, options.lots); !lots) return std::unexpected(lots.error());
    Json left = Json::array();
    for (const WeighTicket& next : RowsToWeigh(record, tolerance, setup.WeighHeaviestFirst))
      left.push_back({{"Row", next.row + 1}, {"Name", next.name}, {"Target", Fixed(next.target, 3)}});
    if (const auto number = Store(session, record, options.lots); !number) return std::unexpected(number.error());
    return Json{{"BatchNo", options.batchNo},
                {"Name", ticket->name},
                {"Target", Fixed(ticket->target, 3)},
                {"Weighed", Fixed(poured, 3)},
                {"Reformulated", taken->overpour.reformulated},
                {"Left", left}};
  });
}

Result<Json> DispenseStoredBatch(Context& context, std::int32_t batchNo, const DispenseChoice& choice) {
  auto record = ReadBatch(context.session, batchNo);
  if (!record) return RefuseUnknownBatch(context.session, batchNo);
  const auto file = Dispense(context.session, *record, choice);
  if (!file) return std::unexpected(file.error());
  return Json{{"File", file->string()}};
}

struct ListOptions {
  std::string formula;
  int recent = 0;
};

Result<Json> ListStoredBatches(Context& context, const ListOptions& options) {
  return context.Answer(options.recent > 0 ? ListRecentBatches(context.session, options.recent)
                                           : ListBatches(context.session, options.formula));
}

std::shared_ptr<std::int32_t> AddNumber(CLI::App& verb) {
  const auto number = std::make_shared<std::int32_t>(0);
  verb.add_option("NO", *number, "The Batch number")->required()->check(CLI::Range(1, 999999));
  return number;
}

void AddEditing(CLI::App& noun, Commands& commands) {
  auto* save = noun.add_subcommand("save", "Calculate a Batch and store it");
  const auto saved = std::make_shared<BatchInput>();
  AddCalcOptions(*save, *saved, true);
  AddSaveOptions(*save, *saved);
  commands.Add(save, Needs::Writable, [saved](Context& context) { return SaveNewBatch(context, *saved); });

  auto* edit = noun.add_subcommand("edit", "Change a stored Batch");
  const auto edited = AddNumber(*edit);
  const auto changes = std::make_shared<BatchInput>();
  AddCalcOptions(*edit, *changes, false);
  AddSaveOptions(*edit, *changes);
  commands.Add(edit, Needs::Writable,
               [edited, changes](Context& context) { return EditBatch(context, *edited, *changes); });

  auto* remove = noun.add_subcommand("delete", "Delete a stored Batch");
  const auto removed = AddNumber(*remove);
  commands.Add(remove, Needs::Writable, [removed](Context& context) { return DeleteStoredBatch(context, *removed); });

  auto* complete = noun.add_subcommand("complete", "Mark a stored Batch as Complete");
  const auto completed = AddNumber(*complete);
  const auto off = std::make_shared<bool>(false);
  complete->add_flag("--off", *off, "Take the mark away");
  commands.Add(complete, Needs::Writable,
               [completed, off](Context& context) { return MarkComplete(context, *completed, !*off); });
}

void AddBench(CLI::App& noun, Commands& commands) {
  auto* weigh = noun.add_subcommand("weigh", "Weigh a row of a stored Batch on the scale, and save it");
  const auto weighed = std::make_shared<WeighOptions>();
  weigh->add_option("NO", weighed->batchNo, "The Batch number")->required()->check(CLI::Range(1, 999999));
  weigh->add_option("ROW", weighed->row, "The row, from 1")->required()->check(CLI::Range(1, 100));
  weigh->add_option("--weight", weighed->weight, "What was poured, in the unit of the Batch; else the scale is read");
  weigh->add_option("--seconds", weighed->seconds, "How long to wait for a weight that stands still")
      ->check(CLI::Range(1, 3600));
  AddLotOption(*weigh, weighed->lots);
  commands.Add(weigh, Needs::Writable, [weighed](Context& context) { return WeighRow(context, *weighed); });

  auto* dispense = noun.add_subcommand("dispense", "Write the file of a stored Batch for a dispenser");
  const auto number = AddNumber(*dispense);
  const auto choice = std::make_shared<DispenseChoice>();
  dispense->add_option("DISPENSER", choice->dispenser, "The name of the dispenser")->required();
  dispense->add_flag("--additives", choice->additives, "Dispense Additives too");
  dispense->add_flag("--recycles", choice->recycles, "Dispense recycled ink too");
  commands.Add(dispense, Needs::File,
               [number, choice](Context& context) { return DispenseStoredBatch(context, *number, *choice); });
}

}  // namespace

void AddBatchCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "batch", "Batches: calc, save, show, list, edit, delete, complete, ticket, recycles, weigh, dispense, export");

  auto* calc = noun->add_subcommand("calc", "Calculate a Batch and store nothing");
  const auto input = std::make_shared<BatchInput>();
  AddCalcOptions(*calc, *input, true);
  commands.Add(calc, Needs::File, [input](Context& context) { return CalcBatch(context, *input); });

  auto* show = noun->add_subcommand("show", "A stored Batch");
  const auto shown = AddNumber(*show);
  commands.Add(show, Needs::File, [shown](Context& context) { return ShowBatch(context, *shown); });

  auto* list = noun->add_subcommand("list", "The stored Batches by number");
  const auto options = std::make_shared<ListOptions>();
  auto* formula = list->add_option("--formula", options->formula, "Only those of this Master Formula");
  list->add_option("--recent", options->recent, "Only so many, those entered last, newest first")
      ->check(CLI::PositiveNumber)
      ->excludes(formula);
  commands.AddList(list, Needs::File, "Batches",
                   [options](Context& context) { return ListStoredBatches(context, *options); });

  auto* ticket = noun->add_subcommand("ticket", "Print the ticket of a stored Batch");
  const auto printed = AddNumber(*ticket);
  commands.AddPrinting(ticket)->required();
  commands.Add(ticket, Needs::File, [printed](Context& context) { return PrintTicket(context, *printed); });

  auto* recycles = noun->add_subcommand(
      "recycles", "The colors that could be recycled into a Batch, less what the settings leave out");
  const auto into = std::make_shared<BatchInput>();
  AddCalcOptions(*recycles, *into, true);
  commands.AddPrinting(recycles);
  commands.Add(recycles, Needs::File, [into](Context& context) { return ListRecycles(context, *into); });

  AddEditing(*noun, commands);
  AddBench(*noun, commands);
  AddRecordExport(*noun, commands, "Batch Records", false);
}

}  // namespace vellumark::cli
