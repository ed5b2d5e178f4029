#pragma once

#include <array>
#include <string>

#include "core/batch/record.h"
#include "core/colors/lab.h"

namespace vellumark {

// The user-defined fields of a Batch and what was measured on it, as the window of more data shows them.

constexpr std::size_t kBatchTextWidth = 30;  ///< characters of each of its texts

struct MoreData {
  std::array<std::string, kBatchUserFields> texts;
  std::array<std::string, kBatchUserFields> numbers;  ///< as typed
  LabEntry lab;
};

/// The fields as they are shown: numbers with their decimals, measurements with two.
MoreData ShowMoreData(const Session& session, const BatchFields& fields);
/// Takes all of it into the Batch, or nothing: refuses the first number or measurement that is none or out of range,
/// with the field UD_Numeric0, txt_L and so on. A number or measurement left empty is 0.
Result<void> EnterMoreData(Session& session, BatchRecord& record, const MoreData& typed);

/// A line of a stored Batch's further data: only what holds something.
struct DataLine {
  std::string caption;
  std::string value;
};
std::vector<DataLine> UserDataLines(const Session& session, const BatchFields& fields);
std::vector<DataLine> LabLines(const Session& session, const BatchFields& fields);

}  // namespace vellumark
