#pragma once

#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

#include <tl/expected.hpp>

#include "accounts/frmMain.h"
#include "books/account_book.h"
#include "books/symbol_collection.h"
#include "core/CLocalSettings.h"
#include "core/CQuestionBox.h"
#include "core/MGeneral.h"
#include "core/event_pump.h"
#include "core/event_sources.h"
#include "core/frmSure.h"
#include "core/message_queue.h"
#include "core/paths.h"
#include "core/stop_sign.h"
#include "ledger/ledger.h"
#include "ledger/ledger_reads.h"
#include "limits/limits_file.h"
#include "orders/close_helper.h"
#include "orders/frmClosePos.h"
#include "orders/frmHeld.h"
#include "orders/frmLimits.h"
#include "orders/frmPriceChanged.h"
#include "orders/frmStop.h"
#include "orders/frmlimitorder.h"
#include "orders/frmorder.h"
#include "orders/ticket_orders.h"
#include "orders/ticket_orders_form.h"
#include "orders/ticket_retry.h"
#include "sessions/CClientAPIManagers.h"
#include "sessions/CLoginOptions.h"
#include "sessions/desk.h"
#include "shell/CHTMLHELP.h"
#include "shell/Culf.h"
#include "shell/broker_card.h"
#include "shell/frmMdiNew.h"
#include "views/CJournal.h"
#include "views/CNetPos.h"
#include "views/COpenPos.h"
#include "views/CPendingOrds.h"
#include "views/fill_list.h"
#include "views/frmJournal.h"
#include "views/frmMW.h"
#include "views/frmNetTrade.h"
#include "views/frmPending.h"
#include "views/frmTrade.h"
#include "views/net_matrix.h"
#include "views/ticket_board.h"
#include "views/unknown_list.h"

namespace tutti {

// The ports to the machine that a terminal runs with. They outlive it.
struct MachinePorts {
  const Clock& clock;
  Prompt& prompt;
  SoundPort& sound;
  LocalePort& locale;
  FileDialog& file_dialog;
  Ledger& ledger;
  StopSign& stop;
  std::filesystem::path key_file = {};  // key of the account records; empty: where KeyFile looks for it
  std::function<void(std::string_view text)> outside = {};  // standard error of the program; may be empty
  LedgerReads* reads = nullptr;  // of what the ledger has; nullptr where nobody looks
};

// What stands behind the trading clients, and the address it answers to.
struct ServerSide {
  ClientFactory make_client;
  std::vector<EventSource*> events;
  Endpoint endpoint;
  bool simulated = false;  // it is the server within the program, with made-up prices and money
};

// Start-up, and owner of every global object: the one place that sees all rooms and creates everything in its
// fixed order. One terminal per object. Sessions end first, while every window they write to still stands.
class Main {
 public:
  // Creates the objects, shows the main window, loads the saved accounts, and opens the pump last. Fails when
  // a data file can't be read; the error names file and line.
  static tl::expected<std::unique_ptr<Main>, FileError> start(std::filesystem::path application_folder,
                                                              const MachinePorts& ports, ServerSide server);
  ~Main();
  Main(const Main&) = delete;
  Main& operator=(const Main&) = delete;

  // Delivers waiting events, up to `limit`, and answers how many; to be called whenever the thread is free.
  std::size_t deliver_events(std::size_t limit = std::numeric_limits<std::size_t>::max());
  // Runs the timers that are due; to be called as often. While events wait nobody is silent yet.
  void poll_timers(bool events_wait = false);

  MGeneral& general() { return general_; }
  MessageQueue& messages() { return messages_; }
  CQuestionBox& question_box() { return question_box_; }
  frmSure& sure() { return sure_; }
  frmMdiNew& window() { return window_; }
  CLoginOptions& login_options() { return login_options_; }
  CClientAPIManagers& sessions() { return sessions_; }
  frmMain& accounts() { return accounts_; }
  frmorder& market_order() { return market_order_; }
  frmlimitorder& entry_order() { return entry_order_; }
  frmMW& market_watch() { return market_watch_; }
  frmTrade& trade() { return trade_; }
  frmPending& pending() { return pending_; }
  frmClosePos& close_positions() { return close_positions_; }
  frmNetTrade& net_trade() { return net_trade_; }
  NetMatrix& net_matrix() { return net_matrix_; }
  TicketBoard& tickets() { return tickets_; }
  FillList& fills() { return fills_; }
  UnknownList& unknown() { return unknown_; }
  TicketRetry& ticket_retry() { return ticket_retry_; }
  TicketOrdersForm& ticket_orders_form() { return ticket_orders_form_; }
  frmPriceChanged& requote() { return requote_; }
  // An order over a limit, the limits, and STOP ALL.
  frmHeld& held() { return held_; }
  frmLimits& limits() { return limits_; }
  frmStop& stop_form() { return stop_; }
  frmJournal& journal_window() { return journal_window_; }
  CJournal& journal() { return journal_; }
  SymbolCollection& symbols() { return books_.symbols; }
  const AccountBook& account_book() const { return books_.accounts; }
  const PositionBook& positions() const { return books_.positions; }
  const OrderBook& orders() const { return books_.orders; }
  Culf& colours() { return colours_; }
  CHTMLHELP& help() { return help_; }
  COpenPos& open_positions() { return open_positions_; }
  CPendingOrds& pending_orders() { return pending_orders_; }
  CNetPos& net_positions() { return net_positions_; }
  // Whether orders go to the server within the program, which the operator must never take for the market.
  bool simulated() const { return server_.simulated; }
  // Read from its files with every call.
  BrokerCard broker() const { return BrokerCard::read(paths_); }

 private:
  Main(std::filesystem::path application_folder, const MachinePorts& ports, ServerSide server);
  void connect();
  void connect_closing();
  tl::expected<void, FileError> run();
  tl::expected<void, FileError> load_saved_accounts();

  Paths paths_;
  MachinePorts ports_;
  ServerSide server_;
  EventSources events_{server_.events};
  MessageQueue messages_;
  MGeneral general_{paths_, locale_, ports_.clock, ports_.sound, ports_.prompt, messages_};
  Books books_;
  Desk desk_;

  Culf colours_;
  CQuestionBox question_box_{ports_.prompt, messages_};
  frmSure sure_{ports_.prompt};
  frmJournal journal_window_{ports_.clock};
  CJournal journal_{paths_, ports_.clock, journal_window_};
  COpenPos open_positions_;
  CNetPos net_positions_{locale_};
  CLocalSettings locale_{ports_.locale};
  CPendingOrds pending_orders_;
  CHTMLHELP help_;
  EventPump pump_{events_, journal_, messages_};
  frmMdiNew window_{books_.accounts};
  LimitsFile limits_file_{paths_.application_folder()};
  CLoginOptions login_options_{general_, server_.endpoint};
  CClientAPIManagers sessions_{server_.make_client, general_,      desk_,      books_,
                               login_options_,      ports_.ledger, ports_.stop};
  frmMain accounts_{general_, desk_, books_, login_options_, sessions_, ports_.file_dialog};
  frmorder market_order_{general_, accounts_, sessions_, books_.symbols};
  frmlimitorder entry_order_{general_, accounts_, sessions_, books_.symbols};
  frmMW market_watch_{books_.symbols};
  frmTrade trade_{general_, question_box_, books_.positions, net_positions_};
  frmNetTrade net_trade_{net_positions_, books_.symbols};
  NetMatrix net_matrix_{net_positions_};
  frmPending pending_{general_, sessions_, books_.orders};
  frmPriceChanged requote_{general_, market_order_, pending_, books_.orders};
  frmClosePos close_positions_{general_, question_box_,    sessions_,     books_.accounts,
                               trade_,   books_.positions, books_.symbols};
  CloseHelper close_helper_{general_, sessions_};
  TicketRetry ticket_retry_{general_, sessions_, books_};
  TicketOrders ticket_orders_{general_, sessions_, books_};
  TicketOrdersForm ticket_orders_form_{general_, ticket_orders_};
  TicketBoard tickets_{ports_.clock, ports_.reads};
  FillList fills_{ports_.clock, ports_.reads};
  frmHeld held_{general_, sessions_};
  frmLimits limits_{general_, sessions_.admission(), limits_file_};
  frmStop stop_{general_, sessions_, books_};
  UnknownList unknown_{general_, ports_.reads};
  std::uint64_t totals_shown_ = 0;  // stamp of the main window's state that the summary label shows
};

}  // namespace tutti
