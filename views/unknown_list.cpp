#include "views/unknown_list.h"

#include <algorithm>
#include <utility>

#include "core/texts.h"
#include "core/time_texts.h"
#include "views/ticket_texts.h"

namespace tutti {
namespace {

constexpr std::string_view what_to_do =
    "Their accounts are asked with the next login. What you know from the broker you can say: select one";

RowKey unknown_row(RequestId request) {
  return {'U', request};
}

}  // namespace

UnknownList::UnknownList(MGeneral& general, LedgerReads* reads) : general_(general), reads_(reads) {
  lvwUnknown.set_column_widths("14,8,10,12,8,7,8,10,7,16");
  lvwUnknown.set_column_tip(
      why, "late: no word for half a minute; lost: the connection was; crash: the terminal was");
  executed.on_click = [this] { ask(true); };
  not_executed.on_click = [this] { ask(false); };
  head.set_text(what_to_do);
}

void UnknownList::Displayed(bool displayed) {
  if (std::exchange(displayed_, displayed) == displayed || !displayed) return;
  read();
}

void UnknownList::poll() {
  if (displayed_ && (outdated_ || general_.clock.elapsed() - asked_at_ >= interval)) read();
}

void UnknownList::read() {
  if (reads_ == nullptr || asked_) return;
  asked_ = true;
  asked_at_ = general_.clock.elapsed();
  reads_->ask(
      [this, known = std::exchange(outdated_, false) ? std::int64_t{-1}
                                                     : version_](LedgerQueries& ledger) -> LedgerReads::Show {
        const std::int64_t version = ledger.version();
        if (version == known) return [this] { asked_ = false; };
        return [this, version, all = ledger.unknown()] {
          asked_ = false;
          version_ = version;
          show(all);
        };
      },
      [this](const std::string& text) {
        asked_ = false;
        outdated_ = true;
        head.set_text("The ledger can't be read: " + text);
      });
}

void UnknownList::show(const std::vector<LedgerUnknown>& all) {
  head.set_text(what_to_do);
  lvwUnknown.remove_if([&](const Row& row) {
    return std::none_of(all.begin(), all.end(),
                        [&](const LedgerUnknown& each) { return unknown_row(each.id) == row.key(); });
  });
  for (const LedgerUnknown& each : all) {
    if (lvwUnknown.find(unknown_row(each.id)) != nullptr) continue;
    Row& row = *lvwUnknown.add(unknown_row(each.id));
    row.set_text(since, full_time_text(each.since + general_.clock.utc_offset(each.since)));
    row.set_number(account, each.account.account);
    row.set_text(user, upper(each.account.user));
    row.set_text(what, ticket_texts::what(each.kind));
    row.set_text(side, ticket_texts::side(each.kind, each.side));
    if (each.lots > 0.0) row.set_number(lots, each.lots);
    row.set_text(symbol, each.symbol);
    if (each.number != 0) row.set_whole(number, each.number);
    row.set_text(why, each.why);
    row.set_whole(request, each.id);
  }
}

void UnknownList::ask(bool was_executed) {
  const Row* row = lvwUnknown.current();
  if (row == nullptr || !settle) return general_.message_box("Select the request that you know of");
  if (trim(note.text()).empty())
    return general_.message_box("Write down how you know, it is kept with the request");
  const RequestId id = row->key().number();
  const std::string about = row->text(what) + " " + row->text(side) + " " + row->text(lots) + " " +
                            row->text(symbol) + " of account " + row->text(account);
  const std::string why_sure{trim(note.text())};
  constexpr int yes = 1;
  if (general_.msg_box.GeneralQuestionMsg(
          was_executed ? "Was it executed, as you know from the broker?"
                       : "Was it not executed, and never will be, as you know from the broker?",
          about + "\n" + why_sure) != yes)
    return;
  if (!settle(id, was_executed, why_sure))
    return general_.message_box("Its outcome became known meanwhile: nothing was changed");
  note.set_text("");
  outdated_ = true;
}

}  // namespace tutti
