#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include <tl/expected.hpp>

#include "apps/command_context.h"
#include "apps/records.h"

namespace tutti {

// The way to the terminal that runs in a home folder, for who has not got the folder's lock. A question is a
// connection of its own; see TerminalControl for what may be asked.
class TerminalLink {
 public:
  struct Fault {
    std::string text;     // for the operator
    int status = 0;       // exit status
    bool nobody = false;  // no terminal listens in this folder
  };
  enum class Effect : std::uint8_t { reads, acts };

  // The ports outlive it. `most`: how long an answer may take.
  TerminalLink(std::filesystem::path home, const CommandPorts& ports, std::chrono::milliseconds most)
      : home_(std::move(home)), ports_(ports), most_(most) {}

  // Waits for the answer, so long at most, or until a signal comes. Of what acts it is said that it may have
  // been carried out, when it has left and no answer came.
  tl::expected<Json, Fault> ask(Json question, Effect effect = Effect::reads) const;
  // Lets time go by until it holds, with some between two looks; false when that took longer than an answer
  // may, or a signal came.
  bool until(const std::function<bool()>& holds) const;

 private:
  std::filesystem::path home_;
  const CommandPorts& ports_;
  std::chrono::milliseconds most_;
};

// Says what was wrong; answers the exit status.
int tell_fault(Console& console, const TerminalLink::Fault& fault);

}  // namespace tutti
