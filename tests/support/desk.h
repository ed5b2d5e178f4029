#pragma once

#include "core/session/session.h"
#include "desktop/kit/window_list.h"
#include "support/scratch.h"

namespace vellumark::test {

/// A session without a Data File and its list of windows, for windows that need no more.
struct Desk {
  ScriptedPrompt prompt;
  NoProgress progress;
  FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
  Session session{prompt, progress, clock};
  desktop::WindowList windows{session};
};

}  // namespace vellumark::test
