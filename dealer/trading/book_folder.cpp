#include "dealer/trading/book_folder.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <system_error>
#include <utility>

#include "core/table_reader.h"
#include "dealer/trading/book_files.h"
#include "dealer/trading/book_text.h"

namespace tutti {
namespace {

namespace fs = std::filesystem;

// A log may always become so long, and as long as the book is.
constexpr std::uint64_t short_log = 256 * 1024;
// Written ahead, so that the file of the numbers is not written with every order.
constexpr std::int64_t numbers_ahead = 1000;
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

}  // namespace

fs::path BookFolder::book_file() const {
  return folder_ / "dealer-book.toml";
}

fs::path BookFolder::log_file() const {
  return folder_ / "dealer-book.log";
}

fs::path BookFolder::numbers_file() const {
  return folder_ / "dealer-numbers.toml";
}

bool BookFolder::holds_book(const fs::path& folder) {
  const BookFolder files{folder};
  std::error_code error;
  return fs::exists(files.book_file(), error) || fs::exists(files.log_file(), error);
}

tl::expected<BookFolder::Content, FileError> BookFolder::read() {
  if (auto numbers = read_numbers(); !numbers) return tl::unexpected(numbers.error());
  return read_book_and_log();
}

tl::expected<BookFolder::Content, FileError> BookFolder::clear() {
  if (auto numbers = read_numbers(); !numbers) return tl::unexpected(numbers.error());
  Content content;
  content.settled = false;
  content.next_number = reserved_;
  // The numbers of a book from before they had a file of their own.
  if (const auto old = read_book_and_log()) {
    content.next_number = old->next_number;
  } else if (reserved_ == 1) {
    content.next_number = number_beyond_texts();
    content.notes.push_back(fmt::format(
        "{}. The fresh book gives numbers from {} on, above all that can be made out in the old one",
        old.error().text(), content.next_number));
  }
  if (auto kept = reserve(content.next_number); !kept) return tl::unexpected(kept.error());
  // The log first: a book without one is whole.
  for (const fs::path& file : {log_file(), book_file()}) {
    std::error_code error;
    fs::remove(file, error);
    if (error) return tl::unexpected(FileError{file, error.message()});
  }
  log_.reset();
  generation_ = 0;
  return content;
}

HistoryState BookFolder::history() const {
  HistoryState all;
  for (const fs::path& file : {book_file(), log_file()})
    for (const BookLine& line : book_lines(read_file(file).value_or(""))) {
      HistoryState found = BookReader::history_in(line);
      std::move(found.requests.begin(), found.requests.end(), std::back_inserter(all.requests));
      std::move(found.fills.begin(), found.fills.end(), std::back_inserter(all.fills));
    }
  return all;
}

std::int64_t BookFolder::number_beyond_texts() const {
  std::int64_t highest = 0;
  for (const fs::path& file : {book_file(), log_file()}) {
    const std::string text = read_file(file).value_or("");
    for (const std::string_view key : {"number = ", "ticket = "}) {
      for (std::size_t at = text.find(key); at != std::string::npos; at = text.find(key, at)) {
        at += key.size();
        std::int64_t number = 0;
        std::from_chars(text.data() + at, text.data() + text.size(), number);
        if (number <= largest / 2) highest = std::max(highest, number);
      }
    }
  }
  return highest + 1 + numbers_ahead;
}

tl::expected<void, FileError> BookFolder::read_numbers() {
  const auto text = read_if_there(numbers_file());
  if (!text) return tl::unexpected(text.error());
  if (!*text) return {};
  std::optional<std::string> fault;
  if (const auto root = parse_toml(**text, fault)) {
    TableReader reader(*root, fault);
    reader.require("next_number");
    reader.integer("next_number", reserved_, 1, largest);
    reader.finish();
  }
  if (fault) return tl::unexpected(FileError{numbers_file(), *fault});
  return {};
}

tl::expected<BookFolder::Content, FileError> BookFolder::read_book_and_log() {
  Content content;
  const auto book = read_if_there(book_file());
  if (!book) return tl::unexpected(book.error());
  const auto log = read_if_there(log_file());
  if (!log) return tl::unexpected(log.error());
  content.next_number = reserved_;

  BookReader reader;
  if (*book) {
    const auto found = reader.read_book(**book);
    if (found.fault) return tl::unexpected(FileError{book_file(), *found.fault});
    generation_ = found.generation;
    book_size_ = (*book)->size();
    if (found.cut != 0) {
      auto note = keep_damaged(book_file(), found, **book);
      if (!note) return tl::unexpected(note.error());
      content.settled = false;
      content.notes.push_back(std::move(*note));
    }
  }
  if (!*book) {
    if (*log && std::count((*log)->begin(), (*log)->end(), '\n') > 1)
      return tl::unexpected(FileError{
          log_file(), "line 2: the book that it goes with is missing: put it back, or start with --fresh"});
    return content;
  }
  bool fresh_log = false;
  if (*log) {
    const auto found = reader.read_log(**log, generation_);
    if (found.fault) return tl::unexpected(FileError{log_file(), *found.fault});
    if (found.cut != 0) {
      auto note = keep_damaged(log_file(), found, **log);
      if (!note) return tl::unexpected(note.error());
      content.settled = false;
      content.notes.push_back(std::move(*note));
    }
    fresh_log = found.generation == generation_ && found.entries == 0 && content.settled;
  }
  content.next_number = std::max(reserved_, reader.state().next_number);
  content.state = std::move(reader.state());
  if (fresh_log) {
    auto opened = SyncedLog::open(log_file());
    if (!opened) return tl::unexpected(opened.error());
    log_.emplace(std::move(*opened));
    pieces_ = 0;
  }
  return content;
}

tl::expected<void, FileError> BookFolder::replace(const BookState& state) {
  const std::string text = book_text::book(state, generation_ + 1);
  log_.reset();
  if (auto written = replace_file(book_file(), text); !written) return written;
  ++generation_;
  book_size_ = text.size();
  if (auto written = replace_file(log_file(), book_text::log_head(generation_)); !written) return written;
  auto opened = SyncedLog::open(log_file());
  if (!opened) return tl::unexpected(opened.error());
  log_.emplace(std::move(*opened));
  pieces_ = 0;
  return {};
}

tl::expected<void, FileError> BookFolder::append(const std::vector<BookEntry>& entries) {
  std::string lines;
  BookPiece piece{pieces_ + 1, 0, static_cast<std::int64_t>(entries.size())};
  for (const BookEntry& entry : entries) {
    ++piece.line;
    lines += book_text::entry(entry, piece);
  }
  auto written = log_->append(lines);
  if (written) ++pieces_;
  return written;
}

bool BookFolder::wants_replacing() const {
  return !log_ || log_->broken() || log_->size() > std::max(short_log, book_size_);
}

tl::expected<void, FileError> BookFolder::reserve(std::int64_t next_number, bool exactly) {
  if (exactly ? next_number == reserved_ : next_number <= reserved_) return {};
  const std::int64_t wanted =
      exactly ? next_number : next_number + std::min(numbers_ahead, largest - next_number);
  auto written = replace_file(numbers_file(),
                              fmt::format("# The next order number of the dealing server. No number is ever "
                                          "given twice.\nnext_number = {}\n",
                                          wanted));
  if (written) reserved_ = wanted;
  return written;
}

}  // namespace tutti
