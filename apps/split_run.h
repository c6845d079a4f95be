#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "apps/commands.h"
#include "apps/named_act.h"
#include "orders/account_rows.h"

namespace tutti {

// A command that splits an amount over accounts in one of the order windows, sends, waits for all answers and
// prints one line per account.
class SplitRun {
 public:
  virtual ~SplitRun() = default;
  SplitRun(const SplitRun&) = delete;
  SplitRun& operator=(const SplitRun&) = delete;

  int run();

 protected:
  // The controls of the window.
  struct Controls {
    RowList& rows;
    ComboBox& symbol;
    ComboBox& rule;
    TextBox& amount;
    CheckBox& all_accounts;
    Button& distribute;
  };

  SplitRun(CommandContext& context, const SplitArguments& arguments, Controls controls)
      : context_(context), main_(context.main()), arguments_(arguments), controls_(controls) {}

  CommandContext& context_;
  Main& main_;
  const SplitArguments& arguments_;
  Controls controls_;

 private:
  // One account of the order: what it was to get and what became of it.
  struct Line {
    std::int32_t account = 0;
    std::string user;
    std::optional<double> share;
    RequestId request = 0;  // 0: none was made
    std::optional<RequestCode> request_code;
    bool accepted = false;
    bool unknown = false;  // no answer came
    std::string result;
  };

  // Fills in what the window has beside amount, rule and symbol.
  virtual void fill_in() {}
  virtual Shares shares() const = 0;
  virtual ShareFault share_fault(const Row& row) const = 0;
  // Why the dealing server is sure to refuse the prices on an account; empty when they are good for now.
  virtual std::string price_fault(const CClientAPIManager&) const { return {}; }
  // Sends and waits for the answers; false when nothing was sent.
  virtual bool send() = 0;
  virtual const SentOrder& sent_by(const CClientAPIManager& session) const = 0;
  // "Buy EURUSD"
  virtual std::string title() const = 0;
  // The act under the name that a script gave it, with what is the window's own of its plan.
  virtual NamedAct named() const = 0;
  // What to answer when the dealer offers another price.
  virtual RequoteReply requote() const { return RequoteReply::reject; }

  bool known_arguments() const;
  void tick_accounts();
  void note_reasons();
  bool chosen(std::int32_t account) const;
  std::vector<Line> lines() const;
  void describe(const CClientAPIManager& session, Line& line) const;
  // Why an order with this row's share is sure to be refused; empty when it isn't.
  std::string sure_refusal(const CClientAPIManager& session, const Row& row) const;
  static void describe_sent(const SentOrder& order, Line& line);
  // What the ledger has of them.
  using Stored = std::map<RequestId, TicketRequest>;
  void print(const std::vector<Line>& lines) const;
  std::string text(const std::vector<Line>& lines, const Stored& stored) const;
  int status(const std::vector<Line>& lines) const;

  std::map<std::int32_t, std::string> reasons_;  // why an account is not ticked
  Shares shares_;                                // as they were when the order was sent
  bool sent_ = false;
};

}  // namespace tutti
