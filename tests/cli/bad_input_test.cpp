#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <map>

#include "core/base/text.h"
#include "support/cli_run.h"
#include "support/places.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

// RED and BLUE, and PURPLE and VIOLET made of them; the Data File and the settings must outlive every refusal.
struct BadInputShop : test::CliRoom {
  BadInputShop() {
    path = MakeFile();
    Json({"color", "add", "RED", "Inventory=50"});
    Json({"color", "add", "BLUE"});
    Json({"formula", "add", "PURPLE", "RED=1", "BLUE=1"});
    Json({"formula", "add", "VIOLET", "RED=2", "BLUE=1", "Inventory=5"});
  }
  // Every file of the room but the two that hold what the program said.
  std::map<std::string, std::string> Everything() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder.Path()))
      if (entry.is_regular_file() && !entry.path().filename().string().starts_with("std"))
        files[entry.path().string()] = ReadFileBytes(entry.path());
    return files;
  }
  // Refused with `status`, `says` on standard error, nothing on standard output, and nothing has changed.
  void ExpectRefused(const Words& words, int status, const std::string& says) const {
    const auto before = Everything();
    const test::CliAnswer answer = Run(words);
    const std::string shown = fmt::format("{}", fmt::join(words, " | "));
    EXPECT_EQ(answer.status, status) << shown << ": " << answer.err;
    EXPECT_NE(answer.err.find(says), std::string::npos) << shown << ": " << answer.err;
    EXPECT_EQ(answer.out, "") << shown;
    EXPECT_TRUE(Everything() == before) << shown;
  }
  std::string path;
};

Words Filled(Words words, const std::string& value) {
  for (std::string& word : words)
    if (const std::size_t mark = word.find('?'); mark != std::string::npos) word.replace(mark, 1, value);
  return words;
}

TEST(CliBadInput, NamesThatCannotBe) {
  const BadInputShop shop;
  const Words adds[] = {{"color", "add", "?"},
                        {"formula", "add", "?", "RED=1"},
                        {"formula", "add", "G", "?=1"},
                        {"color", "rename", "RED", "?"},
                        {"formula", "rename", "PURPLE", "?"},
                        {"formula", "duplicate", "PURPLE", "?"},
                        {"db", "create", "?"}};
  // A name each for what the places of names, of marks and of patterns are written with.
  const std::string names[] = {"[X]", "A*B", "O'NEILL", "A\"B", "50%", "A_B", "A|B", "GRÜN"};
  std::size_t next = 0;
  for (const std::string& name : names)
    for (int n = 0; n < 2; ++n) shop.ExpectRefused(Filled(adds[next++ % std::size(adds)], name), 1, "The name " + name);

  const std::string thirty(30, 'X');
  shop.Json({"color", "add", thirty});
  shop.Json({"formula", "add", thirty, "RED=1", "--answer", "Master Formula - New Master Formula=yes"});
  for (const Words& words : {Words{"color", "add", "?"},
                             {"color", "show", "?"},
                             {"color", "set", "?", "VOC=1"},
                             {"--yes", "color", "rename", "RED", "?"},
                             {"--yes", "color", "delete", "?"},
                             {"formula", "add", "G", "?=1"},
                             {"formula", "edit", "?", "RED=1"},
                             {"--yes", "formula", "delete", "?"},
                             {"formula", "duplicate", "PURPLE", "?"},
                             {"formula", "list", "--using", "?"},
                             {"formula", "export", (shop.folder / "x.mfe").string(), "?"},
                             {"stock", "show", "?"},
                             {"--yes", "stock", "adjust", "?", "1"},
                             {"batch", "calc", "--quantity", "1", "--formula", "?"},
                             {"batch", "calc", "--quantity", "1", "--formula", "PURPLE", "--add", "?=1"}})
    shop.ExpectRefused(Filled(words, thirty + "X"), 1, "has 31 characters, the limit is 30");

  EXPECT_EQ(shop.Json({"color", "show", "  red "})["Color_Name"], "RED");
  EXPECT_EQ(shop.Json({"color", "add", " white  "})["Color_Name"], "WHITE");
  EXPECT_EQ(shop.Json({"color", "add", "--", "-5"})["Color_Name"], "-5");
}

TEST(CliBadInput, NumbersThatAreNone) {
  const BadInputShop shop;
  struct Place {
    Words words;
    std::string says;
  };
  const Place places[] = {
      {{"color", "set", "RED", "Inventory=?"}, "-99999 and 99999"},
      {{"color", "set", "RED", "PurchaseCost=?"}, "You must enter currency between"},
      {{"color", "set", "RED", "Red=?"}, "Red is a whole number from 0 to 255"},
      {{"formula", "edit", "PURPLE", "Reorder=?"}, "0 and 99999"},
      {{"batch", "calc", "--formula", "PURPLE", "--quantity", "9", "--add", "RED=?"}, "-99999.000  and  99999.000"},
      {{"batch", "calc", "--formula", "PURPLE", "--quantity", "9", "--take", "VIOLET=?"}, "is not a valid amount"},
      {{"stock", "adjust", "RED", "?"}, "-99999 and 99999"}};
  for (const Place& place : places)
    for (const char* value : {"1,5", "1e3", "abc", ""}) shop.ExpectRefused(Filled(place.words, value), 1, place.says);
  for (const char* value : {"1,5", "1e3", "abc", "-1", "999.001"})
    shop.ExpectRefused({"formula", "add", "G", std::string("RED=") + value}, 1, "0.001 and 999.000");
  shop.ExpectRefused({"formula", "add", "G", "RED="}, 1, "No quantity for this ingredient.");
  for (const char* value : {"99999.001", "-99999.001", "123456789012345678901234567890"})
    shop.ExpectRefused({"stock", "adjust", "RED", value}, 1, "-99999 and 99999");
  // A number without its zero is no option.
  EXPECT_EQ(shop.Json({"stock", "adjust", "RED", "-.5"})["Inventory"], 49.5);
}

TEST(CliBadInput, WordsThatAreMissingOrTooMany) {
  const BadInputShop shop;
  const struct {
    Words words;
    std::string says;
  } cases[] = {
      {{"--file", "", "color", "list"}, "--file: the text is empty"},
      {{"--db", " ", "color", "list"}, "--db: the text is empty"},
      {{"--data-folder", "", "color", "list"}, "--data-folder: the text is empty"},
      {{"--today", "", "color", "list"}, "--today: the text is empty"},
      {{"--today", "2026-02-30", "color", "list"}, "2026-02-30 is not a date"},
      {{"file", "create", ""}, "PATH: the text is empty"},
      {{"file", "check", ""}, "PATH: the text is empty"},
      {{"formula", "import", ""}, "FILE: the text is empty"},
      {{"formula", "export", ""}, "FILE: the text is empty"},
      {{"template", "check", ""}, "FILE: the text is empty"},
      {{"template", "build", ".", "--out", ""}, "--out: the text is empty"},
      {{"db", "create", "NEW", "--copy", ""}, "--copy: the text is empty"},
      {{"stock", "adjust", "RED", "1", "--lot", ""}, "--lot: the text is empty"},
      {{"formula", "export", (shop.folder / "x.mfe").string(), "[PURPLE]"}, "PURPLE cannot be given in brackets"},
      {{"--yes", "db", "delete", "[INK,OLD]"}, "cannot be given in brackets"},
      {{"colour", "list"}, "colour is no command here"},
      {{"color", "paint", "RED"}, "paint is no command here"},
      {{"color", "show", "RED", "BLUE"}, "not expected: BLUE"},
      {{"color", "list", "--by"}, "not expected: --by"},
      {{"--yes", "--no", "color", "list"}, "excludes"},
  };
  for (const auto& one : cases) shop.ExpectRefused(one.words, 2, one.says);
  // An answer takes one word only, wherever it stands.
  EXPECT_EQ(shop.Json({"color", "show", "--answer", "X=yes", "RED"})["Color_Name"], "RED");
}

TEST(CliBadInput, EachOutcomeIsOneJsonValue) {
  const BadInputShop shop;
  const struct {
    Words words;
    int status;
    std::string key;
  } cases[] = {{{"color", "show", "RED"}, 0, "Color_Name"},
               {{"color", "show", "GREEN"}, 1, "refused"},
               {{"stock", "adjust", "RED", "1", "--lot", std::string(31, 'L')}, 1, "refused"},
               {{"color", "rename", "RED", "BLUE"}, 3, "question"},
               {{"formula", "import", (shop.folder / "gone.mfe").string()}, 4, "failed"},
               {{"--file", (shop.folder / "gone.vkd").string(), "color", "list"}, 4, "failed"}};
  for (const auto& one : cases) {
    Words words = one.words;
    words.insert(words.begin(), "--json");
    const test::CliAnswer answer = shop.Run(words);
    EXPECT_EQ(answer.status, one.status) << answer.err;
    const auto json = answer.Json();
    EXPECT_TRUE(json.contains(one.key)) << answer.out;
    if (one.status == 0) continue;
    const auto& told = json[one.key];
    const std::string title = Trim(told["title"].get<std::string>());
    EXPECT_EQ(answer.err, (title.empty() ? "" : title + ": ") + told["text"].get<std::string>() + "\n");
    EXPECT_TRUE(told.contains("field"));
  }
}

TEST(CliBadInput, ImportsAllOrNothing) {
  const BadInputShop shop;
  const struct {
    std::string rows;
    int status;
    std::string says;
  } cases[] = {
      {"INK\r\nX\tRED\t1,500\tBLUE\t1.500\r\n", 1, "line 2: the amount \"1,500\" of RED"},
      {"INK\r\nX\tRED\t1e3\r\n", 1, "line 2: the amount \"1e3\" of RED"},
      {"INK\r\nX\tRED\t\r\n", 1, "line 2: an ingredient has no amount"},
      {"INK\r\nX\tRED\t-1\r\n", 1, "line 2: the amount \"-1\" of RED"},
      {"INK\r\nX\tRED\t1\r\nY\tRED\r\n", 1, "line 3: an ingredient has no amount"},
      {"INK\r\nX\tRED\t1\tRED\t2\r\n", 1, "line 2: the ingredient RED stands in it twice"},
      {"INK\r\nX\t\t1\r\n", 1, "line 2: an ingredient has no name"},
      {"INK\r\n\tRED\t1\r\n", 1, "line 2: the formula has no name"},
      {"INK\r\nX\tRED\t100.000\r\nY\tRED\t10", 1, "line 3: the file ends in the middle of this row"},
      {"INK\r\n[X]\tRED\t1\r\n", 1, "line 2: the name [X]"},
      {"INK\r\nA|B\tRED\t1\r\n", 1, "line 2: the name A|B"},
      {"INK\r\n" + std::string(31, 'X') + "\tRED\t1\r\n", 1, "has 31 characters, the limit is 30"},
      {"INK\r\nPURPLE\tRED\t1\r\n", 3, "Formula Comparison: 1 formula(s)"},
      {"INK\r\n", 1, "Couldn't read .mfe file correctly."},
      {"", 1, "the file is empty"},
      {std::string("INK\r\nX\tRED\t1\0\r\n", 15), 1, "the file is no text"},
  };
  const fs::path file = shop.folder / "in.mfe";
  for (const auto& one : cases) {
    ReplaceFile(file, one.rows);
    shop.ExpectRefused({"formula", "import", file.string()}, one.status, one.says);
  }
  shop.ExpectRefused({"formula", "import", shop.folder.Path().string()}, 4, "Couldn't open textfile. (is not a file)");
  // A pipe that nobody writes into would hold the program for ever.
  ASSERT_EQ(::mkfifo((shop.folder / "pipe").c_str(), 0600), 0);
  shop.ExpectRefused({"formula", "import", (shop.folder / "pipe").string()}, 4,
                     "pipe: Couldn't open textfile. (is not a file)");
  shop.ExpectRefused({"formula", "import", "/dev/zero"}, 4, "/dev/zero: Couldn't open textfile. (is not a file)");
  fs::remove(shop.folder / "pipe");
}

TEST(CliBadInput, NothingButItsOwnKindIsOverwritten) {
  const BadInputShop shop;
  shop.ExpectRefused({"formula", "export", shop.path}, 4, shop.path + ": is a Data File and is not overwritten");
  shop.ExpectRefused({"formula", "export", "/dev/null"}, 4, "/dev/null: is not a file");
  shop.ExpectRefused({"formula", "export", (shop.folder / "no" / "x.mfe").string()}, 4, "No such file or directory");
  shop.ExpectRefused({"template", "build", ".", "--out", shop.path}, 1, "The name of a template ends in .vkt");
  shop.ExpectRefused({"file", "create", shop.path}, 4, shop.path + ": already exists");
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(CliBadInput, AFullDiskLeavesEverythingAsItWas) {
  const BadInputShop shop;
  std::string rows = "INK\r\n";
  for (int n = 0; n < 2000; ++n) rows += fmt::format("MANY {}\tRED\t{}\tBLUE\t1\r\n", n, n % 900 + 1);
  const fs::path many = shop.folder / "many.mfe";
  ReplaceFile(many, rows);
  const fs::path exported = shop.folder / "out.mfe";
  ReplaceFile(exported, "what was there");
  const std::string created = (shop.folder / "New.vkd").string();
  const struct {
    Words words;
    rlim_t largest;  // bytes that a file may grow to
    std::string file;
  } cases[] = {
      {{"formula", "import", many.string()}, 300000, shop.path},
      {{"color", "add", "GREEN"}, 2000, shop.path},
      {{"db", "create", "COPY", "--copy", "INK"}, fs::file_size(shop.path), shop.path},
      {{"file", "compact"}, 60000, shop.path},
      {{"file", "create", created, "--empty"}, 30000, created},
      {{"file", "create", created, "--empty"}, 100000, created},
      {{"settings", "set", "UMI", "3"}, 20000, "vk50suvdf.dat"},
      {{"--json", "template", "build", (test::SourceFolder() / "data/guides").string(), "--out",
        (shop.folder / "t.vkt").string()},
       50000,
       "t.vkt"},
      {{"--yes", "formula", "export", exported.string()}, 40, "out.mfe"},
  };
  for (const auto& one : cases) {
    const auto before = shop.Everything();
    const test::CliAnswer answer = shop.RunPrepared(one.words, "/dev/null", [&] {
      ::signal(SIGXFSZ, SIG_IGN);
      const rlimit limit{one.largest, one.largest};
      ::setrlimit(RLIMIT_FSIZE, &limit);
    });
    EXPECT_EQ(answer.status, 4) << one.words[1] << ": " << answer.err;
    if (one.largest > 1000) {
      EXPECT_NE(answer.err.find(one.file), std::string::npos) << answer.err;
    }
    EXPECT_TRUE(shop.Everything() == before) << one.words[1];
  }
  EXPECT_EQ(shop.Json({"file", "info"})["DataFileName"], shop.path);
  // What cannot be said keeps its exit status.
  const auto unheard = [&](const Words& words, int stream) {
    return shop.RunPrepared(words, "/dev/null", [stream] {
      const int full = ::open("/dev/full", O_WRONLY);
      if (full < 0 || ::dup2(full, stream) < 0) ::_exit(125);
    });
  };
  for (const Words& words : {Words{"color", "list"}, {"settings", "list"}, {"--json", "settings", "list"}}) {
    const test::CliAnswer answer = unheard(words, STDOUT_FILENO);
    EXPECT_EQ(answer.status, 4) << words[0];
    EXPECT_EQ(answer.err, "standard output: cannot be written\n");
  }
  EXPECT_EQ(unheard({"color", "show", "GREEN"}, STDERR_FILENO).status, 1);
  EXPECT_EQ(unheard({"color", "delete", "BLUE"}, STDERR_FILENO).status, 1);
}

TEST(CliBadInput, WithoutPermissionNothingIsWritten) {
  const BadInputShop shop;
  const fs::path data = shop.folder / "VKDat";
  // Whoever may do everything becomes somebody who may not.
  const auto asNobody = [] {
    if (::geteuid() != 0) return;
    if (::setgid(65534) != 0 || ::setuid(65534) != 0) ::_exit(125);
  };
  const struct {
    fs::path guarded;
    mode_t mode;
    Words words;
    std::string says;
  } cases[] = {
      {shop.path, 0444, {"color", "add", "GREEN"}, shop.path + ": cannot be written: it is read-only"},
      {shop.path, 0000, {"color", "list"}, shop.path + ": cannot be opened: permission denied"},
      {shop.folder.Path(),
       0555,
       {"color", "add", "GREEN"},
       shop.path + ": cannot be written: there is no permission to write in its folder"},
      {shop.folder.Path(),
       0555,
       {"file", "create", (shop.folder / "N.vkd").string()},
       "N.vkd: cannot be written: there is no permission to write in its folder"},
      {data, 0555, {"settings", "set", "UMI", "3"}, "vk50suvdf.dat: cannot be written: there is no permission"},
      {data / "vk50suvdf.dat", 0444, {"settings", "set", "UMI", "3"}, "vk50suvdf.dat: Permission denied"},
      {data / "vk50suvdf.dat", 0000, {"settings", "list"}, "vk50suvdf.dat: Permission denied"},
  };
  const auto setModes = [&](mode_t folderMode, mode_t fileMode) {
    for (const auto& entry : fs::recursive_directory_iterator(shop.folder.Path()))
      ::chmod(entry.path().c_str(), entry.is_directory() ? folderMode : fileMode);
    ::chmod(shop.folder.Path().c_str(), folderMode);
  };
  for (const auto& one : cases) {
    setModes(0777, 0666);
    const auto before = shop.Everything();
    ::chmod(one.guarded.c_str(), one.mode);
    const test::CliAnswer answer = shop.RunPrepared(one.words, "/dev/null", asNobody);
    setModes(0777, 0666);
    EXPECT_EQ(answer.status, 4) << one.words[1] << ": " << answer.err;
    EXPECT_NE(answer.err.find(one.says), std::string::npos) << answer.err;
    EXPECT_TRUE(shop.Everything() == before) << one.words[1];
  }
  // A file that is made, but cannot be stored as the default one, is there; that it is not the default is told.
  ::chmod(data.c_str(), 0555);
  const std::string created = (shop.folder / "N.vkd").string();
  const test::CliAnswer answer = shop.RunPrepared({"file", "create", created, "--empty"}, "/dev/null", asNobody);
  ::chmod(data.c_str(), 0777);
  EXPECT_EQ(answer.status, 0);
  EXPECT_EQ(answer.err.find("Data File: " + created + " could not be stored as the default Data File."), 0U)
      << answer.err;
  EXPECT_EQ(shop.Json({"file", "info"})["DataFileName"], shop.path);
}

}  // namespace
}  // namespace vellumark
