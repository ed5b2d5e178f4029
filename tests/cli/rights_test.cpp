// Every command of the command line with users who lack one right each, against the table of acts.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>
#include <set>

#include "core/base/text.h"
#include "core/session/acts.h"
#include "support/cli_run.h"

namespace vellumark {
namespace {

// The field of the right and the value that just does not open it.
std::pair<std::string_view, int> FieldOf(CommandRight right) {
  switch (right) {
    case CommandRight::BackupRestore:
      return {"DF_BackupRestore", 0};
    case CommandRight::Export:
      return {"DF_ExportDF_Excel", 0};
    case CommandRight::Advanced:
      return {"DF_AdvancedMenu", 0};
    case CommandRight::Options:
      return {"DF_OptionsMenu", 0};
    case CommandRight::Databases:
      return {"DB_NewRenameDel", 0};
    case CommandRight::DBTools:
      return {"DBToolsMenu", 0};
    case CommandRight::Costs:
      return {"Edit_Costs", 1};
    case CommandRight::VOCHAP:
      return {"Edit_VOCHAP", 0};
    case CommandRight::MasterFormula:
      break;
  }
  return {"Edit_MasterFormula", 0};
}

// The words of a command that its right alone keeps from being done or refused otherwise.
struct Line {
  std::vector<std::string> words;
  std::optional<Act> act;  // where what is asked for is more than the door asks
};

std::vector<Line> Lines(const test::CliRoom& room) {
  const std::string folder = room.folder.Path().string();
  return {
      {{"file", "create", folder + "/Other.vkd", "--empty"}, {}},
      {{"file", "info"}, {}},
      {{"file", "check", folder + "/None.vkd"}, {}},
      {{"file", "compact"}, {}},
      {{"file", "repair"}, {}},
      {{"file", "upgrade", folder + "/none.vkd"}, {}},
      {{"settings", "get", "UMI"}, {}},
      {{"settings", "set", "UMF", "9"}, {}},
      {{"settings", "set", "MarkupPercent", "50"}, Act::EditCosts},
      {{"settings", "set", "JobMixCostOption", "3"}, Act::EditCosts},
      {{"settings", "set", "VOCModelType", "2"}, Act::EditEmissions},
      {{"settings", "list"}, {}},
      {{"undo", "list"}, {}},
      {{"undo", "take", "999"}, {}},
      {{"db", "list"}, {}},
      {{"db", "use", "NONE"}, {}},
      {{"db", "create", "INK"}, {}},
      {{"db", "rename", "NONE", "OTHER"}, {}},
      {{"db", "delete", "NONE"}, {}},
      {{"template", "build", folder + "/none", "--out", folder + "/x.vkt"}, {}},
      {{"template", "check", folder + "/none.vkt"}, {}},
      {{"color", "list"}, {}},
      {{"color", "show", "BLUE"}, {}},
      {{"color", "add", "GREEN"}, {}},
      {{"color", "set", "BLUE", "Notes=x"}, {}},
      {{"color", "set", "BLUE", "PurchaseCost=7"}, Act::EditCosts},
      {{"color", "set", "BLUE", "VOC=1"}, Act::EditEmissions},
      {{"color", "set", "BLUE", "HAP=1"}, Act::EditEmissions},
      {{"color", "rename", "NONE", "OTHER"}, {}},
      {{"color", "delete", "NONE"}, {}},
      {{"formula", "list"}, {}},
      {{"formula", "show", "MIX"}, {}},
      {{"formula", "add", "MORE", "BLUE=50", "RED=50"}, {}},
      {{"formula", "edit", "MIX", "Notes=x"}, {}},
      {{"formula", "edit", "MIX", "BLUE=20", "RED=80"}, Act::EditFormulas},
      {{"formula", "edit", "MIX", "PurchaseCost=7"}, Act::EditCosts},
      {{"formula", "rename", "MIX", "MIXED"}, {}},
      {{"formula", "delete", "MIX"}, {}},
      {{"formula", "duplicate", "MIX", "MIX 2"}, {}},
      {{"formula", "compare", "MIX"}, {}},
      {{"formula", "revert", "MIX"}, {}},
      {{"formula", "import", folder + "/none.mfe"}, {}},
      {{"formula", "compare-file", folder + "/none.mfe"}, {}},
      {{"formula", "imports"}, {}},
      {{"formula", "undo"}, {}},
      {{"formula", "export", folder + "/out.mfe"}, {}},
      {{"formula", "columns"}, {}},
      {{"formula", "passes"}, {}},
      {{"addset", "list"}, {}},
      {{"addset", "show", "SET"}, {}},
      {{"addset", "add", "SET 2", "DRIER=1"}, {}},
      {{"addset", "edit", "SET", "DRIER=2"}, {}},
      {{"addset", "rename", "SET", "SET"}, {}},
      {{"addset", "delete", "NONE"}, {}},
      {{"addset", "apply", "NONE", "MIX"}, {}},
      {{"addset", "remove", "NONE", "MIX"}, {}},
      {{"tools", "modify", "NONE", "--line", "increase BLUE=1"}, {}},
      {{"tools", "rename", "NONE", "--kind", "basic", "--prefix", "X "}, {}},
      {{"tools", "rename", "MIX", "--prefix", "X "}, Act::BulkFormulas},
      {{"tools", "delete", "NONE"}, {}},
      {{"stock", "show"}, {}},
      {{"stock", "lots", "BLUE"}, {}},
      {{"stock", "low"}, {}},
      {{"stock", "history"}, {}},
      {{"stock", "scan", folder + "/none.txt"}, {}},
      {{"stock", "undo", "99999"}, {}},
      {{"stock", "adjust", "BLUE", "0.5"}, {}},
      {{"stock", "reset", "inventory", "NONE"}, {}},
      {{"stock", "reset", "date", "NONE", "2026-01-01"}, {}},
      {{"stock", "reset", "price", "BLUE", "9", "--lot", "L1"}, {}},
      {{"stock", "reorder", "BLUE", "5"}, {}},
      {{"stock", "reset-reorder", "--basics", "x"}, {}},
      {{"batch", "calc", "--formula", "MIX", "--quantity", "10"}, {}},
      {{"batch", "show", "99"}, {}},
      {{"batch", "list"}, {}},
      {{"batch", "ticket", "99", "--out", "ticket.pdf"}, {}},
      {{"batch", "recycles", "--formula", "MIX", "--quantity", "10"}, {}},
      {{"batch", "save", "--formula", "NONE", "--quantity", "10"}, {}},
      {{"batch", "edit", "99"}, {}},
      {{"batch", "delete", "99"}, {}},
      {{"batch", "complete", "99"}, {}},
      {{"job", "list"}, {}},
      {{"job", "out"}, {}},
      {{"job", "show", "NONE"}, {}},
      {{"job", "returns", "NONE", "--out", folder + "/returns.pdf"}, {}},
      {{"job", "create", "- SPLIT -"}, {}},
      {{"job", "add-item", "J", "NONE", "1"}, {}},
      {{"job", "set-used", "J", "1000001", "1"}, {}},
      {{"job", "delete-item", "J", "1000001"}, {}},
      {{"job", "undo", "99999"}, {}},
      {{"job", "rename", "NONE", "K"}, {}},
      {{"job", "close", "NONE"}, {}},
      {{"job", "reopen", "NONE"}, {}},
      {{"job", "export", "--first", "1", "--last", "1", "--out", folder + "/Jobs.txt"}, {}},
      {{"batch", "export", "--first", "9", "--last", "9", "--out", folder + "/out.txt"}, {}},
      {{"design", "list"}, {}},
      {{"design", "show", "NONE"}, {}},
      {{"design", "add", "TRAY"}, {}},
      {{"design", "edit", "NONE"}, {}},
      {{"design", "rename", "NONE", "OTHER"}, {}},
      {{"design", "copy", "NONE", "OTHER"}, {}},
      {{"design", "delete", "NONE"}, {}},
      {{"design", "photo", "NONE", "list"}, {}},
      {{"design", "photos"}, {}},
      {{"design", "export", folder + "/out.txt"}, {}},
      {{"design", "import", folder + "/none.txt"}, {}},
      {{"design", "bench", "NONE", "--impressions", "9"}, {}},
      {{"estimate", "sheetfed", "--ink", "0", "--stock", "0", "--area", "0", "--length", "1", "--width", "1",
        "--sheets", "1"},
       {}},
      {{"estimate", "flexo", "--anilox", "0", "--percent", "9", "--length", "1", "--width", "1", "--sheets", "1"}, {}},
      {{"batch", "weigh", "99", "1"}, {}},
      {{"batch", "dispense", "99", "NONE"}, {}},
      {{"dispenser", "list"}, {}},
      {{"dispenser", "add", "EAST", "--format", "JSON", "--folder", folder}, {}},
      {{"dispenser", "remove", "NONE"}, {}},
      {{"scale", "ports"}, {}},
      {{"scale", "settings"}, {}},
      {{"scale", "on"}, {}},
      {{"scale", "off"}, {}},
      {{"scale", "read"}, {}},
      {{"scale", "tare"}, {}},
      {{"scale", "watch"}, {}},
      {{"report", "list"}, {}},
      {{"report", "run", "NONE"}, {}},
      {{"report", "export", "NONE"}, {}},
      {{"report", "save", "NONE", "NONE"}, {}},
      {{"report", "delete", "NONE"}, {}},
      {{"report", "rename", "NONE", "OTHER"}, {}},
      {{"report", "chart", "NONE"}, {}},
      {{"report", "range", "NONE", "--delete"}, {}},
      {{"report", "ranges"}, {}},
      {{"find", "basic"}, {}},
      {{"find", "mix"}, {}},
      {{"find", "batch"}, {}},
      {{"find", "job"}, {}},
      {{"find", "design"}, {}},
      {{"archive", "preview"}, {}},
      {{"archive", "run"}, {}},
      {{"backup", "make", "--to", folder + "/stick"}, {}},
      {{"backup", "list"}, {}},
      {{"backup", "verify", folder}, {}},
      {{"backup", "restore", folder + "/none.vkd"}, {}},
      {{"backup", "restore-settings", folder + "/none"}, {}},
      {{"cloud", "settings"}, {}},
      {{"cloud", "settings-import", folder + "/None.txt"}, {}},
      {{"cloud", "test"}, {}},
      {{"cloud", "accounts"}, {}},
      {{"cloud", "accounts-import", folder + "/None.txt"}, {}},
      {{"cloud", "backup"}, {}},
      {{"cloud", "share"}, {}},
      {{"cloud", "list"}, {}},
      {{"cloud", "restore", "None_Backup_1.vkd"}, {}},
      {{"cloud", "restore-settings"}, {}},
      {{"cloud", "delete", "None_Backup_1.vkd"}, {}},
      {{"cloud", "fetch"}, {}},
      {{"cloud", "inventory"}, {}},
      {{"cloud", "reports"}, {}},
      {{"cloud", "delete-report", "None.txt"}, {}},
      {{"cloud", "report-upload", "lblProduction"}, {}},
      {{"cloud", "admin", "reports"}, {}},
      {{"cloud", "admin", "report-list"}, {}},
      {{"cloud", "admin", "delete-report", "A1", "None.txt"}, {}},
      {{"cloud", "admin", "data-file", "A1"}, {}},
      {{"cloud", "admin", "send", folder + "/None.vkd", "A1"}, {}},
      {{"cloud", "admin", "default-file"}, {}},
      {{"backup", "look", folder + "/none.vkd"}, {}},
      {{"backup", "take-formula", folder + "/none.vkd", "NONE"}, {}},
      {{"backup", "take-batch", folder + "/none.vkd", "1"}, {}},
      {{"label", "layouts"}, {}},
      {{"label", "show", "Default Label"}, {}},
      {{"label", "set", "NONE", "Date Top", "0"}, {}},
      {{"label", "copy", "NONE", "OTHER"}, {}},
      {{"label", "delete", "NONE"}, {}},
      {{"label", "print", "NONE", "--out", folder + "/label.pdf"}, {}},
      {{"label", "encode", "code128", "A"}, {}},
      {{"users", "list"}, {}},
      {{"users", "enable", "SECOND"}, {}},
      {{"users", "disable"}, {}},
      {{"users", "add", "CARL"}, {}},
      {{"users", "modify", "NOBODY"}, {}},
      {{"users", "delete", "NOBODY"}, {}},
      {{"users", "passwd"}, {}},
  };
}

// The verbs that the program's help tells, by "noun verb".
std::set<std::string> CommandsOfHelp(const test::CliRoom& room, const std::vector<std::string>& words = {}) {
  std::vector<std::string> help = words;
  help.emplace_back("--help");
  const std::string text = room.Run(help).out;
  std::set<std::string> commands;
  const std::size_t begin = text.find("Subcommands:");
  if (begin == std::string::npos) {
    std::string name;
    for (const std::string& word : words) name += (name.empty() ? "" : " ") + word;
    commands.insert(name);
    return commands;
  }
  static const std::regex line("\n  ([a-z-]+) ");
  const std::string list = text.substr(begin);
  for (std::sregex_iterator at(list.begin(), list.end(), line), end; at != end; ++at) {
    std::vector<std::string> more = words;
    more.push_back((*at)[1]);
    commands.merge(CommandsOfHelp(room, more));
  }
  return commands;
}

struct RightsRoom : test::CliRoom {
  RightsRoom() : path(MakeFile()) {
    for (const std::vector<std::string>& words : {std::vector<std::string>{"color", "add", "BLUE"},
                                                  {"color", "add", "RED"},
                                                  {"color", "add", "DRIER", "Additive=1"},
                                                  {"formula", "add", "MIX", "BLUE=50", "RED=50"},
                                                  {"addset", "add", "SET", "DRIER=1"},
                                                  {"stock", "adjust", "BLUE", "20", "--lot", "L1", "--price", "4"}})
      EXPECT_EQ(Run(words).status, 0) << words[1];
    ReplaceFile(folder / "secret", "SECRET\n");
    EXPECT_EQ(RunWithInput({"users", "enable", "BOSS"}, folder / "secret").status, 0);
    Prepare("ANNA");
  }
  void Prepare(const std::string& name) const {
    EXPECT_EQ(AsBoss({"users", "add", name, "--new-password-file", (folder / "secret").string()}).status, 0);
  }
  test::CliAnswer AsBoss(std::vector<std::string> words) const { return As("BOSS", std::move(words)); }
  test::CliAnswer As(const std::string& user, std::vector<std::string> words) const {
    words.insert(words.end(), {"--user", user, "--password", "SECRET"});
    return Run(words);
  }
  // Anna with all rights but those, and with just those.
  void Give(const std::vector<CommandRight>& rights, bool others) const {
    std::vector<std::string> words{"users", "modify", "ANNA"};
    for (const RightField& field : RightFields()) {
      int value = others ? field.full : 0;
      for (const CommandRight right : rights)
        if (FieldOf(right).first == field.field) value = others ? FieldOf(right).second : field.full;
      words.push_back(std::string(field.field) + "=" + std::to_string(value));
    }
    const test::CliAnswer given = AsBoss(words);
    EXPECT_EQ(given.status, 0) << given.err;
  }
  std::string path;
};

bool Denied(const test::CliAnswer& answer) {
  return answer.status == 1 && (answer.err.find("permission") != std::string::npos);
}

TEST(CliRights, EveryCommandHasItsRowAndItsLine) {
  const test::CliRoom room;
  std::set<std::string> rows;
  for (const WayIn& way : CommandWays()) rows.emplace(way.name);
  EXPECT_EQ(CommandsOfHelp(room), rows);
  std::set<std::string> tried;
  for (const Line& line : Lines(room)) {
    const std::string two = line.words[0] + " " + line.words[1];
    tried.insert(rows.contains(two) ? two : two + " " + line.words[2]);
  }
  EXPECT_EQ(tried, rows);
}

TEST(CliRights, EveryCommandIsRefusedWithoutARightOfItsActAndChangesNothing) {
  const RightsRoom room;
  std::map<std::string, std::string> seen;
  for (const bool without : {true, false}) {
    for (const Line& line : Lines(room)) {
      std::string name = line.words[0] + " " + line.words[1];
      if (!ActOfCommand(name)) name += " " + line.words[2];
      const Act door = ActOfCommand(name).value_or(Act::Look);
      ActRow row = RowOf(line.act.value_or(door));
      for (const CommandRight right : RowOf(door).rights)
        if (std::ranges::find(row.rights, right) == row.rights.end()) row.rights.push_back(right);
      SCOPED_TRACE(name + " " + line.words.back());
      if (row.administrator) {
        room.Give({}, true);
        EXPECT_TRUE(Denied(room.As("ANNA", line.words)));
        continue;
      }
      if (!without) {
        // Just its rights are enough: whatever else is said, it is not that one may not.
        if (name == "users passwd" || name == "file create") continue;
        room.Give(row.rights, false);
        const test::CliAnswer answer = room.As("ANNA", line.words);
        EXPECT_FALSE(Denied(answer)) << answer.err;
        EXPECT_NE(answer.status, 70) << answer.err;
        continue;
      }
      for (const CommandRight right : row.rights) {
        room.Give({right}, true);
        const std::string file = ReadFileBytes(room.path);
        const std::string settings = ReadFileBytes(room.folder / "VKDat" / "vk50suvdf.dat");
        const test::CliAnswer answer = room.As("ANNA", line.words);
        EXPECT_TRUE(Denied(answer)) << FieldOf(right).first << ": " << answer.err;
        EXPECT_EQ(ReadFileBytes(room.path) == file, true) << FieldOf(right).first;
        EXPECT_EQ(ReadFileBytes(room.folder / "VKDat" / "vk50suvdf.dat") == settings, true);
      }
    }
  }
}

TEST(CliRights, InAnArchiveEveryCommandThatWritesIsRefusedAndNoneWrites) {
  const RightsRoom room;
  const std::string archive = (room.folder / "Ink Archive 2020.vkd").string();
  std::filesystem::copy_file(room.path, archive);
  const std::string bytes = ReadFileBytes(archive);
  int refused = 0;
  for (const Line& line : Lines(room)) {
    std::string name = line.words[0] + " " + line.words[1];
    if (!ActOfCommand(name)) name += " " + line.words[2];
    SCOPED_TRACE(name);
    std::vector<std::string> words{"--yes", "--file", archive};
    words.insert(words.end(), line.words.begin(), line.words.end());
    const test::CliAnswer answer = room.AsBoss(words);
    EXPECT_TRUE(ReadFileBytes(archive) == bytes);
    if (!RowOf(*ActOfCommand(name)).writes) continue;
    ++refused;
    EXPECT_EQ(answer.status, 1);
    EXPECT_EQ(answer.err,
              "Archive or Backup Data File: You are viewing data from an Archive or Backup Data File which can be viewed, "
              "but cannot be modified.\n\nUse the Open Data File command in the File Menu to open a regular "
              "(non-archive, non-backup) Data File.\n");
  }
  EXPECT_GT(refused, 50);
}

TEST(CliRights, AFileOfOnesOwnIsNoWayRoundTheSettings) {
  const RightsRoom room;
  const std::string other = (room.folder / "Mine.vkd").string();
  EXPECT_EQ(room.Run({"file", "create", other, "--empty"}).err, "Invalid Username/Password!\n");
  EXPECT_TRUE(Denied(room.As("ANNA", {"file", "create", other, "--empty"})));
  EXPECT_FALSE(std::filesystem::exists(other));
  EXPECT_EQ(room.Run({"settings", "set", "UMI", "2"}).status, 1);
  EXPECT_EQ(room.AsBoss({"file", "create", other, "--empty"}).status, 0);
}

}  // namespace
}  // namespace vellumark
