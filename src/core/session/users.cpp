#include "core/session/users.h"

#include <fmt/format.h>

#include <algorithm>
#include <thread>

#include "core/base/text.h"
#include "core/datafile/schema.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

constexpr std::string_view kRescuePassword = "TANGERINE";
constexpr std::string_view kFailures = "MSysLoginFailures";
constexpr std::int64_t kFreeFailures = 3;  // a slip of the fingers costs nothing
constexpr std::chrono::milliseconds kFirstPause{100};
constexpr std::chrono::milliseconds kLongestPause{10000};

bool IsUserCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ' || c == '.' || c == '/' || c == '-';
}

std::string Folded(std::string_view typed) {
  return Upper(TrimView(typed));
}

// All but the password, which nobody is shown.
const FieldMap<UserRow>& UserFields() {
  static const FieldMap<UserRow> fields = [] {
    FieldMap<UserRow> map;
    map.Add("Username", &UserRow::Username).Add("IsAdmin", &UserRow::IsAdmin);
    for (const RightField& right : RightFields())
      map.Add(
          std::string(right.field), [value = right.value](UserRow & user) -> auto& { return user.rights.*value; });
    return map;
  }();
  return fields;
}

struct StoredUser {
  std::int64_t key = 0;
  UserRow row;
};

// The field keeps no empty text, so that an empty password is stored as null.
std::optional<StoredUser> Find(const Session& session, std::string_view name) {
  Statement row = session.File().Prepare(
      fmt::format("SELECT RowKey, Password, {} FROM Users WHERE Username = ?", UserFields().Columns()));
  row.Bind(1, name);
  if (!row.Step()) return std::nullopt;
  StoredUser user{row.Whole(0), {}};
  user.row.Password = row.Text(1);
  UserFields().Read(row, 2, user.row);
  return user;
}

std::vector<Cell> Cells(const UserRow& user) {
  std::vector<Cell> cells = UserFields().Cells(user, {FieldUse::Kept});
  cells.emplace_back("Password", user.Password.empty() ? Value() : Value(user.Password));
  return cells;
}

void Insert(Session& session, const UserRow& user) {
  InsertRow(session.File(), schema::Users, schema::Users.name, Cells(user));
}

// Windows that stay open show what the rights now in force let them.
void TellNewRights(Session& session) {
  session.changes.Tell({{Change::Kind::Settings, "", "", Change::What::All, ""}});
}

UserRow Administrator(std::string_view name, std::string_view password) {
  return {std::string(name), std::string(password), true, UserRights::All()};
}

void TakeUser(Session& session, std::string_view name, bool administrator, const UserRights& rights) {
  session.CurrentUser = std::string(name);
  session.IsAdminUser = administrator;
  TakeRights(session, rights);
  TellNewRights(session);
}

std::int64_t FailuresOf(const Session& session, std::string_view user) {
  if (!session.File().TableExists(kFailures)) return 0;
  Statement row = session.File().Prepare(fmt::format("SELECT Failures FROM {} WHERE Username = ?", kFailures));
  row.Bind(1, user);
  return row.Step() ? row.Whole(0) : 0;
}

void StoreFailures(const Session& session, std::string_view user, std::int64_t failures) {
  Transaction transaction(session.File());
  if (!session.File().TableExists(kFailures)) session.File().CreateTable(kFailures, schema::LoginFailures);
  session.File().Prepare(fmt::format("DELETE FROM {} WHERE Username = ?", kFailures)).Bind(1, user).Run();
  if (failures > 0)
    session.File()
        .Prepare(fmt::format("INSERT INTO {} (Username, Failures) VALUES (?, ?)", kFailures))
        .Bind(1, user)
        .Bind(2, failures)
        .Run();
  transaction.Commit();
}

std::chrono::milliseconds PauseAfter(std::int64_t failures) {
  std::chrono::milliseconds pause{0};
  for (std::int64_t count = kFreeFailures; count <= failures && pause < kLongestPause; ++count)
    pause = pause.count() == 0 ? kFirstPause : 2 * pause;
  return std::min(pause, kLongestPause);
}

// The one place where a password is looked at. After a few wrong ones each further try waits, twice as long each time.
// A try counts as wrong before it is looked at, so that ending the process in the pause gains nothing; the file is held
// meanwhile, so that nobody tries beside it. An archive copy cannot count and waits as after the first ones.
bool IsPassword(const Session& session, const StoredUser& user, std::string_view typed, const Pause& pause) {
  const std::string& name = user.row.Username;
  const bool right = EqualNoCase(user.row.Password, Folded(typed));
  if (session.File().IsReadOnly()) {
    if (!right) pause(kFirstPause);
    return right;
  }
  const std::int64_t failures = FailuresOf(session, name);
  if (right && failures == 0) return true;
  StoreFailures(session, name, failures + 1);
  if (const auto wait = PauseAfter(failures); wait.count() > 0) pause(wait);
  if (right) StoreFailures(session, name, 0);
  return right;
}

// True when the session has become that user.
bool TakeMatchingUser(Session& session, std::string_view typedName, std::string_view typedPassword,
                      const Pause& pause) {
  const std::string name = Folded(typedName);
  if (name.empty() || !UsersEnabled(session)) return false;
  const auto user = Find(session, name);
  if (!user || !IsPassword(session, *user, typedPassword, pause)) return false;
  TakeUser(session, name, user->row.IsAdmin, user->row.rights);
  return true;
}

Result<void> RequireUsers(const Session& session) {
  if (UsersEnabled(session)) return {};
  return Refuse("Users", "The Users feature is not active.");
}

Result<void> RequireAdministrator(const Session& session) {
  if (auto on = RequireUsers(session); !on) return on;
  if (!session.CurrentUser.empty() && session.IsAdminUser) return {};
  return Refuse("Permission Denied",
                fmt::format("{}, you do not have permission to change Users.", session.CurrentUser));
}

Result<void> RequireAdministratorToWrite(const Session& session) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  return RequireAdministrator(session);
}

Result<void> CheckRights(const UserRights& rights) {
  for (const RightField& right : RightFields()) {
    if (rights.*right.value > right.full)
      return Refuse("Users", fmt::format("{} must be between 0 and {}.", right.field, right.full),
                    std::string(right.field));
  }
  return {};
}

Refusal UnknownUser(std::string_view name) {
  return {"Users", fmt::format("There is no Username {}.", name), "cmbUsername"};
}

Refusal BlankAdministratorPassword() {
  return {"", "Administrator Password cannot be blank!", "txtPassword"};
}

void Write(Session& session, std::int64_t key, const std::vector<Cell>& cells) {
  Transaction transaction(session.File());
  UpdateRow(session.File(), schema::Users, schema::Users.name, key, cells);
  transaction.Commit();
}

std::vector<std::string> Names(const Session& session, std::string_view condition) {
  std::vector<std::string> names;
  if (!UsersEnabled(session)) return names;
  Statement statement = session.File().Prepare(
      fmt::format("SELECT Username FROM Users WHERE Username <> ?1 {} ORDER BY Username", condition));
  statement.Bind(1, kRescueUser);
  while (statement.Step()) names.push_back(statement.Text(0));
  return names;
}

}  // namespace

Result<std::string> ReadUserText(std::string_view typed, std::string_view field) {
  std::string text = Folded(typed);
  if (text.size() <= kUserTextLength && std::ranges::all_of(text, IsUserCharacter)) return text;
  return Refuse("Invalid Characters",
                fmt::format("Usernames and Passwords can have up to {} characters: letters, digits, blanks, full "
                            "stops, slashes and minus signs.",
                            kUserTextLength),
                std::string(field));
}

bool UsersEnabled(const Session& session) {
  return session.DataFileDB && session.DataFileDB->TableExists(schema::Users.name);
}

std::vector<std::string> UserNames(const Session& session) {
  return Names(session, "");
}

std::vector<std::string> DeletableUserNames(const Session& session) {
  return Names(session, "AND COALESCE(IsAdmin, 0) = 0");
}

TableOf<UserRow> UserColumns() {
  TableOf<UserRow> table;
  UserFields().AddColumns(table, {});
  return table;
}

ListTable ListUsers(const Session& session) {
  std::vector<UserRow> users;
  for (const std::string& name : UserNames(session)) users.push_back({name, "", false, {}});
  if (!session.IsAdminUser) return TableOf<UserRow>().Add("Username", &UserRow::Username).Of(std::move(users));
  for (UserRow& user : users) user = ReadUser(session, user.Username).value_or(user);
  return UserColumns().Of(std::move(users));
}

void PauseHere(std::chrono::milliseconds time) {
  std::this_thread::sleep_for(time);
}

Result<void> LogIn(Session& session, std::string_view name, std::string_view password, const Pause& pause) {
  if (TakeMatchingUser(session, name, password, pause)) return {};
  return Refuse("", "Invalid Username/Password!", "cmbUsername");
}

Result<void> SwitchUser(Session& session, std::string_view name, std::string_view password, const Pause& pause) {
  if (TakeMatchingUser(session, name, password, pause)) return {};
  return Refuse("", "Invalid Password!", "txtPassword");
}

void LogInWithoutUsers(Session& session) {
  session.CurrentUser.clear();
  session.IsAdminUser = true;
  session.Perm_MasterFormula = 1;
  session.Perm_Costs = 2;
  session.Perm_DBTools = 1;
}

Result<void> CreateUsers(Session& session, std::string_view typedName, std::string_view typedPassword) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  if (!session.DataFileDB) return Refuse("Users", "No Data File is open.");
  if (UsersEnabled(session)) return Refuse("Users", "The Users feature is already active.");
  const auto name = ReadUserText(typedName, "txtUsername");
  if (!name) return std::unexpected(name.error());
  if (*name == kRescueUser)
    return Refuse("Choose another username", "You cannot use ADMIN for a username. Please choose another username.",
                  "txtUsername");
  if (name->empty())
    return Refuse("Enter a username", "You cannot leave username blank. Please enter a username.", "txtUsername");
  const auto password = ReadUserText(typedPassword, "txtPassword");
  if (!password) return std::unexpected(password.error());
  if (password->empty())
    return Refuse("Enter a password", "You cannot leave password blank. Please enter a password.", "txtPassword");
  {
    Transaction transaction(session.File());
    session.File().CreateTable(schema::Users.name, schema::Users);
    Insert(session, Administrator(kRescueUser, kRescuePassword));
    Insert(session, Administrator(*name, *password));
    transaction.Commit();
  }
  TakeUser(session, *name, true, UserRights::All());
  session.prompt.Tell("",
                      "The Administrator features are located in the (Data File -> Username) menu of the Vellumark.",
                      Icon::Information);
  return {};
}

Result<bool> DeactivateUsers(Session& session) {
  if (auto allowed = RequireAdministratorToWrite(session); !allowed) return std::unexpected(allowed.error());
  if (!session.prompt.Ask("Users", "Deactivate Users feature and remove all restrictions?", Answer::No)) return false;
  {
    Transaction transaction(session.File());
    session.File().DropTable(schema::Users.name);
    if (session.File().TableExists(kFailures)) session.File().DropTable(kFailures);
    transaction.Commit();
  }
  LogInWithoutUsers(session);
  TellNewRights(session);
  session.prompt.Tell("Users Disabled", "The Users feature has been disabled.", Icon::Information);
  return true;
}

Result<void> CheckPassword(const Session& session, std::string_view password, const Pause& pause) {
  if (auto on = RequireUsers(session); !on) return on;
  const auto user = Find(session, session.CurrentUser);
  if (user && IsPassword(session, *user, password, pause)) return {};
  return Refuse("", "Invalid Password!", "txtPassword");
}

std::optional<UserRow> ReadUser(const Session& session, std::string_view typedName) {
  const std::string name = Folded(typedName);
  if (!UsersEnabled(session) || name == kRescueUser) return std::nullopt;
  auto user = Find(session, name);
  if (!user) return std::nullopt;
  return std::move(user->row);
}

Result<bool> AddUser(Session& session, const UserRow& typed) {
  if (auto allowed = RequireAdministratorToWrite(session); !allowed) return std::unexpected(allowed.error());
  auto name = ReadUserText(typed.Username, "txtUsername");
  if (!name) return std::unexpected(name.error());
  if (name->empty())
    return Refuse("Enter a username", "Username cannot be blank. Please enter a username.", "txtUsername");
  auto password = ReadUserText(typed.Password, "txtPassword");
  if (!password) return std::unexpected(password.error());
  if (auto sound = CheckRights(typed.rights); !sound) return std::unexpected(sound.error());
  if (password->empty() && !session.prompt.Ask("No password?", "Add this User without a Password?")) return false;
  if (Find(session, *name))
    return Refuse("", fmt::format("Username {} already exists. Choose another Username.", *name), "txtUsername");
  {
    Transaction transaction(session.File());
    Insert(session, {*name, *std::move(password), false, typed.rights});
    transaction.Commit();
  }
  session.prompt.Tell("User Added", fmt::format("User {} has been added to the Vellumark.", *name), Icon::Information);
  return true;
}

Result<void> ModifyUser(Session& session, const UserRow& typed) {
  if (auto allowed = RequireAdministratorToWrite(session); !allowed) return allowed;
  const std::string name = Folded(typed.Username);
  const auto stored = Find(session, name);
  if (!stored) return std::unexpected(UnknownUser(name));
  if (name == kRescueUser) return Refuse("Users", "You cannot modify the username ADMIN.", "cmbUsername");
  if (EqualNoCase(name, session.CurrentUser) && typed.IsAdmin != stored->row.IsAdmin)
    return Refuse("Users", "You cannot change your own Administrator status.", "chkIsAdmin");
  // A password that another make of file brought in stays as it is while nobody changes it.
  std::string password = stored->row.Password;
  if (typed.Password != password) {
    auto changed = ReadUserText(typed.Password, "txtPassword");
    if (!changed) return std::unexpected(changed.error());
    password = *std::move(changed);
  }
  if (typed.IsAdmin && password.empty()) return std::unexpected(BlankAdministratorPassword());
  if (auto sound = CheckRights(typed.rights); !sound) return sound;
  Write(session, stored->key, Cells({stored->row.Username, password, typed.IsAdmin, typed.rights}));
  if (EqualNoCase(name, session.CurrentUser)) {
    TakeRights(session, typed.rights);
    TellNewRights(session);
  }
  return {};
}

Result<bool> DeleteUser(Session& session, std::string_view typedName) {
  if (auto allowed = RequireAdministratorToWrite(session); !allowed) return std::unexpected(allowed.error());
  const std::string name = Folded(typedName);
  const auto stored = Find(session, name);
  if (!stored) return std::unexpected(UnknownUser(name));
  if (stored->row.IsAdmin) return Refuse("Delete User", "You cannot delete an Administrator.", "cmbUsername");
  if (!session.prompt.Ask("Delete User", fmt::format("Permanently delete user account {}?", name), Answer::No))
    return false;
  Transaction transaction(session.File());
  session.File().Prepare("DELETE FROM Users WHERE RowKey = ?").Bind(1, stored->key).Run();
  transaction.Commit();
  return true;
}

Result<bool> ChangePassword(Session& session, std::string_view current, std::string_view typed,
                            std::string_view repeated, const Pause& pause) {
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  if (auto on = RequireUsers(session); !on) return std::unexpected(on.error());
  if (EqualNoCase(session.CurrentUser, kRescueUser))
    return Refuse("", "You cannot change the password for username ADMIN.");
  const auto changed = ReadUserText(typed, "txtNewPassword");
  if (!changed) return std::unexpected(changed.error());
  if (*changed != Folded(repeated)) return Refuse("", "The new Passwords are not the same!", "txtConfirmPassword");
  if (changed->empty()) {
    if (session.IsAdminUser) return std::unexpected(BlankAdministratorPassword());
    if (!session.prompt.Ask("No password?", "Do you wish to save this Username with no Password?")) return false;
  }
  const auto stored = Find(session, session.CurrentUser);
  if (!stored || !IsPassword(session, *stored, current, pause))
    return Refuse("", "Invalid Current Password!", "txtCurrentPassword");
  Write(session, stored->key, {{"Password", changed->empty() ? Value() : Value(*changed)}});
  session.prompt.Tell("Password Changed", "Your Password has been changed.", Icon::Information);
  return true;
}

void RestoreRescueUser(Session& session) {
  if (!UsersEnabled(session)) return;
  if (!Find(session, kRescueUser)) {
    Transaction transaction(session.File());
    Insert(session, Administrator(kRescueUser, kRescuePassword));
    transaction.Commit();
  }
  if (session.CurrentUser.empty() || Find(session, session.CurrentUser)) return;
  TakeUser(session, kRescueUser, true, UserRights::All());
}

MendedUsers MendUsers(Session& session) {
  MendedUsers mended;
  Transaction transaction(session.File());
  mended.nameless = session.File().Prepare("DELETE FROM Users WHERE Username IS NULL OR Username = ''").Run();
  mended.twice = session.File()
                     .Prepare("DELETE FROM Users WHERE EXISTS (SELECT 1 FROM Users e WHERE e.Username = Users.Username AND "
                              "e.RowKey < Users.RowKey)")
                     .Run();
  mended.rescued = !Find(session, kRescueUser).has_value();
  RestoreRescueUser(session);
  transaction.Commit();
  return mended;
}

}  // namespace vellumark
