#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/MGeneral.h"
#include "core/locale_port.h"
#include "sessions/CClientAPIManagers.h"
#include "sessions/CLoginOptions.h"
#include "tests/support/recording_desk.h"
#include "tests/support/recording_ports.h"
#include "tests/support/scripted_client.h"
#include "tests/support/scripted_ledger.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {

// Sessions on scripted clients, with a recording receiver in the place of every window.
class SessionRig {
 public:
  SessionRig() {
    general.journal = &journal;
    general.key = KeyFile{home.key_file()};
    books.positions.observe(windows.positions);
    books.orders.observe(windows.orders);
  }

  CClientAPIManager& add(std::int32_t account, const std::string& user = "BOB") {
    return *sessions.Add({user, "SECRET", account, {}}, "", false);
  }
  ScriptedClient& client(CClientAPIManager& session) {
    return static_cast<ScriptedClient&>(session.ClientAPIF());
  }

  // Runs a step as the pump does, and answers all it wrote anywhere, sorted.
  Heard during(const std::function<void()>& step) {
    windows.heard.clear();
    {
      const MessageQueue::HandlerScope handler{messages};
      step();
    }
    return take();
  }
  Heard take() {
    Heard out = std::exchange(windows.heard, {});
    for (; messages.current() != nullptr; messages.dismiss())
      out.push_back(messages.current()->caption + ": " + messages.current()->text);
    for (const std::string& name : sound.take())
      out.push_back("sound " + name);
    std::sort(out.begin(), out.end());
    return out;
  }
  std::string totals() const { return books.accounts.totals.text(); }

  class Lines final : public Journal {
   public:
    explicit Lines(Heard& heard) : heard_(heard) {}
    void log(std::string_view text, std::int32_t account) override {
      heard_.push_back("journal " + std::to_string(account) + ": " + std::string{text});
    }

   private:
    Heard& heard_;
  };

  TemporaryFolder home;
  Paths paths{home.path()};
  ManualClock clock;
  RecordingSound sound;
  RecordingPrompt prompt;
  MessageQueue messages;
  ProcessLocale locale;
  CLocalSettings locale_settings{locale};
  MGeneral general{paths, locale_settings, clock, sound, prompt, messages};
  RecordingDesk windows;
  Lines journal{windows.heard};
  Books books;
  CLoginOptions options{general, {"10.0.0.9", 443}};
  ScriptedLedger ledger;
  UnkeptStop stop;
  CClientAPIManagers sessions{[](const LoginData&) { return std::make_unique<ScriptedClient>(); },
                              general,
                              windows.desk,
                              books,
                              options,
                              ledger,
                              stop};
};

}  // namespace tutti::testing
