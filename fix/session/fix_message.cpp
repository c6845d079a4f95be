#include "fix/session/fix_message.h"

namespace tutti {

const std::vector<FixFields>& FixMessage::entries(int count_tag) const {
  static const std::vector<FixFields> none;
  for (const FixGroup& group : groups)
    if (group.count_tag == count_tag) return group.entries;
  return none;
}

}  // namespace tutti
