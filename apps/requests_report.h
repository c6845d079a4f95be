#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "apps/command_context.h"

namespace tutti {

// What became of the requests that a command sent about positions or orders.
class RequestsReport {
 public:
  struct Asked {
    std::int64_t number = 0;
    std::int32_t account = 0;
  };

  // `number_name` is "ticket" or "order", `list_name` their plural.
  RequestsReport(CommandContext& context, RequestKind kind, const char* number_name, const char* list_name)
      : context_(context), kind_(kind), name_(number_name), list_name_(list_name) {}

  const char* number_name() const { return name_; }
  const char* list_name() const { return list_name_; }
  // nullptr when nothing was sent.
  const SentOrder* sent(const Asked& asked) const;
  // Nothing more is to come, be it that nothing was sent.
  bool answered(const Asked& asked) const;
  bool accepted(const Asked& asked) const;
  // What the command comes to.
  int status(const std::vector<Asked>& all) const;
  // By account, then by number.
  void print(std::vector<Asked> all) const;

  // What became of one request, in words; nullptr when nothing was sent.
  static std::string result(const SentOrder* request);

 private:
  CommandContext& context_;
  RequestKind kind_;
  const char* name_;
  const char* list_name_;
};

}  // namespace tutti
