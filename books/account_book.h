#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <tsl/robin_map.h>

#include "books/account_totals.h"
#include "books/record_blocks.h"
#include "core/colours.h"
#include "sessions/contract/login_data.h"

namespace tutti {

enum class AccountState : std::uint8_t {
  disconnected,
  connecting,
  connected,
  invalid,  // the server does not know the user, or not the account
};

// Number of a record, given once and good for the whole run.
using AccountHandle = std::uint32_t;

// One session of an account. An account number has as many as it stands under user names. What every summary
// writes comes first and fills two lines of the processor's cache.
struct alignas(64) AccountEntry {
  // What the row of the accounts list shows. It has steps of its own: a query shows what it brought and
  // "connected" whatever was told of the connection, and a logout empties the row before the connection ends.
  struct Shown {
    AccountSummary values;  // zeros while there are none
    AccountState state = AccountState::disconnected;
    Ink ink = Ink::red;  // of the state
    bool has_values = false;
    // A query's values are on show, and who shows the row knows that it is outdated. He takes it back as soon
    // as he has read them.
    mutable bool outdated = false;
    std::uint64_t written = 0;  // stamp of the last change that was not one of the values alone
    std::string note;
  };

  AccountSummary values;    // what the session last added to the totals; zeros while disconnected
  std::uint64_t stamp = 0;  // raised with every change
  Shown shown;
  AccountHandle handle = 0;
  std::int32_t account = 0;
  AccountState state = AccountState::disconnected;  // as the connection told last
  std::string note;  // the operator's, for when the reason that is shown in its place no longer holds
  std::string user;  // as typed
  Endpoint server;

  // Its row reads so, and is there.
  bool connected() const { return shown.state == AccountState::connected; }
};

// What is known of every account session. Sessions write, everybody reads. Records stay where they are for
// the whole run, those of sessions that have left included.
class AccountBook {
 public:
  AccountBook() = default;
  AccountBook(const AccountBook&) = delete;
  AccountBook& operator=(const AccountBook&) = delete;

  AccountEntry& add(std::string_view user, std::int32_t account, const Endpoint& server);
  // The session has left: its record is found no more.
  void remove(AccountHandle handle);

  // In the order in which they came.
  const std::vector<const AccountEntry*>& listed() const { return listed_; }
  // Any session of the account is.
  bool connected(std::int32_t account) const;
  // How many sessions are connected, and how many on their way.
  struct Counts {
    int connected = 0;
    int connecting = 0;
    int all = 0;
  };
  Counts counts() const;
  // Raised with every change of a record, and when one comes or leaves.
  std::uint64_t stamp() const { return stamp_; }

  void set_state(AccountEntry& record, AccountState state) {
    record.state = state;
    changed(record);
  }
  void set_values(AccountEntry& record, const AccountSummary& values) {
    record.values = values;
    changed(record);
  }
  // Both the operator's note and the one on show.
  void set_note(AccountEntry& record, std::string_view note);

  void show_state(AccountEntry& record, AccountState state, Ink ink);
  // Green where it says "connected", red otherwise.
  void recolour(AccountEntry& record);
  // What a query brought. It comes with every summary.
  void show_values(AccountEntry& record, const AccountSummary& values) {
    AccountEntry::Shown& shown = record.shown;
    shown.values = values;
    if (shown.outdated) [[likely]]
      return changed(record);
    // Green is the colour of "connected" alone.
    if (shown.has_values && shown.ink == Ink::green) {
      changed(record);
      if (on_shown) on_shown(record);
    } else {
      shown.has_values = true;
      if (shown.ink != Ink::green) shown.state = AccountState::connected;
      shown.ink = Ink::green;
      show(record);
    }
    shown.outdated = true;
  }
  void clear_values(AccountEntry& record);
  // A note in the place of the operator's, until that is shown again.
  void show_note(AccountEntry& record, std::string_view note);

  // Sum over the connected sessions; only sessions change it.
  AccountTotals totals;

  // Told after what a row shows has changed, of values once until they were read; set once by the list of the
  // rows.
  std::function<void(const AccountEntry&)> on_shown;

 private:
  void changed(AccountEntry& record) { record.stamp = ++stamp_; }
  void show(AccountEntry& record) {
    changed(record);
    record.shown.written = record.stamp;
    record.shown.outdated = false;
    if (on_shown) on_shown(record);
  }

  RecordBlocks<AccountEntry> all_;  // by handle
  std::vector<const AccountEntry*> listed_;
  tsl::robin_map<std::int32_t, std::vector<const AccountEntry*>> by_account_;  // of those listed
  std::uint64_t stamp_ = 0;
};

}  // namespace tutti
