// What the operator does in the accounts list: log in and out, edit, remove, save and load.

#include <algorithm>
#include <utility>

#include "accounts/frmMain.h"
#include "core/texts.h"

namespace tutti {
void frmMain::report(const tl::expected<void, FileError>& done, std::int32_t account) {
  if (!done) general_.log("Not saved: " + done.error().text(), account);
}

tl::expected<void, FileError> frmMain::LoadAccounts() {
  const auto content = lists_.read_all();
  if (!content) return tl::unexpected(content.error());
  for (const SavedLists::Record& record : content->records) {
    const auto added =
        account_dialog_.accept_quietly(record.user, record.password.reveal(), std::to_string(record.account));
    if (added == frmaccount::Added::full) break;
    if (added == frmaccount::Added::yes) LoginClient(client_key(sessions_.Count()));
  }
  if (!content->skipped_lines.empty()) {
    general_.log_skipped(
        "Saved accounts: skipped what is no user name, password and account number in lines " +
        number_list(content->skipped_lines) + " of " + general_.paths.file(lists_.all()).filename().string());
  }
  loaded_ = true;
  return {};
}

void frmMain::savedListViw(std::string_view user, std::string_view password, std::int32_t account) {
  if (!ValidateData(user, password, std::to_string(account))) return;
  const SavedLists::Record record{std::string{user}, password, account};
  report(lists_.append(lists_.all(), {&record, 1}), account);
}

void frmMain::saveConnected(std::string_view user, std::string_view password, std::int32_t account) {
  if (!ValidateData(user, password, std::to_string(account))) return;
  connected_meanwhile_.push_back({std::string{user}, password, account});
}

void frmMain::record_connected(const CClientAPIManager& session) {
  saveConnected(session.user(), session.password().reveal(), session.account());
}

void frmMain::write_connected(bool more_to_come) {
  constexpr std::chrono::milliseconds longest{250};
  const auto now = general_.clock.elapsed();
  if (connected_meanwhile_.empty() || (more_to_come && now < connected_written_ + longest)) return;
  connected_written_ = now;
  const auto records = std::exchange(connected_meanwhile_, {});
  const std::int32_t whose = records.size() == 1 ? records[0].account : no_account;
  report(lists_.update(lists_.all(), records), whose);
  report(lists_.append(lists_.connected(), records), whose);
}

void frmMain::replace_account(std::string_view key, const CClientAPIManager& session) {
  write_connected();
  report(lists_.replace(key, {session.user(), session.password().copy(), session.account()}),
         session.account());
}

void frmMain::forget(const std::vector<std::string>& keys) {
  write_connected();
  report(lists_.forget(keys), no_account);
  report(options_.records().remove(keys), no_account);
}

void frmMain::mnuload_Click() {
  const std::string chosen =
      CommonDialog1.open_file("Load File", "C:\\", "Text Files (*.buf)|*.buf|All Files (*.*)|*.*");
  if (chosen.empty()) return;
  write_connected();
  if (const auto taken = lists_.load(chosen); !taken) {
    return Message("The list was not loaded, nothing is changed: " + taken.error().text());
  }
  report(general_.files.remove(lists_.connected()), no_account);
  sessions_.Clear();
  if (const auto read = LoadAccounts(); !read) Message("The list was not loaded: " + read.error().text());
  desk_.close_positions->refresh_symbols();
}

void frmMain::mnusaveas_Click() {
  if (lvwClients.empty()) return Message("There is no data in the list");
  const std::string chosen =
      CommonDialog1.save_file("Save File", "C:\\", "Text Files (*.buf)|*.buf|All Files (*.*)|*.*", "");
  if (chosen.empty()) return;
  write_connected();
  const auto copied = general_.files.copy(lists_.connected(), chosen);
  if (!copied) Message("The list of connected accounts was not saved: " + copied.error().text());
}

void frmMain::edit_account() {
  const Row* row = selected_client();
  const CClientAPIManager* session = row == nullptr ? nullptr : session_of(*row);
  if (session == nullptr) return;
  const auto found = options_.records().find(session->duplicate_key());
  if (!found) general_.log("Account information not read: " + found.error().text(), session->account());
  const AccountRecord* record = found && *found ? &**found : nullptr;
  account_dialog_.open_edit(*session, record != nullptr, record != nullptr && record->auto_login);
}

void frmMain::cmdfunlogin() {
  for (Row* row : all_rows())
    LoginClient(row->key());
}

void frmMain::LoginClient(RowKey key) {
  const Row* row = lvwClients.find(key);
  CClientAPIManager* session = row == nullptr ? nullptr : session_of(*row);
  if (session != nullptr) session->log_in();
}

void frmMain::login_account(std::string_view key) {
  if (const Row* row = rows_.of(key)) LoginClient(row->key());
}

void frmMain::LogoutClient(RowKey key) {
  const Row* row = lvwClients.find(key);
  CClientAPIManager* session = row == nullptr ? nullptr : session_of(*row);
  if (session == nullptr) return;
  sessions_.windows().leave_pending(*session);
  session->log_out();
  general_.play_sound("\\sounds\\Disconnect.wav");
  sessions_.windows().leave_market_order(*session);
  desk_.close_positions->refresh_symbols();
}

void frmMain::MnuConnecte_Click() {
  for (Row* row : lvwClients.selected())
    LoginClient(row->key());
}

void frmMain::MnuDisconnecte_Click() {
  for (Row* row : lvwClients.selected()) {
    if (record_of(*row).connected()) LogoutClient(row->key());
  }
}

void frmMain::refresh_summaries() {
  for (Row* row : lvwClients.selected()) {
    if (record_of(*row).connected()) refreshsummery_Click(*row);
  }
}

void frmMain::logout_all() {
  for (Row* row : all_rows()) {
    if (record_of(*row).connected()) LogoutClient(row->key());
  }
}

std::vector<Row*> frmMain::all_rows() {
  std::vector<Row*> out;
  for (Row& row : lvwClients)
    out.push_back(&row);
  return out;
}

void frmMain::mnuRemove_Click() {
  MnuDisconnecte_Click();
  remove_rows(lvwClients.selected());
}

void frmMain::mnuclear_Click() {
  logout_all();
  remove_rows(all_rows());
  report(lists_.forget_old(), no_account);
}

void frmMain::remove_rows(const std::vector<Row*>& rows) {
  // Numbers change with every removal; sessions do not.
  std::vector<CClientAPIManager*> gone;
  std::vector<std::string> keys;
  for (const Row* row : rows) {
    CClientAPIManager* session = session_of(*row);
    if (session == nullptr) continue;
    gone.push_back(session);
    keys.push_back(session->duplicate_key());
    sessions_.windows().leave_pending(*session);
  }
  // From the last one up, so that few sessions stand behind the removed one.
  std::sort(gone.begin(), gone.end(), [](const auto* a, const auto* b) { return a->key() > b->key(); });
  for (CClientAPIManager* session : gone)
    sessions_.Remove(client_key(session->key()).text());
  if (!keys.empty()) forget(keys);
  desk_.close_positions->refresh_symbols();
}

void frmMain::MnuAbout_Click() const {
  if (show_about) show_about();
}

}  // namespace tutti
