#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/session/session.h"

namespace vellumark {

// What Job Records and Designs tell of each other.

/// For queries: the fields `DesignID` and `Date_Entered` of every use of a Design as `Uses`, in Job Records of this file or
/// in those that an archive moved out of it.
std::string DesignUses(Database& file);

/// `LastUsed` of a Design follows its Job Records, up as well as down: the latest `Date_Entered`, nothing without any.
/// For whoever adds, changes or removes rows that bear the Design, in the transaction of that. An empty or unknown
/// DesignID is nobody's.
void FollowLastUsed(Session& session, std::string_view designID);
/// The same of every Design that has Job Records or had some, after rows of many went at once.
void FollowLastUsed(Session& session);

/// Whether Job Records bear the Design.
bool JobsBearDesign(const Session& session, std::string_view designID);
/// The rows of a Design get its new name, and its new description. Each tells the jobs.
void RenameJobDesign(Session& session, std::string_view designID, std::string_view newID);
void RewriteJobDesignDesc(Session& session, std::string_view designID, std::string_view description);

}  // namespace vellumark
