#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "fix/dialect/symbol_sizes.h"
#include "fix/dialect/wire_news.h"
#include "fix/session/fix_message.h"

namespace tutti {

// Makes messages of what a server tells.
class NewsEncoder {
 public:
  // `own_fields`: whether the other end knows the fields of our own; without them it gets the standard ones.
  NewsEncoder(SymbolSizes sizes, bool own_fields) : sizes_(std::move(sizes)), own_fields_(own_fields) {}

  // Nothing where there is no message for it: without our own fields, and where a value is no number.
  // `stamp` is what the other end called its question, for what is part of an answer.
  std::optional<FixMessage> encode(const WireNews& news, std::string_view stamp = {}) const;

 private:
  std::string units(std::string_view symbol, double lots) const;

  FixMessage message(const news::Symbols& symbols, std::string_view stamp) const;
  FixMessage message(const news::Price& price, std::string_view stamp) const;
  FixMessage message(const news::PositionList& list, std::string_view stamp) const;
  FixMessage message(const news::Position& news, std::string_view stamp) const;
  FixMessage message(const news::Order& news, std::string_view stamp) const;
  FixMessage message(const news::Report& report, std::string_view stamp) const;
  FixMessage message(const news::Refused& refused, std::string_view stamp) const;
  FixMessage message(const news::Told& told, std::string_view stamp) const;
  FixMessage message(const news::Fills& fills, std::string_view stamp) const;
  FixMessage message(const news::Summary& news, std::string_view stamp) const;
  FixMessage message(const news::Offer& offer, std::string_view stamp) const;
  FixMessage message(const news::Time& time, std::string_view stamp) const;

  FixMessage execution_report(const news::Report& news) const;
  FixMessage cancel_reject(const news::Report& news) const;
  FixMessage stops_report(const news::Report& news) const;

  SymbolSizes sizes_;
  bool own_fields_;
};

}  // namespace tutti
