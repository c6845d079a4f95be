#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "core/clock.h"
#include "sessions/contract/CLAPICLASS.h"
#include "sessions/contract/account_info.h"
#include "sessions/contract/account_summary.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/login_data.h"
#include "sessions/contract/request_id.h"

namespace tutti {

// What whoever has an account's connection may do with it but send: log in and out, and ask.
//
// None of it blocks, none raises an event while it runs, and none throws. Record pointers stay valid until
// the next event or operation of the same client, that of a symbol until the next symbol is asked for;
// indices run from 1 to the count. Not thread-safe: GUI
// thread only.
class AccountClient {
 public:
  virtual ~AccountClient() = default;

  // Where events go; nullptr unhooks, and nothing queued reaches the old sink any more.
  virtual void set_sink(CLAPICLASS* sink) = 0;

  // Called once, when the session is created.
  virtual void SetLoginData(const LoginData& data) = 0;
  // Starts a login; a second call while one runs or stands does nothing.
  virtual void Login() = 0;

  virtual int SymbolCount() const = 0;
  virtual const Symbol* SymbolItem(int index) const = 0;
  // Record of a symbol by name, visible to the account or not; nullptr when the server does not know it.
  virtual const Symbol* SymbolRecord(std::string_view symbol) const = 0;
  // Record of a symbol that the account carries, else nullptr.
  virtual const Symbol* FindSymbol(std::string_view symbol) const = 0;

  virtual int OpenPositionCount() const = 0;
  virtual const OpenPosition* OpenPositionItem(int index) const = 0;
  virtual int PendingOrderCount() const = 0;
  virtual const PendingOrder* PendingOrderItem(int index) const = 0;

  // True from the moment the account may trade until it is logged out or dropped.
  virtual bool LoggedIn() const = 0;
  virtual void Logout() = 0;

  virtual SummaryAnswer GetAccountSummary(std::int32_t account) const = 0;
  // Profit in account currency, below 0 a loss, that one lot bought at `at_price` makes when it is closed at
  // `price`. Of a sold lot it is the negative; the caller scales by the amount. `tag`, one of evaluate::,
  // says which of its two prices the entry order window asks about. 0 when the account does not carry the
  // symbol or there is no exchange rate. `value` receives what is returned.
  virtual double EvaluateSLTPPrice(std::int32_t symbol_id, double at_price, std::string_view tag,
                                   double price, double& value) const = 0;

  // Minimum distance from the market of an entry order, in points; Symbol::ScaleDistance makes it a price.
  virtual double SymbolLimitDistance(std::string_view symbol) const = 0;
  virtual double SymbolStopDistance(std::string_view symbol) const = 0;

  // Information about an account of the logged-in user; nothing when the user does not own it.
  virtual std::optional<AccountInfo> FindAccount(std::int32_t number) const = 0;
  // Smallest and largest amount of one order, in lots.
  virtual double MinimumLot() const = 0;
  virtual double MaximumLot() const = 0;

  // How many requests of the ledger that it was logged in with the server has ever taken for the account, as
  // told at login, answers to requotes not counted; nothing where a broker doesn't tell.
  virtual std::optional<std::int64_t> RequestsKnown() const { return std::nullopt; }
  // Era of the book that the server has, as it told at login; 0 where it has none.
  virtual BookEra Era() const = 0;
  // What became of a request that was sent while the server had the book of `era`. Answers a request code;
  // RequestTold follows.
  virtual RequestCode AskRequest(RequestId id, BookEra era) = 0;
  // The account's fills since a moment of the server's time. Answers a request code; ExecutionsTold follows.
  virtual RequestCode AskExecutions(TimePoint since) = 0;
};

}  // namespace tutti
