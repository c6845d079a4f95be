#include "dealer/trading/history_text.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <vector>

#include "core/texts.h"
#include "dealer/trading/book_words.h"

namespace tutti::history_text {
namespace {

// Takes the fields of a text in turn.
class Fields {
 public:
  explicit Fields(std::string_view text) : fields_(split(text, " ")) {}

  template <class Number>
  void take(Number& value) {
    const std::string_view field = next();
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (error != std::errc{} || end != field.data() + field.size()) good_ = false;
    if constexpr (std::is_floating_point_v<Number>)
      if (!std::isfinite(value)) good_ = false;
  }
  void take(ContractCode auto& value) {
    std::int32_t number = 0;
    take(number);
    value = std::remove_cvref_t<decltype(value)>{number};
  }
  void take(std::string& value) { value = next(); }
  void take(TimePoint& value) {
    std::int64_t milliseconds = 0;
    take(milliseconds);
    value = TimePoint{std::chrono::milliseconds{milliseconds}};
  }
  template <class Value, std::size_t count>
  void take(Value& value, const Word<Value> (&words)[count]) {
    const std::string_view field = next();
    for (const Word<Value>& word : words)
      if (word.text == field) {
        value = word.value;
        return;
      }
    good_ = false;
  }
  bool more() const { return at_ < fields_.size(); }
  // All was there and nothing is left.
  bool good() const { return good_ && !more(); }

 private:
  std::string_view next() {
    if (more()) return fields_[at_++];
    good_ = false;
    return {};
  }

  std::vector<std::string_view> fields_;
  std::size_t at_ = 0;
  bool good_ = true;
};

std::int64_t milliseconds(TimePoint time) {
  return time.time_since_epoch().count();
}

// At the end of a text, where it was told.
std::string realised_text(const std::optional<Realised>& realised) {
  return realised ? fmt::format(" {} {}", realised->profit, realised->commission) : std::string{};
}

void take_realised(Fields& fields, std::optional<Realised>& out) {
  if (!fields.more()) return;
  fields.take(out.emplace().profit);
  fields.take(out->commission);
}

}  // namespace

std::string of(const RequestRecord& record) {
  // Behind the digest, so that what was written before there was one is read as ever.
  const std::string ledger = record.ledger == 0 ? "" : fmt::format(":{:016x}", record.ledger);
  std::string text = fmt::format("{} {} {}{} {} {}", record.account, record.id, record.digest, ledger,
                                 record.code, word_of(state_words, record.state));
  if (!record.answer) return text;
  const OrderReport& report = record.answer->report;
  return text += fmt::format(" {} {} {} {} {} {} {} {} {} {} {} {} {} {}{}",
                             word_of(answer_words, record.answer->event), report.number, report.result,
                             report.state, report.request_kind, report.operation, report.amount,
                             report.symbol, report.price, report.execution, report.filled, report.filled_all,
                             report.left, milliseconds(report.time), realised_text(report.realised));
}

std::string of(const Execution& fill) {
  return fmt::format("{} {} {} {} {} {} {} {} {} {}{}", fill.account, fill.execution, fill.id, fill.number,
                     fill.closes ? 1 : 0, fill.operation, fill.symbol, fill.lots, fill.price,
                     milliseconds(fill.time), realised_text(fill.realised));
}

std::optional<RequestRecord> request(std::string_view text) {
  Fields fields(text);
  RequestRecord record;
  fields.take(record.account);
  fields.take(record.id);
  fields.take(record.digest);
  if (const auto colon = record.digest.find(':'); colon != std::string::npos) {
    record.ledger = ledger_tag(std::string_view{record.digest}.substr(colon + 1));
    record.digest.resize(colon);
  }
  fields.take(record.code);
  fields.take(record.state, state_words);
  if (fields.more()) {
    AnswerNews& answer = record.answer.emplace();
    OrderReport& report = answer.report;
    fields.take(answer.event, answer_words);
    fields.take(report.number);
    fields.take(report.result);
    fields.take(report.state);
    fields.take(report.request_kind);
    fields.take(report.operation);
    fields.take(report.amount);
    fields.take(report.symbol);
    fields.take(report.price);
    fields.take(report.execution);
    fields.take(report.filled);
    fields.take(report.filled_all);
    fields.take(report.left);
    fields.take(report.time);
    take_realised(fields, report.realised);
    report.account = record.account;
    report.id = record.id;
  }
  if (!fields.good() || record.account <= 0 || record.id <= 0) return std::nullopt;
  return record;
}

std::optional<Execution> fill(std::string_view text) {
  Fields fields(text);
  Execution fill;
  int closes = 0;
  fields.take(fill.account);
  fields.take(fill.execution);
  fields.take(fill.id);
  fields.take(fill.number);
  fields.take(closes);
  fields.take(fill.operation);
  fields.take(fill.symbol);
  fields.take(fill.lots);
  fields.take(fill.price);
  fields.take(fill.time);
  take_realised(fields, fill.realised);
  fill.closes = closes != 0;
  if (!fields.good() || fill.account <= 0) return std::nullopt;
  return fill;
}

}  // namespace tutti::history_text
