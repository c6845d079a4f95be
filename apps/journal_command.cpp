#include <fmt/format.h>

#include <iterator>
#include <utility>

#include "apps/commands.h"
#include "apps/times.h"
#include "core/csv.h"

namespace tutti {

namespace {

// Prints entries one by one, so that a history of any size takes no more room than a short one.
class JournalPrinter {
 public:
  JournalPrinter(const CommandContext& context, std::int32_t account)
      : console_(context.console()),
        form_(context.form()),
        account_(std::to_string(account)),
        times_(context.clock()) {}

  bool any() const { return any_; }
  void print(std::string_view time, std::string_view message);
  void finish();

 private:
  static constexpr std::size_t flushed_at = 64u << 10;  // bytes

  void begin();
  void flush();

  Console& console_;
  OutputForm form_;
  std::string account_;
  LocalTimes times_;
  bool any_ = false;
  std::string out_;
};

void JournalPrinter::begin() {
  if (std::exchange(any_, true)) return;
  if (form_ == OutputForm::json) out_ += "{\n  \"journal\": [";
  if (form_ == OutputForm::csv) out_ += "time,account,message\n";
}

void JournalPrinter::print(std::string_view time, std::string_view message) {
  const bool first = !any_;
  begin();
  switch (form_) {
    case OutputForm::json:
      fmt::format_to(std::back_inserter(out_),
                     "{}\n    {{\n      \"time\": {},\n      \"account\": {},\n      \"message\": {}\n    }}",
                     first ? "" : ",", json_quoted(times_.text(time)), account_, json_quoted(message));
      break;
    case OutputForm::csv:
      append_csv_line(out_, {times_.text(time), account_, message});
      break;
    case OutputForm::text:
      fmt::format_to(std::back_inserter(out_), "{}  {}\n", time, message);
      break;
  }
  if (out_.size() >= flushed_at) flush();
}

void JournalPrinter::finish() {
  const bool none = !any_;
  begin();
  if (form_ == OutputForm::json) out_ += none ? "]\n}\n" : "\n  ]\n}\n";
  if (form_ == OutputForm::text && none) out_ += "The journal has no entries of account " + account_ + "\n";
  flush();
}

void JournalPrinter::flush() {
  console_.print(std::string_view{out_});
  console_.flush();
  out_.clear();
}

}  // namespace

int journal_command(CommandContext& context, std::int32_t account) {
  JournalPrinter printer{context, account};
  const auto read = context.main().journal().read(
      account, [&printer](std::string_view time, std::string_view message) { printer.print(time, message); });
  if (!read) {
    context.console().fail("The history was not read whole: {}", read.error().text());
    return exit_status::unreadable_data;
  }
  // An account that was removed still has its history.
  if (!printer.any() && !context.knows({account})) return exit_status::usage;
  printer.finish();
  return exit_status::all_accepted;
}

}  // namespace tutti
