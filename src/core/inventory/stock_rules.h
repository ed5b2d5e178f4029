#pragma once

#include "core/session/session.h"

namespace vellumark {

/// The two settings that decide what a posting leaves behind.
struct StockRules {
  float InvCutoff = 0.5F;    ///< in the inventory unit: what is left at or under it counts as nothing
  bool AllowNegInv = false;  ///< Unlotted Inventory of Basic Colors may be negative, and the cutoff leaves it alone
};

/// The cutoff point that stands for half a pound in an inventory unit (1 to 4), three decimals.
float DefaultInvCutoff(int unit);

/// `InvCutoff` and `AllowNegInv` as set; a cutoff that is no number is the default of the inventory unit, and one below
/// zero is zero.
StockRules ReadStockRules(const Session& session);

}  // namespace vellumark
