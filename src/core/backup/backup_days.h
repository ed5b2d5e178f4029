#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/backup/backup_set.h"
#include "core/session/session.h"

namespace vellumark {

/// A place beyond the folders of this machine that keeps sets, such as a cloud.
class SetSource {
 public:
  SetSource() = default;
  virtual ~SetSource() = default;
  SetSource(const SetSource&) = delete;
  SetSource& operator=(const SetSource&) = delete;
  virtual std::string Name() const = 0;
  /// Throws Failure when it cannot be reached.
  virtual std::vector<BackupSet> Sets() = 0;
};

/// A day that one can go back to.
struct BackupDay {
  std::string place;  ///< where the set is kept, in words
  BackupSet set;
  bool elsewhere = false;  ///< beyond this machine: `set.folder` is what it is called there
};
struct BackupDays {
  std::vector<BackupDay> days;          ///< the latest first
  std::vector<std::string> unreadable;  ///< places that could not be read, with the cause
};

/// All sets that are known for the session's Data File: the automatic ones beside it, those in the folders to which one
/// was last made or from which one was last restored, what restores have replaced, and those of `others`. What cannot
/// be read hides nothing else.
BackupDays DaysToGoBackTo(const Session& session, std::span<SetSource* const> others = {});

/// "12 basics, 3 formulas, 1 Batch", of a Database.
std::string CountsText(const DatabaseProof& database);

/// What a Database held before a restore and does not hold after it.
struct MadeSince {
  std::string database;                ///< empty: what belongs to none
  std::optional<DatabaseProof> whole;  ///< all that it held, of one that is not there any more
  std::vector<std::string> batches;   ///< by number
  std::vector<std::string> formulas;  ///< that are not there any more
  std::vector<std::string> changed;   ///< formulas that are there as they were before a change
  std::vector<std::string> basics;
  std::vector<std::string> additiveSets;
  std::vector<std::string> designs;  ///< of no Database
  std::vector<std::string> jobs;
  /// A line of the stock history.
  struct Posting {
    std::string Moment;
    std::string Color_Name;
    std::string LotNumber;
    float Change = 0;
    std::string Document;
  };
  std::vector<Posting> postings;
  bool Nothing() const {
    return !whole && batches.empty() && formulas.empty() && changed.empty() && basics.empty() && additiveSets.empty() &&
           designs.empty() && jobs.empty() && postings.empty();
  }
};
/// Of each Database that had something more in the file `before`, or is in it alone, and of what belongs to none; nothing
/// of a file that cannot be read.
std::vector<MadeSince> MadeSinceThen(const std::filesystem::path& before, Database& restored);
/// "INK: Batches 000041, 000042; formulas ROSE", "WEB, the whole Database: 12 basics, ...", a line each.
std::string MadeSinceText(const std::vector<MadeSince>& since);

}  // namespace vellumark
