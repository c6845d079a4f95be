#include "dealer/trading/book_lines.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "core/checksum.h"
#include "core/table_reader.h"

namespace tutti {
namespace {

// Whether a line was written to its end and is still what was written. A line that somebody changed by hand
// has no checksum; a part of a line has no end.
bool undamaged(std::string_view line, bool ended) {
  const auto mark = line.rfind(book_text::checksum_mark);
  const bool marked = mark != std::string_view::npos &&
                      line.size() == mark + book_text::checksum_mark.size() + book_text::checksum_size;
  return marked ? line.substr(mark + book_text::checksum_mark.size()) == checksum(line.substr(0, mark))
                : ended;
}

BookPiece piece_of(const toml::table& table) {
  BookPiece piece;
  const toml::array* marks = table["entry"]["piece"].as_array();
  if (marks == nullptr || marks->size() != 3) return piece;
  piece.number = (*marks)[0].value_or<std::int64_t>(0);
  piece.line = (*marks)[1].value_or<std::int64_t>(0);
  piece.lines = (*marks)[2].value_or<std::int64_t>(0);
  const bool fits = piece.number > 0 && piece.line > 0 && piece.line <= piece.lines;
  return fits ? piece : BookPiece{};
}

}  // namespace

std::vector<BookLine> book_lines(std::string_view content) {
  std::vector<BookLine> lines;
  for (std::size_t at = 0, number = 1; at < content.size(); ++number) {
    const auto end = content.find('\n', at);
    const bool ended = end != std::string_view::npos;
    const std::string_view text = content.substr(at, ended ? end - at : end);
    at = ended ? end + 1 : content.size();
    if (ended && (text.empty() || text == "\r" || text.front() == '#')) continue;
    BookLine& line = lines.emplace_back();
    line.number = number;
    std::optional<std::string> unreadable;
    if (undamaged(text, ended)) line.table = parse_toml(text, unreadable, number - 1);
    if (line.table)
      line.piece = piece_of(*line.table);
    else
      line.fault = unreadable ? *unreadable : fmt::format("line {}: is damaged", number);
  }
  return lines;
}

tl::expected<std::size_t, std::string> lines_that_count(const std::vector<BookLine>& lines) {
  const auto whole = [](const BookLine& line) { return line.table.has_value(); };
  const auto begin = lines.begin(), end = lines.end();
  const auto damaged = std::find_if_not(begin, end, whole);
  const BookPiece before = damaged == begin ? BookPiece{} : std::prev(damaged)->piece;
  const bool within = before.line < before.lines;  // a piece that began in front of the damage
  auto cut = damaged;
  while (within && cut != begin && std::prev(cut)->piece.number == before.number)
    --cut;
  const auto kept = static_cast<std::size_t>(cut - begin);
  if (damaged == end) return kept;

  // All the rest must be of that piece, or of the one that follows it.
  const auto behind = std::find_if(damaged, end, whole);
  const std::int64_t number = within ? before.number : before.number + 1;
  const std::int64_t room = within ? before.lines - before.line : behind != end ? behind->piece.lines : 1;
  const bool last = std::all_of(
      behind, end, [&](const BookLine& line) { return !line.table || line.piece.number == number; });
  const bool head = damaged == begin && lines.size() > 1;
  if (head || !last || end - damaged > room) return tl::unexpected(damaged->fault);
  return kept;
}

}  // namespace tutti
