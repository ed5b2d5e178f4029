#pragma once

#include "core/datafile/engine.h"

namespace vellumark {

// Files that an earlier program made have tables without a key of ours (kRowKey). The engine numbers their rows itself,
// by the very number that the key is to be. For Database::Open.

/// Gives each table its key, all of them or none. Only the layout is written, no row, so a file of any size takes
/// the same moment.
void GiveRowKeys(Database& file);
/// Shows the keys for as long as the file is open; nothing is written into it.
void ShowRowKeys(Database& file);

}  // namespace vellumark
