#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/datafile/engine.h"

namespace vellumark {

/// What is to happen to a file of the photo folder once the rows that name it are written. It stands in the Data File
/// from the transaction of those rows until it is done, so that a process that dies between the two leaves it to
/// whoever opens the file next.
struct PhotoStep {
  enum class Kind {
    Put = 1,     ///< `bytes` become the file
    Copy = 2,    ///< the file `source` is copied
    Remove = 3,  ///< the file goes, unless somebody links it
  };
  std::int64_t key = 0;
  Kind kind = Kind::Put;
  std::string name;
  std::string source;
  std::string bytes;
};

void AddPhotoStep(Database& file, const PhotoStep& step);
/// The step that comes next; nothing when all are done.
std::optional<PhotoStep> NextPhotoStep(Database& file);
void PhotoStepDone(Database& file, const PhotoStep& step);

}  // namespace vellumark
