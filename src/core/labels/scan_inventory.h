#pragma once

#include "core/labels/scan_records.h"
#include "core/session/session.h"

namespace vellumark {

/// Checks a record without a job number whole and adds its quantity to the stock of its colour, in one transaction.
/// What became of it stands in the record, and what the look-ups found in its empty values. Nothing is done for a
/// record that was successful already.
void AddScannedStock(Session& session, ScanRecord& record);

}  // namespace vellumark
