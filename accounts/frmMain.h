#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "accounts/client_rows.h"
#include "accounts/order_window.h"
#include "accounts/saved_lists.h"
#include "core/MGeneral.h"
#include "core/displayable.h"
#include "core/file_dialog.h"
#include "core/label.h"
#include "core/text_box.h"
#include "core/timer.h"
#include "sessions/CClientAPIManagers.h"
#include "sessions/CLoginOptions.h"
#include "sessions/contract/codes.h"
#include "sessions/desk.h"
#include "sessions/frmaccount.h"

namespace tutti {

// Accounts list: one row per client account with its connection state and summary. Logs accounts in and out,
// removes, saves and loads them, and splits amounts over the accounts of the market order window.
//
// Rows are keyed "C" and the session number and show its record of the account book.
class frmMain final : public AccountsDesk, public Displayable {
 public:
  using Column = ClientRows::Column;
  using enum ClientRows::Column;

  frmMain(MGeneral& general, Desk& desk, Books& books, CLoginOptions& options, CClientAPIManagers& sessions,
          FileDialog& dialog);

  RowList lvwClients{ClientRows::headers()};
  TextBox txteditLo;
  Label labelinfo1;
  Label labelinfo2;
  WaveControl& MMCWave;
  FileDialog& CommonDialog1;

  // Sets the widths, reads the login options and the saved list and logs its accounts in. Fails when a data
  // file can't be read; the text names file and line.
  tl::expected<void, FileError> load();
  void attach(OrderWindow& window) { order_window_ = &window; }

  const AccountBook& account_book() const { return books_.accounts; }
  frmaccount& account_dialog() { return account_dialog_; }

  // Saved lists.
  tl::expected<void, FileError> LoadAccounts();
  void savedListViw(std::string_view user, std::string_view password, std::int32_t account);
  // Written by write_connected().
  void saveConnected(std::string_view user, std::string_view password, std::int32_t account);
  // Takes those that have connected since into both lists, all in one go. While there are `more_to_come` it
  // waits for them, but not for long.
  void write_connected(bool more_to_come = false);
  void mnuload_Click();
  void mnusaveas_Click();
  bool loaded() const { return loaded_; }

  // Rows.
  Row* addToListView(const AccountEntry& account, std::int32_t index) { return rows_.add(account, index); }
  // What a row shows, and the row that shows a record; nullptr where it has none.
  static const AccountEntry& record_of(const Row& row) { return ClientRows::record(row); }
  Row* row_of(const AccountEntry& account) const { return rows_.of(account); }
  void refreshsummery_Click(Row& row);
  // The same for the selected rows that are connected.
  void refresh_summaries();
  // The row the operator stands on, else the selected one; nullptr when there is none.
  Row* mainClientListItem() const;
  // nullptr when none is.
  Row* selected_client() const;
  // Empties the Notes of all rows.
  void empty_notes();
  // Refills the market watch from the current session.
  void loadmainsymbols();

  // Commands of the operator. Keys are those of the list.
  void add_account() { account_dialog_.open_add(); }
  void edit_account();
  void cmdfunlogin();
  void LoginClient(RowKey key);
  // The same for the row with a duplicate key.
  void login_account(std::string_view key);
  void LogoutClient(RowKey key);
  void MnuConnecte_Click();
  void MnuDisconnecte_Click();
  void mnuRemove_Click();
  void mnuclear_Click();
  void logout_all();
  void MnuAbout_Click() const;
  std::function<void()> show_about;
  void Message(std::string_view text) { general_.message_box(text); }
  // In-place editor of a row's notes.
  void edit_notes(Row& row);
  void commit_notes();
  void cancel_notes() { txteditLo.set_visible(false); }
  // The row whose notes are in the editor; nullptr when it has gone. It may have got another number.
  Row* edited_row() { return rows_.of(edited_notes_); }

  // Polled by whoever has the thread.
  Timer m_oTimer{std::chrono::seconds{1}};
  // Once a second: what no answer came for in too long is given up.
  void m_oTimer_Tick() { sessions_.look_at_the_clock(); }

  // Key filter of every amount and price box: digits, one ".", Backspace; 0 swallows the key.
  static std::int16_t askycodekeypress(std::int16_t key, std::string_view text);
  // Text of a request code for the result columns. A request that was taken is journaled with its data and
  // sounds. `kind` is "SLTP " for a stop-loss/take-profit request.
  std::string Result(RequestCode code, std::int32_t account, std::string_view kind,
                     std::string_view description, double price, std::string_view stop_loss,
                     std::string_view take_profit);
  // Splits an amount over the market order window's ticked accounts; see Distribution.
  void Distribute(double amount, std::int16_t type, const SymbolCollection::Entry& symbol);
  // Called whenever symbol, rule or amount of an order window changes; nothing hangs on it yet.
  void clearammountfromlistview() {}
  // True when all three values of a saved account are there.
  static bool ValidateData(std::string_view user, std::string_view password, std::string_view account);

  // AccountsDesk
  void add_client(const CClientAPIManager& session) override {
    addToListView(session.ClientListItem(), session.key());
  }
  void remove_client(const CClientAPIManager& session) override { rows_.remove(session.ClientListItem()); }
  void renumber_client(const CClientAPIManager& session) override {
    rows_.renumber(session.ClientListItem(), session.key());
  }
  void select_client(const CClientAPIManager& session) override;
  bool has_account(std::string_view key) const override { return rows_.of(key) != nullptr; }
  bool has_selection() const override { return selected_client() != nullptr; }
  void record_connected(const CClientAPIManager& session) override;
  void replace_account(std::string_view key, const CClientAPIManager& session) override;

 private:
  CClientAPIManager* session_of(const Row& row) const;
  std::vector<Row*> all_rows();
  void remove_rows(const std::vector<Row*>& rows);
  void forget(const std::vector<std::string>& keys);
  void report(const tl::expected<void, FileError>& done, std::int32_t account);

  MGeneral& general_;
  Desk& desk_;
  Books& books_;
  ClientRows rows_{lvwClients, books_.accounts};
  CLoginOptions& options_;
  CClientAPIManagers& sessions_;
  SavedLists lists_;
  frmaccount account_dialog_{general_, desk_, options_, sessions_};
  std::vector<SavedLists::Record> connected_meanwhile_;
  std::chrono::milliseconds connected_written_{0};  // on the clock's elapsed time
  OrderWindow* order_window_ = nullptr;
  std::string edited_notes_;  // duplicate key of the row whose notes are in the editor
  bool loaded_ = false;
};

}  // namespace tutti
