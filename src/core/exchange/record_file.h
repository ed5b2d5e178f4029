#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/exchange/record_export.h"

namespace vellumark {

// What both exports of records share. For the procedures of this room.

/// Fills a grid with records, one after the other, and holds it to the number of cells that a report may have.
class RecordGathering {
 public:
  RecordGathering(Session& session, std::string_view text, std::size_t records);
  ~RecordGathering() { session_.progress.End(); }
  RecordGathering(const RecordGathering&) = delete;
  RecordGathering& operator=(const RecordGathering&) = delete;

  void Row(std::vector<std::string> cells);
  /// A record is done; false when the operator stopped it or there is no room for more.
  bool GoOn();
  /// The refusal, or the grid; one that was stopped is told.
  Result<RecordGrid> Finish(std::string_view title);

  RecordGrid grid;

 private:
  Session& session_;
  std::size_t all_;
  std::size_t cells_ = 0;
};

/// The first and the last day of a range, and the moment after it, as the Data File keeps them. Refused without both.
struct RecordDays {
  std::string from;
  std::string before;
};
Result<RecordDays> DaysOf(const RecordRange& range);
/// "1 - 5" or "2026_01_01 - 2026_01_31".
std::string RangeText(const RecordRange& range);

}  // namespace vellumark
