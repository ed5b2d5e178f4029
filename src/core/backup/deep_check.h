#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/datafile/row_checks.h"
#include "core/session/session.h"

namespace vellumark {

/// Something in a Data File that must not be.
struct CheckFault {
  std::string Table;     ///< empty when it is the file's own
  std::int64_t row = 0;  ///< the row's number; 0 of a whole table
  std::string name;      ///< what people call the row: a colour, a Batch, a job; may be empty
  std::string rule;      ///< the name of the rule that it breaks
  std::string what;      ///< in words
};

struct CheckAnswer {
  std::vector<CheckFault> faults;  ///< in the order of the rules; of one rule at most kMostFaults and how many more
  bool complete = true;            ///< false when the operator stopped it
  std::vector<ReadTable> tables;   ///< those of which the check of rows read every row
  bool Sound() const { return faults.empty(); }
};
constexpr std::size_t kMostFaults = 200;

class CheckRun;
struct CheckedFormula;

/// How much is checked; each depth holds those before it.
enum class CheckDepth {
  Opening,  ///< what costs next to nothing however large the file is
  Short,    ///< the structure of the file besides
  Deep,     ///< every row of every table
};

/// A rule that holds in a sound file.
struct CheckRule {
  std::string_view name;
  std::string_view text;                ///< what holds, in words
  CheckDepth depth = CheckDepth::Deep;  ///< the first one that checks it
  bool closed = false;                  ///< holds only while nobody works in the file
  void (*run)(CheckRun&) = nullptr;
  /// Instead, of a rule about each formula of a Database by itself: all of them share one walk.
  std::function<void(const CheckedFormula&)> (*look)(CheckRun&, const std::string& database) = nullptr;
};
/// All rules in the order in which they are checked.
std::span<const CheckRule> CheckRules();

enum class CheckState {
  Closed,  ///< nobody works in the file: no mark of unfinished work may stand in it
  InUse,   ///< what the session has under way, such as an open Batch, is no fault
};

/// Checks the session's open file, of the present version, against the rules; only reads. Memory does not grow with the number of rows, but for
/// a figure of each colour that has stock. Shows its progress, and may be cancelled. Of a file that is only looked at the
/// structure and the formulas are checked in threads of their own.
CheckAnswer CheckDataFileRules(Session& session, CheckDepth depth, CheckState state = CheckState::Closed);

/// Rows that were changed past this program, taken as they stand from now on. What follows from a price or a recipe
/// (the figures of formulas, Color_Set) is worked out anew.
struct AcceptedRows {
  std::vector<CheckFault> rows;
  CheckAnswer rest;  ///< what else the check finds
};
/// Refused without the right to manage Data Files, in a copy that is only looked at, and where the file is damaged: its
/// rows are then not what anybody wrote.
Result<AcceptedRows> AcceptStrayRows(Session& session);
/// Whether rows were changed past this program in a file that is not damaged: no repair makes them what they were.
bool HasRowsToAccept(const std::vector<CheckFault>& faults);
/// What to do about such rows, for people.
inline constexpr std::string_view kAcceptRows =
    "Data File, Check shows the rows that were changed past this program, and accepts them if that was meant (on the command "
    "line: file check --accept)";

/// "INK_Basic, row 5 (RED): …", a line for people.
std::string FaultText(const CheckFault& fault);
/// The same in a list.
const TableOf<CheckFault>& FaultColumns();

}  // namespace vellumark
