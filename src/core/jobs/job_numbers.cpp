#include "core/jobs/job_numbers.h"

#include <fmt/format.h>

#include "core/base/text.h"
#include "core/colors/names.h"
#include "core/datafile/job_links.h"
#include "core/jobs/job_records.h"

namespace vellumark {
namespace {

// Behind every number that begins with the text before it.
constexpr std::string_view kPastAll = "\U0010FFFF";

std::string OnFile(const Session& session, std::string_view number) {
  return session.File().Scalar("SELECT JobNumber FROM JobRecords WHERE JobNumber = ? LIMIT 1", {number}).Text();
}

Result<std::string> ReadNumber(std::string_view typed) {
  std::string number = ReadJobNumber(typed);
  if (number.empty()) return Refuse("Job Number Needed", "Please enter a Job Number.", "JobNumber");
  if (EqualNoCase(number, kSplitJobs))
    return Refuse("Choose Another Job Number", fmt::format("{} is not a Job Number.", kSplitJobs), "JobNumber");
  return number;
}

}  // namespace

std::string ReadJobNumber(std::string_view typed) {
  return Left(Trim(StripScanTag(Trim(typed))), kJobNumberLength);
}

std::vector<std::string> JobNumbers(const Session& session) {
  Statement rows = session.File().Prepare("SELECT DISTINCT JobNumber FROM JobRecords ORDER BY JobNumber");
  std::vector<std::string> numbers;
  while (rows.Step()) numbers.push_back(rows.Text(0));
  return numbers;
}

std::vector<std::string> JobNumbersFrom(const Session& session, std::string_view typed, std::size_t limit) {
  // Skips from number to number: a Job of many rows costs no more than one of a single row.
  Statement row = session.File().Prepare(
      "SELECT JobNumber FROM JobRecords WHERE JobNumber > ?1 AND JobNumber < ?2 ORDER BY JobNumber LIMIT 1");
  const std::string end = std::string(typed) + std::string(kPastAll);
  std::vector<std::string> numbers;
  if (std::string exact = OnFile(session, typed); !exact.empty() && limit > 0) numbers.push_back(std::move(exact));
  std::string last(typed);
  while (numbers.size() < limit) {
    row.Reset();
    if (!row.Bind(1, last).Bind(2, end).Step()) break;
    last = row.Text(0);
    numbers.push_back(last);
  }
  return numbers;
}

std::string CompleteJobNumber(const Session& session, std::string_view typed) {
  if (typed.empty()) return {};
  std::vector<std::string> first = JobNumbersFrom(session, typed, 1);
  return first.empty() ? std::string() : std::move(first.front());
}

std::string NextJobNumber(const Session& session, std::string_view number) {
  return session.File()
      .Scalar("SELECT JobNumber FROM JobRecords WHERE JobNumber > ? ORDER BY JobNumber LIMIT 1", {number})
      .Text();
}

std::string PreviousJobNumber(const Session& session, std::string_view number) {
  return session.File()
      .Scalar("SELECT JobNumber FROM JobRecords WHERE JobNumber < ? ORDER BY JobNumber DESC LIMIT 1",
              {number.empty() ? kPastAll : number})
      .Text();
}

bool JobIsThere(const Session& session, std::string_view number) {
  return !OnFile(session, number).empty();
}

Refusal JobNotFound(std::string_view number) {
  return {"Job Not Found", fmt::format("There is no Job {} in this Data File.", number), "JobNumber"};
}

Result<std::string> CheckNewJobNumber(const Session& session, std::string_view typed) {
  auto number = ReadNumber(typed);
  if (number && JobIsThere(session, *number))
    return Refuse("Job Number Exists",
                  fmt::format("The Job Number {} is used already.\nPlease enter a different number.", *number),
                  "JobNumber");
  return number;
}

Result<std::string> JobNumberToBook(const Session& session, std::string_view typed) {
  auto number = ReadNumber(typed);
  if (!number) return number;
  std::string there = OnFile(session, *number);
  return there.empty() ? number : Result<std::string>(std::move(there));
}

bool AskForNewJob(Session& session, std::string_view number) {
  return JobIsThere(session, number) ||
         session.prompt.Ask("Add Job Number", "Create a new Job Record with this Job Number?");
}

Result<void> RenameJob(Session& session, std::string_view number, std::string_view newNumber) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  const std::string old = OnFile(session, ReadJobNumber(number));
  if (old.empty()) return std::unexpected(JobNotFound(ReadJobNumber(number)));
  const auto wanted = ReadNumber(newNumber);
  if (!wanted) return std::unexpected(wanted.error());
  if (*wanted == old)
    return Refuse("Choose Another Job Number",
                  "Cannot rename a Job with the same number.\n\nPlease enter a different number.", "JobNumber");
  if (!EqualNoCase(*wanted, old))
    if (const auto free = CheckNewJobNumber(session, *wanted); !free) return std::unexpected(free.error());
  return StoreJobNumber(session, old, *wanted);
}

}  // namespace vellumark
