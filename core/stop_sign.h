#pragma once

#include <filesystem>
#include <string_view>
#include <utility>

#include <tl/expected.hpp>

#include "core/file_error.h"

namespace tutti {

// Whether trading is stopped. It is asked before each request leaves.
class StopSign {
 public:
  static constexpr std::string_view file_name = "stop";

  virtual ~StopSign() = default;
  virtual bool stopped() const = 0;
  // Stops at once, in this run even where it fails. `why`: a line for who finds the sign.
  virtual tl::expected<void, FileError> set(std::string_view why) = 0;
  // Where it fails it stays.
  virtual tl::expected<void, FileError> clear() = 0;
};

// A file in the home folder: anybody may make it, with or without the folder's lock, and it outlives the
// program and the machine. What can't be looked at counts as there.
class StopFile final : public StopSign {
 public:
  explicit StopFile(const std::filesystem::path& home) : file_(home / file_name) {}

  bool stopped() const override;
  tl::expected<void, FileError> set(std::string_view why) override;
  tl::expected<void, FileError> clear() override;

 private:
  std::filesystem::path file_;
  bool held_ = false;  // in this run, with or without the file
};

// Keeps nothing: for whoever measures or tests, and has no folder.
class UnkeptStop final : public StopSign {
 public:
  bool stopped() const override { return stopped_; }
  tl::expected<void, FileError> set(std::string_view) override {
    stopped_ = true;
    return {};
  }
  tl::expected<void, FileError> clear() override {
    stopped_ = false;
    return {};
  }

 private:
  bool stopped_ = false;
};

}  // namespace tutti
