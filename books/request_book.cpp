#include "books/request_book.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace tutti {
namespace {

bool is_new_order(RequestKind kind) {
  return kind == RequestKind::open || kind == RequestKind::entry;
}

}  // namespace

RequestBook::Sent& RequestBook::of(Sender sender) {
  if (sender >= sent_.size()) sent_.resize(sender + std::size_t{1});
  return sent_[sender];
}

SentOrder& RequestBook::add(RequestId id, Sender sender, RequestKind kind) {
  assert(id > last_id());
  SentOrder& added = all_.add();
  added.id = id;
  added.sender = sender;
  added.kind = kind;
  note_sent(added);
  return added;
}

void RequestBook::note_sent(SentOrder& request) {
  request.outcome = SentOrder::Outcome::waiting;
  Sent& sent = of(request.sender);
  sent.alive.push_back(&request);
  if (request.kind == RequestKind::open) sent.last_open = &request;
  if (request.kind == RequestKind::entry) {
    sent.last_entry = &request;
    sent.entries.push_back(&request);
  }
  if (of_entry_window(request.kind)) sent.last_of_entry_window = &request;
}

void RequestBook::restore(const SentOrder& request) {
  assert(request.id > last_id());
  SentOrder& added = all_.add();
  added = request;
  if (request.outcome == SentOrder::Outcome::unknown) of(request.sender).alive.push_back(&added);
  count_unknown(added, 1);
}

SentOrder& RequestBook::revive(const SentOrder& as) {
  const std::size_t place = place_of(as.id);
  assert(place < all_.size() && all_[place].outcome == SentOrder::Outcome::none);
  SentOrder& request = all_[place];
  request = as;
  note_sent(request);
  return request;
}

void RequestBook::count_unknown(const SentOrder& request, int step) {
  if (request.outcome == SentOrder::Outcome::unknown && request.kind != RequestKind::requote)
    unknown_now_ += step;
}

SentOrder* RequestBook::unknown_one(RequestId id) {
  const std::size_t place = place_of(id);
  return place == all_.size() || all_[place].outcome != SentOrder::Outcome::unknown ? nullptr : &all_[place];
}

void RequestBook::hand_over(RequestId id, Sender sender) {
  const std::size_t place = place_of(id);
  if (place == all_.size()) return;
  SentOrder& request = all_[place];
  std::erase(of(request.sender).alive, &request);
  request.sender = sender;
  if (request.outcome == SentOrder::Outcome::unknown) of(sender).alive.push_back(&request);
  if (request.kind == RequestKind::entry) of(sender).entries.push_back(&request);
  if (request.number != 0) of(sender).last[{request.kind, request.number}] = &request;
}

void RequestBook::note_code(SentOrder& request, RequestCode request_code) {
  request.request_code = request_code;
  request.outcome =
      request_code == request::taken ? SentOrder::Outcome::waiting : SentOrder::Outcome::refused;
  note_last(request);
}

void RequestBook::note_dropped(SentOrder& request, NotSent why) {
  request.outcome = SentOrder::Outcome::dropped;
  request.not_sent = why;
  note_last(request);
}

void RequestBook::note_kept(SentOrder& request, SentOrder::Outcome how, NotSent why) {
  request.outcome = how;
  request.not_sent = why;
}

void RequestBook::note_goes(SentOrder& request, std::chrono::milliseconds now) {
  request.outcome = SentOrder::Outcome::waiting;
  request.not_sent = NotSent::nothing;
  // Its answer may be overdue, though later ones have been looked at.
  heard_of(request, now);
  // From now on it is what was asked for its number, so that nobody asks once more.
  note_last(request);
}

void RequestBook::note_last(SentOrder& request) {
  Sent& sent = of(request.sender);
  if (request.settled()) std::erase(sent.alive, &request);
  if (is_new_order(request.kind)) return;
  auto& last = sent.last[{request.kind, request.number}];
  if (last == nullptr || last->settled() || !request.settled()) last = &request;
}

std::size_t RequestBook::place_of(RequestId id) const {
  // By halves, since ids ascend.
  std::size_t first = 0;
  std::size_t end = all_.size();
  while (first < end) {
    const std::size_t middle = first + (end - first) / 2;
    if (all_[middle].id < id) {
      first = middle + 1;
    } else {
      end = middle;
    }
  }
  return first < all_.size() && all_[first].id == id ? first : all_.size();
}

const SentOrder* RequestBook::find(RequestId id) const {
  const std::size_t place = place_of(id);
  return place == all_.size() ? nullptr : &all_[place];
}

SentOrder* RequestBook::named(std::int32_t account, RequestId id) {
  const std::size_t place = place_of(id);
  return place == all_.size() || all_[place].account != account ? nullptr : &all_[place];
}

SentOrder* RequestBook::fitting(Sender sender, const Figures& figures) {
  if (!is_new_order(figures.kind)) {
    return only(sender, figures.kind, [&](const SentOrder& o) {
      // Of a part of a position another part is told.
      const bool other_lots = figures.kind == RequestKind::close && figures.lots > 0.0 &&
                              std::fabs(o.amount - figures.lots) > same_lots;
      return o.number == figures.number && !other_lots;
    });
  }
  const auto& known = of(sender).last;
  if (const auto at = known.find({figures.kind, figures.number}); figures.number != 0 && at != known.end())
    return at->second;
  return only(sender, figures.kind, [&](const SentOrder& o) {
    // What an earlier run has left may be of any symbol as long as nobody here knows which.
    const bool any_symbol = o.symbol == no_symbol && o.outcome == SentOrder::Outcome::unknown;
    return o.number == 0 && !any_symbol && o.symbol == figures.symbol && buys(o.side) == buys(figures.side) &&
           std::fabs(o.amount - figures.lots) <= same_lots;
  });
}

const SentOrder* RequestBook::last(Sender sender, RequestKind kind, std::int64_t number) const {
  const Sent* sent = find_sent(sender);
  if (sent == nullptr) return nullptr;
  const auto at = sent->last.find({kind, number});
  return at == sent->last.end() ? nullptr : at->second;
}

const SentOrder& RequestBook::last_new(Sender sender, RequestKind kind) const {
  static const SentOrder none;
  const Sent* sent = find_sent(sender);
  const SentOrder* out = sent == nullptr              ? nullptr
                         : kind == RequestKind::entry ? sent->last_entry
                                                      : sent->last_open;
  return out == nullptr ? none : *out;
}

bool RequestBook::is_last(const SentOrder& request) const {
  const Sent* sent = find_sent(request.sender);
  if (request.kind == RequestKind::open) return sent->last_open == &request;
  if (of_entry_window(request.kind)) return sent->last_of_entry_window == &request;
  return last(request.sender, request.kind, request.number) == &request;
}

void RequestBook::settle(SentOrder& request, ResultCode result, SentOrder::Outcome outcome,
                         std::int64_t order, std::chrono::milliseconds now) {
  if (outcome == SentOrder::Outcome::unknown && request.kind != RequestKind::requote) ++given_up_;
  count_unknown(request, -1);
  const bool final = request.settled() && request.outcome != SentOrder::Outcome::unknown;
  request.outcome = outcome;
  count_unknown(request, 1);
  // What was thought to be over is not.
  if (final && (outcome == SentOrder::Outcome::unknown || !request.settled()))
    of(request.sender).alive.push_back(&request);
  if (result != ResultCode::none) request.result_code = result;
  // One that was given up, and is with the dealer after all, is waited for again.
  if (!request.settled()) heard_of(request, now);
  Sent& sent = of(request.sender);
  if (order != 0 && is_new_order(request.kind)) {
    request.number = order;
    sent.last[{request.kind, order}] = &request;
  }
  if (!request.settled()) return;
  if (outcome != SentOrder::Outcome::unknown) std::erase(sent.alive, &request);
  const auto slot = sent.last.find({request.kind, request.number});
  if (slot == sent.last.end() || slot->second != &request) return;
  const auto open = std::find_if(sent.alive.rbegin(), sent.alive.rend(), [&](const SentOrder* each) {
    return each->kind == request.kind && each->number == request.number && !each->settled();
  });
  if (open != sent.alive.rend()) slot.value() = *open;
}

bool RequestBook::is_new_execution(Sender sender, const std::string& execution) {
  return execution.empty() || of(sender).executions.insert(execution).second;
}

int RequestBook::unanswered(Sender sender) const {
  const Sent* sent = find_sent(sender);
  if (sent == nullptr) return 0;
  return static_cast<int>(std::count_if(sent->alive.begin(), sent->alive.end(), [](const SentOrder* each) {
    return !each->settled() && each->outcome != SentOrder::Outcome::held &&
           each->kind != RequestKind::requote;
  }));
}

std::vector<SentOrder*> RequestBook::open(Sender sender) const {
  std::vector<SentOrder*> out;
  if (const Sent* sent = find_sent(sender)) {
    std::copy_if(sent->alive.begin(), sent->alive.end(), std::back_inserter(out),
                 [](const SentOrder* each) { return !each->settled(); });
  }
  return out;
}

std::vector<SentOrder*> RequestBook::unknown(Sender sender) const {
  std::vector<SentOrder*> out;
  if (const Sent* sent = find_sent(sender)) {
    std::copy_if(sent->alive.begin(), sent->alive.end(), std::back_inserter(out),
                 [](const SentOrder* each) { return each->outcome == SentOrder::Outcome::unknown; });
  }
  return out;
}

std::vector<SentOrder*> RequestBook::working(Sender sender) const {
  std::vector<SentOrder*> out;
  const Sent* sent = find_sent(sender);
  if (sent == nullptr) return out;
  std::copy_if(sent->entries.begin(), sent->entries.end(), std::back_inserter(out),
               [](const SentOrder* each) { return each->working; });
  return out;
}

std::vector<const SentOrder*> RequestBook::all_unknown() const {
  std::vector<const SentOrder*> out;
  // Asked for with every ticket, and there are hundreds of senders.
  if (unknown_now_ == 0) return out;
  for (const Sent& sent : sent_)
    std::copy_if(sent.alive.begin(), sent.alive.end(), std::back_inserter(out), [](const SentOrder* each) {
      return each->outcome == SentOrder::Outcome::unknown && each->kind != RequestKind::requote;
    });
  return out;
}

void RequestBook::heard_of(SentOrder& request, std::chrono::milliseconds now) {
  request.last_word = now;
  if (!std::exchange(request.heard_of, true)) heard_.push_back(&request);
}

std::vector<SentOrder*> RequestBook::overdue(std::chrono::milliseconds now) {
  std::vector<SentOrder*> out;
  const auto awaited = [](const SentOrder& request) {
    // What was executed in part may stay so for as long as the market wants.
    return !request.settled() && request.has_left() && request.outcome != SentOrder::Outcome::partly;
  };
  for (; looked_at_ < all_.size(); ++looked_at_) {
    SentOrder& request = all_[looked_at_];
    if (request.heard_of || !awaited(request)) continue;
    if (request.last_word + patience_ > now) break;
    out.push_back(&request);
  }
  std::erase_if(heard_, [&](SentOrder* request) {
    if (awaited(*request)) {
      if (request->last_word + patience_ > now) return false;
      out.push_back(request);
    }
    request->heard_of = false;
    return true;
  });
  std::sort(out.begin(), out.end(), [](const SentOrder* a, const SentOrder* b) { return a->id < b->id; });
  return out;
}

}  // namespace tutti
