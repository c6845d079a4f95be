#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tutti {

// Help: opens a topic's page. Whoever can show pages sets `show`; without it a topic is only remembered.
class CHTMLHELP {
 public:
  void open(std::string_view topic) {
    topic_ = topic;
    if (show) show(topic_);
  }
  const std::string& topic() const { return topic_; }
  std::function<void(const std::string&)> show;

 private:
  std::string topic_;
};

}  // namespace tutti
