#include "core/core_dumps.h"

#include <sys/resource.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace tutti {

void forbid_core_dumps() {
  // Where neither can be had, the program is worth more than what it might leave behind in a crash.
  const rlimit none{0, 0};
  (void)::setrlimit(RLIMIT_CORE, &none);
#ifdef __linux__
  // Dumps that are piped to a collector do not mind the limit.
  (void)::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
#endif
}

}  // namespace tutti
