#include "core/labels/scan_return.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <vector>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/guides.h"
#include "core/datafile/stock_trail.h"
#include "core/inventory/lot_texts.h"
#include "core/inventory/lots.h"
#include "core/jobs/job_numbers.h"
#include "core/jobs/job_record.h"
#include "core/jobs/job_stock.h"
#include "core/labels/scan_inventory.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Scan";
constexpr std::string_view kUpdate = "Update information - Process Again.";

using Rows = std::vector<JobRecord>;

std::unexpected<Refusal> Fail(std::string text, std::string field) {
  return Refuse(std::string(kTitle), std::move(text), std::move(field));
}

std::string Given(const std::optional<std::string>& value) {
  return Trim(value.value_or(""));
}

std::string_view TypeName(ColorKind kind) {
  return kind == ColorKind::Mix ? "Formula" : "Basic";
}

// What the words of a message have in common.
struct Sought {
  std::string job;
  std::string color;
};

Result<Rows> RowsOfColor(const Session& session, const ScanRecord& record, const Sought& sought) {
  Rows rows = JobItems(session, sought.job);
  std::erase_if(rows, [&](const JobRecord& row) {
    const std::string stored = StoredName(session, row.Kind(), sought.color, row.Database);
    return !EqualNoCase(row.Color_Name, sought.color) && !EqualNoCase(row.Color_Name, stored);
  });
  const std::string code = Given(record.CC);
  if (!code.empty()) std::erase_if(rows, [&](const JobRecord& row) { return !EqualNoCase(row.Color_Code, code); });
  if (rows.empty()) return Fail(fmt::format("{} not found on Job Record: {}", sought.color, sought.job), "cmbCN");
  return rows;
}

Result<void> OfType(const ScanRecord& record, const Sought& sought, Rows& rows) {
  if (const std::string type = Given(record.CT); !type.empty()) {
    const ColorKind kind = type == "2" ? ColorKind::Mix : ColorKind::Basic;
    std::erase_if(rows, [&](const JobRecord& row) { return row.Kind() != kind; });
    if (rows.empty())
      return Fail(fmt::format("Color Type: {} doesn't match Color: {}", TypeName(kind), sought.color), "optCT");
    return {};
  }
  const bool mixed = std::ranges::any_of(rows, [&](const JobRecord& row) { return row.Kind() != rows.front().Kind(); });
  if (mixed)
    return Fail(
        fmt::format("Color: {} exists on Job: {} as a Formula and Basic.\nChoose a specific color type for this item.",
                    sought.color, sought.job),
        "optCT");
  return {};
}

Result<void> OfDatabase(const ScanRecord& record, const Sought& sought, Rows& rows) {
  if (const std::string database = Given(record.DB); !database.empty()) {
    std::erase_if(rows, [&](const JobRecord& row) { return !EqualNoCase(row.Database, database); });
    if (!rows.empty()) return {};
    return Fail(
        fmt::format("Color: {} on Job Number: {} is not found in database: {}", sought.color, sought.job, database),
        "cmbDB");
  }
  std::set<std::string> databases;
  for (const JobRecord& row : rows) databases.insert(row.Database);
  if (databases.size() == 1) return {};
  std::string text = fmt::format(
      "Color: {} is found in multiple databases on Job: {}\nDatabases: \nChoose a database from the "
      "following list.\n",
      sought.color, sought.job);
  for (const std::string& database : databases) text += "\n" + database;
  return Fail(std::move(text), "cmbDB");
}

std::unexpected<Refusal> SeveralOfLot(const Sought& sought, const Rows& rows) {
  std::string text =
      fmt::format("Multiple Lot Number usage for: {} on Job Number: {}\n\nJob Qty. Issued  Lot Location  Lot Cont ID",
                  sought.color, sought.job);
  for (const JobRecord& row : rows)
    text += fmt::format("\n{}  {}  {}", Fixed(row.QtyIssued, 3), row.LotLoc, row.LotContID);
  return Fail(text + "\n\n" + std::string(kUpdate), "txtScanLC");
}

std::unexpected<Refusal> SeveralTimes(const Sought& sought, const Rows& rows) {
  std::string text = fmt::format(
      "{} is recorded on Job Number: {} {} times.\nUse the data below to update information - Process "
      "Again.\n\nDatabase  Color Type  Lot Number",
      sought.color, sought.job, rows.size());
  for (const JobRecord& row : rows)
    text += fmt::format("\n{}  {}  {}", row.Database, TypeName(row.Kind()),
                        row.LotRefID == 0 ? std::string(kUnlottedInv) : row.LotNumber);
  return Fail(std::move(text), "txtScanLN");
}

Result<JobRecord> OfLot(const ScanRecord& record, const Sought& sought, Rows& rows) {
  const std::string lot = Given(record.LN);
  const bool unlotted = EqualNoCase(lot, kUnlottedInv) || (lot.empty() && record.LR == 0);
  if (unlotted) {
    std::erase_if(rows, [](const JobRecord& row) { return row.LotRefID != 0; });
    if (rows.empty())
      return Fail(
          fmt::format("No UnLotted Inventory reference for Color: {} on Job Number: {}", sought.color, sought.job),
          "txtScanLN");
  } else if (!lot.empty() || record.LR) {
    std::erase_if(rows, [&](const JobRecord& row) {
      return (record.LR && row.LotRefID != *record.LR) || (!lot.empty() && !SameLotText(row.LotNumber, lot));
    });
    if (rows.empty())
      return Fail(fmt::format("Lot Number: {} for Color: {} is not found on Job Number: {}",
                              lot.empty() ? std::to_string(*record.LR) : lot, sought.color, sought.job),
                  "txtScanLN");
    if (rows.size() > 1 && record.LC) {
      Rows contained = rows;
      std::erase_if(contained, [&](const JobRecord& row) { return !SameLotText(row.LotContID, *record.LC); });
      if (contained.size() == 1) rows = contained;
    }
    if (rows.size() > 1) return SeveralOfLot(sought, rows);
  }
  if (rows.size() > 1) return SeveralTimes(sought, rows);
  return rows.front();
}

Sought SoughtBy(const ScanRecord& record) {
  Sought sought{.job = ReadJobNumber(Given(record.JN)), .color = Given(record.CN)};
  for (std::size_t at = 0; (at = sought.color.find("®")) != std::string::npos;)
    sought.color.erase(at, std::string_view("®").size());
  sought.color = Trim(sought.color);
  return sought;
}

Result<JobRecord> FindRow(const Session& session, const ScanRecord& record) {
  const Sought sought = SoughtBy(record);
  if (sought.job.empty())
    return Fail(fmt::format("Job Number data is missing, can't process.\n\n{}", kUpdate), "cmbJN");
  if (!JobIsThere(session, sought.job))
    return Fail(fmt::format("Job Number: {} is not found in this Vellumark database.", sought.job), "cmbJN");
  if (sought.color.empty()) return Fail(fmt::format("Color data is missing for Job: {}", sought.job), "cmbCN");
  auto rows = RowsOfColor(session, record, sought);
  if (!rows) return std::unexpected(rows.error());
  if (record.jobRow) {
    const auto picked = std::ranges::find(*rows, *record.jobRow, &JobRecord::row);
    if (picked != rows->end()) return *picked;
    return Fail(fmt::format("The item that was picked is no longer on Job Number: {}", sought.job), "LotNum_ScanSel");
  }
  if (auto typed = OfType(record, sought, *rows); !typed) return std::unexpected(typed.error());
  if (auto housed = OfDatabase(record, sought, *rows); !housed) return std::unexpected(housed.error());
  return OfLot(record, sought, *rows);
}

}  // namespace

std::vector<JobRecord> RowsToPick(const Session& session, const ScanRecord& record) {
  ScanRecord any = record;
  any.CC.reset();
  const Sought sought = SoughtBy(any);
  if (sought.job.empty() || sought.color.empty()) return {};
  auto rows = RowsOfColor(session, any, sought);
  return rows ? *std::move(rows) : Rows();
}

Result<JobRecord> CheckScannedReturn(const Session& session, const ScanRecord& record,
                                     const std::map<std::int64_t, double>& taken) {
  auto row = FindRow(session, record);
  if (!row) return row;
  const auto before = taken.find(row->row);
  const double out = double{row->QtyUsed} - (before == taken.end() ? 0 : before->second);
  if (!record.Qty || *record.Qty <= 0)
    return Fail(fmt::format("A quantity above 0 is required for Color: {}\n\n{}", row->Color_Name, kUpdate), "txtQty");
  if (RoundTo(*record.Qty, 3) > RoundTo(out, 3))
    return Fail(
        fmt::format("Quantity returned to the Job Number: {} was larger than issued.\nJob Qty Issued: {}\nStill out: "
                    "{}\nJob Qty Returned: {}\nRevise the Quantity - Process Again.",
                    row->JobNumber, Fixed(row->QtyIssued, 3), Fixed(out, 3), Fixed(*record.Qty, 3)),
        "txtQty");
  for (const auto& [text, field] : {std::pair{&record.LL, "txtScanLL"}, {&record.LC, "txtScanLC"}})
    if (auto fits = CheckLotText(text->value_or(""), field); !fits)
      return Fail(fmt::format("{}\n\n{}", fits.error().text, kUpdate), field);
  return row;
}

namespace {

Result<std::string> Return(Session& session, ScanRecord& record) {
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  const auto row = CheckScannedReturn(session, record);
  if (!row) return std::unexpected(row.error());
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::ScanReturn,
                fmt::format("Scan {} of {} back from Job {}", Fixed(*record.Qty, 3), row->Color_Name, row->JobNumber));
  const auto left =
      ReturnFromJob(session, {.row = row->row, .quantity = *record.Qty, .LotLoc = record.LL, .LotContID = record.LC});
  if (!left) return std::unexpected(left.error());
  record.Line = LastStockLine(session.File());
  step.Keep();
  transaction.Commit();
  record.CN = row->Color_Name;
  record.DB = row->Database;
  record.CT = row->Kind() == ColorKind::Mix ? "2" : "1";
  if (Given(record.CC).empty() && !row->Color_Code.empty()) record.CC = row->Color_Code;
  return fmt::format("Job Number: {}  updated successfully.", row->JobNumber);
}

}  // namespace

void ReturnScannedInk(Session& session, ScanRecord& record) {
  if (record.state == ScanRecord::State::Successful) return;
  Conclude(record, Return(session, record));
}

void BookScan(Session& session, ScanRecord& record) {
  try {
    record.JN ? ReturnScannedInk(session, record) : AddScannedStock(session, record);
  } catch (const BadValue& bad) {
    // Of this record alone: those before it stay booked, and those after it are still to be.
    Conclude(record, Fail(fmt::format("{}\n\n{}", bad.what(), kUpdate), ""));
  }
}

}  // namespace vellumark
