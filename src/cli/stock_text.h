#pragma once

#include <string>

#include "cli/frame.h"
#include "core/inventory/stock_tables.h"

namespace vellumark::cli {

// How the verbs of stock show what is in stock.

/// The option --kind, which tells what is meant when a Basic Color and a formula bear a name.
void AddKindOption(CLI::App* verb, std::string& kind);
std::optional<ColorKind> KindOf(const std::string& option);

/// The answer of a verb that changed the stock of one colour.
Result<Json> AnswerStock(Context& context, ColorKind kind, const std::string& name);

/// The verbs `reset`, `reorder` and `reset-reorder` of the noun `stock`.
void AddStockResetCommands(CLI::App& stockNoun, Commands& commands);
/// The verb `scan`.
void AddScanCommand(CLI::App& stockNoun, Commands& commands);

}  // namespace vellumark::cli
