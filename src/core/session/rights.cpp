#include "core/session/rights.h"

#include <fmt/format.h>

#include "core/base/units.h"

namespace vellumark {
namespace {

struct Command {
  std::uint8_t Session::*permission;
  std::uint8_t full;
  std::string_view what;  // "you do not have permission to ..."
};

Command CommandOf(CommandRight right) {
  switch (right) {
    case CommandRight::BackupRestore:
      return {&Session::Perm_BackupRestore, 1, "back up or restore"};
    case CommandRight::Export:
      return {&Session::Perm_Export, 1, "export from the Data File"};
    case CommandRight::Advanced:
      return {&Session::Perm_Advanced, 1, "use the Advanced Data File commands"};
    case CommandRight::Options:
      return {&Session::Perm_Options, 1, "change Options"};
    case CommandRight::Databases:
      return {&Session::Perm_Databases, 1, "add, rename or delete databases"};
    case CommandRight::DBTools:
      return {&Session::Perm_DBTools, 1, "use the Database Tools"};
    case CommandRight::Costs:
      return {&Session::Perm_Costs, 2, "change costs"};
    case CommandRight::VOCHAP:
      return {&Session::Perm_VOCHAP, 1, "change VOC and HAP Values"};
    case CommandRight::MasterFormula:
      break;
  }
  return {&Session::Perm_MasterFormula, 1, "change Master Formulas"};
}

}  // namespace

UserRights UserRights::All() {
  UserRights rights;
  for (const RightField& right : RightFields()) rights.*right.value = right.full;
  return rights;
}

const std::array<RightField, 9>& RightFields() {
  static const std::array<RightField, 9> fields{{
      {"Edit_MasterFormula",
       &UserRights::Edit_MasterFormula,
       &Session::Perm_MasterFormula,
       1,
       "Master Formulas",
       {"User can view but not edit Master Formulas.", "User can view and edit Master Formulas.", ""}},
      {"Edit_Costs",
       &UserRights::Edit_Costs,
       &Session::Perm_Costs,
       2,
       "Costs",
       {"User cannot view or edit Costs.", "User can view but not edit Costs.", "User can view and edit Costs."}},
      {"Edit_VOCHAP",
       &UserRights::Edit_VOCHAP,
       &Session::Perm_VOCHAP,
       1,
       "VOC and HAP",
       {"User can view but not edit VOC and HAP.", "User can view and edit VOC and HAP.", ""}},
      {"DF_BackupRestore",
       &UserRights::DF_BackupRestore,
       &Session::Perm_BackupRestore,
       1,
       "Backup and Restore",
       {"User cannot backup or restore the Data File.", "User can backup and restore the Data File.", ""}},
      {"DF_AdvancedMenu",
       &UserRights::DF_AdvancedMenu,
       &Session::Perm_Advanced,
       1,
       "Data File - Advanced",
       {"User cannot use the Advanced Data File commands.", "User can use the Advanced Data File commands.", ""}},
      {"DF_OptionsMenu",
       &UserRights::DF_OptionsMenu,
       &Session::Perm_Options,
       1,
       "Data File - Options",
       {"User cannot change Options.", "User can change Options.", ""}},
      {"DB_NewRenameDel",
       &UserRights::DB_NewRenameDel,
       &Session::Perm_Databases,
       1,
       "Databases",
       {"User cannot add, rename or delete Databases.", "User can add, rename and delete Databases.", ""}},
      {"DBToolsMenu",
       &UserRights::DBToolsMenu,
       &Session::Perm_DBTools,
       1,
       "DB Tools",
       {"User cannot use the Database Tools.", "User can use the Database Tools.", ""}},
      {"DF_ExportDF_Excel",
       &UserRights::DF_ExportDF_Excel,
       &Session::Perm_Export,
       1,
       "Export",
       {"User cannot export the Data File.", "User can export the Data File.", ""}},
  }};
  return fields;
}

void TakeRights(Session& session, const UserRights& rights) {
  for (const RightField& right : RightFields()) session.*right.permission = rights.*right.value;
}

UserRights RightsInForce(const Session& session) {
  if (session.CurrentUser.empty()) return UserRights::All();
  UserRights rights;
  for (const RightField& right : RightFields()) rights.*right.value = session.*right.permission;
  return rights;
}

std::vector<PermissionText> PermissionTexts(const UserRights& rights) {
  std::vector<PermissionText> lines;
  for (const RightField& right : RightFields()) {
    // A value beyond the full one opens no command, so it is shown as the least.
    const std::uint8_t value = rights.*right.value;
    lines.push_back({right.field, right.caption, right.texts[value <= right.full ? value : 0]});
  }
  return lines;
}

Seen SeenBy(const Session& session) {
  return {session.Perm_Costs != 0, session.DecimalPlaces, std::string(UnitName(session.UMI))};
}

std::optional<float> SeenPrice(const Session& session, float price) {
  return session.Perm_Costs == 0 ? std::nullopt : std::optional(price);
}

bool Allows(const Session& session, CommandRight right) {
  const Command command = CommandOf(right);
  return session.CurrentUser.empty() || session.*command.permission == command.full;
}

Result<void> RequireCommandRight(const Session& session, CommandRight right) {
  if (Allows(session, right)) return {};
  return Refuse("Permission Denied",
                fmt::format("{}, you do not have permission to {}.", session.CurrentUser, CommandOf(right).what));
}

}  // namespace vellumark
