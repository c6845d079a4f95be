#pragma once

#include <cstdint>
#include <string_view>

#include "accounts/order_window.h"
#include "core/notices.h"
#include "sessions/CClientAPIManagers.h"

namespace tutti {

// How a total is split over accounts; the values are the indices of the windows' lists.
enum class DistributionRule : std::int16_t { none = -1, equal = 0, margin = 1, equity = 2 };

// Splits `amount` lots of a symbol over the ticked rows of an order window.
//
// First weeds out rows that can't take the order (symbol not visible, equity below zero, a summary that is no
// number), then writes each share, rounded half to even to so many decimals. Shares need not add up to the
// total, and a share may be 0: nothing is corrected. Refusals go into the rows, input errors into message
// boxes.
class Distribution {
 public:
  Distribution(Notices& notices, int decimals, CClientAPIManagers& sessions, OrderWindow& window)
      : notices_(notices), decimals_(decimals), sessions_(sessions), window_(window) {}

  void run(double amount, std::int16_t type, std::string_view symbol);

 private:
  struct Sums {
    int accounts = 0;
    double equity = 0.0;
    double free_margin = 0.0;
  };

  Sums weed_out(std::string_view symbol);
  void write_shares(double amount, DistributionRule rule, std::string_view symbol, const Sums& sums);
  // False, with the reason in the row and its tick gone, when the summary can't be had.
  static bool summary_of(const CClientAPIManager& session, Row& row, AccountSummary& out);

  Notices& notices_;
  int decimals_;
  CClientAPIManagers& sessions_;
  OrderWindow& window_;
};

}  // namespace tutti
