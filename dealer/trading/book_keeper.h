#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <tl/expected.hpp>

#include "core/clock.h"
#include "core/file_writer.h"
#include "dealer/config/dealer_config.h"
#include "dealer/market/market.h"
#include "dealer/trading/book_folder.h"
#include "dealer/trading/book_state.h"
#include "dealer/trading/history_file.h"
#include "dealer/trading/order_desk.h"
#include "dealer/trading/trade_recorder.h"
#include "dealer/trading/trading_account.h"

namespace tutti {

// Keeps the book of a server in a folder: takes up what an earlier run left, and stores what happens, a group
// at a time, before anybody is told.
//
// What is stored is not what was done but what came of it: accounts that were touched are compared with what
// the files hold.
class BookKeeper {
 public:
  // Keeps references to all. Until a folder is open, nothing is kept and nothing costs anything.
  BookKeeper(const DealerConfig& config, const Market& market, std::vector<TradingAccount>& accounts,
             OrderDesk& desk, TradeRecorder& recorder, TimePoint& next_rollover);

  // As DealingServer::keep_book.
  tl::expected<std::vector<std::string>, FileError> open(const std::filesystem::path& folder, bool fresh,
                                                         TimePoint now);
  bool is_open() const { return folder_.has_value(); }

  // Makes everything last that has happened; true when nothing is left to be stored. After a failure it does
  // not try again before next_try().
  bool store(TimePoint now);
  // Why the last attempt failed; nothing while all is well.
  const std::optional<FileError>& failure() const { return failure_; }
  TimePoint next_try() const { return next_try_; }
  // How often the book or its log was written.
  std::uint64_t stores() const { return stores_; }

  // The era of the book, whether it is kept or not; never 0.
  BookEra era() const { return era_; }

  // As DealingServer::save_book.
  tl::expected<void, FileError> save();

 private:
  // Takes up requests and fills: those that are filed, and those that only the book has.
  void restore_history(HistoryFile::Content& filed, HistoryState stored, TimePoint now);
  tl::expected<void, FileError> rewrite_history(HistoryFile& file);
  // What the book holds that this server can't have.
  std::optional<std::string> misfit(const BookState& state) const;
  void restore(BookState state, std::int64_t next_number, TimePoint now);
  bool configured(std::int32_t account) const { return places_.contains(account); }
  // What became different since the last store, per account, or in one piece where it must not be torn.
  std::vector<BookEntry> changes() const;
  tl::expected<void, FileError> append();
  tl::expected<void, FileError> replace();
  // The files hold what the server has.
  void note_stored();

  const DealerConfig& config_;
  const Market& market_;
  std::vector<TradingAccount>& accounts_;
  OrderDesk& desk_;
  TradeRecorder& recorder_;
  RequestHistory& history_;
  TimePoint& next_rollover_;
  std::map<std::int32_t, std::size_t> places_;  // in accounts_, by number

  BookEra era_;
  std::optional<BookFolder> folder_;
  std::optional<HistoryFile> history_file_;
  BookState absent_;  // what the book holds of accounts that are not configured in this run
  // What the files hold; accounts by their place in accounts_.
  std::vector<BookState::Account> stored_accounts_;
  std::map<std::int64_t, TradeRequest> stored_requests_;
  std::int64_t stored_number_ = 0;
  TimePoint stored_rollover_{};
  std::uint64_t stored_revision_ = 0;
  bool logged_ = false;  // something stands in the log only

  std::optional<FileError> failure_;
  TimePoint next_try_{};
  std::uint64_t stores_ = 0;
};

}  // namespace tutti
