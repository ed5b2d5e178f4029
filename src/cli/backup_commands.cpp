#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>

#include "cli/damaged_file.h"
#include "cli/frame.h"
#include "cli/restore_output.h"
#include "cli/seams.h"
#include "core/backup/backup_days.h"
#include "core/backup/backup_set.h"
#include "core/backup/look_into.h"
#include "core/base/refusal.h"
#include "core/cloud/cloud_sets.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/line_kind.h"
#include "core/shell/backups.h"
#include "core/shell/settings_restore.h"
#include "devices/ftp_connection.h"

namespace vellumark::cli {
namespace fs = std::filesystem;
namespace {

std::string Absolute(const std::string& typed) {
  return fs::absolute(typed).lexically_normal().string();
}

Json FaultsJson(const std::vector<std::string>& faults) {
  Json list = Json::array();
  for (const std::string& fault : faults) list.push_back({{"Table", nullptr}, {"Row", nullptr}, {"What", fault}});
  return list;
}

Json DatabasesJson(const std::vector<DatabaseProof>& databases) {
  Json list = Json::array();
  for (const DatabaseProof& database : databases) {
    Json counts{{"Database", database.name}};
    counts.update(CountsJson(database));
    list.push_back(std::move(counts));
  }
  return list;
}

Result<Json> MakeBackup(Context& context, const std::string& to) {
  Session& session = context.session;
  const fs::path folder = to.empty() ? fs::path(session.DataFileName).parent_path() / kAutoBackupFolder : fs::path(Absolute(to));
  auto made = BackUpToFolder(session, folder);
  if (!made) return std::unexpected(made.error());
  const bool sound = made->Proven();
  Json answer{{"Set", made->folder.string()}, {"Verified", sound}};
  if (!sound) answer["Faults"] = FaultsJson(made->proof->content.faults);
  context.exitStatus = sound ? ExitDone : ExitFailed;
  return answer;
}

Json SetJson(const std::string& place, const BackupSet& set) {
  return {{"Set", set.folder.string()},
          {"Place", place},
          {"Made", set.made.ToText()},
          {"DataFile", set.dataFile.filename().string()},
          {"Formulas", set.proof ? Json(set.proof->content.Formulas()) : Json()},
          {"Batches", set.proof ? Json(set.proof->content.Batches()) : Json()},
          {"Verified", set.proof ? Json(set.proof->content.Sound()) : Json()}};
}

// What fails is told; what the host told before is listed then.
Result<void> AskCloud(Context& context) {
  const auto ftp = devices::FtpConnection(context.session.clock);
  CloudDesk desk{context.session, *ftp, context.session.progress, {}};
  const auto asked = AskForCloudSets(desk);
  if (!asked) return std::unexpected(asked.error());
  if (asked->done) return {};
  WriteError(asked->Text() + "\n");
  context.exitStatus = ExitFailed;
  return {};
}

// The oldest first.
Result<Json> ListBackups(Context& context, const std::string& in, bool withCloud) {
  Json sets = Json::array();
  if (!in.empty()) {
    const fs::path folder = Absolute(in);
    for (const BackupSet& set : ListSets(folder)) sets.push_back(SetJson(folder.string(), set));
    if (sets.empty()) context.text = fmt::format("There is no backup in {}.\n", folder.string());
    return sets;
  }
  if (context.dataFile.empty())
    return Refuse("Backup", "No Data File is known yet. Name the folder of the sets with --in, or the file with --file.");
  context.session.DataFileName = context.dataFile;
  CloudSets cloud(context.session);
  std::vector<SetSource*> others;
  if (withCloud) {
    if (auto asked = AskCloud(context); !asked) return std::unexpected(asked.error());
    others.push_back(&cloud);
  }
  BackupDays known = DaysToGoBackTo(context.session, others);
  for (const std::string& unreadable : known.unreadable) WriteError(unreadable + ".\n");
  std::ranges::reverse(known.days);
  for (const BackupDay& day : known.days) sets.push_back(SetJson(day.place, day.set));
  if (sets.empty()) context.text = fmt::format("There is no backup of {}.\n", context.dataFile);
  return sets;
}

Result<Json> VerifyBackup(Context& context, const std::string& typed) {
  const auto set = ReadSet(Absolute(typed));
  if (!set) return std::unexpected(set.error());
  const SetCheck check = VerifySet(context.session, *set);
  Json answer{{"Set", set->folder.string()},
              {"Sound", check.faults.empty()},
              {"Proven", set->proof.has_value()},
              {"Databases", DatabasesJson(check.content.databases)},
              {"Faults", FaultsJson(check.faults)}};
  context.text = check.faults.empty() ? fmt::format("{} is sound{}.\n", set->folder.string(),
                                                    set->proof ? " and holds what it held when it was made" : "")
                                      : fmt::format("{} is not sound:\n", set->folder.string());
  for (const std::string& fault : check.faults) context.text += fault + "\n";
  context.exitStatus = check.faults.empty() ? ExitDone : ExitFailed;
  return answer;
}

// A set or the Data File in it.
Result<fs::path> SourceOf(const std::string& typed) {
  const fs::path path = Absolute(typed);
  std::error_code ignored;
  if (!fs::is_directory(path, ignored)) return path;
  auto set = ReadSet(path);
  if (!set) return std::unexpected(set.error());
  return set->dataFile;
}

Result<Json> RestoreBackup(Context& context, const std::string& typed) {
  Session& session = context.session;
  const auto source = SourceOf(typed);
  if (!source) return std::unexpected(source.error());
  std::error_code ignored;
  if (!context.dataFile.empty() && fs::exists(context.dataFile, ignored))
    if (auto opened = OpenAsFarAsItCan(context); !opened) return std::unexpected(opened.error());
  session.DataFileName = context.dataFile;
  NoWindows windows(context.user, context.password);
  const auto restored = RestoreDataFile(session, *source, RestoreFrom::Location, windows);
  if (!restored) return std::unexpected(restored.error());
  Json answer{{"DataFileName", session.DataFileName}, {"From", source->string()}};
  answer.update(RestoredJson(*restored));
  context.text = fmt::format("{} stands in the place of {}\n{}", source->string(), session.DataFileName, RestoredText(*restored));
  return answer;
}

Result<Json> LookIntoBackup(Context& context, const std::string& typed) {
  const auto source = SourceOf(typed);
  if (!source) return std::unexpected(source.error());
  auto rows = LookInto(context.session, *source);
  if (!rows) return std::unexpected(rows.error());
  return context.Answer(LookColumns().Of(*std::move(rows)));
}

Result<Json> TakeFormula(Context& context, const std::string& typed, const std::string& name, bool preview) {
  Session& session = context.session;
  const auto source = SourceOf(typed);
  if (!source) return std::unexpected(source.error());
  const auto back = CompareFormula(session, *source, name);
  if (!back) return std::unexpected(back.error());
  Json lines = Json::array();
  for (const MergeLine& line : CompareLines(session, back->plan, back->place))
    lines.push_back({{"Ingredient", line.name},
                     {"Here", line.isHere ? Json(line.here) : Json()},
                     {"There", line.isThere ? Json(line.there) : Json()},
                     {"Change", line.change}});
  Json answer{{"Color_Name", back->plan.table.formulas[back->place].name},
              {"Database", session.CurrentDatabase},
              {"ModType", MergeModText(back->Mod())},
              {"Lines", lines},
              {"Taken", false}};
  if (preview) return answer;
  const auto report = TakeFormulaBack(session, *back);
  if (!report) return std::unexpected(report.error());
  answer["Taken"] = true;
  answer["NewBasics"] = report->basics;
  answer["Import"] = report->import == 0 ? Json() : Json(report->import);
  return answer;
}

std::string BatchBackText(const BatchBack& back, bool taken) {
  const BatchRecord& there = back.there;
  std::string text =
      fmt::format("Batch {}  {}  {}\n{}\n\n", BatchNoText(there.BatchNo), there.work.Color_Name,
                  there.Date_Entered ? there.Date_Entered->ToText() : "",
                  taken ? "It is stored again." : fmt::format("{}; nothing was taken.", MergeModText(back.mod)));
  text += TableText(TableOf<OldBatchLine>()
                        .Add("Kind", [](const OldBatchLine& line) { return std::string(LineKindName(line.IngType)); })
                        .Add("Name", &OldBatchLine::IngName)
                        .Add("Amount", &OldBatchLine::IngQty, {}, Format::Amount)
                        .Of(there.OldLines));
  for (const BatchDifference& difference : back.differences)
    text += fmt::format("{}: {} here, {} there\n", difference.field, difference.here, difference.there);
  return text;
}

Result<Json> TakeBatch(Context& context, const std::string& typed, std::int32_t number, bool preview) {
  Session& session = context.session;
  const auto source = SourceOf(typed);
  if (!source) return std::unexpected(source.error());
  const auto back = CompareBatch(session, *source, number);
  if (!back) return std::unexpected(back.error());
  Json lines = Json::array();
  for (const OldBatchLine& line : back->there.OldLines)
    lines.push_back({{"IngName", line.IngName}, {"IngQty", Number(line.IngQty)}, {"IngType", static_cast<int>(line.IngType)}});
  Json differences = Json::array();
  for (const BatchDifference& difference : back->differences)
    differences.push_back({{"Field", difference.field}, {"Here", difference.here}, {"There", difference.there}});
  Json answer{{"BatchNo", number},
              {"Color_Name", back->there.work.Color_Name},
              {"Date_Entered", back->there.Date_Entered ? Json(back->there.Date_Entered->ToText()) : Json()},
              {"Database", session.CurrentDatabase},
              {"ModType", MergeModText(back->mod)},
              {"Lines", lines},
              {"Differences", differences},
              {"Taken", false}};
  if (!preview) {
    if (auto taken = TakeBatchBack(session, *back); !taken) return std::unexpected(taken.error());
    answer["Taken"] = true;
  }
  context.text = BatchBackText(*back, !preview);
  return answer;
}

Result<Json> RestoreSettings(Context& context, const std::string& typed) {
  fs::path folder = Absolute(typed);
  std::error_code ignored;
  if (fs::is_directory(folder / kSupportFolderOfSet, ignored)) folder /= kSupportFolderOfSet;
  const auto restored = RestoreSupportFiles(context.session, folder);
  if (!restored) return std::unexpected(restored.error());
  return Json{{"From", folder.string()}, {"DataFolder", context.session.DataFolder.string()}};
}

// Looking into a set, and taking one thing of it back.
void AddLooks(CLI::App* noun, Commands& commands) {
  const auto set = std::make_shared<std::string>();
  const auto name = std::make_shared<std::string>();
  const auto number = std::make_shared<std::int32_t>();
  const auto preview = std::make_shared<bool>(false);
  const auto of = [&](CLI::App* verb) {
    verb->add_option("SET", *set, "The folder of a set, or a Data File")->required()->check(NotEmpty);
    return verb;
  };
  auto* look =
      of(noun->add_subcommand("look", "The formulas and Batches of a set that are not here, or not as they are there"));
  commands.AddList(look, Needs::File, "Backup", [set](Context& context) { return LookIntoBackup(context, *set); });

  const auto previewed = [&](CLI::App* verb) {
    verb->add_flag("--preview", *preview, "Only tell what is different");
    return verb;
  };
  auto* formula = previewed(of(noun->add_subcommand("take-formula", "Take one formula of a set, after asking")));
  formula->add_option("NAME", *name, "The formula")->required()->check(NotEmpty);
  commands.Add(formula, Needs::Writable,
               [set, name, preview](Context& context) { return TakeFormula(context, *set, *name, *preview); });

  auto* batch =
      previewed(of(noun->add_subcommand("take-batch", "Store one Batch of a set that is not here, after asking")));
  batch->add_option("NUMBER", *number, "Its number")->required();
  batch->footer(
      "What it took leaves stock now, and what it put into stock comes in. A Batch that is here is never written "
      "over.");
  commands.Add(batch, Needs::Writable,
               [set, number, preview](Context& context) { return TakeBatch(context, *set, *number, *preview); });
}

}  // namespace

void AddBackupCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "backup", "Backups of the Data File: make, list, verify, restore, restore-settings");

  auto* make = noun->add_subcommand("make", "Make a set: Data File, Support Files and photos, and prove it");
  const auto to = std::make_shared<std::string>();
  make->add_option("--to", *to, "The folder of the set; Auto Backup beside the file when left out")->check(NotEmpty);
  make->footer("Exit status 4 when the set was made but its Data File is not sound.");
  commands.Add(make, Needs::Writable, [to](Context& context) { return MakeBackup(context, *to); });

  auto* list = noun->add_subcommand("list", "The days that one can go back to, the oldest first");
  const auto in = std::make_shared<std::string>();
  auto* one = list->add_option("--in", *in, "The sets of this folder alone; all that are known of the Data File when left out")->check(NotEmpty);
  const auto cloud = std::make_shared<bool>();
  list->add_flag("--cloud", *cloud, "Those of the Cloud account too; \"Set\" is what `cloud restore` takes")
      ->excludes(one);
  commands.Add(list, Needs::Nothing, [in, cloud](Context& context) { return ListBackups(context, *in, *cloud); });

  auto* verify = noun->add_subcommand("verify", "Read a set again, all of it, and compare it with its proof");
  const auto set = std::make_shared<std::string>();
  verify->add_option("SET", *set, "The folder of the set")->required()->check(NotEmpty);
  verify->footer("Exit status 4 when it is not sound; every fault is named.");
  commands.Add(verify, Needs::Nothing, [set](Context& context) { return VerifyBackup(context, *set); });

  auto* restore = noun->add_subcommand("restore", "Put a backup in the place of the Data File, after asking");
  const auto path = std::make_shared<std::string>();
  restore->add_option("PATH", *path, "The folder of a set, or a Data File")->required()->check(NotEmpty);
  restore->footer(
      "What is replaced is kept in a folder beside the Data File. A backup of an older version is brought up to date on a "
      "copy; what that did is told, and kept beside the Data File.");
  commands.Add(restore, Needs::Nothing, [path](Context& context) { return RestoreBackup(context, *path); });

  AddLooks(noun, commands);

  auto* settings = noun->add_subcommand("restore-settings", "Take settings and label layouts of a backup over");
  const auto folder = std::make_shared<std::string>();
  settings->add_option("DIR", *folder, "The folder of a set, or its SUV_Files")->required()->check(NotEmpty);
  commands.Add(settings, Needs::Nothing, [folder](Context& context) { return RestoreSettings(context, *folder); });
}

}  // namespace vellumark::cli
