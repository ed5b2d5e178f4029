#pragma once

#include <cstdint>
#include <string_view>

#include "core/colors/additive_sets.h"
#include "core/colors/basics.h"
#include "core/datafile/writer.h"

namespace vellumark {

// New rows for whoever brings in many. That they are sound, and telling of them, is the caller's.

/// Adds Basic Colors to a Database; prepared once for many.
class NewBasicRows {
 public:
  NewBasicRows(const Session& session, std::string_view database);
  std::int64_t Insert(const BasicColor& color);

 private:
  RowWriter writer_;
};

/// The key of the new row.
std::int64_t InsertAdditiveSet(const Session& session, std::string_view database, const AdditiveSet& set);

}  // namespace vellumark
