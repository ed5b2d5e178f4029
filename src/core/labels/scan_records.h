#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/refusal.h"

namespace vellumark {

/// What a label's codes and a quantity say of one container. Each value is there when it was scanned, in capitals.
struct ScanRecord {
  std::optional<std::string> CN;
  std::optional<std::string> CC;
  std::optional<std::string> CT;  ///< "1" a Basic Color or Additive, "2" a formula
  std::optional<std::string> DB;
  std::optional<std::int32_t> LR;
  std::optional<std::string> LN;
  std::optional<std::string> LL;
  std::optional<std::string> LC;
  std::optional<std::string> JN;
  std::optional<float> Qty;            ///< three decimals
  std::optional<std::int64_t> jobRow;  ///< the row of the Job that was picked out of several

  enum class State { Unprocessed, Failed, Successful };
  State state = State::Unprocessed;  ///< what was successful never runs again
  std::string Message;
  std::string Field;      ///< of a failure: the control to mend
  std::int64_t Line = 0;  ///< of a success: its line of the stock history

  /// The same was scanned and picked.
  bool SameScan(const ScanRecord& other) const;
};

/// The records of a stream of scanned lines, whatever ends them: CR, LF, both, or Tab. A quantity, a number below 99999
/// on a line of its own, ends its record; another value of a tag that the record has already begins the next. Lines
/// that are neither, and tags that are ignored, do nothing.
std::vector<ScanRecord> ParseScan(std::string_view text);

/// Puts what became of its booking into a record.
void Conclude(ScanRecord& record, const Result<std::string>& booked);

/// What a line of a scan is, by itself.
enum class ScanLine { Stored, Ignored, Quantity, Invalid };
ScanLine ClassifyScanLine(std::string_view line);

}  // namespace vellumark
