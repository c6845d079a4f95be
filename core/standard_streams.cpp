#include "core/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <initializer_list>

namespace tutti {

void open_standard_streams() {
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(fd, F_GETFD) != -1 || errno != EBADF) continue;
    // The lowest free number is this one, since those below are open. Without it nothing is safe to start.
    if (::open("/dev/null", fd == STDIN_FILENO ? O_RDONLY : O_WRONLY) != fd) std::abort();
  }
}

}  // namespace tutti
