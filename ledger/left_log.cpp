#include "ledger/left_log.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "core/checksum.h"
#include "core/file_writer.h"
#include "core/texts.h"

namespace tutti {
namespace {

constexpr std::string_view first_word = "left1";

std::string head_text(const LeftLog::Head& head) {
  const std::string words = fmt::format("{} {} {} {} {} {:02x}", first_word, head.boot, head.ledger, head.run,
                                        head.commit.commit, fmt::join(head.commit.hash, ""));
  return words + " " + checksum(words) + "\n";
}

template <class Number>
bool parse(std::string_view text, Number& out, int base = 10) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), out, base);
  return result.ec == std::errc{} && result.ptr == text.data() + text.size();
}

bool parse(std::string_view text, ChainHash::Bytes& out) {
  if (text.size() != out.size() * 2) return false;
  for (std::size_t i = 0; i < out.size(); ++i)
    if (!parse(text.substr(i * 2, 2), out[i], 16)) return false;
  return true;
}

std::optional<LeftLog::Head> head_of(std::string_view line) {
  const auto end = line.rfind(' ');
  if (end == std::string_view::npos || checksum(line.substr(0, end)) != line.substr(end + 1))
    return std::nullopt;
  const auto words = split(line.substr(0, end), " ");
  LeftLog::Head head;
  if (words.size() != 6 || words[0] != first_word || !parse(words[3], head.run) ||
      !parse(words[4], head.commit.commit) || !parse(words[5], head.commit.hash))
    return std::nullopt;
  head.boot = words[1];
  head.ledger = words[2];
  return head;
}

}  // namespace

std::optional<LeftLog::Content> LeftLog::read(const std::filesystem::path& file) {
  const auto text = read_file(file);
  if (!text) return std::nullopt;
  auto lines = split(*text, "\n");
  lines.pop_back();
  if (lines.empty()) return std::nullopt;
  auto head = head_of(lines.front());
  if (!head) return std::nullopt;
  Content out{std::move(*head), {}};
  for (auto line = lines.begin() + 1; line != lines.end(); ++line) {
    if (RequestId id = 0; parse(*line, id)) out.left.insert(id);
  }
  return out;
}

tl::expected<LeftLog, FileError> LeftLog::begin(const std::filesystem::path& file, const Head& head) {
  // A head that is not whole after a crash is as good as that of another start of the machine.
  auto log = SyncedLog::begin(file);
  if (!log) return tl::unexpected(log.error());
  if (auto written = log->write(head_text(head)); !written) return tl::unexpected(written.error());
  return LeftLog{std::move(*log)};
}

bool LeftLog::add(RequestId request) {
  std::array<char, 24> line{};
  char* const end = std::to_chars(line.data(), line.data() + line.size() - 1, request).ptr;
  *end = '\n';
  return log_.write({line.data(), static_cast<std::size_t>(end + 1 - line.data())}).has_value();
}

}  // namespace tutti
