#include "orders/round_retry.h"

#include <algorithm>
#include <map>
#include <utility>

namespace tutti {
namespace {

// `ids` ascend.
bool may_go(const TicketRequest& request, const std::vector<RequestId>& ids) {
  return request.may_be_retried() && std::binary_search(ids.begin(), ids.end(), request.id);
}

}  // namespace

RoundRetry::RoundRetry(const Clock& clock, Round round) : clock_(clock), round_(std::move(round)) {
  button.set_enabled(false);
  button.set_visible(false);
  button.on_click = [this] { press(); };
}

void RoundRetry::attach(TicketRetry& retry, LedgerReads* reads) {
  retry_ = &retry;
  reads_ = reads;
}

void RoundRetry::poll() {
  if (reads_ == nullptr || clock_.elapsed() - looked_at_ < pause_) return;
  looked_at_ = clock_.elapsed();
  look();
}

std::vector<RequestId> RoundRetry::without_effect() const {
  std::vector<RequestId> out;
  for (const SentOrder* each : round_())
    if (each->had_no_effect() && !retry_->was_sent_again(each->id)) out.push_back(each->id);
  std::sort(out.begin(), out.end());
  return out;
}

void RoundRetry::look() {
  std::vector<RequestId> ids = without_effect();
  if (ids.empty()) requests_.clear();
  const auto ready = std::count_if(requests_.begin(), requests_.end(),
                                   [&](const TicketRequest& each) { return may_go(each, ids); });
  button.set_enabled(ready > 0);
  // While there is nothing to send again the window has the room.
  button.set_visible(ready > 0);
  // What is told a moment ago is stored a moment later; what can't be stored is asked for less and less.
  const bool wanting = static_cast<std::size_t>(ready) < ids.size();
  pause_ = wanting && ids == wanted_ ? std::min(2 * pause_, longest_pause) : interval;
  wanted_ = ids;
  if (wanting && !asked_) read(std::move(ids));
}

void RoundRetry::read(std::vector<RequestId> requests) {
  asked_ = true;
  reads_->ask(
      [this, requests = std::move(requests)](LedgerQueries& ledger) -> LedgerReads::Show {
        return [this, found = ledger.with_tickets_of(requests)]() mutable {
          asked_ = false;
          requests_ = std::move(found);
        };
      },
      // The board says why; here it is tried again.
      [this](const std::string&) { asked_ = false; });
}

void RoundRetry::press() {
  // More may be known by now than when the button came.
  const std::vector<RequestId> ids = without_effect();
  std::map<std::int64_t, std::vector<TicketRequest>> tickets;
  for (const TicketRequest& each : requests_)
    if (may_go(each, ids)) tickets[each.ticket].push_back(each);
  for (const auto& [ticket, requests] : tickets)
    retry_->send(ticket, requests);
  look();
}

}  // namespace tutti
