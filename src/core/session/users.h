#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/session/rights.h"

namespace vellumark {

// The login is optional and lives in the Data File: a file without the table `Users` has none, and everyone has all
// rights. Passwords stand there as plain text, by the layout of the file; no message, refusal or notice holds one.

/// The administrator who gets in when a password has been forgotten. Always on file once the table exists; never
/// listed, modified or deleted.
inline constexpr std::string_view kRescueUser = "ADMIN";
inline constexpr std::size_t kUserTextLength = 15;

/// For callers without such a box: trimmed, upper case. Refused, with the focus on `field`, when the box would not have
/// let it through; the text is not repeated in the refusal.
Result<std::string> ReadUserText(std::string_view typed, std::string_view field);

/// Whether the open Data File has users.
bool UsersEnabled(const Session& session);
/// The names without `ADMIN`, in order: who may be chosen at login, in the menu and for modifying.
std::vector<std::string> UserNames(const Session& session);
/// Those of them that can be deleted: no administrators.
std::vector<std::string> DeletableUserNames(const Session& session);

/// Waits that long; PauseHere holds the thread. After three wrong passwords of a user each further try waits before it
/// is looked at, from a tenth of a second up to ten seconds, twice as long each time; the right one ends that. The
/// count stands in the Data File, so that every program sees it.
using Pause = std::function<void(std::chrono::milliseconds)>;
void PauseHere(std::chrono::milliseconds time);

/// Name and password trimmed and in capitals against the file; the user and the rights then are the session's. A
/// refusal leaves the session as it is.
Result<void> LogIn(Session& session, std::string_view name, std::string_view password, const Pause& pause = PauseHere);
/// The same for a user chosen from the menu, with that window's refusal.
Result<void> SwitchUser(Session& session, std::string_view name, std::string_view password,
                        const Pause& pause = PauseHere);
/// What a file without users gives: no user, an administrator's standing, formulas, costs and Database tools to edit.
/// The other permissions keep what they held; they count for nothing while there is no user.
void LogInWithoutUsers(Session& session);

/// Switches the feature on: makes the table, the rescue administrator and the first administrator, who is then the
/// session's user.
Result<void> CreateUsers(Session& session, std::string_view name, std::string_view password);
/// Switches it off, after asking: the table goes and everyone has all rights. False when the operator declined.
Result<bool> DeactivateUsers(Session& session);

/// The password of the current user, asked for before each administrator's command.
Result<void> CheckPassword(const Session& session, std::string_view password, const Pause& pause = PauseHere);

struct UserRow {
  std::string Username;
  std::string Password;  ///< may be empty, but not an administrator's
  bool IsAdmin = false;
  UserRights rights;
};

/// A user with all rights.
TableOf<UserRow> UserColumns();
/// All users, for an administrator with their rights; others see whom they could log in as.
ListTable ListUsers(const Session& session);

/// For an administrator's windows. Nothing when there is no such user, or for `ADMIN`.
std::optional<UserRow> ReadUser(const Session& session, std::string_view name);
/// Adds a user, who is no administrator whatever the row says. False when the operator would not have an empty
/// password.
Result<bool> AddUser(Session& session, const UserRow& user);
/// Writes password, standing and rights of an existing user. Administrators cannot change their own standing.
Result<void> ModifyUser(Session& session, const UserRow& user);
/// Deletes a user who is no administrator, after asking. False when the operator declined.
Result<bool> DeleteUser(Session& session, std::string_view name);

/// The current user's own password. False when the operator would not have an empty one.
Result<bool> ChangePassword(Session& session, std::string_view current, std::string_view changed,
                            std::string_view repeated, const Pause& pause = PauseHere);

/// Puts the rescue administrator back on file when missing; a session whose user is no longer on file becomes `ADMIN`.
void RestoreRescueUser(Session& session);

/// Makes a damaged table of users usable: rows without a name go, and later ones of a name that stands twice; the rescue
/// administrator comes back. Rights are never given, but his.
struct MendedUsers {
  int nameless = 0;
  int twice = 0;
  bool rescued = false;
};
MendedUsers MendUsers(Session& session);

}  // namespace vellumark
