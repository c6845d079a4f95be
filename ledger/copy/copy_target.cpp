#include "ledger/copy/copy_target.h"

#include <arpa/inet.h>
#include <libpq-fe.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string_view>

#include "core/texts.h"

namespace tutti {
namespace {

constexpr std::string_view verified = "verify-full";

struct Free {
  void operator()(PQconninfoOption* options) const { ::PQconninfoFree(options); }
};
using Options = std::unique_ptr<PQconninfoOption, Free>;
using Values = std::map<std::string, std::string>;

Values values_of(const Options& options) {
  Values out;
  for (const PQconninfoOption* each = options.get(); each != nullptr && each->keyword != nullptr; ++each)
    if (each->val != nullptr && *each->val != '\0') out[each->keyword] = each->val;
  return out;
}

// A socket in the file system, too; what is empty is one.
bool on_this_computer(std::string_view host) {
  if (host.empty() || host.front() == '/' || host.front() == '@') return true;
  if (same_letters(host, "localhost") || host == "::1") return true;
  in_addr address{};
  return ::inet_pton(AF_INET, std::string{host}.c_str(), &address) == 1 &&
         ::ntohl(address.s_addr) >> 24 == IN_LOOPBACKNET;
}

}  // namespace

tl::expected<CopyTarget, std::string> CopyTarget::of(const std::string& url) {
  // What the library would say repeats the URL, and what may be a password with it.
  const Options parsed{::PQconninfoParse(url.c_str(), nullptr)};
  if (!parsed || !(url.starts_with("postgresql://") || url.starts_with("postgres://")))
    return tl::unexpected(
        std::string{"it is no URL of a PostgreSQL server: postgresql://USER@HOST/DATABASE"});
  Values values = values_of(parsed);
  for (const char* secret : {"password", "sslpassword"}) {
    if (!values.contains(secret)) continue;
    return tl::unexpected(
        std::string{"a password stands in the URL, where others can read it. Take it out, and put the line "
                    "HOST:PORT:DATABASE:USER:PASSWORD into the client's own password file, ~/.pgpass, which "
                    "only you may read (mode 0600)"});
  }
  if (values.contains("service"))
    return tl::unexpected(std::string{"the server has to be named itself, not by a service"});
  // The environment names what the URL does not.
  const Values otherwise = values_of(Options{::PQconndefaults()});
  const auto named = [&](const std::string& option) {
    const auto own = values.find(option);
    const auto other = otherwise.find(option);
    return own != values.end() ? own->second : other != otherwise.end() ? other->second : std::string{};
  };
  // An address goes before the host of the same place, an empty one leaves it to that.
  const std::string address_list = named("hostaddr"), host_list = named("host");
  const auto addresses = split(address_list, ","), hosts = split(host_list, ",");
  bool here = true;
  for (std::size_t place = 0; place < std::max(addresses.size(), hosts.size()); ++place) {
    const std::string_view address = place < addresses.size() ? addresses[place] : std::string_view{};
    const std::string_view host = place < hosts.size() ? hosts[place] : std::string_view{};
    here = here && on_this_computer(address.empty() ? host : address);
  }
  if (!here) {
    const auto mode = values.find("sslmode");
    if (mode != values.end() && mode->second != verified) {
      return tl::unexpected("sslmode=" + mode->second +
                            " does not make sure which server it is. Leave it out, or say " +
                            std::string{verified});
    }
    values["sslmode"] = verified;
    // The other way to encrypt goes before it, and verifies no certificate.
    values["gssencmode"] = "disable";
  }
  values["application_name"] = "tutti";
  values["client_encoding"] = "UTF8";
  CopyTarget out;
  out.url_ = url;
  out.options_.assign(values.begin(), values.end());
  return out;
}

}  // namespace tutti
