#pragma once

#include "core/settings/ladder_run.h"

namespace vellumark {

// The steps of the ladder that work on the label files. Each adds, to every layout of its file, only the records that
// the layout lacks, so that a step cut short can be made again.

void AddMiscTexts(LadderRun& run);  ///< to every layout of the list but the first, which was shipped with them
void AddBarCodes(LadderRun& run);
void AddCombinedBarCodes(LadderRun& run);
void AddLotItems(LadderRun& run);
void AddHazardRecords(LadderRun& run);
void AddFormulaDate(LadderRun& run);

}  // namespace vellumark
