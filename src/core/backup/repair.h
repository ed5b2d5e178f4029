#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/backup/step_lines.h"
#include "core/session/session.h"

namespace vellumark {

class RepairRun;

struct RepairReport {
  std::filesystem::path file;
  std::filesystem::path kept;       ///< the folder that holds the file as it was, and the photos that were moved
  std::vector<StepLine> changes;  ///< mended, made, renamed, dropped
  std::vector<StepLine> left;     ///< empty fields that mean something, and faults that nobody can mend but people
  std::vector<StepLine> lost;     ///< what could not be saved
  std::vector<std::string> emptyDatabases;
};

/// A step of the repair, one after the other, each on whatever the ones before left.
struct RepairStep {
  int number = 0;  ///< steps that belong together have the same one
  std::string_view name;
  void (*run)(RepairRun&) = nullptr;
};
std::span<const RepairStep> RepairSteps();

/// Mends the session's Data File, which the session has open, or which nobody has open because it cannot be opened. A
/// copy of it is kept in a folder "Before Repair" with the time beside it. All work is done on another copy beside,
/// which takes the place of the file in one step when it is whole: after a Failure, or a kill, the file is what it was.
/// Of a file that the engine finds damaged all rows that can still be read are saved. `mayGoOn` is asked once they can
/// be read, with the copy as the session's file. The session has no file open afterwards. Refused when nothing of it
/// can be read.
Result<RepairReport> MendDataFile(Session& session, const std::function<Result<void>()>& mayGoOn);

/// The report for people, and as a list: what was changed, left and lost.
std::string RepairText(const RepairReport& report);
std::vector<StepLineOf> LinesOf(const RepairReport& report);

}  // namespace vellumark
