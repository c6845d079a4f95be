#include "core/lines_from_end.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>

#include "core/file_writer.h"
#include "core/line_reader.h"

namespace tutti {

tl::expected<LinesFromEnd, FileError> LinesFromEnd::open(const std::filesystem::path& file) {
  auto in = Descriptor::open_to_read(file);
  if (!in) return tl::unexpected(in.error());
  struct stat status {};
  if (::fstat(in->get(), &status) != 0) return tl::unexpected(system_failure(file, errno));
  return LinesFromEnd{file, std::move(*in), static_cast<std::uint64_t>(status.st_size)};
}

tl::expected<void, FileError> LinesFromEnd::read(std::size_t bytes,
                                                 const std::function<void(std::string_view line)>& take) {
  if (done()) return {};
  const std::uint64_t start = end_ > bytes ? end_ - bytes : 0;
  std::string room(static_cast<std::size_t>(end_ - start), '\0');
  const ssize_t taken = ::pread(in_.get(), room.data(), room.size(), static_cast<off_t>(start));
  if (taken < 0) return tl::unexpected(system_failure(file_, errno));
  // Somebody made the file shorter: what is gone is not handed out.
  std::string_view text{room.data(), static_cast<std::size_t>(taken)};
  if (start > 0) {
    // It begins within a line; the last end in it may be that of a line which is longer.
    const auto first = text.substr(0, text.empty() ? 0 : text.size() - 1).find('\n');
    if (first == std::string_view::npos) return read(2 * bytes, take);
    text.remove_prefix(first + 1);
    end_ = start + first + 1;
  } else {
    if (text.starts_with(byte_order_mark)) text.remove_prefix(byte_order_mark.size());
    end_ = 0;
  }
  if (text.ends_with('\n')) text.remove_suffix(1);
  while (!text.empty()) {
    const auto before = text.rfind('\n');
    const auto begin = before == std::string_view::npos ? 0 : before + 1;
    take(without_return(text.substr(begin)));
    text = text.substr(0, begin == 0 ? 0 : begin - 1);
  }
  return {};
}

}  // namespace tutti
