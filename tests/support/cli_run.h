#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/base/files.h"
#include "support/sound.h"

namespace vellumark::test {

struct CliAnswer {
  int status = -1;
  std::string out;
  std::string err;
  nlohmann::ordered_json Json() const { return nlohmann::ordered_json::parse(out); }
};

/// The real program in a scratch place of its own: data folder, program folder and Data File.
class CliRoom {
 public:
  CliAnswer Run(const std::vector<std::string>& arguments) const { return RunWithInput(arguments, "/dev/null"); }

  CliAnswer RunWithInput(const std::vector<std::string>& arguments, const std::filesystem::path& input) const {
    return RunPrepared(arguments, input, [] {});
  }

  /// `prepare` runs in the process of the program before it starts: limits, another user.
  CliAnswer RunPrepared(const std::vector<std::string>& arguments, const std::filesystem::path& input,
                        const std::function<void()>& prepare) const {
    const pid_t child = ::fork();
    if (child == 0) Become(arguments, input, prepare);
    int status = 0;
    ::waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), ReadFileBytes(folder / "stdout"),
            ReadFileBytes(folder / "stderr")};
  }

  /// Makes the program of this process, in this place.
  [[noreturn]] void Become(const std::vector<std::string>& arguments, const std::filesystem::path& input,
                           const std::function<void()>& prepare) const {
    ::setenv("VELLUMARK_DATA_FOLDER", (folder / "VKDat").c_str(), 1);
    ::setenv("VELLUMARK_PROGRAM_FOLDER", (folder / "Program").c_str(), 1);
    Redirect(input, O_RDONLY, STDIN_FILENO);
    Redirect(folder / "stdout", O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
    Redirect(folder / "stderr", O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
    // Opened first: another user may not reach the folder of the build.
    const int program = ::open(VELLUMARK_CLI, O_RDONLY | O_CLOEXEC);
    prepare();
    std::vector<std::string> words{VELLUMARK_CLI};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    ::fexecve(program, argv.data(), environ);
    ::_exit(127);
  }

  /// A Data File with the Database INK, the default of this room.
  std::string MakeFile() const {
    const std::string path = (folder / "Ink.vkd").string();
    const CliAnswer made = Run({"file", "create", path, "--database", "INK", "--empty"});
    if (made.status != 0) throw std::runtime_error(made.err);
    return path;
  }

  /// For stock that a test puts in past the program: the next opening counts it as there from the beginning.
  static void BeginHistoryAnew(Database& file) { file.Execute("DROP TABLE MSysStockHistory"); }

  /// A verb that must succeed, its JSON answer.
  nlohmann::ordered_json Json(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "--json");
    const CliAnswer answer = Run(arguments);
    EXPECT_EQ(answer.status, 0) << answer.err << answer.out;
    return answer.status == 0 ? answer.Json() : nlohmann::ordered_json{};
  }

  SoundFolder folder;

 private:
  static void Redirect(const std::filesystem::path& path, int flags, int onto) {
    const int fd = ::open(path.c_str(), flags, 0644);
    if (fd < 0 || ::dup2(fd, onto) < 0) ::_exit(126);
    ::close(fd);
  }
};

}  // namespace vellumark::test
