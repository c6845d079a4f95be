#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tsl/robin_map.h>
#include <tsl/robin_set.h>

#include "books/record_blocks.h"
#include "books/sent_order.h"
#include "sessions/contract/codes.h"

namespace tutti {

// Every request of this run, and what became of it. The gate writes what leaves, sessions what is answered;
// everybody reads. Records stay where they are for the whole run.
class RequestBook {
 public:
  // Amounts that differ by no more are the same one, written in another way.
  static constexpr double same_lots = 1e-8;

  // What an answer without an id says of the request it means.
  struct Figures {
    RequestKind kind = RequestKind::open;
    std::int64_t number = 0;  // 0: not told, or not known here
    SymbolHandle symbol = no_symbol;
    Operation side{};   // of which only the side counts
    double lots = 0.0;  // 0: not told
  };

  // Takes in a request that is about to leave, to be filled where it stands. Its id is greater than every one
  // before, and it is sent no earlier.
  SentOrder& add(RequestId id, Sender sender, RequestKind kind);
  // So long after the broker's last word a request without a result is unknown; 30 s at first.
  void set_patience(std::chrono::milliseconds patience) { patience_ = patience; }
  // So many that come next find their room made. To be called while nobody waits.
  void make_room(std::size_t count) { all_.make_room(count); }
  // Takes in a request of an earlier run, of no sender, before any that is added: unknown, with the outcome
  // `none` when it never left, or an entry order that works. Ids ascend.
  void restore(const SentOrder& request);
  // One that never left is about to after all; `as` has its id, sender and terms.
  SentOrder& revive(const SentOrder& as);
  // A request that was taken in so is this sender's from now on; it is none of what he sent last.
  void hand_over(RequestId id, Sender sender);
  // What the call that sent it answered. Of a repetition that is refused what is on its way stays the last.
  void note_code(SentOrder& request, RequestCode request_code);
  // It was not sent, and won't be.
  void note_dropped(SentOrder& request, NotSent why);
  // It is kept back, `held` or `queued`, and whether it may go after all.
  void note_kept(SentOrder& request, SentOrder::Outcome how, NotSent why);
  void note_goes(SentOrder& request, std::chrono::milliseconds now);

  const SentOrder* find(RequestId id) const;
  // The greatest there is; 0 when there is none.
  RequestId last_id() const { return all_.size() == 0 ? 0 : all_[all_.size() - 1].id; }
  // The one of an account that this id names, whichever of its sessions sent it; nullptr when there is none.
  SentOrder* named(std::int32_t account, RequestId id);
  // The one that these figures fit, of those that have no result; nullptr when there is none, or more than
  // one: then nobody knows which was meant, and all of them stay as they are. What was told for a number
  // before belongs to that number's request.
  SentOrder* fitting(Sender sender, const Figures& figures);
  // The only one of a kind without a result for which `meant` holds; nullptr when there is none, or more.
  template <class Meant>
  SentOrder* only(Sender sender, RequestKind kind, Meant&& meant) {
    SentOrder* out = nullptr;
    for (SentOrder* each : alive(sender)) {
      if (each->kind != kind || !each->has_left() || !meant(*each)) continue;
      if (out != nullptr) return nullptr;
      out = each;
    }
    return out;
  }
  // The last of a kind for an order or ticket; what is on its way comes before what is settled.
  const SentOrder* last(Sender sender, RequestKind kind, std::int64_t number) const;
  // The last market order (entry order) of a sender; its outcome is `none` when there is none.
  const SentOrder& last_new(Sender sender, RequestKind kind) const;

  // No later request of the sender has taken its place in the window that it was sent from: market orders
  // have one, what the entry order window sends another, closes and cancels one for each number.
  bool is_last(const SentOrder& request) const;
  // What became of it. `order` is the number it is known by from now on, 0: as before.
  void settle(SentOrder& request, ResultCode result, SentOrder::Outcome outcome, std::int64_t order,
              std::chrono::milliseconds now);
  // An answer contradicts what is known of it for good; to be settled with what it says.
  void note_conflict(SentOrder& request) {
    if (!std::exchange(request.conflict, true)) ++conflicts_;
  }
  int conflicts() const { return conflicts_; }
  // The broker has it, and said so.
  void heard_of(SentOrder& request, std::chrono::milliseconds now);
  // False for a fill that was told before.
  bool is_new_execution(Sender sender, const std::string& execution);

  // Without a result, but for what is held; answers to requotes don't count, which end with the order they
  // are for.
  int unanswered(Sender sender) const;
  // How many nobody knows the outcome of, of those of a sender for which `counted` holds.
  template <class Counted>
  int unknown(Sender sender, Counted&& counted) const {
    const Sent* sent = find_sent(sender);
    if (sent == nullptr) return 0;
    return static_cast<int>(std::count_if(sent->alive.begin(), sent->alive.end(), [&](const SentOrder* each) {
      return each->outcome == SentOrder::Outcome::unknown && counted(*each);
    }));
  }
  // How many nobody knows the outcome of, earlier runs and accounts that are not listed included; answers to
  // requotes don't count.
  int unknown_now() const { return unknown_now_; }
  // The one with this id, if nobody knows its outcome; nullptr when that is known, or there is none.
  SentOrder* unknown_one(RequestId id);
  // How many became unknown since this was asked last; answers to requotes don't count.
  int take_given_up() { return std::exchange(given_up_, 0); }
  // Those of a sender without a result, oldest first; and those that nobody knows the outcome of.
  std::vector<SentOrder*> open(Sender sender) const;
  std::vector<SentOrder*> unknown(Sender sender) const;
  // Entry orders of his that work, as far as is known.
  std::vector<SentOrder*> working(Sender sender) const;
  // Of all senders, and of none; answers to requotes don't count.
  std::vector<const SentOrder*> all_unknown() const;
  // Those without a word for too long, oldest first.
  std::vector<SentOrder*> overdue(std::chrono::milliseconds now);

 private:
  using Slot = std::pair<RequestKind, std::int64_t>;
  struct SlotHash {
    std::size_t operator()(const Slot& slot) const {
      return std::hash<std::int64_t>{}(slot.second * 8 + static_cast<std::int64_t>(slot.first));
    }
  };
  struct Sent {
    std::vector<SentOrder*> alive;  // without a result, or unknown; oldest first
    SentOrder* last_open = nullptr;
    SentOrder* last_entry = nullptr;
    SentOrder* last_of_entry_window = nullptr;  // a new order, an update, or the stops of a position
    std::vector<SentOrder*> entries;            // entry orders, oldest first
    tsl::robin_map<Slot, SentOrder*, SlotHash> last;
    tsl::robin_set<std::string> executions;
  };

  Sent& of(Sender sender);
  // It is on its way: the last of its sender.
  void note_sent(SentOrder& request);
  // It has left, or not: of its number it is the last now, unless an earlier one is still on its way.
  void note_last(SentOrder& request);
  const Sent* find_sent(Sender sender) const { return sender < sent_.size() ? &sent_[sender] : nullptr; }
  std::vector<SentOrder*>& alive(Sender sender) { return of(sender).alive; }

  void count_unknown(const SentOrder& request, int step);
  // As many as there are when there is none.
  std::size_t place_of(RequestId id) const;

  RecordBlocks<SentOrder> all_;  // ids ascend
  std::chrono::milliseconds patience_{30'000};
  int given_up_ = 0;
  int unknown_now_ = 0;
  int conflicts_ = 0;
  std::vector<Sent> sent_;         // by sender
  std::size_t looked_at_ = 0;      // those before it were looked at since they are due
  std::vector<SentOrder*> heard_;  // what the broker has said a word about, and may be without a result
};

}  // namespace tutti
