#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/button.h"
#include "core/clock.h"
#include "core/label.h"
#include "core/row_list.h"
#include "ledger/ledger_reads.h"
#include "views/ticket_picture.h"

namespace tutti {

// Ticket board: a line per act of the operator, newest first, and of the one that is opened a line per
// request, grouped by what happened. All of it is read from the ledger, earlier runs included, and is read
// again while it can be seen, when something was stored since.
class TicketBoard {
 public:
  enum Column : std::size_t { time, side, symbol, lots, outcome, what, price, ticket };
  enum RequestColumn : std::size_t {
    happened,
    account,
    user,
    share,
    fill_price,
    slippage,
    answered,
    order,
    why
  };
  // So many are shown at first, and more with each press.
  static constexpr int at_once = 100;
  // So often the ledger is looked at.
  static constexpr std::chrono::milliseconds interval{250};

  // `reads`: nullptr where there is no ledger; the board stays empty.
  TicketBoard(const Clock& clock, LedgerReads* reads);

  RowList lvwTickets{{"Time", "Side", "Symbol", "Lots", "Result", "What", "Price", "Ticket"}};
  RowList lvwRequests{
      {"Outcome", "Account", "User", "Share", "Price", "Slippage", "Answer ms", "Order", "Why"}};
  Button older{"Show older"};
  Button retry{"Send the rest again..."};
  // What the operator settled by hand as not executed; seen only where there is such a one.
  Button retry_settled{"Send the settled again..."};
  // Of a ticket of entry orders while some of them work.
  Button change_orders{"Change orders..."};
  Button cancel_orders{"Cancel orders..."};
  // Of the opened ticket, or what to do to open one; or why nothing can be read.
  Label head;

  void Displayed(bool displayed);
  // Looks whether something is to be read. To be called often.
  void poll();
  // Opens a ticket; 0 none.
  void open(std::int64_t number);
  std::int64_t opened() const { return opened_; }
  // How many of the opened ticket's requests may be sent again.
  std::size_t retryable(RetryPart part = RetryPart::no_effect) const;

  // Its fills over price and time; nothing is filled while none is opened.
  const TicketPicture& picture() const { return picture_; }

  // Decimals of a symbol's prices; 0 while nobody knows them. Set by start-up.
  std::function<int(const std::string& symbol)> decimals_of;
  // Sends what may be of these requests again, after a question; set by start-up.
  std::function<void(std::int64_t ticket, const std::vector<TicketRequest>& requests, RetryPart part)>
      send_again;
  // Change or cancel the entry orders of these requests, after a question; set by start-up.
  using OfTicket = std::function<void(std::int64_t ticket, const std::vector<TicketRequest>& requests)>;
  OfTicket on_change_orders;
  OfTicket on_cancel_orders;

 private:
  struct Shown {
    std::vector<TicketRecord> tickets;
    std::vector<TicketRequest> requests;
    std::vector<FillRecord> fills;
    std::int64_t opened = 0;
    std::int64_t version = 0;
    bool changed = false;
  };

  void read();
  void show(Shown shown);
  void show_tickets(const std::vector<TicketRecord>& tickets);
  void show_requests();
  void draw(const std::vector<FillRecord>& fills);
  const TicketRecord* listed() const;
  void show_head();
  void press(const OfTicket& act);
  bool has_working_orders() const;

  const Clock& clock_;
  LedgerReads* reads_;
  bool displayed_ = false;
  bool asked_ = false;    // and not answered
  bool outdated_ = true;  // to be read whether something was stored or not
  std::chrono::milliseconds asked_at_{0};
  std::int64_t version_ = 0;  // of what is shown
  int count_ = at_once;
  std::int64_t opened_ = 0;
  std::int64_t listed_ = 0;  // whose requests are listed
  std::vector<TicketRecord> tickets_;
  std::vector<TicketRequest> requests_;
  TicketPicture picture_;
  std::string fault_;
};

}  // namespace tutti
