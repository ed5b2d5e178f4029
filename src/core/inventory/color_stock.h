#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/colors/color_work.h"
#include "core/colors/formulas.h"
#include "core/inventory/adjust.h"

namespace vellumark {

/// What the inventory window holds of one colour beside its stock. Of a Basic Color those fields that a formula has
/// too; the others are as in a new formula.
struct StockRecord : ColorWork<MixColor> {
  ColorKind kind = ColorKind::Basic;
};

/// The colour as it is on file; nothing when it is missing.
std::optional<StockRecord> LoadStockRecord(const Session& session, ColorKind kind, std::string_view name);

/// Reads a figure as typed: 0 to 99999, rounded to its decimals; the text as its field shows it.
Result<std::string> ReadStockFigure(const Session& session, const RecordField& field, std::string_view typed);

/// Checks the figures in their order and writes record and stock in one transaction. Changed figures of a Basic Color
/// set the session's flags.
Result<void> SaveStockRecord(Session& session, const StockRecord& record, const InventoryWork& stock);

/// Saves a colour by `saveColor` and its stock in one transaction: all of it or nothing. Without `stock` the stock
/// stays as it is.
Result<void> SaveWithStock(Session& session, const std::function<Result<void>()>& saveColor,
                           const InventoryWork* stock);

/// A colour that is being entered: nothing but an empty first row.
InventoryWork NewInventory(const Session& session, ColorKind kind, std::string name);
/// The costs of a colour that is being entered, as they stand in its fields; one that is no cost yet counts as nothing.
void TakeTypedCosts(const Session& session, InventoryWork& work, std::string_view purchaseCost,
                    std::string_view basicCost);

/// Whether the settings of the inventory may be changed here: the right, and no stock that is being entered.
Result<void> CheckInventorySettings(const Session& session, bool entering);

/// True when the total on file is below the reorder point.
bool IsBelowReorder(const Session& session, ColorKind kind, std::string_view name);

// Names of Basic Colors and formulas together.

/// What the typed text completes to, tried behind "PANTONE " first. Empty when there is none.
std::string CompleteColorName(const Session& session, std::string_view typed);
/// The names that begin with the typed text, at most `limit`, each once.
std::vector<std::string> ColorNamesFrom(const Session& session, std::string_view typed, std::size_t limit);

}  // namespace vellumark
