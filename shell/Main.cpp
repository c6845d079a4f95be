#include "shell/Main.h"

#include <utility>

#include "sessions/account_record.h"

namespace tutti {
namespace {
constexpr std::uint32_t highlighted_bgr = 0xD2B54D;
constexpr std::uint32_t normal_bgr = 0x800000;
}  // namespace

Main::Main(std::filesystem::path application_folder, const MachinePorts& ports, ServerSide server)
    : paths_(std::move(application_folder)),
      ports_(ports),
      server_(std::move(server)),
      events_(server_.events),
      general_(paths_, ports_.clock, ports_.sound, ports_.prompt, messages_),
      login_options_(general_, server_.endpoint),
      sessions_(server_.make_client, general_, desk_, books_, login_options_) {
  general_.key = KeyFile{ports_.key_file};
}

Main::~Main() {
  // Sessions write into the windows while they end, so they go while every window still stands.
  sessions_.Clear();
}

tl::expected<void, FileError> Main::start() {
  create_objects();
  if (auto shown = show_main_window(); !shown) return shown;
  prepare_result_lists();
  if (auto loaded = load_saved_accounts(); !loaded) return loaded;
  colours_->set(from_bgr(highlighted_bgr), from_bgr(normal_bgr));
  window_->execute(frmMdiNew::show_accounts);
  window_->execute(frmMdiNew::show_journal);
  pump_->open();
  return {};
}

void Main::create_objects() {
  colours_ = std::make_unique<Culf>();
  question_box_ = std::make_unique<CQuestionBox>(ports_.prompt, messages_);
  sure_ = std::make_unique<frmSure>(ports_.prompt);
  journal_window_ = std::make_unique<frmJournal>(ports_.clock);
  journal_ = std::make_unique<CJournal>(paths_, ports_.clock, *journal_window_);
  general_.journal = journal_.get();
  open_positions_ = std::make_unique<COpenPos>();
  net_positions_ = std::make_unique<CNetPos>(general_);
  locale_ = std::make_unique<CLocalSettings>(ports_.locale);
  general_.locale = locale_.get();
  pending_orders_ = std::make_unique<CPendingOrds>();
  help_ = std::make_unique<CHTMLHELP>();
  pump_ = std::make_unique<EventPump>(events_, *journal_, messages_);
}

tl::expected<void, FileError> Main::show_main_window() {
  window_ = std::make_unique<frmMdiNew>(general_.totals);
  desk_.status = window_.get();
  journal_->on_incomplete = [this](std::string_view text) {
    general_.tell_outside(text);
    window_->warn(text);
  };
  accounts_ =
      std::make_unique<frmMain>(general_, desk_, books_, login_options_, sessions_, ports_.file_dialog);
  desk_.accounts = accounts_.get();
  market_order_ = std::make_unique<frmorder>(general_, *accounts_, sessions_, books_.symbols);
  desk_.market_order = market_order_.get();
  accounts_->attach(*market_order_);
  entry_order_ = std::make_unique<frmlimitorder>(general_, *accounts_, sessions_, books_.symbols);
  desk_.entry_order = entry_order_.get();
  market_watch_ = std::make_unique<frmMW>(books_.symbols);
  market_watch_->to_market_order = [this](std::string_view symbol) { market_order_->take_symbol(symbol); };
  market_watch_->to_entry_order = [this](std::string_view symbol) { entry_order_->take_symbol(symbol); };
  desk_.market_watch = market_watch_.get();
  trade_ = std::make_unique<frmTrade>(general_, *question_box_, books_.positions, *net_positions_);
  books_.positions.observe(*trade_);
  net_trade_ = std::make_unique<frmNetTrade>(*net_positions_, books_.symbols);
  net_matrix_ = std::make_unique<NetMatrix>(*net_positions_);
  sure_->logout_all = [this] { accounts_->logout_all(); };
  sure_->remove_all = [this] { accounts_->mnuclear_Click(); };
  window_->set_command(frmMdiNew::show_journal, [this] { journal_->Displayed(true); });
  window_->set_command(frmMdiNew::show_accounts, [this] { accounts_->Displayed(true); });
  window_->Displayed(true);
  if (auto loaded = accounts_->load(); !loaded) return loaded;

  pending_ = std::make_unique<frmPending>(general_, sessions_, books_.orders);
  desk_.pending = pending_.get();
  books_.orders.observe(*pending_);
  const auto edit = [this](const frmPending::EditRequest& request) { entry_order_->EdirMode(request); };
  pending_->EdirMode = edit;
  trade_->EdirMode = edit;
  requote_ = std::make_unique<frmPriceChanged>(general_, *market_order_, *pending_, books_.orders);
  desk_.requote = requote_.get();
  connect_closing();
  return {};
}

// Everything that closes positions, and what is picked for it elsewhere.
void Main::connect_closing() {
  close_positions_ = std::make_unique<frmClosePos>(general_, *question_box_, sessions_, books_.accounts,
                                                   *trade_, books_.positions, books_.symbols);
  desk_.close_positions = close_positions_.get();
  books_.positions.observe(*close_positions_);
  close_helper_ = std::make_unique<CloseHelper>(general_, sessions_);
  const auto close = [this](const frmTrade::Close& position) {
    return close_helper_->close(position.ticket, position.amount, position.account);
  };
  trade_->close_helper = close;
  close_positions_->close_helper = close;
  question_box_->on_yes[frmTrade::close_question - 1] = [this] { trade_->closeAllse(); };
  question_box_->on_yes[frmClosePos::marked_question - 1] = [this] { close_positions_->closepos(); };
  question_box_->on_yes[frmClosePos::single_question - 1] = [this] { close_positions_->closepos1(); };
  const auto take = [this](std::vector<PositionBlock> blocks) { close_positions_->take(std::move(blocks)); };
  net_trade_->close = take;
  net_matrix_->close = take;
}

void Main::poll_timers(bool events_wait) {
  if (!events_wait) accounts_->m_oTimer.poll(ports_.clock.now());
  if (window_->stamp() == totals_shown_) return;
  totals_shown_ = window_->stamp();
  trade_->lbmSummaries.set_text(window_->totals_pane());
}

void Main::prepare_result_lists() {
  desk_.close_positions->prepare({"Account", "Status", "Amount", "Action"}, AccountState::disconnected);
}

tl::expected<void, FileError> Main::load_saved_accounts() {
  const auto records = login_options_.records().read_all();
  if (!records) return tl::unexpected(records.error());
  for (const AccountRecord& record : *records) {
    const std::string key = account_key(record.user, record.account);
    if (accounts_->has_account(key)) {
      if (record.auto_login) accounts_->login_account(key);
      continue;
    }
    const LoginData login{record.user, record.password.copy(), record.account, login_options_.current()};
    if (sessions_.Add(login, "", record.auto_login) == nullptr) break;
    accounts_->savedListViw(record.user, record.password.reveal(), record.account);
  }
  return {};
}

}  // namespace tutti
