#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>
#include <utility>

#include <tl/expected.hpp>

#include "core/descriptor.h"
#include "core/file_error.h"

namespace tutti {

// Hands out the lines of a text file from the last one to the first, without their ends, piece by piece; so
// the file may be of any size. What is added to the file after it was opened is left out.
class LinesFromEnd {
 public:
  static tl::expected<LinesFromEnd, FileError> open(const std::filesystem::path& file);

  // All lines were handed out.
  bool done() const { return end_ == 0; }
  // The whole lines in the next so many bytes; of a longer line, that one.
  tl::expected<void, FileError> read(std::size_t bytes,
                                     const std::function<void(std::string_view line)>& take);

 private:
  LinesFromEnd(std::filesystem::path file, Descriptor in, std::uint64_t end)
      : file_(std::move(file)), in_(std::move(in)), end_(end) {}

  std::filesystem::path file_;
  Descriptor in_;
  std::uint64_t end_;  // of what is still to be handed out, in bytes from the start
};

}  // namespace tutti
