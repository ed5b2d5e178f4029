#pragma once

#include <vector>

#include "core/inventory/posting.h"
#include "core/labels/scan_records.h"
#include "core/session/session.h"

namespace vellumark {

/// The kind that a record names, or both.
std::vector<ColorKind> KindsOf(const ScanRecord& record);

/// What a record without a job number would add, checked whole.
struct StockAddition {
  ColorKind kind = ColorKind::Basic;
  std::string name;
  std::string database;
  float quantity = 0;
  StockPlace place;
  bool newLot = false;  ///< no lot is there yet
};
Result<StockAddition> CheckScannedStock(const Session& session, const ScanRecord& record);

/// Checks a record without a job number whole and adds its quantity to the stock of its colour, in one transaction.
/// What became of it stands in the record, and what the look-ups found in its empty values. Nothing is done for a
/// record that was successful already.
void AddScannedStock(Session& session, ScanRecord& record);

}  // namespace vellumark
