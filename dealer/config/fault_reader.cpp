#include "dealer/config/fault_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <string_view>

#include "core/table_reader.h"

namespace tutti {
namespace {

constexpr double longest_run = 1e7;  // seconds, some 115 days
constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();

constexpr Word<FaultKind> kind_words[] = {
    {"refuse_login", FaultKind::refuse_login},
    {"unreachable", FaultKind::unreachable},
    {"drop", FaultKind::drop},
    {"silent", FaultKind::silent},
    {"swallow", FaultKind::swallow},
    {"delay", FaultKind::delay},
    {"late", FaultKind::late},
    {"twice", FaultKind::twice},
    {"unknown_ticket", FaultKind::unknown_ticket},
    {"refuse", FaultKind::refuse},
    {"reject", FaultKind::reject},
    {"pending", FaultKind::pending},
    {"requote", FaultKind::requote},
    {"garbage", FaultKind::garbage},
};
constexpr Word<FaultPoint> point_words[] = {
    {"login", FaultPoint::login},       {"open", FaultPoint::open},     {"close", FaultPoint::close},
    {"entry", FaultPoint::entry},       {"update", FaultPoint::update}, {"cancel", FaultPoint::cancel},
    {"trigger", FaultPoint::trigger},   {"price", FaultPoint::price},   {"summary", FaultPoint::summary},
    {"position", FaultPoint::position},
};

using Points = std::vector<FaultPoint>;
const Points market_points = {FaultPoint::open, FaultPoint::close};
const Points request_points = {FaultPoint::open, FaultPoint::close, FaultPoint::entry, FaultPoint::update,
                               FaultPoint::cancel};

Points with(Points points, FaultPoint more) {
  points.push_back(more);
  return points;
}

// Where a kind can strike.
Points possible(FaultKind kind) {
  switch (kind) {
    case FaultKind::refuse_login:
    case FaultKind::unreachable:
      return {FaultPoint::login};
    case FaultKind::garbage:
      return {FaultPoint::price, FaultPoint::summary, FaultPoint::position};
    case FaultKind::pending:
    case FaultKind::requote:
      return market_points;
    case FaultKind::drop:
    case FaultKind::silent:
      return with(with(request_points, FaultPoint::trigger), FaultPoint::login);
    case FaultKind::delay:
      return with(request_points, FaultPoint::login);
    case FaultKind::late:
    case FaultKind::twice:
    case FaultKind::unknown_ticket:
    case FaultKind::reject:
      return with(request_points, FaultPoint::trigger);
    default:
      return request_points;
  }
}

// Where it strikes when the script doesn't say: at market orders and closes, if it can.
Points usual(FaultKind kind) {
  if (kind == FaultKind::drop) return {};
  const Points points = possible(kind);
  return points.size() > market_points.size() && points[0] == FaultPoint::open ? market_points : points;
}

void read_points(TableReader& reader, FaultConfig& fault) {
  std::vector<std::string> words;
  reader.texts("on", words);
  fault.on = usual(fault.kind);
  if (!reader.has("on")) return;
  fault.on.clear();
  const Points allowed = possible(fault.kind);
  for (const std::string& word : words)
    for (const Word<FaultPoint>& known : point_words)
      if (known.text == word && std::find(allowed.begin(), allowed.end(), known.value) != allowed.end())
        fault.on.push_back(known.value);
  if (fault.on.size() == words.size() && !words.empty()) return;
  std::string list;
  for (const Word<FaultPoint>& known : point_words)
    if (std::find(allowed.begin(), allowed.end(), known.value) != allowed.end())
      list += fmt::format("{}\"{}\"", list.empty() ? "" : ", ", known.text);
  reader.complain("on", "can only list " + list + " for this kind of fault");
}

void read_accounts(TableReader& reader, const toml::table& table, const std::vector<AccountConfig>& accounts,
                   FaultConfig& fault) {
  if (table.get("account") != nullptr && table.get("account")->is_string()) {
    std::string word;
    reader.text("account", word);
    if (word != "all") reader.complain("account", "must be a number, a list of numbers or \"all\"");
    return;
  }
  reader.integers("account", fault.accounts, 1, std::numeric_limits<std::int32_t>::max());
  for (const std::int32_t number : fault.accounts)
    if (std::none_of(accounts.begin(), accounts.end(),
                     [&](const AccountConfig& account) { return account.number == number; }))
      reader.complain("account", fmt::format("names {}, which is not configured", number));
}

// What the kind needs beyond where and when it strikes.
void read_effect(TableReader& reader, FaultConfig& fault) {
  const auto need = [&](std::initializer_list<const char*> keys) {
    for (const char* key : keys)
      reader.require(key);
  };
  switch (fault.kind) {
    case FaultKind::delay:
    case FaultKind::late:
    case FaultKind::pending:
      need({"seconds"});
      reader.seconds("seconds", fault.wait, 0.001, longest_run);
      break;
    case FaultKind::requote: {
      need({"seconds", "points"});
      std::int64_t seconds = 1;
      reader.integer("seconds", seconds, 1, 3'600);
      fault.wait = std::chrono::seconds{seconds};
      reader.number("points", fault.points, -1e9, 1e9);
      break;
    }
    case FaultKind::refuse:
    case FaultKind::reject:
      need({"code"});
      reader.integer("code", fault.code, 2, 1'000);
      break;
    case FaultKind::garbage:
      need({"value"});
      reader.any_number("value", fault.value);
      break;
    default:
      break;
  }
}

}  // namespace

FaultConfig read_fault(const toml::table& table, const std::vector<AccountConfig>& accounts,
                       std::optional<std::string>& fault) {
  TableReader reader(table, fault);
  FaultConfig read;
  reader.require("kind");
  read.kind = read_word(reader, "kind", kind_words, read.kind);
  read_accounts(reader, table, accounts, read);
  read_points(reader, read);
  reader.seconds("after", read.after, 0.0, longest_run);
  // A drop at a moment happens once.
  if (!read.on.empty()) {
    reader.integer("every", read.every, 1, most);
    reader.integer("times", read.times, 1, most);
  }
  read_effect(reader, read);
  reader.finish();
  return read;
}

}  // namespace tutti
