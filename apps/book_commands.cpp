// Positions and pending orders: list, close, cancel.

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

#include "apps/commands.h"
#include "apps/output.h"
#include "apps/requote_answer.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {
namespace {

void print_list(const Terminal& terminal, const char* name, const RowList& list,
                const NamedColumns& columns) {
  switch (terminal.options().form) {
    case OutputForm::json:
      fmt::print("{}\n", nlohmann::json{{name, rows_json(list, columns)}}.dump(2));
      break;
    case OutputForm::csv:
      fmt::print("{}", rows_csv(list, columns));
      break;
    case OutputForm::text:
      fmt::print("{}{} {}\n", list.empty() ? "" : rows_text(list), list.size(), name);
      break;
  }
}

// One close or cancel: what was asked for and what became of it.
struct Asked {
  std::int64_t number = 0;
  std::int32_t account = 0;
};

// A command that ticks rows, presses a button, and waits for what becomes of each row.
class RowsRun {
 public:
  RowsRun(Terminal& terminal, const RowsArguments& arguments, RowList& list, const char* number_name)
      : terminal_(terminal), main_(terminal.main()), arguments_(arguments), list_(list), name_(number_name) {}

  int run(std::size_t account_column, std::size_t symbol_column, const char* list_name, Label& button);

 private:
  bool wanted(std::int64_t number, std::int32_t account, std::string_view symbol) const;
  const SentOrder* sent(const Asked& asked) const;
  bool answered(const Asked& asked) const;
  std::string result(const Asked& asked) const;
  void print(const std::vector<Asked>& all, const char* list_name) const;

  Terminal& terminal_;
  Main& main_;
  const RowsArguments& arguments_;
  RowList& list_;
  const char* name_;
};

bool RowsRun::wanted(std::int64_t number, std::int32_t account, std::string_view symbol) const {
  const auto in = [](const auto& values, auto value) {
    return values.empty() || std::find(values.begin(), values.end(), value) != values.end();
  };
  return in(arguments_.numbers, number) && in(arguments_.accounts, account) &&
         (arguments_.symbol.empty() || arguments_.symbol == symbol);
}

const SentOrder* RowsRun::sent(const Asked& asked) const {
  const CClientAPIManager* session = main_.accounts().sessions().by_account(asked.account);
  return session == nullptr ? nullptr : session->sent_request(asked.number);
}

bool RowsRun::answered(const Asked& asked) const {
  const SentOrder* request = sent(asked);
  return request == nullptr ||
         (request->outcome != SentOrder::Outcome::waiting && request->outcome != SentOrder::Outcome::pending);
}

std::string RowsRun::result(const Asked& asked) const {
  const SentOrder* request = sent(asked);
  if (request == nullptr) return "not sent";
  switch (request->outcome) {
    case SentOrder::Outcome::accepted:
      return "done";
    case SentOrder::Outcome::refused:
      break;
    default:
      return "unknown";
  }
  if (request->result_code != 0 && request->result_code != result::succeeded) {
    return std::string{CClientAPIManager::ResultDescription(request->result_code)};
  }
  const std::string_view text = trim(request::text(request->request_code));
  if (!text.empty()) return std::string{text};
  return request->request_code == request::taken
             ? "rejected"
             : fmt::format("refused, request code {}", request->request_code);
}

void RowsRun::print(const std::vector<Asked>& all, const char* list_name) const {
  if (terminal_.options().form == OutputForm::json) {
    nlohmann::json lines = nlohmann::json::array();
    for (const Asked& asked : all) {
      const SentOrder* request = sent(asked);
      lines.push_back({{name_, asked.number},
                       {"account", asked.account},
                       {"request_code", request ? nlohmann::json(request->request_code) : nlohmann::json{}},
                       {"accepted", request && request->outcome == SentOrder::Outcome::accepted},
                       {"result", result(asked)}});
    }
    fmt::print("{}\n", nlohmann::json{{list_name, lines},
                                      {"totals", totals_json(main_)},
                                      {"journal", journal_json(main_, no_account)}}
                           .dump(2));
    return;
  }
  TextTable table{{{name_, true}, {"account", true}, {"result"}}};
  for (const Asked& asked : all) {
    table.add({std::to_string(asked.number), std::to_string(asked.account), result(asked)});
  }
  if (terminal_.options().form == OutputForm::csv) {
    fmt::print("{},account,result\n", name_);
    for (const Asked& asked : all)
      fmt::print("{},{},{}\n", asked.number, asked.account, result(asked));
    return;
  }
  fmt::print("{}{}\n\n{}", table.text(), main_.window().totals_pane(), journal_text(main_));
}

int RowsRun::run(std::size_t account_column, std::size_t symbol_column, const char* list_name,
                 Label& button) {
  terminal_.log_in();
  if (!terminal_.knows(arguments_.accounts)) return exit_status::usage;
  const bool everybody = terminal_.tell_unconnected(arguments_.accounts) == 0;
  std::vector<Asked> all;
  for (Row& row : list_) {
    const Asked asked{row.key().number(),
                      static_cast<std::int32_t>(row.cell(account_column).stored_number())};
    if (!wanted(asked.number, asked.account, row.text(symbol_column))) continue;
    list_.tick(row, true);
    all.push_back(asked);
  }
  for (const std::int64_t number : arguments_.numbers) {
    if (std::none_of(all.begin(), all.end(), [&](const Asked& a) { return a.number == number; })) {
      fmt::print(stderr, "No connected account has {} {}\n", name_, number);
      return exit_status::usage;
    }
  }
  button.click();
  run_answering(terminal_, arguments_.requote, [&] {
    return std::all_of(all.begin(), all.end(), [&](const Asked& a) { return answered(a); });
  });
  terminal_.journal_unanswered();
  print(all, list_name);
  const bool done = std::all_of(all.begin(), all.end(), [&](const Asked& a) {
    const SentOrder* request = sent(a);
    return request != nullptr && request->outcome == SentOrder::Outcome::accepted;
  });
  return done && everybody && !all.empty() ? exit_status::all_accepted : exit_status::some_refused;
}

}  // namespace

int positions_command(Terminal& terminal) {
  terminal.log_in();
  print_list(terminal, "positions", terminal.main().trade().lvwOpenPos,
             {{"ticket", frmTrade::ticket},
              {"account", frmTrade::account},
              {"time", frmTrade::time, true},
              {"type", frmTrade::type, true},
              {"amount", frmTrade::amount},
              {"symbol", frmTrade::symbol, true},
              {"open_price", frmTrade::open_price},
              {"current_price", frmTrade::current_price},
              {"stop_loss", frmTrade::stop_loss},
              {"take_profit", frmTrade::take_profit},
              {"commission", frmTrade::commission},
              {"interest", frmTrade::interest},
              {"profit", frmTrade::profit}});
  return terminal.tell_unconnected({}) == 0 ? exit_status::all_accepted : exit_status::some_refused;
}

int orders_command(Terminal& terminal) {
  terminal.log_in();
  print_list(terminal, "orders", terminal.main().pending().lvwPending,
             {{"order", frmPending::order_number},
              {"account", frmPending::account},
              {"type", frmPending::type, true},
              {"amount", frmPending::amount},
              {"symbol", frmPending::symbol, true},
              {"price", frmPending::price},
              {"stop_loss", frmPending::stop_loss},
              {"take_profit", frmPending::take_profit},
              {"time", frmPending::time, true}});
  return terminal.tell_unconnected({}) == 0 ? exit_status::all_accepted : exit_status::some_refused;
}

int close_command(Terminal& terminal, const RowsArguments& arguments) {
  frmTrade& form = terminal.main().trade();
  return RowsRun{terminal, arguments, form.lvwOpenPos, "ticket"}.run(frmTrade::account, frmTrade::symbol,
                                                                     "positions", form.lbbClose);
}

int cancel_command(Terminal& terminal, const RowsArguments& arguments) {
  frmPending& form = terminal.main().pending();
  return RowsRun{terminal, arguments, form.lvwPending, "order"}.run(frmPending::account, frmPending::symbol,
                                                                    "orders", form.lbbCancel);
}

}  // namespace tutti
