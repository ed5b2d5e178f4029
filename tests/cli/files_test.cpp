#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "core/base/files.h"
#include "core/datafile/engine.h"
#include "support/cli_run.h"
#include "support/old_files.h"
#include "support/snapshot.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

void SetVersion(const fs::path& path, int version) {
  Database::Open(path, OpenMode::Exclusive)->Execute("UPDATE FileInfo SET FileVersion = " + std::to_string(version));
}

TEST(CliFiles, EachUnusableFileSaysWhichAndWhyAndStaysAsItIs) {
  const test::CliRoom room;
  room.folder.Breaks("Structure");
  const fs::path good = room.MakeFile();
  const auto copy = [&](const std::string& name) {
    const fs::path to = room.folder / name;
    fs::copy_file(good, to);
    return to;
  };
  struct Case {
    fs::path file;
    int status;
    std::string says;
  };
  std::vector<Case> cases;
  const fs::path text = room.folder / "text.vkd";
  ReplaceFile(text, "BLUE\tRED\t100\r\n");
  cases.push_back({text, 4, "is not a Data File"});
  const fs::path empty = room.folder / "empty.vkd";
  ReplaceFile(empty, "");
  cases.push_back({empty, 4, "is empty, not a Data File"});
  cases.push_back({room.folder / "gone.vkd", 4, "does not exist"});
  cases.push_back({room.folder.Path(), 4, "is not a file"});
  const fs::path cut = copy("cut.vkd");
  fs::resize_file(cut, fs::file_size(cut) - 10000);
  cases.push_back({cut, 4, "is damaged or was cut short"});
  for (const int version : {0, 1, 41, 139, 141}) {
    const fs::path path = copy("v" + std::to_string(version) + ".vkd");
    SetVersion(path, version);
    cases.push_back({path, 1, "has a file version of: " + std::to_string(version)});
  }
  for (const int version : {2, 39}) {
    const fs::path path = copy("v" + std::to_string(version) + ".vkd");
    SetVersion(path, version);
    cases.push_back({path, 1, "must be brought up to version 40 first"});
  }
  for (const Case& c : cases) {
    const bool regular = fs::is_regular_file(c.file);
    const std::string before = regular ? ReadFileBytes(c.file) : "";
    for (const std::vector<std::string>& verb : {std::vector<std::string>{"file", "info"},
                                                 {"color", "list"},
                                                 {"formula", "list"},
                                                 {"stock", "show"},
                                                 {"db", "list"},
                                                 {"batch", "calc", "--formula", "X", "--quantity", "1"},
                                                 {"file", "compact"},
                                                 {"color", "add", "BLUE"}}) {
      std::vector<std::string> words{"--file", c.file.string()};
      words.insert(words.end(), verb.begin(), verb.end());
      const test::CliAnswer answer = room.Run(words);
      EXPECT_EQ(answer.status, c.status) << verb[0] << " " << verb[1] << ": " << answer.err;
      EXPECT_NE(answer.err.find(c.says), std::string::npos) << answer.err;
      EXPECT_EQ(answer.err.find(c.says), answer.err.rfind(c.says)) << answer.err;
      EXPECT_NE(answer.err.find(c.file.string()), std::string::npos) << answer.err;
      EXPECT_EQ(answer.out, "");
    }
    if (regular) {
      EXPECT_EQ(ReadFileBytes(c.file), before) << c.file;
    }
  }
  EXPECT_EQ(room.Run({"file", "info"}).status, 0);
}

TEST(CliFiles, AFileThatIsHeldIsNotRead) {
  const test::CliRoom room;
  const fs::path path = room.MakeFile();
  {
    const auto held = Database::Open(path, OpenMode::Exclusive);
    const test::CliAnswer answer = room.Run({"color", "list"});
    EXPECT_EQ(answer.status, 4);
    EXPECT_NE(answer.err.find("is in use by another process"), std::string::npos) << answer.err;
  }
}

TEST(CliFiles, CreateInfoCheckCompact) {
  const test::CliRoom room;
  room.folder.Breaks("Parts");
  const std::string path = room.MakeFile();
  EXPECT_EQ(room.Run({"file", "create", path}).status, 4);
  EXPECT_EQ(room.Run({"file", "create", (room.folder / "x.txt").string()}).status, 1);
  EXPECT_EQ(room.Run({"file", "create", (room.folder / "no" / "x.vkd").string()}).status, 4);
  EXPECT_EQ(room.Run({"file", "create", (room.folder / "b.vkd").string(), "--database", "A_B"}).status, 1);
  EXPECT_FALSE(fs::exists(room.folder / "b.vkd"));
  // Where the program keeps its own things, and where it would be an archive copy from the first day.
  for (const fs::path& place : {room.folder / "VKDat" / "x.vkd", room.folder / "Auto Backup" / "x.vkd", room.folder / "Archive 1.vkd"}) {
    EXPECT_EQ(room.Run({"file", "create", place.string()}).status, 1) << place;
    EXPECT_FALSE(fs::exists(place)) << place;
  }
  const auto info = room.Json({"file", "info"});
  EXPECT_EQ(info["DataFileName"], path);
  EXPECT_EQ(info["CurrentDB"], "INK");
  EXPECT_EQ(info["FileVersion"], 40);
  EXPECT_TRUE(room.Json({"file", "check", path})["Sound"]);
  Database::Open(path, OpenMode::Exclusive)->Execute("DROP TABLE INK_Mix_LAB");
  const test::CliAnswer broken = room.Run({"file", "check", path});
  EXPECT_EQ(broken.status, 4);
  EXPECT_NE(broken.out.find("INK_Mix_LAB: The table is missing. [Parts]"), std::string::npos) << broken.out;
  EXPECT_EQ(room.Run({"file", "compact"}).status, 0);
  EXPECT_FALSE(fs::exists(room.folder / "Ink.vkb"));
}

TEST(CliFiles, AFigureThatIsNoNumberIsNamedOnceWhereverItIsRead) {
  const test::CliRoom room;
  room.folder.Breaks("Fields");
  const std::string path = room.MakeFile();
  room.Json({"color", "add", "RED", "PurchaseCost=4.5"});
  room.Json({"color", "add", "BLUE"});
  room.Json({"formula", "add", "PURPLE", "RED=50", "BLUE=50"});
  Database::Open(path, OpenMode::Exclusive)->Execute("UPDATE INK_Basic SET Inventory = 9e999 WHERE Color_Name = 'RED'");
  for (const std::vector<std::string>& words : {std::vector<std::string>{"color", "list"},
                                                {"color", "show", "RED"},
                                                {"--json", "color", "list"},
                                                {"stock", "show"},
                                                {"batch", "save", "--formula", "PURPLE", "--quantity", "10"}}) {
    const test::CliAnswer answer = room.Run(words);
    EXPECT_EQ(answer.status, 4) << words.front() << " " << words[1];
    EXPECT_NE(
        answer.err.find("holds a figure that is not a number in the table INK_Basic, row 1 (RED), field Inventory"),
        std::string::npos)
        << answer.err;
  }
  const auto faults = room.Run({"--json", "file", "check", "--deep"}).Json()["Faults"];
  ASSERT_EQ(faults.size(), 1U) << faults;
  EXPECT_EQ(faults[0]["Table"], "INK_Basic");
  EXPECT_EQ(faults[0]["Row"], 1);
  EXPECT_EQ(faults[0]["Rule"], "Fields");
}

TEST(CliFiles, DatabasesAreListedMadeAndChosen) {
  const test::CliRoom room;
  room.MakeFile();
  EXPECT_EQ(room.Json({"db", "create", "flexo"})["Database"], "FLEXO");
  const test::CliAnswer twice = room.Run({"--json", "db", "create", "Flexo"});
  EXPECT_EQ(twice.status, 1);
  EXPECT_EQ(twice.Json()["refused"]["title"], "Database Already Exists");
  EXPECT_EQ(room.Run({"db", "use", "GONE"}).status, 1);
  EXPECT_EQ(room.Run({"--db", "GONE", "color", "list"}).status, 1);
  room.Json({"db", "use", "FLEXO"});
  const auto list = room.Json({"db", "list"});
  EXPECT_FALSE(list[0]["Current"]);
  EXPECT_TRUE(list[1]["Current"]);
  // A Database of one call only leaves the current one.
  room.Json({"--db", "INK", "color", "add", "BLUE", "PurchaseCost=2"});
  EXPECT_EQ(room.Json({"color", "list"}).size(), 0U);
  EXPECT_EQ(room.Json({"--db", "ink", "color", "list"}).size(), 1U);
}

TEST(CliSettings, AnotherNumberOfDecimalsRewritesTheUnitCosts) {
  const test::CliRoom room;
  room.MakeFile();
  room.Json({"color", "add", "RED", "PurchaseCost=1.11"});
  room.Json({"color", "add", "BLUE", "PurchaseCost=1.12"});
  room.Json({"formula", "add", "MIX", "RED=50", "BLUE=50"});
  EXPECT_EQ(room.Json({"settings", "set", "DecimalPlaces", "4"})["DecimalPlaces"], "4");
  EXPECT_EQ(room.Json({"formula", "show", "MIX"})["BasicCost"].dump(), "1.115");
  EXPECT_EQ(room.Run({"settings", "set", "DecimalPlaces", "2"}).status, 3) << "digits are lost: it asks";
  EXPECT_EQ(room.Json({"settings", "get", "DecimalPlaces"}), "4");
  room.Json({"--yes", "settings", "set", "DecimalPlaces", "2"});
  EXPECT_NE(room.Json({"formula", "show", "MIX"})["BasicCost"].dump(), "1.115");
}

TEST(CliSettings, ReadWrittenListedAndACutFileLosesNoWholeRecord) {
  const test::CliRoom room;
  EXPECT_EQ(room.Json({"settings", "get", "StartupVar_FileVersion"}), "47");
  EXPECT_GT(room.Json({"settings", "list"}).size(), 1259U);
  room.Json({"settings", "set", "UMI", "2"});
  EXPECT_EQ(room.Json({"settings", "get", "UMI"}), "2");
  EXPECT_NE(room.Run({"settings", "set", "UMI", "3"}).err.find("stood for kg. and stand for g. from now on."),
            std::string::npos);
  EXPECT_EQ(room.Run({"settings", "set", "UMI", "2"}).status, 0);
  EXPECT_EQ(room.Run({"settings", "get", "umi"}).status, 1);
  EXPECT_EQ(room.Run({"settings", "set", "NoSuchKey", "2"}).status, 1);
  EXPECT_EQ(room.Run({"settings", "set", "BatchUDTxtDefault0", "a\"b"}).status, 1);
  const test::CliAnswer refused = room.Run({"settings", "set", "UMI", "abc"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err, "Settings: UMI is a whole number from 1 to 4, not \"abc\".\n");
  EXPECT_EQ(room.Json({"settings", "get", "UMI"}), "2");
  for (const char* bad : {"1,5", "1e3", "abc", "", "-1"}) {
    const test::CliAnswer answer = room.Run({"settings", "set", "--", "InvCutoff", bad});
    EXPECT_EQ(answer.status, 1) << bad;
    EXPECT_NE(answer.err.find("InvCutoff is a number of 0 or more, not "), std::string::npos) << answer.err;
  }
  const fs::path file = room.folder / "VKDat" / "vk50suvdf.dat";
  fs::resize_file(file, fs::file_size(file) - 7);  // a cut last line
  EXPECT_EQ(room.Json({"settings", "get", "UMI"}), "2");
  fs::remove_all(room.folder / "VKDat");
  ReplaceFile(room.folder / "VKDat", "a file where the folder should be");
  const test::CliAnswer blocked = room.Run({"settings", "list"});
  EXPECT_EQ(blocked.status, 4);
  EXPECT_NE(blocked.err.find("VKDat"), std::string::npos);
}

// Ann and Bob are in the group of the folder that the package makes, Eve is not.
TEST(CliSettings, TheUsersOfAMachineShareOneFolderThatIsShutToOthers) {
  const test::CliRoom room;
  const gid_t group = ::getgrnam("daemon")->gr_gid;
  const bool root = ::geteuid() == 0;
  const auto as = [&](uid_t user, bool member) {
    return [=] {
      ::umask(022);
      if (!root) return;
      const gid_t groups[]{group};
      if (::setgroups(member ? 1 : 0, groups) != 0 || ::setgid(user) != 0 || ::setuid(user) != 0) ::_exit(125);
    };
  };
  const fs::path shared = room.folder / "VKDat";
  const fs::path files = room.folder / "Files";
  for (const fs::path& place : {shared, files}) {
    fs::create_directory(place);
    if (root) {
      ASSERT_EQ(::chown(place.c_str(), 0, group), 0);
    }
    ::chmod(place.c_str(), 02770);
  }
  ::chmod(room.folder.Path().c_str(), 0777);
  const auto run = [&](uid_t user, bool member, const std::vector<std::string>& words) {
    // The caller's own files of the answer are not the next user's to write.
    for (const char* name : {"stdout", "stderr"}) fs::remove(room.folder / name);
    return room.RunPrepared(words, "/dev/null", as(user, member));
  };
  const std::string path = (files / "Ink.vkd").string();
  EXPECT_EQ(run(4001, true, {"file", "create", path, "--empty", "--database", "INK"}).status, 0);
  EXPECT_EQ(run(4002, true, {"settings", "set", "UMI", "2"}).status, 0) << "of the other's making";
  EXPECT_EQ(run(4001, true, {"settings", "get", "UMI"}).out, "2\n");
  EXPECT_EQ(run(4002, true, {"color", "add", "RED"}).status, 0);
  EXPECT_EQ(run(4002, true, {"file", "compact"}).status, 0);
  EXPECT_EQ(run(4001, true, {"color", "add", "BLUE"}).status, 0);
  for (const fs::path& place : {shared, files})
    for (const auto& entry : fs::recursive_directory_iterator(place)) {
      struct stat status {};
      ::stat(entry.path().c_str(), &status);
      EXPECT_EQ(status.st_mode & 07777, entry.is_directory() ? 02770U : 0660U) << entry.path();
      if (root) {
        EXPECT_EQ(status.st_gid, group) << entry.path();
      }
    }
  // Outside of it a Data File, with the passwords of its users, is its maker's alone.
  EXPECT_EQ(run(4001, true, {"file", "create", (room.folder / "Own.vkd").string(), "--empty"}).status, 0);
  EXPECT_EQ(fs::status(room.folder / "Own.vkd").permissions(), static_cast<fs::perms>(0600));
  if (!root) return;
  const test::CliAnswer answer = run(4003, false, {"settings", "list"});
  EXPECT_EQ(answer.status, 4);
  EXPECT_EQ(answer.err, shared.string() + ": cannot be used: there is no permission to enter " + shared.string() +
                            ", which is for members of the group daemon\n");
}

TEST(CliFrame, UsageQuestionsAndAnswers) {
  const test::CliRoom room;
  EXPECT_EQ(room.Run({}).status, 2);
  EXPECT_EQ(room.Run({"--help"}).status, 0);
  EXPECT_EQ(room.Run({"color", "--help"}).status, 0);
  EXPECT_EQ(room.Run({"color", "paint"}).status, 2);
  EXPECT_EQ(room.Run({"--today", "10.03.2026", "settings", "list"}).status, 2);
  EXPECT_EQ(room.Run({"--answer", "Delete?", "settings", "list"}).status, 2);
  const test::CliAnswer none = room.Run({"color", "list"});
  EXPECT_EQ(none.status, 1);
  EXPECT_NE(none.err.find("No Data File is known yet"), std::string::npos);

  room.MakeFile();
  room.Json({"color", "add", "BLUE"});
  const test::CliAnswer open = room.Run({"--json", "color", "delete", "BLUE"});
  EXPECT_EQ(open.status, 3);
  EXPECT_EQ(open.Json()["question"]["title"], "Basic Color Window - Delete Basic Color?");
  EXPECT_EQ(room.Json({"color", "list"}).size(), 1U);
  EXPECT_EQ(room.Run({"--answer", "Basic Color Window - Delete Basic Color?=no", "color", "delete", "BLUE"}).status, 1);
  EXPECT_EQ(room.Json({"color", "list"}).size(), 1U);
  EXPECT_EQ(room.Run({"--answer", " Basic Color Window - Delete Basic Color? =yes", "color", "delete", "BLUE"}).status,
            0);
  EXPECT_EQ(room.Json({"color", "list"}).size(), 0U);
}

TEST(CliFiles, AHandEditIsNamedAndAcceptedOnPurpose) {
  const test::CliRoom room;
  const fs::path file = room.MakeFile();
  room.Json({"color", "add", "RED", "Notes=mine"});
  EXPECT_EQ(room.Run({"file", "check", "--deep"}).status, 0);
  const std::string edit = "python3 -c \"import sqlite3; file = sqlite3.connect('" + file.string() +
                           "'); file.execute('UPDATE INK_Basic SET Notes = ?', ('theirs',)); file.commit()\"";
  ASSERT_EQ(std::system(edit.c_str()), 0);
  const test::CliAnswer named = room.Run({"--json", "file", "check", "--deep"});
  EXPECT_EQ(named.status, 4);
  ASSERT_EQ(named.Json()["Faults"].size(), 1U) << named.out;
  EXPECT_EQ(named.Json()["Faults"][0]["Table"], "INK_Basic");
  EXPECT_EQ(named.Json()["Faults"][0]["Row"], 1);
  EXPECT_EQ(named.Json()["Faults"][0]["Name"], "RED");
  const auto accepted = room.Json({"file", "check", "--accept"});
  EXPECT_EQ(accepted["Accepted"].size(), 1U);
  EXPECT_EQ(accepted["Sound"], true);
  EXPECT_EQ(room.Run({"file", "check", "--deep"}).status, 0);
  EXPECT_EQ(room.Json({"color", "show", "RED"})["Notes"], "theirs");
}

TEST(CliFiles, ABackupIsMadeProvenAndPutBackEvenOverADamagedFile) {
  const test::CliRoom room;
  room.folder.Breaks("Structure");
  const fs::path file = room.MakeFile();
  room.Json({"color", "add", "RED"});
  const auto made = room.Json({"--now", "2026-03-10 09:00:00", "backup", "make"});
  const fs::path set = made["Set"].get<std::string>();
  EXPECT_EQ(set, room.folder.Path() / "Auto Backup" / "VK_Backup_03_10_2026__09_00_00");
  EXPECT_EQ(made["Verified"], true);
  EXPECT_EQ(room.Json({"backup", "list"}).at(0)["Made"], "2026-03-10 09:00:00");
  EXPECT_EQ(room.Json({"backup", "list"}).at(0)["Place"], "Auto Backup");
  EXPECT_EQ(room.Json({"backup", "verify", set.string()})["Sound"], true);

  room.Json({"color", "delete", "RED", "--yes"});
  // A question nobody answered changes nothing.
  EXPECT_EQ(room.Run({"backup", "restore", set.string()}).status, 3);
  ReplaceFile(file, "damaged");
  const auto restored = room.Json({"--yes", "backup", "restore", set.string()});
  EXPECT_EQ(restored["DataFileName"], file.string());
  EXPECT_EQ(ReadFileBytes(fs::path(restored["Kept"].get<std::string>()) / file.filename()), "damaged");
  EXPECT_EQ(room.Json({"color", "list"}).size(), 1U);
  EXPECT_EQ(room.Json({"backup", "restore-settings", set.string()})["DataFolder"], (room.folder / "VKDat").string());

  std::string bytes = ReadFileBytes(set / file.filename());
  bytes[bytes.find("RED")] = 'B';
  ReplaceFile(set / file.filename(), bytes);
  const test::CliAnswer verified = room.Run({"backup", "verify", set.string()});
  EXPECT_EQ(verified.status, 4);
  EXPECT_NE(verified.out.find("values are not those of when the set was made"), std::string::npos) << verified.out;

  // One of an older version comes back too, and the answer says what was done to it.
  test::OldRoom old = test::MakeOldRoom(12);
  old.users = false;
  const fs::path before = room.folder / "Before" / "Old.vkd";
  fs::create_directories(before.parent_path());
  test::WriteOldFile(before, test::OldTables(old, 28, 0));
  bytes = ReadFileBytes(before);
  const auto updated = room.Json({"--answer", "Lotted Inventory=no", "--yes", "backup", "restore", before.string()})["Updated"];
  EXPECT_EQ(updated["FromVersion"], 28);
  EXPECT_EQ(updated["Balanced"], true);
  EXPECT_EQ(updated["Report"], (room.folder / "Ink Update Report.txt").string());
  EXPECT_EQ(room.Json({"file", "info"})["FileVersion"], 40);
  EXPECT_TRUE(ReadFileBytes(before) == bytes);
}

// A day's work by the program's own doors: what it wrote is sound, and a repair moves nothing but the weighing order.
TEST(CliFiles, ARepairOfASoundFileChangesTheWeighingOrderAloneAndOfADamagedOneSavesTheRest) {
  const test::CliRoom room;
  room.folder.Breaks("Structure");
  const fs::path file = room.MakeFile();
  for (const char* name : {"RED", "BLUE", "WHITE", "WAX"}) room.Json({"color", "add", name, "PurchaseCost=4", "VOC=0.5"});
  room.Json({"color", "set", "WAX", "Additive=true"});
  room.Json({"addset", "add", "SLOW", "WAX=5"});
  room.Json({"formula", "add", "PINK", "RED=20", "WHITE=80"});
  room.Json({"formula", "add", "SKY", "BLUE=30", "WHITE=70", "--additive-set", "SLOW"});
  room.Json({"stock", "adjust", "WHITE", "200"});
  room.Json({"stock", "adjust", "RED", "50", "--lot", "L1", "--loc", "A"});
  room.Json({"batch", "save", "--formula", "PINK", "--quantity", "20", "--lot", "RED=L1:4", "--job", "J1=5"});
  room.Json({"design", "add", "D1", "PINK=5"});
  const auto values = [&] {
    const auto opened = Database::Open(file, OpenMode::Exclusive);
    opened->Execute("UPDATE INK_Basic SET IngSort = 0");
    return test::Snapshot(*opened);
  };
  EXPECT_EQ(room.Run({"file", "repair"}).status, 3) << "it asks";
  const fs::path report = room.folder / "report.json";
  const auto answer = room.Json({"--yes", "file", "repair", "--report", report.string()});
  ASSERT_EQ(answer["Changes"].size(), 1U) << answer;
  EXPECT_EQ(answer["Changes"][0]["Step"], "Ingredient Order");
  EXPECT_EQ(answer["Changes"][0]["Table"], "INK_Basic");
  EXPECT_EQ(answer["Changes"][0]["Count"], 4);
  EXPECT_EQ(nlohmann::ordered_json::parse(ReadFileBytes(report)), answer);
  EXPECT_EQ(room.Run({"file", "check", "--deep"}).status, 0);
  EXPECT_EQ(test::Snapshot(*Database::Open(fs::path(answer["Kept"].get<std::string>()) / "Ink.vkd", OpenMode::Exclusive)).size(), values().size());

  // The first page, without which no engine reads anything.
  const std::string before = values();
  std::string bytes = ReadFileBytes(file);
  std::fill_n(bytes.begin(), 4096, '\0');
  ReplaceFile(file, bytes);
  EXPECT_EQ(room.Run({"color", "list"}).status, 4);
  EXPECT_EQ(room.Run({"--yes", "file", "repair", file.string()}).status, 0);
  EXPECT_EQ(values(), before);
  ReplaceFile(file, "no Data File any more");
  EXPECT_EQ(room.Run({"--yes", "file", "repair"}).status, 1);
  EXPECT_EQ(room.Run({"--yes", "file", "repair", (room.folder / "Gone.vkd").string()}).status, 4);
}

TEST(CliFiles, AnOlderFileIsBroughtUpToDateWithAReport) {
  const test::CliRoom room;
  test::OldRoom shop = test::MakeOldRoom(9);
  shop.users = false;
  const std::string old = (room.folder / "Old.vkd").string();
  test::WriteOldFile(old, test::OldTables(shop, 30, 1));
  const std::string jet = (room.folder / "Jet.vkd").string();
  test::WriteOldJetFile(jet, test::OldTables(shop, 39, 0));
  const std::string before = ReadFileBytes(old);

  // Whoever would work in it is told what to do.
  test::CliAnswer answer = room.Run({"--file", jet, "color", "list"});
  EXPECT_EQ(answer.status, 1);
  EXPECT_NE(answer.err.find("A Jet file must be brought up to version 40 first, with: file upgrade PATH"), std::string::npos) << answer.err;
  const auto check = room.Json({"file", "check", jet});
  EXPECT_TRUE(check["Sound"].get<bool>());
  EXPECT_TRUE(check["NeedsUpgrade"].get<bool>());

  EXPECT_EQ(room.Run({"file", "upgrade", old}).status, 3) << "it asks about lots";
  EXPECT_EQ(ReadFileBytes(old), before);
  auto report = room.Json({"--no", "file", "upgrade", old, "--dry-run"});
  EXPECT_EQ(report["File"], old);
  EXPECT_TRUE(report["DryRun"].get<bool>());
  EXPECT_TRUE(report["Balanced"].get<bool>());
  EXPECT_EQ(ReadFileBytes(old), before);
  const std::string to = (room.folder / "New.vkd").string();
  const std::string kept = (room.folder / "report.json").string();
  report = room.Json({"--no", "file", "upgrade", old, "--to", to, "--report", kept});
  EXPECT_EQ(report["File"], to);
  ASSERT_FALSE(report["Changes"].empty());
  for (const char* key : {"Step", "Table", "Count", "What"}) EXPECT_TRUE(report["Changes"][0].contains(key)) << key;
  EXPECT_EQ(nlohmann::ordered_json::parse(ReadFileBytes(kept)), report);
  EXPECT_EQ(ReadFileBytes(old), before);
  EXPECT_EQ(room.Run({"--no", "file", "upgrade", old, "--to", to}).status, 1) << "the name is taken";
  EXPECT_TRUE(room.Json({"file", "check", to, "--deep"})["Sound"].get<bool>());
  EXPECT_EQ(room.Json({"--file", to, "batch", "show", "4"})["BatchNo"], 4);

  answer = room.Run({"file", "upgrade", jet});
  EXPECT_EQ(answer.status, 0) << answer.err;
  EXPECT_NE(answer.out.find("Every row is accounted for, and the sums are the same to the last digit."), std::string::npos) << answer.out;
  EXPECT_TRUE(fs::exists(room.folder / "Jet(1).vkd"));
  EXPECT_TRUE(fs::exists(room.folder / "Jet(1) Update Report.txt"));
  EXPECT_EQ(room.Run({"file", "upgrade", (room.folder / "Jet(1).vkd").string()}).status, 1) << "it needs none";
}

}  // namespace
}  // namespace vellumark
