#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/batch/record.h"
#include "core/datafile/writer.h"

namespace vellumark {

/// The stored Batch of that number as the window would show it, its ingredients left where they are. Nothing when there
/// is none. For looking only.
std::optional<BatchRecord> ReadBatch(Session& session, std::int32_t batchNo);

/// The fields of a stored Batch under their names, in the order of the table; empty when there is none.
std::vector<Cell> ReadBatchFields(const Session& session, std::int32_t batchNo);

/// One lot, or Unlotted Inventory, that a line of a stored Batch took from. `LotQty` in the inventory unit.
struct BatchLotRow : LotUse {
  std::string IngName;
  LineKind IngType = LineKind::Basic;
};
std::vector<BatchLotRow> ReadBatchLots(const Session& session, std::int32_t batchNo);
TableOf<BatchLotRow> BatchLotColumns(const Session& session);
ListTable ListBatchLots(const Session& session, std::int32_t batchNo);

/// Opens a stored Batch: hands its ingredients back to stock and leaves a marker in the file that tells so, in one
/// transaction. In an archive view nothing is handed back. False when there is no such Batch. `record` must hold no
/// other open Batch.
bool OpenBatch(Session& session, BatchRecord& record, std::int32_t batchNo);
bool OpenBatchRow(Session& session, BatchRecord& record, std::int64_t key);

/// Rows of `<DB>_Batch` in the order of their numbers; nothing past either end. A Batch that is not stored stands
/// behind the last.
std::optional<std::int64_t> NextBatchRow(const Session& session, const BatchRecord& record);
std::optional<std::int64_t> PreviousBatchRow(const Session& session, const BatchRecord& record);

/// One line of a list of Batches.
struct BatchListRow {
  std::int32_t BatchNo = 0;
  std::string Color_Name;
  std::optional<DateTime> Date_Entered;
  float Quantity = 0;
  float ActualQuantity = 0;
  int UMF = 1;
  std::string JobNumber;
  bool Complete = false;
  std::int64_t key = 0;
};
TableOf<BatchListRow> BatchColumns();
/// Those that come before a Batch of the list, the newest first, at most `count`; before none: the last of all.
std::vector<BatchListRow> BatchesBefore(const Session& session, const std::optional<BatchListRow>& batch, int count);
/// Those that were entered on the day of that moment, newest first.
std::vector<BatchListRow> BatchesOfDay(const Session& session, const DateTime& day);
/// The Batches entered last, newest first.
std::vector<BatchListRow> RecentBatches(const Session& session, int count);
/// All Batches by number, or those of one formula.
ListTable ListBatches(const Session& session, const std::string& colorName);
/// The Batches entered last.
ListTable ListRecentBatches(const Session& session, int count);

}  // namespace vellumark
