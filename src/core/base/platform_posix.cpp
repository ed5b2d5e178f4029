#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pwd.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>

#include "core/base/disk_sync.h"
#include "core/base/helper_program.h"
#include "core/base/platform.h"

namespace vellumark::platform {
namespace fs = std::filesystem;

namespace {

// The engine's locks end before it.
constexpr off_t kFirstByte = 0x40000000 + 512;

std::error_code ErrorOf(int number) {
  return {number, std::system_category()};
}

int DescriptorOf(const OpenFile& file) {
  return static_cast<int>(file.Handle());
}

OpenFile Opened(int descriptor, std::error_code& error) {
  error = descriptor < 0 ? ErrorOf(errno) : std::error_code();
  return OpenFile(descriptor);
}

// Behind the last full block some file systems can no longer read past the system's memory, and some read no block of ours
// in that way. False when the file was read through that memory already.
bool StopsReadingFromDisk(int fd) {
  const int flags = ::fcntl(fd, F_GETFL);
  return flags >= 0 && (flags & O_DIRECT) != 0 && ::fcntl(fd, F_SETFL, flags & ~O_DIRECT) == 0;
}

fs::path FolderOf(const fs::path& path) {
  return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

// Above 0: the mode of files in a folder that hands its group on.
mode_t HandedOn(const fs::path& folder) {
  struct stat status {};
  if (::stat(folder.c_str(), &status) != 0 || (status.st_mode & S_ISGID) == 0) return 0;
  return 0600 | (status.st_mode & 0060) | (status.st_mode & 0004);
}

mode_t ModeOfNew(const fs::path& folder, Readers readers) {
  const mode_t shared = HandedOn(folder);
  if (readers == Readers::Group) return shared == 0 ? 0600 : shared & ~07U;
  if (shared != 0) return shared;
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

// Not every stick and network drive knows modes: there a file is as readable as all that stands on it.
std::error_code ModeSet(int result) {
  const bool known = errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS;
  return result == 0 || !known ? std::error_code() : ErrorOf(errno);
}

std::int64_t Nanoseconds(const timespec& time) {
  return time.tv_sec * std::int64_t{1'000'000'000} + time.tv_nsec;
}

FileState StateFrom(int result, const struct stat& status, std::error_code& error) {
  error = result == 0 ? std::error_code() : ErrorOf(errno);
  if (error) return {};
  FileState state;
  state.kind = S_ISREG(status.st_mode)   ? Kind::File
               : S_ISDIR(status.st_mode) ? Kind::Folder
               : S_ISLNK(status.st_mode) ? Kind::Link
                                         : Kind::Other;
  state.device = status.st_dev;
  state.identity = status.st_ino;
  state.size = status.st_size;
  state.modified = Nanoseconds(status.st_mtim);
  state.changed = Nanoseconds(status.st_ctim);
  state.named = status.st_nlink > 0;
  return state;
}

struct flock Range(short kind, LockedByte byte) {
  struct flock range {};
  range.l_type = kind;
  range.l_whence = SEEK_SET;
  range.l_start = kFirstByte + static_cast<off_t>(byte);
  range.l_len = 1;
  return range;
}

std::string TextOf(const char* file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// Since when a process runs, in the kernel's ticks; empty when there is none of that number.
std::string StartOf(const std::string& number) {
  const std::string text = TextOf(("/proc/" + number + "/stat").c_str());
  // The name of the program, in brackets, may hold blanks and brackets; the start is the 20th word behind it.
  std::size_t at = text.rfind(')');
  if (at == std::string::npos) return {};
  // A process that has ended and waits to be noticed does nothing any more.
  if (text.substr(at + 1, 2) == " Z") return {};
  for (int word = 0; word < 20 && at != std::string::npos; ++word) at = text.find(' ', at + 1);
  return at == std::string::npos ? "" : text.substr(at + 1, text.find(' ', at + 1) - at - 1);
}

// "MACHINE/RUN/": what the marks of all processes begin with until the machine is started anew.
std::string ThisRun() {
  char machine[256] = {};
  ::gethostname(machine, sizeof machine - 1);
  std::string run = TextOf("/proc/sys/kernel/random/boot_id");
  run.resize(run.find_last_not_of('\n') + 1);
  return std::string(machine) + "/" + run + "/";
}

/// Keeps a terminal from showing what is typed.
class SilentTerminal {
 public:
  SilentTerminal() {
    shown_ = ::tcgetattr(STDIN_FILENO, &before_) == 0;
    if (!shown_) return;
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
  }
  ~SilentTerminal() {
    if (shown_) ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

 private:
  termios before_{};
  bool shown_ = false;
};

}  // namespace

void OpenFile::Close() {
  if (handle_ != kNone) ::close(static_cast<int>(std::exchange(handle_, kNone)));
}

OpenFile OpenExisting(const fs::path& path, Opening opening, std::error_code& error) {
  const int flags = opening == Opening::Read ? O_RDONLY : opening == Opening::Write ? O_RDWR : O_RDWR | O_NOFOLLOW;
  return Opened(::open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC), error);
}

OpenFile MakeUnique(const fs::path& start, std::string_view end, fs::path& made, std::error_code& error) {
  std::string pattern = start.string() + "XXXXXX" + std::string(end);
  OpenFile file = Opened(::mkostemps(pattern.data(), static_cast<int>(end.size()), O_CLOEXEC), error);
  made = pattern;
  return file;
}

OpenFile OpenLockFile(const fs::path& path, std::error_code& error) {
  constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  // On a network drive only what is open for writing can be locked; elsewhere another user's file can, too.
  int fd = ::open(path.c_str(), O_RDWR | kFlags);
  if (fd < 0 && errno == EACCES) fd = ::open(path.c_str(), O_RDONLY | kFlags);
  if (fd < 0 && errno == ENOENT) {
    fd = ::open(path.c_str(), O_RDWR | kFlags | O_CREAT, 0600);
    if (fd >= 0) ::fchmod(fd, ModeOfNew(FolderOf(path), Readers::Group));
  }
  return Opened(fd, error);
}

FileState StateOf(const OpenFile& file, std::error_code& error) {
  struct stat status {};
  const int result = ::fstat(DescriptorOf(file), &status);
  return StateFrom(result, status, error);
}

FileState StateOf(const fs::path& path, std::error_code& error) {
  struct stat status {};
  const int result = ::stat(path.c_str(), &status);
  return StateFrom(result, status, error);
}

FileState StateOfEntry(const fs::path& path, std::error_code& error) {
  struct stat status {};
  const int result = ::lstat(path.c_str(), &status);
  return StateFrom(result, status, error);
}

std::size_t Read(const OpenFile& file, char* buffer, std::size_t size, std::error_code& error) {
  const int fd = DescriptorOf(file);
  ssize_t count = 0;
  do {
    count = ::read(fd, buffer, size);
  } while (count < 0 && (errno == EINTR || (errno == EINVAL && StopsReadingFromDisk(fd))));
  error = count < 0 ? ErrorOf(errno) : std::error_code();
  return count < 0 ? 0 : static_cast<std::size_t>(count);
}

std::error_code Write(const OpenFile& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(DescriptorOf(file), bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return ErrorOf(errno);
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return {};
}

std::error_code Sync(const OpenFile& file) {
  return ::fsync(DescriptorOf(file)) == 0 ? std::error_code() : ErrorOf(errno);
}

std::error_code SyncFolder(const fs::path& folder) {
  std::error_code error;
  const OpenFile handle = Opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), error);
  if (!error && ::fsync(DescriptorOf(handle)) != 0 && errno != EINVAL) error = ErrorOf(errno);
  return error;
}

std::error_code SyncFiles(const fs::path& folder, std::span<const fs::path>) {
  std::error_code error;
  const OpenFile handle = Opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), error);
  if (!error && ::syncfs(DescriptorOf(handle)) != 0) error = ErrorOf(errno);
  return error;
}

void BeginWriting(const OpenFile& file) {
  ::sync_file_range(DescriptorOf(file), 0, 0, SYNC_FILE_RANGE_WRITE);
}

void GiveWay() {
  constexpr int kNice = 10;
  ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), kNice);  // of a thread alone, on this system
}

OpenFile OpenOnDisk(const fs::path& path, std::error_code& error) {
  OpenFile direct = Opened(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_DIRECT), error);
  if (direct || error != std::errc::invalid_argument) return direct;
  // A file system that reads through the system's memory only: what it has there is given up.
  OpenFile file = OpenExisting(path, Opening::Read, error);
  if (file) ::posix_fadvise(DescriptorOf(file), 0, 0, POSIX_FADV_DONTNEED);
  return file;
}

std::error_code KeepOwner(const OpenFile& file, const fs::path& before) {
  struct stat status {};
  if (::stat(before.c_str(), &status) != 0) return ErrorOf(errno);
  const int fd = DescriptorOf(file);
  mode_t mode = status.st_mode & 07777;
  // Without its group nobody may have more.
  if (::fchown(fd, status.st_uid, status.st_gid) != 0 && ::fchown(fd, static_cast<uid_t>(-1), status.st_gid) != 0)
    mode &= ~static_cast<mode_t>(06070);
  return ModeSet(::fchmod(fd, mode));
}

std::error_code GiveToReaders(const OpenFile& file, const fs::path& folder, Readers readers) {
  return ModeSet(::fchmod(DescriptorOf(file), ModeOfNew(folder, readers)));
}

std::error_code ShareFolder(const fs::path& folder) {
  struct stat above {};
  if (HandedOn(FolderOf(folder)) == 0 || ::stat(FolderOf(folder).c_str(), &above) != 0) return {};
  return ModeSet(::chmod(folder.c_str(), above.st_mode & 07777));
}

std::error_code Replace(const fs::path& from, const fs::path& to) {
  return ::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : ErrorOf(errno);
}

std::error_code RenameToFree(const fs::path& from, const fs::path& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
  if (errno != EINVAL && errno != ENOSYS) return ErrorOf(errno);
  // A file system that cannot look and rename in one step.
  struct stat status {};
  return ::lstat(to.c_str(), &status) == 0 ? ErrorOf(EEXIST) : Replace(from, to);
}

std::error_code Denied(const fs::path& path, Access access) {
  int mode = R_OK;
  if (access == Access::Write) mode = W_OK;
  if (access == Access::Enter) mode = X_OK;
  if (access == Access::WriteIn) mode = W_OK | X_OK;
  return ::faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0 ? std::error_code() : ErrorOf(errno);
}

std::string GroupThatMayEnter(const fs::path& folder) {
  struct stat status {};
  if (::stat(folder.c_str(), &status) != 0 || (status.st_mode & S_IXGRP) == 0) return {};
  const group* owners = ::getgrgid(status.st_gid);
  return owners == nullptr ? "" : owners->gr_name;
}

bool TakeByteLock(const OpenFile& file, LockedByte byte) {
  struct flock range = Range(F_WRLCK, byte);
  return ::fcntl(DescriptorOf(file), F_OFD_SETLK, &range) == 0 || (errno != EAGAIN && errno != EACCES);
}

bool IsByteLocked(const OpenFile& file, LockedByte byte) {
  struct flock range = Range(F_RDLCK, byte);
  return ::fcntl(DescriptorOf(file), F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
}

bool TakeFileLock(const OpenFile& file, std::error_code& error) {
  error.clear();
  if (::flock(DescriptorOf(file), LOCK_EX | LOCK_NB) == 0) return true;
  if (errno != EWOULDBLOCK) error = ErrorOf(errno);
  return false;
}

OpenFile LockFolder(const fs::path& folder, std::error_code& error) {
  OpenFile file = Opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), error);
  while (file && ::flock(DescriptorOf(file), LOCK_EX) != 0 && errno == EINTR) {
  }
  return file;
}

fs::path ExecutablePath() {
  std::error_code unknown;
  return fs::read_symlink("/proc/self/exe", unknown);
}

fs::path SharedFolder() {
  return "/var/lib/vellumark";
}

fs::path OwnFolder(const std::function<std::string(const char*)>& environment) {
  const std::string xdg = environment("XDG_DATA_HOME");
  return xdg.empty() ? fs::path(environment("HOME")) / ".local" / "share" : fs::path(xdg);
}

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

std::string UserName() {
  const passwd* user = ::getpwuid(::geteuid());
  return user == nullptr ? std::to_string(::geteuid()) : user->pw_name;
}

std::tm LocalTime(std::time_t seconds) {
  std::tm local{};
  ::localtime_r(&seconds, &local);
  return local;
}

std::int64_t Tick() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return Nanoseconds(now);
}

std::string ProcessMark() {
  const std::string number = std::to_string(::getpid());
  return ThisRun() + number + "/" + StartOf(number);
}

bool ProcessLives(std::string_view mark) {
  const std::string run = ThisRun();
  if (!mark.starts_with(run)) {
    // Of an earlier run of this machine nothing is left.
    return !mark.starts_with(run.substr(0, run.find('/') + 1));
  }
  mark.remove_prefix(run.size());
  const std::size_t slash = mark.find('/');
  if (slash == std::string_view::npos) return true;
  const std::string began = StartOf(std::string(mark.substr(0, slash)));
  return !began.empty() && began == mark.substr(slash + 1);
}

std::vector<std::string> BeginProgram(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  return {argv + 1, argv + argc};
}

bool InputIsTerminal() {
  return ::isatty(STDIN_FILENO) == 1;
}

bool ErrorsAreTerminal() {
  return ::isatty(STDERR_FILENO) == 1;
}

std::string AskSilently(const std::string& question) {
  const SilentTerminal silent;
  std::fputs(question.c_str(), stderr);
  std::string line;
  std::getline(std::cin, line);
  std::fputs("\n", stderr);
  return line;
}

HelperProgram::HelperProgram(const fs::path& program, const std::vector<std::string>& arguments,
                             std::error_code& error) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    error = ErrorOf(errno);
    return;
  }
  output_ = OpenFile(ends[0]);
  const OpenFile input(ends[1]);
  std::string name = program.string();
  std::vector<std::string> copies = arguments;
  std::vector<char*> words{name.data()};
  for (std::string& word : copies) words.push_back(word.data());
  words.push_back(nullptr);

  posix_spawn_file_actions_t files;
  ::posix_spawn_file_actions_init(&files);
  ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  ::posix_spawn_file_actions_adddup2(&files, ends[1], STDOUT_FILENO);
  ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  // This program may not hear of a reader that has gone; that one ends by it.
  posix_spawnattr_t manner;
  ::posix_spawnattr_init(&manner);
  sigset_t ending;
  ::sigemptyset(&ending);
  ::sigaddset(&ending, SIGPIPE);
  ::posix_spawnattr_setsigdefault(&manner, &ending);
  ::posix_spawnattr_setflags(&manner, POSIX_SPAWN_SETSIGDEF);
  pid_t child = 0;
  const int failed = ::posix_spawn(&child, name.c_str(), &files, &manner, words.data(), environ);
  ::posix_spawnattr_destroy(&manner);
  ::posix_spawn_file_actions_destroy(&files);
  error = failed == 0 ? std::error_code() : ErrorOf(failed);
  if (failed == 0) process_ = child;
}

HelperProgram::~HelperProgram() {
  if (process_ == 0) return;
  const auto child = static_cast<pid_t>(process_);
  ::kill(child, SIGKILL);
  while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
}

std::size_t HelperProgram::Read(char* buffer, std::size_t size, std::chrono::milliseconds silence,
                                std::error_code& error) {
  pollfd waited{DescriptorOf(output_), POLLIN, 0};
  int ready = 0;
  do {
    ready = ::poll(&waited, 1, static_cast<int>(silence.count()));
  } while (ready < 0 && errno == EINTR);
  if (ready <= 0) {
    error = ready == 0 ? std::make_error_code(std::errc::timed_out) : ErrorOf(errno);
    return 0;
  }
  return platform::Read(output_, buffer, size, error);
}

void LimitMemory(std::uint64_t bytes) {
  const rlimit limit{bytes, bytes};
  ::setrlimit(RLIMIT_AS, &limit);
  const rlimit none{0, 0};
  ::setrlimit(RLIMIT_CORE, &none);
}

void MustGetOnWithin(std::chrono::seconds processorTime) {
  itimerval timer{};
  timer.it_value.tv_sec = processorTime.count();
  ::setitimer(ITIMER_PROF, &timer, nullptr);
}

}  // namespace vellumark::platform
