#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <tl/expected.hpp>

#include "core/file_writer.h"
#include "core/synced_log.h"
#include "dealer/trading/book_reader.h"

namespace tutti {

// The files of the book in a folder: the book itself, the log of what changed since it was written, and the
// next number, which outlives both. All of it is on the disk when a call returns.
//
// A new book has a higher generation than its log, so that a crash between the two leaves a log that is known
// to be in the book already.
class BookFolder {
 public:
  // What is there: nothing in a folder without a book.
  struct Content {
    std::optional<BookState> state;
    std::int64_t next_number = 1;    // no lower number may be given
    bool settled = true;             // false: the files are not what they should be, and to be replaced
    std::vector<std::string> notes;  // what was damaged and is left out, for the operator
  };

  explicit BookFolder(std::filesystem::path folder) : folder_(std::move(folder)) {}

  std::filesystem::path book_file() const;
  // True when there is something that a fresh start would throw away.
  static bool holds_book(const std::filesystem::path& folder);
  // Before anything else. Changes no file, but for a copy of one that is damaged.
  tl::expected<Content, FileError> read();
  // All that book and log have of requests and fills, even where they can't be read as a whole. Changes
  // nothing.
  HistoryState history() const;
  // In place of read(): forgets book and log, damaged or not, but for the numbers they gave.
  tl::expected<Content, FileError> clear();

  // Writes a new book, and a new log behind it.
  tl::expected<void, FileError> replace(const BookState& state);
  // Adds entries to the log, in one piece.
  tl::expected<void, FileError> append(const std::vector<BookEntry>& entries);
  // True when the book has to be replaced before the next append: there is none, its log can't be written any
  // more, or has become longer than is good.
  bool wants_replacing() const;
  // Has to be called before a number from `next_number` on is told to anybody. `exactly`: nothing more is
  // given in this run.
  tl::expected<void, FileError> reserve(std::int64_t next_number, bool exactly = false);

 private:
  std::filesystem::path log_file() const;
  std::filesystem::path numbers_file() const;
  tl::expected<void, FileError> read_numbers();
  // Above every number that stands in book and log, whether they can be read or not.
  std::int64_t number_beyond_texts() const;
  tl::expected<Content, FileError> read_book_and_log();

  std::filesystem::path folder_;
  std::optional<SyncedLog> log_;
  std::int64_t generation_ = 0;  // of the book in the folder; 0: none, or one without a log
  std::uint64_t book_size_ = 0;
  std::int64_t pieces_ = 0;    // in the log
  std::int64_t reserved_ = 1;  // as the file has it
};

}  // namespace tutti
