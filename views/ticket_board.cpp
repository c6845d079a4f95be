#include "views/ticket_board.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/numbers.h"
#include "core/texts.h"
#include "core/time_texts.h"
#include "views/ticket_texts.h"

namespace tutti {
namespace {

RowKey ticket_row(std::int64_t number) {
  return {'A', number};
}

// Leaves the row alone where it reads so already.
void write(Row& row, std::size_t column, const std::string& text) {
  if (!row.reads(column, text)) row.set_text(column, text);
}

int price_digits(double price) {
  const std::string text = number_text(price);
  const auto point = text.find('.');
  return point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1);
}

}  // namespace

TicketBoard::TicketBoard(const Clock& clock, LedgerReads* reads) : clock_(clock), reads_(reads) {
  lvwTickets.set_column_widths("13,8,8,7,39,11,8,6");
  lvwRequests.set_column_widths("13,9,11,8,11,11,9,11,17");
  lvwRequests.set_column_tip(slippage,
                             "Fill price against the price at the click; above 0 is worse than that one");
  lvwRequests.set_column_tip(answered, "From the click to the last that is known of it");
  lvwTickets.on_select = [this](const Row& row) { open(row.key().number()); };
  older.on_click = [this] {
    count_ += at_once;
    outdated_ = true;
    read();
  };
  const auto again = [this](RetryPart part) {
    press([this, part](std::int64_t ticket, const std::vector<TicketRequest>& requests) {
      if (send_again) send_again(ticket, requests, part);
    });
  };
  retry.on_click = [again] { again(RetryPart::no_effect); };
  retry_settled.on_click = [again] { again(RetryPart::settled_by_hand); };
  change_orders.on_click = [this] { press(on_change_orders); };
  cancel_orders.on_click = [this] { press(on_cancel_orders); };
  show_head();
}

void TicketBoard::Displayed(bool displayed) {
  if (std::exchange(displayed_, displayed) == displayed || !displayed) return;
  read();
}

void TicketBoard::poll() {
  if (displayed_ && (outdated_ || clock_.elapsed() - asked_at_ >= interval)) read();
}

void TicketBoard::open(std::int64_t number) {
  if (std::exchange(opened_, number) == number) return;
  outdated_ = true;
  read();
}

void TicketBoard::press(const OfTicket& act) {
  // Events go on while the question stands.
  if (act && listed_ == opened_) act(opened_, std::vector<TicketRequest>{requests_});
  outdated_ = true;
}

bool TicketBoard::has_working_orders() const {
  return std::any_of(requests_.begin(), requests_.end(), [](const TicketRequest& each) {
    return each.kind == RequestKind::entry && each.state == LedgerState::working;
  });
}

std::size_t TicketBoard::retryable(RetryPart part) const {
  return static_cast<std::size_t>(
      std::count_if(requests_.begin(), requests_.end(),
                    [part](const TicketRequest& each) { return each.may_be_retried(part); }));
}

void TicketBoard::read() {
  if (reads_ == nullptr || asked_) return;
  asked_ = true;
  asked_at_ = clock_.elapsed();
  const std::int64_t known = std::exchange(outdated_, false) ? -1 : version_;
  reads_->ask(
      [this, known, count = count_, opened = opened_](LedgerQueries& ledger) -> LedgerReads::Show {
        Shown shown;
        shown.opened = opened;
        shown.version = ledger.version();
        shown.changed = shown.version != known;
        if (shown.changed) {
          shown.tickets = ledger.newest_tickets(count);
          if (opened != 0) {
            shown.requests = ledger.requests_of(opened);
            shown.fills = ledger.fills({.ticket = opened});
          }
        }
        return [this, shown = std::move(shown)]() mutable { show(std::move(shown)); };
      },
      [this](const std::string& why) {
        asked_ = false;
        outdated_ = true;
        fault_ = why;
        show_head();
      });
}

void TicketBoard::show(Shown shown) {
  asked_ = false;
  fault_.clear();
  version_ = shown.version;
  if (shown.changed) {
    tickets_ = std::move(shown.tickets);
    requests_ = std::move(shown.requests);
    listed_ = shown.opened;
    show_tickets(tickets_);
    show_requests();
    draw(shown.fills);
  }
  show_head();
  // Another one was opened meanwhile.
  if (listed_ != opened_) outdated_ = true;
}

void TicketBoard::show_tickets(const std::vector<TicketRecord>& tickets) {
  lvwTickets.remove_if([&](const Row& row) {
    return std::none_of(tickets.begin(), tickets.end(),
                        [&](const TicketRecord& each) { return each.number == row.key().number(); });
  });
  std::size_t place = 0;
  for (const TicketRecord& each : tickets) {
    Row* row = lvwTickets.find(ticket_row(each.number));
    if (row == nullptr) {
      row = lvwTickets.insert(place, ticket_row(each.number));
      row->set_text(Column::time, full_time_text(each.time + clock_.utc_offset(each.time)));
      row->set_whole(Column::ticket, each.number);
      row->set_text(Column::what, ticket_texts::what(each.kind));
      row->set_text(Column::side, ticket_texts::side(each.kind, each.side));
      row->set_text(Column::symbol, each.symbol);
      if (each.total > 0.0) row->set_number(Column::lots, lots_of_sum(each.total));
      const double price = each.kind == RequestKind::entry ? each.price : each.price_at_click;
      if (price != 0.0) row->set_fixed(Column::price, price, price_digits(price));
    }
    write(*row, Column::outcome, ticket_texts::summary(each));
    ++place;
  }
}

const TicketRecord* TicketBoard::listed() const {
  const auto at = std::find_if(tickets_.begin(), tickets_.end(),
                               [this](const TicketRecord& each) { return each.number == listed_; });
  return at == tickets_.end() ? nullptr : &*at;
}

void TicketBoard::draw(const std::vector<FillRecord>& fills) {
  const TicketRecord* ticket = listed();
  picture_ = ticket == nullptr ? TicketPicture{} : TicketPicture::of(*ticket, fills);
  if (ticket == nullptr) return;
  picture_.digits = std::max(picture_.digits, price_digits(ticket->price_at_click));
  if (decimals_of) picture_.digits = std::max(picture_.digits, decimals_of(ticket->symbol));
}

void TicketBoard::show_requests() {
  const TicketRecord* ticket = listed();
  const double click = ticket == nullptr ? 0.0 : ticket->price_at_click;
  std::vector<const TicketRequest*> all;
  for (const TicketRequest& each : requests_)
    all.push_back(&each);
  const auto place = [](const TicketRequest& each) {
    return ticket_texts::place(each.kind, each.state, each.reason, each.code);
  };
  std::stable_sort(all.begin(), all.end(), [&](const TicketRequest* a, const TicketRequest* b) {
    return std::pair{place(*a), a->account.account} < std::pair{place(*b), b->account.account};
  });
  lvwRequests.clear();
  for (const TicketRequest* each : all) {
    Row& row = *lvwRequests.add({'R', each->id});
    row.set_text(happened, ticket_texts::outcome(each->kind, each->state, each->reason, each->code));
    row.set_number(account, each->account.account);
    row.set_text(user, upper(each->account.user));
    if (each->lots > 0.0) row.set_number(share, each->lots);
    if (each->fill_price != 0.0) {
      row.set_fixed(fill_price, each->fill_price, each->price_digits);
      const double worse = (each->fill_price - click) * sign(each->side);
      if (click != 0.0) row.set_fixed(slippage, worse, std::max(each->price_digits, price_digits(click)));
    }
    if (each->answered) row.set_number(answered, static_cast<double>(each->answered->count()));
    if (each->number != 0) row.set_whole(order, each->number);
    row.set_text(why, each->retried_by != 0 ? "sent again" : ticket_texts::why(*each));
  }
}

void TicketBoard::show_head() {
  const std::size_t rest = listed_ == opened_ ? retryable() : 0;
  retry.set_enabled(rest > 0 && send_again != nullptr);
  retry_settled.set_visible(listed_ == opened_ && send_again != nullptr &&
                            retryable(RetryPart::settled_by_hand) > 0);
  const bool works = listed_ == opened_ && has_working_orders();
  change_orders.set_visible(works && on_change_orders != nullptr);
  cancel_orders.set_visible(works && on_cancel_orders != nullptr);
  older.set_visible(static_cast<int>(tickets_.size()) >= count_);
  if (!fault_.empty()) return head.set_text("The ledger can't be read: " + fault_);
  if (opened_ == 0) return head.set_text("Select a ticket to see its accounts");
  std::string text = fmt::format("Ticket {}", opened_);
  if (rest > 0) text += fmt::format(", {} may be sent again", rest);
  head.set_text(text);
}

}  // namespace tutti
