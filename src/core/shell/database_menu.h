#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/session/session.h"

namespace vellumark {

/// What a new Database starts with.
struct NewDatabaseContent {
  enum class Kind { Empty, Guides, Copy };
  Kind kind = Kind::Empty;
  std::vector<std::string> guides{};  ///< codes of guides ("F_Guide_A"), with Kind::Guides
  std::string source{};               ///< the Database to copy, with Kind::Copy
};

/// The Databases in the order of the menu.
ListTable ListDatabases(const Session& session);

/// The New command: makes a Database, in one transaction; the current one stays. The name as stored.
Result<std::string> NewDatabase(Session& session, std::string_view typedName, const NewDatabaseContent& content);

/// The Rename command, in one transaction: tables, Job Records, Designs, the list. The current Database is open again
/// afterwards. The new name as stored.
Result<std::string> RenameDatabase(Session& session, std::string_view name, std::string_view typedName);

/// The Delete command, in one transaction, after asking. The current Database is refused. False when the operator
/// declined.
Result<bool> DeleteDatabases(Session& session, const std::vector<std::string>& names);

}  // namespace vellumark
