#pragma once

#include <string>
#include <vector>

#include "fix/session/fix_fields.h"

namespace tutti {

// A group that repeats: how often stands in the field `count_tag`, and each entry begins with the same tag.
struct FixGroup {
  int count_tag = 0;
  std::vector<FixFields> entries;

  bool operator==(const FixGroup&) const = default;
};

// One message as plain values, without what the session layer adds: head, numbers, length and checksum.
struct FixMessage {
  std::string type{};
  FixFields fields{};
  std::vector<FixGroup> groups{};  // none within another

  // Of a message that was received.
  int sequence = 0;
  bool possible_resend = false;  // its sender does not know whether it came before
  std::string sender{}, target{}, sending_time{};

  void set(int tag, std::string value) { fields.set(tag, std::move(value)); }
  std::string_view text(int tag) const { return fields.text(tag); }
  bool has(int tag) const { return fields.has(tag); }
  // Calls `act` with the fields of the message, then with those of each entry of its groups.
  template <class Act>
  void each_fields(Act act) {
    act(fields);
    for (FixGroup& group : groups)
      for (FixFields& entry : group.entries)
        act(entry);
  }
  // The entries of a group; none when it is not there.
  const std::vector<FixFields>& entries(int count_tag) const;
};

}  // namespace tutti
