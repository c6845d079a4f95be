#include "core/line_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "core/descriptor.h"
#include "core/file_writer.h"

namespace tutti {
namespace {

constexpr std::size_t first_room = 64u << 10;  // bytes

}  // namespace

tl::expected<void, FileError> read_lines(const std::filesystem::path& file,
                                         const std::function<void(std::string_view line)>& take) {
  const auto in = Descriptor::open_to_read(file);
  if (!in) return tl::unexpected(in.error());
  std::vector<char> room(first_room);
  std::size_t held = 0;  // the beginning of a line whose end is still to come
  for (bool at_start = true;; at_start = false) {
    if (held == room.size()) room.resize(2 * room.size());
    const auto taken = in->read(room.data() + held, room.size() - held);
    if (!taken) return tl::unexpected(system_failure(file, errno));
    std::string_view text{room.data(), held + *taken};
    if (at_start && text.starts_with(byte_order_mark)) text.remove_prefix(byte_order_mark.size());
    for (auto end = text.find('\n', at_start ? 0 : std::min(held, text.size()));
         end != std::string_view::npos; end = text.find('\n')) {
      take(without_return(text.substr(0, end)));
      text.remove_prefix(end + 1);
    }
    if (*taken == 0) {
      if (!without_return(text).empty()) take(without_return(text));
      return {};
    }
    std::memmove(room.data(), text.data(), text.size());
    held = text.size();
  }
}

}  // namespace tutti
