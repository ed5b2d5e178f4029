#include "core/upgrade/upgrade.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <system_error>

#include "core/backup/check_run.h"
#include "core/backup/kept_folder.h"
#include "core/backup/proof.h"
#include "core/backup/repair_run.h"
#include "core/base/files.h"
#include "core/base/platform.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/datafile/engine_work.h"
#include "core/datafile/file_kind.h"
#include "core/datafile/lifecycle.h"
#include "core/settings/support_files.h"
#include "core/upgrade/ladder.h"
#include "core/upgrade/reconcile.h"
#include "core/upgrade/settle.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kTitle = "Update Data File";
constexpr int kMarked = 100;  // added to the version of an archive copy

// Steps of the repair that an update leaves out: what it writes is whole, fits its fields and has all tables; the order of
// weighing is the shop's own, photos lie beside the file, and what guides say is read by the ladder.
bool IsWanted(const RepairStep& step) {
  static constexpr std::string_view kWithout[] = {"Databases",        "Stray Tables", "Tables",       "Values",
                                                  "Ingredient Order", "Photos",       "PANTONE Books", "Empty Databases",
                                                  "Check"};
  return std::ranges::find(kWithout, step.name) == std::end(kWithout);
}

// Rules that what was just written, each value through its field, cannot break.
bool IsChecked(const CheckRule& rule) {
  static constexpr std::string_view kWithout[] = {"Structure", "Fields", "Rows"};
  return std::ranges::find(kWithout, rule.name) == std::end(kWithout);
}

// One update, from the copy to the file in its place.
class Update {
 public:
  Update(Session& session, const UpdateWish& wish, const DataFileKind& kind, fs::path target)
      : asked_(session), session_(session.prompt, wish.shown != nullptr ? *wish.shown : session.progress, session.clock), wish_(wish), kind_(kind), target_(std::move(target)) {
    session_.DataFolder = session.DataFolder;
    session_.BackupsFolder = session.BackupsFolder;
    session_.ProgramFolder = session.ProgramFolder;
    session_.ShippedFolder = session.ShippedFolder;
    if (session.support) session_.support = std::make_unique<SupportFiles>(session.DataFolder);
    session_.UMI = session.UMI;
    session_.UMF = session.UMF;
    session_.InvLotTracking = session.InvLotTracking;
    session_.DecimalPlaces = session.DecimalPlaces;
    session_.NameLength = session.NameLength;
    session_.DataFileName = target_.string();
    report_.source = wish.source;
    report_.file = target_;
    report_.jet = kind.jet;
    report_.dryRun = wish.dryRun;
    report_.fromVersion = kind.version;
    report_.toVersion = kind.version > kMarked ? kArchiveFileVersion : kFileVersion;
  }

  Result<UpgradeReport> Run() {
    try {
      return Climb();
    } catch (const Failure& failure) {
      // Work files bear names that mean nothing to people.
      const std::string subject = fs::path(failure.subject).filename().string();
      const bool ofWork = subject.starts_with('.') || failure.subject == wish_.source.string();
      throw UpdateFailure(wish_.source, fmt::format("{}\n{}{}.", doing_, ofWork ? "" : failure.subject + ": ", failure.cause));
    } catch (const BadValue& bad) {
      throw UpdateFailure(wish_.source, fmt::format("{}\n{}", doing_, bad.what()));
    }
  }

 private:
  Result<UpgradeReport> Climb() {
    const ProgressRun progress(session_.progress, kTitle);
    // Beside the place that the file takes, so that it can take it in one step; a dry run leaves the folder alone.
    const fs::path place = wish_.dryRun ? fs::temp_directory_path() / target_.filename() : target_;
    doing_ = "Couldn't make a copy of the database.";
    platform::OpenFile held;
    if (!kind_.jet && !wish_.dryRun) held = HoldDataFile(wish_.source);
    FileBeside work(place, Readers::Group);
    CopySource(work);
    doing_ = "Couldn't open the database.";
    auto file = OpenWorkFile(work.Path());
    if (kind_.jet) CopyTables(*file);
    FindDatabases(*file);
    UpgradeRun run(session_, *file, report_);
    run.databases = session_.databaseList;
    if (auto answered = AskAboutLots(run); !answered) return std::unexpected(answered.error());
    if (!kind_.jet && !wish_.dryRun && wish_.to.empty()) KeepSafetyCopy(*file);
    const std::vector<FileSum> before = SumsOf(run);
    try {
      ClimbLadder(run, kind_.version % kMarked);
      run.Doing("Couldn't close database");
      FileBeside fresh(place, Readers::Group);
      auto made = Database::Create(fresh.Path());
      run.Doing("Couldn't compact the new database.");
      SettleRows(run, *made, report_.toVersion, report_);
      session_.DataFileDB = std::move(made);
      Mend();
      Reconcile(before);
      session_.DataFileDB.reset();
      file.reset();
      if (!wish_.dryRun) TakePlace(fresh);
    } catch (...) {
      doing_ = run.Failure();
      session_.DataFileDB.reset();
      throw;
    }
    session_.progress.Begin("Updating completed successfully!");
    return std::move(report_);
  }

  void CopySource(FileBeside& work) {
    if (kind_.jet) return;
    session_.progress.Begin("Copying the data file ...");
    ReadProved(wish_.source, "", [&](std::string_view piece) { work.Write(piece); });
  }

  void CopyTables(Database& work) {
    session_.progress.Begin("Reading the data file ...");
    for (const SourceDamage& damage : CopyJetTables(wish_.source, work, [&](std::string_view table, double percent) {
           session_.progress.Begin("Reading the data file ...\n" + std::string(table));
           session_.progress.Percent(percent);
         }))
      report_.damaged.push_back({"Reading", damage.table, damage.count, damage.what});
  }

  // A list that names what is not there is mended, and one that names nothing where there are Databases is made anew.
  void FindDatabases(Database& work) {
    const FileInfoRow info = ReadFileInfo(work);
    const auto has = [&](const std::string& name, std::string_view suffix) { return work.TableExists(name + std::string(suffix)); };
    for (const std::string& name : info.dbList) {
      const bool known = std::ranges::any_of(session_.databaseList, [&](const std::string& one) { return EqualNoCase(one, name); });
      const bool any = std::ranges::any_of(schema::PerDatabase(), [&](const Table* table) { return has(name, table->name); });
      if (!name.empty() && !known && any) {
        session_.databaseList.push_back(name);
      } else {
        report_.refused.push_back({"Databases", "FileInfo", 1, fmt::format("DBList names {}, {}", name, known ? "which it names before" : "of which there is no table")});
      }
    }
    if (!info.dbList.empty()) return;
    for (const std::string& table : work.TableNames()) {
      const std::string& end = schema::Basic.name;
      if (table.size() <= end.size() || !EqualNoCase(std::string_view(table).substr(table.size() - end.size()), end)) continue;
      const std::string name = table.substr(0, table.size() - end.size());
      if (!has(name, schema::Mix.name) || !has(name, schema::Info.name)) continue;
      session_.databaseList.push_back(name);
      report_.changes.push_back({"Databases", "FileInfo", 1, fmt::format("DBList was empty and names {} now, of which the tables are there", name)});
    }
  }

  Result<void> AskAboutLots(UpgradeRun& run) {
    const LottedStock stock = LottedStockOf(run);
    if (!stock.Any()) return {};
    const Message question{
        "Lotted Inventory",
        fmt::format("The Inventory of the colors with lots adds up to {}, their lots add up to {}.\n\nDoes the Inventory of a "
                    "color count what lies in its lots too?\nYes takes the lots off it, No leaves it as it is.",
                    stock.colors, stock.lots),
        Buttons::YesNoCancel, Icon::Question, Answer::No};
    const Answer answer = asked_.prompt.Show(question);
    if (answer == Answer::Cancel) return Decline("Lotted Inventory");
    run.stockHoldsLots = answer == Answer::Yes;
    report_.changes.push_back({"Lotted Inventory", "", 1,
                               fmt::format("the Inventory of the colors with lots adds up to {}, their lots to {}: {}", stock.colors,
                                           stock.lots, run.stockHoldsLots ? "the lots were taken off it" : "the lots come to it")});
    return {};
  }

  // Compacted, under the name that the next compaction of the updated file takes away. Without one the update goes on.
  void KeepSafetyCopy(Database& work) {
    const fs::path copy = SafetyCopyPath(wish_.source);
    try {
      if (copy == wish_.source) throw Failure(copy.string(), "is a backup copy itself");
      FileBeside place(copy, Readers::Group);
      work.CopyCompacted(place.Path());
      place.Replace();
      report_.changes.push_back({"Safety Copy", "", 1, fmt::format("the file as it was stands in {}", copy.string())});
    } catch (const Failure& failure) {
      report_.left.push_back({"Safety Copy", "", 1, fmt::format("no safety copy could be made: {}", failure.what())});
    }
  }

  // What the repair mends in a file of today, in the file that has just become one.
  void Mend() {
    session_.CurrentDatabase = session_.databaseList.empty() ? "" : session_.databaseList.front();
    RepairReport mended;
    RepairRun repair(session_, mended);
    repair.Run(IsWanted);
    const auto take = [](const std::vector<StepLine>& from, std::vector<StepLine>& to) {
      for (const StepLine& line : from)
        if (!line.What.ends_with("which means something")) to.push_back(line);
    };
    take(mended.changes, report_.changes);
    take(mended.left, report_.left);
    take(mended.lost, report_.refused);
    for (const StepLine& line : report_.changes)
      if (line.What.find(" is called ") != std::string::npos || line.What.find(" had the number ") != std::string::npos)
        report_.names.push_back(line);
    for (const CheckFault& fault : CheckRun(session_, CheckDepth::Deep, CheckState::InUse).Run(IsChecked).faults)
      report_.left.push_back({"Check", fault.Table, 1, FaultText(fault)});
    if (repair.Failed()) throw Failure(target_.string(), mended.left.empty() ? "could not be mended" : mended.left.back().What);
  }

  void Reconcile(const std::vector<FileSum>& before) {
    UpgradeReport unused;
    UpgradeRun now(session_, session_.File(), unused);
    now.databases = session_.databaseList;
    const std::vector<FileSum> after = SumsOf(now);
    for (std::size_t i = 0; i < before.size(); ++i) report_.sums.push_back({before[i].what, before[i].sum, after[i].sum});
    for (UpgradeTable& table : report_.tables) {
      if (!now.Has(table.Table)) continue;
      const std::int64_t rows = now.Rows(table.Table);
      if (rows > table.Written) table.Made += rows - table.Written;
      if (rows < table.Written) table.Left += table.Written - rows;
      table.Written = rows;
    }
  }

  void TakePlace(FileBeside& fresh) {
    const fs::path text = UpdateReportPath(target_);
    FileBeside kept(text, Readers::Group);
    report_.text = text;
    kept.Write(UpgradeText(report_));
    if (wish_.to.empty() && !kind_.jet) {
      fresh.Replace();
    } else {
      fresh.TakeFreePlace();
    }
    kept.Replace();
  }

  Session& asked_;
  Session session_;
  const UpdateWish& wish_;
  const DataFileKind& kind_;
  fs::path target_;
  UpgradeReport report_;
  std::string doing_;
};

}  // namespace

fs::path UpdateReportPath(const fs::path& updated) {
  return updated.parent_path() / (updated.stem().string() + " Update Report.txt");
}

fs::path UpdatedFile(const fs::path& source) {
  return LookAtDataFile(source).jet ? NextFreeName(source) : source;
}

Result<UpgradeReport> UpdateDataFile(Session& session, const UpdateWish& typed) {
  UpdateWish wish = typed;
  wish.source = RealPath(typed.source);
  const DataFileKind kind = LookAtDataFile(wish.source);
  const int version = kind.version;
  const bool older = (version >= 2 && version < kFileVersion) || (version >= kMarked + 2 && version < kArchiveFileVersion);
  const bool present = version == kFileVersion || version == kArchiveFileVersion;
  if (!older && !(present && kind.jet))
    return Refuse(std::string(kTitle),
                  present ? fmt::format("{} has the file version {} and needs no update.", wish.source.string(), version)
                          : fmt::format("{} has the file version {}. Data files of the versions 2 to {} can be updated.",
                                        wish.source.string(), version, kFileVersion - 1),
                  "PATH");
  fs::path target = wish.source;
  if (!wish.to.empty()) {
    target = fs::absolute(wish.to).lexically_normal();
    if (!EqualNoCase(target.extension().string(), ".vkd"))
      return Refuse("File Name", fmt::format("The name of a Data File ends in .vkd: {}", target.string()), "--to");
    if (Stands(target))
      return Refuse("File Name", fmt::format("{} already exists.", target.string()), "--to");
  } else if (kind.jet) {
    target = NextFreeName(wish.source);
  }
  return Update(session, wish, kind, target).Run();
}

}  // namespace vellumark
