#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <tl/expected.hpp>

#include "fix/dialect/field_reader.h"
#include "fix/dialect/symbol_sizes.h"
#include "fix/dialect/wire_news.h"
#include "fix/session/fix_message.h"

namespace tutti {

// Reads what a server tells. What can't be read whole is an error and nothing else: no part of it counts.
class NewsDecoder {
 public:
  NewsDecoder(SymbolSizes sizes, std::int32_t account) : sizes_(std::move(sizes)), account_(account) {}

  // Nothing for a message that says nothing to a client. The error says what is wrong with which field.
  tl::expected<std::optional<WireNews>, std::string> decode(const FixMessage& message) const;

 private:
  double lots(FieldReader& reader, int tag, const std::string& symbol) const;

  WireNews symbols(const FixMessage& message, FieldReader& reader) const;
  WireNews price(const FixMessage& message, FieldReader& reader) const;
  WireNews position(const FixMessage& message, FieldReader& reader) const;
  WireNews execution_report(FieldReader& reader) const;
  WireNews status(FieldReader& reader) const;
  WireNews order(FieldReader& reader) const;
  WireNews report(FieldReader& reader) const;
  WireNews cancel_reject(FieldReader& reader) const;
  WireNews stops_report(FieldReader& reader) const;
  WireNews refused(FieldReader& reader, int id_tag) const;
  WireNews fills(const FixMessage& message, FieldReader& reader) const;
  WireNews summary(FieldReader& reader) const;
  WireNews offer(FieldReader& reader) const;

  SymbolSizes sizes_;
  std::int32_t account_;
};

}  // namespace tutti
