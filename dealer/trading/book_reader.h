#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "core/table_reader.h"
#include "dealer/trading/book_lines.h"
#include "dealer/trading/book_state.h"

namespace tutti {

// Puts the state together from a book and the entries of its log. Anything that is missing, out of range, not
// finite or given twice is a fault that names the line. Whether accounts and symbols exist is for the caller
// to judge.
class BookReader {
 public:
  // What a file that was read came to. Either it is whole, or the last line or the last piece was damaged and
  // everything in front of that counts, or there is a fault and nothing counts.
  struct Outcome {
    std::optional<std::string> fault;
    std::size_t cut = 0;      // number of the first line that is left out; 0: the file is whole
    std::size_t cut_end = 0;  // and of the last one
    std::int64_t generation = 0;
    TimePoint since{};   // of the file of requests and fills: from when on fills are there
    bool stale = false;  // a log of an earlier book than the one that was read: nothing of it counts
    std::size_t entries = 0;
  };

  // The book first, then the log that goes with it.
  Outcome read_book(std::string_view content);
  Outcome read_log(std::string_view content, std::int64_t generation);
  // The file of requests and fills, which stands apart.
  Outcome read_history(std::string_view content) { return read_lines(content, "requests", 0); }
  // What a line of any of the three has of requests and fills, as far as it can be read.
  static HistoryState history_in(const BookLine& line);

  BookState& state() { return state_; }

 private:
  enum class Thing { position, order, request };
  struct Place {
    Thing thing = Thing::request;
    std::int32_t account = 0;
  };

  // A file as one table with everything, from before there was a log; it has no checksums.
  void read_whole(const toml::table& root);
  // Reads the lines that count. `head` is the key of the first one.
  Outcome read_lines(std::string_view content, std::string_view head, std::int64_t generation);
  void read_head(const toml::table& table, std::string_view key, Outcome& outcome, std::int64_t& entries);
  void read_line(const BookLine& line);
  void read_entry(TableReader& reader);
  void read_account(const toml::table& table);
  void read_position(const toml::table& table);
  void read_pending(const toml::table& table);
  void read_request(const toml::table& table);
  void read_era(TableReader& reader);
  void read_history_texts(TableReader& reader);
  void read_order(TableReader& reader, std::int32_t& account, Operation& side, std::string& symbol,
                  double& amount);
  void check_waiting(TableReader& reader, const PendingOrder& order);
  // False with a fault when the number can't be given to this; else notes that it is.
  bool give(TableReader& reader, std::string_view key, std::int64_t number, Place place);
  void remove(TableReader& reader, std::int64_t number);
  BookState::Account& account(std::int32_t number) { return state_.accounts[accounts_.at(number)]; }

  BookState state_;
  std::optional<std::string> fault_;
  bool changing_ = false;  // what is there already may come again, in place of itself
  std::size_t lines_before_ = 0;
  std::map<std::int32_t, std::size_t> accounts_;  // places in the state
  std::map<std::int64_t, Place> numbers_;
};

}  // namespace tutti
