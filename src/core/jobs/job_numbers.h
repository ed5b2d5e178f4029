#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/refusal.h"
#include "core/session/session.h"

namespace vellumark {

// The Jobs of a Data File by their numbers. All of these are answered from the index, whatever the number of rows.

inline constexpr std::size_t kJobNumberLength = 30;

/// A job number as it left its field: without a scan tag, trimmed, cut to its width.
std::string ReadJobNumber(std::string_view typed);

/// All of them in order, each once.
std::vector<std::string> JobNumbers(const Session& session);
/// What the typed text completes to: the first number that begins with it. Empty when there is none.
std::string CompleteJobNumber(const Session& session, std::string_view typed);
/// Those that begin with the typed text, at most `limit`.
std::vector<std::string> JobNumbersFrom(const Session& session, std::string_view typed, std::size_t limit);
/// The numbers beside this one, whether or not it is on file; beside an empty one the first or the last. Empty past
/// either end.
std::string NextJobNumber(const Session& session, std::string_view number);
std::string PreviousJobNumber(const Session& session, std::string_view number);

bool JobIsThere(const Session& session, std::string_view number);
Refusal JobNotFound(std::string_view number);

/// Whether a Job may get this number: it is not empty, not "- SPLIT -", and no Job has it. The number as it is read.
Result<std::string> CheckNewJobNumber(const Session& session, std::string_view typed);
/// The number under which an item is booked: a Job's as it stands on file, or a new one.
Result<std::string> JobNumberToBook(const Session& session, std::string_view typed);
/// Leaving the field with a number: true when there is a Job, or when the operator wants a new one ("Add Job Number").
bool AskForNewJob(Session& session, std::string_view number);

/// The new number on all rows of the Job and on its Batches, in every Database.
Result<void> RenameJob(Session& session, std::string_view number, std::string_view newNumber);

}  // namespace vellumark
