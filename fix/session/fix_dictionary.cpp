#include "fix/session/fix_dictionary.h"

#include <sstream>

#include "fix/session/dictionary_content.h"
#include "fix/session/dictionary_text.h"

namespace tutti {

FixDictionary::FixDictionary() : content_(std::make_unique<Content>()) {
  std::istringstream text{std::string{dictionary_text()}};
  content_->messages = std::make_shared<FIX::DataDictionary>(text);
  // Brokers have fields of their own, and later versions' ones; nobody is turned away for these.
  content_->messages->checkUserDefinedFields(false);
  content_->messages->allowUnknownMsgFields(true);
  content_->provider.addTransportDataDictionary(FIX::BeginString("FIX.4.4"), content_->messages);
}

FixDictionary::~FixDictionary() = default;

}  // namespace tutti
