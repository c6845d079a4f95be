#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "benchmarks/bench_client.h"
#include "benchmarks/quiet_ports.h"
#include "benchmarks/scratch_folder.h"
#include "core/CQuestionBox.h"
#include "core/clock.h"
#include "core/locale_port.h"
#include "ledger/no_ledger.h"
#include "orders/frmClosePos.h"
#include "orders/frmorder.h"
#include "shell/frmMdiNew.h"
#include "views/CNetPos.h"
#include "views/frmTrade.h"

namespace tutti::bench {

// The terminal's forms as start-up assembles them, but for the journal, with any number of connected accounts
// on bench clients. Account numbers run from 1000; every account carries the market's symbols.
class BenchTerminal {
 public:
  BenchTerminal(const BenchMarket& market, std::size_t accounts);
  ~BenchTerminal();

  std::size_t size() const { return clients_.size(); }
  BenchClient& client(std::size_t index) { return *clients_[index]; }
  CClientAPIManagers& sessions() { return sessions_; }
  // What every account's summary query answers from now on, unless its client is told otherwise.
  void set_values(const AccountSummary* values) { values_ = values; }
  MGeneral& general() { return general_; }
  frmorder& order() { return order_; }
  frmMain& accounts() { return accounts_; }
  frmMdiNew& window() { return window_; }
  frmTrade& trade() { return trade_; }
  const CNetPos& net() const { return net_; }
  frmClosePos& close_positions() { return close_positions_; }
  const frmClosePos& close_positions() const { return close_positions_; }
  static std::int32_t account_of(std::size_t index) { return 1000 + static_cast<std::int32_t>(index); }
  void hold_amount_precision(int decimals) { general_.precision.hold(std::to_string(decimals)); }

 private:
  void connect(std::size_t accounts);

  ScratchFolder home_;
  Paths paths_{home_.path()};
  ManualClock clock_;
  QuietPrompt prompt_;
  QuietSound sound_;
  QuietFileDialog file_dialog_;
  ProcessLocale locale_port_;
  MessageQueue messages_;
  MGeneral general_{paths_, locale_, clock_, sound_, prompt_, messages_};
  CLocalSettings locale_{locale_port_};
  Books books_;
  Desk desk_;
  frmMdiNew window_{books_.accounts};
  AccountSummary first_values_{.balance = 1000.0, .equity = 1000.0, .free_margin = 1000.0};
  const AccountSummary* values_ = &first_values_;
  std::vector<BenchClient*> clients_;  // owned by their sessions
  CLoginOptions login_options_{general_, Endpoint{}};
  NoLedger ledger_;
  UnkeptStop stop_;
  CClientAPIManagers sessions_;
  frmMain accounts_{general_, desk_, books_, login_options_, sessions_, file_dialog_};
  frmorder order_{general_, accounts_, sessions_, books_.symbols};
  CQuestionBox question_box_{prompt_, messages_};
  CNetPos net_{locale_};
  frmTrade trade_{general_, question_box_, books_.positions, net_};
  frmClosePos close_positions_{general_, question_box_,    sessions_,     books_.accounts,
                               trade_,   books_.positions, books_.symbols};
};

}  // namespace tutti::bench
