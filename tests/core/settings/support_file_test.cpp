#include "core/settings/support_file.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "core/base/files.h"
#include "core/base/refusal.h"
#include "core/settings/catalogue.h"
#include "support/scratch.h"

namespace vellumark {
namespace {

using std::chrono::milliseconds;
using test::ScratchFolder;

constexpr RecordShape kTwo = RecordShape::KeyValue;
constexpr RecordShape kThree = RecordShape::LayoutKeyValue;

// As a text editor or an older program would: over the old bytes, in the same file.
void Overwrite(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

struct FileState {
  std::string bytes;
  ino_t inode;
  std::int64_t modified;
  bool operator==(const FileState&) const = default;
};

FileState StateOf(const std::filesystem::path& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0);
  return {ReadFileBytes(path), status.st_ino, status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec};
}

TEST(SupportRecordsTest, ReadsWhatOlderProgramsAndHandsLeft) {
  struct Case {
    const char* name;
    RecordShape shape;
    std::string bytes;
    std::vector<SupportRecord> expected;
  };
  const std::vector<Case> cases{
      {"plain", kTwo, "\"UMI\",\"1\"\r\n\"UMF\",\"2\"\r\n", {{"", "UMI", "1"}, {"", "UMF", "2"}}},
      {"comma inside quotes", kTwo, "\"A\",\"1,5, and more\"\r\n", {{"", "A", "1,5, and more"}}},
      {"empty value", kTwo, "\"A\",\"\"\r\n", {{"", "A", ""}}},
      {"quote ends a value", kTwo, "\"A\",\"12\" roll\"\r\n\"B\",\"1\"\r\n", {{"", "A", "12"}, {"", "B", "1"}}},
      {"quote ends a key", kTwo, "\"A\"x\"y,\"1\"\r\n", {{"", "A", "1"}}},
      {"quote then comma in a value", kTwo, "\"A\",\"x\",y\"\r\n\"B\",\"1\"\r\n", {{"", "A", "x"}, {"", "B", "1"}}},
      {"bare fields", kTwo, "  A,  2865\r\nB,x y \r\n", {{"", "A", "2865"}, {"", "B", "x y "}}},
      {"quote in a bare field", kTwo, "A,12\" roll\r\nB,1\r\n", {{"", "A", "12"}, {"", "B", "1"}}},
      {"bare and quoted", kTwo, "A , \"1,2\"\r\n", {{"", "A ", "1,2"}}},
      {"line feeds alone, blank lines", kTwo, "\"A\",\"1\"\n\n\r\n\"B\",\"2\"\n", {{"", "A", "1"}, {"", "B", "2"}}},
      {"code page", kTwo, "\"D\xFCse\",\"\x80 5\"\r\n", {{"", "Düse", "€ 5"}}},
      {"no last line end", kTwo, "\"A\",\"1\"\r\n\"B\",\"2\"", {{"", "A", "1"}, {"", "B", "2"}}},
      {"cut in the value", kTwo, "\"A\",\"1\"\r\n\"B\",\"28", {{"", "A", "1"}, {"", "B", "28"}}},
      {"cut before the value", kTwo, "\"A\",\"1\"\r\n\"B\",", {{"", "A", "1"}, {"", "B", ""}}},
      {"cut behind the key", kTwo, "\"A\",\"1\"\r\n\"B\"", {{"", "A", "1"}, {"", "B", ""}}},
      {"cut in the key", kTwo, "\"A\",\"1\"\r\n\"ColWidth1", {{"", "A", "1"}}},
      {"cut at the first quote", kTwo, "\"A\",\"1\"\r\n\"", {{"", "A", "1"}}},
      {"cut in a bare key", kTwo, "A,1\r\nCol", {{"", "A", "1"}}},
      {"three fields",
       kThree,
       "\"L,1\",\"Top\",\"5\"\r\n\"M\",\"Top\",\"6\"\r\n",
       {{"L,1", "Top", "5"}, {"M", "Top", "6"}}},
      {"cut in the layout", kThree, "\"L\",\"Top\",\"5\"\r\n\"M", {{"L", "Top", "5"}}},
      {"cut behind the layout", kThree, "\"L\",\"Top\",\"5\"\r\n\"M\",", {{"L", "Top", "5"}}},
      {"two fields among three", kThree, "\"L\",\"Top\"\r\n", {{"L", "Top", ""}}},
      {"empty file", kTwo, "", {}},
      {"only separators", kTwo, ",,,\r\n,\r\n", {{"", "", ""}, {"", "", ""}}},
  };
  for (const Case& c : cases) EXPECT_EQ(SupportRecords::Parse(c.bytes, c.shape).Records(), c.expected) << c.name;
}

TEST(SupportRecordsTest, AnyBytesAreReadAndWhatIsWrittenReadsBackTheSame) {
  std::mt19937 random(20050);
  const std::string alphabet("\"\"\",,\r\n ab\xE4\x81\x00", 13);
  for (int round = 0; round < 3000; ++round) {
    std::string bytes;
    for (std::size_t length = random() % 60; length > 0; --length) bytes += alphabet[random() % alphabet.size()];
    for (const RecordShape shape : {kTwo, kThree}) {
      const SupportRecords read = SupportRecords::Parse(bytes, shape);
      ASSERT_EQ(SupportRecords::Parse(read.Bytes(), shape).Records(), read.Records());
    }
  }
}

TEST(SupportRecordsTest, FirstRecordOfAKeyIsReadThroughEveryChange) {
  SupportRecords records(kThree);
  for (int i = 0; i < 300; ++i) records.Append(i % 2 ? "odd" : "even", fmt::format("Key{}", i / 2 % 100), "old");
  EXPECT_TRUE(records.Set("odd", "Key7", "new"));
  EXPECT_EQ(records.Get("even", "Key7"), "old");
  int changed = 0;
  for (const SupportRecord& record : records.Records()) changed += record.value == "new";
  EXPECT_EQ(changed, 2) << "both records of the key that stands twice";

  records.InsertAfter("odd", "Key7", {{"", "Between", "1"}, {"", "Key8", "second"}});
  EXPECT_EQ(records.Get("odd", "Key8"), "second") << "now the first of its key";
  EXPECT_EQ(records.Get("odd", "Between"), "1");
  records.InsertAfter("even", "NoSuchKey", {{"", "Last", "1"}});
  EXPECT_EQ(records.Records()[records.Records().size() - 2].key, "Last") << "behind the layout's last record";

  EXPECT_TRUE(records.RemoveRecords("odd"));
  EXPECT_FALSE(records.RemoveRecords("odd"));
  EXPECT_FALSE(records.Contains("odd", "Key7"));
  EXPECT_EQ(records.Get("even", "Key99"), "old");
  EXPECT_EQ(records.Layouts(), std::vector<std::string>{"even"});
}

TEST(SupportFileTest, ChangesReachTheDiskInTheFormatOfTheFile) {
  const ScratchFolder folder;
  const auto path = folder / "vk50suvdf.dat";
  Overwrite(path, "\"Name\",\"a\"\r\n\"Twice\",\"1\"\r\nbare, x\r\n\"Twice\",\"2\"\r\n");
  SupportFile file(path, kTwo);
  EXPECT_EQ(file.GetSupportValue("Twice"), "1");
  EXPECT_EQ(file.GetSupportValue("twice"), "");

  file.SetSupportValue("Twice", "3");
  file.SetSupportValue("Name", "Grün, 5 €");
  file.AppendSupportValue("Added", "");
  EXPECT_EQ(
      ReadFileBytes(path),
      "\"Name\",\"Gr\xFCn, 5 \x80\"\r\n\"Twice\",\"3\"\r\n\"bare\",\"x\"\r\n\"Twice\",\"3\"\r\n\"Added\",\"\"\r\n");
  EXPECT_EQ(file.GetSupportValue("Name"), "Grün, 5 €");

  file.SetSupportValue("Name", "8\" roll");
  EXPECT_TRUE(ReadFileBytes(path).starts_with("\"Name\",\"8\" roll\"\r\n")) << "written as it stands";
  EXPECT_EQ(file.GetSupportValue("Name"), "8") << "and cut when it is read";
  EXPECT_FALSE(std::filesystem::exists(folder / "vk50suvdf.dat_Temp.dat"));
}

TEST(SupportFileTest, APathIsKeptWhateverStandsInIt) {
  const ScratchFolder folder;
  const auto path = folder / "vk50suvdf.dat";
  Overwrite(path, "\"dbFileName50\",\"/old/Gr\xFCn % 20.vkd\"\r\n\"Notes\",\"file:///a%20b\"\r\n\"PrinterDevice\",\"\"\r\n");
  SupportFile file(path, kTwo);
  EXPECT_EQ(file.GetSupportValue("dbFileName50"), "/old/Grün % 20.vkd") << "as older files have it";
  for (const char* name :
       {"/λ/漆.vkd", "/a \"b\"/c.vkd", "/line\r\nend.vkd", "/%41\xFF.vkd", "file://%41", "/a, b.vkd"}) {
    file.SetSupportValue("dbFileName50", name);
    EXPECT_EQ(SupportFile(path, kTwo).GetSupportValue("dbFileName50"), name);
    EXPECT_EQ(file.Read().Records().size(), 3U) << name;
  }
  EXPECT_TRUE(ReadFileBytes(path).starts_with("\"dbFileName50\",\"/a, b.vkd\"\r\n")) << "plain where it can be";
  EXPECT_EQ(file.GetSupportValue("Notes"), "file:///a%20b") << "no name of the machine's";
  file.SetSupportValue("PrinterDevice", "12\" roll λ");
  EXPECT_EQ(SupportFile(path, kTwo).GetSupportValue("PrinterDevice"), "12\" roll λ");
}

TEST(SupportFileTest, WritersAtOnceLoseNothing) {
  const ScratchFolder folder;
  const auto path = folder / "vk50suvdf.dat";
  SupportFile file(path, kTwo);
  file.Write(SupportRecords(kTwo, {{"", "0", ""}, {"", "1", ""}, {"", "2", ""}, {"", "3", ""}}));
  for (int round = 0; round < 40; ++round) {
    std::vector<pid_t> writers;
    for (int i = 0; i < 4; ++i) {
      writers.push_back(::fork());
      if (writers.back() != 0) continue;
      try {
        SupportFile(path, kTwo).SetSupportValue(std::to_string(i), std::to_string(round));
        ::_exit(0);
      } catch (...) {
        ::_exit(1);
      }
    }
    for (const pid_t writer : writers) {
      int status = 0;
      ::waitpid(writer, &status, 0);
      EXPECT_EQ(status, 0);
    }
    for (int i = 0; i < 4; ++i)
      EXPECT_EQ(SupportFile(path, kTwo).GetSupportValue(std::to_string(i)), std::to_string(round)) << i;
  }
}

TEST(SupportFileTest, WhatChangesNothingLeavesTheFileAlone) {
  const ScratchFolder folder;
  const auto path = folder / "vk50labeldf.dat";
  Overwrite(path, "\"L\",\"Top\",\"720\"\r\n\"L\",\"Left\",\"0\"\r\n");
  SupportFile file(path, kThree);
  const FileState before = StateOf(path);
  std::this_thread::sleep_for(milliseconds(15));
  file.SetSupportValue("L", "Absent", "1");
  file.SetSupportValue("M", "Top", "1");
  file.SetSupportValue("L", "Top", "720");
  file.RemoveRecords("M");
  EXPECT_THROW(file.SetSupportValue("L", "Top", "1\r\n2"), BadValue);
  EXPECT_THROW(file.SetSupportValue("L", "Top", "漆"), BadValue);
  EXPECT_THROW(file.AppendSupportValue("12\" roll", "Top", "1"), BadValue);
  EXPECT_THROW(file.Change([](SupportRecords& records) {
    records.Set("L", "Top", "1");
    records.Append("L", "Broken", "a\nb");
  }),
               BadValue);
  EXPECT_EQ(StateOf(path), before);
  EXPECT_EQ(file.GetSupportValue("L", "Top"), "720") << "nor does a refused change stay in memory";
}

TEST(SupportFileTest, LabelFilesKeepLayoutsApart) {
  const ScratchFolder folder;
  SupportFile file(folder / "vk50labeldf.dat", kThree);
  file.Write(SupportRecords(kThree, {{"A", "Top", "1"}, {"B", "Top", "2"}, {"A", "Left", "3"}}));
  file.SetSupportValue("B", "Top", "20");
  file.AppendSupportValue("B", "Left", "4");
  EXPECT_EQ(file.GetSupportValue("A", "Top"), "1");
  EXPECT_EQ(file.GetSupportValue("B", "Left"), "4");
  file.RemoveRecords("A");
  EXPECT_EQ(file.Read().Records(), (std::vector<SupportRecord>{{"B", "Top", "20"}, {"B", "Left", "4"}}));
}

TEST(SupportFileTest, AMissingFileIsNamedByEveryCall) {
  const ScratchFolder folder;
  const auto path = folder / "vk50scaledf.dat";
  SupportFile file(path, kTwo);
  const auto expectNamed = [&path](const auto& call) {
    try {
      call();
      ADD_FAILURE() << "no failure";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.subject, path.string());
    }
  };
  for (int round = 0; round < 2; ++round) {
    EXPECT_FALSE(file.Exists());
    expectNamed([&] { file.GetSupportValue("CommPort"); });
    expectNamed([&] { file.SetSupportValue("CommPort", "1"); });
    expectNamed([&] { file.AppendSupportValue("CommPort", "1"); });
    EXPECT_FALSE(std::filesystem::exists(path));
    // The same again for a file that was there and went.
    file.Write(SupportRecords(kTwo, {{"", "CommPort", "3"}}));
    EXPECT_EQ(file.GetSupportValue("CommPort"), "3");
    std::filesystem::remove(path);
    std::this_thread::sleep_for(milliseconds(25));
  }
}

TEST(SupportFileTest, NoticesWhatOthersWriteAndKeepsItInItsOwnWrites) {
  const ScratchFolder folder;
  const auto path = folder / "vk50suvdf.dat";
  SupportFile mine(path, kTwo);
  SupportFile other(path, kTwo);
  mine.Write(SupportRecords(kTwo, {{"", "A", "1"}, {"", "B", "1"}}));
  for (int i = 2; i < 9; ++i) {
    const std::string value = std::to_string(i);
    EXPECT_FALSE(mine.GetSupportValue("A").empty());
    other.SetSupportValue("A", value);
    mine.SetSupportValue("B", value);  // without waiting for the clock
    EXPECT_EQ(mine.GetSupportValue("A"), value);

    // Of the same size and in the same file, right after a reading.
    Overwrite(path, fmt::format("\"A\",\"{}\"\r\n\"B\",\"0\"\r\n", value));
    std::this_thread::sleep_for(milliseconds(25));
    EXPECT_EQ(mine.GetSupportValue("B"), "0");
  }
}

TEST(SupportFileTest, AWriteAfterACutFileKeepsAllOtherRecords) {
  const ScratchFolder folder;
  const auto path = folder / "vk50suvdf.dat";
  const std::string whole = DefaultSettings().Bytes();
  const std::vector<SupportRecord> records = DefaultSettings().Records();
  for (const std::size_t cut : {std::size_t{1}, std::size_t{2}, std::size_t{3}, std::size_t{5}, std::size_t{8},
                                std::size_t{14}, std::size_t{40}, std::size_t{60}}) {
    Overwrite(path, std::string_view(whole).substr(0, whole.size() - cut));
    SupportFile file(path, kTwo);
    file.SetSupportValue("UMI", "3");
    const std::vector<SupportRecord> left = file.Read().Records();
    ASSERT_GE(left.size(), records.size() - 2) << "cut by " << cut;
    for (std::size_t i = 0; i + 2 < records.size(); ++i)
      EXPECT_EQ(left[i].value, records[i].key == "UMI" ? "3" : records[i].value) << records[i].key << " cut by " << cut;
  }
}

TEST(SupportFileTest, AKilledWriterLeavesTheFileWhole) {
  const ScratchFolder folder;
  const auto path = folder / "vk50suvdf.dat";
  SupportFile(path, kTwo).Write(DefaultSettings());
  const std::vector<SupportRecord> records = DefaultSettings().Records();
  std::mt19937 random(std::random_device{}());
  int changedRounds = 0;
  for (int round = 0; round < 50; ++round) {
    const std::string before = ReadFileBytes(path);
    int writing[2];
    ASSERT_EQ(::pipe(writing), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      ::close(writing[0]);
      try {
        SupportFile file(path, kTwo);
        for (int i = 0;; ++i) {
          const auto length = static_cast<std::size_t>((i * 37 + round * 7) % 400 + 1);
          file.SetSupportValue(fmt::format("EmailRecipient{}", i % 10), std::string(length, 'x'));
          if (i == 1 && ::write(writing[1], "w", 1) != 1) ::_exit(1);
        }
      } catch (...) {
        ::_exit(1);
      }
    }
    ::close(writing[1]);
    char written = 0;
    EXPECT_EQ(::read(writing[0], &written, 1), 1);
    ::close(writing[0]);
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 8000));
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the writer failed by itself";

    const std::string after = ReadFileBytes(path);
    changedRounds += after != before;
    const SupportRecords left = SupportRecords::Parse(after, kTwo);
    ASSERT_EQ(left.Bytes(), after) << "round " << round;
    ASSERT_EQ(left.Records().size(), records.size()) << "round " << round;
    for (std::size_t i = 0; i < records.size(); ++i) {
      ASSERT_EQ(left.Records()[i].key, records[i].key);
      if (!records[i].key.starts_with("EmailRecipient")) {
        ASSERT_EQ(left.Records()[i].value, records[i].value);
      }
    }
  }
  EXPECT_GT(changedRounds, 40) << "the writer did not write";
}

}  // namespace
}  // namespace vellumark
