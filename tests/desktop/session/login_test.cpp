#include <QComboBox>
#include <QLineEdit>

#include "desktop/session/users_desk.h"

namespace vellumark::test {
namespace {

struct LoginTest : testing::Test, UsersDesk {
  LoginTest() {
    HaveUsers();
    session.CurrentUser.clear();
    session.IsAdminUser = false;
    TakeRights(session, {});
  }
  static void LogInByKeys(const std::string& name, const std::string& password) {
    EXPECT_EQ(FocusName(), "cmbUsername");
    if (!name.empty()) TypeOn(name);
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), "txtPassword");
    if (!password.empty()) TypeOn(password);
    PressOn(Qt::Key_Return);
  }
};

TEST_F(LoginTest, LetsInByKeyboardAlone) {
  const struct {
    const char* what;
    const char* name;
    const char* password;
    const char* user;
    bool admin;
  } rows[] = {
      {"in capitals", "BOSS", "SECRET", "BOSS", true},
      {"in small letters", "anna", "red", "ANNA", false},
      {"blanks around", " boss ", " secret ", "BOSS", true},
      {"the rescue administrator, who begins like a user on the list", "admin", "tangerine", "ADMIN", true},
      {"a user without a password", "guest", "", "GUEST", false},
      {"a name completed from the list", "gu", "", "GUEST", false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    session.CurrentUser.clear();
    const auto result = RunForm("LoginForm", [&](QWidget&) { LogInByKeys(row.name, row.password); });
    ASSERT_TRUE(result.has_value());
    EXPECT_TRUE(result->Has("changed"));
    EXPECT_FALSE(result->Has("exit"));
    EXPECT_EQ(session.CurrentUser, row.user);
    EXPECT_EQ(session.IsAdminUser, row.admin);
  }
}

TEST_F(LoginTest, ARefusalClearsBothBoxesAndStartsAgainAtTheName) {
  const struct {
    const char* what;
    const char* name;
    const char* password;
  } rows[] = {
      {"a wrong password", "BOSS", "SECRETS"},
      {"the password of another", "BOSS", "RED"},
      {"no password where there is one", "ANNA", ""},
      {"a password where there is none", "GUEST", "X"},
      {"nobody of that name", "ZOE", "RED"},
      {"no name", "", "SECRET"},
      {"nothing at all", "", ""},
  };
  RunForm("LoginForm", [&](QWidget& dialog) {
    for (const auto& row : rows) {
      SCOPED_TRACE(row.what);
      prompt.Expect("", Answer::Ok, "Invalid Username/Password!");
      LogInByKeys(row.name, row.password);
      EXPECT_TRUE(dialog.isVisible());
      EXPECT_EQ(FocusName(), "cmbUsername");
      EXPECT_EQ(Control<QComboBox>(dialog, "cmbUsername").currentText(), "");
      EXPECT_EQ(Control<QLineEdit>(dialog, "txtPassword").text(), "");
      EXPECT_EQ(session.CurrentUser, "");
      EXPECT_FALSE(session.IsAdminUser);
    }
    LogInByKeys("BOSS", "SECRET");
  });
  EXPECT_EQ(session.CurrentUser, "BOSS");
}

TEST_F(LoginTest, ListsEveryoneButTheRescueAdministratorAndTakesAChoiceByKeys) {
  RunForm("LoginForm", [&](QWidget& dialog) {
    auto& names = Control<QComboBox>(dialog, "cmbUsername");
    QStringList listed;
    for (int row = 0; row < names.count(); ++row) listed += names.itemText(row);
    EXPECT_EQ(listed, (QStringList{"ADMINISTRATOR", "ANNA", "BOSS", "GUEST"}));
    EXPECT_EQ(names.currentText(), "") << "nobody is proposed";
    PressOn(Qt::Key_Down);
    PressOn(Qt::Key_Down);
    EXPECT_EQ(names.currentText(), "ANNA");
    PressOn(Qt::Key_Return);
    TypeOn("red");
    PressOn(Qt::Key_Return);
  });
  EXPECT_EQ(session.CurrentUser, "ANNA");
  EXPECT_EQ(session.Perm_Costs, 1);
  EXPECT_EQ(session.Perm_Options, 0);
}

TEST_F(LoginTest, TheBoxesLetInWhatNamesAndPasswordsAreMadeOf) {
  session.CurrentUser = "BOSS";
  RunForm("LoginForm", [&](QWidget& dialog) {
    TypeOn("z_y'#\"x 1.2/3-4*5678901");
    EXPECT_EQ(Control<QComboBox>(dialog, "cmbUsername").currentText(), "ZYX 1.2/3-45678");
    PressOn(Qt::Key_Tab);
    TypeOn("p'ass;word 12345678");
    EXPECT_EQ(Control<QLineEdit>(dialog, "txtPassword").text(), "PASSWORD 123456");
    Leave(dialog);
  });
}

TEST_F(LoginTest, AFileWithNobodyButTheRescueAdministratorLetsHimIn) {
  session.File().Prepare("DELETE FROM Users WHERE Username <> 'ADMIN'").Run();
  RunForm("LoginForm", [&](QWidget& dialog) {
    EXPECT_EQ(Control<QComboBox>(dialog, "cmbUsername").count(), 0);
    LogInByKeys("ADMIN", "TANGERINE");
  });
  EXPECT_EQ(session.CurrentUser, "ADMIN");
}

TEST_F(LoginTest, LeavingWithNobodyLoggedInEndsTheProgramOrStays) {
  const auto result = RunForm("LoginForm", [&](QWidget& dialog) {
    const std::function<void()> ways[] = {[&] { Leave(dialog); }, [&] { Click(dialog, "cmdCancel"); },
                                          [&] { Click(dialog, "lblClose"); }, [&] { dialog.close(); }};
    for (const auto& leave : ways) {
      prompt.Expect("Exit Now?", Answer::No, "Exit The Vellumark now?");
      leave();
      EXPECT_TRUE(dialog.isVisible());
      EXPECT_EQ(prompt.last.buttons, Buttons::YesNo);
    }
    prompt.Expect("Exit Now?", Answer::Yes, "Exit The Vellumark now?");
    dialog.close();
  });
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(result->Has("exit"));
  EXPECT_FALSE(result->Has("changed"));
  EXPECT_EQ(session.CurrentUser, "");
}

TEST_F(LoginTest, LeavingWhileSomebodyIsLoggedInAsksNothing) {
  session.CurrentUser = "ANNA";
  EXPECT_FALSE(RunForm("LoginForm", [&](QWidget& dialog) { Leave(dialog); }).has_value());
  EXPECT_EQ(session.CurrentUser, "ANNA");
}

TEST_F(LoginTest, SwitchingAsksForThePasswordOfTheUserChosen) {
  session.CurrentUser = "ANNA";
  const desktop::Arguments boss{{"Username", "BOSS"}};
  const auto result = RunForm(
      "PasswordForm",
      [&](QWidget& dialog) {
        EXPECT_EQ(FocusName(), "txtPassword");
        prompt.Expect("", Answer::Ok, "Invalid Password!");
        TypeOn("red");
        PressOn(Qt::Key_Return);
        EXPECT_EQ(FocusName(), "txtPassword");
        EXPECT_EQ(session.CurrentUser, "ANNA");
        EXPECT_EQ(Control<QLineEdit>(dialog, "txtPassword").selectedText().size(), 3) << "typed over at once";
        TypeOn("secret");
        PressOn(Qt::Key_Return);
      },
      boss);
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(result->Has("changed"));
  EXPECT_EQ(session.CurrentUser, "BOSS");
  EXPECT_TRUE(session.IsAdminUser);
  EXPECT_EQ(session.Perm_Costs, 2);

  EXPECT_FALSE(RunForm("PasswordForm", [&](QWidget& dialog) { Click(dialog, "cmdCancel"); }, {{"Username", "ANNA"}}));
  EXPECT_EQ(session.CurrentUser, "BOSS");
}

TEST_F(LoginTest, Looks) {
  session.CurrentUser = "BOSS";
  RunForm("LoginForm", [&](QWidget& dialog) {
    Picture(dialog, "session-login", {});
    TypeOn("wwwwwwwwwwwwwww");
    PressOn(Qt::Key_Return);
    TypeOn("123456789012345");
    Picture(dialog, "session-login-typed", {});
    prompt.Expect("");
    PressOn(Qt::Key_Return);
    Picture(dialog, "session-login-refused", {});
    Leave(dialog);
  });
  RunForm("PasswordForm",
          [&](QWidget& dialog) {
            TypeOn("SECRET");
            Picture(dialog, "session-password", {});
            Leave(dialog);
          },
          {{"Username", "ADMINISTRATOR"}});
}

}  // namespace
}  // namespace vellumark::test
