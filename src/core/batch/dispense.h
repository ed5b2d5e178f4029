#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/batch/dispensers.h"
#include "core/batch/record.h"

namespace vellumark {

struct DispenseLine {
  std::string ID;    ///< the colour's name
  std::string Info;  ///< its code
  double Amount = 0;
  double Part = 0;  ///< of all lines, five decimals; they add up to 1
};

/// What goes to a dispenser.
struct DispenseJob {
  std::vector<DispenseLine> lines;  ///< largest first
  double DispensedTotal = 0;
  bool UseLeftOvers = false;
};

struct DispenseChoice {
  std::string dispenser;
  bool additives = false;
  bool recycles = false;
};

/// The rows of the Batch as they are shown, recycled ones and Additives where chosen; a later addition of a colour that
/// has a line adds to it.
DispenseJob PrepareDispense(const Session& session, const BatchRecord& record, const DispenseChoice& choice);

/// The file's text in the format of that code, in UTF-8.
std::string DispenseText(const Session& session, const BatchRecord& record, const DispenseJob& job,
                         std::string_view format);
/// Where it goes.
std::filesystem::path DispensePath(const Session& session, const BatchRecord& record, const DispenserRow& dispenser);

/// Whether a Batch can be sent now: it is calculated.
Result<void> CheckDispense(const BatchRecord& record);
/// Sends the Batch: its file takes its place in one step. Refuses a Batch of which no line remains and a dispenser that is
/// not there; asks before a file is replaced that is not this Batch's own: one of a Batch that was never saved, or any that
/// was there before a new Batch sent its first. Tells where the file is, which it gives back. Throws Failure naming a file
/// that cannot be written.
Result<std::filesystem::path> Dispense(Session& session, BatchRecord& record, const DispenseChoice& choice);

}  // namespace vellumark
