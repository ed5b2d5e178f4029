#pragma once

#include <functional>
#include <string>

#include "core/base/refusal.h"

namespace vellumark::test {

/// What the failure says that `act` throws.
inline std::string CauseOf(const std::function<void()>& act) {
  try {
    act();
  } catch (const Failure& failure) {
    return failure.cause;
  }
  return "no failure";
}

}  // namespace vellumark::test
