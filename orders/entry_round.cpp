#include "orders/entry_round.h"

#include <utility>

#include "core/numbers.h"
#include "core/texts.h"
#include "sessions/gate_texts.h"
#include "sessions/result_texts.h"

namespace tutti {

void EntryRound::begin() {
  ++round_;
  answers_.clear();
  requests_.clear();
}

std::string EntryRound::report(RequestCode code, std::int32_t account, const Request& request) {
  return accounts_list_.Result(code, account, request.kind, request.description, request.price,
                               request.stop_loss, request.take_profit);
}

void EntryRound::send(Row& row, Request request, const Send& send) {
  const auto number = static_cast<std::int32_t>(row.key().number());
  auto& data = row.data<RowData>();
  data.sent = std::move(request);
  data.round = round_;
  CClientAPIManager* session = sessions_.logged_in(number);
  if (session == nullptr) return sent(row, request::invalid_account);
  answers_[number] = OrderAnswer::waiting;
  send(*session, round_, [this](const SentOrder& request) {
    if (request.round == round_) requests_.insert(&request);
    // What is held may leave long after; its row may be gone by then, and its round over.
    Row* to = rows_.find(request.account);
    const std::string_view kept = gate_texts::row(request);
    const bool has_row = to != nullptr && to->data<RowData>().round == request.round;
    if (kept.empty() && has_row) return sent(*to, request.request_code);
    if (request.round == round_) answers_[request.account] = answer_from(request.outcome);
    if (has_row) note(*to, kept);
  });
}

void EntryRound::sent(Row& row, RequestCode code) {
  const auto number = static_cast<std::int32_t>(row.key().number());
  const auto& data = row.data<RowData>();
  answers_[number] = code == request::taken ? OrderAnswer::waiting : OrderAnswer::refused;
  // SL/TP that are taken are journaled when they are carried out.
  if (code == request::taken && data.sent.kind == stops_) return;
  const std::string text = report(code, number, data.sent);
  // A refusal without a text is counted and nothing more.
  if (code == request::taken || text.empty()) return;
  note(row, text);
  notices_.log("Request " + std::string{trim(data.sent.kind)} + " " + data.sent.description + " at " +
                   number_text(data.sent.price) + " was not taken: " + text,
               number);
}

void EntryRound::settled(const SentOrder& order, std::int32_t account) {
  const auto at = answers_.find(account);
  if (order.round == round_ && at != answers_.end()) at->second = answer_from(order.outcome);
  Row* row = rows_.find(account);
  // The row tells of what was sent for it last.
  // Nor does what was sent in an earlier run have one.
  if (row == nullptr || order.round == 0 || order.round != row->data<RowData>().round) return;
  // Of an update some refusals say nothing.
  if (order.kind == RequestKind::update && order.outcome == SentOrder::Outcome::refused &&
      order.result_code != ResultCode::none && result_texts::update_entry(order.result_code).empty())
    return note(*row, "");
  // Handlers that have a text of their own write it over this one.
  // What became known by other ways than an answer has no code.
  note(*row, order.result_code == ResultCode::none || order.outcome == SentOrder::Outcome::unknown
                 ? result_texts::learnt(order.outcome)
                 : CClientAPIManager::ResultDescription(order.result_code));
  auto& data = row->data<RowData>();
  if (order.kind == RequestKind::stops) data.stops_done = order.outcome == SentOrder::Outcome::accepted;
}

void EntryRound::stops_carried_out(std::int32_t account) {
  Row* row = rows_.find(account);
  if (row == nullptr) return;
  auto& data = row->data<RowData>();
  if (!std::exchange(data.stops_done, false)) return;
  data.sent.kind = stops_;
  note(*row, report(request::taken, account, data.sent));
}

OrderAnswer EntryRound::answer_of(const Row& row) const {
  const auto at = answers_.find(static_cast<std::int32_t>(row.key().number()));
  if (at != answers_.end()) return at->second;
  const auto* data = row.data_if<RowData>();
  return data != nullptr && data->wanted && !row.checked() ? OrderAnswer::left_out : OrderAnswer::none;
}

OrderAnswers EntryRound::answers() const {
  OrderAnswers out;
  for (const auto& [number, answer] : answers_)
    out.count(answer);
  out.unknown_before = sessions_.unknown([this](const SentOrder& order) { return is_of_before(order); });
  return out;
}

int EntryRound::unknown_before(const Row& row) const {
  return sessions_.unknown(static_cast<std::int32_t>(row.key().number()),
                           [this](const SentOrder& order) { return is_of_before(order); });
}

}  // namespace tutti
