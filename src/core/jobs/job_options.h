#pragma once

#include <array>
#include <string>
#include <string_view>

#include "core/jobs/job_record.h"
#include "core/session/user_fields.h"

namespace vellumark {

// What `Job_Options` keeps: captions, defaults and formats of the user-defined fields of a Job.

UserFieldOptions ReadJobOptions(const Session& session);
/// Stores all of them in one step and tells of a change of Settings. Refuses what CheckUserFields refuses.
Result<void> SaveJobOptions(Session& session, UserFieldOptions options);

/// What the texts of a new item are.
std::array<std::string, kJobUserFields> JobTextDefaults(const Session& session);
/// Refused without a text that is required ("More Data Incomplete").
Result<void> CheckRequiredJobTexts(const Session& session, const std::array<std::string, kJobUserFields>& texts);
/// A text as typed: trimmed, cut to its width. One that is required cannot be emptied.
Result<std::string> ReadJobText(const Session& session, int number, std::string_view typed);
/// A number as typed, with its decimals; nothing typed is 0.
Result<float> ReadJobNumeric(const Session& session, int number, std::string_view typed);
/// With the decimals of its format.
std::string JobNumericText(const Session& session, int number, float value);

}  // namespace vellumark
