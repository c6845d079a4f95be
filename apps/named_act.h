#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "apps/command_context.h"
#include "apps/commands.h"

namespace tutti {

// An act that a script gives a name of its own, so that it can be asked for until it is known to be done,
// whatever breaks off meanwhile: whoever asks again has nothing computed anew and nothing sent twice.
class NamedAct {
 public:
  // `command` and what follows are what makes its plan; who asks again has to ask for the same.
  NamedAct(CommandContext& context, std::string id, std::string command)
      : context_(context), id_(std::move(id)), plan_(std::move(command)) {}

  NamedAct& with(const std::string& name, const std::string& value);
  // In any order, and once each.
  template <class Number>
  NamedAct& with(const std::string& name, std::vector<Number> numbers);

  // To be asked before anything is sent, when all is connected. Nothing: it is new, or has no name; the next
  // ticket is its own. Else it was asked for before, and this is the exit status: what it left undone has
  // been sent, and what became of all of it is printed; or it was another plan, and nothing is done.
  std::optional<int> repeated(RequoteReply requote);

 private:
  int go_on(const NamedTicket& ticket, RequoteReply requote);
  // The ticket's requests, each with the last that it was sent again with.
  std::vector<TicketRequest> outcomes(std::int64_t ticket) const;

  CommandContext& context_;
  std::string id_;
  std::string plan_;
};

}  // namespace tutti
