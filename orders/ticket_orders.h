#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "books/books.h"
#include "core/MGeneral.h"
#include "ledger/ledger_queries.h"
#include "sessions/CClientAPIManagers.h"

namespace tutti {

// New prices for entry orders. What is not given stays as each order has it; 0 takes a stop off.
struct OrderChange {
  std::optional<double> price{};
  std::optional<double> stop_loss{};
  std::optional<double> take_profit{};
};

// Changes or cancels the entry orders of a ticket together: those of its requests that work and whose order
// is listed now on a connected account, a request for each, as one ticket, after one question that names
// those out of reach. Answers what was sent, which stays as long as the terminal.
class TicketOrders {
 public:
  TicketOrders(MGeneral& general, CClientAPIManagers& sessions, const Books& books)
      : general_(general), sessions_(sessions), books_(books) {}

  std::vector<const SentOrder*> change(std::int64_t ticket, const std::vector<TicketRequest>& requests,
                                       const OrderChange& to);
  std::vector<const SentOrder*> cancel(std::int64_t ticket, const std::vector<TicketRequest>& requests);

  // "3 of 4 orders of ticket 7 can be reached, 0.9 lots in all"
  std::string reach_text(std::int64_t ticket, const std::vector<TicketRequest>& requests) const;

 private:
  struct Reached {
    std::int64_t number = 0;
    const TicketRequest* request = nullptr;
    CClientAPIManager* session = nullptr;
    double lots = 0.0;
  };
  struct Reach {
    std::vector<Reached> orders;
    std::vector<std::string> left_out;  // a line each: the account and why
    double lots = 0.0;
  };

  Reach reach(const std::vector<TicketRequest>& requests) const;
  // Why it can't be reached by this session now; empty when it can.
  std::string obstacle(const TicketRequest& request, const CClientAPIManager* session) const;
  template <class Send>
  std::vector<const SentOrder*> send(std::int64_t ticket, const std::vector<TicketRequest>& requests,
                                     const char* what, const std::string& to, const Send& send);
  const SentOrder& update(const Reached& order, const OrderChange& to);

  MGeneral& general_;
  CClientAPIManagers& sessions_;
  const Books& books_;
};

}  // namespace tutti
