#include "sessions/session_connection.h"

#include <utility>

#include "core/numbers.h"
#include "core/time_texts.h"

namespace tutti {

void SessionConnection::release_totals() {
  scope_.book.totals.replace(scope_.record.values, {}, TotalsForm::disconnected);
  scope_.book.set_values(scope_.record, {});
}

void SessionConnection::log_in() {
  if (scope_.record.shown.state == AccountState::disconnected) {
    scope_.client.Login();
    scope_.book.show_state(scope_.record, AccountState::connecting, Ink::red);
  }
  scope_.book.recolour(scope_.record);
}

void SessionConnection::log_out() {
  report_.logged_out();
  scope_.client.Logout();
  scope_.book.recolour(scope_.record);
  scope_.book.set_note(scope_.record, "");
  scope_.book.clear_values(scope_.record);
}

void SessionConnection::shut_down() {
  if (!std::exchange(waiting_, false)) return;
  scope_.desk.status->control_text(StatusDesk::waiting_control, "");
  scope_.desk.entry_order->submit_available(true);
}

void SessionConnection::show_state(bool connected) {
  if (connected) {
    scope_.book.show_state(scope_.record, AccountState::connected, Ink::white);
  } else {
    scope_.book.show_state(scope_.record, AccountState::disconnected, Ink::red);
    scope_.book.clear_values(scope_.record);
  }
}

void SessionConnection::connected() {
  scope_.forget_refusals();
  scope_.book.set_state(scope_.record, AccountState::connected);
  report_.connected();
}

void SessionConnection::lost() {
  report_.connection_lost();
  scope_.book.set_state(scope_.record, AccountState::disconnected);
}

void SessionConnection::waiting_mode(ConnectionMode mode) {
  if (mode >= waiting_mode::normal && mode <= waiting_mode::connecting)
    waiting_ = mode != waiting_mode::normal;
  Desk& desk = scope_.desk;
  switch (mode) {
    case waiting_mode::connecting:
      report_.login_begins();
      scope_.book.set_state(scope_.record, AccountState::connecting);
      scope_.book.show_state(scope_.record, AccountState::connecting, Ink::red);
      desk.close_positions->account_state(scope_.account, AccountState::connecting);
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
  scope_.book.recolour(scope_.record);
  // The totals keep what this account added until they are rebuilt; only its own values go.
  scope_.book.set_values(scope_.record, {});
  scope_.book.set_state(scope_.record, AccountState::disconnected);
  report_.session_ended();
  scope_.general.play_sound("\\sounds\\Disconnect.wav");
}

void SessionConnection::invalid_login() {
  report_.login_refused();
  show_invalid();
}

void SessionConnection::invalid_account() {
  scope_.book.set_note(scope_.record, "Invalid account");
  show_invalid();
}

void SessionConnection::show_invalid() {
  scope_.book.set_state(scope_.record, AccountState::invalid);
  scope_.book.show_state(scope_.record, AccountState::invalid, Ink::red);
  scope_.desk.close_positions->account_state(scope_.account, AccountState::invalid);
}

void SessionConnection::server_time(TimePoint time) {
  scope_.desk.status->server_time(full_time_text(time));
}

void SessionConnection::server_routed(std::string_view address, std::string_view port) {
  if (options_.RoutServer(address, read_integer(port))) return;
  scope_.log("The server's new address was refused: it holds a character that no address has");
}

}  // namespace tutti
