#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <system_error>

#include "cli/damaged_file.h"
#include "cli/frame.h"
#include "cli/seams.h"
#include "cli/upgrade_output.h"
#include "core/backup/deep_check.h"
#include "core/backup/repair.h"
#include "core/base/files.h"
#include "core/base/text.h"
#include "core/datafile/databases.h"
#include "core/datafile/file_kind.h"
#include "core/datafile/jet/jet_file.h"
#include "core/datafile/lifecycle.h"
#include "core/shell/data_files.h"
#include "core/shell/opening.h"
#include "core/shell/repairs.h"
#include "core/shell/startup.h"
#include "core/upgrade/upgrade.h"

namespace vellumark::cli {
namespace fs = std::filesystem;
namespace {

Result<Json> CreateNewFile(Context& context, const std::string& typedPath, const std::string& typedDatabase,
                           FirstContent content) {
  const std::string path = fs::absolute(typedPath).string();
  if (!EqualNoCase(fs::path(path).extension().string(), ".vkd"))
    return Refuse("File Name", fmt::format("The name of a Data File ends in .vkd: {}", path), "PATH");
  if (auto free = CheckNewPlace(context.session, path); !free) return std::unexpected(free.error());
  const auto name = NewDatabaseName(typedDatabase, {}, path);
  if (!name) return std::unexpected(name.error());
  Session& session = context.session;
  NoWindows windows;
  CreateDataFile(session, path, windows, *name, content);
  OpenDataFile(session, windows);
  RunSupportLadder(session);
  return Json{{"DataFileName", path}, {"CurrentDB", *name}};
}

Result<Json> FileInfoAnswer(Context& context) {
  Session& session = context.session;
  const FileInfoRow info = ReadFileInfo(session.File());
  Json databases = Json::array();
  for (const std::string& name : info.dbList) {
    const DatabaseCounts counts = CountRows(session.File(), name);
    databases.push_back({{"Database", name},
                         {"FullName", ReadDatabaseInfo(session.File(), name).fullName},
                         {"Basics", counts.basics},
                         {"Formulas", counts.formulas},
                         {"Batches", counts.batches}});
  }
  return Json{{"DataFileName", session.DataFileName},
              {"FileVersion", info.fileVersion},
              {"CurrentDB", info.currentDB},
              {"BatchNumber", info.batchNumber},
              {"ItemNumber", info.itemNumber},
              {"ArchiveView", session.ArchiveView},
              {"DataFolder", session.DataFolder.string()},
              {"Databases", databases}};
}

Json FaultsJson(const std::vector<CheckFault>& faults) {
  Json list = Json::array();
  for (const CheckFault& fault : faults)
    list.push_back({{"Table", fault.Table.empty() ? Json() : Json(fault.Table)},
                    {"Row", fault.row == 0 ? Json() : Json(fault.row)},
                    {"Name", fault.name},
                    {"Rule", fault.rule},
                    {"What", fault.what}});
  return list;
}

std::string SoundText(const Json& answer, const std::vector<CheckFault>& faults, bool deep) {
  const std::string path = answer["DataFileName"].get<std::string>();
  if (!faults.empty()) {
    std::string text = fmt::format("{} is not sound:\n", path);
    for (const CheckFault& fault : faults) text += FaultText(fault) + "\n";
    return text;
  }
  std::string text = fmt::format("{} is sound.\nFile version {}", path, answer["FileVersion"].get<int>());
  if (answer["ReadOnly"].get<bool>()) text += ", a copy that is not written to";
  if (answer["NeedsUpgrade"].get<bool>()) return text + ", to be brought up to date before it can be used.\n";
  return text + (deep ? ".\nEvery row and every rule was checked.\n"
                      : ".\nStructure, tables and counters were checked; --deep reads every row.\n");
}

// Of its definitions, and of every row where all is read.
std::vector<CheckFault> FaultsOfJetFile(const fs::path& path, bool deep) {
  const JetFile file = JetFile::Open(path);
  std::vector<CheckFault> faults;
  const auto add = [&](const JetDamage& damage) { faults.push_back({damage.table, 0, "", "Structure", damage.Text()}); };
  for (const JetDamage& damage : file.Damage()) add(damage);
  if (!deep) return faults;
  for (const JetTable& table : file.Tables())
    for (const JetDamage& damage : file.Read(table, [](const JetRow&) { return true; }).damage) add(damage);
  return faults;
}

// Opens the file to look at it, whatever the session has open: a check changes nothing, not even what an opening heals.
Result<Json> CheckFile(Context& context, const std::string& typedPath, bool deep) {
  Session& session = context.session;
  if (typedPath.empty() && context.dataFile.empty())
    return Refuse("Data File", "No Data File is known yet. Name the one to check: file check PATH");
  const std::string path = fs::absolute(typedPath.empty() ? context.dataFile : typedPath).string();
  session.DataFileName.clear();
  if (std::error_code error; !fs::exists(path, error)) throw Failure(path, "does not exist");
  const DataFileKind kind = LookAtDataFile(path);
  const int version = kind.version;
  const VersionGate gate = GateOf(version);
  if (gate == VersionGate::Unusable) {
    NoWindows windows;
    CheckDataFile(session, path, windows);
    return Refuse("Data File", session.StartupMessage);
  }
  const bool older = gate == VersionGate::Older || kind.jet;
  if (!kind.jet) session.DataFileDB = Database::Open(path, OpenMode::ReadOnly);
  CheckAnswer check;
  if (kind.jet) {
    check.faults = FaultsOfJetFile(path, deep);
  } else if (older) {
    for (std::string& fault : session.File().Faults())
      check.faults.push_back({"", 0, "", "Structure", std::move(fault)});
  } else {
    check = CheckDataFileRules(session, deep ? CheckDepth::Deep : CheckDepth::Short);
  }
  session.DataFileDB.reset();
  Json answer{{"DataFileName", path},
              {"FileVersion", version},
              {"Sound", check.Sound()},
              {"NeedsUpgrade", older},
              {"ReadOnly", IsArchiveCopy(version, path)},
              {"Faults", FaultsJson(check.faults)}};
  context.text = SoundText(answer, check.faults, deep);
  context.exitStatus = check.Sound() ? ExitDone : ExitFailed;
  return answer;
}

// Whether the file check lets it in; what it cannot read, or finds of a version that there is not, repair may mend.
bool CanBeOpened(const std::string& path) {
  try {
    const VersionGate gate = GateOf(ReadFileVersion(path));
    return gate == VersionGate::Current || gate == VersionGate::ReadOnly;
  } catch (const Failure&) {
    return false;  // the repair says what is amiss
  }
}

Result<Json> RepairFile(Context& context, const std::string& typedPath, const std::string& reportPath) {
  Session& session = context.session;
  if (!typedPath.empty()) context.dataFile = fs::absolute(typedPath).string();
  if (context.dataFile.empty())
    return Refuse("Data File", "No Data File is known yet. Name the one to repair: file repair PATH");
  if (std::error_code error; !fs::exists(context.dataFile, error)) throw Failure(context.dataFile, "does not exist");
  if (CanBeOpened(context.dataFile))
    if (auto opened = OpenAsFarAsItCan(context); !opened) return std::unexpected(opened.error());
  session.DataFileName = context.dataFile;
  NoWindows windows(context.user, context.password);
  const auto report = RepairDataFile(session, windows, [] { return true; });
  if (!report) return std::unexpected(report.error());
  context.text = RepairText(*report);
  Json answer{{"File", report->file.string()},
              {"Kept", report->kept.string()},
              {"Changes", StepLinesJson(report->changes)},
              {"Lost", StepLinesJson(report->lost)},
              {"Left", StepLinesJson(report->left)}};
  if (reportPath.empty()) return answer;
  const bool json = EqualNoCase(fs::path(reportPath).extension().string(), ".json");
  ReplaceFile(fs::absolute(reportPath), json ? JsonText(answer) + "\n" : context.text);
  return answer;
}

// Rows that a person changed with another tool, on purpose, are taken as they stand.
Result<Json> AcceptHandEdits(Context& context, const std::string& typedPath) {
  if (!typedPath.empty()) context.dataFile = fs::absolute(typedPath).string();
  if (auto opened = context.open(); !opened) return std::unexpected(opened.error());
  Session& session = context.session;
  const auto accepted = AcceptStrayRows(session);
  if (!accepted) return std::unexpected(accepted.error());
  Json answer{{"DataFileName", session.DataFileName},
              {"FileVersion", ReadFileInfo(session.File()).fileVersion},
              {"Sound", accepted->rest.Sound()},
              {"NeedsUpgrade", false},
              {"ReadOnly", false},
              {"Accepted", FaultsJson(accepted->rows)},
              {"Faults", FaultsJson(accepted->rest.faults)}};
  for (const CheckFault& fault : accepted->rows) context.text += "Accepted: " + FaultText(fault) + "\n";
  context.text += SoundText(answer, accepted->rest.faults, true);
  context.exitStatus = accepted->rest.Sound() ? ExitDone : ExitFailed;
  return answer;
}

Result<Json> UpgradeFile(Context& context, const UpdateWish& wish, const std::string& reportPath) {
  const auto report = UpdateDataFile(context.session, wish);
  if (!report) return std::unexpected(report.error());
  context.text = UpgradeText(*report);
  Json answer = UpgradeJson(*report);
  if (reportPath.empty()) return answer;
  const bool json = EqualNoCase(fs::path(reportPath).extension().string(), ".json");
  ReplaceFile(fs::absolute(reportPath), json ? JsonText(answer) + "\n" : context.text);
  return answer;
}

}  // namespace

void AddFileCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "file", "The Data File: create, info, check, compact, repair, upgrade");

  auto* create = noun->add_subcommand("create", "Make a new Data File and the default of it");
  const auto path = std::make_shared<std::string>();
  const auto database = std::make_shared<std::string>("PANTONE");
  create->add_option("PATH", *path, "Where the file goes; its name ends in .vkd")->required()->check(NotEmpty);
  create->add_option("--database", *database, "Name of its first Database")->capture_default_str();
  const auto empty = std::make_shared<bool>(false);
  create->add_flag("--empty", *empty, "Leave the first Database empty; else it gets the first guides of the template");
  commands.Add(create, Needs::Nothing, [path, database, empty](Context& context) {
    return CreateNewFile(context, *path, *database, *empty ? FirstContent::Empty : FirstContent::Guides);
  });

  commands.Add(noun->add_subcommand("info", "Version, counters and Databases"), Needs::File, FileInfoAnswer);

  auto* check = noun->add_subcommand("check", "Whether a file is a sound Data File that can be used");
  const auto checked = std::make_shared<std::string>();
  check->add_option("PATH", *checked, "The file; the Data File in use when left out")->check(NotEmpty);
  const auto deep = std::make_shared<bool>(false);
  check->add_flag("--deep", *deep, "Read every row and check every rule that must hold between rows");
  const auto accept = std::make_shared<bool>(false);
  check->add_flag("--accept", *accept, "Take rows that were changed past this program as they stand from now on");
  check->footer("Exit status 4 when the file is not sound; every fault is named with table, row and rule.");
  commands.Add(check, Needs::Nothing, [checked, deep, accept](Context& context) {
    return *accept ? AcceptHandEdits(context, *checked) : CheckFile(context, *checked, *deep);
  });

  commands.Add(noun->add_subcommand("compact", "Rewrite the file without its unused space"), Needs::Writable,
               [](Context& context) -> Result<Json> {
                 const fs::path file = context.session.DataFileName;
                 const auto before = fs::file_size(file);
                 CompactDataFile(context.session);
                 return Json{{"DataFileName", file.string()}, {"Before", before}, {"After", fs::file_size(file)}};
               });

  auto* repair = noun->add_subcommand("repair", "Mend a Data File, also one that cannot be opened, after asking");
  const auto repaired = std::make_shared<std::string>();
  repair->add_option("PATH", *repaired, "The file; the Data File in use when left out")->check(NotEmpty);
  const auto report = std::make_shared<std::string>();
  repair->add_option("--report", *report, "Write what was done into a file, a text or, by its name, .json")->check(NotEmpty);
  repair->footer("The file as it was, and photos that no Design names, are kept in a folder beside it.");
  commands.Add(repair, Needs::Nothing, [repaired, report](Context& context) { return RepairFile(context, *repaired, *report); });

  auto* upgrade = noun->add_subcommand("upgrade", "Bring a Data File of an earlier version, or a Jet file, up to date");
  const auto wish = std::make_shared<UpdateWish>();
  const auto source = std::make_shared<std::string>();
  const auto to = std::make_shared<std::string>();
  upgrade->add_option("PATH", *source, "The file")->required()->check(NotEmpty);
  upgrade->add_option("--to", *to, "Where the updated file goes; else in its place, of a Jet file under the next free name")
      ->check(NotEmpty);
  const auto told = std::make_shared<std::string>();
  upgrade->add_option("--report", *told, "Write what was done into a file, a text or, by its name, .json")->check(NotEmpty);
  upgrade->add_flag("--dry-run", wish->dryRun, "Only tell what would be done");
  upgrade->footer("The report is kept beside the updated file. A file that fails stays as it was.");
  commands.Add(upgrade, Needs::Nothing, [wish, source, to, told](Context& context) {
    wish->source = fs::absolute(*source);
    wish->to = to->empty() ? fs::path() : fs::absolute(*to);
    return UpgradeFile(context, *wish, *told);
  });
}

}  // namespace vellumark::cli
