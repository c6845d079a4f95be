#include "sessions/frmaccount.h"

#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {
namespace {

// Fields are one line of a file together, with commas between them.
bool breaks_a_line(std::string_view text) {
  return text.find_first_of(",\r\n") != std::string_view::npos;
}

// "IP:PORT": something before the one ":", a port behind it.
bool is_endpoint(std::string_view text) {
  const auto pieces = split(text, ":");
  if (pieces.size() != 2 || trim(pieces[0]).empty() || breaks_a_line(text)) return false;
  const auto port = parse_int32(pieces[1]);
  return port && *port >= 1 && *port <= 65'535;
}

}  // namespace

frmaccount::frmaccount(MGeneral& general, Desk& desk, CLoginOptions& options, CClientAPIManagers& sessions)
    : general_(general), desk_(desk), options_(options), sessions_(sessions) {
  // Account numbers are whole numbers.
  txtaccount.on_key = [](std::int16_t key, const std::string&) { return key == '.' ? std::int16_t{0} : key; };
  cmdLoginAA.on_click = [this] { cmdLoginAA_Click(); };
  cmdcancel.on_click = [this] { cmdcancel_Click(); };
}

void frmaccount::FillServers() {
  std::vector<std::string> items;
  for (int index = 1; index <= options_.ServerCount(); ++index)
    items.push_back(options_.ServerDesc(index));
  CBServer.set_items(std::move(items));
  const int current = options_.CurrentServerIndex();
  if (current > 0) {
    CBServer.set_index(current - 1);
  } else {
    CBServer.set_text(options_.current().address.empty() ? options_.own_server()
                                                         : options_.CurrentServerDesc());
  }
}

void frmaccount::open_add() {
  editing_ = false;
  txtaccount.set_text("");
  txtusername.set_text("");
  txtpassword.wipe_text();
  chkSave.set_checked(false);
  chkAutoLogin.set_checked(false);
  FillServers();
  Displayed(true);
}

void frmaccount::open_edit(const CClientAPIManager& session, bool saved, bool auto_login) {
  open_add();
  editing_ = true;
  edited_key_ = session.duplicate_key();
  txtaccount.set_text(std::to_string(session.account()));
  txtusername.set_text(session.user());
  txtpassword.set_text(session.password().reveal());
  chkSave.set_checked(saved);
  chkAutoLogin.set_checked(auto_login);
}

bool frmaccount::any_field_empty() const {
  return txtaccount.text().empty() || txtusername.text().empty() || txtpassword.text().empty() ||
         CBServer.text().empty();
}

// False, after a message, when the typed server is not of the form it must have.
bool frmaccount::take_server() {
  if (CBServer.index() >= 0 || is_endpoint(CBServer.text())) return options_.Servers(CBServer);
  // What is not there at all is the more helpful thing to say.
  if (any_field_empty()) return true;
  general_.prompt.system_box("Wrong server.\nServer must be of the (IP:PORT) format\ni.e\n10.0.0.1:443",
                             "Alert");
  return false;
}

CClientAPIManager* frmaccount::add_session(std::int32_t account) {
  return sessions_.Add({.user = txtusername.text(),
                        .password = txtpassword.text(),
                        .account = account,
                        .server = {options_.CurrentServerIP(), options_.CurrentServerPort()}},
                       "", false);
}

void frmaccount::cmdLoginAA_Click() {
  if (!take_server()) return;
  if (any_field_empty()) return general_.message_box("Please fill all account information");
  const auto account = parse_int32(txtaccount.text());
  if (!account) return general_.message_box("Please enter a valid  account ID");

  const std::string key = account_key(txtusername.text(), *account);
  CClientAPIManager* edited = nullptr;
  if (editing_) {
    if (!desk_.accounts->has_selection()) return;
    // By its key: events may have selected another row since the dialog was opened.
    for (const auto& session : sessions_.Children())
      if (session->duplicate_key() == edited_key_) edited = session.get();
    if (edited == nullptr) return;
  }
  const bool own_key = edited != nullptr && edited->duplicate_key() == key;
  if (!own_key && desk_.accounts->has_account(key)) {
    return general_.message_box("Account " + txtaccount.text() + " for client " + txtusername.text() +
                                " already exists");
  }

  if (breaks_a_line(txtusername.text()) || breaks_a_line(txtpassword.text())) {
    return general_.message_box("User name and password must not contain a comma or a line end");
  }

  if (edited != nullptr) sessions_.Remove(client_key(edited->key()).text());
  const CClientAPIManager* added = add_session(*account);
  if (added == nullptr) return;
  if (edited != nullptr) desk_.accounts->replace_account(edited_key_, *added);
  if (const auto saved = save_record(*account, edited != nullptr); !saved) {
    general_.log("Account not saved: " + saved.error().text(), *account);
  }
  if (chkAutoLogin.checked()) sessions_.Item(sessions_.Count())->ClientAPIF().Login();
  close();
}

// An edit changes the record in its place, so that a crash leaves either the old one or the new one.
tl::expected<void, FileError> frmaccount::save_record(std::int32_t account, bool edited) {
  if (!chkSave.checked()) {
    return edited ? options_.records().remove({edited_key_}) : tl::expected<void, FileError>{};
  }
  const AccountRecord record =
      CLoginOptions::record_of(txtusername.text(), txtpassword.text(), account, chkAutoLogin.checked());
  return edited ? options_.records().replace(edited_key_, record) : options_.saveAccount(record);
}

// No password stays behind in a box that is not on screen.
void frmaccount::close() {
  txtpassword.wipe_text();
  Displayed(false);
}

frmaccount::Added frmaccount::accept_quietly(std::string_view user, std::string_view password,
                                             std::string_view account) {
  txtusername.set_text(user);
  txtpassword.set_text(password);
  txtaccount.set_text(account);
  FillServers();
  const Added added = add_unless_listed();
  txtpassword.wipe_text();
  return added;
}

frmaccount::Added frmaccount::add_unless_listed() {
  const auto number = parse_int32(txtaccount.text());
  // Whatever the current server is called, it is the one to use.
  if (txtusername.text().empty() || txtpassword.text().empty() || !number) return Added::invalid;
  if (desk_.accounts->has_account(account_key(txtusername.text(), *number))) return Added::duplicate;
  return add_session(*number) == nullptr ? Added::full : Added::yes;
}

}  // namespace tutti
