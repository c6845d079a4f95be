#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "books/account_book.h"
#include "core/displayable.h"
#include "sessions/desk.h"

namespace tutti {

// Main window: the state of its status panes, its command-bar controls and its commands.
class frmMdiNew final : public StatusDesk, public Displayable {
 public:
  // Commands that start-up runs: they bring up the accounts list and the journal.
  static constexpr int show_journal = 100002;
  static constexpr int show_accounts = 100005;

  struct Control {
    std::string text;
    bool enabled = false;
  };

  explicit frmMdiNew(const AccountBook& accounts);

  // The totals line, in the form of the event that changed it last. Made when asked for.
  std::string totals_pane() const { return accounts_.totals.text(); }
  const std::string& server_time_pane() const { return server_time_; }
  // What the operator must not overlook for as long as the program runs; empty while there is nothing.
  const std::string& warning_pane() const { return warning_; }
  void warn(std::string_view text);
  // A control that does not exist is empty and not available.
  Control control(int id) const;

  // Runs a command; false when there is none with this identifier.
  bool execute(int command);
  void set_command(int command, std::function<void()> action) { commands_[command] = std::move(action); }

  // Raised with every change of panes, controls and accounts.
  std::uint64_t stamp() const { return stamp_ + accounts_.stamp(); }

  // StatusDesk
  void server_time(std::string_view text) override;
  void control_text(int id, std::string_view text) override;
  void control_enabled(int id, bool enabled) override;

 private:
  const AccountBook& accounts_;
  std::string server_time_;
  std::string warning_;
  std::map<int, Control> controls_;
  std::map<int, std::function<void()>> commands_;
  std::uint64_t stamp_ = 0;
};

}  // namespace tutti
