#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/engine.h"

namespace vellumark {

/// Which of a formula's figures are meant.
struct RollUpWanted {
  bool cost = false;
  bool voc = false;
  bool hap = false;
  bool Any() const { return cost || voc || hap; }
};

/// A Database whose formulas have figures that are older than their ingredients.
struct PendingRollUps {
  std::string database;
  RollUpWanted stale;
};

// The mark of such figures stands in the file from the transaction that made them stale to the one that renews them, so
// that a process that dies between the two leaves them to whoever opens the file next.

void MarkPendingRollUps(Database& file, std::string_view database, RollUpWanted stale);
std::vector<PendingRollUps> ReadPendingRollUps(Database& file);
void ClearPendingRollUps(Database& file, std::string_view database, RollUpWanted renewed);

// The mark goes the way of its Database.
void RenamePendingRollUps(Database& file, std::string_view database, std::string_view newName);
void CopyPendingRollUps(Database& file, std::string_view database, std::string_view copy);

}  // namespace vellumark
