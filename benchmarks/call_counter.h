#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>

namespace tutti::bench {

// Counts the system calls that a piece of work makes on files, by path or descriptor, each exactly once: a
// process of its own does the work and is stopped by this one at every call. Times mean nothing there.
class CallCounter {
 public:
  // Calls per unit of what `work` does between begin() and end(), which it calls any number of times; it
  // answers the units. Throws when it does.
  static double per_unit(const std::function<std::size_t(const CallCounter&)>& work);

  void begin() const { turn(); }
  void end() const { turn(); }

 private:
  explicit CallCounter(pid_t worker) : worker_(worker) {}
  void turn() const;

  pid_t worker_;
};

}  // namespace tutti::bench
