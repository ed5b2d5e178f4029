#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/inventory/adjust.h"

namespace vellumark {

// Resets: stock, dates and prices that are set over, in the file at once.

/// `ResetInvForm` and `ResetReorderForm`: the value typed for every Basic Color and for every formula of the current
/// Database; those without one stay.
struct ResetValues {
  std::optional<std::string> basics{};
  std::optional<std::string> mixes{};
};

/// What the window of such a reset tells while Lotted Inventory is in use.
inline constexpr std::string_view kResetInvNote =
    "Lotted Inventory can only be reset to a Zero (0) value. If 0 is used then any Color with Lotted inventory will "
    "have "
    "its current information removed.";

/// Sets `Inventory` of every colour. While Lotted Inventory is in use, 0 also removes all lots. Both values are read
/// before either is written, in one transaction. False when it was cancelled: then nothing has changed.
Result<bool> ResetInventories(Session& session, const ResetValues& values);
/// Sets `Reorder` of every colour in the same way.
Result<bool> ResetReorderPoints(Session& session, const ResetValues& values);

// The Reset tab: tasks on the checked rows of one colour's list, in the list and in the file at once. Each is refused
// with no row checked, asks first, and is false when the answer was No. What else was edited of a row stays unsaved.

/// Unlotted Inventory becomes 0, lots go.
Result<bool> ResetRowInventories(Session& session, InventoryWork& work, const std::vector<std::size_t>& checked);
/// Lots take the date, but for those that a Batch dated.
Result<bool> ResetRowDates(Session& session, InventoryWork& work, const std::vector<std::size_t>& checked,
                           const DateTime& date);
/// Lots take the price.
Result<bool> ResetRowPrices(Session& session, InventoryWork& work, const std::vector<std::size_t>& checked,
                            float price);

}  // namespace vellumark
