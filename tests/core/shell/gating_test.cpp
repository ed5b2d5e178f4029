#include "core/shell/gating.h"

#include <gtest/gtest.h>

#include <set>

#include "core/session/users.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

// A working session: record sets open, nobody has to log in.
struct Desk : test::InkRoom {
  Desk() { session.RecordsetsOpen = true; }
  void LogInWith(const UserRights& rights, bool administrator = false) {
    session.CurrentUser = "ANNA";
    session.IsAdminUser = administrator;
    TakeRights(session, rights);
  }
  bool Enabled(std::string_view name) const { return MenuItemNow(session, name).enabled; }
  bool Visible(std::string_view name) const { return MenuItemNow(session, name).visible; }
};

// What a command asks of the state of the file, and of the user.
struct Row {
  std::string_view item;
  bool inArchive;                   // may be used on an archive copy
  bool withoutRecordsets;           // with a file that has no Database open
  bool withoutFile;                 // with no file at all
  std::uint8_t UserRights::*right;  // the right that it needs; null: none
  std::uint8_t enough;
};

const Row kRows[] = {
    {"menuDFBackup", false, false, false, &UserRights::DF_BackupRestore, 1},
    {"menuDFRestore", false, false, false, &UserRights::DF_BackupRestore, 1},
    {"menuDFExport", true, false, false, &UserRights::DF_ExportDF_Excel, 1},
    {"menuDFArchive", false, false, false, &UserRights::DF_BackupRestore, 1},
    {"menuDFCheck", true, false, false, nullptr, 0},
    {"menuDFRepair", false, false, false, nullptr, 0},
    {"menuDFOptions", false, false, false, &UserRights::DF_OptionsMenu, 1},
    {"menuDFAdvanced", true, true, true, &UserRights::DF_AdvancedMenu, 1},
    {"menuDB_NewDB", false, true, false, &UserRights::DB_NewRenameDel, 1},
    {"menuDB_RenameDB", false, false, false, &UserRights::DB_NewRenameDel, 1},
    {"menuDB_DeleteDB", false, false, false, &UserRights::DB_NewRenameDel, 1},
    {"menuDB_BatchOptions_Cost", false, false, false, &UserRights::Edit_Costs, 2},
    {"menuDB_BatchOptions_VOCHAP", false, false, false, &UserRights::Edit_VOCHAP, 1},
    {"menuDFUsers_Create", false, true, true, nullptr, 0},
    {"menuDFUsers_Login", false, true, true, nullptr, 0},
    {"menuDFUsers_Login_As", false, true, true, nullptr, 0},
    {"menuDFUsers_ChangePassword", false, true, true, nullptr, 0},
    {"menuDFUsers_Permissions", false, true, true, nullptr, 0},
    {"menuDFUsers_AdminOptions", false, true, true, nullptr, 0},
    {"menuFileExit", true, true, true, nullptr, 0},
    {"menu_AboutVK", true, true, true, nullptr, 0},
};

TEST(Gating, EveryRowForEveryStateOfTheFile) {
  Desk desk;
  for (const bool logged : {false, true}) {
    if (logged) desk.LogInWith(UserRights::All());
    for (const Row& row : kRows) {
      desk.session.RecordsetsOpen = desk.session.DataFileOpen = true;
      EXPECT_TRUE(desk.Enabled(row.item)) << row.item;
      desk.session.ArchiveView = true;
      EXPECT_EQ(desk.Enabled(row.item), row.inArchive) << row.item;
      desk.session.ArchiveView = false;
      desk.session.RecordsetsOpen = false;
      EXPECT_EQ(desk.Enabled(row.item), row.withoutRecordsets) << row.item;
      desk.session.DataFileOpen = false;
      EXPECT_EQ(desk.Enabled(row.item), row.withoutFile) << row.item;
    }
  }
}

TEST(Gating, EveryRowForEveryRight) {
  Desk desk;
  const auto check = [&](const Row& row, const RightField& right, std::uint8_t value, bool others) {
    UserRights rights = others ? UserRights::All() : UserRights{};
    rights.*right.value = value;
    desk.LogInWith(rights);
    const bool expected = row.right == nullptr || (row.right == right.value ? value == row.enough : others);
    EXPECT_EQ(desk.Enabled(row.item), expected) << row.item << " " << right.field << " " << int{value};
    // Being an administrator gives no right by itself.
    desk.session.IsAdminUser = true;
    EXPECT_EQ(desk.Enabled(row.item), expected) << row.item << " " << right.field;
    // Without a login what the permissions last held counts for nothing.
    LogInWithoutUsers(desk.session);
    EXPECT_TRUE(desk.Enabled(row.item)) << row.item << " " << right.field;
  };
  for (const Row& row : kRows) {
    for (const RightField& right : RightFields()) {
      for (std::uint8_t value = 0; value <= right.full; ++value) {
        check(row, right, value, true);   // all other rights
        check(row, right, value, false);  // this one alone
      }
    }
  }
}

TEST(Gating, UpgradingIsForAFileWithoutRecordSets) {
  Desk desk;
  EXPECT_FALSE(desk.Enabled("menuDFAdvanced_FileUpgrade"));
  desk.session.RecordsetsOpen = false;
  EXPECT_TRUE(desk.Enabled("menuDFAdvanced_FileUpgrade"));
  desk.session.ArchiveView = true;
  EXPECT_FALSE(desk.Enabled("menuDFAdvanced_FileUpgrade"));
  desk.session.ArchiveView = false;
  EXPECT_TRUE(desk.Enabled("menuDFAdvanced_Search"));
  desk.session.DataFileOpen = false;  // closed, or being closed
  for (const char* off :
       {"menuDFAdvanced_FileUpgrade", "menuDFAdvanced_Search", "menuDFAdvanced_FileRename", "menuDFUsers"})
    EXPECT_FALSE(desk.Enabled(off)) << off;
  EXPECT_TRUE(desk.Enabled("menuDFAdvanced_FileNew"));
}

TEST(Gating, TheUsersMenuSaysWhoIsLoggedIn) {
  struct Case {
    const char* name;  // empty: no login
    bool administrator;
    const char* caption;
    std::set<std::string_view> visible;
  };
  const Case cases[] = {
      {"", true, "Usernames / Passwords", {"menuDFUsers_Create"}},
      {"BOSS",
       true,
       "[Username: BOSS - ADMINISTRATOR]",
       {"menuDFUsers_Login", "menuDFUsers_Login_As", "menuDFUsers_Permissions", "menuDFUsers_AdminOptions"}},
      {"ANNA",
       false,
       "[Username: ANNA]",
       {"menuDFUsers_Login", "menuDFUsers_Login_As", "menuDFUsers_ChangePassword", "menuDFUsers_Permissions"}},
  };
  Desk desk;
  for (const Case& c : cases) {
    desk.session.CurrentUser = c.name;
    desk.session.IsAdminUser = c.administrator;
    EXPECT_EQ(MenuItemNow(desk.session, "menuDFUsers").caption, c.caption);
    std::set<std::string_view> visible;
    for (const MenuItem& item : MenuItems(desk.session)) {
      if (item.parent == "menuDFUsers" && item.visible) visible.insert(item.name);
    }
    EXPECT_EQ(visible, c.visible) << c.caption;
  }
}

TEST(Gating, TheTreeIsWhole) {
  Desk desk;
  std::set<std::string_view> names{""};
  for (const MenuItem& item : MenuItems(desk.session)) {
    EXPECT_TRUE(names.contains(item.parent)) << item.name << " stands before its menu";
    EXPECT_TRUE(names.insert(item.name).second) << item.name << " stands twice";
    EXPECT_FALSE(item.caption.empty()) << item.name;
  }
  EXPECT_THROW(MenuItemNow(desk.session, "menuNone"), std::logic_error);
  EXPECT_TRUE(MenuItemNow(desk.session, "menuDFOptions_Autofill").checked);
  desk.session.AutoFillText = 0;
  EXPECT_FALSE(MenuItemNow(desk.session, "menuDFOptions_Autofill").checked);
}

TEST(Gating, TheScaleIsSetUpWithoutAPortAndWhileItIsOffOnly) {
  Desk desk;
  EXPECT_TRUE(desk.Enabled("menuScale_Setup"));
  EXPECT_TRUE(CheckScaleSetup(desk.session));
  EXPECT_TRUE(desk.Enabled("menuScale_PowerOn"));
  desk.session.ScalePowered = 1;
  EXPECT_EQ(CheckScaleSetup(desk.session).error(),
            (Refusal{"Power off scale", "Power scale off to use the Setup feature", ""}));
  EXPECT_FALSE(desk.Enabled("menuScale_PowerOn"));
  EXPECT_TRUE(desk.Enabled("menuScale_PowerOff"));
}

class Windows final : public OpenWindows {
 public:
  std::set<std::string_view> open;
  std::set<std::string_view> edited;
  bool IsFormOpen(std::string_view name) const override { return open.contains(name); }
  bool IsInEdit(std::string_view name) const override {
    EXPECT_TRUE(open.contains(name)) << "asked of a window that is not open: " << name;
    return edited.contains(name);
  }
};

constexpr const char* kBatchTitle = "Batch Window - in State of Edit.";
constexpr const char* kFormulaTitle = "Master Formula Window - in State of Edit.";
constexpr const char* kBatchText =
    "The Batch Window is open with active data.\nChanging data elsewhere can impact this recipe.\nSave or Clear the "
    "data on the Batch Window.";

TEST(Toolbar, AnEditInProgressKeepsOffOnlyWhatWouldDisturbIt) {
  struct Case {
    std::string_view key;
    const char *batchTitle, *batchText;      // with a Batch in edit; empty: comes up
    const char *formulaTitle, *formulaText;  // with a Master Formula in edit
  };
  const Case cases[] = {
      {"InkEst", kBatchTitle, kBatchText, "", ""},
      {"Color", "", "", "", ""},
      {"Batch", "", "", kFormulaTitle,
       "The Master Formula Window is open with active data.\nSave or Clear the data before using the Batch Window."},
      {"Job", "", "", "", ""},
      {"Inventory", kBatchTitle, kBatchText, "", ""},
      {"Label", "", "", "", ""},
      {"Report", "", "", "", ""},
      {"DBTools", kBatchTitle, kBatchText, kFormulaTitle,
       "The Master Formula Window is open with active data.\nSave or Clear the data before using DB Tools."},
      {"Find", "", "", "", ""},
      {"Users", "", "", "", ""},
  };
  Desk desk;
  const auto expect = [&](const Windows& windows, std::string_view key, const char* title, const char* text) {
    const auto result = CheckToolbarButton(desk.session, windows, key);
    EXPECT_EQ(result ? Refusal{} : result.error(), (Refusal{title, text, ""})) << key;
  };
  const std::vector<ToolbarButton> buttons = ToolbarButtons(desk.session);
  ASSERT_EQ(buttons.size(), std::size(cases));
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    const Case& c = cases[i];
    EXPECT_EQ(buttons[i].key, c.key);
    expect({}, c.key, "", "");
    Windows windows;
    windows.edited = {"BatchForm", "MixColorsForm"};  // no longer open: does not count
    expect(windows, c.key, "", "");
    windows.open = {"BatchForm", "MixColorsForm"};
    windows.edited = {};
    expect(windows, c.key, "", "");
    windows.edited = {"BatchForm"};
    expect(windows, c.key, c.batchTitle, c.batchText);
    windows.edited = {"MixColorsForm"};
    expect(windows, c.key, c.formulaTitle, c.formulaText);
    windows.edited = {"BatchForm", "MixColorsForm"};
    const bool batchFirst = *c.batchTitle != '\0';
    expect(windows, c.key, batchFirst ? c.batchTitle : c.formulaTitle, batchFirst ? c.batchText : c.formulaText);
  }
  EXPECT_THROW((void)CheckToolbarButton(desk.session, Windows{}, "Print"), std::logic_error);
}

TEST(Toolbar, ButtonsFollowFileAndRights) {
  Desk desk;
  const auto button = [&](std::string_view key) {
    for (const ToolbarButton& one : ToolbarButtons(desk.session))
      if (one.key == key) return one;
    throw std::logic_error("no button");
  };
  EXPECT_FALSE(button("Users").visible);
  desk.prompt.Expect("");
  ASSERT_TRUE(CreateUsers(desk.session, "BOSS", "X"));
  EXPECT_TRUE(button("Users").visible);
  desk.session.ArchiveView = true;  // still opens windows for reading
  for (const ToolbarButton& one : ToolbarButtons(desk.session)) EXPECT_TRUE(one.enabled) << one.key;
  UserRights rights = UserRights::All();
  rights.DBToolsMenu = 0;
  desk.LogInWith(rights);
  EXPECT_FALSE(button("DBTools").enabled);
  EXPECT_EQ(CheckToolbarButton(desk.session, Windows{}, "DBTools").error().text,
            "ANNA, you do not have permission to use the Database Tools.");
  desk.LogInWith({.DBToolsMenu = 1});
  for (const ToolbarButton& one : ToolbarButtons(desk.session)) EXPECT_TRUE(one.enabled) << one.key;
  desk.session.RecordsetsOpen = desk.session.DataFileOpen = false;
  for (const ToolbarButton& one : ToolbarButtons(desk.session)) EXPECT_FALSE(one.enabled) << one.key;
}

}  // namespace
}  // namespace vellumark
