#include "core/toml_nesting.h"

#include <algorithm>
#include <vector>

namespace tutti {
namespace {

// Goes over a text without taking it apart; what is no TOML it leaves to the parser.
class NestingScan {
 public:
  NestingScan(std::string_view text, int levels) : text_(text), levels_(levels) {}

  std::optional<int> run() {
    while (at_ < text_.size()) {
      const char c = text_[at_];
      if (c == '"' || c == '\'') {
        skip_string(c);
      } else if (c == '#') {
        at_ = std::min(text_.find('\n', at_), text_.size());
      } else {
        take(c);
        ++at_;
      }
      if (depth() > levels_) return line_;
    }
    return std::nullopt;
  }

 private:
  // A value or table that is open: dots of the key that is being read in it, and whether its value came.
  struct Open {
    int key_dots = 0;
    bool in_value = false;
  };

  int depth() const {
    return header_levels_ + outer_dots_ + static_cast<int>(open_.size()) - 1 + open_.back().key_dots;
  }

  void take(char c) {
    switch (c) {
      case '[':
        // The header of a table, whose parts everything below it stands in.
        if (open_.size() == 1 && !open_.back().in_value) header_levels_ = 0;
        [[fallthrough]];
      case '{':
        outer_dots_ += open_.back().key_dots;
        open_.push_back({});
        break;
      case ']':
      case '}':
        close();
        break;
      case '.':
        if (!open_.back().in_value) ++open_.back().key_dots;
        break;
      case '=':
        open_.back().in_value = true;
        break;
      case '\n':
        ++line_;
        [[fallthrough]];
      case ',':
        open_.back() = {};
        break;
      default:
        break;
    }
  }

  void close() {
    if (open_.size() == 1) return;
    const int dots = open_.back().key_dots;
    open_.pop_back();
    outer_dots_ -= open_.back().key_dots;
    if (!open_.front().in_value) header_levels_ += dots + 1;
  }

  // At its first quote; three of them begin a text over several lines.
  void skip_string(char quote) {
    const std::string_view rest = text_.substr(at_);
    const bool several = rest.size() >= 3 && rest[1] == quote && rest[2] == quote;
    at_ += several ? 3 : 1;
    for (; at_ < text_.size(); ++at_) {
      if (text_[at_] == '\n') {
        if (!several) return;
        ++line_;
      }
      if (text_[at_] == '\\' && quote == '"' && text_.substr(at_ + 1, 1) != "\n") {
        ++at_;
        continue;
      }
      if (text_[at_] != quote) continue;
      if (!several) break;
      if (text_.substr(at_, 3) == std::string_view{rest.data(), 3}) {
        // Up to two quotes before the last three belong to the text.
        at_ = std::min(text_.find_first_not_of(quote, at_), std::min(at_ + 5, text_.size())) - 1;
        break;
      }
    }
    ++at_;
  }

  std::string_view text_;
  int levels_;
  std::size_t at_ = 0;
  int line_ = 1;
  std::vector<Open> open_ = std::vector<Open>(1);  // the root is always open
  int outer_dots_ = 0;                             // of the keys whose values are open
  int header_levels_ = 0;                          // of the last header
};

}  // namespace

std::optional<int> line_nested_deeper(std::string_view text, int levels) {
  return NestingScan{text, levels}.run();
}

}  // namespace tutti
