#pragma once

#include <chrono>
#include <cstdint>

#include "books/symbol_collection.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/entry_order.h"
#include "sessions/contract/request_id.h"

namespace tutti {

enum class RequestKind : std::uint8_t {
  open,     // market order
  close,    // of a position, or of a part of it
  cancel,   // of an entry order, or of the SL/TP order of a position
  entry,    // new entry order
  update,   // of an entry order
  stops,    // SL/TP of a position
  requote,  // the operator's answer to a new price
};

// What the entry order window sends.
inline bool of_entry_window(RequestKind kind) {
  return kind == RequestKind::entry || kind == RequestKind::update || kind == RequestKind::stops;
}

// Why a request has not left, or had not.
enum class NotSent : std::uint8_t {
  nothing,         // it has
  not_stored,      // the ledger could not
  stored_late,     // the ledger took too long
  not_noted,       // that it leaves could not be noted
  account_gone,    // its connection was over first
  stopped,         // trading is stopped
  limit,           // its ticket is over a limit
  unknown_before,  // nobody knows what became of an earlier one of the account and symbol
  turn,            // too many leave in this second
  home_lacks,      // the server has taken requests of the account that the ledger lacks
  market,          // the quote was too old, or the price had gone, as it was about to leave
};

// Number of a session, given once and good for the whole run; 0 is none.
using Sender = std::uint32_t;

// A request: what was sent, what the request answered, and what became of it.
struct SentOrder {
  enum class Outcome : std::uint8_t {
    none,      // nothing was sent
    refused,   // the request was not taken, or the result is a refusal
    waiting,   // taken, no result yet
    pending,   // the dealer has it
    partly,    // executed in part, the rest is still alive
    accepted,  // executed
    held,      // it is over a limit, and leaves when the operator says so
    queued,    // it leaves when its turn comes
    dropped,   // it was not sent after all
    unknown,   // nobody knows: no word came for long, or the connection was lost before the result
  };

  std::int64_t number = 0;  // order or ticket; of a new order known once a result told it
  double amount = 0.0;      // lots
  double price = 0.0;       // of an entry order
  double filled = 0.0;      // lots, as reported so far
  RequestId id = 0;
  RequestId retry_of = 0;        // the one that is sent again with it, 0 none
  BookEra era = 0;               // of the server's book when it was sent
  std::int64_t stops_order = 0;  // of stops: the SL/TP order that the position had when they were sent
  // Greatest number of a position or order that the account had when it was stored; below 0: not known.
  std::int64_t greatest_before = -1;
  StopPrices stops{};                      // of an entry order, an update, and stops
  std::chrono::milliseconds last_word{0};  // when it was sent or last heard of; of the clock's elapsed time
  SymbolHandle symbol = no_symbol;
  std::int32_t symbol_id = 0;  // of a new order: the account's own number of the symbol
  Operation side{};
  RequestCode request_code{};
  ResultCode result_code{};  // 0 until a result came
  int round = 0;             // the sender's own mark, handed back with the outcome
  Sender sender = 0;
  std::int32_t account = 0;
  RequestKind kind = RequestKind::open;
  Outcome outcome = Outcome::none;
  NotSent not_sent = NotSent::nothing;
  bool heard_of = false;           // the broker said a word since it was sent; the book's own
  bool stops_of_position = false;  // of a cancel: of the SL/TP of a position
  bool accepts = false;            // of an answer to a requote
  bool working = false;            // of an entry order: it waits, as far as is known
  bool conflict = false;           // an answer contradicted what was known of it for good

  // Nothing more is expected of it. A late word may still come for one that is unknown.
  bool settled() const {
    return has_left() && outcome != Outcome::waiting && outcome != Outcome::pending &&
           outcome != Outcome::partly;
  }
  // It was refused or not sent, as far as is known, and nothing of it was filled.
  bool had_no_effect() const {
    return (outcome == Outcome::refused || outcome == Outcome::dropped) && filled == 0.0;
  }
  // It is not kept back any more.
  bool has_left() const { return outcome != Outcome::held && outcome != Outcome::queued; }

  // What a result code says.
  static Outcome outcome_of(ResultCode result_code) {
    return result_code == result::succeeded ? Outcome::accepted : Outcome::refused;
  }
};

}  // namespace tutti
