#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/labels/scan_records.h"
#include "core/session/session.h"

namespace vellumark {

// What the two steps of a scan ask beside the booking itself.

/// Whether scanning may begin: no stock that is being entered by hand, and letters that arrive as the labels have them.
Result<void> CheckScanFeature(bool manualInProcess, bool capsLock);
/// Whether stock may be entered by hand, or the settings changed, beside a scan.
Result<void> CheckManualFeature(bool scanInProcess);
Result<void> CheckSettingsBesideScan(bool scanInProcess);
/// Asks before records that are not booked are cleared.
bool MayClearScan(const Session& session);
/// Books the records in their order, each by itself. Once it is cancelled the rest stays unprocessed and says so.
void ProcessScan(Session& session, std::vector<ScanRecord>& records);
/// Books a record again after it was mended. Refused for one that was booked.
Result<void> ProcessAgain(Session& session, ScanRecord& record);

/// The names of both kinds of colour in a Database, the current one when it is empty, that begin with the typed text or
/// with "PANTONE " before it.
std::vector<std::string> ScanNamesFrom(const Session& session, const std::string& database, std::string_view typed,
                                       std::size_t limit);

/// A row that a record can be settled by: a lot of its colour, or an item of its Job.
struct ScanChoice {
  std::string text;  ///< for a list
  std::optional<std::int64_t> jobRow;
  std::int32_t LotRefID = 0;
  std::string LotNumber;
  std::string LotLoc;
  std::string LotContID;
};
std::vector<ScanChoice> ChoicesOf(const Session& session, const ScanRecord& record);
void Choose(ScanRecord& record, const ScanChoice& choice);

}  // namespace vellumark
