#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/jobs/job_record.h"

namespace vellumark {

// Items that a Job takes from stock, without a Batch.

/// What a formula's cost, VOC and HAP are taken from.
struct JobCosting {
  int cost = 1;  ///< `JobMixCostOption`: 0 of the lot, 1 purchase cost, 2 basic cost, 3 none
  int VOC = 0;   ///< `JobMixVOC_Option`: 0 its own, 1 of its basics, 2 none
  int HAP = 0;   ///< `JobMixHAP_Option`
  bool operator==(const JobCosting&) const = default;
};
JobCosting ReadJobCosting(const Session& session);
void StoreJobCosting(Session& session, const JobCosting& costing);

/// The kind of a colour as it is typed in a Database (empty for the current one). A name that both kinds bear is asked
/// for ("Color Type Selection") unless `wanted` tells.
Result<ColorKind> ChooseJobColor(const Session& session, std::string_view database, const std::string& name,
                                 std::optional<ColorKind> wanted = {});

/// A place that a colour can be taken from: Unlotted Inventory first, then its lots by number, those on consignment left
/// out. Without Lotted Inventory the first alone.
struct JobStock {
  std::int32_t LotRefID = 0;
  std::string LotNumber;  ///< "Unlotted Inv." of the first
  std::string LotLoc;
  std::string LotContID;
  std::optional<DateTime> LotDate;
  float quantity = 0;  ///< what stands there
  float price = 0;     ///< per inventory unit, by the costing of the Job
};
std::vector<JobStock> JobStockOf(const Session& session, std::string_view database, const std::string& name,
                                 ColorKind kind, const JobCosting& costing);

/// Cost, VOC and HAP of a unit of a colour in a Job.
struct JobFigures {
  float VOC = 0;
  float HAP = 0;
  std::string Color_Code;
};
std::optional<JobFigures> JobFiguresOf(const Session& session, std::string_view database, const std::string& name,
                                       ColorKind kind, const JobCosting& costing);

/// What is to be added.
struct JobItemEntry {
  std::string JobNumber;  ///< as typed; a Job of that number need not be there
  std::string DesignID;   ///< empty, or one on file
  std::string Database;   ///< empty for the current one
  std::string Color_Name;
  ColorKind kind = ColorKind::Basic;
  JobCosting costing;
  struct Take {
    std::int32_t LotRefID = 0;  ///< 0: by the number alone
    std::string LotNumber;      ///< empty or "Unlotted Inv.": what is in no lot
    float quantity = 0;
  };
  std::vector<Take> takes;  ///< each becomes a row
  std::array<std::string, kJobUserFields> UD_Text;
  std::array<float, kJobUserFields> UD_Numeric{};
};
/// With the costing and the texts that a new item starts with.
JobItemEntry NewJobItem(const Session& session);
/// An amount to take as typed: above 0, to 99999, three decimals.
Result<float> ReadTakeQty(std::string_view typed);

/// Takes all of it from stock and writes a row for each place, in one transaction. More than a lot has is refused; more
/// than Unlotted Inventory has is asked about before. The rows as they are stored.
Result<std::vector<JobRecord>> AddJobItems(Session& session, const JobItemEntry& entry);

}  // namespace vellumark
