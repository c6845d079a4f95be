#include "orders/close_round.h"

#include <algorithm>

#include "sessions/gate_texts.h"

namespace tutti {
namespace {

RowKey key_of(const frmTrade::Close& position) {
  return ticket_key(position.ticket, position.account);
}

}  // namespace

void CloseRound::begin() {
  sent_.clear();
  settled_ = {};
}

void CloseRound::renew(const frmTrade::Close& position) {
  texts_.erase(key_of(position));
  unsent_.erase(key_of(position));
}

void CloseRound::add(const frmTrade::Close& position, bool was_sent) {
  if (was_sent) return sent_.push_back(position);
  unsent_.insert(key_of(position));
  settled_.count(OrderAnswer::refused);
}

void CloseRound::result(RowKey position, std::string_view text) {
  texts_[position] = text;
  unsent_.erase(position);
}

const SentOrder* CloseRound::request_for(RowKey position) const {
  const CClientAPIManager* session = sessions_.by_account(position.account());
  return session == nullptr ? nullptr : session->sent_request(RequestKind::close, position.number());
}

// A close on its way from another window is newer than the one that was not sent here.
bool CloseRound::not_sent(RowKey position, const SentOrder* sent) const {
  return unsent_.contains(position) && (sent == nullptr || sent->settled());
}

OrderAnswer CloseRound::answer_of(RowKey position) const {
  const SentOrder* sent = request_for(position);
  if (not_sent(position, sent)) return OrderAnswer::refused;
  return sent == nullptr ? OrderAnswer::none : answer_from(sent->outcome);
}

std::string_view CloseRound::text_of(RowKey position) const {
  const SentOrder* sent = request_for(position);
  if (not_sent(position, sent)) return "Not sent";
  if (sent == nullptr) return {};
  if (const std::string_view kept = gate_texts::row(*sent); !kept.empty()) return kept;
  const OrderAnswer answer = answer_from(sent->outcome);
  if (answer != OrderAnswer::refused && answer != OrderAnswer::waiting) return {};
  if (sent->request_code != request::taken) return request::text(sent->request_code);
  const auto at = texts_.find(position);
  return at == texts_.end() ? std::string_view{} : at->second;
}

OrderAnswers CloseRound::answers() {
  OrderAnswers open;
  int unknown_now = 0;  // of accounts that are still there
  std::erase_if(sent_, [&](const frmTrade::Close& position) {
    const SentOrder* sent = request_for(key_of(position));
    const OrderAnswer answer = sent == nullptr ? OrderAnswer::unknown : answer_from(sent->outcome);
    if (sent != nullptr && answer == OrderAnswer::unknown) ++unknown_now;
    const bool settled = answer == OrderAnswer::accepted || answer == OrderAnswer::refused;
    (settled ? settled_ : open).count(answer);
    return settled;
  });
  open.accepted = settled_.accepted;
  open.refused = settled_.refused;
  const int unknown =
      sessions_.unknown([](const SentOrder& each) { return each.kind == RequestKind::close; });
  open.unknown_before = std::max(unknown - unknown_now, 0);
  return open;
}

}  // namespace tutti
