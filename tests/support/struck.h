#pragma once

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <set>
#include <stdexcept>
#include <vector>

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

/// Calls of the kernel by which files are changed, and by which the engine reads them.
inline constexpr int kFileCalls[] = {
    SYS_openat,    SYS_open,   SYS_write,   SYS_pread64, SYS_pwrite64,  SYS_ftruncate, SYS_fsync,
    SYS_fdatasync, SYS_syncfs, SYS_rename,  SYS_renameat, SYS_renameat2, SYS_unlink,   SYS_unlinkat,
    SYS_mkdir,     SYS_chmod,  SYS_fchmod,  SYS_fchown,  SYS_sendfile,  SYS_link,      SYS_linkat,
    SYS_copy_file_range};

/// Of those the ones that may be struck: an opening to read is none, nor what is told to a terminal.
inline bool IsFileOperation(const user_regs_struct& call) {
  const auto writes = [](unsigned long long flags) { return (flags & (O_WRONLY | O_RDWR | O_CREAT)) != 0; };
  switch (call.orig_rax) {
    case SYS_openat:
      return writes(call.rdx);
    case SYS_open:
      return writes(call.rsi);
    case SYS_write:
      return call.rdi > 2;
    default:
      return true;
  }
}

/// The kernel asks whoever traces this process, its threads and what it becomes about those calls, and about no other:
/// most calls of a program are none of them.
inline void AskAboutFileCalls() {
  std::vector<sock_filter> code{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
  for (const int call : kFileCalls) {
    code.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1));
    code.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
  }
  code.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  const sock_fprog program{static_cast<unsigned short>(code.size()), code.data()};
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
    ::_exit(125);
}

/// Called by the work: where the operations begin to count, and where they end to.
inline void MarkStep() {
  ::raise(SIGSTOP);
}

enum class Strike { Once, FromThereOn };

/// Runs `work` in a child of this process. Its file operation number `nth` after the first mark, from 1, in whichever of
/// its threads, fails with `error`, alone or with all that follow, or is never made because the child is killed there.
/// `work` may become another program.
inline StruckRun RunStruck(int nth, int error, const std::function<int()>& work, Strike strike = Strike::Once) {
  const pid_t child = ::fork();
  if (child == 0) {
    Trace(PTRACE_TRACEME, 0, 0, 0);
    ::raise(SIGSTOP);  // until its tracer hears what the kernel asks
    AskAboutFileCalls();
    try {
      ::_exit(work());
    } catch (const std::exception& fault) {  // which must not go on in this process as if it were the test
      std::fprintf(stderr, "the work ended with: %s\n", fault.what());
      ::_exit(124);
    }
  }
  int state = 0;
  ::waitpid(child, &state, 0);
  // With all that it starts: the kernel refuses those calls to whom nobody traces.
  constexpr int kOptions = PTRACE_O_TRACESECCOMP | PTRACE_O_TRACECLONE | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK |
                           PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL;
  if (!WIFSTOPPED(state) || Trace(PTRACE_SETOPTIONS, child, nullptr, kOptions) != 0)
    throw std::runtime_error("a child cannot be followed");
  Trace(PTRACE_CONT, child, nullptr, 0L);
  StruckRun run;
  int marks = 0;
  int operations = 0;
  std::set<pid_t> begun{child};
  for (;;) {
    const pid_t thread = ::waitpid(-1, &state, __WALL);
    if (thread < 0) throw std::runtime_error("a child was lost");
    if (WIFSIGNALED(state) || WIFEXITED(state)) {
      if (thread != child) continue;
      if (marks == 0) throw std::runtime_error("the work set no mark");
      if (WIFEXITED(state)) run.status = WEXITSTATUS(state);
      return run;
    }
    long signal = 0;
    if (state >> 8 == (SIGTRAP | (PTRACE_EVENT_SECCOMP << 8))) {
      user_regs_struct call{};
      Trace(PTRACE_GETREGS, thread, nullptr, &call);
      const bool counts = marks == 1 && IsFileOperation(call);
      if (counts) ++operations;
      if (counts && (operations == nth || (strike == Strike::FromThereOn && operations > nth))) {
        run.struck = true;
        if (error == kKilled) {
          ::kill(child, SIGKILL);
        } else {
          // A call that does not exist is made instead; its answer is the error.
          call.orig_rax = static_cast<unsigned long long>(-1);
          call.rax = static_cast<unsigned long long>(-error);
          Trace(PTRACE_SETREGS, thread, nullptr, &call);
        }
      }
    } else if (state >> 16 == 0) {
      if (!begun.insert(thread).second && WSTOPSIG(state) == SIGSTOP && thread == child) {
        ++marks;
      } else if (WSTOPSIG(state) != SIGSTOP) {
        signal = WSTOPSIG(state);
      }
    }
    Trace(PTRACE_CONT, thread, nullptr, signal);
  }
}

}  // namespace vellumark::test
