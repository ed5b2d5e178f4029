#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/batch/adjust.h"
#include "core/batch/record.h"

namespace vellumark {

// Weighing the rows of a Batch. Weights are in the Batch's unit, three decimals.

/// What counts as on target: a weight, or a share of the target. 0: nothing but the target.
struct WeighTolerance {
  float amount = 0;  ///< grams, or percent
  bool inPercent = false;
  /// In a Batch's unit, for that target.
  double Of(double target, int unit) const;
};

/// A row that is put on the scale.
struct WeighTicket {
  std::int32_t BatchNo = 0;
  std::size_t row = 0;
  LineKind kind = LineKind::Basic;
  std::string name{};
  double amount = 0;  ///< of the row, as shown
  double before = 0;  ///< what was weighed of it already
  double target = 0;  ///< what is still to be poured
  int UMF = 1;
};

/// The rows that are still to be weighed, in their order or from the heaviest on. What was weighed of a kind and name
/// counts for it; a negative addition is taken off its Basic Color, and what was poured of that beyond its row counts
/// for an addition. A rest within the tolerance, or of the two thousandths that rounding leaves, is none.
std::vector<WeighTicket> RowsToWeigh(const BatchRecord& record, const WeighTolerance& tolerance, bool heaviestFirst);

/// Whether a row may be weighed now: the guards of any change of its amount, and that there is something to be poured.
Result<WeighTicket> OpenWeighing(Session& session, BatchRecord& record, std::size_t row);

/// The row with which weighing goes on: `wanted`, where that is still to be weighed, else the first of RowsToWeigh. The
/// guards are those of OpenWeighing; refused when nothing is left.
Result<WeighTicket> NextWeighing(Session& session, BatchRecord& record, std::optional<std::size_t> wanted,
                                 const WeighTolerance& tolerance, bool heaviestFirst);

/// Whether the ticket's row is still what it was: of the same Batch, kind, name and amount.
bool StillStands(const BatchRecord& record, const WeighTicket& ticket);

/// What is put on the scale next where so much is still to be poured: all of it, or an equal share of it where the scale
/// does not bear it at once. Without a capacity it bears everything.
double NextDraft(double rest, double capacity);

// ---- The pour

enum class WeighColor { Red, White, LightGreen, Green, FullGreen };

/// How far a pour has come.
struct WeighProgress {
  int p = 0;    ///< whole percent; -1 below nothing, 101 above the target
  int bar = 0;  ///< 0 to 100
  std::string percent = "0%";
  WeighColor color = WeighColor::White;
};
WeighProgress FollowPour(double poured, double target, double tolerance = 0);

enum class PourEnd { OnTarget, Over, Under };
/// Compared as Singles of the shown texts.
PourEnd ComparePour(double poured, double target, double tolerance = 0);
/// Whether the weight is taken: asks about one that is over or under the target.
bool AcceptPour(Prompt& prompt, double poured, double target, double tolerance = 0);

/// What a pour did to the Batch.
struct PouredRow {
  std::size_t row = 0;  ///< where the line stands now
  Overpour overpour;
};
/// Takes what was poured into the Batch, so that stock loses what is gone. On target the Batch stays. Too much of a
/// recycled or Basic row asks whether the Batch is reformulated around it; what is not reformulated, and too little, is
/// recorded as it was weighed: of a Basic Color as an addition of the difference, of an addition as its amount, of a
/// recycled row as its amount. Basic rows that gave way to it below what was poured of them before get the rest as an
/// addition too. Refuses what the Batch cannot hold, and a row that is not the one of the ticket any more; the Batch
/// then stands as it did.
Result<PouredRow> TakePour(Session& session, BatchRecord& record, const WeighTicket& ticket, double poured,
                           const WeighTolerance& tolerance);

/// What of an addition is no more than a difference that weighing left.
float WeighedDifference(const BatchRecord& record, std::string_view basic);
/// The same, worked out for a Batch whose rows, additions and results of the scale were read from file.
void FindDifferences(BatchRecord& record);
/// After a change of the rows: one that grew holds of what was poured beyond it as much as it can, and the addition
/// that this had become is so much less.
void TakeUpDifferences(const Session& session, BatchRecord& record);

/// What each row must go on holding, since it is in the pot; 0 for a row of which nothing was weighed.
std::vector<double> InThePot(const BatchRecord& record);

/// A reading of the scale in the Batch's unit; `scaleUnit` 0 is the Batch's.
double InBatchUnit(double reading, int scaleUnit, int unit);

}  // namespace vellumark
