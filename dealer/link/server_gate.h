#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "dealer/link/dealer_session.h"
#include "dealer/trading/instruction.h"
#include "dealer/trading/trading_account.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/login_data.h"

namespace tutti {

// All that a trading client sees of the dealing server.
class ServerGate {
 public:
  virtual ~ServerGate() = default;

  // The client's end of a connection, off as yet. To be logged out before it goes.
  virtual std::unique_ptr<DealerSession> make_session() = 0;
  virtual void login(DealerSession& session, const LoginData& data) = 0;
  virtual void logout(DealerSession& session) = 0;
  // Account of this number when `user` owns it, else nullptr.
  virtual const TradingAccount* owned_account(std::string_view user, std::int32_t number) const = 0;

  // The two answer a request code at once.
  virtual RequestCode send(TradingAccount& account, const Instruction& wanted) = 0;
  virtual RequestCode answer_requote(TradingAccount& account, std::int64_t order, bool accept,
                                     RequestId id) = 0;

  // As AccountClient has them.
  virtual BookEra era() const = 0;
  virtual std::int64_t requests_known(const TradingAccount& account, LedgerTag ledger) const = 0;
  virtual RequestCode ask_request(TradingAccount& account, RequestId id, BookEra era) = 0;
  virtual RequestCode ask_executions(TradingAccount& account, TimePoint since) = 0;

  // Of one order, in lots.
  virtual double smallest_lot() const = 0;
  virtual double largest_lot() const = 0;
};

}  // namespace tutti
