#include "core/backup/backup_set.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <set>
#include <thread>

#include "core/backup/failed_backup.h"
#include "core/base/digest.h"
#include "core/base/files.h"
#include "core/datafile/row_checks.h"
#include "support/data_files.h"
#include "support/hand_edit.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using test::WriteFile;

// A Data File that nobody has open, the Support Files and a session.
struct ClosedRoom : test::EmptyRoom {
  ClosedRoom() {
    session.support = std::make_unique<SupportFiles>(folder / "VKDat");
    WriteMissingSupportFiles(*session.support);
  }
};

class BackupSets : public testing::Test {
 protected:
  BackupSets() {
    room.MakeFile(file);
    const auto opened = Database::Open(file, OpenMode::Exclusive);
    opened->Execute("INSERT INTO INK_Basic (Color_Name, Notes) VALUES ('RED', 'keep me')");
    WriteFile(room.folder.Path() / "DesignPhotos" / "Gloss.JPG", "a picture");
    WriteFile(room.folder.Path() / "DesignPhotos" / "matte.jpg", "another");
    WriteFile(room.folder.Path() / "DesignPhotos" / "Thumbs.db", "no picture");
  }

  BackupSet Make(std::optional<std::size_t> keep = {}) { return MakeBackupSet(room.session, file, target, keep); }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const BackupSet& set : ListSets(target)) names.push_back(set.folder.filename().string());
    return names;
  }

  // Sets as an earlier program left them: a Data File and no proof.
  void OldSets(int count, const std::string& dataFile = "Ink.vkd") {
    for (int day = 1; day <= count; ++day)
      WriteFile(target / SetName({2025, 1, day, 8, 0, 0}) / dataFile, "whatever");
  }

  ClosedRoom room;
  fs::path file = room.folder / "Ink.vkd";
  fs::path target = room.folder / "Auto Backup";
};

TEST_F(BackupSets, TheNameTellsTheTimeAndNothingElseIsASet) {
  const DateTime made{2024, 2, 29, 23, 5, 9};
  EXPECT_EQ(SetName(made), "VK_Backup_02_29_2024__23_05_09");
  EXPECT_EQ(TimeOfSet(SetName(made)), made);
  for (const char* name : {"VK_Backup_02_30_2024__23_05_09", "VK_Backup_2_29_2024__23_05_09", "VK_Backup_",
                           "VK_Backup_02_29_2024__24_05_09", ".VK_Backup_02_29_2024__23_05_09",
                           "VK_Backup_02_29_2024__23_05_09 (2)", "VK_Backup_+2_29_2024__23_05_09"})
    EXPECT_FALSE(TimeOfSet(name)) << name;
}

TEST_F(BackupSets, ASetHoldsEverythingAndProvesIt) {
  const BackupSet set = Make();
  EXPECT_EQ(set.folder, target / "VK_Backup_03_10_2026__09_00_00");
  EXPECT_EQ(ReadFileBytes(set.dataFile), ReadFileBytes(file));
  EXPECT_EQ(ReadFileBytes(set.folder / "DesignPhotos" / "Gloss.JPG"), "a picture");
  EXPECT_TRUE(fs::exists(set.folder / "DesignPhotos" / "matte.jpg"));
  EXPECT_FALSE(fs::exists(set.folder / "DesignPhotos" / "Thumbs.db"));
  EXPECT_TRUE(fs::exists(set.folder / "SUV_Files" / "vk50suvdf.dat"));
  EXPECT_TRUE(fs::exists(set.folder / "SUV_Files" / "vk50_GH_labeldf.dat"));
  EXPECT_TRUE(set.proof->content.Sound());

  // What is read back is what was made, and a second one of the same second is another set.
  const auto read = ReadSet(set.folder);
  ASSERT_TRUE(read && read->proof);
  EXPECT_EQ(read->proof->content.tables, set.proof->content.tables);
  EXPECT_EQ(read->proof->files, set.proof->files);
  EXPECT_EQ(read->proof->content.databases, (std::vector<DatabaseProof>{{"INK", 1, 0, 0}}));
  EXPECT_TRUE(VerifySet(room.session, *read).faults.empty());
  EXPECT_EQ(Make().folder.filename(), "VK_Backup_03_10_2026__09_00_01");
  EXPECT_EQ(Names().size(), 2U);
}

// A stick that went from one branch of the shop to another.
TEST_F(BackupSets, SetsOfAnotherTimeZoneStandInTheirOrder) {
  room.folder.Breaks("Structure");
  const auto in = [](const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
  };
  in("Asia/Tokyo");
  room.clock.Set({2026, 3, 10, 17, 0, 0});  // 08:00 in universal time
  Make();
  in("America/New_York");
  room.clock.Set({2026, 3, 10, 9, 0, 0});  // 13:00
  Make();
  OldSets(1);
  EXPECT_EQ(Names(), (std::vector<std::string>{"VK_Backup_01_01_2025__08_00_00", "VK_Backup_03_10_2026__17_00_00",
                                               "VK_Backup_03_10_2026__09_00_00"}));
  // The hour that comes twice, when the clocks go back.
  EXPECT_LT(MomentOf({2026, 11, 1, 0, 59, 59}), MomentOf({2026, 11, 1, 2, 0, 0}));
  ::unsetenv("TZ");
  ::tzset();
  const auto sets = ListSets(target);
  EXPECT_EQ(sets.back().made, (DateTime{2026, 3, 10, 9, 0, 0}));
  EXPECT_EQ(sets.back().moment, (DateTime{2026, 3, 10, 13, 0, 0}));
}

TEST_F(BackupSets, WhatChangedBehindItsBackIsNamed) {
  room.folder.Breaks("Structure");
  const BackupSet set = Make();
  const auto faults = [&] {
    std::string text;
    for (const std::string& fault : VerifySet(room.session, set).faults) text += fault + "\n";
    return text;
  };
  std::string bytes = ReadFileBytes(set.dataFile);
  const std::string sound = bytes;
  bytes[bytes.find("keep me")] ^= 1;  // one bit of one stored value, which no rule of the engine sees
  WriteFile(set.dataFile, bytes);
  EXPECT_EQ(faults(), "Ink.vkd: the file is not what it was when the set was made\n"
                      "INK_Basic, row 1 (RED): The row is not as this program wrote it. [Rows]\n"
                      "INK_Basic: values are not those of when the set was made\n");
  WriteFile(set.dataFile, sound.substr(0, sound.size() / 2));
  EXPECT_NE(faults().find("Ink.vkd"), std::string::npos);
  WriteFile(set.dataFile, sound);
  EXPECT_EQ(faults(), "");
  WriteFile(set.folder / "DesignPhotos" / "matte.jpg", "anothes");
  fs::remove(set.folder / "SUV_Files" / "vk50suvdf.dat");
  EXPECT_NE(faults().find("SUV_Files/vk50suvdf.dat: "), std::string::npos);
  EXPECT_NE(faults().find("DesignPhotos/matte.jpg: the file is not what it was"), std::string::npos);
}

// What somebody wrote with another tool no repair takes back: the way to accept it is told.
TEST_F(BackupSets, AHandEditIsToldWithTheWayToAcceptIt) {
  for (const char* rule : {"Rows", "Fields"}) room.folder.Breaks(rule);
  const auto wayOut = [&] {
    const std::string text = FaultsOfSet(Make()).value_or("sound");
    return text.substr(text.rfind("\n\n") + 2);
  };
  const std::string end = ", and back up again. Keep the backups that were made before.";
  for (const char* sql : {"UPDATE INK_Basic SET Notes = 'theirs'", "UPDATE INK_Basic SET Reorder = 0.1"}) {
    test::EditByHand(file, sql);
    EXPECT_EQ(wayOut(), fmt::format("{}. Repair what is wrong besides{}", kAcceptRows, end));
  }
  Database::Open(file, OpenMode::Exclusive)->Execute("UPDATE INK_Basic SET Reorder = 9e999");
  EXPECT_EQ(wayOut(), "Repair the Data File" + end);
}

// Digests of an earlier program are compared with such; what this version found sound is not read again row by row when it
// is only to be restored, as long as every byte is the same.
TEST_F(BackupSets, AnEarlierProofHoldsAndAPresentOneIsTrusted) {
  const BackupSet made = Make();
  SetProof earlier = *made.proof;
  earlier.program = "4.0.0";
  earlier.content = ProveContent(room.session, made.dataFile, room.progress, DigestsOf::Values);
  ASSERT_NE(earlier.content.tables, made.proof->content.tables);
  std::string text = ProofText(earlier);
  const std::string told = " \"Digests\": \"Values\",\n";  // which it did not tell
  ASSERT_NE(text.find(told), std::string::npos);
  text.erase(text.find(told), told.size());
  const auto faults = [&](const std::string& proof, Reproof reproof) {
    WriteFile(made.folder / kProofFile, proof);
    return VerifySet(room.session, *ReadSet(made.folder), reproof).faults.size();
  };
  EXPECT_EQ(faults(text, Reproof::Always), 0U);
  SetProof wrong = *made.proof;
  for (TableProof& table : wrong.content.tables) table.digest ^= 1;
  const std::size_t tables = wrong.content.tables.size();
  EXPECT_EQ(faults(ProofText(wrong), Reproof::Always), tables);
  EXPECT_EQ(faults(ProofText(wrong), Reproof::IfNeeded), 0U);
  WriteFile(made.folder / "DesignPhotos" / "matte.jpg", "anothes");
  EXPECT_EQ(faults(ProofText(wrong), Reproof::IfNeeded), tables + 1);
  WriteFile(made.folder / "DesignPhotos" / "matte.jpg", "another");
  wrong.program = "4.0.0";
  EXPECT_EQ(faults(ProofText(wrong), Reproof::IfNeeded), tables);
}

// A proof is remembered once its file is older than the steps of a clock.
TEST_F(BackupSets, AProofIsReadAgainWhenItsFileIsAnother) {
  const BackupSet made = Make();
  const auto unit = [&] { return ReadSet(made.folder)->proof ? ReadSet(made.folder)->proof->UMI : 0; };
  SetProof other = *made.proof;
  std::this_thread::sleep_for(std::chrono::milliseconds(2200));
  EXPECT_EQ(unit(), 1);
  for (const int next : {2, 3}) {
    other.UMI = next;
    WriteFile(made.folder / kProofFile, ProofText(other));
    EXPECT_EQ(unit(), next);
  }
  WriteFile(made.folder / kProofFile, "{");
  EXPECT_EQ(unit(), 0);
  fs::remove(made.folder / kProofFile);
  EXPECT_EQ(unit(), 0);
}

// A digest that was kept is compared with one that is read in other pieces, past the system's memory.
TEST_F(BackupSets, AFileHasOneDigestHoweverItIsRead) {
  constexpr std::size_t kMegabyte = std::size_t{1} << 20;
  std::vector<FileProof> kept;
  std::string bytes(3 * kMegabyte, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * i + (i >> 9));
  for (const std::size_t size : {std::size_t{0}, std::size_t{7}, std::size_t{4096}, kMegabyte / 4, kMegabyte / 4 + 3,
                                 kMegabyte - 8, kMegabyte, kMegabyte + 1, 2 * kMegabyte + kMegabyte / 2, 3 * kMegabyte - 5}) {
    const std::string content = bytes.substr(0, size);
    Digest digest;
    for (std::size_t at = 0; at < size; at += kMegabyte) digest.Add(std::string_view(content).substr(at, kMegabyte));
    kept.push_back({std::to_string(size), static_cast<std::int64_t>(size), digest.Value()});
    WriteFile(room.folder / kept.back().name, content);
    EXPECT_EQ(ProveFile(room.folder / kept.back().name, kept.back().name), kept.back()) << size;
  }
  // Of a set, and four words at once: whatever bit is another, so is the digest.
  const auto read = [&] { return ProveFiles(room.folder.Path(), kept, [](std::size_t) {}); };
  auto now = read();
  for (std::size_t i = 0; i < kept.size(); ++i) EXPECT_EQ(now[i].value(), kept[i]) << kept[i].name;
  for (FileProof& file : kept) file = ProveFile(room.folder / file.name, file.name, FileDigestOf::Lanes);
  now = read();
  for (std::size_t i = 0; i < kept.size(); ++i) EXPECT_EQ(now[i].value(), kept[i]) << kept[i].name;
  std::set<std::uint64_t> digests;
  std::string content = bytes.substr(0, 4099);
  for (std::size_t at = 0; at < content.size(); at += 7) {
    content[at] ^= static_cast<char>(1 << at % 8);
    WriteFile(room.folder / "flipped", content);
    content[at] ^= static_cast<char>(1 << at % 8);
    digests.insert(ProveFile(room.folder / "flipped", "", FileDigestOf::Lanes).digest);
  }
  EXPECT_EQ(digests.size(), (content.size() + 6) / 7);
}

TEST_F(BackupSets, PruningAtExactlyThirtyOfThisFile) {
  room.folder.Breaks("Structure");
  for (const int before : {29, 30, 31}) {
    fs::remove_all(target);
    OldSets(before);
    WriteFile(target / "VK_Backup_01_01_2020__08_00_00" / "Other.vkd", "another file of the folder");
    WriteFile(target / "VK_Backup_01_02_2020__08_00_00" / "notes.txt", "no Data File: no set");
    Make(kAutomaticSets);
    const std::vector<std::string> names = Names();
    EXPECT_EQ(names.size(), before == 30 ? 31U : before + 2U) << before;
    EXPECT_EQ(names.front(), "VK_Backup_01_01_2020__08_00_00");
    EXPECT_EQ(names[1], before == 30 ? "VK_Backup_01_02_2025__08_00_00" : "VK_Backup_01_01_2025__08_00_00");
    EXPECT_EQ(names.back(), "VK_Backup_03_10_2026__09_00_00");
  }
}

TEST_F(BackupSets, AFileWithFaultsIsBackedUpTheyAreToldAndTheLastProvenSetStays) {
  room.folder.Breaks("Structure");
  room.folder.Breaks("UniqueNames");
  room.clock.Set({2024, 12, 30, 9, 0, 0});
  const fs::path proven = Make().folder;
  OldSets(29);
  const auto change = [&](const char* sql) { Database::Open(file, OpenMode::Exclusive)->Execute(sql); };
  change("INSERT INTO INK_Basic (Color_Name) VALUES ('red')");
  for (int day = 10; day < 13; ++day) {
    room.clock.Set({2026, 3, day, 9, 0, 0});
    room.prompt.Expect("Backup");
    room.session.DataFileName = file.string();
    const auto set = ShutdownBackup(room.session, day == 11 ? "Exit" : "AutoBackup");
    ASSERT_FALSE(set->Proven());
    EXPECT_NE(room.prompt.last.text.find("but the Data File has faults"), std::string::npos);
    EXPECT_NE(room.prompt.last.text.find("INK_Basic, row 2 (red)"), std::string::npos);
    const std::vector<std::string> names = Names();
    ASSERT_EQ(names.size(), 30U);
    EXPECT_EQ(names[0], proven.filename());
    EXPECT_EQ(names[1], SetName({2025, 1, day - 8, 8, 0, 0}));
  }
  change("DELETE FROM INK_Basic WHERE Color_Name = 'red' AND RowKey = 2");
  AcceptRows(*Database::Open(file, OpenMode::Exclusive));
  room.clock.Set({2026, 3, 13, 9, 0, 0});
  room.prompt.Expect("Backup Complete");
  ASSERT_TRUE(ShutdownBackup(room.session, "Exit")->Proven());
  EXPECT_FALSE(fs::exists(proven));
  EXPECT_EQ(Names().size(), 30U);
}

TEST_F(BackupSets, WhatFailsLeavesTheSetsAsTheyWere) {
  const BackupSet before = Make();
  WriteFile(target / ".VK_Backup_01_01_2026__08_00_00" / "Ink.vkd", "of a killed process");
  {
    const test::HeldFile held(file);
    EXPECT_THROW(Make(), Failure);
  }
  {
    const test::WithoutRoot plain(room.folder.Path());
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_THROW(Make(), Failure);
    fs::permissions(target, fs::perms::owner_all);
  }
  EXPECT_EQ(Names(), std::vector<std::string>{before.folder.filename().string()});
  EXPECT_TRUE(VerifySet(room.session, before).faults.empty());
  Make();
  EXPECT_FALSE(fs::exists(target / ".VK_Backup_01_01_2026__08_00_00"));
}

TEST_F(BackupSets, WhatAKilledProgramLeftBesideTheFileIsPlayedBackFirst) {
  const pid_t child = ::fork();
  if (child == 0) {
    const auto opened = Database::Open(file, OpenMode::Exclusive);
    opened->Execute("PRAGMA cache_size = 5");  // so that pages reach the file before the commit
    Transaction transaction(*opened);
    for (int n = 0; n < 500; ++n)
      opened->Execute("INSERT INTO INK_Basic (Color_Name, Notes) VALUES ('LOST " + std::to_string(n) + "', '" +
                      std::string(300, 'x') + "')");
    opened->Execute("UPDATE INK_Basic SET Notes = 'lost'");
    ::_exit(0);
  }
  ::waitpid(child, nullptr, 0);
  ASSERT_TRUE(fs::exists(file.string() + "-journal"));
  ASSERT_GT(fs::file_size(file.string() + "-journal"), 0U);
  const BackupSet set = Make();
  EXPECT_TRUE(set.proof->content.Sound());
  EXPECT_EQ(set.proof->content.databases, (std::vector<DatabaseProof>{{"INK", 1, 0, 0}}));
  EXPECT_EQ(Database::Open(set.dataFile, OpenMode::ReadOnly)->Scalar("SELECT Notes FROM INK_Basic").Text(), "keep me");
  for (const auto& entry : fs::directory_iterator(set.folder))
    EXPECT_FALSE(entry.path().string().ends_with("-journal")) << entry.path();
}

// A stick that is pulled out while the set is written.
TEST_F(BackupSets, ATargetThatVanishesIsToldAndTheNextOneWorks) {
  class Pulled final : public Progress {
   public:
    explicit Pulled(fs::path stick) : stick_(std::move(stick)) {}
    void Begin(std::string_view) override {}
    void Percent(double percent) override {
      if (percent > 10) fs::remove_all(stick_);
    }

   private:
    fs::path stick_;
  } pulled(target);
  Session hasty(room.prompt, pulled, room.clock);
  hasty.support = std::make_unique<SupportFiles>(room.folder / "VKDat");
  try {
    MakeBackupSet(hasty, file, target);
    ADD_FAILURE() << "a set where there is no place for one";
  } catch (const Failure& failure) {
    EXPECT_TRUE(failure.subject.starts_with(target.string())) << failure.subject << failure.cause;
  }
  EXPECT_FALSE(fs::exists(target));
  EXPECT_TRUE(Make().proof->content.Sound());
}

TEST_F(BackupSets, TheClosingBacksUpWhatIsAFileOfItsOwn) {
  const auto closing = [&](const fs::path& closed) {
    room.session.DataFileName = closed.string();
    return ShutdownBackup(room.session, "AutoBackup");
  };
  const auto set = closing(file);
  ASSERT_TRUE(set);
  EXPECT_EQ(set->folder.parent_path(), target);
  EXPECT_FALSE(closing(set->dataFile)) << "a backup";
  room.MakeFile(room.folder / "Ink Archive 2026.vkd");
  EXPECT_FALSE(closing(room.folder / "Ink Archive 2026.vkd"));
  room.MakeFile(room.folder / "Seen.vkd", kArchiveFileVersion);
  EXPECT_FALSE(closing(room.folder / "Seen.vkd"));
  CreateFile(room.folder / "New.vkd");
  EXPECT_FALSE(closing(room.folder / "New.vkd")) << "without a Database";
  EXPECT_FALSE(closing(room.folder / "Gone.vkd"));

  fs::remove_all(target);
  WriteFile(target, "a file in the place of the folder");
  room.session.BackupsFolder = room.folder / "VKDat" / "Backups";
  EXPECT_FALSE(LastFailedBackup(room.session, file));
  room.prompt.Expect("Backup");
  EXPECT_FALSE(closing(file));
  EXPECT_NE(room.prompt.last.text.find(target.string()), std::string::npos) << room.prompt.last.text;
  const auto failed = LastFailedBackup(room.session, file);
  ASSERT_TRUE(failed);
  EXPECT_EQ(failed->when, room.clock.Now());
  EXPECT_TRUE(failed->cause.starts_with(target.string())) << failed->cause;
  EXPECT_FALSE(LastFailedBackup(room.session, room.folder / "Seen.vkd")) << "of another file";
  // Where the note cannot be written that is told too.
  room.session.BackupsFolder = file / "Backups";
  room.prompt.Expect("Backup");
  EXPECT_FALSE(closing(file));
  EXPECT_NE(room.prompt.last.text.find("The start page will not tell of it"), std::string::npos) << room.prompt.last.text;
}

}  // namespace
}  // namespace vellumark
