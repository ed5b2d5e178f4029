#pragma once

#include <fmt/format.h>

#include <string>

#include "core/base/refusal.h"

namespace vellumark {

/// Does one step of a longer work. Where it fails, the Failure begins with the words for that step, which `words` makes
/// then; the cause stands behind them in parentheses. It names what failed, or `subject` for a value that no field can
/// hold.
template <class Words, class Step>
auto InWords(const std::string& subject, const Words& words, const Step& step) {
  try {
    return step();
  } catch (const Failure& failure) {
    throw Failure(failure.subject, fmt::format("{} ({})", words(), failure.cause));
  } catch (const BadValue& bad) {
    throw Failure(subject, fmt::format("{} ({})", words(), bad.what()));
  }
}

}  // namespace vellumark
