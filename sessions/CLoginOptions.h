#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <tl/expected.hpp>

#include "core/MGeneral.h"
#include "core/combo_box.h"
#include "sessions/account_records.h"
#include "sessions/contract/login_data.h"

namespace tutti {

// Login options: the list of dealing servers, the one that is current, and two options of the server file.
// Server indices run from 1.
class CLoginOptions {
 public:
  // Sets the path of the account information file. `own_server` is offered while no server is current.
  CLoginOptions(MGeneral& general, Endpoint own_server);

  const std::string& ServerFileName() const { return file_name_; }
  void ServerFileName(std::string name) { file_name_ = std::move(name); }
  const std::string& ServerIP(int index) const { return at(index).endpoint.address; }
  const std::string& ServerDesc(int index) const { return at(index).description; }
  std::int32_t ServerPort(int index) const { return at(index).endpoint.port; }
  // "IP:PORT" of a server of the table.
  std::string Server(int index) const;
  std::string CurrentServer() const;
  // Index of the first server whose text equals the current one exactly; 0 when none does.
  int CurrentServerIndex() const;
  // Description of the current server, its "IP:PORT" when it is not in the table.
  std::string CurrentServerDesc() const;
  const std::string& CurrentServerIP() const { return current_.address; }
  void CurrentServerIP(std::string address) { current_.address = std::move(address); }
  std::int32_t CurrentServerPort() const { return current_.port; }
  void CurrentServerPort(std::int32_t port) { current_.port = port; }
  // Empty when the server file names none; logins then go to the server the terminal brings along.
  const Endpoint& current() const { return current_; }
  std::string own_server() const;
  std::int32_t ParentDemoAccounts() const { return parent_demo_accounts_; }
  void ParentDemoAccounts(std::int32_t value) { parent_demo_accounts_ = value; }
  const std::string& LoginUnderwlIDs() const { return login_under_ids_; }
  void LoginUnderwlIDs(std::string value) { login_under_ids_ = std::move(value); }
  // The first line of the server file, made from the table.
  std::string AllServers() const;
  std::int16_t ServerCount() const { return static_cast<std::int16_t>(table_.size()); }

  // The server routed its clients elsewhere: every entry of the current server and the current server itself
  // get the new endpoint. Written with the next Save. False for an address that the server file can't hold;
  // then nothing changes.
  bool RoutServer(std::string_view address, std::int32_t port);
  // Reads the server file. A missing or short one leaves empty what it does not tell: table, current server,
  // options. A line 1 whose fields do not come in threes is an error that names file and line.
  tl::expected<void, FileError> InitializeFromFile();
  tl::expected<void, FileError> Save() const;
  // Makes the server chosen in the box the current one and saves; a text that is no entry is read as
  // "IP:PORT".
  bool Servers(const ComboBox& box);
  // Appends a record to the account information file; names are upper-cased.
  tl::expected<void, FileError> SetData(std::string_view user, std::string_view password,
                                        std::int32_t account, bool autoLogin);
  static AccountRecord record_of(std::string_view user, std::string_view password, std::int32_t account,
                                 bool autoLogin);
  tl::expected<void, FileError> saveAccount(const AccountRecord& record) { return records_.append(record); }
  AccountRecords& records() { return records_; }

 private:
  struct ServerEntry {
    std::string description;
    Endpoint endpoint;
  };

  const ServerEntry& at(int index) const { return table_.at(static_cast<std::size_t>(index) - 1); }

  const Paths& paths_;
  const TextFile& files_;
  Notices& notices_;
  AccountRecords records_;
  std::string file_name_;
  Endpoint own_server_;
  std::vector<ServerEntry> table_;
  Endpoint current_;
  std::int32_t parent_demo_accounts_ = 0;
  std::string login_under_ids_;
};

}  // namespace tutti
