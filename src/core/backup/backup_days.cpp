#include "core/backup/backup_days.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <set>
#include <system_error>
#include <utility>

#include "core/base/counted.h"
#include "core/base/files.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/schema.h"
#include "core/datafile/stock_history.h"
#include "core/session/settings.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

class DayCollector {
 public:
  void AddFolder(const std::string& place, const fs::path& folder) {
    if (folder.empty() || !seen_.insert(RealPath(folder)).second) return;
    Add(place, folder.string(), [&] { return ListSets(folder); });
  }

  template <typename Read>
  void Add(const std::string& place, const std::string& subject, Read read, bool elsewhere = false) {
    try {
      for (BackupSet& set : read()) days_.days.push_back({place, std::move(set), elsewhere});
    } catch (const Failure& failure) {
      days_.unreadable.push_back(fmt::format("{}: {}", subject, failure.cause));
    }
  }

  BackupDays Take() {
    std::ranges::stable_sort(days_.days, std::ranges::greater(), [](const BackupDay& day) { return day.set.moment; });
    return std::move(days_);
  }

 private:
  std::set<fs::path> seen_;
  BackupDays days_;
};

// The folders in which restores keep what they replace; with a number where two fell into one second.
std::vector<BackupSet> SetsBeforeRestores(const fs::path& folder) {
  std::vector<BackupSet> sets;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (!name.starts_with(kBeforeRestore)) continue;
    const auto made = TimeOfSet("VK_Backup_" + name.substr(kBeforeRestore.size(), 20));
    if (!made) continue;
    if (auto set = ReadSet(entry->path())) {
      set->made = *made;
      set->moment = MomentOf(*made);
      sets.push_back(std::move(*set));
    }
  }
  if (error) throw Failure(folder.string(), error.message());
  return sets;
}

// A restore remembers the folder of the file, which is the set's own.
fs::path FolderAbove(const std::string& stored) {
  const fs::path folder = stored;
  return TimeOfSet(folder.filename().string()) ? folder.parent_path() : folder;
}

// What `of` tells of the rows of the one file and not of those of the other.
std::vector<std::string> OnlyIn(Database& before, Database& now, const std::string& sql,
                                const std::function<std::string(const Statement&)>& of) {
  const auto read = [&](Database& file) {
    std::set<std::string> found;
    Statement rows = file.Prepare(sql);
    while (rows.Step()) found.insert(of(rows));
    return found;
  };
  const std::set<std::string> then = read(before);
  const std::set<std::string> here = read(now);
  std::vector<std::string> only;
  std::ranges::set_difference(then, here, std::back_inserter(only));
  return only;
}

// Lines of the history are only added: what is behind the last one of the restored file came since.
std::vector<MadeSince::Posting> PostingsSince(Database& before, Database& restored, const std::string& database) {
  std::vector<MadeSince::Posting> postings;
  if (!HasStockHistory(before) || !HasStockHistory(restored)) return postings;
  const std::int64_t last = restored.Scalar("SELECT MAX(ID) FROM MSysStockHistory").Whole();
  Statement rows = before.Prepare(
      "SELECT Moment, Color_Name, LotNumber, Change, Document FROM MSysStockHistory WHERE ID > ? AND Database = ? "
      "ORDER BY ID");
  rows.Bind(1, last).Bind(2, database);
  while (rows.Step()) postings.push_back({rows.Text(0), rows.Text(1), rows.Text(2), rows.Single(3), rows.Text(4)});
  return postings;
}

std::vector<std::string> NamesOnlyIn(Database& before, Database& now, std::string_view field, const std::string& table) {
  return OnlyIn(before, now, fmt::format("SELECT {0} FROM {1} WHERE {0} <> ''", field, table),
                [](const Statement& row) { return row.Text(0); });
}

std::vector<std::string> JobsSince(Database& before, Database& restored, const std::string& database) {
  std::vector<std::string> jobs = OnlyIn(before, restored, "SELECT Database, JobNumber FROM JobRecords WHERE JobNumber <> ''",
                                         [&](const Statement& row) {
                                           return EqualNoCase(row.TextView(0), database) ? row.Text(1) : std::string();
                                         });
  std::erase(jobs, "");
  return jobs;
}

// Of one that the restored file has not, all of it.
MadeSince WholeDatabase(Database& before, Database& restored, const std::string& database) {
  MadeSince since;
  since.database = database;
  const DatabaseCounts counts = CountRows(before, database);
  since.whole = {database, counts.basics, counts.formulas, counts.batches};
  since.jobs = JobsSince(before, restored, database);
  return since;
}

MadeSince SinceOf(Database& before, Database& restored, const std::string& database) {
  MadeSince since;
  since.database = database;
  const std::string formulas = QuotedTable(database, schema::Mix);
  since.batches = OnlyIn(before, restored, "SELECT BatchNo FROM " + QuotedTable(database, schema::Batch),
                         [](const Statement& row) { return fmt::format("{:06}", row.Whole(0)); });
  since.formulas = NamesOnlyIn(before, restored, "Color_Name", formulas);
  since.basics = NamesOnlyIn(before, restored, "Color_Name", QuotedTable(database, schema::Basic));
  since.additiveSets = NamesOnlyIn(before, restored, "SetName", QuotedTable(database, schema::Additives));
  since.changed = OnlyIn(before, restored, "SELECT Color_Name, LastModified FROM " + formulas,
                         [](const Statement& row) { return row.Text(0) + '\t' + row.Text(1); });
  for (std::string& changed : since.changed) changed.resize(changed.find('\t'));
  std::erase_if(since.changed, [&](const std::string& name) { return std::ranges::binary_search(since.formulas, name); });
  since.jobs = JobsSince(before, restored, database);
  since.postings = PostingsSince(before, restored, database);
  return since;
}

std::string NamesText(std::string_view word, const std::vector<std::string>& names) {
  constexpr std::size_t kMost = 12;
  std::string text;
  for (std::size_t i = 0; i < names.size() && i < kMost; ++i) text += (i == 0 ? " " : ", ") + names[i];
  if (names.size() > kMost) text += fmt::format(" and {} more", names.size() - kMost);
  return fmt::format("{}{}", word, text);
}

}  // namespace

BackupDays DaysToGoBackTo(const Session& session, std::span<SetSource* const> others) {
  DayCollector collector;
  if (!session.DataFileName.empty()) {
    const fs::path beside = fs::path(session.DataFileName).parent_path();
    collector.AddFolder(std::string(kAutoBackupFolder), beside / kAutoBackupFolder);
    collector.Add("Before a restore", beside.string(), [&] { return SetsBeforeRestores(beside); });
  }
  for (const std::string& stored :
       {GetSetting(session, setting::BackupRestoreFileLocation), GetSetting(session, setting::BackupFileLocation)})
    collector.AddFolder(FolderAbove(stored).string(), FolderAbove(stored));
  for (SetSource* const other : others)
    collector.Add(other->Name(), other->Name(), [&] { return other->Sets(); }, true);
  return collector.Take();
}

std::string CountsText(const DatabaseProof& database) {
  return fmt::format("{}, {}, {}", Counted(database.basics, "basic"), Counted(database.formulas, "formula"),
                     Counted(database.batches, "Batch", "Batches"));
}

std::vector<MadeSince> MadeSinceThen(const fs::path& before, Database& restored) {
  std::vector<MadeSince> all;
  try {
    const auto file = Database::Open(before, OpenMode::ReadOnly);
    const std::vector<std::string> here = ReadFileInfo(restored).dbList;
    for (const std::string& database : ReadFileInfo(*file).dbList) {
      const bool isHere = std::ranges::any_of(here, [&](const std::string& name) { return EqualNoCase(name, database); });
      MadeSince since = isHere ? SinceOf(*file, restored, database) : WholeDatabase(*file, restored, database);
      if (!since.Nothing()) all.push_back(std::move(since));
    }
    MadeSince rest;
    rest.designs = NamesOnlyIn(*file, restored, "DesignID", schema::Designs.name);
    if (!rest.Nothing()) all.push_back(std::move(rest));
  } catch (const Failure& failure) {
    // That the file before cannot be read is what it was restored for.
    if (failure.subject != before.string()) throw;
  }
  return all;
}

std::string MadeSinceText(const std::vector<MadeSince>& all) {
  std::string text;
  for (const MadeSince& since : all) {
    std::vector<std::string> parts;
    if (since.whole) parts.push_back(CountsText(*since.whole));
    for (const auto& [word, names] : {std::pair{"Batches", &since.batches},
                                      {"formulas", &since.formulas},
                                      {"changed formulas", &since.changed},
                                      {"basics", &since.basics},
                                      {"Additive Sets", &since.additiveSets},
                                      {"Designs", &since.designs},
                                      {"Jobs", &since.jobs}})
      if (!names->empty()) parts.push_back(NamesText(word, *names));
    if (!since.postings.empty()) parts.push_back(Counted(since.postings.size(), "change of stock", "changes of stock"));
    const std::string of = since.database + (since.whole ? ", the whole Database: " : since.database.empty() ? "" : ": ");
    text += fmt::format("\n{}{}", of, fmt::join(parts, "; "));
  }
  return text;
}

}  // namespace vellumark
