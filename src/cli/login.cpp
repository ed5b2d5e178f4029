#include "cli/login.h"

#include <filesystem>
#include <system_error>

#include "core/session/users.h"
#include "core/settings/settings_keys.h"

namespace vellumark::cli {

Result<void> RequireRightInDefaultFile(Context& context, CommandRight right) {
  Session& session = context.session;
  // Not --file: naming another file must not be a way round the rights.
  const std::string path = GetSupportValue(session, keys::DbFileName50);
  std::error_code ignored;
  if (path.empty() || !std::filesystem::exists(path, ignored)) return {};
  session.DataFileDB = Database::Open(path, OpenMode::ReadOnly);
  Result<void> allowed;
  if (UsersEnabled(session)) {
    allowed = LogIn(session, context.user, context.password);
    if (allowed) allowed = RequireCommandRight(session, right);
  }
  session.DataFileDB.reset();
  return allowed;
}

}  // namespace vellumark::cli
