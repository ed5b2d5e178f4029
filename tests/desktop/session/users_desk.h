#pragma once

#include <QDialog>
#include <functional>
#include <optional>
#include <string>

#include "core/session/users.h"
#include "desktop/session/register.h"
#include "support/desktop.h"
#include "support/ink_room.h"

namespace vellumark::test {

/// An ink room with the windows of users and rights, and dialogs that never outlive the test that runs them.
struct UsersDesk : InkRoom {
  UsersDesk() { desktop::RegisterSessionWindows(windows); }

  /// Switches the feature on: administrator BOSS, and the users ANNA (password RED), GUEST (none) and ADMINISTRATOR,
  /// who is none. BOSS is logged in.
  void HaveUsers() {
    prompt.Expect("");
    ASSERT_TRUE(CreateUsers(session, "BOSS", "SECRET"));
    HaveUser("ANNA", "RED", {.Edit_MasterFormula = 1, .Edit_Costs = 1, .DBToolsMenu = 1});
    HaveUser("GUEST", "", {});
    HaveUser("ADMINISTRATOR", "BLUE", {});
  }
  void HaveUser(const std::string& name, const std::string& password, const UserRights& rights) {
    if (password.empty()) prompt.Expect("No password?", Answer::Yes);
    prompt.Expect("User Added");
    ASSERT_TRUE(AddUser(session, {name, password, false, rights}));
  }

  /// Runs a dialog with `inside`, which must make it close.
  std::optional<desktop::Arguments> RunForm(const std::string& name, const std::function<void(QWidget&)>& inside,
                                            const desktop::Arguments& arguments = {}) {
    std::optional<desktop::Arguments> result;
    Inside([&] { result = windows.RunDialog(name, arguments); }, name, inside);
    return result;
  }
  /// The same for a dialog that `act` opens.
  static void Inside(const std::function<void()>& act, const std::string& name,
                     const std::function<void(QWidget&)>& inside) {
    WithModal(act, [&](QWidget& dialog) {
      EXPECT_EQ(dialog.objectName().toStdString(), name);
      try {
        inside(dialog);
      } catch (const std::exception& failure) {
        ADD_FAILURE() << name << ": " << failure.what();
      }
      if (!dialog.isVisible()) return;
      ADD_FAILURE() << name << " is still open";
      dynamic_cast<QDialog&>(dialog).done(0);
    });
  }

  static void Leave(QWidget& dialog) { Press(dialog, Qt::Key_Escape); }

  desktop::WindowList windows{session};
};

}  // namespace vellumark::test
