#include "benchmarks/call_counter.h"

#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <iterator>
#include <stdexcept>

namespace tutti::bench {
namespace {

constexpr long file_calls[] = {
    SYS_read,       SYS_write,      SYS_pread64,         SYS_pwrite64,   SYS_readv,
    SYS_writev,     SYS_openat,     SYS_close,           SYS_lseek,      SYS_fstat,
    SYS_newfstatat, SYS_statx,      SYS_faccessat,       SYS_faccessat2, SYS_fcntl,
    SYS_flock,      SYS_fsync,      SYS_fdatasync,       SYS_ftruncate,  SYS_truncate,
    SYS_fallocate,  SYS_getdents64, SYS_mkdirat,         SYS_unlinkat,   SYS_renameat2,
    SYS_linkat,     SYS_symlinkat,  SYS_readlinkat,      SYS_fchmod,     SYS_fchmodat,
    SYS_fchown,     SYS_utimensat,  SYS_copy_file_range,
#ifdef SYS_open  // the older half of some machines
    SYS_open,       SYS_stat,       SYS_lstat,           SYS_access,     SYS_mkdir,
    SYS_rmdir,      SYS_unlink,     SYS_rename,          SYS_link,       SYS_symlink,
    SYS_readlink,   SYS_chmod,      SYS_chown,           SYS_getdents,
#endif
};

bool is_of_files(long call) {
  return std::find(std::begin(file_calls), std::end(file_calls), call) != std::end(file_calls);
}

void check(bool done, const char* what) {
  if (!done) throw std::runtime_error(fmt::format("system calls can't be counted: {}", what));
}

// Number of the call that a stopped process makes; below zero where it returns from one.
long entered(pid_t worker) {
  __ptrace_syscall_info info{};
  check(::ptrace(PTRACE_GET_SYSCALL_INFO, worker, sizeof info, &info) > 0, "the call is not told");
  return info.op == PTRACE_SYSCALL_INFO_ENTRY ? static_cast<long>(info.entry.nr) : -1;
}

std::uint64_t count_calls(pid_t worker) {
  constexpr int call_stop = SIGTRAP | 0x80;
  int status = 0;
  check(::waitpid(worker, &status, 0) == worker && WIFSTOPPED(status), "no process");
  check(::ptrace(PTRACE_SETOPTIONS, worker, 0, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL) == 0, "no stops");
  std::uint64_t calls = 0;
  bool counts = false;
  for (int pass_on = 0;;) {
    check(::ptrace(PTRACE_SYSCALL, worker, 0, pass_on) == 0 && ::waitpid(worker, &status, 0) == worker,
          "the process is lost");
    if (!WIFSTOPPED(status)) break;
    pass_on = 0;
    const int stop = WSTOPSIG(status);
    if (stop == SIGUSR1) {
      counts = !counts;
    } else if (stop != call_stop) {
      pass_on = stop;
    } else if (const long call = counts ? entered(worker) : -1; call >= 0) {
      calls += is_of_files(call) ? 1 : 0;
    }
  }
  check(WIFEXITED(status) && WEXITSTATUS(status) == 0, "the work was not done");
  return calls;
}

}  // namespace

void CallCounter::turn() const {
  // The one that counts takes it; nobody else has to.
  ::kill(worker_, SIGUSR1);
}

double CallCounter::per_unit(const std::function<std::size_t(const CallCounter&)>& work) {
  void* const room =
      ::mmap(nullptr, sizeof(std::size_t), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  check(room != MAP_FAILED, "no memory");
  auto& units = *static_cast<std::size_t*>(room);
  const pid_t worker = ::fork();
  check(worker >= 0, "no process");
  if (worker == 0) {
    try {
      check(::ptrace(PTRACE_TRACEME, 0, 0, 0) == 0, "nobody may be watched");
      ::raise(SIGSTOP);
      const CallCounter counter{::getpid()};
      units = work(counter);
      ::_exit(0);
    } catch (const std::exception& error) {
      fmt::print(stderr, "{}\n", error.what());
      ::_exit(1);
    }
  }
  const std::uint64_t calls = count_calls(worker);
  const std::size_t done = units;
  ::munmap(room, sizeof(std::size_t));
  check(done > 0, "nothing was done");
  return static_cast<double>(calls) / static_cast<double>(done);
}

}  // namespace tutti::bench
