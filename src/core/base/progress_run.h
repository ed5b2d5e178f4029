#pragma once

#include <string_view>

#include "core/base/seams.h"

namespace vellumark {

/// One piece of long work: begins when made, ends with the object, also when the work fails.
class ProgressRun {
 public:
  ProgressRun(Progress& progress, std::string_view text) : progress_(progress) { progress_.Begin(text); }
  ~ProgressRun() { progress_.End(); }
  ProgressRun(const ProgressRun&) = delete;
  ProgressRun& operator=(const ProgressRun&) = delete;

  /// `done` of `all` pieces are done.
  void Step(std::size_t done, std::size_t all) {
    progress_.Percent(all == 0 ? 100.0 : 100.0 * static_cast<double>(done) / static_cast<double>(all));
  }

 private:
  Progress& progress_;
};

}  // namespace vellumark
