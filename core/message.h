#pragma once

#include <string>

namespace tutti {

// One message to the operator. An empty second button means the box has only one.
struct Message {
  std::string text;
  std::string caption;
  std::string button1;
  std::string button2;
  std::string details = {};  // below the text: what it is about

  bool operator==(const Message&) const = default;
};

}  // namespace tutti
