#include "tests/support/kill_point.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <mutex>
#include <string>

#include "tests/support/unsynced_files.h"

namespace tutti::testing {
namespace {

std::atomic<bool> armed{false};
std::atomic<long> counted{0};
std::atomic<long> last{0};

std::string room;  // of a full disk; empty: it is not
bool full() {
  return !room.empty() && ::access(room.c_str(), F_OK) == 0;
}

UnsyncedFiles* files = nullptr;  // whose writes are watched
std::mutex one_by_one;           // while they are

void count() {
  if (armed && ++counted == last) {
    if (files != nullptr) files->lose();
    // Nothing of what a process does at its end may run.
    ::kill(::getpid(), SIGKILL);
  }
}

// A call that may be the last; `note` tells the watched files of it.
template <class Note, class Call>
auto counted_call(Note&& note, Call&& call) {
  if (files == nullptr) {
    count();
    return call();
  }
  const std::lock_guard lock{one_by_one};
  count();
  note(*files);
  return call();
}

void arm(long number, UnsyncedFiles* watched) {
  counted = 0;
  last = number;
  files = watched;
  armed = true;
}

}  // namespace

void kill_at_write(long number) {
  arm(number, nullptr);
}

void cut_power_at_write(long number, UnsyncedFiles& unsynced) {
  arm(number, &unsynced);
}

void fill_disk_but_for(const std::string& file) {
  room = file;
}

long writes_counted() {
  return counted;
}

}  // namespace tutti::testing

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the C library's own names are reserved.
// The program's and the libraries' calls come here instead of to the C library: a program's own functions go
// before those of what it is linked with.
extern "C" {

int posix_fallocate(int fd, off_t offset, off_t size) {
  if (!tutti::testing::room.empty()) return ENOSPC;
  return ::syscall(SYS_fallocate, fd, 0, offset, size) == 0 ? 0 : errno;
}

ssize_t write(int fd, const void* data, size_t size) {
  if (tutti::testing::full()) return errno = ENOSPC, -1;
  return tutti::testing::counted_call([&](auto& files) { files.written(fd, data, size); },
                                      [&] { return ::syscall(SYS_write, fd, data, size); });
}

ssize_t pwrite64(int fd, const void* data, size_t size, off64_t offset) {
  if (tutti::testing::full()) return errno = ENOSPC, -1;
  return tutti::testing::counted_call([&](auto& files) { files.written(fd, data, size, offset); },
                                      [&] { return ::syscall(SYS_pwrite64, fd, data, size, offset); });
}

int fdatasync(int fd) {
  return static_cast<int>(tutti::testing::counted_call([&](auto& files) { files.synchronised(fd); },
                                                       [&] { return ::syscall(SYS_fdatasync, fd); }));
}

int fsync(int fd) {
  return static_cast<int>(tutti::testing::counted_call([&](auto& files) { files.synchronised(fd); },
                                                       [&] { return ::syscall(SYS_fsync, fd); }));
}

int rename(const char* from, const char* to) noexcept {
  return static_cast<int>(
      tutti::testing::counted_call([](auto&) {}, [&] { return ::syscall(SYS_rename, from, to); }));
}

}  // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
