#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// The others need it first.
#include <aclapi.h>
#include <fcntl.h>
#include <io.h>
#include <sddl.h>
#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <memory>
#include <random>
#include <stdexcept>

#include "core/base/disk_sync.h"
#include "core/base/helper_program.h"
#include "core/base/platform.h"

namespace vellumark::platform {
namespace fs = std::filesystem;

namespace {

// The engine's locks end before it.
constexpr DWORD kFirstByte = 0x40000000 + 512;
// Others may read, write, rename and remove what this program has open, as elsewhere: only locks keep them out.
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::int64_t kNanosecondsPerStep = 100;  // of the system's times

// What rules and messages ask for bears the same name on every system; the rest is told in the system's words.
std::error_code ErrorOf(DWORD number) {
  switch (number) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return std::make_error_code(std::errc::no_such_file_or_directory);
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
      return std::make_error_code(std::errc::permission_denied);
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return std::make_error_code(std::errc::file_exists);
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return std::make_error_code(std::errc::no_space_on_device);
    case ERROR_DIRECTORY:
      return std::make_error_code(std::errc::not_a_directory);
    default:
      return {static_cast<int>(number), std::system_category()};
  }
}

std::error_code Answer(BOOL done) {
  return done != 0 ? std::error_code() : ErrorOf(::GetLastError());
}

HANDLE HandleOf(const OpenFile& file) {
  return reinterpret_cast<HANDLE>(file.Handle());
}

OpenFile Opened(HANDLE handle, std::error_code& error) {
  error = Answer(handle != INVALID_HANDLE_VALUE);
  return OpenFile(reinterpret_cast<std::intptr_t>(handle));
}

// Folders, too, are opened with this.
OpenFile OpenAny(const fs::path& path, DWORD access, DWORD further, std::error_code& error) {
  return Opened(::CreateFileW(path.c_str(), access, kShareAll, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS | further, nullptr),
                error);
}

std::string Utf8(std::wstring_view wide) {
  const int size = static_cast<int>(wide.size());
  std::string text(static_cast<std::size_t>(size) * 3, '\0');
  text.resize(
      static_cast<std::size_t>(std::max(0, ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, text.data(),
                                                                 static_cast<int>(text.size()), nullptr, nullptr))));
  return text;
}

std::wstring Wide(std::string_view text) {
  const int size = static_cast<int>(text.size());
  std::wstring wide(text.size(), L'\0');
  wide.resize(static_cast<std::size_t>(
      std::max(0, ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), static_cast<int>(wide.size())))));
  return wide;
}

std::uint64_t Joined(DWORD high, DWORD low) {
  return static_cast<std::uint64_t>(high) << 32 | low;
}

// The system counts hundreds of nanoseconds since 1601.
std::int64_t Since1970(std::int64_t steps) {
  return (steps - 116'444'736'000'000'000) * kNanosecondsPerStep;
}

// What stands for something elsewhere: links and mounted folders, but not what a cloud keeps until it is asked for.
bool IsLink(const FILE_ATTRIBUTE_TAG_INFO& tag) {
  return (tag.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsReparseTagNameSurrogate(tag.ReparseTag);
}

FileState StateBy(const OpenFile& file, std::error_code& error) {
  BY_HANDLE_FILE_INFORMATION about{};
  FILE_BASIC_INFO times{};
  FILE_STANDARD_INFO standard{};
  FILE_ATTRIBUTE_TAG_INFO tag{};
  const HANDLE handle = HandleOf(file);
  // A pipe or a device has none of these.
  if (::GetFileType(handle) != FILE_TYPE_DISK) return {};
  error = Answer(::GetFileInformationByHandle(handle, &about) &&
                 ::GetFileInformationByHandleEx(handle, FileBasicInfo, &times, sizeof times) &&
                 ::GetFileInformationByHandleEx(handle, FileStandardInfo, &standard, sizeof standard) &&
                 ::GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &tag, sizeof tag));
  if (error) return {};
  FileState state;
  state.kind = IsLink(tag) ? Kind::Link : standard.Directory != 0 ? Kind::Folder : Kind::File;
  state.device = about.dwVolumeSerialNumber;
  state.identity = Joined(about.nFileIndexHigh, about.nFileIndexLow);
  state.size = standard.EndOfFile.QuadPart;
  state.modified = Since1970(times.LastWriteTime.QuadPart);
  state.changed = Since1970(times.ChangeTime.QuadPart);
  state.named = standard.DeletePending == 0;
  return state;
}

OVERLAPPED At(DWORD byte) {
  OVERLAPPED place{};
  place.Offset = byte;
  return place;
}

BOOL Lock(const OpenFile& file, DWORD kind, DWORD byte) {
  OVERLAPPED place = At(byte);
  return ::LockFileEx(HandleOf(file), kind, 0, 1, 0, &place);
}

bool IsTaken(DWORD error) {
  return error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING;
}

struct LocalMemory {
  void operator()(void* memory) const { ::LocalFree(memory); }
};
using SecurityDescriptor = std::unique_ptr<void, LocalMemory>;

// The rights that the folder hands on, and none of the file's own.
std::error_code InheritRights(const OpenFile& file) {
  ACL none{};
  if (::InitializeAcl(&none, sizeof none, ACL_REVISION) == 0) return ErrorOf(::GetLastError());
  const DWORD failed = ::SetSecurityInfo(HandleOf(file), SE_FILE_OBJECT,
                                         DACL_SECURITY_INFORMATION | UNPROTECTED_DACL_SECURITY_INFORMATION, nullptr,
                                         nullptr, &none, nullptr);
  return failed == ERROR_SUCCESS ? std::error_code() : ErrorOf(failed);
}

fs::path KnownFolder(const KNOWNFOLDERID& folder) {
  wchar_t* found = nullptr;
  const HRESULT result = ::SHGetKnownFolderPath(folder, KF_FLAG_DEFAULT, nullptr, &found);
  const fs::path path = SUCCEEDED(result) ? fs::path(found) : fs::path();
  ::CoTaskMemFree(found);
  if (path.empty()) throw std::runtime_error("Windows does not tell where programs keep their data");
  return path;
}

std::string MachineName() {
  wchar_t name[MAX_COMPUTERNAME_LENGTH + 1];
  DWORD size = MAX_COMPUTERNAME_LENGTH + 1;
  return ::GetComputerNameW(name, &size) != 0 ? Utf8({name, size}) : "";
}

std::uint64_t StartOf(HANDLE process) {
  FILETIME began{}, ended{}, kernel{}, user{};
  if (::GetProcessTimes(process, &began, &ended, &kernel, &user) == 0) return 0;
  return Joined(began.dwHighDateTime, began.dwLowDateTime);
}

template <class Number>
bool ReadWhole(std::string_view text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

bool IsTerminal(DWORD stream) {
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(stream), &mode) != 0;
}

/// Keeps a terminal from showing what is typed.
class SilentTerminal {
 public:
  explicit SilentTerminal(HANDLE input) : input_(input), shown_(::GetConsoleMode(input, &before_) != 0) {
    if (shown_) ::SetConsoleMode(input_, (before_ & ~DWORD{ENABLE_ECHO_INPUT}) | ENABLE_LINE_INPUT);
  }
  ~SilentTerminal() {
    if (shown_) ::SetConsoleMode(input_, before_);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

 private:
  HANDLE input_;
  DWORD before_ = 0;
  bool shown_;
};

}  // namespace

void OpenFile::Close() {
  if (handle_ != kNone) ::CloseHandle(reinterpret_cast<HANDLE>(std::exchange(handle_, kNone)));
}

OpenFile OpenExisting(const fs::path& path, Opening opening, std::error_code& error) {
  if (opening == Opening::Read) return OpenAny(path, GENERIC_READ, 0, error);
  const DWORD itself = opening == Opening::WriteNoLink ? FILE_FLAG_OPEN_REPARSE_POINT : 0;
  return OpenAny(path, GENERIC_READ | GENERIC_WRITE, itself, error);
}

OpenFile MakeUnique(const fs::path& start, std::string_view end, fs::path& made, std::error_code& error) {
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";  // names are told apart without case
  // Whoever makes it may read and write it, and nobody else.
  void* owners = nullptr;
  if (::ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;;FA;;;OW)", SDDL_REVISION_1, &owners, nullptr) ==
      0) {
    error = ErrorOf(::GetLastError());
    return {};
  }
  const SecurityDescriptor descriptor(owners);
  SECURITY_ATTRIBUTES rights{sizeof(SECURITY_ATTRIBUTES), descriptor.get(), FALSE};
  std::random_device random;
  for (;;) {
    std::string letters;
    for (int i = 0; i < 6; ++i) letters += kLetters[random() % kLetters.size()];
    made = start;
    made += Wide(letters + std::string(end));
    // Not to be deleted by this handle: the engine opens the file too, and lets nobody do that meanwhile.
    OpenFile file = Opened(::CreateFileW(made.c_str(), GENERIC_READ | GENERIC_WRITE | READ_CONTROL | WRITE_DAC,
                                         kShareAll, &rights, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr),
                           error);
    if (error != std::errc::file_exists) return file;
  }
}

OpenFile OpenLockFile(const fs::path& path, std::error_code& error) {
  constexpr DWORD kFlags = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT;
  OpenFile file = Opened(
      ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, kShareAll, nullptr, OPEN_ALWAYS, kFlags, nullptr),
      error);
  if (error == std::errc::permission_denied)
    file = Opened(::CreateFileW(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, kFlags, nullptr), error);
  if (error) return file;
  const FileState state = StateBy(file, error);
  if (!error && state.kind == Kind::Link) error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
  if (error) file.Close();
  return file;
}

FileState StateOf(const OpenFile& file, std::error_code& error) {
  error.clear();
  return StateBy(file, error);
}

FileState StateOf(const fs::path& path, std::error_code& error) {
  const OpenFile file = OpenAny(path, FILE_READ_ATTRIBUTES, 0, error);
  return file ? StateBy(file, error) : FileState();
}

FileState StateOfEntry(const fs::path& path, std::error_code& error) {
  const OpenFile file = OpenAny(path, FILE_READ_ATTRIBUTES, FILE_FLAG_OPEN_REPARSE_POINT, error);
  return file ? StateBy(file, error) : FileState();
}

std::size_t Read(const OpenFile& file, char* buffer, std::size_t size, std::error_code& error) {
  DWORD count = 0;
  const auto most = static_cast<DWORD>(std::min<std::size_t>(size, 1U << 30));
  error = Answer(::ReadFile(HandleOf(file), buffer, most, &count, nullptr));
  return error ? 0 : count;
}

std::error_code Write(const OpenFile& file, std::string_view bytes) {
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto most = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1U << 30));
    if (::WriteFile(HandleOf(file), bytes.data(), most, &written, nullptr) == 0) return ErrorOf(::GetLastError());
    bytes.remove_prefix(written);
  }
  return {};
}

std::error_code Sync(const OpenFile& file) {
  return Answer(::FlushFileBuffers(HandleOf(file)));
}

std::error_code SyncFolder(const fs::path& folder) {
  std::error_code error;
  const OpenFile handle = OpenAny(folder, GENERIC_WRITE, 0, error);
  // A drive that lets nobody flush its folders has written the names when it moved them.
  if (error == std::errc::permission_denied) return {};
  if (!error && ::FlushFileBuffers(HandleOf(handle)) == 0) {
    const DWORD failed = ::GetLastError();
    const bool unknown =
        failed == ERROR_INVALID_FUNCTION || failed == ERROR_NOT_SUPPORTED || failed == ERROR_ACCESS_DENIED;
    if (!unknown) error = ErrorOf(failed);
  }
  return error;
}

std::error_code SyncFiles(const fs::path& folder, std::span<const fs::path> files) {
  std::error_code error;
  for (const fs::path& path : files) {
    const OpenFile file = OpenExisting(path, Opening::Write, error);
    if (!error) error = Sync(file);
    if (error) return error;
  }
  return SyncFolder(folder);
}

// Here the memory of the system is given up by nobody but itself.
void BeginWriting(const OpenFile&) {}
void GiveWay() {
  ::SetThreadPriority(::GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
}

OpenFile OpenOnDisk(const fs::path& path, std::error_code& error) {
  return OpenExisting(path, Opening::Read, error);
}

std::error_code KeepOwner(const OpenFile& file, const fs::path& before) {
  PSID owner = nullptr;
  PSID group = nullptr;
  PACL rights = nullptr;
  void* all = nullptr;
  const DWORD failed =
      ::GetNamedSecurityInfoW(const_cast<wchar_t*>(before.c_str()), SE_FILE_OBJECT,
                              OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION,
                              &owner, &group, &rights, nullptr, &all);
  if (failed != ERROR_SUCCESS) return ErrorOf(failed);
  const SecurityDescriptor descriptor(all);
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  if (::GetSecurityDescriptorControl(descriptor.get(), &control, &revision) == 0) return ErrorOf(::GetLastError());
  // The owner while the file is still closed to others; only some may give a file away, and without that it is theirs.
  if (const HANDLE owning = ::ReOpenFile(HandleOf(file), WRITE_OWNER, kShareAll, 0); owning != INVALID_HANDLE_VALUE) {
    ::SetSecurityInfo(owning, SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION, owner, group,
                      nullptr, nullptr);
    ::CloseHandle(owning);
  }
  const DWORD inherits =
      (control & SE_DACL_PROTECTED) != 0 ? PROTECTED_DACL_SECURITY_INFORMATION : UNPROTECTED_DACL_SECURITY_INFORMATION;
  const DWORD refused = ::SetSecurityInfo(HandleOf(file), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | inherits, nullptr,
                                          nullptr, rights, nullptr);
  if (refused != ERROR_SUCCESS) return ErrorOf(refused);
  const DWORD attributes = ::GetFileAttributesW(before.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return ErrorOf(::GetLastError());
  FILE_BASIC_INFO basics{};  // a time of 0 stays as it is
  basics.FileAttributes = attributes & (FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
  if (basics.FileAttributes == 0) basics.FileAttributes = FILE_ATTRIBUTE_NORMAL;
  return Answer(::SetFileInformationByHandle(HandleOf(file), FileBasicInfo, &basics, sizeof basics));
}

// Every folder hands its rights on here, so a new file is for those whom its folder lets in.
std::error_code GiveToReaders(const OpenFile& file, const fs::path&, Readers) {
  return InheritRights(file);
}

// The system has done it when the folder was made.
std::error_code ShareFolder(const fs::path&) {
  return {};
}

std::error_code Replace(const fs::path& from, const fs::path& to) {
  return Answer(::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
}

std::error_code RenameToFree(const fs::path& from, const fs::path& to) {
  return Answer(::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH));
}

std::error_code Denied(const fs::path& path, Access access) {
  std::error_code error;
  DWORD wanted = GENERIC_READ;
  if (access == Access::Write) wanted = GENERIC_WRITE;
  if (access == Access::Enter) wanted = FILE_TRAVERSE;
  if (access == Access::WriteIn) wanted = FILE_ADD_FILE | FILE_DELETE_CHILD;
  OpenAny(path, wanted, 0, error);
  // Whoever has made a folder's files may remove them without the right to remove everybody's.
  if (access == Access::WriteIn && error == std::errc::permission_denied) OpenAny(path, FILE_ADD_FILE, 0, error);
  // Somebody else's having it open is no matter of rights.
  if (error.category() == std::system_category() && error.value() == ERROR_SHARING_VIOLATION) error.clear();
  return error;
}

// Rights are lists of users and groups here: no single one has to be joined.
std::string GroupThatMayEnter(const fs::path&) {
  return {};
}

bool TakeByteLock(const OpenFile& file, LockedByte byte) {
  if (Lock(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, kFirstByte + static_cast<DWORD>(byte)) != 0)
    return true;
  return !IsTaken(::GetLastError());
}

bool IsByteLocked(const OpenFile& file, LockedByte byte) {
  const DWORD at = kFirstByte + static_cast<DWORD>(byte);
  if (Lock(file, LOCKFILE_FAIL_IMMEDIATELY, at) == 0) return IsTaken(::GetLastError());
  OVERLAPPED place = At(at);
  ::UnlockFileEx(HandleOf(file), 0, 1, 0, &place);
  return false;
}

bool TakeFileLock(const OpenFile& file, std::error_code& error) {
  error.clear();
  if (Lock(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0) != 0) return true;
  if (const DWORD failed = ::GetLastError(); !IsTaken(failed)) error = ErrorOf(failed);
  return false;
}

// A folder cannot be locked itself, so a hidden file in it is. It stays: its removal would part those who wait for it.
OpenFile LockFolder(const fs::path& folder, std::error_code& error) {
  OpenFile file = OpenLockFile(folder / L".vellumark-lock", error);
  if (error) return file;
  FILE_BASIC_INFO basics{};
  basics.FileAttributes = FILE_ATTRIBUTE_HIDDEN;
  ::SetFileInformationByHandle(HandleOf(file), FileBasicInfo, &basics, sizeof basics);
  if (Lock(file, LOCKFILE_EXCLUSIVE_LOCK, 0) != 0) return file;
  const DWORD failed = ::GetLastError();
  if (failed != ERROR_INVALID_FUNCTION && failed != ERROR_NOT_SUPPORTED) error = ErrorOf(failed);
  return file;
}

fs::path ExecutablePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = ::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (size < path.size()) return path.substr(0, size);
    path.resize(path.size() * 2);
  }
}

fs::path SharedFolder() {
  return KnownFolder(FOLDERID_ProgramData) / L"vellumark";
}

fs::path OwnFolder(const std::function<std::string(const char*)>&) {
  return KnownFolder(FOLDERID_LocalAppData);
}

std::string Environment(const char* name) {
  const std::wstring wide = Wide(name);
  std::wstring value(256, L'\0');
  for (;;) {
    const DWORD size = ::GetEnvironmentVariableW(wide.c_str(), value.data(), static_cast<DWORD>(value.size()));
    if (size < value.size()) return Utf8(std::wstring_view(value).substr(0, size));
    value.resize(size);
  }
}

std::string UserName() {
  wchar_t name[257];  // the longest that the system allows, and its end
  DWORD size = 257;
  return ::GetUserNameW(name, &size) != 0 ? Utf8({name, size - 1}) : "";
}

std::tm LocalTime(std::time_t seconds) {
  std::tm local{};
  ::localtime_s(&local, &seconds);
  return local;
}

std::int64_t Tick() {
  return std::chrono::nanoseconds(std::chrono::milliseconds(::GetTickCount64())).count();
}

std::string ProcessMark() {
  return MachineName() + "/" + std::to_string(::GetCurrentProcessId()) + "/" +
         std::to_string(StartOf(::GetCurrentProcess()));
}

bool ProcessLives(std::string_view mark) {
  const std::string machine = MachineName() + "/";
  if (!mark.starts_with(machine)) return true;
  mark.remove_prefix(machine.size());
  const std::size_t slash = mark.find('/');
  DWORD number = 0;
  std::uint64_t began = 0;
  if (slash == std::string_view::npos || !ReadWhole(mark.substr(0, slash), number) ||
      !ReadWhole(mark.substr(slash + 1), began))
    return true;
  const HANDLE process = ::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, number);
  if (process == nullptr) return ::GetLastError() == ERROR_ACCESS_DENIED;  // another user's
  const bool lives = ::WaitForSingleObject(process, 0) == WAIT_TIMEOUT && StartOf(process) == began;
  ::CloseHandle(process);
  return lives;
}

std::vector<std::string> BeginProgram(int, char**) {
  // The library turns a text into a path by way of the C library's characters.
  if (std::setlocale(LC_CTYPE, ".UTF-8") == nullptr) throw std::runtime_error("the C library does not know UTF-8");
  ::SetConsoleOutputCP(CP_UTF8);
  ::_setmode(::_fileno(stdout), _O_BINARY);  // the same bytes as on other systems
  int count = 0;
  wchar_t** words = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  if (words == nullptr) throw std::runtime_error("Windows does not tell the words of the command line");
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(Utf8(words[i]));
  ::LocalFree(words);
  return arguments;
}

bool InputIsTerminal() {
  return IsTerminal(STD_INPUT_HANDLE);
}

bool ErrorsAreTerminal() {
  return IsTerminal(STD_ERROR_HANDLE);
}

std::string AskSilently(const std::string& question) {
  const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
  const SilentTerminal silent(input);
  std::fputs(question.c_str(), stderr);
  std::wstring line;
  wchar_t piece[256];
  DWORD count = 0;
  while ((line.empty() || line.back() != L'\n') && ::ReadConsoleW(input, piece, 256, &count, nullptr) != 0 && count > 0)
    line.append(piece, count);
  std::fputs("\n", stderr);
  return Utf8(std::wstring_view(line).substr(0, line.find_first_of(L"\r\n")));
}

HelperProgram::HelperProgram(const fs::path& program, const std::vector<std::string>& arguments,
                             std::error_code& error) {
  SECURITY_ATTRIBUTES handedOn{sizeof handedOn, nullptr, TRUE};
  HANDLE output = nullptr;
  HANDLE input = nullptr;
  error = Answer(::CreatePipe(&output, &input, &handedOn, 0));
  if (error) return;
  output_ = OpenFile(reinterpret_cast<std::intptr_t>(output));
  const OpenFile closed(reinterpret_cast<std::intptr_t>(input));
  ::SetHandleInformation(output, HANDLE_FLAG_INHERIT, 0);
  // No argument ends with a backslash or holds a quotation mark: they are words, numbers and names of files.
  std::wstring line = L"\"" + program.wstring() + L"\"";
  for (const std::string& word : arguments) line += L" \"" + Wide(word) + L"\"";
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = input;
  PROCESS_INFORMATION made{};
  error = Answer(::CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                                  nullptr, &start, &made));
  if (error) return;
  ::CloseHandle(made.hThread);
  process_ = reinterpret_cast<std::intptr_t>(made.hProcess);
}

HelperProgram::~HelperProgram() {
  if (process_ == 0) return;
  const HANDLE process = reinterpret_cast<HANDLE>(process_);
  ::TerminateProcess(process, 1);
  ::WaitForSingleObject(process, INFINITE);
  ::CloseHandle(process);
}

std::size_t HelperProgram::Read(char* buffer, std::size_t size, std::chrono::milliseconds silence,
                                std::error_code& error) {
  constexpr DWORD kLook = 5;  // milliseconds; a pipe tells nobody when something has come
  for (auto waited = std::chrono::milliseconds(0);; waited += std::chrono::milliseconds(kLook)) {
    DWORD there = 0;
    if (::PeekNamedPipe(HandleOf(output_), nullptr, 0, nullptr, &there, nullptr) == 0) {
      const DWORD failed = ::GetLastError();
      error = failed == ERROR_BROKEN_PIPE ? std::error_code() : ErrorOf(failed);
      return 0;
    }
    if (there > 0) return platform::Read(output_, buffer, size, error);
    if (waited >= silence) {
      error = std::make_error_code(std::errc::timed_out);
      return 0;
    }
    ::Sleep(kLook);
  }
}

void LimitMemory(std::uint64_t bytes) {
  const HANDLE job = ::CreateJobObjectW(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_PROCESS_MEMORY;
  limits.ProcessMemoryLimit = static_cast<SIZE_T>(bytes);
  ::SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
  ::AssignProcessToJobObject(job, ::GetCurrentProcess());
}

// The system has no such timer: whoever waits for what the helper says ends it.
void MustGetOnWithin(std::chrono::seconds) {}

}  // namespace vellumark::platform
