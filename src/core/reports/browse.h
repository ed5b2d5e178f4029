#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/base/table.h"
#include "core/batch/open.h"
#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

// The lists in which people look for a colour, a formula, a Batch or a Job: of each row what tells it from others, read
// in pieces, so that the first of a hundred thousand are there at once. All of the current Database; the session must
// outlive what is made here.

/// Appends the rows that follow, a piece of them; false when none are left. Between two pieces the file may be written.
template <class Row>
using ReadPiece = std::function<bool(std::vector<Row>& rows)>;

struct BrowsedColor {
  std::int64_t key = 0;
  std::string Color_Name;
  std::string Color_Code;
  ColorKind kind = ColorKind::Basic;
  bool Additive = false;
  float total = 0;  ///< its stock with that of its lots
  float Reorder = 0;
  float cost = 0;                    ///< of a formula that of its ingredients
  std::optional<DateTime> last;      ///< when it was last consumed, or last produced
  std::string AddSetName;            ///< of a formula

  bool IsLow() const { return total < Reorder; }
};
TableOf<BrowsedColor> BrowsedColorColumns(const Session& session, ColorKind kind);
/// By name.
ReadPiece<BrowsedColor> BrowseColors(const Session& session, ColorKind kind);

/// The columns are `BatchColumns`; the newest first.
ReadPiece<BatchListRow> BrowseBatches(const Session& session);

struct BrowsedJob {
  std::string JobNumber;
  std::int64_t items = 0;
  double QtyUsed = 0;
  std::optional<DateTime> Date_Entered;    ///< the earliest of its items
  std::optional<DateTime> Date_Completed;  ///< the latest; nothing while an item is open
};
TableOf<BrowsedJob> BrowsedJobColumns(const Session& session);
/// By number.
ReadPiece<BrowsedJob> BrowseJobs(const Session& session);

}  // namespace vellumark
