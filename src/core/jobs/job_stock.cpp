#include "core/jobs/job_stock.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/amounts.h"
#include "core/datafile/stock_trail.h"
#include "core/inventory/taking_back.h"
#include "core/jobs/job_records.h"
#include "core/jobs/job_renames.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr const char* kUsage = "Usage Notice";
constexpr const char* kUndo = "Job Booking";

std::string ZeroText(bool ofBatch) {
  return std::string(
             "Cannot set the Qty Used to zero.\n"
             "To clear this Job Item, click on this item's Batch/Item Number\n") +
         (ofBatch ? "to go to the Batch Record, then clear the Batch's Job Number field."
                  : "and click the Delete Item button.");
}

// What a Batch has made, in the inventory unit; nothing when it is gone.
std::optional<double> MadeBy(const Session& session, const JobRecord& record) {
  Statement batch = session.File().Prepare(
      fmt::format("SELECT ActualQuantity, UMF FROM {} WHERE BatchNo = ?1 ORDER BY RowKey LIMIT 1",
                  Quoted(session.Table(schema::Batch, record.Database))));
  if (!batch.Bind(1, record.BatchNo).Step()) return std::nullopt;
  const auto stored = static_cast<int>(batch.Whole(1));
  const int unit = stored == 0 ? session.UMF : stored;
  const double made = RoundTo(batch.Single(0), 3);
  return RoundTo(unit == session.UMI ? made : made * static_cast<double>(UnitFactor(unit, session.UMI)), 3);
}

double UsedByOthers(const Session& session, const JobRecord& record) {
  return RoundTo(session.File()
                     .Scalar("SELECT SUM(QtyUsed) FROM JobRecords WHERE BatchNo = ? AND Database = ? AND RowKey <> ?",
                             {record.BatchNo, record.Database, record.row})
                     .Number(),
                 3);
}

bool LiesUnlotted(const Session& session, const JobRecord& record) {
  return record.Place().IsUnlotted() || (session.InvLotTracking == 0 && !record.IsOfBatch());
}

constexpr std::string_view kUsed = ": Qty Used ";
constexpr std::string_view kIssued = ", Qty Issued ";
constexpr std::string_view kTo = " to ";

// "Item 1000007: Qty Used 5.000 to 7.500, Qty Issued 6.000 to 7.500", the latter where the booking raises it.
std::string UsedReason(const JobRecord& record, float before, float after) {
  std::string reason = fmt::format("Item {}{}{}{}{}", record.ItemText(), kUsed, Fixed(before, 3), kTo, Fixed(after, 3));
  if (after > record.QtyIssued)
    reason += fmt::format("{}{}{}{}", kIssued, Fixed(record.QtyIssued, 3), kTo, Fixed(after, 3));
  return reason;
}

struct Booking {
  float used = 0;
  std::string note{};    // behind what the history is told
  bool moveLot = false;  // the lot takes the row's location and container
  bool isReturn = true;  // what comes back is dated; what was never issued is not
};

Result<PostingResult> Move(Session& session, const JobRecord& record, float before, const Booking& booking) {
  const float after = booking.used;
  Posting posting{.source = PostingSource::JobRecord,
                  .kind = record.Kind(),
                  .name = record.Color_Name,
                  .database = record.Database,
                  .quantity = RoundSingle(RoundTo(before, 3) - RoundTo(after, 3), 3),
                  .place = record.Place(),
                  .document = record.JobNumber,
                  .reason = UsedReason(record, before, after) + booking.note,
                  .moveLot = booking.moveLot,
                  .knownLot = record.IsOfBatch()};
  const PostingResult posted = PostStock(session, posting);
  using enum PostingResult::Outcome;
  switch (posted.outcome) {
    case Posted:
    case LotAdded:
    case LotDeleted:
      return posted;
    case NoDatabase:
    case NoColor:
      return Refuse("Color Not Found",
                    fmt::format("{} is no longer in the {} database.", record.Color_Name, record.Database),
                    "Color_Name");
    case NoLot:
    case BadReference:
      return Refuse("Lot Not Found", fmt::format("The lot {} of {} is not there.", record.LotNumber, record.Color_Name),
                    "LotNumber");
    case Consigned:
      return Refuse("Lot on Consignment",
                    fmt::format("The lot {} of {} is held on consignment.", record.LotNumber, record.Color_Name),
                    "LotNumber");
    case NoLotReference:
      break;
  }
  return Refuse(std::string(25, ' ') + "Max Lot Number Usage",
                "Unable to add lotted inventory references.\nMaximum lot number usage exceeded.\n\n"
                "Delete un-needed lot number references.",
                "LotNumber");
}

// What came back lies where the posting put it: the rows that share the place and their Batch hear of it.
void FollowPlace(Session& session, JobRecord& record, const PostingResult& posted) {
  if (!record.IsOfBatch()) {
    if (posted.LotRefID > 0) record.LotRefID = posted.LotRefID;
    return;
  }
  const std::string batches = Quoted(session.Table(schema::Batch, record.Database));
  const Value ref = session.File().Scalar(
      fmt::format("SELECT LotRefID FROM {} WHERE BatchNo = ? ORDER BY RowKey LIMIT 1", batches), {record.BatchNo});
  const bool nothingReturned = ref.Whole() == -1 && posted.quantity > 0;
  const bool moved = posted.LotRefID > 0 && posted.LotRefID != record.LotRefID;
  if (!ref.IsNull() && (nothingReturned || moved))
    StoreBatchLot(session.File(), record.Database, record.BatchNo, posted.LotRefID);
  if (moved) record.LotRefID = posted.LotRefID;
}

Result<void> BookUsed(Session& session, JobRecord& record, const Booking& booking) {
  const float used = booking.used;
  if (auto closed = RequireBatchClosed(session, record); !closed) return closed;
  if (used == record.QtyUsed) return {};
  const auto posted = Move(session, record, record.QtyUsed, booking);
  if (!posted) return std::unexpected(posted.error());
  if (used < record.QtyUsed) {
    if (booking.isReturn) record.Date_Returned = session.clock.Today();
    FollowPlace(session, record, *posted);
  }
  record.QtyUsed = used;
  record.QtyIssued = std::max(record.QtyIssued, used);
  if (used > 0) {
    StoreJobRecord(session, record);
  } else {
    DeleteJobRecord(session, record);
  }
  return {};
}

Result<void> CheckCeiling(const JobRecord& record, const JobCeiling& ceiling, float used, bool insists) {
  if (used <= ceiling.most) return {};
  if (ceiling.ofBatch)
    return Refuse(
        kUsage,
        fmt::format("Qty Used cannot be set higher than {} for this Batch/Item Number.", Fixed(ceiling.most, 3)),
        "QtyUsed");
  if (ceiling.lot)
    return Refuse(
        "Exceeds Lotted",
        fmt::format("Qty Used cannot be set higher than {}\nLot Number {}", Fixed(ceiling.most, 3), record.LotNumber),
        "QtyUsed");
  return insists ? Result<void>{} : Result<void>(Decline("Exceeds UnLotted", "QtyUsed"));
}

Result<JobRecord> RowOf(const Session& session, std::int64_t row) {
  auto record = ReadJobRecord(session, row);
  if (!record) return Refuse("Job Item Not Found", "This item is no longer on a Job.", "BatchNo");
  return *std::move(record);
}

Result<float> ReadUsed(std::string_view typed, bool ofBatch) {
  const auto amount = ParseNumber(typed);
  if (!amount || *amount < 0 || RoundTo(*amount, 3) > kLargestAmount)
    return Refuse(kUsage, fmt::format("You must enter an amount between 0 and {}.", kLargestAmount), "QtyUsed");
  const float used = RoundSingle(*amount, 3);
  if (!(used > 0)) return Refuse(kUsage, ZeroText(ofBatch), "QtyUsed");
  return used;
}

// A line of the history that tells of a row.
struct BookedLine {
  std::int64_t row = 0;
  float before = 0;
  float after = 0;
  float raised = 0;  // what it added to the quantity issued

  bool IsIssue() const { return after > before; }
};

// The two figures behind a word of the reason.
std::optional<std::pair<float, float>> FiguresBehind(std::string_view reason, std::string_view word) {
  const std::size_t begin = reason.find(word);
  if (begin == std::string_view::npos) return std::nullopt;
  const std::string_view figures = reason.substr(begin + word.size());
  const std::size_t to = figures.find(kTo);
  if (to == std::string_view::npos) return std::nullopt;
  return std::pair{static_cast<float>(LeadingNumber(figures)),
                   static_cast<float>(LeadingNumber(figures.substr(to + kTo.size())))};
}

std::unexpected<Refusal> NotUndone(std::int64_t line, std::string_view why) {
  return NotTakenBack(kUndo, line, why);
}

// A return that left nothing on the row took it off its Job: it stands there again, with nothing used.
Result<BookedLine> BookingOf(Session& session, std::int64_t id) {
  const auto line = ReadStockLine(session.File(), id);
  if (!line) return NotUndone(id, "does not exist");
  if (line->event != StockEvent::JobRecord) return NotUndone(id, "is no booking of a Job");
  const auto used = FiguresBehind(line->reason, kUsed);
  if (!line->reason.starts_with("Item ") || !used) return NotUndone(id, "does not tell which item it was");
  if (WasTakenBack(session, id)) return NotUndone(id, "was taken back already");
  const std::int32_t item = LeadingInteger(line->reason.substr(5));
  BookedLine booked{.before = used->first, .after = used->second};
  if (const auto issued = FiguresBehind(line->reason, kIssued)) {
    booked.raised = RoundSingle(RoundTo(issued->second, 3) - RoundTo(issued->first, 3), 3);
  } else if (booked.before == 0) {
    booked.raised = booked.after;  // the item came with it
  }
  // A Batch may be of several Jobs.
  const bool ofBatch = item <= kLastJobBatch;
  ForEachJobRecord(session, ofBatch ? "BatchNo = ?1 AND JobNumber = ?2 AND Database = ?3" : "BatchNo = ?1",
                   ofBatch ? std::vector<Value>{item, JobRenames(session.File()).Now(line->document, id),
                                                NamesNow(session.File(), *line).database}
                           : std::vector<Value>{item},
                   "", [&](const JobRecord& record) {
                     booked.row = record.row;
                     return false;
                   });
  if (booked.row == 0) booked.row = PutBackJobRecord(session, id);
  if (booked.row == 0) return NotUndone(id, "is of an item that is no longer on a Job");
  return booked;
}

}  // namespace

float StandsInPlace(const Session& session, const JobRecord& record) {
  if (session.FindDatabase(record.Database) == nullptr) return 0;
  if (LiesUnlotted(session, record))
    return std::max(0.0F, UnlottedQty(session, record.Kind(), record.Color_Name, record.Database));
  const auto lot = FindLot(session, record.Kind(), record.Color_Name, record.Database, record.Place());
  return lot && !lot->LotConsignment ? std::max(0.0F, RoundSingle(lot->LotQty, 3)) : 0;
}

JobCeiling CeilingOf(const Session& session, const JobRecord& record) {
  const double held = RoundTo(record.QtyUsed, 3);
  const double there = held + RoundTo(StandsInPlace(session, record), 3);
  JobCeiling ceiling{RoundSingle(there, 3), !LiesUnlotted(session, record), record.IsOfBatch()};
  if (!record.IsOfBatch()) return ceiling;
  const auto made = session.FindDatabase(record.Database) == nullptr ? std::nullopt : MadeBy(session, record);
  const double left = made ? *made - UsedByOthers(session, record) : held;
  ceiling.most = std::max(0.0F, RoundSingle(std::min(left, there), 3));
  return ceiling;
}

bool AskForMore(Session& session) {
  return session.prompt.Show({"Exceeds UnLotted",
                              "Amount entered is larger than inventory on file.\n\n"
                              "OK - Use ammount\n"
                              "Cancel - Correct amount.",
                              Buttons::OkCancel, Icon::Question, Answer::Cancel}) == Answer::Ok;
}

Result<void> RequireStock(const Session& session, const JobRecord& record, float there, bool insists) {
  return CheckCeiling(record, {there, !LiesUnlotted(session, record), false}, record.QtyUsed, insists);
}

Result<void> SetQtyUsed(Session& session, std::int64_t row, std::string_view typed) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  const auto shown = RowOf(session, row);
  if (!shown) return std::unexpected(shown.error());
  const auto used = ReadUsed(typed, shown->IsOfBatch());
  if (!used) return std::unexpected(used.error());
  const JobCeiling before = CeilingOf(session, *shown);
  const bool asks = *used > before.most && *used > shown->QtyUsed && !before.lot && !before.ofBatch;
  if (asks && !AskForMore(session)) return Decline("Exceeds UnLotted", "QtyUsed");
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::SetQtyUsed,
                fmt::format("Quantity used of {} on Job {}", shown->Color_Name, shown->JobNumber));
  auto record = RowOf(session, row);
  if (!record) return std::unexpected(record.error());
  // What is used already is there: less of it needs no stock.
  if (*used > record->QtyUsed)
    if (auto fits = CheckCeiling(*record, CeilingOf(session, *record), *used, asks); !fits) return fits;
  if (auto booked = BookUsed(session, *record, {*used}); !booked) return booked;
  step.Keep();
  transaction.Commit();
  return {};
}

Result<float> ReturnFromJob(Session& session, const JobReturn& back) {
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  const float quantity = RoundSingle(back.quantity, 3);
  Transaction transaction(session.File());
  auto record = RowOf(session, back.row);
  if (!record) return std::unexpected(record.error());
  if (!(quantity > 0)) return Refuse(kUsage, "The quantity that returns must be above 0.", "Qty");
  if (quantity > record->QtyUsed)
    return Refuse(kUsage,
                  fmt::format("Quantity returned to the Job Number: {} was larger than issued.\nJob Qty Issued: {}\n"
                              "Job Qty Returned: {}\n\nRevise the Quantity - Process Again.",
                              record->JobNumber, Fixed(record->QtyUsed, 3), Fixed(quantity, 3)),
                  "Qty");
  const float left = RoundSingle(RoundTo(record->QtyUsed, 3) - RoundTo(quantity, 3), 3);
  if (back.LotLoc) record->LotLoc = *back.LotLoc;
  if (back.LotContID) record->LotContID = *back.LotContID;
  const JobRecord before = *record;
  if (auto booked = BookUsed(session, *record, {left, {}, back.LotLoc || back.LotContID}); !booked)
    return std::unexpected(booked.error());
  if (left == 0) KeepReturned(session, before, LastStockLine(session.File()));
  transaction.Commit();
  return left;
}

Result<void> IssueFromStock(Session& session, JobRecord& record) {
  const auto posted = Move(session, record, 0, {record.QtyUsed});
  if (!posted) return std::unexpected(posted.error());
  return {};
}

Result<void> UndoJobBooking(Session& session, std::int64_t line) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  Transaction transaction(session.File());
  const auto booked = BookingOf(session, line);
  if (!booked) return std::unexpected(booked.error());
  auto record = RowOf(session, booked->row);
  if (!record) return std::unexpected(record.error());
  const float used =
      RoundSingle(RoundTo(record->QtyUsed, 3) - RoundTo(booked->after, 3) + RoundTo(booked->before, 3), 3);
  if (used < 0 || (used == 0 && record->IsOfBatch()))
    return Refuse(kUndo, fmt::format("The item {} has no more than {} left to take back.", record->ItemText(),
                                     Fixed(record->QtyUsed, 3)));
  if (used > record->QtyUsed)
    if (auto fits = CheckCeiling(*record, CeilingOf(session, *record), used, false); !fits) {
      if (!fits.error().declined) return fits;
      return Refuse(kUndo, "Inventory no longer has what the item would take.", "QtyUsed");
    }
  const Booking undoing{.used = used, .note = TakesBack(line), .isReturn = !booked->IsIssue()};
  record->QtyIssued = std::max(used, RoundSingle(RoundTo(record->QtyIssued, 3) - RoundTo(booked->raised, 3), 3));
  if (auto undone = BookUsed(session, *record, undoing); !undone) return undone;
  transaction.Commit();
  return {};
}

Result<void> DeleteJobItem(Session& session, std::int64_t row) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  const auto shown = RowOf(session, row);
  if (!shown) return std::unexpected(shown.error());
  if (shown->IsOfBatch())
    return Refuse(kUsage,
                  "To clear this Job Item, click on this item's Batch/Item Number\n"
                  "to go to the Batch Record, then clear the Batch's Job Number field.",
                  "BatchNo");
  const bool returns = session.prompt.Ask("Ink Inventory", "Return Quantity Used back to inventory?");
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::DeleteJobItem,
                fmt::format("Delete {} of Job {}", shown->Color_Name, shown->JobNumber));
  auto record = RowOf(session, row);
  if (!record) return std::unexpected(record.error());
  if (returns && record->QtyUsed > 0) {
    if (auto booked = BookUsed(session, *record, {0}); !booked) return booked;
  } else {
    DeleteJobRecord(session, *record);
  }
  step.Keep();
  transaction.Commit();
  return {};
}

}  // namespace vellumark
