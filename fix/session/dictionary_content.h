#pragma once

#include <memory>

#include "fix/session/fix_dictionary.h"
#include "fix/session/quickfix_headers.h"

namespace tutti {

struct FixDictionary::Content {
  std::shared_ptr<FIX::DataDictionary> messages;
  FIX::DataDictionaryProvider provider;
};

}  // namespace tutti
