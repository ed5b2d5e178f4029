#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/batch/record.h"
#include "core/datafile/color_kind.h"

namespace vellumark {

// What the lines of a Batch take from stock, as `<DB>_Batch_LotInv` records it. For the procedures of this room.

/// Whether the round-off of a Batch fell on the line at that place, which is told without it.
inline bool BearsRoundoff(std::int64_t place, LineKind kind, std::int64_t largestAmountIndex) {
  return place == largestAmountIndex && kind == LineKind::Basic;
}

/// A line as the Batch's row holds it.
struct StoredLine {
  std::string IngName;
  float IngQty = 0;
  LineKind IngType = LineKind::Basic;
};

/// What one line takes from one place; `use.LotQty` is in the inventory unit, below zero for a negative addition. In
/// the plan of a save it is what the line needs, on file what really left: that much comes back.
struct BatchTaking {
  std::string IngName;
  LineKind IngType = LineKind::Basic;
  LotUse use;
};

/// The lines of the working lists as they are stored: recycled colours, ingredients, additions, without the round-off.
std::vector<StoredLine> LinesOf(const BatchWork& work);

/// What saving the Batch would take. Lots chosen that went or shrank meanwhile give what is there; what is not drawn
/// from a lot comes from Unlotted Inventory.
std::vector<BatchTaking> PlanTakings(Session& session, const BatchRecord& record);

/// What a stored Batch took. A line of which no record was kept took its amount, with the round-off where it fell, from
/// Unlotted Inventory.
struct StoredBatchLines {
  std::int32_t BatchNo = 0;
  std::string Color_Name;
  int UMF = 1;
  float Roundoff = 0;
  std::int32_t LargestAmountIndex = 0;
  std::vector<StoredLine> lines;
};
std::vector<BatchTaking> ReadTakings(const Session& session, const StoredBatchLines& batch);

/// The selection that a line's takings amount to, in the Batch's unit; `amount` is what the line shows. Those takings
/// are taken out of the list: a later line of the same colour and kind has its own. The last such line gets all.
LotSelection SelectionOf(const Session& session, std::vector<BatchTaking>& takings, const StoredLine& line,
                         float amount, int unit, bool isLast);

void WriteTakings(Session& session, std::int32_t batchNo, const DateTime& date,
                  const std::vector<BatchTaking>& takings);
void DeleteTakings(Session& session, std::int32_t batchNo);

/// What is taken in all from one place.
struct NetTaking {
  ColorKind kind = ColorKind::Basic;
  std::string name;
  LotUse place;  ///< `LotQty` is the sum
};
/// One for each colour and place, in the order of the lines. While Lotted Inventory is off everything is Unlotted.
std::vector<NetTaking> NetTakings(const Session& session, const std::vector<BatchTaking>& takings);
/// True when the taking is of that place: the colour, and the lot by its reference and number.
bool IsOfPlace(const Session& session, const BatchTaking& taking, const NetTaking& place);

/// How much of a taking stock covers as it stands now: all of it where Unlotted Inventory may go below zero.
float Covered(const Session& session, const NetTaking& taking);
/// A taking of `quantity` found `before` there and left `after`: what really left. What a cutoff wrote off beside it is
/// no part of it.
float ReallyLeft(float quantity, float before, float after);

/// Takes from stock, for a Batch that is saved. The takings become what really left.
void TakeFromStock(Session& session, std::int32_t batchNo, std::vector<NetTaking>& takings);
/// Brings the takings of the lines down to what left each place; the last lines of a place got the less.
void LowerTo(const Session& session, std::vector<BatchTaking>& takings, const std::vector<NetTaking>& left);
/// The same on file, of a stored Batch: `missing` less left the place than it has recorded.
void LowerRecorded(Session& session, std::string_view database, std::int32_t batchNo, const NetTaking& place,
                   float missing);

}  // namespace vellumark
