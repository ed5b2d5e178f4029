#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/colors/ink.h"
#include "core/labels/scan_records.h"
#include "core/session/session.h"

namespace vellumark {

/// What a record would do if it were booked now, after those before it.
struct ScanPlan {
  enum class Kind {
    Incomplete,  ///< all is well, and its quantity is still to come
    Ready,
    Refused,
  };
  Kind kind = Kind::Refused;
  std::string text;      ///< "Adds 5.000 lb. to lot A1", or why it would fail, in one line
  std::string name;      ///< of the colour as it is on file; as scanned where it is not
  std::string database;  ///< empty while it is not known
  std::optional<Ink> ink;
};

/// What a scan comes to on one Job; an empty number stands for what is added to stock.
struct ScanTotal {
  std::string JobNumber;
  int containers = 0;
  double quantity = 0;  ///< in the inventory unit
};
std::vector<ScanTotal> TotalsOfScan(const std::vector<ScanRecord>& records);

/// The records of a scan that is going on, and what each would do. Nothing is booked. A record is looked at anew only
/// when it or one before it has changed: a thousand lines cost no more than the last one.
class ScanPreview {
 public:
  void Show(const Session& session, std::vector<ScanRecord> records);
  /// Forgets all plans: the file has changed.
  void Forget();
  const std::vector<ScanRecord>& Records() const { return records_; }
  const std::vector<ScanPlan>& Plans() const { return plans_; }

 private:
  ScanPlan PlanOf(const Session& session, const ScanRecord& record);

  std::vector<ScanRecord> records_;
  std::vector<ScanPlan> plans_;
  /// Row of a Job and how much a plan takes from it, for each plan.
  std::vector<std::pair<std::int64_t, double>> takes_;
  std::map<std::int64_t, double> taken_;
};

}  // namespace vellumark
