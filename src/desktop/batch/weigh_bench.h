#pragma once

#include <cstddef>
#include <optional>

#include "core/batch/weighing.h"

namespace vellumark::desktop {

/// What the window that weighs asks of the Batch Window beside it. What is refused the Batch Window shows.
class WeighBench {
 public:
  virtual ~WeighBench() = default;
  /// The row that is weighed next: `wanted`, where that is still to be weighed, else the first; nothing after a refusal.
  virtual std::optional<WeighTicket> NextRow(std::optional<std::size_t> wanted) = 0;
  /// The rows that are still to be weighed.
  virtual std::size_t RowsLeft() const = 0;
  virtual bool Stands(const WeighTicket& ticket) const = 0;
  /// Takes what was poured, with the questions and the lots that follow; false after a refusal.
  virtual bool TakeWeight(const WeighTicket& ticket, double weight) = 0;
  /// Nothing is left: the Batch comes forward, to be saved.
  virtual void WeighingEnds() = 0;
};

}  // namespace vellumark::desktop
