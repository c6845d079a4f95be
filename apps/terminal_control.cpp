#include "apps/terminal_control.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <stdexcept>
#include <utility>

#include "apps/command_context.h"
#include "core/checksum.h"
#include "core/texts.h"

namespace tutti {
namespace {

std::string line_of(const Json& answer) {
  return answer.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string refusal(std::string_view why, int status) {
  return line_of({{"error", std::string{why}}, {"status", status}});
}

std::string not_understood() {
  return refusal("The terminal does not understand this: it may be of another version", exit_status::usage);
}

// Throws where it is missing or no whole number, as the others do that read a question.
std::int64_t whole(const Json& asked, const char* name) {
  const Json& value = asked.at(name);
  if (!value.is_number_integer()) throw std::invalid_argument{name};
  return value.get<std::int64_t>();
}

std::string name_of(const TicketRetry::Plan& plan) {
  std::string ids;
  for (const RequestId each : plan.requests)
    ids += std::to_string(each) + " ";
  return checksum(ids);
}

}  // namespace

LineServer::Work TerminalControl::take(std::string_view question) {
  Work work;
  try {
    const Json asked = Json::parse(question, nullptr, false);
    if (asked.is_object() && whole(asked, "version") == version) work = work_for(asked);
  } catch (const std::exception&) {
    // Something is missing, or of another kind.
  }
  return [this, work = std::move(work)]() -> std::optional<std::string> {
    if (!work) return not_understood();
    try {
      return work();
    } catch (const std::exception& error) {
      journal(fmt::format("broken off: {}", error.what()));
      return refusal(fmt::format("The command was broken off: {}", error.what()),
                     exit_status::unreadable_data);
    }
  };
}

LineServer::Work TerminalControl::work_for(const Json& asked) {
  const auto what = asked.at("do").get<std::string>();
  if (what == "flush")
    return [this, told = ledger_.told()] { return once_stored(told, line_of({{"stored", true}})); };
  if (what == "totals")
    return [this] {
      return line_of({{"totals", totals_json(main_)}, {"line", main_.window().totals_pane()}});
    };
  if (what == "settle") return settle(asked);
  if (what == "retry") return retry(asked);
  if (what == "stop") return stop(asked);
  return {};
}

std::optional<std::string> TerminalControl::once_stored(std::uint64_t told, const std::string& answer) {
  if (ledger_.saved() >= told || ledger_.flush(std::chrono::milliseconds{0})) return answer;
  const std::string fault = ledger_.fault();
  if (fault.empty()) return std::nullopt;
  return refusal("What the terminal knows of the last requests is not stored: " + fault,
                 exit_status::unreadable_data);
}

LineServer::Work TerminalControl::act(std::function<std::string()> carry_out) {
  return [this, carry_out = std::move(carry_out), said = std::string{},
          told = std::uint64_t{0}]() mutable -> std::optional<std::string> {
    if (said.empty()) {
      if (occupied_())
        return refusal("The terminal waits for an answer to a question in its window: nothing was done",
                       exit_status::some_refused);
      const MessageQueue::QuietScope quiet{main_.messages()};
      said = carry_out();
      told = ledger_.told();
    }
    // It was done, whatever the disk says.
    if (const std::string fault = ledger_.fault(); !fault.empty() && ledger_.saved() < told) {
      return refusal("The command was carried out, and what became of it is not stored: " + fault,
                     exit_status::some_unknown);
    }
    return once_stored(told, said);
  };
}

LineServer::Work TerminalControl::with_ticket(std::int64_t ticket, std::function<Work(Requests)> next) {
  struct Read {
    std::optional<Requests> requests;
    std::string fault;
  };
  return [this, ticket, next = std::move(next), told = ledger_.told(), read = std::shared_ptr<Read>{},
          work = Work{}]() mutable -> std::optional<std::string> {
    if (work) return work();
    if (!read) {
      if (auto stored = once_stored(told, {}); !stored || !stored->empty()) return stored;
      read = std::make_shared<Read>();
      // Who asked may be gone by then.
      reads_.ask(
          [ticket, read](LedgerQueries& ledger) -> LedgerReads::Show {
            return [read, found = ledger.requests_of(ticket)] { read->requests = found; };
          },
          [read](const std::string& why) { read->fault = why; });
    }
    if (!read->fault.empty()) return refusal(read->fault, exit_status::unreadable_data);
    if (!read->requests) return std::nullopt;
    if (read->requests->empty())
      return refusal(fmt::format("There is no ticket {}: tuttictl tickets names them", ticket),
                     exit_status::usage);
    work = next(std::move(*read->requests));
    return work();
  };
}

LineServer::Work TerminalControl::settle(const Json& asked) {
  const RequestId request = whole(asked, "request");
  const bool executed = asked.at("executed").get<bool>();
  const std::string note{trim(asked.at("note").get<std::string>())};
  if (note.empty()) return {};
  return act([this, request, executed, note] {
    if (main_.sessions().settle_by_hand(request, executed, note)) {
      journal(fmt::format("request {} settled", request));
      return line_of({{"settled", request}});
    }
    return refusal(
        fmt::format("Request {} is none whose outcome is unknown: tuttictl unknown names them", request),
        exit_status::usage);
  });
}

LineServer::Work TerminalControl::retry(const Json& asked) {
  const std::int64_t ticket = whole(asked, "ticket");
  const auto agreed = asked.value("plan", std::string{});
  const auto override_reason = asked.value("override", std::string{});
  const RetryPart part = asked.value("settled", false) ? RetryPart::settled_by_hand : RetryPart::no_effect;
  return with_ticket(ticket, [=, this](Requests requests) -> Work {
    if (!agreed.empty())
      return act([=, this, requests = std::move(requests)] {
        return send_again(ticket, requests, part, agreed, override_reason);
      });
    const TicketRetry::Plan plan = main_.ticket_retry().plan(ticket, requests, part);
    return [said = line_of({{"plan", name_of(plan)},
                            {"count", plan.requests.size()},
                            {"question", plan.question},
                            {"details", plan.details}})] { return said; };
  });
}

std::string TerminalControl::send_again(std::int64_t ticket, const Requests& requests, RetryPart part,
                                        const std::string& plan, const std::string& override_reason) {
  const TicketRetry::Plan now = main_.ticket_retry().plan(ticket, requests, part);
  if (now.requests.empty() || name_of(now) != plan)
    return refusal(
        fmt::format("What of ticket {} can be sent again has changed meanwhile: nothing was sent", ticket),
        exit_status::some_refused);
  journal(fmt::format("send {} requests of ticket {} again", now.requests.size(), ticket));
  Admission& admission = main_.sessions().admission();
  const auto over_limits = admission.override_for_now(override_reason);
  const auto sent = main_.ticket_retry().send_agreed(ticket, requests, part);
  // They were made one after the other, so their ids are these and those between.
  const RequestId first = sent.front()->id;
  const RequestId last = sent.back()->id;
  std::vector<std::string> refused;
  for (;;) {
    const auto held =
        std::find_if(admission.held().begin(), admission.held().end(), [&](const HeldTicket& each) {
          const RequestId id = each.asked.requests.front()->id;
          return id >= first && id <= last;
        });
    if (held == admission.held().end()) break;
    refused.push_back(held_text(*held));
    admission.refuse(held->number);
  }
  return line_of({{"first", first}, {"last", last}, {"count", sent.size()}, {"refused", refused}});
}

LineServer::Work TerminalControl::stop(const Json& asked) {
  const bool cancel = asked.value("cancel", false);
  const bool close = asked.value("close", false);
  const bool end = asked.value("end", false);
  if (end && (cancel || close)) return {};
  if (!cancel && !close && !end) return [this] { return stop_state(); };
  return act([=, this] {
    frmStop& form = main_.stop_form();
    if (end) {
      const bool stopped = form.stopped();
      form.end("tuttictl");
      return form.stopped() ? refusal("The stop can't be ended: see the terminal's messages",
                                      exit_status::unreadable_data)
                            : line_of({{"ended", stopped}});
    }
    if (!form.stopped())
      return refusal("The stop was ended meanwhile: nothing was cancelled or closed",
                     exit_status::some_refused);
    journal(cancel && close ? "cancel all entry orders, close all positions"
            : cancel        ? "cancel all entry orders"
                            : "close all positions");
    form.carry_out(cancel, close);
    return stop_state();
  });
}

std::string TerminalControl::stop_state() {
  frmStop& form = main_.stop_form();
  form.refresh_now();
  Json open = Json::array();
  for (const frmStop::Open& each : form.shown_open())
    open.push_back({{"account", each.account}, {"open", each.what}});
  return line_of({{"figures", form.figures_text()},
                  {"flat", form.verified_flat()},
                  {"unanswered", main_.sessions().unanswered()},
                  {"unknown", main_.sessions().requests().unknown_now()},
                  {"open", open}});
}

void TerminalControl::journal(const std::string& what) {
  main_.general().log("By tuttictl: " + what, no_account);
}

}  // namespace tutti
