#pragma once

#include <sqlite3.h>

#include <cstdint>

namespace vellumark::test {

/// The engine is short of memory for as long as this lasts: what a transaction writes reaches the file before its commit in
/// a small room too, as it does in one that is larger than the engine's memory.
class SmallPageMemory {
 public:
  SmallPageMemory() : before_(sqlite3_soft_heap_limit64(1)) {}
  ~SmallPageMemory() { sqlite3_soft_heap_limit64(before_); }
  SmallPageMemory(const SmallPageMemory&) = delete;
  SmallPageMemory& operator=(const SmallPageMemory&) = delete;

 private:
  std::int64_t before_;
};

}  // namespace vellumark::test
