#include "orders/frmStop.h"

#include <fmt/format.h>

#include <utility>
#include <vector>

#include "core/numbers.h"
#include "core/time_texts.h"

namespace tutti {
namespace {

// The list need not follow every price.
constexpr std::chrono::milliseconds often_enough{500};

std::string counted(std::size_t count, std::string_view what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

bool opens(const SentOrder& request) {
  return request.kind == RequestKind::open || request.kind == RequestKind::entry;
}

// What the account's own lists say.
std::size_t entry_orders_of(const AccountClient& client) {
  std::size_t out = 0;
  for (int place = 1; place <= client.PendingOrderCount(); ++place)
    if (client.PendingOrderItem(place)->kind != OrderKind::stops) ++out;
  return out;
}

}  // namespace

frmStop::frmStop(MGeneral& general, CClientAPIManagers& sessions, const Books& books)
    : general_(general), sessions_(sessions), books_(books) {
  cmdCarryOut.on_click = [this] { carry_out(chkOrders.checked(), chkPositions.checked()); };
  cmdEnd.on_click = [this] { end("the operator"); };
  cmdHide.on_click = [this] { Displayed(false); };
  chkOrders.on_click = chkPositions.on_click = [this] { enable_carry_out(); };
}

void frmStop::stop(std::string_view by) {
  const bool before = stopped();
  const auto kept = sessions_.admission().stop().set(fmt::format("{} by {}", now_text(general_.clock), by));
  was_stopped_ = true;
  chkOrders.set_checked(false);
  chkPositions.set_checked(false);
  if (!before) general_.log(fmt::format("Trading is stopped by {}: nothing leaves any more", by), no_account);
  if (!kept)
    general_.queue_message("Trading is stopped for as long as this program runs, and not longer: " +
                           kept.error().text());
  sessions_.send_stored();
  Displayed(true);
  list_open();
}

void frmStop::refresh() {
  const bool now = stopped();
  if (now != std::exchange(was_stopped_, now)) {
    // Somebody else's sign, or the one of an earlier run.
    if (now) general_.log("Trading is stopped: nothing leaves any more", no_account);
    if (!now) general_.log("The stop is ended from outside: trading goes on", no_account);
    Displayed(now);
    listed_ = std::chrono::milliseconds{-1};
  }
  if (!Displayed() || (listed_.count() >= 0 && general_.clock.elapsed() - listed_ < often_enough)) return;
  list_open();
}

frmStop::Figures frmStop::figures() const {
  Figures out;
  for (const OrderBook::Record* order : books_.orders.all())
    if (order->kind == OrderKind::entry) ++out.orders;
  for (const PositionBook::Record* position : books_.positions.all()) {
    ++out.positions;
    out.lots += position->amount;
  }
  for (const auto& session : sessions_.Children())
    if (!session->ClientAPIF().LoggedIn()) ++out.not_connected;
  out.unknown = static_cast<std::size_t>(sessions_.unknown(opens));
  return out;
}

std::string frmStop::figures_text() const {
  const Figures now = figures();
  std::string out = fmt::format("{} and {} of {} lots", counted(now.orders, "entry order"),
                                counted(now.positions, "position"), number_text(lots_of_sum(now.lots)));
  if (now.not_connected > 0) out += fmt::format("; {} not connected", counted(now.not_connected, "account"));
  if (now.unknown > 0) out += fmt::format("; {} of unknown outcome", counted(now.unknown, "order"));
  return out;
}

bool frmStop::verified_flat() const {
  for (const auto& session : sessions_.Children()) {
    const AccountClient& client = session->ClientAPIF();
    if (!client.LoggedIn() || !session->has_positions() || client.OpenPositionCount() > 0 ||
        entry_orders_of(client) > 0 || session->unanswered() > 0)
      return false;
  }
  return sessions_.unknown([](const SentOrder&) { return true; }) == 0;
}

void frmStop::list_open() {
  listed_ = general_.clock.elapsed();
  lvwOpen.clear();
  for (const auto& session : sessions_.Children()) {
    const AccountClient& client = session->ClientAPIF();
    std::string text;
    const auto add = [&text](const std::string& what) { text += (text.empty() ? "" : ", ") + what; };
    if (!client.LoggedIn() || !session->has_positions()) {
      add("not verified: not connected");
    } else {
      const auto positions = static_cast<std::size_t>(client.OpenPositionCount());
      if (positions > 0) add(counted(positions, "position"));
      if (const std::size_t orders = entry_orders_of(client); orders > 0) add(counted(orders, "order"));
      const auto unanswered = static_cast<std::size_t>(session->unanswered());
      if (unanswered > 0) add(counted(unanswered, "request") + " on the way");
    }
    const auto unknown = static_cast<std::size_t>(
        sessions_.requests().unknown(session->sender(), [](const SentOrder&) { return true; }));
    if (unknown > 0) add("not verified: " + counted(unknown, "request") + " of unknown outcome");
    if (text.empty()) continue;
    Row& row = *lvwOpen.add({});
    row.set_whole(Column::account, session->account());
    row.set_text(Column::open, text);
  }
  lblState.set_text(!stopped()        ? "Trading goes on"
                    : verified_flat() ? "Trading is stopped. The accounts' lists say that nothing is open"
                                      : "Trading is stopped. Nothing leaves but what is carried out here");
  lblFigures.set_text(figures_text());
  const Figures now = figures();
  chkOrders.set_enabled(stopped() && now.orders > 0);
  chkPositions.set_enabled(stopped() && now.positions > 0);
  enable_carry_out();
  cmdEnd.set_enabled(stopped());
}

std::vector<frmStop::Open> frmStop::shown_open() const {
  std::vector<Open> out;
  for (const Row& row : lvwOpen)
    out.push_back(
        {static_cast<std::int32_t>(row.cell(Column::account).stored_number()), row.text(Column::open)});
  return out;
}

void frmStop::enable_carry_out() {
  const auto wanted = [](const CheckBox& box) { return box.enabled() && box.checked(); };
  cmdCarryOut.set_enabled(wanted(chkOrders) || wanted(chkPositions));
}

void frmStop::carry_out(bool cancel_orders, bool close_positions) {
  if (!stopped()) return;
  const LedgerTicket about{.origin = TicketOrigin::stop};
  if (cancel_orders) {
    std::vector<std::pair<CClientAPIManager*, std::int64_t>> orders;
    for (const OrderBook::Record* order : books_.orders.all()) {
      CClientAPIManager* session = sessions_.logged_in(order->account);
      if (order->kind != OrderKind::entry || session == nullptr) continue;
      const SentOrder* sent = session->sent_request(RequestKind::cancel, order->order);
      const bool awaited =
          sent != nullptr && (!sent->settled() || sent->outcome == SentOrder::Outcome::unknown);
      if (!awaited) orders.emplace_back(session, order->order);
    }
    sessions_.as_one_ticket(
        [&] {
          for (const auto& [session, order] : orders)
            session->cancel_order(order, false);
        },
        about);
  }
  if (close_positions && close) {
    struct Position {
      std::int64_t ticket;
      double amount;
      std::int32_t account;
    };
    std::vector<Position> positions;
    for (const PositionBook::Record* each : books_.positions.all())
      positions.push_back({each->ticket, each->amount, each->account});
    sessions_.as_one_ticket(
        [&] {
          for (const Position& each : positions)
            close(each.ticket, each.amount, each.account);
        },
        about);
  }
  list_open();
}

void frmStop::end(std::string_view by) {
  if (const auto ended = sessions_.admission().stop().clear(); !ended)
    return general_.message_box("The stop can't be ended: " + ended.error().text());
  was_stopped_ = false;
  general_.log(fmt::format("The stop is ended by {}: trading goes on", by), no_account);
  Displayed(false);
  list_open();
}

void frmStop::changed(const PositionBook::Record& position) {
  if (position.arrival <= last_arrival_) return;
  last_arrival_ = position.arrival;
  const CClientAPIManager* session = sessions_.logged_in(position.account);
  // What a login lists was there before.
  if (session == nullptr || !session->has_positions() || !stopped()) return;
  const std::string text =
      fmt::format("Position #{} of {} lots {} has come on account {} while trading is stopped",
                  position.ticket, number_text(position.amount), position.symbol, position.account);
  general_.log(text, position.account);
  general_.queue_message(text);
  general_.play_sound("\\sounds\\Alert.wav");
}

}  // namespace tutti
