#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/field_map.h"
#include "core/session/session.h"

namespace vellumark {

/// The rights on a user's row, each under the name of its field. A new one allows to look and to change nothing.
struct UserRights {
  std::uint8_t Edit_MasterFormula = 0;
  std::uint8_t Edit_Costs = 0;  ///< 0 hides costs, 1 shows them, 2 lets them be edited
  std::uint8_t Edit_VOCHAP = 0;
  std::uint8_t DF_BackupRestore = 0;
  std::uint8_t DF_AdvancedMenu = 0;
  std::uint8_t DF_OptionsMenu = 0;
  std::uint8_t DB_NewRenameDel = 0;
  std::uint8_t DBToolsMenu = 0;
  std::uint8_t DF_ExportDF_Excel = 0;

  static UserRights All();
  bool operator==(const UserRights&) const = default;
};

/// One right: its field, where it stands on the row and in the session, its full value, and what it means in words.
struct RightField {
  std::string_view field;
  std::uint8_t UserRights::*value;
  std::uint8_t Session::*permission;
  std::uint8_t full;
  std::string_view caption;               ///< title of its frame
  std::array<std::string_view, 3> texts;  ///< what each value lets the user do; the third for costs only
};
const std::array<RightField, 9>& RightFields();

/// Copies the nine values to the session's permissions.
void TakeRights(Session& session, const UserRights& rights);
/// The rights in force: those of the session, or all of them while nobody has to log in.
UserRights RightsInForce(const Session& session);

/// A line of the windows that show or choose rights.
struct PermissionText {
  std::string_view field;
  std::string_view caption;
  std::string_view text;
  bool operator==(const PermissionText&) const = default;
};
std::vector<PermissionText> PermissionTexts(const UserRights& rights);

/// The rights, each with the value that opens what it keeps. What asks for which stands in acts.h.
enum class CommandRight { BackupRestore, Export, Advanced, Options, Databases, DBTools, Costs, VOCHAP, MasterFormula };

/// What the session's user gets to see in tables, in its units.
Seen SeenBy(const Session& session);
/// A price, for those who may see prices.
std::optional<float> SeenPrice(const Session& session, float price);

/// True when nobody has to log in, or when the user's right has its full value.
bool Allows(const Session& session, CommandRight right);
/// The same as a refusal that names the user and what is not allowed.
Result<void> RequireCommandRight(const Session& session, CommandRight right);

}  // namespace vellumark
