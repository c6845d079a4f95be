#include "shell/Main.h"

#include <utility>

#include "sessions/account_record.h"

namespace tutti {
namespace {
constexpr std::uint32_t highlighted_bgr = 0xD2B54D;
constexpr std::uint32_t normal_bgr = 0x800000;
}  // namespace

tl::expected<std::unique_ptr<Main>, FileError> Main::start(std::filesystem::path application_folder,
                                                           const MachinePorts& ports, ServerSide server) {
  std::unique_ptr<Main> out{new Main{std::move(application_folder), ports, std::move(server)}};
  if (auto runs = out->run(); !runs) return tl::unexpected(runs.error());
  return out;
}

Main::Main(std::filesystem::path application_folder, const MachinePorts& ports, ServerSide server)
    : paths_(std::move(application_folder)), ports_(ports), server_(std::move(server)) {
  general_.key = KeyFile{ports_.key_file};
  general_.outside = ports_.outside;
  general_.journal = &journal_;
  connect();
  connect_closing();
}

Main::~Main() {
  // Sessions write into the windows while they end, so they go while every window still stands.
  sessions_.Clear();
  accounts_.write_connected();
  journal_.close();
  journal_.on_incomplete = {};
}

tl::expected<void, FileError> Main::run() {
  window_.Displayed(true);
  const auto limits = limits_file_.open();
  if (!limits) return tl::unexpected(limits.error());
  sessions_.admission().set_limits(*limits);
  if (auto loaded = accounts_.load(); !loaded) return loaded;
  close_positions_.prepare({"Account", "Status", "Amount", "Action"}, AccountState::disconnected);
  if (auto loaded = load_saved_accounts(); !loaded) return loaded;
  colours_.set(from_bgr(highlighted_bgr), from_bgr(normal_bgr));
  window_.execute(frmMdiNew::show_accounts);
  window_.execute(frmMdiNew::show_journal);
  pump_.open();
  return {};
}

void Main::connect() {
  desk_.status = &window_;
  journal_.on_incomplete = [this](std::string_view text) {
    general_.tell_outside(text);
    window_.warn(text);
  };
  desk_.accounts = &accounts_;
  desk_.market_order = &market_order_;
  accounts_.attach(market_order_);
  desk_.entry_order = &entry_order_;
  market_watch_.to_market_order = [this](std::string_view symbol) { market_order_.take_symbol(symbol); };
  market_watch_.to_entry_order = [this](std::string_view symbol) { entry_order_.take_symbol(symbol); };
  desk_.market_watch = &market_watch_;
  books_.positions.observe(trade_);
  sure_.logout_all = [this] { accounts_.logout_all(); };
  sure_.remove_all = [this] { accounts_.mnuclear_Click(); };
  window_.set_command(frmMdiNew::show_journal, [this] { journal_.Displayed(true); });
  window_.set_command(frmMdiNew::show_accounts, [this] { accounts_.Displayed(true); });
  desk_.pending = &pending_;
  books_.orders.observe(pending_);
  const auto edit = [this](const frmPending::EditRequest& request) { entry_order_.EdirMode(request); };
  pending_.EdirMode = edit;
  trade_.EdirMode = edit;
  desk_.requote = &requote_;
  tickets_.send_again = [this](std::int64_t ticket, const std::vector<TicketRequest>& requests,
                               RetryPart part) { ticket_retry_.send(ticket, requests, part); };
  tickets_.on_change_orders = [this](std::int64_t ticket, const std::vector<TicketRequest>& requests) {
    ticket_orders_form_.open(ticket, requests);
  };
  tickets_.on_cancel_orders = [this](std::int64_t ticket, const std::vector<TicketRequest>& requests) {
    ticket_orders_.cancel(ticket, requests);
  };
  tickets_.decimals_of = [this](const std::string& symbol) {
    const SymbolHandle handle = books_.symbols.find(symbol);
    return handle == no_symbol ? 0 : books_.symbols.entry(handle).digits;
  };
  for (RoundRetry* each : {&market_order_.retry, &entry_order_.retry})
    each->attach(ticket_retry_, ports_.reads);
  sessions_.admission().on_held = [this] { held_.refresh(); };
  unknown_.settle = [this](RequestId request, bool executed, const std::string& note) {
    return sessions_.settle_by_hand(request, executed, note);
  };
}

// Everything that closes positions, and what is picked for it elsewhere.
void Main::connect_closing() {
  desk_.close_positions = &close_positions_;
  books_.positions.observe(close_positions_);
  const auto awaited = [this](const frmTrade::Close& position) {
    return sessions_.close_awaited(position.ticket, position.account);
  };
  trade_.awaited = awaited;
  const auto close = [this, awaited](const frmTrade::Close& position) {
    if (awaited(position)) {
      general_.log("Close of #" + std::to_string(position.ticket) + " not sent again: its answer is awaited",
                   position.account);
      // For who counts, it has been sent: it waits, and is not refused.
      return true;
    }
    return close_helper_.close(position.ticket, position.amount, position.account);
  };
  trade_.close_helper = close;
  trade_.as_one_ticket = [this](const auto& ask) { sessions_.as_one_ticket(ask); };
  close_positions_.close_helper = close;
  books_.positions.observe(stop_);
  stop_.close = [close](std::int64_t ticket, double amount, std::int32_t account) {
    return close({ticket, amount, account});
  };
  question_box_.on_yes[frmTrade::close_question - 1] = [this] { trade_.closeAllse(); };
  question_box_.on_yes[frmClosePos::marked_question - 1] = [this] { close_positions_.closepos(); };
  question_box_.on_yes[frmClosePos::single_question - 1] = [this] { close_positions_.closepos1(); };
  const auto take = [this](std::vector<PositionBlock> blocks) { close_positions_.take(std::move(blocks)); };
  net_trade_.close = take;
  net_matrix_.close = take;
}

std::size_t Main::deliver_events(std::size_t limit) {
  const std::size_t delivered = pump_.deliver(limit);
  const bool more_to_come = delivered == limit;
  accounts_.write_connected(more_to_come);
  if (!more_to_come) general_.read_settings();
  return delivered;
}

void Main::poll_timers(bool events_wait) {
  sessions_.send_stored();
  if (ports_.reads != nullptr) ports_.reads->deliver();
  for (RoundRetry* each : {&market_order_.retry, &entry_order_.retry})
    each->poll();
  tickets_.poll();
  fills_.poll();
  stop_.refresh();
  unknown_.poll();
  if (!events_wait) accounts_.m_oTimer.poll(ports_.clock.now());
  journal_.flush();
  if (window_.stamp() == totals_shown_) return;
  totals_shown_ = window_.stamp();
  trade_.lbmSummaries.set_text(window_.totals_pane());
}

tl::expected<void, FileError> Main::load_saved_accounts() {
  const auto records = login_options_.records().read_all();
  if (!records) return tl::unexpected(records.error());
  for (const AccountRecord& record : *records) {
    const std::string key = account_key(record.user, record.account);
    if (accounts_.has_account(key)) {
      if (record.auto_login) accounts_.login_account(key);
      continue;
    }
    const LoginData login{record.user, record.password.copy(), record.account, login_options_.current()};
    if (sessions_.Add(login, "", record.auto_login) == nullptr) break;
    accounts_.savedListViw(record.user, record.password.reveal(), record.account);
  }
  return {};
}

}  // namespace tutti
