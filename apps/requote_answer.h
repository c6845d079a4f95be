#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <string_view>

#include "apps/commands.h"
#include "orders/frmPriceChanged.h"

namespace tutti {

// Answers requotes without a screen, past the dialog: each at once and always the same way, or by what is
// typed, a line "y" or "n" per requote. Then they are asked about one after the other, in the order in which
// they came, while the countdown of each goes on.
class RequoteAnswer {
 public:
  // Takes the requotes over as long as it lives.
  RequoteAnswer(frmPriceChanged& form, CommandContext& context, RequoteReply how);
  ~RequoteAnswer();
  RequoteAnswer(const RequoteAnswer&) = delete;
  RequoteAnswer& operator=(const RequoteAnswer&) = delete;

  // To be called with every step of the context.
  void step();

 private:
  bool take(CClientAPIManager& session, const Requote& requote);
  void tell(const Requote& requote, std::string_view question) const;
  // The session that is to answer; nullptr once the order is settled or its session lost.
  CClientAPIManager* session_of(const Requote& requote) const;

  frmPriceChanged& form_;
  CommandContext& context_;
  RequoteReply how_;
  std::deque<Requote> waiting_;  // for what is typed; the first one is asked about
  // Since when it is asked about; nothing before.
  std::optional<std::chrono::milliseconds> asked_at_;
};

// Runs the terminal until the condition holds or the time is over, and answers the requotes meanwhile.
void run_answering(CommandContext& context, RequoteReply how, const std::function<bool()>& done);

}  // namespace tutti
