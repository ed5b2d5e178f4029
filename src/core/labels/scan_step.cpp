#include "core/labels/scan_step.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/guides.h"
#include "core/colors/names.h"
#include "core/inventory/lots.h"
#include "core/labels/scan_inventory.h"
#include "core/labels/scan_return.h"

namespace vellumark {
namespace {

constexpr const char* kTransaction = "Update Inventory Transaction";

Result<void> WhileFree(bool busy, const char* title, const char* text) {
  return busy ? Result<void>(Refuse(title, text)) : Result<void>{};
}

ScanChoice ChoiceOfLot(const Session& session, const LotRow& lot) {
  return {fmt::format("{}  {}  {}  {} {}", lot.LotNumber, lot.LotLoc, lot.LotContID, Fixed(lot.LotQty, 3),
                      UnitName(session.UMI)),
          std::nullopt,
          lot.LotRefID,
          lot.LotNumber,
          lot.LotLoc,
          lot.LotContID};
}

ScanChoice ChoiceOfItem(const Session& session, const JobRecord& item) {
  const std::string lot = item.LotRefID == 0 ? std::string(kUnlottedInv) : item.LotNumber;
  return {fmt::format("{}  {}  {}  {}  {} {} out", item.ItemText(), item.Database, lot, item.LotContID,
                      Fixed(item.QtyUsed, 3), UnitName(session.UMI)),
          item.row,
          item.LotRefID,
          lot,
          item.LotLoc,
          item.LotContID};
}

// Of a name that is both, the formula's lots only when the record says so.
std::vector<LotRow> LotsOfScan(const Session& session, const ScanRecord& record) {
  const std::string database = record.DB.value_or("");
  if (session.InvLotTracking != 1 || !record.CN || session.FindDatabase(database) == nullptr) return {};
  for (const ColorKind kind : KindsOf(record)) {
    const std::string name = StoredName(session, kind, *record.CN, database);
    if (ColorIsThere(session, kind, name, database)) return LotsOf(session, kind, name, database);
  }
  return {};
}

}  // namespace

Result<void> CheckScanFeature(bool manualInProcess, bool capsLock) {
  if (auto free = WhileFree(manualInProcess, kTransaction,
                            "A Manual inventory transaction is in process.\n"
                            "Save or Clear data before using the Scan feature.");
      !free)
    return free;
  return WhileFree(capsLock, "Caps Lock", "Caps Lock is turned on.\nTurn off Caps Lock before using the Scan Feature.");
}

Result<void> CheckManualFeature(bool scanInProcess) {
  return WhileFree(scanInProcess, kTransaction,
                   "A Scanned inventory transaction is in process.\n"
                   "Save or Clear data before using the Manual feature.");
}

Result<void> CheckSettingsBesideScan(bool scanInProcess) {
  return WhileFree(scanInProcess, "Update Inventory Settings",
                   "A Scanned inventory transaction is in process.\n"
                   "Save or Clear data before changing inventory settings.");
}

bool MayClearScan(const Session& session) {
  return session.prompt.Ask("Confirm Cancel", "Unprocessed data will be cleared.", Answer::No);
}

void ProcessScan(Session& session, std::vector<ScanRecord>& records) {
  ProgressRun run(session.progress, "Processing the scan ...");
  bool cancelled = false;
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (records[i].state == ScanRecord::State::Successful) continue;
    cancelled = cancelled || session.progress.Cancelled();
    if (cancelled) {
      records[i].state = ScanRecord::State::Unprocessed;
      records[i].Message = "Not processed: the scan was cancelled before.\n\nProcess Again.";
      continue;
    }
    BookScan(session, records[i]);
    run.Step(i + 1, records.size());
  }
}

Result<void> ProcessAgain(Session& session, ScanRecord& record) {
  if (record.state == ScanRecord::State::Successful)
    return Refuse("Data Successfully Processed", "Can't reprocess a successful transaction.");
  BookScan(session, record);
  return {};
}

std::vector<std::string> ScanNamesFrom(const Session& session, const std::string& database, std::string_view typed,
                                       std::size_t limit) {
  std::vector<std::string> names;
  const std::string* there = session.FindDatabase(database);
  if (there == nullptr) return names;
  const auto table = [&](ColorKind kind) { return session.QuotedTable(ColorTable(kind), *there); };
  Statement rows = session.File().Prepare(fmt::format(
      "SELECT Color_Name FROM (SELECT Color_Name FROM {0} WHERE Color_Name >= ?1 AND Color_Name < ?2 UNION "
      "SELECT Color_Name FROM {1} WHERE Color_Name >= ?1 AND Color_Name < ?2) ORDER BY Color_Name LIMIT {2}",
      table(ColorKind::Basic), table(ColorKind::Mix), limit));
  for (const std::string_view prefix : {kPantonePrefix, std::string_view()}) {
    const std::string begin = std::string(prefix).append(typed);
    rows.Reset();
    rows.Bind(1, begin).Bind(2, begin + "\U0010FFFF");
    while (names.size() < limit && rows.Step())
      if (std::ranges::find(names, rows.Text(0)) == names.end()) names.push_back(rows.Text(0));
  }
  return names;
}

std::vector<ScanChoice> ChoicesOf(const Session& session, const ScanRecord& record) {
  std::vector<ScanChoice> choices;
  if (record.JN) {
    for (const JobRecord& item : RowsToPick(session, record)) choices.push_back(ChoiceOfItem(session, item));
  } else {
    for (const LotRow& lot : LotsOfScan(session, record)) choices.push_back(ChoiceOfLot(session, lot));
  }
  return choices;
}

void Choose(ScanRecord& record, const ScanChoice& choice) {
  record.jobRow = choice.jobRow;
  record.LR = choice.LotRefID;
  record.LN = choice.LotNumber;
  const auto given = [](const std::string& text) { return text.empty() ? std::nullopt : std::optional(text); };
  record.LL = given(choice.LotLoc);
  record.LC = given(choice.LotContID);
}

}  // namespace vellumark
