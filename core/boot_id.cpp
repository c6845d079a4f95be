#include "core/boot_id.h"

#include <array>

#include "core/descriptor.h"
#include "core/texts.h"

namespace tutti {

std::string boot_id() {
  const auto file = Descriptor::open_to_read("/proc/sys/kernel/random/boot_id");
  if (!file) return {};
  std::array<char, 64> text{};
  const auto size = file->read(text.data(), text.size());
  return std::string{trim(split(std::string_view{text.data(), size.value_or(0)}, "\n")[0])};
}

}  // namespace tutti
