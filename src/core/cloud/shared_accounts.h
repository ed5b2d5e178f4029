#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/base/table.h"
#include "core/cloud/cloud_run.h"

namespace vellumark {

/// What became of the share of another shop, in a run or since.
struct ShareRow {
  std::string AcctNum;
  std::string Facility;
  bool fetched = false;              ///< by the last run
  std::string why{};                 ///< why not
  int photos = 0;                    ///< that came with it
  std::optional<DateTime> shared{};    ///< when the other shop put it there
  std::optional<DateTime> tried{};     ///< the last run
  std::optional<DateTime> came{};      ///< what lies here came then
  int UMI = 0;                       ///< the other shop's unit of stock; 0 where it does not tell
};

struct FetchedShares {
  CloudOutcome outcome;
  std::vector<ShareRow> rows;  ///< one for each account of the list, in its order
};
/// Brings the share files of all accounts of the list down, for a task that works with them, through one connection; one that
/// fails does not hold up the others. Photos come with `DB_ImportExport_Designs` alone. Refused without a list.
Result<FetchedShares> FetchShares(CloudDesk& desk, CloudTask task, bool photos = false);

/// What lies here of each account of the list, as the last run left it.
std::vector<ShareRow> SharesHere(const Session& session);
ListTable ShareTable(std::vector<ShareRow> rows);

/// The list of the host's "/ShareUserList/" in the place of the one that is here. "Shared Users data acquired." is told.
Result<std::vector<SharedAccount>> FetchSharedAccounts(CloudDesk& desk, CloudOutcome& outcome);

}  // namespace vellumark
