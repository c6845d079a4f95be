#pragma once

#include <execinfo.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

namespace tutti::testing {

// Ends a test that hangs, such as one behind a modal box that nobody answers, with the stack it hangs in.
class HangGuard final : public ::testing::EmptyTestEventListener {
 public:
  void OnTestStart(const ::testing::TestInfo&) override {
    signal(SIGALRM, [](int) {
      void* frames[64];
      backtrace_symbols_fd(frames, backtrace(frames, 64), STDERR_FILENO);
      _exit(124);
    });
    alarm(limit_seconds);
  }
  void OnTestEnd(const ::testing::TestInfo&) override { alarm(0); }

 private:
  static constexpr unsigned limit_seconds = 40;
};

}  // namespace tutti::testing
