#pragma once

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>
// After the C library's own.
#include <linux/ptrace.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <stdexcept>

namespace vellumark::test {

// The kernel's names for the requests are plain numbers.
template <typename Third, typename Fourth>
long Trace(int request, pid_t child, Third third, Fourth fourth) {
  return ::ptrace(static_cast<__ptrace_request>(request), child, third, fourth);
}

constexpr int kKilled = 0;  ///< instead of an error: the process ends at the operation

struct StruckRun {
  bool struck = false;  ///< false when the work has fewer operations
  int status = -1;      ///< the exit status; -1 when it did not end by itself
};

/// Operations of the kernel by which files are changed, and by which the engine reads them.
inline bool IsFileOperation(const __ptrace_syscall_info& info) {
  const auto& args = info.entry.args;
  const auto writes = [](unsigned long long flags) { return (flags & (O_WRONLY | O_RDWR | O_CREAT)) != 0; };
  switch (info.entry.nr) {
    case SYS_openat:
      return writes(args[2]);
    case SYS_open:
      return writes(args[1]);
    case SYS_write:
      return args[0] > 2;
    case SYS_pread64:
    case SYS_pwrite64:
    case SYS_ftruncate:
    case SYS_fsync:
    case SYS_fdatasync:
    case SYS_syncfs:
    case SYS_rename:
    case SYS_renameat:
    case SYS_renameat2:
    case SYS_unlink:
    case SYS_unlinkat:
    case SYS_mkdir:
    case SYS_chmod:
    case SYS_fchmod:
    case SYS_fchown:
    case SYS_sendfile:
    case SYS_copy_file_range:
      return true;
    default:
      return false;
  }
}

/// Called by the work: where the operations begin to count, and where they end to.
inline void MarkStep() {
  ::raise(SIGSTOP);
}

enum class Strike { Once, FromThereOn };

/// Runs `work` in a child of this process. Its file operation number `nth` after the first mark, from 1, fails with
/// `error`, alone or with all that follow, or is never made because the child is killed there. `work` may become another
/// program.
inline StruckRun RunStruck(int nth, int error, const std::function<int()>& work, Strike strike = Strike::Once) {
  const pid_t child = ::fork();
  if (child == 0) {
    Trace(PTRACE_TRACEME, 0, 0, 0);
    ::_exit(work());
  }
  int state = 0;
  ::waitpid(child, &state, 0);
  if (!WIFSTOPPED(state)) throw std::runtime_error("the work set no mark");
  if (Trace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL) != 0)
    throw std::runtime_error("a child cannot be followed");
  StruckRun run;
  bool counts = true;
  bool failing = false;
  int operations = 0;
  long signal = 0;
  for (;;) {
    Trace(PTRACE_SYSCALL, child, nullptr, signal);
    signal = 0;
    if (::waitpid(child, &state, 0) != child || WIFSIGNALED(state)) return run;
    if (WIFEXITED(state)) {
      run.status = WEXITSTATUS(state);
      return run;
    }
    if (WSTOPSIG(state) != (SIGTRAP | 0x80)) {
      if (WSTOPSIG(state) == SIGSTOP) counts = false;
      if (state >> 16 == 0 && WSTOPSIG(state) != SIGSTOP) signal = WSTOPSIG(state);
      continue;
    }
    __ptrace_syscall_info info{};
    Trace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info);
    user_regs_struct registers{};
    if (info.op == PTRACE_SYSCALL_INFO_ENTRY && counts && IsFileOperation(info) &&
        (++operations == nth || (strike == Strike::FromThereOn && operations > nth))) {
      run.struck = true;
      if (error == kKilled) {
        ::kill(child, SIGKILL);
        ::waitpid(child, &state, 0);
        return run;
      }
      // A call that does not exist is made instead; its answer is the error.
      failing = true;
      Trace(PTRACE_GETREGS, child, nullptr, &registers);
      registers.orig_rax = static_cast<unsigned long long>(-1);
      Trace(PTRACE_SETREGS, child, nullptr, &registers);
    } else if (info.op == PTRACE_SYSCALL_INFO_EXIT && failing) {
      failing = false;
      Trace(PTRACE_GETREGS, child, nullptr, &registers);
      registers.rax = static_cast<unsigned long long>(-error);
      Trace(PTRACE_SETREGS, child, nullptr, &registers);
    }
  }
}

}  // namespace vellumark::test
