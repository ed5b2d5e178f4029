#include "cli/login.h"

#include <filesystem>
#include <system_error>

#include "core/datafile/lifecycle.h"
#include "core/session/users.h"
#include "core/session/settings.h"

namespace vellumark::cli {

Result<void> RequireInDefaultFile(Context& context, Act act, bool asUser) {
  if (act == Act::Look && !asUser) return {};
  Session& session = context.session;
  // Not --file: naming another file must not be a way round the rights.
  const std::string path = GetSetting(session, setting::DbFileName50);
  std::error_code ignored;
  if (path.empty() || !std::filesystem::exists(path, ignored)) return {};
  try {
    session.DataFileDB = Database::Open(path, OpenMode::ReadOnly);
    ReadFileInfo(session.File());
  } catch (const Failure&) {
    // Nobody can tell who has which rights in a damaged file; to put a sound one back or to mend it nobody has to be one.
    if (act != Act::BackUp && act != Act::Work) throw;
    session.DataFileDB.reset();
    return {};
  }
  Result<void> allowed;
  const bool users = UsersEnabled(session);
  if (users) {
    // A wrong password is counted there.
    session.DataFileDB.reset();
    const bool writable = GateOf(ReadFileVersion(path)) == VersionGate::Current;
    session.DataFileDB = Database::Open(path, writable ? OpenMode::Exclusive : OpenMode::ReadOnly);
    allowed = LogIn(session, context.user, context.password);
    if (allowed) allowed = RequireAct(session, act);
  }
  session.DataFileDB.reset();
  // The command works without that file, and so mostly without its user.
  if (!users || !asUser) LogInWithoutUsers(session);
  return allowed;
}

}  // namespace vellumark::cli
