#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace vellumark {

/// Who may read a file that was not there before. In a folder that hands its group on, that group may read and write
/// whatever is made there; elsewhere a file for the group is its owner's alone.
enum class Readers { Everybody, Group };

/// What a byte far behind the first of a file stands for when it is locked; nothing is read or written there.
enum class LockedByte {
  DataFile,  ///< somebody has the Data File open to work in it
  Beside,    ///< the file is being written, and will take another's place
};

/// What each system does in its own way. Both sides keep these contracts: platform_posix.cpp and platform_windows.cpp,
/// the only files under src/ that read a system's headers. What fails is an error for the caller to put into words.
namespace platform {

/// An open file; it is closed with this object. No program that is started gets it.
class OpenFile {
 public:
  OpenFile() = default;
  explicit OpenFile(std::intptr_t handle) : handle_(handle) {}
  ~OpenFile() { Close(); }
  OpenFile(OpenFile&& other) noexcept : handle_(std::exchange(other.handle_, kNone)) {}
  OpenFile& operator=(OpenFile&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }

  explicit operator bool() const { return handle_ != kNone; }
  std::intptr_t Handle() const { return handle_; }
  void Close();

 private:
  static constexpr std::intptr_t kNone = -1;
  std::intptr_t handle_ = kNone;
};

enum class Opening {
  Read,
  Write,
  WriteNoLink,  ///< what stands there itself, never what a link leads to
};

/// A file that is there, without waiting: a pipe that nobody writes into would hold the program.
OpenFile OpenExisting(const std::filesystem::path& path, Opening opening, std::error_code& error);
/// A new file named `start`, six letters, `end`: made exclusively, and its owner's alone. `made` tells its path.
OpenFile MakeUnique(const std::filesystem::path& start, std::string_view end, std::filesystem::path& made,
                    std::error_code& error);
/// A file to hold a lock on, made where it is missing, for the group of its folder. Never through a link.
OpenFile OpenLockFile(const std::filesystem::path& path, std::error_code& error);

enum class Kind { File, Folder, Link, Other };

struct FileState {
  Kind kind = Kind::Other;
  std::uint64_t device = 0;    ///< the drive
  std::uint64_t identity = 0;  ///< of the file on its drive, whatever its name
  std::int64_t size = 0;
  std::int64_t modified = 0;  ///< nanoseconds since 1970
  std::int64_t changed = 0;   ///< the same of names and rights
  bool named = true;          ///< false for an open file that was removed
};

FileState StateOf(const OpenFile& file, std::error_code& error);
FileState StateOf(const std::filesystem::path& path, std::error_code& error);
/// Of what stands there itself: a link is a link.
FileState StateOfEntry(const std::filesystem::path& path, std::error_code& error);

/// 0 at the end.
std::size_t Read(const OpenFile& file, char* buffer, std::size_t size, std::error_code& error);
std::error_code Write(const OpenFile& file, std::string_view bytes);
std::error_code Sync(const OpenFile& file);
/// Makes the names in a folder last through a power cut.
std::error_code SyncFolder(const std::filesystem::path& folder);

/// Owner and mode of the file `before`, as far as this process may give them. Nobody gets more by it.
std::error_code KeepOwner(const OpenFile& file, const std::filesystem::path& before);
/// The mode of a file that is new in `folder`.
std::error_code GiveToReaders(const OpenFile& file, const std::filesystem::path& folder, Readers readers);
/// Gives a new folder the rights of the one above it, where that hands them on.
std::error_code ShareFolder(const std::filesystem::path& folder);

/// In one step, whatever stands at `to`.
std::error_code Replace(const std::filesystem::path& from, const std::filesystem::path& to);
/// In one step; file_exists when something stands at `to`.
std::error_code RenameToFree(const std::filesystem::path& from, const std::filesystem::path& to);

enum class Access {
  Read,
  Write,
  Enter,    ///< a folder, on the way to what is in it
  WriteIn,  ///< make and remove files in a folder
};

/// No error when this process may.
std::error_code Denied(const std::filesystem::path& path, Access access);
/// The name of the group whose members may enter a folder, where the system tells one.
std::string GroupThatMayEnter(const std::filesystem::path& folder);

/// Locks the byte in a file that is open for writing, without waiting; false when it is locked already. The lock goes
/// with the OpenFile: this process may close any other of the same file, by which it would lose the engine's locks. It
/// keeps clear of the bytes that the engine locks, so that on network drives, where all kinds of locks are one, nobody
/// keeps himself out. Where a file system knows no locks it holds nobody off.
bool TakeByteLock(const OpenFile& file, LockedByte byte);
/// Whether anybody has it through another OpenFile.
bool IsByteLocked(const OpenFile& file, LockedByte byte);
/// Locks a whole file without waiting; false, without an error, when another process has it.
bool TakeFileLock(const OpenFile& file, std::error_code& error);
/// Waits for the lock of a folder, which is as good as none on a file system that knows no locks.
OpenFile LockFolder(const std::filesystem::path& folder, std::error_code& error);

std::filesystem::path ExecutablePath();
/// Where the package of the system makes a folder for all users of the machine.
std::filesystem::path SharedFolder();
/// Where a user's programs keep their data.
std::filesystem::path OwnFolder(const std::function<std::string(const char*)>& environment);
/// A variable of the environment, in UTF-8; empty when it is not set.
std::string Environment(const char* name);
std::string UserName();

std::tm LocalTime(std::time_t seconds);
/// Nanoseconds since some moment, in the steps of a clock that costs next to nothing to read.
std::int64_t Tick();

/// Names this process among all that ever ran on this machine.
std::string ProcessMark();
/// Whether the process of a mark still runs. Of what is no mark of this machine nobody knows: true.
bool ProcessLives(std::string_view mark);

/// To be called once at the start of a program that speaks through its standard streams: its arguments in UTF-8, less
/// its name; texts of paths and the terminal are UTF-8 from here on, and a reader that has gone is a failure like a
/// full disk.
std::vector<std::string> BeginProgram(int argc, char** argv);
bool InputIsTerminal();
bool ErrorsAreTerminal();
/// Asks on standard error and reads a line from the terminal, which does not show what is typed.
std::string AskSilently(const std::string& question);

}  // namespace platform
}  // namespace vellumark
