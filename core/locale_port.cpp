#include "core/locale_port.h"

#include <algorithm>

namespace tutti {

void ProcessLocale::set(int, int item, std::string_view value) {
  items_[item] = value;
}

int ProcessLocale::get(int, int item, std::string& buffer) const {
  const auto at = items_.find(item);
  if (at == items_.end() || at->second.size() + 1 > buffer.size()) return 0;
  std::copy(at->second.begin(), at->second.end(), buffer.begin());
  buffer[at->second.size()] = '\0';
  return static_cast<int>(at->second.size()) + 1;
}

}  // namespace tutti
