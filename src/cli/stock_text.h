#pragma once

#include <string>
#include <vector>

#include "cli/frame.h"
#include "core/inventory/stock_list.h"

namespace vellumark::cli {

// How the verbs of stock show what is in stock.

Json LotJson(const Session& session, const LotRow& lot);
Json StockJson(const Session& session, const ColorStock& stock);
/// A line for Unlotted Inventory, one for each lot and, where there are lots, one for the total.
std::string StockText(const Session& session, const std::vector<ColorStock>& stock);
/// "Basic" or "Formula".
std::string KindText(ColorKind kind);

/// The option --kind, which tells what is meant when a Basic Color and a formula bear a name.
void AddKindOption(CLI::App* verb, std::string& kind);
std::optional<ColorKind> KindOf(const std::string& option);

/// The answer of a verb that changed the stock of one colour.
Json AnswerStock(Context& context, ColorKind kind, const std::string& name);

/// The verbs `reset`, `reorder` and `reset-reorder` of the noun `stock`.
void AddStockResetCommands(CLI::App& stockNoun, Commands& commands);

}  // namespace vellumark::cli
