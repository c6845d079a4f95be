#include "sessions/CLoginOptions.h"

#include <algorithm>

#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {
namespace {

constexpr std::string_view field_separator = "&&";

std::string endpoint_text(const Endpoint& endpoint) {
  return endpoint.address + ":" + std::to_string(endpoint.port);
}

// The file has one line per value, "&&" between fields and ":" before a port.
bool breaks_the_server_file(char c) {
  return c == '&' || c == ':' || static_cast<unsigned char>(c) < ' ' || c == '\x7F';
}

// Address as it stands before the first ":", port as the integer behind it; nothing without a ":".
std::optional<Endpoint> read_endpoint(std::string_view text) {
  const auto colon = text.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  return Endpoint{std::string{text.substr(0, colon)}, read_integer(text.substr(colon + 1))};
}

}  // namespace

CLoginOptions::CLoginOptions(MGeneral& general, Endpoint own_server)
    : paths_(general.paths),
      files_(general.files),
      notices_(general),
      records_(general.paths, general.account_file, general.key, general),
      file_name_(general.paths.full("\\manage\\SERVER.BUF")),
      own_server_(std::move(own_server)) {
  general.account_file = general.paths.full("\\Manage\\Acountinfo.buf");
}

std::string CLoginOptions::Server(int index) const {
  return endpoint_text(at(index).endpoint);
}

std::string CLoginOptions::CurrentServer() const {
  return endpoint_text(current_);
}

int CLoginOptions::CurrentServerIndex() const {
  const std::string current = CurrentServer();
  for (int index = 1; index <= ServerCount(); ++index) {
    if (Server(index) == current) return index;
  }
  return 0;
}

std::string CLoginOptions::CurrentServerDesc() const {
  const int index = CurrentServerIndex();
  return index > 0 ? ServerDesc(index) : CurrentServer();
}

std::string CLoginOptions::AllServers() const {
  std::string out;
  for (const ServerEntry& entry : table_) {
    if (!out.empty()) out += field_separator;
    out += entry.description;
    out += field_separator;
    out += entry.endpoint.address;
    out += field_separator;
    out += std::to_string(entry.endpoint.port);
  }
  return out;
}

std::string CLoginOptions::own_server() const {
  return endpoint_text(own_server_);
}

bool CLoginOptions::RoutServer(std::string_view address, std::int32_t port) {
  if (std::any_of(address.begin(), address.end(), breaks_the_server_file)) return false;
  const Endpoint routed{std::string{address}, port};
  for (ServerEntry& entry : table_) {
    if (entry.endpoint == current_) entry.endpoint = routed;
  }
  current_ = routed;
  return true;
}

tl::expected<void, FileError> CLoginOptions::InitializeFromFile() {
  const auto lines = files_.lines(file_name_);
  if (!lines) return tl::unexpected(lines.error());
  const auto line = [&](std::size_t number) {
    return number <= lines->size() ? (*lines)[number - 1] : std::string{};
  };
  std::vector<ServerEntry> table;
  if (const std::string all = line(1); !all.empty()) {
    const auto items = split(all, field_separator);
    if (items.size() % 3 != 0) {
      return tl::unexpected(FileError{paths_.file(file_name_),
                                      "line 1 must hold description, address and port of each server with && "
                                      "between all of them, but has " +
                                          std::to_string(items.size()) + " fields"});
    }
    for (std::size_t i = 0; i < items.size(); i += 3) {
      table.push_back({std::string{items[i]}, {std::string{trim(items[i + 1])}, read_integer(items[i + 2])}});
    }
  }
  table_ = std::move(table);
  const Endpoint current = read_endpoint(line(2)).value_or(Endpoint{});
  CurrentServerIP(std::string{trim(current.address)});
  CurrentServerPort(current.port);
  ParentDemoAccounts(read_integer(line(3)));
  LoginUnderwlIDs(line(4));
  return {};
}

tl::expected<void, FileError> CLoginOptions::Save() const {
  return files_.write_lines(
      file_name_, {AllServers(), CurrentServer(), std::to_string(parent_demo_accounts_), login_under_ids_});
}

bool CLoginOptions::Servers(const ComboBox& box) {
  if (box.index() < 0) {
    const auto endpoint = read_endpoint(box.text());
    if (!endpoint) return false;
    current_ = *endpoint;
  } else if (box.index() < ServerCount()) {
    current_ = at(box.index() + 1).endpoint;
  } else {
    return true;
  }
  if (const auto saved = Save(); !saved)
    notices_.log("Server not saved: " + saved.error().text(), no_account);
  return true;
}

tl::expected<void, FileError> CLoginOptions::SetData(std::string_view user, std::string_view password,
                                                     std::int32_t account, bool autoLogin) {
  return saveAccount(record_of(user, password, account, autoLogin));
}

AccountRecord CLoginOptions::record_of(std::string_view user, std::string_view password, std::int32_t account,
                                       bool autoLogin) {
  std::string text = upper(password);
  AccountRecord record{upper(user), text, account, autoLogin};
  wipe(text);
  return record;
}

}  // namespace tutti
