#pragma once

#include <memory>

namespace tutti {

// The messages that sessions understand, and their groups. Read once, and shared by all sessions of a
// program; it never changes, so that several threads may use it.
class FixDictionary {
 public:
  FixDictionary();
  ~FixDictionary();
  FixDictionary(const FixDictionary&) = delete;
  FixDictionary& operator=(const FixDictionary&) = delete;

  // What only the session layer knows.
  struct Content;
  const Content& content() const { return *content_; }

 private:
  std::unique_ptr<Content> content_;
};

}  // namespace tutti
