#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "core/batch/takings.h"

namespace vellumark {

// An open Batch holds its ingredients back in stock. A marker in the file (one row for each figure of stock, with what
// stood there before and after) tells what is to be taken again. For the procedures of this room.

/// Hands the takings back to stock and writes the marker, within the caller's transaction. A lot whose reference
/// another one bears by now comes back under a new one, which the takings then tell.
void HoldBatch(Session& session, std::int32_t batchNo, std::vector<BatchTaking>& takings);

/// True when every figure stands as the opening left it and no lot is there only for as long: the Batch can be closed
/// for a moment and opened again, and nothing has changed.
bool HeldStandsAsLeft(Session& session, std::int32_t batchNo);
/// Hands back what a stored Batch took, by its row; for one that was closed for a moment.
void HoldStored(Session& session, const BatchRecord& record);

/// Takes again what the marker says and removes it. A figure that stands as the opening left it becomes exactly what it
/// was before; another one is posted by the rule of an opened Batch that is left, and the Batch's record tells what
/// then really left.
void TakeHeldAgain(Session& session, std::string_view database, std::int32_t batchNo);

/// Removes the marker; stock stays as it is.
void DropHold(Session& session, std::int32_t batchNo);

/// What an open Batch has handed back to one figure of stock, for as long as it is open.
struct HeldStock {
  std::string database;
  ColorKind kind = ColorKind::Basic;
  std::string Color_Name;
  std::int32_t LotRefID = 0;  ///< 0: Unlotted Inventory
  double quantity = 0;        ///< in the inventory unit
  bool wasThere = true;       ///< a lot that the Batch had used up is there only for as long
  std::int32_t BatchNo = 0;
};
/// That of all open Batches of the file.
std::vector<HeldStock> ReadHeldStock(Database& file);

/// True when the takings, as far as stock covers them, are those that the marker holds: stock need not be posted anew.
bool SameAsHeld(Session& session, std::int32_t batchNo, const std::vector<NetTaking>& takings);

}  // namespace vellumark
