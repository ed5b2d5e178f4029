#include "support/cli_run.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

#include "core/datafile/engine.h"
#include "support/places.h"

namespace vellumark::test {

namespace {

void Redirect(const std::filesystem::path& path, int flags, int onto) {
  const int fd = ::open(path.c_str(), flags, 0644);
  if (fd < 0 || ::dup2(fd, onto) < 0) ::_exit(126);
  ::close(fd);
}

}  // namespace

CliAnswer CliRoom::Run(const std::vector<std::string>& arguments) const {
  return RunWithInput(arguments, "/dev/null");
}

CliAnswer CliRoom::RunWithInput(const std::vector<std::string>& arguments, const std::filesystem::path& input) const {
  return RunPrepared(arguments, input, [] {});
}

CliAnswer CliRoom::RunPrepared(const std::vector<std::string>& arguments, const std::filesystem::path& input,
                               const std::function<void()>& prepare) const {
  const pid_t child = ::fork();
  if (child == 0) Become(arguments, input, prepare);
  int status = 0;
  ::waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), ReadFileBytes(folder / "stdout"),
          ReadFileBytes(folder / "stderr")};
}

void CliRoom::Become(const std::vector<std::string>& arguments, const std::filesystem::path& input,
                     const std::function<void()>& prepare) const {
  ::setenv("VELLUMARK_DATA_FOLDER", (folder / "VKDat").c_str(), 1);
  ::setenv("VELLUMARK_PROGRAM_FOLDER", (folder / "Program").c_str(), 1);
  Redirect(input, O_RDONLY, STDIN_FILENO);
  Redirect(folder / "stdout", O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
  Redirect(folder / "stderr", O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
  // Opened first: another user may not reach the folder of the build.
  const int program = ::open(CommandLineProgram().c_str(), O_RDONLY | O_CLOEXEC);
  prepare();
  std::vector<std::string> words{CommandLineProgram()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  ::fexecve(program, argv.data(), environ);
  ::_exit(127);
}

std::string CliRoom::MakeFile() const {
  const std::string path = (folder / "Ink.vkd").string();
  const CliAnswer made = Run({"file", "create", path, "--database", "INK", "--empty"});
  if (made.status != 0) throw std::runtime_error(made.err);
  return path;
}

void CliRoom::BeginHistoryAnew(Database& file) {
  file.Execute("DROP TABLE MSysStockHistory");
}

nlohmann::ordered_json CliRoom::Json(std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), "--json");
  const CliAnswer answer = Run(arguments);
  EXPECT_EQ(answer.status, 0) << answer.err << answer.out;
  return answer.status == 0 ? answer.Json() : nlohmann::ordered_json{};
}

}  // namespace vellumark::test
