#include "core/backup/repair.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "core/backup/backup_set.h"
#include "core/backup/kept_folder.h"
#include "core/backup/repair_run.h"
#include "core/base/files.h"
#include "core/base/platform.h"
#include "core/base/progress_run.h"
#include "core/base/refusal.h"
#include "core/datafile/engine_salvage.h"
#include "core/datafile/lifecycle.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kTitle = "Repair Data File";

constexpr RepairStep kSteps[] = {
    {4, "Databases", RebuildDatabaseList},
    {4, "Stray Tables", DropStrayTables},
    {4, "Tables", CompleteTables},
    {4, "Values", MendValues},
    {4, "Names", TrimNames},
    {5, "Formulas", RebuildFormulas},
    {6, "Additive Sets", RebuildAdditiveSets},
    {7, "Null Values", FillColorTables},
    {8, "Null Values - Designs", FillDesigns},
    {9, "Null Values - Jobs", FillJobs},
    {10, "Ingredients", AddMissingIngredients},
    {11, "Duplicate Basics", RenameDuplicateBasics},
    {12, "Duplicate Formulas", RenameDuplicateFormulas},
    {13, "Additive Names", MendAdditiveNames},
    {13, "Formulas Again", RebuildFormulas},
    {14, "Inventory", MendInventory},
    {15, "Ingredient Order", SortIngredients},
    {16, "Lots", MendLots},
    {17, "L-a-b-D", FillMeasurements},
    {17, "Colors of Lots", AddColorsOfLots},
    {18, "Users", MendUserTable},
    {19, "Additives of Formulas", MendFormulaSets},
    {20, "Designs", MendDesigns},
    {21, "Ingredients of Designs", MendDesignColors},
    {22, "Photos", MendPhotos},
    {23, "Dispensers", DropNamelessDispensers},
    {24, "PANTONE Books", ReadGuidesAgain},
    {24, "Numbers", MendNumbers},
    {24, "Batches", MendBatches},
    {24, "Stock History", MendStockHistory},
    {24, "Check", FindWhatIsLeft},
    {26, "Empty Databases", FindEmptyDatabases},
};

DateTime SecondAfter(DateTime time) {
  if (++time.second < 60) return time;
  time.second = 0;
  if (++time.minute < 60) return time;
  time.minute = 0;
  if (++time.hour < 24) return time;
  return DateTime::FromDayNumber(time.DayNumber() + 1);
}

// The file as it was, in a folder beside. Gone again when nothing comes of the repair.
class KeptFile {
 public:
  KeptFile(const Session& session, const fs::path& current) : folder_(session, current, "Repair") {
    for (const fs::path& file : {current, JournalOf(current)})
      if (Stands(file)) CopyProved(file, Folder() / file.filename(), file.filename().string());
  }

  const fs::path& Folder() const { return folder_.Path(); }
  /// Copies of photos that are going to be removed; the folder is whole with them.
  void KeepPhotos(const std::vector<fs::path>& photos) {
    std::error_code ignored;
    fs::remove_all(Folder() / kPhotoFolderOfSet, ignored);  // of a try that came to nothing
    if (!photos.empty()) MakeFolder(Folder() / kPhotoFolderOfSet);
    for (const fs::path& photo : photos)
      CopyProved(photo, Folder() / kPhotoFolderOfSet / photo.filename(), photo.filename().string());
  }
  void Show() { folder_.Show(); }
  void Stay() { folder_.Stay(); }

 private:
  KeptFolder folder_;
};

void TellSalvage(const Salvage& salvage, RepairReport& report) {
  const std::string step = "Pages";
  for (const SalvagedTable& table : salvage.tables) {
    if (table.rows > 0)
      report.changes.push_back({step, table.name, table.rows, "read past damaged pages into a new file"});
    if (table.cutRows > 0) report.lost.push_back({step, table.name, table.cutRows, "the end of a long text"});
    if (table.lostRows == 0) continue;
    std::string names;
    for (const std::string& name : table.lostNames) names += (names.empty() ? ": " : ", ") + name;
    report.lost.push_back({step, table.name, table.lostRows, "could not be read" + names});
  }
  if (salvage.strayPages > 0)
    report.lost.push_back({step, "", salvage.strayPages, "pages of rows of which nobody knows the table"});
}

// A field that nobody knows where a known one is missing bears a damaged name: nobody would find what stands in it.
bool HasStrangeFields(Database& file, const std::string& name) {
  const Table* layout = KnownLayout(name);
  if (layout == nullptr || MissingFields(file, name, *layout).empty()) return false;
  return std::ranges::any_of(file.StoredFields(name),
                             [&](const std::string& field) { return layout->Find(field) < 0; });
}

// Whether the engine can read all of a file; its own check looks at every page. A journal is played back here.
bool IsWhole(const fs::path& path) {
  try {
    const auto file = Database::Open(path, OpenMode::Exclusive);
    if (!file->Faults().empty() || file->TableNames().empty()) return false;
    return std::ranges::none_of(file->TableNames(),
                                [&](const std::string& name) { return HasStrangeFields(*file, name); });
  } catch (const Failure&) {
    return false;  // that is what repairs are for; what can be read is read otherwise
  }
}

enum class Layout { Present, Older, Unknown };

// A file of an older version has other tables; it is brought up to date at its opening, and mended after that. One that
// has all of the present tables is no other, whatever its version says: that was damaged.
Layout LayoutOf(Database& file) {
  if (!file.TableExists(schema::FileInfo.name)) return Layout::Present;
  const int version = static_cast<int>(file.Scalar("SELECT FileVersion FROM FileInfo").Whole());
  const VersionGate gate = GateOf(version);
  if (gate == VersionGate::Current || gate == VersionGate::ReadOnly || version < 2) return Layout::Present;
  const std::vector<std::string> missing =
      MissingParts(file, SplitMarked(file.Scalar("SELECT DBList FROM FileInfo").Text(), '|'));
  const auto came = [](const std::string& part) { return part.ends_with(schema::BatchScaleResults.name); };
  if (std::ranges::all_of(missing, came)) return Layout::Present;
  return gate == VersionGate::Older ? Layout::Older : Layout::Unknown;
}

// The repaired file takes the place of the damaged one; then only go the photos that nobody names.
void TakePlace(FileBeside& place, const std::vector<fs::path>& photos, RepairReport& report) {
  const fs::path safetyCopy = SafetyCopyPath(place.Target());
  // Of a file that could not even be opened it is in the way: it would be played back into the one that comes.
  if (std::error_code error;
      Stands(JournalOf(place.Target())) && !fs::remove(JournalOf(place.Target()), error) && error)
    throw Failure(JournalOf(place.Target()).string(), "cannot be removed: " + error.message());
  place.Replace();
  const auto remove = [&](const fs::path& path) {
    std::error_code error;
    if (!fs::remove(path, error) && error)
      report.left.push_back(
          {"Compacting", "", 1, fmt::format("{} cannot be removed: {}", path.string(), error.message())});
  };
  if (Stands(safetyCopy)) remove(safetyCopy);
  for (const fs::path& photo : photos) remove(photo);
  if (!photos.empty()) SyncFolder(photos.front().parent_path());
}

}  // namespace

std::span<const RepairStep> RepairSteps() {
  return kSteps;
}

namespace {

/// How the content of the file is come by.
enum class Reading { Copied, PageByPage };

// One try, on copies of its own. Nothing when the copy is not whole, or when what seemed so failed its steps: then the
// pages are read one by one.
std::optional<Result<RepairReport>> Try(Session& session, KeptFile& kept, const fs::path& current, Reading reading,
                                        const std::function<Result<void>()>& mayGoOn) {
  RepairReport report;
  report.file = current;
  FileBeside work(current, Readers::Group);
  const fs::path keptFile = kept.Folder() / current.filename();
  work.Write(ReadFileBytes(keptFile));
  if (Stands(JournalOf(keptFile)))
    ReplaceFile(JournalOf(work.Path()), ReadFileBytes(JournalOf(keptFile)), Readers::Group);
  const bool whole = IsWhole(work.Path());
  if (!whole && reading == Reading::Copied) return std::nullopt;
  std::optional<FileBeside> fresh;
  if (reading == Reading::PageByPage) {
    fresh.emplace(current, Readers::Group);
    const Salvage salvage = SalvageInto(work.Path(), fresh->Path());
    if (!salvage.Any())
      return Refuse(std::string(kTitle),
                    fmt::format("Nothing of {} can be read.\nIt stays as it is.", current.string()));
    TellSalvage(salvage, report);
  }
  session.DataFileDB = Database::Open(fresh ? fresh->Path() : work.Path(), OpenMode::Exclusive);
  if (auto allowed = mayGoOn(); !allowed) return std::unexpected(allowed.error());
  std::vector<fs::path> photos;
  const Layout layout = LayoutOf(session.File());
  if (layout == Layout::Unknown)
    return Refuse(
        std::string(kTitle),
        fmt::format("{} is of a version that this program does not know.\nIt stays as it is.", current.string()));
  if (layout == Layout::Present) {
    RepairRun run(session, report);
    run.Run();
    if (run.Failed() && reading == Reading::Copied) return std::nullopt;
    photos = std::move(run.photosToMove);
  } else {
    report.left.push_back({"Pages", "", 1, "the file is of an older version: only its pages were mended"});
  }
  kept.KeepPhotos(photos);
  session.progress.Begin("Compacting File");
  FileBeside place(current, Readers::Group);
  session.File().CopyCompacted(place.Path());
  session.DataFileDB.reset();
  kept.Show();
  report.kept = kept.Folder();
  // Once the file has its place nothing is tried again: what was there stands in the folder alone.
  const auto tell = [&](const Failure& failure) {
    report.left.push_back({"Compacting", "", 1, fmt::format("{}: {}", failure.subject, failure.cause)});
  };
  const Placement placement(place.Path());
  try {
    TakePlace(place, photos, report);
  } catch (const Failure& failure) {
    if (!placement.Stands(current)) throw;
    tell(failure);
  }
  kept.Stay();
  try {
    ReplaceFile(kept.Folder() / "Repair Report.txt", RepairText(report), Readers::Group);
  } catch (const Failure& failure) {
    tell(failure);
  }
  return report;
}

}  // namespace

Result<RepairReport> MendDataFile(Session& session, const std::function<Result<void>()>& mayGoOn) {
  const ProgressRun progress(session.progress, kTitle);
  const fs::path current = RealPath(session.DataFileName);
  // The file is held until the other one has its place.
  const std::unique_ptr<Database> original = std::exchange(session.DataFileDB, nullptr);
  session.RecordsetsOpen = false;
  platform::OpenFile held;
  if (!original) held = HoldDataFile(current);
  KeptFile kept(session, current);
  // Whatever happens, nobody goes on with a copy.
  const struct Close {
    Session& session;
    ~Close() { session.DataFileDB.reset(); }
  } close{session};
  bool asked = false;
  const auto askOnce = [&]() -> Result<void> { return std::exchange(asked, true) ? Result<void>{} : mayGoOn(); };
  try {
    if (auto done = Try(session, kept, current, Reading::Copied, askOnce)) return *std::move(done);
  } catch (const Failure& failure) {
    // What the engine took for whole it may still not be able to write again; its pages may give more. A disk that
    // fails does so again.
    if (failure.subject == current.string()) throw;
  }
  session.DataFileDB.reset();
  try {
    return *Try(session, kept, current, Reading::PageByPage, askOnce);
  } catch (const Failure& failure) {
    // The copies that were worked on are gone.
    if (fs::path(failure.subject).filename().string().starts_with(fmt::format(".{}.", current.filename().string())))
      throw Failure(current.string(), failure.cause);
    throw;
  }
}

// ---- A run

void RepairRun::Run(const std::function<bool(const RepairStep&)>& wanted) {
  for (const RepairStep& step : kSteps)
    if (!wanted || wanted(step)) RunStep(step);
}

void RepairRun::RunStep(const RepairStep& step) {
  step_ = &step;
  done_ = 100.0 * static_cast<double>(&step - kSteps) / static_cast<double>(std::size(kSteps));
  for (bool again = false;; again = true) {
    pending_ = {};
    try {
      Transaction transaction(file);
      step.run(*this);
      transaction.Commit();
      break;
    } catch (const std::runtime_error& failure) {
      if (!again) continue;  // a disk that failed once
      pending_ = {};
      failed_ = true;
      Left("", fmt::format("this step could not be done: {}", failure.what()));
      break;
    }
  }
  const auto take = [](std::vector<StepLine>& all, std::vector<StepLine>& lines) {
    all.insert(all.end(), std::make_move_iterator(lines.begin()), std::make_move_iterator(lines.end()));
  };
  take(report_.changes, pending_.changes);
  take(report_.left, pending_.left);
  take(report_.lost, pending_.lost);
  for (std::string& name : pending_.emptyDatabases) report_.emptyDatabases.push_back(std::move(name));
}

void RepairRun::ForEachKind(const std::function<void(const std::string& database, ColorKind kind)>& take) const {
  for (const std::string& database : Databases())
    for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) take(database, kind);
}

void RepairRun::Changed(std::string_view table, std::string what, std::int64_t count) {
  pending_.changes.push_back({std::string(step_->name), std::string(table), count, std::move(what)});
}
void RepairRun::Left(std::string_view table, std::string what, std::int64_t count) {
  pending_.left.push_back({std::string(step_->name), std::string(table), count, std::move(what)});
}
void RepairRun::Lost(std::string_view table, std::string what, std::int64_t count) {
  pending_.lost.push_back({std::string(step_->name), std::string(table), count, std::move(what)});
}

void RepairRun::Mended(std::string_view table, const std::vector<MendedField>& fields) {
  for (const MendedField& field : fields)
    if (field.what.empty()) {
      Left(table, fmt::format("{} has no value, which means something", field.field), field.rows);
    } else {
      Changed(table, fmt::format("{}: {}", field.field, field.what), field.rows);
    }
}

void RepairRun::Show(std::string_view text) {
  session.progress.Begin(text);
  session.progress.Percent(done_);
}

std::optional<double> RepairRun::HistoryOf(std::string_view database, ColorKind kind, std::string_view name,
                                           std::int32_t ref) {
  if (!HasStockHistory(file)) return std::nullopt;
  if (!balance_) balance_ = std::make_unique<StockBalance>(file);
  return balance_->Of(database, kind, name, ref);
}

std::string RepairRun::MadeUpName() {
  const DateTime time = lastMadeUp_ ? SecondAfter(*lastMadeUp_) : session.clock.Now();
  lastMadeUp_ = time;
  return fmt::format("{:02}-{:02}-{:04}-{:02}-{:02}-{:02}-RepairName", time.month, time.day, time.year, time.hour,
                     time.minute, time.second);
}

// ---- The report

std::vector<StepLineOf> LinesOf(const RepairReport& report) {
  std::vector<StepLineOf> lines;
  for (const auto& [outcome, of] :
       {std::pair{"Lost", &report.lost}, {"Mended", &report.changes}, {"Left", &report.left}})
    for (const StepLine& line : *of) lines.push_back({line, outcome});
  return lines;
}

std::string RepairText(const RepairReport& report) {
  std::string text =
      fmt::format("{} was repaired.\nAs it was before it is kept in {}\n", report.file.string(), report.kept.string());
  const auto add = [&](std::string_view heading, const std::vector<StepLine>& lines) {
    if (lines.empty()) return;
    text += fmt::format("\n{}\n", heading);
    for (const StepLine& line : lines)
      text += fmt::format("  {}{}{}: {} ({})\n", line.Step, line.Table.empty() ? "" : ", ", line.Table, line.What,
                          line.Count);
  };
  add("What could not be saved", report.lost);
  add("What was changed", report.changes);
  add("What was left as it is", report.left);
  if (report.lost.empty() && report.changes.empty()) text += "\nNothing had to be changed.\n";
  for (const std::string& name : report.emptyDatabases)
    text += fmt::format("\n{} is an empty Database. You may want to delete it.\n", name);
  return text;
}

}  // namespace vellumark
