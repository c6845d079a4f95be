#include "sessions/session_connection.h"

#include <cmath>
#include <utility>

#include "core/numbers.h"

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

}  // namespace

void SessionConnection::release_totals() {
  scope_.general.totals.replace(summary_, {});
  scope_.desk.status->totals_changed(TotalsForm::disconnected);
  summary_ = {};
}

void SessionConnection::log_out() {
  report_.logged_out();
  scope_.client.Logout();
}

void SessionConnection::shut_down() {
  if (!std::exchange(waiting_, false)) return;
  scope_.desk.status->control_text(StatusDesk::waiting_control, "");
  scope_.desk.entry_order->submit_available(true);
}

void SessionConnection::show_state(bool connected) {
  if (scope_.row == nullptr) return;
  if (connected) {
    scope_.row->set_text(column_state, "Connected", Ink::white);
  } else {
    scope_.row->set_text(column_state, "Disconnected", Ink::red);
    scope_.row->clear_cells(column_first_value, column_last_value);
  }
}

void SessionConnection::connected() {
  scope_.forget_refusals();
  report_.connected(scope_.row);
}

void SessionConnection::waiting_mode(std::int32_t mode) {
  if (mode >= waiting_mode::normal && mode <= waiting_mode::connecting)
    waiting_ = mode != waiting_mode::normal;
  Desk& desk = scope_.desk;
  switch (mode) {
    case waiting_mode::connecting:
      report_.login_begins();
      if (scope_.row != nullptr) scope_.row->set_text(column_state, "Connecting", Ink::red);
      desk.close_positions->account_state(scope_.account, "Connecting");
      desk.entry_order->submit_available(false);
      break;
    case waiting_mode::waiting:
      desk.status->control_text(StatusDesk::waiting_control, "Waiting");
      desk.status->control_text(StatusDesk::connected_control, "Connected");
      desk.entry_order->submit_available(false);
      break;
    case waiting_mode::normal:
      desk.status->control_text(StatusDesk::waiting_control, "");
      for (int id = StatusDesk::first_trade_control; id <= StatusDesk::last_trade_control; ++id)
        desk.status->control_enabled(id, true);
      desk.entry_order->distribute_available();
      break;
    default:
      break;
  }
}

void SessionConnection::session_disconnected() {
  scope_.general.message_box("account " + std::to_string(scope_.account) + " Session disconnected",
                             "Session Disconnected");
  if (scope_.row != nullptr)
    scope_.row->set_ink(column_state, scope_.row_connected() ? Ink::green : Ink::red);
  // The totals keep what this account added until they are rebuilt; only its own values go.
  summary_ = {};
  report_.session_ended(scope_.row);
  scope_.general.play_sound("\\sounds\\Disconnect.wav");
}

void SessionConnection::invalid_login() {
  report_.login_refused(scope_.row);
  if (scope_.row == nullptr) return;
  scope_.row->set_text(column_state, "Invalid account", Ink::red);
  scope_.desk.close_positions->account_state(scope_.account, "Invalid account");
}

void SessionConnection::invalid_account() {
  if (scope_.row != nullptr) {
    scope_.row->set_text(column_notes, "Invalid account");
    scope_.row->set_text(column_state, "Invalid account", Ink::red);
  }
  scope_.desk.close_positions->account_state(scope_.account, "Invalid account");
}

void SessionConnection::summaries_changed(const AccountSummary& reported) {
  if (!usable(reported)) return scope_.refuse("The account's summary");
  const Totals now{reported.balance,    reported.floating_pl,        reported.credit,
                   reported.equity,     reported.used_margin * -1.0, reported.margin_level * 100.0,
                   reported.free_margin};
  scope_.general.totals.replace(summary_, now);
  summary_ = now;
  scope_.desk.status->totals_changed(TotalsForm::summaries_changed);
  if (scope_.row != nullptr) scope_.desk.accounts->refresh_summary(*scope_.row);
}

void SessionConnection::server_time(TimePoint time) {
  scope_.desk.status->server_time(scope_.general.full_time_text(time));
}

void SessionConnection::server_routed(std::string_view address, std::string_view port) {
  if (options_.RoutServer(address, read_integer(port))) return;
  scope_.log("The server's new address was refused: it holds a character that no address has");
}

}  // namespace tutti
