#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "apps/commands.h"

namespace tutti {

namespace {

// A text as JSON has it. Most need no second look.
void append_json(fmt::memory_buffer& out, std::string_view text) {
  const auto plain = [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; };
  if (std::all_of(text.begin(), text.end(), plain)) {
    fmt::format_to(std::back_inserter(out), "\"{}\"", text);
  } else {
    out.append(nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
  }
}

// Prints entries one by one, so that a history of any size takes no more room than a short one.
class JournalPrinter {
 public:
  JournalPrinter(Console& console, OutputForm form, std::int32_t account)
      : console_(console), json_(form == OutputForm::json), account_(account) {}

  void print(std::string_view time, std::string_view message) {
    if (json_) {
      fmt::format_to(std::back_inserter(out_), "{}\n    {{\n      \"account\": {},\n      \"message\": ",
                     any_ ? "," : "{\n  \"journal\": [", account_);
      append_json(out_, message);
      fmt::format_to(std::back_inserter(out_), ",\n      \"time\": ");
      append_json(out_, time);
      fmt::format_to(std::back_inserter(out_), "\n    }}");
    } else {
      fmt::format_to(std::back_inserter(out_), "{}  {}\n", time, message);
    }
    any_ = true;
    if (out_.size() >= flushed_at) flush();
  }
  void finish() {
    if (json_) {
      out_.append(std::string_view{any_ ? "\n  ]\n}\n" : "{\n  \"journal\": []\n}\n"});
    } else if (!any_) {
      fmt::format_to(std::back_inserter(out_), "The journal has no entries of account {}\n", account_);
    }
    flush();
  }

 private:
  static constexpr std::size_t flushed_at = 64u << 10;  // bytes

  void flush() {
    console_.print(std::string_view{out_.data(), out_.size()});
    console_.flush();
    out_.clear();
  }

  Console& console_;
  bool json_;
  std::int32_t account_;
  bool any_ = false;
  fmt::memory_buffer out_;
};

}  // namespace

int journal_command(CommandContext& context, std::int32_t account) {
  JournalPrinter printer{context.console(), context.form(), account};
  const auto read = context.main().journal().read(
      account, [&printer](std::string_view time, std::string_view message) { printer.print(time, message); });
  if (read) {
    printer.finish();
    return exit_status::all_accepted;
  }
  context.console().tell("The history was not read whole: {}\n", read.error().text());
  return exit_status::unreadable_data;
}

}  // namespace tutti
