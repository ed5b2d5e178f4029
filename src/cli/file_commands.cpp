#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <system_error>

#include "cli/frame.h"
#include "cli/seams.h"
#include "core/base/text.h"
#include "core/batch/leave.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/settings/settings_keys.h"
#include "core/shell/opening.h"
#include "core/shell/startup.h"

namespace vellumark::cli {
namespace fs = std::filesystem;
namespace {

Result<Json> CreateNewFile(Context& context, const std::string& typedPath, const std::string& typedDatabase,
                           FirstContent content) {
  const std::string path = fs::absolute(typedPath).string();
  if (!EqualNoCase(fs::path(path).extension().string(), ".vkd"))
    return Refuse("File Name", fmt::format("The name of a Data File ends in .vkd: {}", path), "PATH");
  const auto name = NewDatabaseName(typedDatabase, {}, path);
  if (!name) return std::unexpected(name.error());
  CreateFile(path);
  try {
    Session& session = context.session;
    session.DataFileName = path;
    session.DataFileDB = Database::Open(path, OpenMode::Exclusive);
    session.DataFileOpen = true;
    MakeFirstDatabase(session, *name, content);
    RunSupportLadder(session);
    SetSupportValue(session, keys::DbFileName50, path);
  } catch (...) {
    // A file that was not finished is not left behind, nor does it become the default.
    context.session.DataFileDB.reset();
    std::error_code ignored;
    fs::remove(path, ignored);
    throw;
  }
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

Result<Json> CheckFile(Context& context, const std::string& typedPath) {
  const std::string path = fs::absolute(typedPath).string();
  Session& session = context.session;
  session.DataFileName.clear();
  NoWindows windows;
  const int version = [&] {
    if (std::error_code error; !fs::exists(path, error)) throw Failure(path, "does not exist");
    return ReadFileVersion(path);
  }();
  const VersionGate gate = GateOf(version);
  if (gate == VersionGate::Unusable) {
    CheckDataFile(session, path, windows);
    return Refuse("Data File", session.StartupMessage);
  }
  Json missing = Json::array();
  Json openBatches = Json::array();
  std::vector<std::string> faults;
  {
    const auto file = Database::Open(path, OpenMode::ReadOnly);
    faults = file->Faults();
    for (const AbandonedBatch& batch : AbandonedBatches(*file))
      openBatches.push_back({{"Database", batch.database}, {"BatchNo", batch.BatchNo}});
    if (gate != VersionGate::Older)
      for (const std::string& part : MissingParts(*file, ReadFileInfo(*file).dbList)) missing.push_back(part);
  }
  if (!faults.empty()) {
    std::string text = path + " is damaged:";
    for (const std::string& fault : faults) text += "\n" + fault;
    return Refuse("Data File", text);
  }
  if (!missing.empty()) {
    std::string text = path + " lacks parts of its layout:";
    for (const Json& part : missing) text += "\n" + part.get<std::string>();
    return Refuse("Data File", text);
  }
  return Json{{"DataFileName", path},
              {"FileVersion", version},
              {"Sound", true},
              {"NeedsUpgrade", gate == VersionGate::Older},
              {"ReadOnly", IsArchiveCopy(version, path)},
              // Left open by a program that was killed: the next opening takes their ingredients from stock again.
              {"OpenBatches", openBatches}};
}

}  // namespace

void AddFileCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "file", "The Data File: create, info, check, compact");

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
  check->add_option("PATH", *checked, "The file")->required()->check(NotEmpty);
  commands.Add(check, Needs::Nothing, [checked](Context& context) { return CheckFile(context, *checked); });

  commands.Add(noun->add_subcommand("compact", "Rewrite the file without its unused space"), Needs::Writable,
               [](Context& context) -> Result<Json> {
                 const fs::path file = context.session.DataFileName;
                 const auto before = fs::file_size(file);
                 CompactDataFile(context.session);
                 return Json{{"DataFileName", file.string()}, {"Before", before}, {"After", fs::file_size(file)}};
               });
}

}  // namespace vellumark::cli
