#pragma once

#include "core/datafile/engine_sqlite.h"

namespace vellumark::test {

/// No machine dies in these tests, and there are many saves: what is written need not last. The server of another engine
/// does so by itself.
inline void NeedNotLast(Database& file) {
  if (dynamic_cast<SqliteDatabase*>(&file) != nullptr) file.Execute("PRAGMA synchronous=OFF");
}

}  // namespace vellumark::test
