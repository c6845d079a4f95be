#include "sessions/CClientAPIManager.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

#include "core/numbers.h"
#include "core/texts.h"
#include "sessions/result_texts.h"

namespace tutti {
namespace {

// Columns of the accounts list that sessions write.
constexpr std::size_t column_state = 2;
constexpr std::size_t column_notes = 4;
constexpr std::size_t column_first_value = 5;
constexpr std::size_t column_last_value = 11;

// Values beyond this are no account of anyone, and would wipe out the other accounts' share of the totals.
constexpr double largest_value = 1e15;

// False for values that are no numbers, too.
bool usable(const AccountSummary& s) {
  return std::fabs(s.balance) + std::fabs(s.floating_pl) + std::fabs(s.credit) + std::fabs(s.equity) +
             std::fabs(s.used_margin) + std::fabs(s.margin_level) + std::fabs(s.free_margin) <
         largest_value;
}

// Runs one statement of a handler that goes on with the next one whatever happens.
template <class Statement>
void carry_on(MGeneral& general, std::int32_t account, Statement&& statement) {
  try {
    statement();
  } catch (const std::exception& error) {
    general.log(std::string{"A step of an event could not be done: "} + error.what(), account);
  }
}

}  // namespace

CClientAPIManager::CClientAPIManager(std::unique_ptr<ClientAPI> client, const LoginData& login,
                                     MGeneral& general, Desk& desk, const AccountWindows& windows,
                                     SymbolCollection& symbols, CLoginOptions& options)
    : client_(std::move(client)),
      general_(general),
      desk_(desk),
      windows_(windows),
      symbols_(symbols),
      options_(options),
      account_(login.account),
      user_(login.user),
      password_(login.password.copy()) {
  client_->set_sink(this);
  client_->SetLoginData(login);
}

CClientAPIManager::~CClientAPIManager() {
  client_->set_sink(nullptr);
  client_->Logout();
}

void CClientAPIManager::shut_down() {
  client_->set_sink(nullptr);
  client_->Logout();
  release_totals();
  journal_unanswered();
  // Nobody else says any more that the wait of this one is over.
  if (!std::exchange(waiting_, false)) return;
  desk_.status->control_text(StatusDesk::waiting_control, "");
  desk_.entry_order->submit_available(true);
}

std::string CClientAPIManager::SummaryDesc(double balance, double equity, double effective_margin) const {
  return "Balance: " + summary_text(balance) + "  Equity: " + summary_text(equity) +
         "  EffMargin: " + summary_text(effective_margin);
}

void CClientAPIManager::CLAPICLASS_SummariesChanged(const AccountSummary& reported) {
  if (!usable(reported)) {
    refuse("The account's summary");
    return;
  }
  const Totals now{reported.balance,    reported.floating_pl,        reported.credit,
                   reported.equity,     reported.used_margin * -1.0, reported.margin_level * 100.0,
                   reported.free_margin};
  general_.totals.replace(summary_, now);
  summary_ = now;
  desk_.status->totals_changed(TotalsForm::summaries_changed);
  if (row_ != nullptr) desk_.accounts->refresh_summary(*row_);
}

void CClientAPIManager::release_totals() {
  general_.totals.replace(summary_, {});
  desk_.status->totals_changed(TotalsForm::disconnected);
  summary_ = {};
}

void CClientAPIManager::ConnectionState(bool connected) {
  carry_on(general_, account_, [&] {
    if (row_ == nullptr) return;
    if (connected) {
      row_->set_text(column_state, "Connected", Ink::white);
    } else {
      row_->set_text(column_state, "Disconnected", Ink::red);
      row_->clear_cells(column_first_value, column_last_value);
    }
  });
  if (connected) {
    refused_.clear();
    carry_on(general_, account_, [&] { connection_.connected(row_); });
    carry_on(general_, account_, [&] { desk_.close_positions->account_state(account_, "Connected"); });
    return;
  }
  carry_on(general_, account_, [&] { connection_.connection_lost(row_); });
  carry_on(general_, account_, [&] { release_totals(); });
  carry_on(general_, account_, [&] { journal_unanswered(); });
  carry_on(general_, account_, [&] {
    if (lists_account_) windows_.leave(*this);
    lists_account_ = false;
    desk_.close_positions->account_state(account_, "Disconnected");
  });
  carry_on(general_, account_, [&] { desk_.requote->session_gone(*this); });
}

void CClientAPIManager::WaitingMode(std::int32_t mode) {
  if (mode >= waiting_mode::normal && mode <= waiting_mode::connecting)
    waiting_ = mode != waiting_mode::normal;
  switch (mode) {
    case waiting_mode::connecting:
      connection_.login_begins();
      if (row_ != nullptr) row_->set_text(column_state, "Connecting", Ink::red);
      desk_.close_positions->account_state(account_, "Connecting");
      desk_.entry_order->submit_available(false);
      break;
    case waiting_mode::waiting:
      desk_.status->control_text(StatusDesk::waiting_control, "Waiting");
      desk_.status->control_text(StatusDesk::connected_control, "Connected");
      desk_.entry_order->submit_available(false);
      break;
    case waiting_mode::normal:
      desk_.status->control_text(StatusDesk::waiting_control, "");
      for (int id = StatusDesk::first_trade_control; id <= StatusDesk::last_trade_control; ++id)
        desk_.status->control_enabled(id, true);
      desk_.entry_order->distribute_available();
      break;
    default:
      break;
  }
}

void CClientAPIManager::SessionDisconnected() {
  general_.message_box("account " + std::to_string(account_) + " Session disconnected",
                       "Session Disconnected");
  if (row_ != nullptr) row_->set_ink(column_state, row_connected() ? Ink::green : Ink::red);
  // The totals keep what this account added until they are rebuilt; only its own values go.
  summary_ = {};
  connection_.session_ended(row_);
  general_.play_sound("\\sounds\\Disconnect.wav");
}

void CClientAPIManager::InvalidUsernamePassword() {
  connection_.login_refused(row_);
  if (row_ == nullptr) return;
  row_->set_text(column_state, "Invalid account", Ink::red);
  desk_.close_positions->account_state(account_, "Invalid account");
}

void CClientAPIManager::AllDataAreLoaded() {
  general_.play_sound("\\sounds\\Connect.WAV");
  const bool found = client_->FindAccount(account_).has_value();
  lists_account_ = lists_account_ || found;
  if (!found) {
    if (row_ != nullptr) {
      row_->set_text(column_notes, "Invalid account");
      row_->set_text(column_state, "Invalid account", Ink::red);
    }
    desk_.close_positions->account_state(account_, "Invalid account");
    windows_.leave_pending(*this);
    log(std::to_string(account_) + " is invalid account");
    DisInvalidAcc(std::to_string(key_));
  } else {
    if (desk_.market_order->wants_lot_limits()) {
      general_.minimum_lot = client_->MinimumLot();
      general_.maximum_lot = client_->MaximumLot();
      desk_.market_order->lot_limits(general_.minimum_lot, general_.maximum_lot);
    }
    desk_.market_order->add_account(account_);
    desk_.close_positions->add_account(account_);
    desk_.entry_order->add_account(account_);
    desk_.close_positions->refresh_symbols();
    // A row that reads "Connected" does not read "Invalid account".
    if (row_connected()) {
      desk_.accounts->record_connected(*this);
      general_.play_sound("\\sounds\\Connect.wav");
    }
  }
  general_.read_settings();
}

void CClientAPIManager::DisInvalidAcc(std::string_view key_text) {
  const auto key = parse_int32(key_text);
  if (!key || *key != key_ || row_ == nullptr) return;
  desk_.accounts->select_client(*row_);
  // Whoever hears of the selection may have removed the account.
  if (row_ != nullptr) row_->set_text(column_notes, "Invalid account ID");
}

std::string_view CClientAPIManager::ResultDescription(std::int32_t code) {
  return result_texts::general(code);
}

std::string_view CClientAPIManager::BuySellDesc(std::int32_t operation) {
  return operation == operation::buy || operation == operation::buy_stop ? "buy" : "sell";
}

void CClientAPIManager::ServerTime(TimePoint time) {
  desk_.status->server_time(general_.full_time_text(time));
}

void CClientAPIManager::ServerRouted(std::string_view address, std::string_view port) {
  if (options_.RoutServer(address, read_integer(port))) return;
  log("The server's new address was refused: it holds a character that no address has");
}

void CClientAPIManager::refuse(const std::string& what) {
  if (!refused_.insert(what).second) return;
  log(what + " came with values that are no numbers or out of all bounds; it is not shown");
}

void CClientAPIManager::tell(const std::string& text) {
  general_.last_message = text;
  general_.message_box(text);
}

void CClientAPIManager::log_order(std::int64_t order, std::string_view text) {
  log(text);
  desk_.pending->order_text(order, account_, text);
}

}  // namespace tutti
