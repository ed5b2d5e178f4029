#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

#include "desktop/session/users_desk.h"

namespace vellumark::test {
namespace {

struct OwnRightsTest : testing::Test, UsersDesk {
  OwnRightsTest() { HaveUsers(); }

  static void Enter(QWidget& dialog, const char* current, const char* changed, const char* repeated) {
    Fill(dialog, "txtCurrentPassword", current);
    Fill(dialog, "txtNewPassword", changed);
    Fill(dialog, "txtConfirmPassword", repeated);
    Control(dialog, "txtConfirmPassword").setFocus();
    PressOn(Qt::Key_Return);
  }
};

TEST_F(OwnRightsTest, ThePasswordIsChangedOrRefused) {
  const struct {
    const char* what;
    const char* user;
    const char* password;
    const char* current;
    const char* changed;
    const char* repeated;
    const char* text;
    const char* focus;
  } rows[] = {
      {"the rescue administrator's", "ADMIN", "TANGERINE", "tangerine", "x", "x",
       "You cannot change the password for username ADMIN.", ""},
      {"an administrator's left blank", "BOSS", "SECRET", "secret", "", "", "Administrator Password cannot be blank!",
       "txtNewPassword"},
      {"a wrong one", "ANNA", "RED", "green", "x", "x", "Invalid Current Password!", "txtCurrentPassword"},
      {"typed differently again", "ANNA", "RED", "red", "x", "y", "The new Passwords are not the same!",
       "txtConfirmPassword"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    ASSERT_TRUE(LogIn(session, row.user, row.password));
    RunForm("ChangePasswordForm", [&](QWidget& dialog) {
      EXPECT_EQ(FocusName(), "txtCurrentPassword");
      prompt.Expect("", Answer::Ok, row.text);
      Enter(dialog, row.current, row.changed, row.repeated);
      EXPECT_TRUE(dialog.isVisible());
      if (*row.focus != '\0') {
        EXPECT_EQ(FocusName(), row.focus);
      }
      Leave(dialog);
    });
    EXPECT_TRUE(LogIn(session, row.user, row.password)) << "it is what it was";
  }

  ASSERT_TRUE(LogIn(session, "ANNA", "RED"));
  EXPECT_TRUE(RunForm("ChangePasswordForm", [&](QWidget& dialog) {
                prompt.Expect("Password Changed", Answer::Ok, "Your Password has been changed.");
                Enter(dialog, "red", "violet", "violet");
              }).has_value());
  EXPECT_TRUE(LogIn(session, "ANNA", "VIOLET"));
}

TEST_F(OwnRightsTest, AnEmptyPasswordIsAskedAbout) {
  ASSERT_TRUE(LogIn(session, "ANNA", "RED"));
  RunForm("ChangePasswordForm", [&](QWidget& dialog) {
    prompt.Expect("No password?", Answer::No, "Do you wish to save this Username with no Password?");
    Enter(dialog, "red", "", "");
    EXPECT_EQ(FocusName(), "txtNewPassword");
    prompt.Expect("No password?", Answer::Yes);
    prompt.Expect("Password Changed");
    Enter(dialog, "red", "", "");
  });
  EXPECT_TRUE(LogIn(session, "ANNA", ""));
}

TEST_F(OwnRightsTest, PermissionsAreShownButNotToBeChanged) {
  ASSERT_TRUE(LogIn(session, "ANNA", "RED"));
  EXPECT_FALSE(RunForm("ViewPermissionsForm", [&](QWidget& dialog) {
                 EXPECT_EQ(Control<QLabel>(dialog, "lblUsername").text(), "ANNA");
                 for (const PermissionText& line : PermissionTexts(RightsInForce(session))) {
                   EXPECT_EQ(Control<QLabel>(dialog, ("lbl" + std::string(line.field)).c_str()).text().toStdString(),
                             line.text);
                 }
                 Click(dialog, "OptEdit_Costs_Edit");
                 Click(dialog, "chkDF_OptionsMenu");
                 EXPECT_TRUE(Control<QRadioButton>(dialog, "OptEdit_Costs_View").isChecked());
                 EXPECT_FALSE(Control<QAbstractButton>(dialog, "chkDF_OptionsMenu").isChecked());
                 Click(dialog, "cmdClose");
               }).has_value());
  EXPECT_EQ(session.Perm_Costs, 1);
}

TEST_F(OwnRightsTest, PasswordsAreNeverSeenReadOutCopiedOrRepeated) {
  const struct {
    const char* window;
    std::vector<const char*> boxes;
    const char* refused;  // the button that then refuses
  } rows[] = {
      {"LoginForm", {"txtPassword"}, "cmdOK"},
      {"PasswordForm", {"txtPassword"}, "cmdOK"},
      {"AdminOptionsForm", {"txtPassword"}, "cmdModifyUser"},
      {"NewUserForm", {"txtPassword"}, "cmdSave"},
      {"ModifyUserForm", {"txtPassword"}, nullptr},
      {"ChangePasswordForm", {"txtCurrentPassword", "txtNewPassword", "txtConfirmPassword"}, "cmdOK"},
  };
  const QString secret = "HUSHHUSH";
  for (const auto& row : rows) {
    SCOPED_TRACE(row.window);
    RunForm(
        row.window,
        [&](QWidget& dialog) {
          for (const char* name : row.boxes) {
            auto& box = Control<QLineEdit>(dialog, name);
            Type(box, "hushhush");
            EXPECT_TRUE(box.text().contains(secret));
            EXPECT_FALSE(box.displayText().contains(secret));
            QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&box);
            ASSERT_NE(spoken, nullptr);
            for (const auto text : {QAccessible::Name, QAccessible::Description, QAccessible::Value, QAccessible::Help})
              EXPECT_FALSE(spoken->text(text).contains(secret));
            QApplication::clipboard()->clear();
            Press(box, Qt::Key_A, Qt::ControlModifier);
            Press(box, Qt::Key_C, Qt::ControlModifier);
            EXPECT_EQ(QApplication::clipboard()->text(), "");
          }
          if (row.refused != nullptr) {
            prompt.Expect(std::string(row.window) == "NewUserForm" ? "Enter a username" : "");
            Click(dialog, row.refused);
            EXPECT_EQ(prompt.last.text.find("HUSH"), std::string::npos);
          }
          for (const QWidget* part : dialog.findChildren<QWidget*>()) {
            const auto* label = qobject_cast<const QLabel*>(part);
            for (const QString& text : {part->accessibleName(), part->accessibleDescription(), part->toolTip(),
                                        label != nullptr ? label->text() : QString()}) {
              EXPECT_FALSE(text.contains(secret)) << part->objectName().toStdString();
            }
          }
          Leave(dialog);
        },
        {{"Username", "ANNA"}});
  }
}

TEST_F(OwnRightsTest, Looks) {
  RunForm("ChangePasswordForm", [&](QWidget& dialog) {
    prompt.Expect("");
    Enter(dialog, "secret", "x", "y");
    Picture(dialog, "session-change-password", {});
    Leave(dialog);
  });
  ASSERT_TRUE(LogIn(session, "ANNA", "RED"));
  RunForm("ViewPermissionsForm", [&](QWidget& dialog) {
    Picture(dialog, "session-view-permissions", {});
    EXPECT_LE(dialog.height(), 660);
    Leave(dialog);
  });
}

}  // namespace
}  // namespace vellumark::test
