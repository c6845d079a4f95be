#include "fix/session/message_conversion.h"

#include <string>
#include <vector>

namespace tutti {
namespace {

FixFields fields_of(const FIX::FieldMap& map) {
  FixFields out;
  for (const FIX::FieldBase& field : map)
    out.set(field.getTag(), field.getString());
  return out;
}

std::string header_text(const FIX::Message& message, int tag) {
  const FIX::Header& header = message.getHeader();
  return header.isSetField(tag) ? header.getField(tag) : std::string{};
}

}  // namespace

FIX::Message library_message(const FixMessage& message) {
  FIX::Message out;
  out.getHeader().setField(FIX::FIELD::MsgType, message.type);
  for (const FixField& field : message.fields)
    out.setField(field.tag, field.value);
  for (const FixGroup& group : message.groups)
    for (const FixFields& entry : group.entries) {
      std::vector<int> order;
      for (const FixField& field : entry)
        order.push_back(field.tag);
      if (order.empty()) continue;
      order.push_back(0);
      FIX::Group made(group.count_tag, order.front(), order.data());
      for (const FixField& field : entry)
        made.setField(field.tag, field.value);
      out.addGroup(made);
    }
  return out;
}

std::optional<int> read_message(const FIX::Message& message, FixMessage& out) {
  out = {};
  out.type = header_text(message, FIX::FIELD::MsgType);
  out.sender = header_text(message, FIX::FIELD::SenderCompID);
  out.target = header_text(message, FIX::FIELD::TargetCompID);
  out.sending_time = header_text(message, FIX::FIELD::SendingTime);
  out.possible_resend = header_text(message, FIX::FIELD::PossResend) == "Y";
  FIX::MsgSeqNum number;
  if (message.getHeader().getFieldIfSet(number)) out.sequence = number;
  for (const FIX::FieldBase& field : message)
    if (!message.FieldMap::hasGroup(field.getTag())) out.set(field.getTag(), field.getString());
  for (auto group = message.g_begin(); group != message.g_end(); ++group) {
    const std::size_t count = group->second.size();
    if (!message.isSetField(group->first) || message.getField(group->first) != std::to_string(count))
      return group->first;
    FixGroup& made = out.groups.emplace_back();
    made.count_tag = group->first;
    for (const FIX::FieldMap* entry : group->second)
      made.entries.push_back(fields_of(*entry));
  }
  return std::nullopt;
}

}  // namespace tutti
