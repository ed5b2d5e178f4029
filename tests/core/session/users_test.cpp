#include "core/session/users.h"

#include <gtest/gtest.h>

#include "support/ink_room.h"
#include "support/snapshot.h"

namespace vellumark {
namespace {

constexpr std::string_view kFirstWords =
    "The Administrator features are located in the (Data File -> Username) menu of the Vellumark.";

// An ink room with the first administrator BOSS, password "INK 1", logged in.
struct UserRoom : test::InkRoom {
  UserRoom() {
    prompt.Expect("", Answer::Ok, std::string(kFirstWords));
    EXPECT_TRUE(CreateUsers(session, " boss", "ink 1 "));
  }
  void Add(const std::string& name, const std::string& password, UserRights rights = {}) {
    prompt.Expect("User Added", Answer::Ok, "User " + name + " has been added to the Vellumark.");
    const auto added = AddUser(session, {name, password, false, rights});
    ASSERT_TRUE(added && *added);
  }
  void LogInAs(const std::string& name, const std::string& password) { ASSERT_TRUE(LogIn(session, name, password)); }
};

template <class T>
Refusal RefusalOf(const Result<T>& result) {
  return result ? Refusal{"not refused", "", ""} : result.error();
}

TEST(UserTexts, CapitalsAndFifteenCharacters) {
  EXPECT_EQ(*ReadUserText("  night shift/2 ", "txtUsername"), "NIGHT SHIFT/2");
  for (const std::string& bad : {std::string("SIXTEEN LETTERSX"), std::string("O'NEIL"), std::string("A\0B", 3),
                                 std::string("\xff"), std::string("J\xc3\x9cRGEN")}) {
    const Refusal refusal = RefusalOf(ReadUserText(bad, "txtPassword"));
    EXPECT_EQ(refusal.field, "txtPassword");
    EXPECT_EQ(refusal.text.find(bad), std::string::npos) << "a password must not be repeated";
  }
}

TEST(Users, AFileWithoutUsersGivesEverythingAndKeepsTheOtherPermissions) {
  test::InkRoom room;
  TakeRights(room.session, {});
  room.session.CurrentUser = "OLD";
  room.session.IsAdminUser = false;
  EXPECT_FALSE(UsersEnabled(room.session));
  EXPECT_TRUE(UserNames(room.session).empty());
  LogInWithoutUsers(room.session);
  EXPECT_EQ(room.session.CurrentUser, "");
  EXPECT_TRUE(room.session.IsAdminUser);
  EXPECT_EQ(room.session.Perm_MasterFormula, 1);
  EXPECT_EQ(room.session.Perm_Costs, 2);
  EXPECT_EQ(room.session.Perm_DBTools, 1);
  EXPECT_EQ(room.session.Perm_Options, 0);
  EXPECT_TRUE(Allows(room.session, CommandRight::Options));
  EXPECT_EQ(RightsInForce(room.session), UserRights::All());
}

TEST(Users, NewAdminFormChecksInOrderAndWritesNothingOnARefusal) {
  test::InkRoom room;
  const struct {
    const char *name, *password, *title, *text;
  } cases[] = {
      {" admin ", "", "Choose another username",
       "You cannot use ADMIN for a username. Please choose another username."},
      {" ", "", "Enter a username", "You cannot leave username blank. Please enter a username."},
      {"BOSS", "  ", "Enter a password", "You cannot leave password blank. Please enter a password."},
  };
  for (const auto& c : cases) {
    const Refusal refusal = RefusalOf(CreateUsers(room.session, c.name, c.password));
    EXPECT_EQ(refusal.title, c.title);
    EXPECT_EQ(refusal.text, c.text);
    EXPECT_FALSE(UsersEnabled(room.session));
  }
  room.session.ArchiveView = true;
  EXPECT_EQ(RefusalOf(CreateUsers(room.session, "BOSS", "X")).title, "Archive or Backup Data File");
  EXPECT_FALSE(UsersEnabled(room.session));
}

TEST(Users, TheFirstAdministratorIsLoggedInBesideTheRescueUser) {
  UserRoom room;
  EXPECT_EQ(room.session.CurrentUser, "BOSS");
  EXPECT_TRUE(room.session.IsAdminUser);
  EXPECT_EQ(UserNames(room.session), std::vector<std::string>{"BOSS"});
  Statement rows = room.session.File().Prepare("SELECT * FROM Users ORDER BY Username");
  const std::vector<std::string> names{"ADMIN", "BOSS"};
  const std::vector<std::string> passwords{"TANGERINE", "INK 1"};
  for (std::size_t i = 0; i < names.size(); ++i) {
    ASSERT_TRUE(rows.Step());
    ASSERT_EQ(rows.ColumnCount(), 13);  // with the key of the row
    EXPECT_EQ(rows.Text(0), names[i]);
    EXPECT_EQ(rows.Text(1), passwords[i]);
    for (int column = 2; column < 12; ++column)
      EXPECT_EQ(rows.Whole(column), rows.ColumnName(column) == "Edit_Costs" ? 2 : 1) << rows.ColumnName(column);
  }
  EXPECT_FALSE(rows.Step());
  EXPECT_EQ(RefusalOf(CreateUsers(room.session, "SECOND", "X")).text, "The Users feature is already active.");
}

TEST(Users, LoginTakesTheRowAndARefusedOneLeavesTheSession) {
  UserRoom room;
  room.prompt.Expect("No password?", Answer::Yes, "Add this User without a Password?");
  room.Add("OPEN", "", {.Edit_MasterFormula = 1, .Edit_Costs = 1, .DF_OptionsMenu = 1, .DBToolsMenu = 1});

  const struct {
    const char *name, *password;
    bool in;
  } cases[] = {
      {"BOSS", "INK 1", true},      {" boss ", " ink 1 ", true},  {"BOSS", "INK1", false},
      {"BOSS", "", false},          {"", "INK 1", false},         {"", "", false},
      {"OPEN", "", true},           {"OPEN", " ", true},          {"OPEN", "X", false},
      {"admin", "tangerine", true}, {"ADMIN", "", false},         {"BOSS", "%", false},
      {"' OR 1=1 --", "X", false},  {"BOSS", "' OR ''='", false}, {"NOBODY", "X", false},
  };
  for (const auto& c : cases) {
    room.LogInAs("OPEN", "");
    const auto result = LogIn(room.session, c.name, c.password);
    EXPECT_EQ(result.has_value(), c.in) << c.name << "/" << c.password;
    if (c.in) continue;
    EXPECT_EQ(result.error(), (Refusal{"", "Invalid Username/Password!", "cmbUsername"}));
    EXPECT_EQ(room.session.CurrentUser, "OPEN");
  }
  room.LogInAs("open", "");
  EXPECT_EQ(room.session.CurrentUser, "OPEN");
  EXPECT_FALSE(room.session.IsAdminUser);
  EXPECT_EQ(RightsInForce(room.session),
            (UserRights{.Edit_MasterFormula = 1, .Edit_Costs = 1, .DF_OptionsMenu = 1, .DBToolsMenu = 1}));
  EXPECT_EQ(RefusalOf(SwitchUser(room.session, "BOSS", "X")).text, "Invalid Password!");
  EXPECT_EQ(room.session.CurrentUser, "OPEN");
  ASSERT_TRUE(SwitchUser(room.session, "BOSS", "INK 1"));
  EXPECT_TRUE(room.session.IsAdminUser);
  EXPECT_EQ(room.session.Perm_Costs, 2);
}

TEST(Users, WrongPasswordsOfAUserWaitTwiceAsLongEachTimeUpToTenSeconds) {
  UserRoom room;
  room.Add("ANNA", "A");
  std::vector<int> pauses;
  const Pause pause = [&](std::chrono::milliseconds time) { pauses.push_back(static_cast<int>(time.count())); };
  const std::string before = test::Snapshot(room.session.File());
  EXPECT_TRUE(LogIn(room.session, "BOSS", "INK 1", pause));
  EXPECT_EQ(test::Snapshot(room.session.File()), before) << "the right password writes nothing";
  // By whichever window: they share the count, and names are told apart.
  for (int i = 0; i < 4; ++i) EXPECT_FALSE(CheckPassword(room.session, "X", pause));
  for (int i = 0; i < 4; ++i) EXPECT_FALSE(SwitchUser(room.session, "boss", "X", pause));
  EXPECT_FALSE(ChangePassword(room.session, "X", "NEW", "NEW", pause));
  EXPECT_FALSE(LogIn(room.session, "ANNA", "X", pause));
  EXPECT_FALSE(LogIn(room.session, "NOBODY", "X", pause));
  for (int i = 0; i < 2; ++i) EXPECT_FALSE(LogIn(room.session, "BOSS", "X", pause));
  EXPECT_EQ(pauses, (std::vector<int>{100, 200, 400, 800, 1600, 3200, 6400, 10000}));
  EXPECT_TRUE(LogIn(room.session, "BOSS", "INK 1", pause));
  EXPECT_FALSE(LogIn(room.session, "BOSS", "X", pause));
  EXPECT_EQ(pauses.size(), 9U) << "after the right one it begins anew";
}

// Each field of a row reaches its own permission: one right at a time through the file and back.
TEST(Users, EachRightIsStoredAndTakenOnItsOwn) {
  UserRoom room;
  room.Add("ONE", "X");
  for (const RightField& right : RightFields()) {
    room.LogInAs("BOSS", "INK 1");
    UserRights rights;
    rights.*right.value = right.full;
    ASSERT_TRUE(ModifyUser(room.session, {"ONE", "X", false, rights}));
    EXPECT_EQ(room.Scalar("SELECT " + std::string(right.field) + " FROM Users WHERE Username = 'ONE'").Whole(),
              right.full);
    room.LogInAs("ONE", "X");
    for (const RightField& other : RightFields())
      EXPECT_EQ(room.session.*other.permission, &other == &right ? right.full : 0) << right.field << other.field;
  }
}

TEST(Users, AddingChecksInOrder) {
  UserRoom room;
  room.Add("ANNA", "A");
  const auto add = [&](const std::string& name, const std::string& password, UserRights rights = {}) {
    return AddUser(room.session, {name, password, false, rights});
  };
  EXPECT_EQ(RefusalOf(add(" ", "")),
            (Refusal{"Enter a username", "Username cannot be blank. Please enter a username.", "txtUsername"}));
  room.prompt.Expect("No password?", Answer::No);
  const auto declined = add("BERT", "");
  ASSERT_TRUE(declined);
  EXPECT_FALSE(*declined);
  EXPECT_EQ(RefusalOf(add("anna", "B")).text, "Username ANNA already exists. Choose another Username.");
  EXPECT_EQ(RefusalOf(add("Admin", "B")).text, "Username ADMIN already exists. Choose another Username.");
  EXPECT_EQ(RefusalOf(add("BERT", "B", {.Edit_Costs = 3})).field, "Edit_Costs");
  EXPECT_EQ(RefusalOf(add("BERT", "SECRET_SECRET_SECRET")).text.find("SECRET"), std::string::npos);
  EXPECT_EQ(UserNames(room.session), (std::vector<std::string>{"ANNA", "BOSS"}));
  // A new user is never an administrator, whatever the row says.
  room.prompt.Expect("User Added");
  ASSERT_TRUE(AddUser(room.session, {"CARL", "C", true, UserRights::All()}));
  EXPECT_FALSE(ReadUser(room.session, "CARL")->IsAdmin);
}

TEST(Users, ModifyingKeepsAnAdministratorIn) {
  UserRoom room;
  room.Add("ANNA", "A");
  const UserRights all = UserRights::All();
  EXPECT_EQ(RefusalOf(ModifyUser(room.session, {"NOBODY", "X", false, {}})).text, "There is no Username NOBODY.");
  EXPECT_EQ(RefusalOf(ModifyUser(room.session, {"admin", "X", true, all})).text,
            "You cannot modify the username ADMIN.");
  EXPECT_EQ(RefusalOf(ModifyUser(room.session, {"BOSS", "INK 1", false, all})).text,
            "You cannot change your own Administrator status.");
  EXPECT_EQ(RefusalOf(ModifyUser(room.session, {"BOSS", "", true, all})).text,
            "Administrator Password cannot be blank!");
  EXPECT_EQ(RefusalOf(ModifyUser(room.session, {"ANNA", "", true, all})).text,
            "Administrator Password cannot be blank!");
  EXPECT_FALSE(ReadUser(room.session, "ADMIN"));
  ASSERT_TRUE(ModifyUser(room.session, {"ANNA", "new", true, all}));
  EXPECT_EQ(DeletableUserNames(room.session), std::vector<std::string>{});
  room.LogInAs("ANNA", "NEW");
  ASSERT_TRUE(ModifyUser(room.session, {"BOSS", "INK 1", false, {}}));
  EXPECT_EQ(DeletableUserNames(room.session), std::vector<std::string>{"BOSS"});
  // One's own rights are in force at once.
  ASSERT_TRUE(ModifyUser(room.session, {"ANNA", "NEW", true, {.Edit_Costs = 1}}));
  EXPECT_EQ(room.session.Perm_Costs, 1);
}

TEST(Users, DeletingAsksAndSparesAdministrators) {
  UserRoom room;
  room.Add("ANNA", "A");
  EXPECT_EQ(RefusalOf(DeleteUser(room.session, "BOSS")).text, "You cannot delete an Administrator.");
  EXPECT_EQ(RefusalOf(DeleteUser(room.session, "ADMIN")).text, "You cannot delete an Administrator.");
  EXPECT_EQ(RefusalOf(DeleteUser(room.session, "NOBODY")).text, "There is no Username NOBODY.");
  room.prompt.Expect("Delete User", Answer::No, "Permanently delete user account ANNA?");
  EXPECT_FALSE(*DeleteUser(room.session, "anna"));
  EXPECT_EQ(UserNames(room.session).size(), 2U);
  room.prompt.Expect("Delete User", Answer::Yes);
  EXPECT_TRUE(*DeleteUser(room.session, "anna"));
  EXPECT_EQ(UserNames(room.session), std::vector<std::string>{"BOSS"});
}

TEST(Users, OnlyAnAdministratorOfAWritableFileChangesUsers) {
  UserRoom room;
  room.Add("ANNA", "A", UserRights::All());
  const auto refusals = [&] {
    return std::vector<Refusal>{RefusalOf(AddUser(room.session, {"X", "X", false, {}})),
                                RefusalOf(ModifyUser(room.session, {"ANNA", "A", true, UserRights::All()})),
                                RefusalOf(DeleteUser(room.session, "ANNA")), RefusalOf(DeactivateUsers(room.session))};
  };
  room.LogInAs("ANNA", "A");
  for (const Refusal& refusal : refusals()) {
    EXPECT_EQ(refusal.title, "Permission Denied");
    EXPECT_EQ(refusal.text, "ANNA, you do not have permission to change Users.");
  }
  room.LogInAs("BOSS", "INK 1");
  room.session.ArchiveView = true;
  for (const Refusal& refusal : refusals()) EXPECT_EQ(refusal.title, "Archive or Backup Data File");
  EXPECT_EQ(RefusalOf(ChangePassword(room.session, "INK 1", "X", "X")).title, "Archive or Backup Data File");
  test::InkRoom without;
  EXPECT_EQ(RefusalOf(AddUser(without.session, {"X", "X", false, {}})).text, "The Users feature is not active.");
  EXPECT_EQ(RefusalOf(CheckPassword(without.session, "")).text, "The Users feature is not active.");
}

TEST(Users, DeactivatingRemovesAllRestrictions) {
  UserRoom room;
  EXPECT_EQ(RefusalOf(CheckPassword(room.session, "X")).text, "Invalid Password!");
  EXPECT_TRUE(CheckPassword(room.session, "ink 1"));
  room.prompt.Expect("Users", Answer::No, "Deactivate Users feature and remove all restrictions?");
  EXPECT_FALSE(*DeactivateUsers(room.session));
  EXPECT_TRUE(UsersEnabled(room.session));
  room.prompt.Expect("Users", Answer::Yes).Expect("Users Disabled", Answer::Ok, "The Users feature has been disabled.");
  EXPECT_TRUE(*DeactivateUsers(room.session));
  EXPECT_FALSE(UsersEnabled(room.session));
  EXPECT_EQ(room.session.CurrentUser, "");
  EXPECT_TRUE(room.session.IsAdminUser);
  room.prompt.Expect("");
  EXPECT_TRUE(CreateUsers(room.session, "AGAIN", "X"));
}

TEST(Users, ChangingThePasswordRefusesInOrder) {
  UserRoom room;
  room.Add("ANNA", "A");
  room.LogInAs("ADMIN", "TANGERINE");
  EXPECT_EQ(RefusalOf(ChangePassword(room.session, "TANGERINE", "X", "X")).text,
            "You cannot change the password for username ADMIN.");
  room.LogInAs("BOSS", "INK 1");
  EXPECT_EQ(RefusalOf(ChangePassword(room.session, "X", "", "")).text, "Administrator Password cannot be blank!");
  room.LogInAs("ANNA", "A");
  EXPECT_EQ(RefusalOf(ChangePassword(room.session, "A", "NEW", "NEWER")).text, "The new Passwords are not the same!");
  EXPECT_EQ(RefusalOf(ChangePassword(room.session, "B", "NEW", "new")).text, "Invalid Current Password!");
  const std::string question = "Do you wish to save this Username with no Password?";
  room.prompt.Expect("No password?", Answer::No, question);
  EXPECT_FALSE(*ChangePassword(room.session, "A", "", ""));
  room.LogInAs("ANNA", "A");
  room.prompt.Expect("Password Changed", Answer::Ok, "Your Password has been changed.");
  EXPECT_TRUE(*ChangePassword(room.session, "a", "new", "NEW "));
  EXPECT_FALSE(LogIn(room.session, "ANNA", "A"));
  room.LogInAs("ANNA", "NEW");
  room.prompt.Expect("No password?", Answer::Yes, question).Expect("Password Changed");
  EXPECT_TRUE(*ChangePassword(room.session, "NEW", "", ""));
  room.LogInAs("ANNA", "");
}

TEST(Users, TheRescueUserComesBackAndTakesOverFromAUserWhoIsGone) {
  UserRoom room;
  room.session.File().Execute("DELETE FROM Users");
  RestoreRescueUser(room.session);
  EXPECT_EQ(room.session.CurrentUser, "ADMIN");
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM Users").Whole(), 1);
  EXPECT_TRUE(UserNames(room.session).empty());
  EXPECT_TRUE(LogIn(room.session, "ADMIN", "TANGERINE"));
  RestoreRescueUser(room.session);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM Users").Whole(), 1);
}

TEST(Rights, EveryValueHasItsWords) {
  const auto textOf = [](std::string_view field, std::uint8_t value) {
    UserRights rights;
    for (const RightField& right : RightFields())
      if (right.field == field) rights.*right.value = value;
    for (const PermissionText& line : PermissionTexts(rights))
      if (line.field == field) return std::string(line.text);
    return std::string("no line");
  };
  EXPECT_EQ(textOf("Edit_MasterFormula", 0), "User can view but not edit Master Formulas.");
  EXPECT_EQ(textOf("Edit_MasterFormula", 1), "User can view and edit Master Formulas.");
  EXPECT_EQ(textOf("Edit_Costs", 0), "User cannot view or edit Costs.");
  EXPECT_EQ(textOf("Edit_Costs", 1), "User can view but not edit Costs.");
  EXPECT_EQ(textOf("Edit_Costs", 2), "User can view and edit Costs.");
  EXPECT_EQ(textOf("Edit_VOCHAP", 0), "User can view but not edit VOC and HAP.");
  for (const RightField& right : RightFields()) {
    for (std::uint8_t value = 0; value <= right.full; ++value) EXPECT_NE(textOf(right.field, value), "") << right.field;
    EXPECT_EQ(textOf(right.field, 9), textOf(right.field, 0));
  }
}

}  // namespace
}  // namespace vellumark
