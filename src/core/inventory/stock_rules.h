#pragma once

#include "core/session/session.h"

namespace vellumark {

/// The two settings that decide what a posting leaves behind.
struct StockRules {
  float InvCutoff = 0.5F;    ///< in the inventory unit: what is left at or under it counts as nothing
  bool AllowNegInv = false;  ///< Unlotted Inventory of Basic Colors may be negative, and the cutoff leaves it alone
};

/// `InvCutoff` and `AllowNegInv` in force.
StockRules ReadStockRules(const Session& session);

}  // namespace vellumark
