#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "desktop/session/users_desk.h"
#include "support/combos.h"

namespace vellumark::test {
namespace {

struct AdminTest : testing::Test, UsersDesk {
  UserRow OnFile(const std::string& name) {
    const auto user = ReadUser(session, name);
    if (!user) throw std::runtime_error("no user " + name);
    return *user;
  }
  static std::string Meaning(QWidget& dialog, const char* label) {
    return Control<QLabel>(dialog, label).text().toStdString();
  }
};

TEST_F(AdminTest, TheFirstAdministratorIsMadeByKeyboard) {
  const struct {
    const char* what;
    const char* name;
    const char* password;
    const char* title;
    const char* text;
    const char* focus;
  } rows[] = {
      {"the rescue administrator's name", "admin", "x", "Choose another username",
       "You cannot use ADMIN for a username. Please choose another username.", "txtUsername"},
      {"no name", "", "x", "Enter a username", "You cannot leave username blank. Please enter a username.",
       "txtUsername"},
      {"blanks for a name", "  ", "x", "Enter a username", "You cannot leave username blank. Please enter a username.",
       "txtUsername"},
      {"no password", "boss", "", "Enter a password", "You cannot leave password blank. Please enter a password.",
       "txtPassword"},
  };
  const auto result = RunForm("NewAdminForm", [&](QWidget& dialog) {
    EXPECT_EQ(FocusName(), "txtUsername");
    for (const auto& row : rows) {
      SCOPED_TRACE(row.what);
      Fill(dialog, "txtUsername", row.name);
      EXPECT_EQ(FocusName(), "txtPassword");
      Fill(dialog, "txtPassword", row.password);
      prompt.Expect(row.title, Answer::Ok, row.text);
      Control(dialog, "txtPassword").setFocus();
      PressOn(Qt::Key_Return);
      EXPECT_EQ(FocusName(), row.focus);
      EXPECT_FALSE(UsersEnabled(session));
    }
    Fill(dialog, "txtUsername", "boss");
    prompt.Expect("", Answer::Ok,
                  "The Administrator features are located in the (Data File -> Username) menu of the Vellumark.");
    TypeOn("secret");
    PressOn(Qt::Key_Return);
  });
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(result->Has("changed"));
  EXPECT_EQ(session.CurrentUser, "BOSS");
  EXPECT_EQ(UserNames(session), std::vector<std::string>{"BOSS"});
  EXPECT_TRUE(LogIn(session, "ADMIN", "TANGERINE"));
}

TEST_F(AdminTest, EveryCommandOfAnAdministratorChecksThePasswordFirst) {
  HaveUsers();
  EXPECT_FALSE(
      RunForm("AdminOptionsForm",
              [&](QWidget& dialog) {
                EXPECT_EQ(FocusName(), "txtPassword");
                TypeOn("RED");
                for (const char* command : {"cmdAddUser", "cmdModifyUser", "cmdDeleteUser", "cmdDisableUsernames"}) {
                  SCOPED_TRACE(command);
                  prompt.Expect("", Answer::Ok, "Invalid Password!");
                  Click(dialog, command);
                  EXPECT_EQ(FocusName(), "txtPassword");
                }
                Leave(dialog);
              })
          .has_value())
      << "nothing was changed";
  EXPECT_EQ(UserNames(session).size(), 4U);
}

TEST_F(AdminTest, AUserIsAddedWithTheRightsChosen) {
  HaveUsers();
  const auto result = RunForm("AdminOptionsForm", [&](QWidget& options) {
    TypeOn("secret");
    Inside([] { PressOn(Qt::Key_Return); }, "NewUserForm",
           [&](QWidget& dialog) {
             EXPECT_EQ(FocusName(), "txtUsername");
             EXPECT_EQ(Meaning(dialog, "lblEdit_Costs"), "User cannot view or edit Costs.");
             EXPECT_EQ(Meaning(dialog, "lblEdit_MasterFormula"), "User can view but not edit Master Formulas.");
             Click(dialog, "OptEdit_Costs_View");
             EXPECT_EQ(Meaning(dialog, "lblEdit_Costs"), "User can view but not edit Costs.");
             PressOn(Qt::Key_Right);
             EXPECT_EQ(Meaning(dialog, "lblEdit_Costs"), "User can view and edit Costs.");
             Click(dialog, "OptEdit_MasterFormula_Edit");
             EXPECT_EQ(Meaning(dialog, "lblEdit_MasterFormula"), "User can view and edit Master Formulas.");
             Press(Control(dialog, "chkDF_ExportDF_Excel"), Qt::Key_Space);
             EXPECT_EQ(Meaning(dialog, "lblDF_ExportDF_Excel"), "User can export the Data File.");

             prompt.Expect("Enter a username", Answer::Ok, "Username cannot be blank. Please enter a username.");
             PressOn(Qt::Key_S, Qt::ControlModifier);
             EXPECT_EQ(FocusName(), "txtUsername");

             Type(Control(dialog, "txtUsername"), "anna");
             Type(Control(dialog, "txtPassword"), "green");
             prompt.Expect("", Answer::Ok, "Username ANNA already exists. Choose another Username.");
             PressOn(Qt::Key_S, Qt::ControlModifier);
             EXPECT_EQ(FocusName(), "txtUsername");

             Fill(dialog, "txtUsername", "carl");
             Fill(dialog, "txtPassword", "");
             prompt.Expect("No password?", Answer::No, "Add this User without a Password?");
             Click(dialog, "cmdSave");
             EXPECT_TRUE(dialog.isVisible());
             EXPECT_EQ(FocusName(), "txtPassword");
             TypeOn("green");
             prompt.Expect("User Added", Answer::Ok, "User CARL has been added to the Vellumark.");
             Click(dialog, "cmdSave");
           });
    EXPECT_TRUE(options.isVisible()) << "further commands may follow";
    Leave(options);
  });
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(result->Has("changed"));
  const UserRow carl = OnFile("CARL");
  EXPECT_EQ(carl.Password, "GREEN");
  EXPECT_FALSE(carl.IsAdmin);
  EXPECT_EQ(carl.rights, (UserRights{.Edit_MasterFormula = 1, .Edit_Costs = 2, .DF_ExportDF_Excel = 1}));
}

TEST_F(AdminTest, AUserMayBeAddedWithoutAPassword) {
  HaveUsers();
  RunForm("NewUserForm", [&](QWidget&) {
    TypeOn("dora");
    prompt.Expect("No password?", Answer::Yes, "Add this User without a Password?");
    prompt.Expect("User Added", Answer::Ok, "User DORA has been added to the Vellumark.");
    PressOn(Qt::Key_S, Qt::ControlModifier);
  });
  EXPECT_EQ(OnFile("DORA").rights, UserRights{}) << "what nobody chose is not allowed";
}

TEST_F(AdminTest, EveryRightCanBeGivenAndTaken) {
  HaveUsers();
  const UserRights rights[] = {UserRights::All(), {}};
  for (const UserRights& wanted : rights) {
    RunForm("ModifyUserForm", [&](QWidget& dialog) {
      Choose(dialog, "cmbUsername", "ANNA");
      for (const RightField& right : RightFields()) {
        const std::string field(right.field);
        if (field.starts_with("Edit_")) {
          const bool least = wanted.*right.value == 0;
          const char* word = !least ? "_Edit" : right.full == 2 ? "_Hide" : "_View";
          Click(dialog, ("Opt" + field + word).c_str());
        } else {
          auto& check = Control<QCheckBox>(dialog, ("chk" + field).c_str());
          if (check.isChecked() != (wanted.*right.value == 1)) Click(check);
        }
        EXPECT_EQ(Meaning(dialog, ("lbl" + field).c_str()), right.texts[wanted.*right.value]);
      }
      Click(dialog, "cmdSave");
    });
    EXPECT_EQ(OnFile("ANNA").rights, wanted);
    EXPECT_EQ(OnFile("ANNA").Password, "RED");
  }
}

TEST_F(AdminTest, ModifyingShowsEachUserAndSavesWhatWasChanged) {
  HaveUsers();
  const auto result = RunForm("ModifyUserForm", [&](QWidget& dialog) {
    EXPECT_EQ(ItemsOf(dialog, "cmbUsername"), (QStringList{"ADMINISTRATOR", "ANNA", "BOSS", "GUEST"}));
    Choose(dialog, "cmbUsername", "BOSS");
    EXPECT_TRUE(Control<QCheckBox>(dialog, "chkIsAdmin").isChecked());
    EXPECT_FALSE(Control(dialog, "chkIsAdmin").isEnabled()) << "nobody changes their own standing";
    EXPECT_TRUE(Control<QRadioButton>(dialog, "OptEdit_Costs_Edit").isChecked());
    Choose(dialog, "cmbUsername", "ANNA");
    EXPECT_TRUE(Control(dialog, "chkIsAdmin").isEnabled());
    EXPECT_TRUE(Control<QRadioButton>(dialog, "OptEdit_Costs_View").isChecked());
    EXPECT_TRUE(Control<QCheckBox>(dialog, "chkDBToolsMenu").isChecked());
    EXPECT_FALSE(Control<QCheckBox>(dialog, "chkDF_OptionsMenu").isChecked());

    Click(dialog, "chkIsAdmin");
    Fill(dialog, "txtPassword", "");
    prompt.Expect("", Answer::Ok, "Administrator Password cannot be blank!");
    Click(dialog, "cmdSave");
    EXPECT_EQ(FocusName(), "txtPassword");
    TypeOn("yellow");
    Click(dialog, "cmdSave");
  });
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(result->Has("changed"));
  EXPECT_EQ(OnFile("ANNA").Password, "YELLOW");
  EXPECT_TRUE(OnFile("ANNA").IsAdmin);
}

TEST_F(AdminTest, ChangesToOneUserAreNotLostByChoosingAnother) {
  HaveUsers();
  RunForm("ModifyUserForm", [&](QWidget& dialog) {
    Choose(dialog, "cmbUsername", "ANNA");
    Click(dialog, "chkDF_OptionsMenu");
    auto& names = Control<QComboBox>(dialog, "cmbUsername");
    prompt.Expect("Modify User", Answer::No, "Leave the changes to user ANNA unsaved?");
    Press(names, Qt::Key_Down);
    EXPECT_EQ(names.currentText(), "ANNA");
    EXPECT_TRUE(Control<QCheckBox>(dialog, "chkDF_OptionsMenu").isChecked());
    prompt.Expect("Modify User", Answer::Yes);
    Press(names, Qt::Key_Down);
    EXPECT_EQ(names.currentText(), "BOSS");
    Leave(dialog);
  });
  EXPECT_EQ(OnFile("ANNA").rights.DF_OptionsMenu, 0);
}

TEST_F(AdminTest, OwnRightsAreInForceAtOnce) {
  HaveUsers();
  RunForm("ModifyUserForm", [&](QWidget& dialog) {
    Choose(dialog, "cmbUsername", "BOSS");
    Click(dialog, "OptEdit_Costs_View");
    Click(dialog, "cmdSave");
  });
  EXPECT_EQ(session.Perm_Costs, 1);
}

TEST_F(AdminTest, UsersAreDeletedButNoAdministrators) {
  HaveUsers();
  const char* question = "Permanently delete user account ANNA?";
  const auto result = RunForm("DeleteUserForm", [&](QWidget& dialog) {
    EXPECT_EQ(ItemsOf(dialog, "cmbUsername"), (QStringList{"ADMINISTRATOR", "ANNA", "GUEST"}));
    Choose(dialog, "cmbUsername", "ANNA");
    PressOn(Qt::Key_Return);  // deletes nothing, nor does it ask
    prompt.Expect("Delete User", Answer::No, question);
    Click(dialog, "cmdDelete");
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(UserNames(session).size(), 4U);
    prompt.Expect("Delete User", Answer::Yes, question);
    Click(dialog, "cmdDelete");
  });
  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(UserNames(session), (std::vector<std::string>{"ADMINISTRATOR", "BOSS", "GUEST"}));

  session.File().Prepare("DELETE FROM Users WHERE IsAdmin = 0").Run();
  RunForm("DeleteUserForm", [&](QWidget& dialog) {
    EXPECT_EQ(ItemsOf(dialog, "cmbUsername"), QStringList{});
    EXPECT_FALSE(Control(dialog, "cmdDelete").isEnabled());
    Leave(dialog);
  });
}

TEST_F(AdminTest, DeactivatingTakesTheRestrictionsAway) {
  HaveUsers();
  const char* question = "Deactivate Users feature and remove all restrictions?";
  const auto result = RunForm("AdminOptionsForm", [&](QWidget& dialog) {
    TypeOn("secret");
    prompt.Expect("Users", Answer::No, question);
    Click(dialog, "cmdDisableUsernames");
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_TRUE(UsersEnabled(session));
    prompt.Expect("Users", Answer::Yes, question);
    prompt.Expect("Users Disabled", Answer::Ok, "The Users feature has been disabled.");
    Click(dialog, "cmdDisableUsernames");
    EXPECT_FALSE(dialog.isVisible()) << "there is nothing left to administer";
  });
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(result->Has("changed"));
  EXPECT_FALSE(UsersEnabled(session));
  EXPECT_EQ(session.CurrentUser, "");
  EXPECT_TRUE(session.IsAdminUser);
}

TEST_F(AdminTest, Looks) {
  RunForm("NewAdminForm", [&](QWidget& dialog) {
    Type(Control(dialog, "txtUsername"), "BOSS");
    Picture(dialog, "session-new-admin", {});
    Leave(dialog);
  });
  HaveUsers();
  const std::pair<const char*, const char*> windowsAndPictures[] = {{"AdminOptionsForm", "session-admin-options"},
                                                                    {"NewUserForm", "session-new-user"},
                                                                    {"ModifyUserForm", "session-modify-user"},
                                                                    {"DeleteUserForm", "session-delete-user"}};
  for (const auto& [name, picture] : windowsAndPictures) {
    RunForm(name, [&, picture = picture](QWidget& dialog) {
      if (dialog.objectName() == "ModifyUserForm") Choose(dialog, "cmbUsername", "ANNA");
      Picture(dialog, picture, {});
      EXPECT_LE(dialog.height(), 660) << "must fit a screen of 1280 by 720, with its title bar";
      EXPECT_LE(dialog.width(), 1280);
      Leave(dialog);
    });
  }
}

}  // namespace
}  // namespace vellumark::test
