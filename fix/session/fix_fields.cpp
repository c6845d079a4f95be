#include "fix/session/fix_fields.h"

#include <utility>

namespace tutti {

void FixFields::set(int tag, std::string value) {
  for (FixField& field : fields_)
    if (field.tag == tag) {
      field.value = std::move(value);
      return;
    }
  fields_.push_back({tag, std::move(value)});
}

void FixFields::remove(int tag) {
  std::erase_if(fields_, [tag](const FixField& field) { return field.tag == tag; });
}

void FixFields::remove_empty() {
  std::erase_if(fields_, [](const FixField& field) { return field.value.empty(); });
}

void FixFields::remove_from(int first, int kept, int kept_too) {
  std::erase_if(fields_, [&](const FixField& field) {
    return field.tag >= first && field.tag != kept && field.tag != kept_too;
  });
}

const std::string* FixFields::find(int tag) const {
  for (const FixField& field : fields_)
    if (field.tag == tag) return &field.value;
  return nullptr;
}

std::string_view FixFields::text(int tag) const {
  const std::string* value = find(tag);
  return value != nullptr ? std::string_view{*value} : std::string_view{};
}

}  // namespace tutti
