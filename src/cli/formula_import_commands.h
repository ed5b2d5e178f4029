#pragma once

#include "cli/frame.h"

namespace vellumark::cli {

/// The verbs of the noun `formula` for formulas that come in.
void AddFormulaImportCommands(CLI::App& formulaNoun, Commands& commands);

}  // namespace vellumark::cli
