#include "tests/support/kill_point.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdint>

namespace tutti::testing {
namespace {

std::atomic<bool> armed{false};
std::atomic<long> counted{0};
std::atomic<long> last{0};

void count() {
  if (armed && ++counted == last) {
    // Nothing of what a process does at its end may run.
    ::kill(::getpid(), SIGKILL);
  }
}

}  // namespace

void kill_at_write(long number) {
  counted = 0;
  last = number;
  armed = true;
}

long writes_counted() {
  return counted;
}

}  // namespace tutti::testing

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the C library's own names are reserved.
// The program's and the libraries' calls come here instead of to the C library: a program's own functions go
// before those of what it is linked with.
extern "C" {

ssize_t write(int fd, const void* data, size_t size) {
  tutti::testing::count();
  return ::syscall(SYS_write, fd, data, size);
}

ssize_t pwrite64(int fd, const void* data, size_t size, off64_t offset) {
  tutti::testing::count();
  return ::syscall(SYS_pwrite64, fd, data, size, offset);
}

int fdatasync(int fd) {
  tutti::testing::count();
  return static_cast<int>(::syscall(SYS_fdatasync, fd));
}

int fsync(int fd) {
  tutti::testing::count();
  return static_cast<int>(::syscall(SYS_fsync, fd));
}

int rename(const char* from, const char* to) noexcept {
  tutti::testing::count();
  return static_cast<int>(::syscall(SYS_rename, from, to));
}

}  // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
