#pragma once

#include <array>

#include "core/batch/batch_options.h"

namespace vellumark {

/// What is printed with a Batch.
struct BatchPrintOptions {
  bool batchInfo = true;        ///< `PrintBatchInfoOption`
  bool history = true;          ///< `PrintBatchHistoryOption`
  bool cost = true;             ///< `PrintCostOption`
  bool extraDetails = true;     ///< `PrintExtraBatchDetails`
  bool lab = true;              ///< `PrintLABBatchDetails`
  bool lotConsumption = false;  ///< `PrintIngInvConsumption`
  bool quickInfo = false;       ///< `PrintQuickInfoOption`
  /// `PrintBatchNotes0` to 3: of the Batch, of others of its colour, of the ingredients, of the formula.
  std::array<bool, 4> notes{};
  bool recListPercent = false;   ///< `PrintRecListPercent`: not all of the Recycle List, but
  int recListPercentValue = 50;  ///< what is recyclable by more than so many percent
  bool operator==(const BatchPrintOptions&) const = default;
};

BatchPrintOptions ReadBatchPrintOptions(const Session& session);
/// Stores all of them in one step and tells of a change of Settings. Refuses a percentage outside 0 to 100.
Result<void> SaveBatchPrintOptions(Session& session, const BatchPrintOptions& options);

}  // namespace vellumark
