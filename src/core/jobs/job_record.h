#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/field_map.h"
#include "core/datafile/job_links.h"
#include "core/inventory/posting.h"
#include "core/session/session.h"

namespace vellumark {

constexpr int kJobUserFields = 6;  ///< user-defined texts, and as many numbers

/// A row of `JobRecords`: one thing that a Job used, a Batch or an item that was taken from stock. Quantities are in the
/// inventory unit.
struct JobRecord {
  std::int64_t row = 0;  ///< row number; 0 of one that is not stored
  std::string JobNumber;
  std::string DesignID;
  std::string DesignDesc;
  std::string Color_Name;
  std::string Color_Code;
  std::string Database;
  std::int32_t BatchNo = 0;  ///< of a Batch; above kLastJobBatch of an item from stock
  std::uint8_t ItemType = 0;
  float UnitCost = 0;  ///< per inventory unit
  float VOC = 0;
  float HAP = 0;
  std::int32_t LotRefID = 0;
  std::string LotNumber;
  std::string LotLoc;
  std::string LotContID;
  std::optional<DateTime> LotDate;
  float QtyIssued = 0;
  float QtyUsed = 0;
  std::optional<DateTime> Date_Entered;
  std::optional<DateTime> Date_Returned;
  std::optional<DateTime> Date_Completed;
  std::array<std::string, kJobUserFields> UD_Text;
  std::array<float, kJobUserFields> UD_Numeric{};

  bool IsOfBatch() const { return BatchNo <= kLastJobBatch; }
  /// What the colour is; an item type of 0 is an old Basic Color.
  ColorKind Kind() const { return ItemType == 2 ? ColorKind::Mix : ColorKind::Basic; }
  /// Where it was taken from and goes back to.
  StockPlace Place() const;
  /// "000042" of a Batch, "1000007" of an item.
  std::string ItemText() const;
};

const FieldMap<JobRecord>& JobFields();

/// Nothing when the row is gone.
std::optional<JobRecord> ReadJobRecord(const Session& session, std::int64_t row);
/// The rows of a Job in the order in which they were entered.
std::vector<JobRecord> JobItems(const Session& session, std::string_view jobNumber);
/// The row of a Job by its Batch or item number; of a Batch number that two Databases have, the one of `database`.
Result<JobRecord> FindJobItem(const Session& session, std::string_view jobNumber, std::int32_t batchNo,
                              std::string_view database = {});
/// Rows with that condition, one after the other, until `take` answers false. `parameters` are ?1 and on; `order` may
/// be empty.
void ForEachJobRecord(const Session& session, std::string_view condition, const std::vector<Value>& parameters,
                      std::string_view order, const std::function<bool(const JobRecord&)>& take);

/// What the rows of a Job come to. Each row's figures are rounded as they are shown, so that the sums are those of what
/// is shown.
struct JobTotals {
  double QtyUsed = 0;
  double Cost = 0;
  double VOC = 0;
  double HAP = 0;
};
/// A gram or an ounce costs so little that the decimals of prices would leave nothing of it.
int JobCostDecimals(const Session& session);
/// QtyUsed times the figure of a unit, with so many decimals.
double JobAmount(float used, float perUnit, int decimals);

/// A Job: its rows, what they come to, and its dates.
struct Job {
  std::string JobNumber;  ///< as on file
  std::vector<JobRecord> items;
  JobTotals totals;
  std::optional<DateTime> Date_Entered;    ///< the earliest
  std::optional<DateTime> Date_Completed;  ///< the latest; nothing while the Job is open
};
JobTotals TotalsOf(const Session& session, const std::vector<JobRecord>& items);
/// Without rows when there is no such Job.
Job LoadJob(const Session& session, std::string_view jobNumber);

}  // namespace vellumark
