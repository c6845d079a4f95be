#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tsl/robin_map.h>

#include "ledger/entries.h"
#include "ledger/ledger_file.h"

namespace tutti {

// Writes what the terminal tells into the ledger's tables, and keeps the sums besides right. Everything is to
// be called between `begin` and `commit` of the file, and throws as the file does; what is not committed then
// is forgotten with this object.
class LedgerBook {
 public:
  // `by`: the program that sends.
  LedgerBook(LedgerFile& file, std::string by) : file_(file), by_(std::move(by)) {}

  // Who sends under a number; a row is made with the first request.
  void know(Sender sender, const LedgerAccount& account);
  // Answers the number of its ticket, to go on with.
  std::int64_t add_ticket(const LedgerTicket& ticket, std::size_t planned, TimePoint time);
  void add_requests(std::int64_t ticket, const std::vector<LedgerRequest>& requests);
  void add_event(const LedgerEvent& event);
  // Requests that are neither final nor working, with what was heard of them last; "STORED" with no event.
  struct Open {
    RequestId id = 0;
    std::string state;
    std::string kind;
    bool has_event = false;
  };
  std::vector<Open> unanswered();
  // Runs have numbers, each greater than those before; one that stores nothing has no row.
  void add_run(std::int64_t number, const std::string& boot, TimePoint time);
  std::int64_t last_run();
  // The operator goes on although the ledger lacks so many more requests of the account than it knew of.
  void accept_missing(Sender sender, std::int64_t requests);

 private:
  // What the requests of a ticket are counted by.
  struct Outcome {
    std::string state;
    std::string reason;
    std::int64_t code = 0;
    bool operator==(const Outcome&) const = default;
  };
  struct Known {
    RequestId id = 0;
    std::int64_t ticket = 0;
    std::int64_t account = 0;
    bool requote = false;  // an answer to one
    Outcome outcome;       // now
  };

  std::int64_t account_of(Sender sender);
  std::int64_t number(const std::string& sql);
  std::optional<Known> find(const LedgerEvent& event);
  void note_state(const Known& request, const LedgerEvent& event);
  void count(std::int64_t ticket, const Outcome& outcome, std::int64_t step);
  // Of those that have left, as far as is known.
  void count_left(std::int64_t account, std::int64_t step);
  void add_fill(const LedgerEvent& event, const std::optional<Known>& request);
  void count_fill(std::int64_t ticket, double lots, double price, int price_digits);

  LedgerFile& file_;
  std::string by_;
  tsl::robin_map<Sender, LedgerAccount> senders_;
  tsl::robin_map<Sender, std::int64_t> accounts_;  // their numbers in the file
};

}  // namespace tutti
