#pragma once

#include <string_view>
#include <vector>

#include "core/datafile/engine.h"
#include "core/datafile/schema.h"

namespace vellumark {

// Rows of the system's own that stand for some that are gone and may come back. They bear the present names of colours,
// lots, Designs, Jobs and Databases, and an act that is taken back takes back what it wrote there.

/// Items that returns took off their Jobs: the fields of `JobRecords` and the `Line` of the stock history that tells of
/// the return.
const Table& ReturnedItems();
/// What lots cost that are gone while items of Jobs may bring them back.
const Table& GoneLots();
bool IsOfKeptRows(std::string_view table);

/// Where items of Jobs stand: `JobRecords`, and beside it those that were returned, once there are any.
std::vector<const Table*> JobTables(Database& file);
/// What of `JobTables` and `GoneLots` the file has: all of them tell a `Database`, a `Color_Name` and an `ItemType`.
std::vector<const Table*> TablesOfJobStock(Database& file);

}  // namespace vellumark
