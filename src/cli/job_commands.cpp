#include <fmt/format.h>

#include <memory>

#include "cli/color_fields.h"
#include "cli/frame.h"
#include "cli/record_export.h"
#include "cli/stock_text.h"
#include "core/base/number.h"
#include "core/jobs/job_changes.h"
#include "core/jobs/job_items.h"
#include "core/jobs/job_numbers.h"
#include "core/jobs/job_options.h"
#include "core/jobs/job_stock.h"
#include "core/jobs/job_tables.h"
#include "core/labels/job_returns.h"
#include "core/session/rights.h"

namespace vellumark::cli {
namespace {

Result<DateTime> ReadDay(const std::string& typed, const std::string& field) {
  const auto date = ParseDateTime(typed);
  if (!date) return Refuse("Invalid Date", "Please enter a valid date.", field);
  return *date;
}

Json JobJson(const Session& session, const Job& job) {
  const auto shown = [](double amount, int decimals) { return Json::parse(Fixed(amount, decimals)); };
  return Json{{"JobNumber", job.JobNumber},
              {"Items", RowsJson(JobRowColumns(session).Of(job.items))},
              {"TotalQtyUsed", shown(job.totals.QtyUsed, 3)},
              {"TotalCost", SeenBy(session).prices ? shown(job.totals.Cost, session.DecimalPlaces) : Json()},
              {"TotalVOCs", shown(job.totals.VOC, 3)},
              {"TotalHAPs", shown(job.totals.HAP, 3)},
              {"Date_Completed", DateJson(job.Date_Completed)}};
}

Result<Json> AnswerJob(Context& context, std::string_view number) {
  const Session& session = context.session;
  const Job job = LoadJob(session, number);
  if (!context.json) {
    context.text = fmt::format("Job {}{}\n", job.JobNumber,
                               job.Date_Completed ? ", completed " + job.Date_Completed->DateText() : std::string());
    if (!job.items.empty()) context.text += TableText(*JobSheet(session, job).blocks.back().table);
  }
  return JobJson(session, job);
}

Result<Json> ShowJob(Context& context, const std::string& typed) {
  const Job job = LoadJob(context.session, ReadJobNumber(typed));
  if (job.items.empty()) return std::unexpected(JobNotFound(job.JobNumber));
  if (context.prints) {
    context.sheet = JobSheet(context.session, job);
    return Json();
  }
  return AnswerJob(context, job.JobNumber);
}

struct AddOptions {
  std::string job;
  std::string name;
  std::string quantity;
  std::string lot;
  std::int32_t ref = 0;
  std::string kind;
  std::string design;
  std::vector<std::string> fields;
};

// UD_Text0=... and UD_Numeric0=...
Result<void> TakeUserFields(const Session& session, const std::vector<std::string>& pairs, JobItemEntry& entry) {
  for (const std::string& text : pairs) {
    const auto pair = SplitPair(text);
    const int number = pair && !pair->first.empty() ? pair->first.back() - '0' : -1;
    const bool known = number >= 0 && number < kJobUserFields;
    if (known && pair->first == schema::Numbered("UD_Text", number)) {
      entry.UD_Text.at(static_cast<std::size_t>(number)) = pair->second;
    } else if (known && pair->first == schema::Numbered("UD_Numeric", number)) {
      const auto value = ReadJobNumeric(session, number, pair->second);
      if (!value) return std::unexpected(value.error());
      entry.UD_Numeric.at(static_cast<std::size_t>(number)) = *value;
    } else {
      return Refuse("Add Job Item", fmt::format("{}: use UD_Text0 to UD_Text5 and UD_Numeric0 to UD_Numeric5.", text));
    }
  }
  return {};
}

Result<Json> AddItem(Context& context, const AddOptions& options) {
  Session& session = context.session;
  const auto name = TypedColor(session, KindOf(options.kind), options.name);
  if (!name) return std::unexpected(name.error());
  const auto kind = ChooseJobColor(session, {}, *name, KindOf(options.kind));
  if (!kind) return std::unexpected(kind.error());
  const auto quantity = ReadTakeQty(options.quantity);
  if (!quantity) return std::unexpected(quantity.error());
  JobItemEntry entry = NewJobItem(session);
  entry.JobNumber = options.job;
  entry.DesignID = options.design;
  entry.Color_Name = *name;
  entry.kind = *kind;
  entry.takes = {{options.ref, options.lot, *quantity}};
  if (auto taken = TakeUserFields(session, options.fields, entry); !taken) return std::unexpected(taken.error());
  const auto added = AddJobItems(session, entry);
  if (!added) return std::unexpected(added.error());
  return AnswerJob(context, added->front().JobNumber);
}

struct ItemOptions {
  std::string job;
  std::int32_t batchNo = 0;
  std::string quantity;
};

std::shared_ptr<ItemOptions> AddItemOptions(CLI::App* verb) {
  const auto options = std::make_shared<ItemOptions>();
  verb->add_option("NO", options->job, "The Job Number")->required()->check(NotEmpty);
  verb->add_option("BATCHNO", options->batchNo, "The Batch number, or the item's above 1000000")
      ->required()
      ->check(CLI::Range(1, 1'999'999));
  return options;
}

// The item of the Job; of a Batch number that several Databases have, the one of the current Database.
Result<JobRecord> ItemOf(const Session& session, const ItemOptions& options) {
  const std::string job = ReadJobNumber(options.job);
  auto item = FindJobItem(session, job, options.batchNo, session.CurrentDatabase);
  return item ? item : FindJobItem(session, job, options.batchNo);
}

Result<Json> SetUsed(Context& context, const ItemOptions& options) {
  const auto item = ItemOf(context.session, options);
  if (!item) return std::unexpected(item.error());
  if (auto set = SetQtyUsed(context.session, item->row, options.quantity); !set) return std::unexpected(set.error());
  return AnswerJob(context, item->JobNumber);
}

Result<Json> DeleteItem(Context& context, const ItemOptions& options) {
  const auto item = ItemOf(context.session, options);
  if (!item) return std::unexpected(item.error());
  if (auto gone = DeleteJobItem(context.session, item->row); !gone) return std::unexpected(gone.error());
  return AnswerJob(context, item->JobNumber);
}

Result<Json> CreateJob(Context& context, const std::string& typed) {
  const auto number = CheckNewJobNumber(context.session, typed);
  if (!number) return std::unexpected(number.error());
  return AnswerJob(context, *number);
}

Result<Json> Rename(Context& context, const RenameNames& names) {
  if (auto done = RenameJob(context.session, names.oldName, names.newName); !done) return std::unexpected(done.error());
  return Json{{"JobNumber", ReadJobNumber(names.newName)}};
}

Result<Json> Close(Context& context, const std::string& job, const std::string& day) {
  Session& session = context.session;
  const auto date = day.empty() ? Result<DateTime>(session.clock.Today()) : ReadDay(day, "Date_Completed");
  if (!date) return std::unexpected(date.error());
  if (auto closed = JobClosingDate(session, job, *date); !closed) return std::unexpected(closed.error());
  return AnswerJob(context, ReadJobNumber(job));
}

void AddItems(CLI::App& noun, Commands& commands) {
  auto* add = noun.add_subcommand("add-item", "Take a colour from stock for a Job, in the Database of --db");
  const auto added = std::make_shared<AddOptions>();
  add->add_option("NO", added->job, "The Job Number; a new one begins a Job")->required()->check(NotEmpty);
  add->add_option("NAME", added->name, "The Basic Color or formula")->required();
  add->add_option("QTY", added->quantity, "In the inventory unit")->required();
  add->add_option("--lot", added->lot, "Lot number; Unlotted Inventory without it")->check(NotEmpty);
  add->add_option("--ref", added->ref, "LotRefID, where several lots bear the number")->check(CLI::Range(1, 999'998));
  AddKindOption(add, added->kind);
  add->add_option("--design", added->design, "The Design ID")->check(NotEmpty);
  add->add_option("FIELD=VALUE", added->fields, "UD_Text0 to 5, UD_Numeric0 to 5");
  commands.Add(add, Needs::Writable, [added](Context& context) { return AddItem(context, *added); });

  auto* set = noun.add_subcommand("set-used", "Set what a Job really used of an item; the rest is stock again");
  const auto used = AddItemOptions(set);
  set->add_option("QTY", used->quantity, "In the inventory unit")->required();
  commands.Add(set, Needs::Writable, [used](Context& context) { return SetUsed(context, *used); });

  auto* remove = noun.add_subcommand("delete-item", "Take an item from stock off a Job");
  const auto removed = AddItemOptions(remove);
  commands.Add(remove, Needs::Writable, [removed](Context& context) { return DeleteItem(context, *removed); });

  auto* undo = noun.add_subcommand("undo", "Take a booking of a Job back by its line of the stock history");
  const auto line = std::make_shared<std::int64_t>(0);
  undo->add_option("LINE", *line, "The ID of the line")->required()->check(CLI::PositiveNumber);
  commands.Add(undo, Needs::Writable, [line](Context& context) -> Result<Json> {
    if (auto undone = UndoJobBooking(context.session, *line); !undone) return std::unexpected(undone.error());
    return Json{{"Line", *line}, {"Undone", true}};
  });
}

}  // namespace

void AddJobCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "job", "Jobs: what they took from stock, used and gave back");
  commands.AddList(noun->add_subcommand("list", "The Jobs"), Needs::File, "Jobs",
                   [](Context& context) { return context.Answer(ListJobs(context.session)); });
  commands.AddList(noun->add_subcommand("out", "What open Jobs still have out, the oldest first"), Needs::File,
                   "Out on Jobs", [](Context& context) { return context.Answer(ListJobsOut(context.session)); });
  const auto number = [](CLI::App* verb) {
    const auto no = std::make_shared<std::string>();
    verb->add_option("NO", *no, "The Job Number")->required()->check(NotEmpty);
    return no;
  };

  auto* show = noun->add_subcommand("show", "A Job with its items and what they come to; its cost sheet with --out");
  const auto shown = number(show);
  commands.AddPrinting(show);
  commands.Add(show, Needs::File, [shown](Context& context) { return ShowJob(context, *shown); });

  auto* returns = noun->add_subcommand("returns", "What a Job has out as bar codes, to be scanned as it comes back");
  const auto returned = number(returns);
  commands.AddPrinting(returns);
  commands.Add(returns, Needs::File, [returned](Context& context) -> Result<Json> {
    auto sheet = JobReturnsSheet(context.session, *returned);
    if (!sheet) return std::unexpected(sheet.error());
    context.sheet = *std::move(sheet);
    return Json();
  });

  auto* create = noun->add_subcommand("create", "Check that a Job Number is free; the Job begins with its first item");
  const auto created = number(create);
  commands.Add(create, Needs::Writable, [created](Context& context) { return CreateJob(context, *created); });

  AddItems(*noun, commands);

  auto* rename = noun->add_subcommand("rename", "Give a Job another number, on its Batches too");
  const auto names = AddRenameNames(rename, "The new Job Number");
  commands.Add(rename, Needs::Writable, [names](Context& context) { return Rename(context, *names); });

  auto* close = noun->add_subcommand("close", "Close a Job, today or on a day");
  const auto closed = number(close);
  const auto day = std::make_shared<std::string>();
  close->add_option("--date", *day, "YYYY-MM-DD")->check(NotEmpty);
  commands.Add(close, Needs::Writable, [closed, day](Context& context) { return Close(context, *closed, *day); });

  auto* reopen = noun->add_subcommand("reopen", "Take the date of completion off a Job");
  const auto reopened = number(reopen);
  commands.Add(reopen, Needs::Writable, [reopened](Context& context) -> Result<Json> {
    if (auto done = ReopenJob(context.session, *reopened); !done) return std::unexpected(done.error());
    return AnswerJob(context, ReadJobNumber(*reopened));
  });

  AddRecordExport(*noun, commands, "Job Records", true);
}

}  // namespace vellumark::cli
