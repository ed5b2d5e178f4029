#pragma once

#include <filesystem>
#include <stdexcept>

#include "core/shell/opening.h"
#include "core/shell/startup.h"
#include "support/data_files.h"

namespace vellumark::test {

/// Agrees to whatever is asked.
class AgreeingPrompt final : public Prompt {
 public:
  Answer Show(const Message& message) override {
    const bool confirms = message.buttons == Buttons::Ok || message.buttons == Buttons::OkCancel;
    return confirms ? Answer::Ok : Answer::Yes;
  }
};

/// The core at work in a place of its own, in the process of the test: its start, and no file yet.
struct CoreDesk {
  explicit CoreDesk(const std::filesystem::path& folder, const DateTime& now = {2026, 3, 10, 9, 0, 0}) : clock(now) {
    PrepareSupportFiles(session, {folder / "VKDat", folder / "Program", {}});
  }
  void Open(const std::filesystem::path& file) {
    session.DataFileName = file.string();
    OpenDataFile(session, windows);
  }

  AgreeingPrompt prompt;
  NoProgress progress;
  FixedClock clock;
  Session session{prompt, progress, clock};
  NotedWindows windows;
};

}  // namespace vellumark::test
