#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/batch/record.h"
#include "core/colors/formula_notes.h"

namespace vellumark {

// What was made of a colour before, in the order of the Batch numbers.

struct PriorBatch {
  std::int32_t BatchNo = 0;
  std::optional<DateTime> Date_Entered;
  float ActualQuantity = 0;
  int UMF = 1;
  std::vector<BatchJobLine> jobs;  ///< in its unit
};
/// The last Batch of the colour before that number; with `forJobs` the last one that was made for a job.
std::optional<PriorBatch> LastBatchOf(const Session& session, std::string_view colorName, std::int32_t before,
                                      bool forJobs);

/// The notes of the other Batches of the colour, newest first, no more than `most`.
std::vector<BatchNote> OtherBatchNotes(const Session& session, std::string_view colorName, std::int32_t except,
                                       int most);

}  // namespace vellumark
