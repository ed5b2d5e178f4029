#pragma once

#include "core/base/table.h"
#include "core/inventory/lot_selection.h"

namespace vellumark {

/// The rows of the selector's list, with quantities in `unit`, that of the Batch.
TableOf<LotSelectionRow> LotSelectionColumns(int unit);

}  // namespace vellumark
