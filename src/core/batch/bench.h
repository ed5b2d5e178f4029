#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/batch/additions.h"
#include "core/batch/adjust.h"
#include "core/batch/record.h"

namespace vellumark {

// The acts of the operator on a Batch, one procedure each. Whatever alters rows runs the guards first, in their order:
// Complete, formula unchanged since saved, a Batch of earlier days. After every act the jobs and the quantity returned
// to inventory follow the new total (see jobs.h).

/// The guards before any change of a Batch: its rows, lots, jobs, figures, texts. Asks about a Batch of earlier days
/// once for each record.
Result<void> CheckEditable(Session& session, BatchRecord& record);
/// False when the guards can only refuse: what shows the Batch is read-only.
bool TakesChanges(const Session& session, const BatchRecord& record);
/// The first of them alone: a completed Batch is not changed nor deleted.
Result<void> CheckNotComplete(const Session& session, const BatchRecord& record);

/// Leaving the Color Name field: finds the formula by name, number or code, shows its notes. Refuses a Basic Color and
/// an unknown name. Only in the states None and Add; another formula clears the rows that stand.
Result<void> EnterBatchColor(Session& session, BatchRecord& record, std::string_view typed);
/// The Batch's unit. Another one takes the calculation away: its amounts are of the old unit.
Result<void> EnterBatchUnit(Session& session, BatchRecord& record, int unit);

/// F2 and F3. True when rows were calculated; the state None becomes Add.
Result<bool> RecycleBatch(Session& session, BatchRecord& record);
Result<bool> MixBatch(Session& session, BatchRecord& record);

/// A click into the Recycle List; with `amount`, an amount of the operator's own. False when the Batch takes no more
/// lines or the list has no such colour.
Result<bool> TakeRecycled(Session& session, BatchRecord& record, std::string_view name);
Result<bool> TakeRecycled(Session& session, BatchRecord& record, std::string_view name, std::string_view amount);

/// A click on the amount of a Mix row: what AdjustMixForm shows; an empty name when the operator declined.
Result<MixAdjustment> OpenMixRow(Session& session, BatchRecord& record, std::size_t row);
Result<void> ApplyMixRow(Session& session, BatchRecord& record, std::size_t row, const MixAdjustChoice& choice);

/// A click on the amount of a Basic row: whether AdjustBasicForm opens (the setting Overpour, room for it).
Result<bool> OpenBasicRow(Session& session, BatchRecord& record, std::size_t row);
Result<Overpour> PourBasicRow(Session& session, BatchRecord& record, std::size_t row, std::string_view poured);
/// What the scale read of a recycled row that was poured too full.
Result<Overpour> PourMixRow(Session& session, BatchRecord& record, std::size_t row, double poured);

/// The same without reformulating: its amount is what was poured. Refused where the recipe does not take so much.
Result<void> SetMixRowAsPoured(Session& session, BatchRecord& record, std::size_t row, double poured);

/// The additions mark: whether AddAdditionForm opens.
Result<void> OpenAdditions(Session& session, BatchRecord& record);
Result<void> AddBatchAdditions(Session& session, BatchRecord& record, const std::vector<AdditionLine>& lines);
/// A click on the amount of an addition row: whether AdjustAdditionForm opens.
Result<bool> OpenAdditionRow(Session& session, BatchRecord& record, std::size_t row);
Result<void> ApplyAdditionRow(Session& session, BatchRecord& record, std::size_t row, std::string_view amount);

// ---- Lots of a row

/// Of a row with a lot link: what it needs, in the Batch's unit, with the round-off and less what negative additions of
/// the same Basic Color take back.
float LotNeed(const Session& session, const BatchRecord& record, std::size_t row);
/// The row's selection so far.
const LotSelection& RowLots(const BatchRecord& record, std::size_t row);
/// What the row's selection must not offer: what a Batch made is no stock for itself.
LotWithheld WithheldFrom(const Session& session, const BatchRecord& record, std::size_t row);
/// Before the selection window of the row opens: the guards, and that there is something to select ("Lot Selection
/// Disabled").
Result<void> OpenRowLots(Session& session, BatchRecord& record, std::size_t row);
/// What the selection window gives back.
Result<void> SetRowLots(Session& session, BatchRecord& record, std::size_t row, LotSelection lots);

// ---- Figures and fields

/// How the Batch is costed. Refuses a user who may not edit costs, a cost below 0 ("Invalid Cost") and a percentage
/// outside 0 to 100 ("Invalid Percentage"); `futureBatches` also makes it the default.
Result<void> SetBatchCostModel(Session& session, BatchRecord& record, const BatchCostModel& model, bool futureBatches);
/// MixVOCModelType and MixHAPModelType of `model`. Refuses a user who may not edit emissions.
Result<void> SetBatchEmissionModel(Session& session, BatchRecord& record, const BatchCostModel& model,
                                   bool futureBatches);

/// A field of BatchRowFields as it is typed, behind the guards. Refuses a number that is none or out of range, with the
/// name that it was given.
Result<void> EnterBatchField(Session& session, BatchRecord& record, std::string_view column, std::string typed);
/// A user-defined number as typed, rounded to its decimals. Refuses what is no number.
Result<float> ReadUDNumeric(const Session& session, int number, std::string_view typed);
}  // namespace vellumark
