#pragma once

#include <string>
#include <string_view>

#include "core/datafile/formula_imports.h"
#include "core/session/session.h"

namespace vellumark {

// How a merge knows the rows that it made or changed again. For the procedures of this room.

enum class MergeTable { Formulas, Basics, Sets };

/// Reads rows of a Database as an import leaves them; prepared once for many. Of a formula the figures that follow from
/// its ingredients do not count.
class ImportedRows {
 public:
  ImportedRows(const Session& session, MergeTable table, std::string_view database);
  /// Without a digest when the row is gone.
  ImportedRow Read(std::int64_t key);

 private:
  Statement row_;
};

}  // namespace vellumark
