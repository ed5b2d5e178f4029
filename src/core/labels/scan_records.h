#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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
  std::optional<float> Qty;  ///< three decimals

  enum class State { Unprocessed, Failed, Successful };
  State state = State::Unprocessed;  ///< what was successful never runs again
  std::string Message;
};

/// The records of a stream of scanned lines, whatever ends them: CR, LF, both, or Tab. A quantity, a number below 99999
/// on a line of its own, ends its record; another value of a tag that the record has already begins the next. Lines
/// that are neither, and tags that are ignored, do nothing.
std::vector<ScanRecord> ParseScan(std::string_view text);

}  // namespace vellumark
