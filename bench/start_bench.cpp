// The start of the desktop program on a file of 100,000 formulas, beside that of an empty program of the same toolkit:
// from the making of the process until its window is painted and it waits for the operator.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>

#include "core/settings/settings.h"
#include "large_room.h"

namespace vellumark::bench {
namespace {

struct Start {
  double seconds = 0;
  std::string title;  // of the main window
};

Start StartProgram(const char* program, const LargeRoom& room) {
  int ends[2];
  if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
  posix_spawn_file_actions_t files;
  ::posix_spawn_file_actions_init(&files);
  ::posix_spawn_file_actions_adddup2(&files, ends[1], STDOUT_FILENO);
  ::posix_spawn_file_actions_addclose(&files, ends[0]);
  ::posix_spawn_file_actions_addclose(&files, ends[1]);
  ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  const std::string folder = room.folder.string();
  std::vector<std::string> environment{
      "PATH=/usr/bin:/bin",
      "LC_ALL=C.UTF-8",
      "HOME=" + folder,
      "XDG_RUNTIME_DIR=" + folder,
      "QT_QPA_PLATFORM=offscreen",
      std::string("QT_PLUGIN_PATH=") + READY_PLUGIN,
      "QT_QPA_GENERIC_PLUGINS=vellumark_ready",
      "VELLUMARK_DATA_FOLDER=" + room.session.DataFolder.string(),
      "VELLUMARK_PROGRAM_FOLDER=" + folder,
  };
  std::vector<char*> variables;
  for (std::string& variable : environment) variables.push_back(variable.data());
  variables.push_back(nullptr);
  std::string name = program;
  char* arguments[] = {name.data(), nullptr};

  const auto begin = std::chrono::steady_clock::now();
  pid_t process = 0;
  const int error = ::posix_spawn(&process, program, &files, nullptr, arguments, variables.data());
  ::close(ends[1]);
  Start start;
  char buffer[256];
  if (error == 0)
    for (ssize_t n = 0; (n = ::read(ends[0], buffer, sizeof buffer)) > 0;)
      start.title.append(buffer, static_cast<std::size_t>(n));
  start.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  ::close(ends[0]);
  ::posix_spawn_file_actions_destroy(&files);
  if (error == 0) ::waitpid(process, nullptr, 0);
  return start;
}

void StartOurs(benchmark::State& state) {
  Room100k().session.support->settings.SetSupportValue(setting::DbFileName50.key, Room100k().path.string());
  const ClosedRoom closed;
  StartProgram(PROGRAM, closed.room);  // settles the settings of a first start
  double best = 1e9;
  for (auto unused : state) {
    const Start start = StartProgram(PROGRAM, closed.room);
    // It names the file only when that is open.
    if (start.title.find(closed.room.path.string()) == std::string::npos)
      state.SkipWithError("the program did not start");
    best = std::min(best, start.seconds);
    state.SetIterationTime(start.seconds);
  }
  state.counters["ms"] = best * 1000;
}
BENCHMARK(StartOurs)->Name("start_100k/ours")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(8);

void StartRaw(benchmark::State& state) {
  for (auto unused : state) {
    const Start start = StartProgram(EMPTY_PROGRAM, Room100k());
    if (start.title != "Empty\n") state.SkipWithError("the empty program did not start");
    state.SetIterationTime(start.seconds);
  }
}
BENCHMARK(StartRaw)->Name("start_100k/raw")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(8);

}  // namespace
}  // namespace vellumark::bench
