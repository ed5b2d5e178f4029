#pragma once

#include "core/base/table.h"
#include "core/jobs/designs.h"

namespace vellumark {

// Designs as people and programs see them. The session must outlive what is made here.

TableOf<Design> DesignColumns(const Session& session);
ListTable ListDesigns(const Session& session);

/// A colour of a Design with what it costs: a price where it may be seen.
struct DesignColorCost {
  DesignColor color;
  std::optional<float> unitCost;
  std::optional<double> cost;
};
/// The colours of a Design with their costs: of a Master Formula those that `DesignsCostModelIndex` chooses (0 Basic
/// Cost, 1 Purchase Cost), of a Basic Color `PurchaseCost`.
std::vector<DesignColorCost> DesignCosts(const Session& session, const std::vector<DesignColor>& colors);
/// The sum of the quantities times the unit costs as shown, or "User Permissions - Price Blocked".
std::string DesignTotalCost(const Session& session, const std::vector<DesignColor>& colors);
TableOf<DesignColorCost> DesignColorColumns(const Session& session);

}  // namespace vellumark
