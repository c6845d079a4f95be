// What the ledger says of itself: its check, copies, all of its rows; and the requests nobody knows of. None
// of it changes anything, whether a terminal runs or not, but for a copy on a server that went another way.

#include <fmt/format.h>

#include "apps/commands.h"
#include "apps/journal_anchor.h"
#include "apps/output.h"
#include "apps/times.h"
#include "core/home_lock.h"
#include "core/numbers.h"
#include "ledger/copy/ledger_copy.h"
#include "ledger/ledger_reader.h"
#include "ledger/ledger_start.h"
#include "ledger/ledger_words.h"

namespace tutti {
namespace {

int fail(const HomeContext& context, const FileError& error) {
  context.console.fail(error.text());
  return exit_status::unreadable_data;
}

LedgerReader reader(const HomeContext& context) {
  return {context.terminal.home, context.terminal.key_file};
}

}  // namespace

int ledger_check_command(const HomeContext& context) {
  LedgerReader from = reader(context);
  auto faults = from.check();
  if (!faults) return fail(context, faults.error());
  // What is anchored was stored before.
  const auto file = from.open();
  if (!file) return fail(context, file.error());
  try {
    const auto unanchored = faults_of_anchors(Paths{context.terminal.home}, **file);
    if (!unanchored) return fail(context, unanchored.error());
    faults->insert(faults->end(), unanchored->begin(), unanchored->end());
  } catch (const SQLite::Exception& error) {
    return fail(context, {ledger_path(context.terminal.home), error.what()});
  }
  Records records{{"fault"}};
  for (const std::string& fault : *faults)
    records.add({fault});
  context.console.print(report_text(context.form, "faults", records, Json::object(), [&] {
    std::string out;
    for (const std::string& fault : *faults)
      out += fault + "\n";
    return out + fmt::format("{} faults\n", faults->size());
  }));
  return faults->empty() ? exit_status::all_accepted : exit_status::some_refused;
}

int ledger_backup_command(const HomeContext& context, const std::filesystem::path& to) {
  if (const auto done = reader(context).back_up(to); !done) return fail(context, done.error());
  context.console.tell("The ledger was copied to {}", to.string());
  return exit_status::all_accepted;
}

int ledger_push_command(const HomeContext& context, const std::string& to) {
  const auto target = CopyTarget::of(to);
  if (!target) {
    context.console.fail("Nothing was copied: {}", target.error());
    return exit_status::usage;
  }
  const std::filesystem::path path = ledger_path(context.terminal.home);
  // Who has the folder is the ledger's only writer.
  const auto lock = HomeLock::take(context.terminal.home);
  if (!lock) return fail(context, lock.error());
  if (const auto there = reader(context).open(); !there) return fail(context, there.error());
  KeyFile key_file{context.terminal.key_file};
  const auto key = key_file.find();
  if (!key) return fail(context, key.error());
  const auto file = LedgerFile::open(path, **key, context.clock.now());
  if (!file) return fail(context, file.error());

  LedgerCopy copy{**file, *target, [&] { return context.signal() != 0; }};
  auto pushed = copy.push();
  std::optional<std::string> parted;
  if (!pushed && pushed.error().kind == CopyError::Kind::forked) {
    parted = pushed.error().text;
    try {
      begin_line(**file, pushed.error().common, context.clock.now());
      context.console.fail(
          "{}. Nothing that stands there was changed; what this home has beyond them is "
          "copied under the new id {}. Compare positions and fills with the broker's",
          *parted, ledger_lines(**file).back().id);
    } catch (const SQLite::Exception& error) {
      return fail(context, {path, error.what()});
    }
    pushed = copy.push();
  }
  if (!pushed) {
    context.console.fail("Not all was copied to {}: {}", target->url(), pushed.error().text);
    return exit_status::unreadable_data;
  }
  Records records{{"commits", "rows", "new_id"}};
  records.add({pushed->commits, pushed->rows, parted.has_value()});
  context.console.print(report_text(context.form, "pushed", records, Json::object(), [&] {
    return fmt::format("{} commits with {} rows were copied\n", pushed->commits, pushed->rows);
  }));
  return parted ? exit_status::some_refused : exit_status::all_accepted;
}

int ledger_export_command(const HomeContext& context) {
  const auto read =
      reader(context).each_row([&](const std::string& table, const std::vector<std::string>& names,
                                   const std::vector<LedgerValue>& values) {
        Json row = Json::object();
        for (std::size_t i = 0; i < names.size(); ++i) {
          row[names[i]] = std::visit(
              [](const auto& value) -> Json {
                if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::monostate>)
                  return {};
                else if constexpr (std::is_same_v<std::decay_t<decltype(value)>, LedgerBytes>)
                  return fmt::format("{:02x}", fmt::join(value, ""));
                else
                  return value;
              },
              values[i]);
        }
        context.console.print(Json{{"table", table}, {"row", std::move(row)}}.dump(
                                  -1, ' ', false, Json::error_handler_t::replace) +
                              "\n");
      });
  return read ? exit_status::all_accepted : fail(context, read.error());
}

int unknown_command(const HomeContext& context) {
  const auto found = reader(context).unknown();
  if (!found) return fail(context, found.error());
  if (!found->notice.empty())
    context.console.tell("The ledger lost its end, or is an older copy: {}", found->notice);
  Records records{
      {"request", "account", "user", "server", "kind", "side", "amount", "symbol", "number", "why", "since"}};
  TextTable table{{{"Request", true},
                   {"Account", true},
                   {"User"},
                   {"What"},
                   {"Side"},
                   {"Lots", true},
                   {"Symbol"},
                   {"Number", true},
                   {"Why"},
                   {"Since"}}};
  for (const LedgerUnknown& each : found->requests) {
    const std::string kind{ledger_words::of(each.kind)};
    const std::string side = each.side == operation::none ? "" : buys(each.side) ? "buy" : "sell";
    records.add({each.id, each.account.account, each.account.user, each.account.server, kind,
                 side.empty() ? Json{} : Json(side), each.lots > 0.0 ? json_number(each.lots) : Json{},
                 each.symbol.empty() ? Json{} : Json(each.symbol),
                 each.number != 0 ? Json(each.number) : Json{}, each.why, utc_text(each.since)});
    table.add({std::to_string(each.id), std::to_string(each.account.account), each.account.user, kind, side,
               each.lots > 0.0 ? number_text(each.lots) : "", each.symbol,
               each.number != 0 ? std::to_string(each.number) : "", each.why, utc_text(each.since)});
  }
  const std::size_t count = found->requests.size();
  context.console.print(report_text(context.form, "unknown", records, Json::object(), [&] {
    return (count > 0 ? table.text() : "") + fmt::format("{} unknown\n", count);
  }));
  return count == 0 ? exit_status::all_accepted : exit_status::some_unknown;
}

}  // namespace tutti
