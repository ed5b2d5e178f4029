#pragma once

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <functional>
#include <vector>

namespace vellumark::test {

/// Runs `work` in a child of this process for which every disk is a plain stick: it knows no owners, no modes, no second
/// names of a file, and no renaming that looks whether a name is free. The exit status; -1 when it did not end by itself.
inline int OnPlainStick(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    std::vector<sock_filter> code{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    const auto refuse = [&](int call, unsigned error) {
      code.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1));
      code.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error));
    };
    for (const int call : {SYS_chmod, SYS_fchmod, SYS_fchmodat, SYS_chown, SYS_fchown, SYS_lchown, SYS_fchownat, SYS_link, SYS_linkat})
      refuse(call, EPERM);
    refuse(SYS_renameat2, EINVAL);
    code.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program{static_cast<unsigned short>(code.size()), code.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) ::_exit(125);
    try {
      ::_exit(work());
    } catch (const std::exception& fault) {
      std::fprintf(stderr, "the work ended with: %s\n", fault.what());
      ::_exit(124);
    }
  }
  int state = 0;
  ::waitpid(child, &state, 0);
  return WIFEXITED(state) ? WEXITSTATUS(state) : -1;
}

}  // namespace vellumark::test
