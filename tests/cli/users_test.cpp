#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "core/base/files.h"
#include "core/datafile/engine.h"
#include "support/cli_run.h"
#include "support/snapshot.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

// A Data File with the administrator BOSS, password "INK 1".
struct UserFile : test::CliRoom {
  UserFile() : path(MakeFile()) {
    ReplaceFile(folder / "boss", "ink 1\r\n");
    const test::CliAnswer made = RunWithInput({"users", "enable", "boss"}, folder / "boss");
    EXPECT_EQ(made.status, 0) << made.err;
    EXPECT_NE(made.err.find("The Administrator features are located"), std::string::npos);
  }
  test::CliAnswer As(const std::string& user, const std::string& password, std::vector<std::string> words) const {
    words.insert(words.begin(), {"--user", user, "--password", password});
    return Run(words);
  }
  test::CliAnswer AsBoss(const std::vector<std::string>& words) const { return As("boss", "ink 1", words); }
  /// A file that holds one password.
  std::string Password(const std::string& text) const {
    const fs::path file = folder / "password";
    ReplaceFile(file, text + "\n");
    return file.string();
  }
  void Add(const std::string& name, const std::string& password, std::vector<std::string> rights = {}) const {
    rights.insert(rights.begin(), {"users", "add", name, "--new-password-file", Password(password)});
    const test::CliAnswer added = AsBoss(rights);
    EXPECT_EQ(added.status, 0) << added.err;
  }

  std::string path;
};

// All of the file but the count of wrong passwords.
std::string DataOf(const std::string& path) {
  const auto file = Database::Open(path, OpenMode::Exclusive);
  file->Execute("DROP TABLE IF EXISTS MSysLoginFailures");
  return test::Snapshot(*file);
}

TEST(CliUsers, EachWrongPasswordMakesTheNextProcessWaitLonger) {
  const UserFile room;
  const auto time = [&](const std::string& password) {
    const auto begin = std::chrono::steady_clock::now();
    const test::CliAnswer answer = room.As("BOSS", password, {"file", "info"});
    EXPECT_EQ(answer.status, password == "INK 1" ? 0 : 1) << answer.err;
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  };
  const double without = time("INK 1");
  for (int i = 0; i < 5; ++i) time("X");
  EXPECT_GE(time("X"), 0.4);
  EXPECT_GE(time("INK 1"), 0.8) << "the right one as well, else a wrong one would be told by its silence";
  // The next one waits no more; of what else runs here there is a quiet moment.
  double least = time("INK 1");
  for (int tries = 0; tries < 20 && least >= without + 0.4; ++tries) least = std::min(least, time("INK 1"));
  EXPECT_LT(least, without + 0.4);
}

TEST(CliUsers, EveryVerbOnAFileWithUsersWantsALogin) {
  const UserFile room;
  const std::string before = DataOf(room.path);
  for (const std::vector<std::string>& verb : {std::vector<std::string>{"file", "info"},
                                               {"color", "list"},
                                               {"color", "add", "BLUE"},
                                               {"db", "list"},
                                               {"users", "list"},
                                               {"users", "enable", "SECOND"},
                                               {"settings", "set", "UMI", "2"}}) {
    for (const test::CliAnswer& answer :
         {room.Run(verb), room.As("boss", "INK1", verb), room.As("", "", verb), room.As("nobody", "ink 1", verb)}) {
      EXPECT_EQ(answer.status, 1) << verb[0] << " " << verb[1];
      EXPECT_EQ(answer.err, "Invalid Username/Password!\n");
      EXPECT_EQ(answer.out, "");
    }
  }
  const test::CliAnswer json = room.Run({"--json", "file", "info"});
  EXPECT_EQ(json.Json()["refused"]["text"], "Invalid Username/Password!");
  EXPECT_EQ(json.Json()["refused"]["title"], "");
  EXPECT_EQ(DataOf(room.path), before);
  EXPECT_EQ(room.Json({"settings", "get", "UMI"}), "1");
  // Naming another file does not open the settings.
  EXPECT_EQ(room.Run({"--file", (room.folder / "other.vkd").string(), "settings", "set", "UMI", "2"}).status, 1);

  EXPECT_EQ(room.AsBoss({"color", "list"}).status, 0);
  EXPECT_EQ(room.As("admin", "tangerine", {"color", "list"}).status, 0);
  ::setenv("VELLUMARK_PASSWORD", "INK 1", 1);
  EXPECT_EQ(room.Run({"--user", "BOSS", "color", "list"}).status, 0);
  ::unsetenv("VELLUMARK_PASSWORD");
}

TEST(CliUsers, RightsHoldOnTheCommandLine) {
  const UserFile room;
  room.Add("ANNA", "a", {"DBToolsMenu=1"});
  for (const char* name : {"BLUE", "RED"}) EXPECT_EQ(room.AsBoss({"color", "add", name}).status, 0);
  struct Case {
    std::vector<std::string> verb;
    const char* right;
    const char* says;
  };
  const Case cases[] = {
      {{"settings", "set", "UMI", "2"}, "DF_OptionsMenu=1", "ANNA, you do not have permission to change Options."},
      {{"db", "create", "FLEXO"},
       "DB_NewRenameDel=1",
       "ANNA, you do not have permission to add, rename or delete databases."},
      {{"color", "set", "BLUE", "PurchaseCost=2"}, "Edit_Costs=2", "ANNA, you do not have permission to change costs."},
      {{"color", "set", "RED", "VOC=2"}, "Edit_VOCHAP=1", "ANNA, you do not have permission to change VOC Values."},
      {{"formula", "add", "MIX", "BLUE=50", "RED=50"},
       "Edit_MasterFormula=1",
       "you do not\nhave permission to add a new Master Formula"},
  };
  for (const Case& c : cases) {
    const test::CliAnswer refused = room.As("ANNA", "A", c.verb);
    EXPECT_EQ(refused.status, 1) << c.verb[0] << " " << refused.err;
    EXPECT_NE(refused.err.find(c.says), std::string::npos) << refused.err;
    EXPECT_EQ(room.AsBoss({"users", "modify", "ANNA", c.right}).status, 0);
    const test::CliAnswer done = room.As("ANNA", "A", c.verb);
    EXPECT_EQ(done.status, 0) << c.verb[0] << " " << done.err;
  }
  for (const std::vector<std::string>& verb : {std::vector<std::string>{"users", "add", "X"},
                                               {"users", "modify", "ANNA", "IsAdmin=1"},
                                               {"users", "delete", "ANNA"},
                                               {"users", "disable"}})
    EXPECT_EQ(room.As("ANNA", "A", verb).err, "Permission Denied: ANNA, you do not have permission to change Users.\n");
}

TEST(CliUsers, CostsAreHiddenFromReportsFilesAndSearches) {
  const UserFile room;
  room.Add("ANNA", "a");
  EXPECT_EQ(room.AsBoss({"color", "add", "BLUE", "PurchaseCost=7", "Inventory=3"}).status, 0);
  const std::string file = (room.folder / "stock.txt").string();
  const auto report = [&](const char* user, const char* password) {
    const std::vector<std::string> run{"report",    "run",       "InventoryForm", "--columns",
                                       "Inventory", "Unit Cost", "Total Cost"};
    std::vector<std::string> words = run;
    words.insert(words.end(), {"--out", file, "--yes"});
    EXPECT_EQ(room.As(user, password, words).status, 0);
    words = run;
    words.insert(words.begin(), "--json");
    const auto answer = room.As(user, password, words).Json();
    return answer["Rows"].dump() + answer["Totals"].dump() + ReadFileBytes(file);
  };
  EXPECT_EQ(report("boss", "ink 1"),
            "[[\"BLUE\",3,7,21]][\"Totals\",3,null,21]Color Name\tInventory\tUnit Cost\tTotal Cost\r\n"
            "BLUE\t3.000\t7.00\t21.00\r\nTotals\t3.000\t\t21.00\r\n");
  EXPECT_EQ(report("ANNA", "a"),
            "[[\"BLUE\",3,null,null]][\"Totals\",3,null,null]Color Name\tInventory\tUnit Cost\tTotal Cost\r\n"
            "BLUE\t3.000\t\t\r\nTotals\t3.000\t\t\r\n");
  const std::vector<std::string> find{"find", "basic", "--where", "Purchase Cost", "=", "7"};
  EXPECT_EQ(room.AsBoss(find).status, 0);
  EXPECT_EQ(room.As("ANNA", "a", find).status, 1);
}

TEST(CliUsers, UsersAreListedChangedAndRemoved) {
  const UserFile room;
  room.Add("ANNA", "a");
  const auto list = room.Json({"--user", "boss", "--password", "ink 1", "users", "list"});
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0]["Username"], "ANNA");
  EXPECT_EQ(list[0]["Edit_Costs"], 0);
  EXPECT_EQ(list[1]["IsAdmin"], true);
  EXPECT_EQ(list[1]["Edit_Costs"], 2);
  EXPECT_EQ(room.Json({"--user", "anna", "--password", "a", "users", "list"})[1].size(), 1U);

  struct Case {
    std::vector<std::string> words;
    const char* says;
  };
  const Case refusals[] = {
      {{"add", "anna", "--new-password-file", room.Password("B")},
       "Username ANNA already exists. Choose another Username."},
      {{"add", "X", "Password=SECRET"}, "is read from standard input"},
      {{"add", "X", "SECRET"}, "Expected FIELD=VALUE."},
      {{"add", "X", "IsAdmin=1"}, "Users have no field IsAdmin that could be set."},
      {{"add", "X", "Edit_Costs=3"}, "Edit_Costs must be a whole number between 0 and 2."},
      {{"modify", "NOBODY", "Edit_Costs=1"}, "There is no Username NOBODY."},
      {{"modify", "ADMIN", "Edit_Costs=1"}, "You cannot modify the username ADMIN."},
      {{"delete", "BOSS"}, "You cannot delete an Administrator."},
  };
  for (const Case& c : refusals) {
    std::vector<std::string> words{"users"};
    words.insert(words.end(), c.words.begin(), c.words.end());
    const test::CliAnswer answer = room.AsBoss(words);
    EXPECT_EQ(answer.status, 1) << c.says;
    EXPECT_NE(answer.err.find(c.says), std::string::npos) << answer.err;
    EXPECT_EQ((answer.out + answer.err).find("SECRET"), std::string::npos);
  }

  // No password on standard input: a question first, and nothing changed while it stands.
  EXPECT_EQ(room.AsBoss({"users", "add", "BERT"}).status, 3);
  EXPECT_EQ(room.AsBoss({"--answer", "No password?=yes", "users", "add", "BERT"}).status, 0);
  EXPECT_EQ(room.As("bert", "", {"color", "list"}).status, 0);
  EXPECT_EQ(room.AsBoss({"users", "delete", "BERT"}).status, 3);
  EXPECT_EQ(room.AsBoss({"--yes", "users", "delete", "BERT"}).status, 0);
  EXPECT_EQ(room.As("bert", "", {"color", "list"}).status, 1);

  EXPECT_EQ(room.AsBoss({"--no", "users", "disable"}).status, 0);
  EXPECT_EQ(room.Run({"color", "list"}).status, 1);
  EXPECT_EQ(room.AsBoss({"--yes", "users", "disable"}).status, 0);
  EXPECT_EQ(room.Run({"color", "list"}).status, 0);
}

TEST(CliUsers, NewPasswordsComeFromAFileOrStandardInputAndShowNowhere) {
  const UserFile room;
  room.Add("ANNA", "OLD-PASS");
  const std::string file = room.Password("new-pass");
  std::string shown;
  const auto run = [&](const std::string& password, std::vector<std::string> words) {
    words.insert(words.begin(), {"--user", "anna", "--password", password});
    const test::CliAnswer answer = room.RunWithInput(words, file);
    shown += answer.out + answer.err;
    return answer;
  };
  EXPECT_EQ(run("old-pass", {"users", "passwd"}).err, "Password Changed: Your Password has been changed.\n");
  EXPECT_EQ(run("old-pass", {"color", "list"}).status, 1);
  EXPECT_EQ(run("new-pass", {"color", "list"}).status, 0);
  const test::CliAnswer modified =
      room.AsBoss({"users", "modify", "anna", "--new-password-file", room.Password("third-pass")});
  EXPECT_EQ(modified.status, 0) << modified.err;
  shown += modified.out + modified.err;
  EXPECT_EQ(run("third-pass", {"--json", "color", "list"}).status, 0);
  const test::CliAnswer bad = room.AsBoss({"users", "modify", "anna", "--new-password-file", room.Password("no_pass")});
  EXPECT_EQ(bad.status, 1);
  shown += bad.out + bad.err;
  shown += room.AsBoss({"users", "list"}).out;
  const auto gone = (room.folder / "gone").string();
  EXPECT_EQ(room.AsBoss({"users", "modify", "anna", "--new-password-file", gone}).status, 4);
  for (const char* secret : {"old-pass", "OLD-PASS", "new-pass", "NEW-PASS", "third-pass", "THIRD-PASS", "no_pass",
                             "NO_PASS", "INK 1", "TANGERINE"})
    EXPECT_EQ(shown.find(secret), std::string::npos) << secret;
  EXPECT_EQ(room.As("admin", "tangerine", {"users", "passwd"}).err,
            "You cannot change the password for username ADMIN.\n");
}

}  // namespace
}  // namespace vellumark
