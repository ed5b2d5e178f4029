#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/jobs/job_items.h"

namespace vellumark {

/// A place in the list of `AddJobItemForm`, and what the Job takes from it.
struct JobStockRow {
  JobStock stock;
  float take = 0;  ///< 0 of one that is not marked
  bool Marked() const { return take > 0; }
};

/// What `AddJobItemForm` works on: a colour, and where the Job takes it from. Nothing is written before AddJobItems.
struct JobItemWork {
  JobItemEntry entry;  ///< its takes are made of the marked rows
  bool chosen = false;
  std::vector<JobStockRow> rows;  ///< in the order of JobStockOf

  /// The colour as typed in that Database, with nothing marked; refused or asked about as ChooseJobColor does.
  Result<void> ChooseColor(const Session& session, std::string_view database, std::string_view typed,
                           std::optional<ColorKind> wanted = {});
  /// The places with the stock and the prices of this moment; what is marked stays, as far as it is still there.
  void Reread(const Session& session);
  void Clear();

  /// What all rows give, three decimals.
  float Taken() const;
  /// Marks what a row holds, or takes its mark away.
  void Toggle(std::size_t row);
  /// The amount as typed; an empty one or 0 takes the mark away. Refused above what a lot holds.
  Result<void> SetTake(std::size_t row, std::string_view typed);
  void ClearTakes();
  /// Marks so much anew: lots by their date, the oldest first and those without a date before them, then what is in no
  /// lot. What no place has stays untaken; it is returned.
  Result<float> Propose(std::string_view typed);
  /// The entry with what is marked.
  JobItemEntry Entry() const;
};

}  // namespace vellumark
