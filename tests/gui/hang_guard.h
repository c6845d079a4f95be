#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

namespace tutti::testing {

// Ends the program when a test hangs, such as one behind a modal box that nobody answers.
class HangGuard final : public ::testing::EmptyTestEventListener {
 public:
  void OnTestStart(const ::testing::TestInfo&) override { alarm(limit_seconds); }
  void OnTestEnd(const ::testing::TestInfo&) override { alarm(0); }

 private:
  static constexpr unsigned limit_seconds = 40;
};

}  // namespace tutti::testing
