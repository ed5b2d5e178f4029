#include "core/backup/archive.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <system_error>

#include "core/backup/proof.h"
#include "core/base/files.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/schema.h"
#include "core/datafile/stock_history.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr int kYearsKept = 5;
constexpr std::string_view kMark = "MSysUnfinishedArchive";

// Work that is under way in the one file is none of the other's.
constexpr std::array<std::string_view, 5> kWorkTables{kMark, "MSysPhotoSteps", "MSysSentFiles", "MSysPendingRollUps",
                                                      "MSysOpenBatch"};

// What the system notes for itself tells of the file that it stands in; the history tells of stock.
bool IsOwn(const std::string& table) {
  return StartsWithNoCase(table, "MSys") && !EqualNoCase(table, kStockHistoryTable);
}

const Table& MarkLayout() {
  static const Table table{
      std::string(kMark),
      {Field{"Archive", FieldType::Memo}, Field{"Bytes", FieldType::Memo}, Field{"Digest", FieldType::Memo}},
      {}};
  return table;
}

// Before the archive gets its name: whoever finds the mark knows that the rows are still here.
void MarkUnfinished(Database& file, const fs::path& archive, const FileProof& proof) {
  Transaction transaction(file);
  if (!file.TableExists(kMark)) file.CreateTable(kMark, MarkLayout());
  InsertRow(file, MarkLayout(), std::string(kMark),
            {{"Archive", archive.filename().string()},
             {"Bytes", std::to_string(proof.bytes)},
             {"Digest", std::to_string(proof.digest)}});
  transaction.Commit();
}

void RemoveMark(Database& file) {
  Transaction transaction(file);
  file.DropTable(kMark);
  transaction.Commit();
}

// What every table held, and what of it is to move.
class MovingProof {
 public:
  MovingProof(Database& live, const std::vector<std::string>& databases, const DateTime& cutoff) : live_(live) {
    for (const std::string& table : live.TableNames())
      if (!IsOwn(table)) whole_.push_back(ProveRows(live, table));
    for (const MovingRows& rows : RowsThatMove(live, databases))
      moving_.push_back(ProveRows(live, rows.table, rows.where, DayAfter(cutoff)));
  }

  /// The archive holds what moves of the tables that are divided, and all of the others.
  void RequireArchive(Database& archive, const fs::path& name) const {
    for (std::string& fault : archive.Faults()) throw Failure(name.string(), "is not sound: " + fault);
    for (const TableProof& table : whole_) {
      const auto part = std::ranges::find(moving_, table.Table, &TableProof::Table);
      if (ProveRows(archive, table.Table) != (part == moving_.end() ? table : *part))
        throw Failure(name.string(), fmt::format("does not hold what moves of {}", table.Table));
    }
  }
  /// What is left here and what moved are what there was.
  void RequireRest() const {
    for (const TableProof& table : whole_) {
      TableProof together = ProveRows(live_, table.Table);
      const auto part = std::ranges::find(moving_, table.Table, &TableProof::Table);
      if (part != moving_.end()) {
        together.Rows += part->Rows;
        together.digest += part->digest;
      }
      if (together != table)
        throw Failure(live_.Path().string(), fmt::format("would not keep what stays of {}", table.Table));
    }
  }

 private:
  Database& live_;
  std::vector<TableProof> whole_;
  std::vector<TableProof> moving_;
};

// The archive without its name yet: a copy of the file in which only what moves is left, without the space of the rest.
void WriteArchive(Session& session, const ArchivePreview& preview, const FileBeside& place) {
  const FileBeside whole(preview.archive, Readers::Group);
  WorkBeside(whole, [&] { session.File().CopyCompacted(whole.Path()); });
  session.progress.Percent(30);
  WorkBeside(whole, [&] {
    const auto archive = Database::Open(whole.Path(), OpenMode::Exclusive);
    Transaction transaction(*archive);
    for (const std::string_view work : kWorkTables)
      if (archive->TableExists(work)) archive->DropTable(work);
    RemoveMovedRows(*archive, session.databaseList, preview.cutoff, Leaving::Staying,
                    fs::path(session.DataFileName).filename().string());
    transaction.Commit();
    archive->CopyCompacted(place.Path());
  });
}

void RemoveRows(Session& session, const ArchivePreview& preview, const MovingProof& proof) {
  Database& file = session.File();
  Transaction transaction(file);
  RemoveMovedRows(file, session.databaseList, preview.cutoff, Leaving::Moving, preview.archive.filename().string());
  proof.RequireRest();
  file.DropTable(kMark);
  transaction.Commit();
}

}  // namespace

fs::path ArchivePath(const fs::path& dataFile, int year) {
  const fs::path path = dataFile.parent_path() / fmt::format("{} Archive {}.vkd", dataFile.stem().string(), year);
  return Stands(path) ? NextFreeName(path) : path;
}

DateTime ArchiveCutoff(const DateTime& today) {
  DateTime cutoff = today.Midnight();
  cutoff.year -= kYearsKept;
  if (cutoff.month == 2 && cutoff.day == 29) cutoff.day = 28;
  return cutoff;
}

std::int64_t ArchivePreview::Records() const {
  std::int64_t records = 0;
  for (const MovingCount& count : counts) records += count.batches + count.jobs;
  return records;
}

namespace {

std::optional<DateTime> OldestBatch(const Session& session) {
  std::optional<DateTime> oldest;
  for (const std::string& database : session.databaseList) {
    const Value first = session.File().Scalar(fmt::format("SELECT MIN(Date_Entered) FROM {} WHERE Date_Entered > ''",
                                                          session.QuotedTable(schema::Batch, database)));
    if (const auto day = first.Date(); day && (!oldest || *day < *oldest)) oldest = day->Midnight();
  }
  return oldest;
}

}  // namespace

ArchivePreview PreviewArchive(const Session& session) {
  const DateTime today = session.clock.Today();
  ArchivePreview preview{today, ArchiveCutoff(today), OldestBatch(session),
                         ArchivePath(session.DataFileName, today.year), {}};
  preview.counts = CountMovingRows(session.File(), session.databaseList, preview.cutoff);
  return preview;
}

TableOf<MovingCount> MovingColumns() {
  TableOf<MovingCount> table;
  table.Add("Database", &MovingCount::database)
      .Add("Year", [](const MovingCount& count) { return std::to_string(count.year); })
      .Add("Batches", &MovingCount::batches)
      .Total("Totals")
      .Add("LotLines", &MovingCount::lotLines, "Lot Lines")
      .Sum()
      .Add("Weighings", &MovingCount::weighings)
      .Sum()
      .Add("JobRecords", &MovingCount::jobs, "Job Records")
      .Sum();
  return table;
}

std::optional<DateTime> DueArchive(const Session& session) {
  if (session.ArchiveView || !session.DataFileDB) return std::nullopt;
  const auto oldest = OldestBatch(session);
  if (!oldest) return std::nullopt;
  const int year = session.clock.Today().year;
  const std::int64_t first = DateTime{year, 1, 1}.DayNumber();
  const std::int64_t limit = DateTime{year - 1, 12, 31}.DayNumber() - DateTime{year - kYearsKept, 1, 1}.DayNumber();
  return first - oldest->DayNumber() > limit ? oldest : std::nullopt;
}

void MoveToArchive(Session& session, const ArchivePreview& preview) {
  Database& file = session.File();
  UndoUnfinishedArchive(file);
  const ProgressRun progress(session.progress, "Archiving ...");
  const MovingProof proof(file, session.databaseList, preview.cutoff);
  session.progress.Percent(15);
  FileBeside place(preview.archive, Readers::Group);
  WriteArchive(session, preview, place);
  session.progress.Percent(60);
  WorkBeside(place, [&] { proof.RequireArchive(*Database::Open(place.Path(), OpenMode::ReadOnly), preview.archive); });
  session.progress.Percent(75);
  MarkUnfinished(file, preview.archive, WorkBeside(place, [&] { return ProveFile(place.Path(), ""); }));
  try {
    place.TakeFreePlace();
    RemoveRows(session, preview, proof);
  } catch (const Failure& failure) {
    try {
      UndoUnfinishedArchive(file);
    } catch (const Failure& second) {
      // The mark stands: the next opening looks again.
      throw Failure(failure.subject, fmt::format("{}; {}: {}", failure.cause, second.subject, second.cause));
    }
    throw;
  }
  session.progress.Percent(90);
}

std::string UnfinishedArchive(Database& file) {
  if (!file.TableExists(kMark)) return {};
  return file.Scalar(fmt::format("SELECT Archive FROM {}", kMark)).Text();
}

void UndoUnfinishedArchive(Database& file) {
  const std::string name = UnfinishedArchive(file);
  if (name.empty()) return;
  const fs::path archive = file.Path().parent_path() / fs::path(name).filename();
  if (Stands(archive)) {
    const FileProof now = ProveFile(archive, "");
    Statement mark = file.Prepare(fmt::format("SELECT Bytes, Digest FROM {}", kMark));
    if (mark.Step() && mark.TextView(0) == std::to_string(now.bytes) && mark.TextView(1) == std::to_string(now.digest)) {
      std::error_code error;
      fs::remove(archive, error);
      if (error) throw Failure(archive.string(), "cannot be removed: " + error.message());
      SyncFolder(archive.parent_path());
    }
  }
  RemoveMark(file);
}

}  // namespace vellumark
