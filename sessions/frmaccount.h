#pragma once

#include <cstdint>
#include <string_view>

#include "core/button.h"
#include "core/check_box.h"
#include "core/combo_box.h"
#include "core/displayable.h"
#include "core/text_box.h"
#include "sessions/CClientAPIManagers.h"
#include "sessions/CLoginOptions.h"

namespace tutti {

// Account dialog: adds a client account to the accounts list, or changes the selected one. Opened by the
// accounts list; modal while displayed.
class frmaccount : public Displayable {
 public:
  frmaccount(MGeneral& general, Desk& desk, CLoginOptions& options, CClientAPIManagers& sessions);

  TextBox txtaccount;
  TextBox txtusername;
  TextBox txtpassword;
  ComboBox CBServer;
  CheckBox chkSave;
  CheckBox chkAutoLogin;
  Button cmdLoginAA{"OK"};
  Button cmdcancel{"Cancel"};

  // Fills the server box from the login options, the current server preselected.
  void FillServers();
  void open_add();
  // Opens on the selected row; `saved` and `auto_login` tell what the account information file has of it.
  void open_edit(const CClientAPIManager& session, bool saved, bool auto_login);

  // Takes the input. The first step that fails shows its message and leaves the dialog open as it was.
  void cmdLoginAA_Click();
  void cmdcancel_Click() { close(); }
  // A box got the focus: its whole text is selected.
  void focus(TextBox& box) const { box.select_all(); }

  // The accept path for a list that is loaded: no messages of its own, the server file stays as it is.
  enum class Added { yes, duplicate, invalid, full };
  Added accept_quietly(std::string_view user, std::string_view password, std::string_view account);

  bool editing() const { return editing_; }

 private:
  bool take_server();
  bool any_field_empty() const;
  Added add_unless_listed();
  void close();
  tl::expected<void, FileError> save_record(std::int32_t account, bool edited);
  CClientAPIManager* add_session(std::int32_t account);

  MGeneral& general_;
  Desk& desk_;
  CLoginOptions& options_;
  CClientAPIManagers& sessions_;
  bool editing_ = false;
  std::string edited_key_;  // duplicate key of the account that is edited
};

}  // namespace tutti
