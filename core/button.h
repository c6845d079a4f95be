#pragma once

#include <functional>
#include <string>
#include <utility>

namespace tutti {

// State of a button. A click while it is unavailable does nothing.
class Button {
 public:
  explicit Button(std::string caption) : caption_(std::move(caption)) {}

  const std::string& caption() const { return caption_; }
  bool enabled() const { return enabled_; }
  bool visible() const { return visible_; }
  void set_caption(std::string caption) { caption_ = std::move(caption); }
  void set_enabled(bool enabled) { enabled_ = enabled; }
  void set_visible(bool visible) { visible_ = visible; }

  void click() {
    if (enabled_ && visible_ && on_click) on_click();
  }
  std::function<void()> on_click;

 private:
  std::string caption_;
  bool enabled_ = true;
  bool visible_ = true;
};

}  // namespace tutti
