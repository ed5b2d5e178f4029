#pragma once

#include <string>
#include <vector>

#include "core/upgrade/ladder.h"

namespace vellumark {

struct FileSum {
  std::string what;
  std::string sum;
};

/// What a file of whatever version holds: stock, quantities made, issued to and used by jobs, taken by Batches where it
/// tells that. Where `stockHoldsLots` is set, what lies in old lots is counted with their colours.
std::vector<FileSum> SumsOf(UpgradeRun& run);

/// The stock of colours that have old lots, and what lies in those; both empty where no colour has any.
struct LottedStock {
  std::string colors;
  std::string lots;
  bool Any() const { return !lots.empty(); }
};
LottedStock LottedStockOf(UpgradeRun& run);

}  // namespace vellumark
