#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/engine.h"

namespace vellumark {

// A line of the stock history tells the number that a Job had at the time. What Jobs are called since stands here.

/// Notes the new number, in the transaction that gives it.
void NoteJobRename(Database& file, std::string_view number, std::string_view newNumber);

/// All that were given so far, read once.
class JobRenames {
 public:
  explicit JobRenames(Database& file);
  /// What the Job is called today that had the number when the line was written.
  std::string Now(std::string_view number, std::int64_t line) const;

 private:
  struct Rename {
    std::int64_t line = 0;  ///< the last one of the history before it
    std::string number;
    std::string newNumber;
  };
  std::vector<Rename> renames_;
};

}  // namespace vellumark
