#pragma once

#include <fmt/format.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace tutti {

// The three streams of a program without a screen. The report is kept until it is flushed, so that whoever is
// to read it holds up nothing before; messages are written at once, and one that can't be written is lost.
class Console {
 public:
  // Descriptors, which stay the caller's. `stopped` ends the wait for a reader who doesn't read.
  Console(int in, int out, int err, std::function<bool()> stopped)
      : in_(in), out_(out), err_(err), stopped_(std::move(stopped)) {}

  // Adds to the report.
  void print(std::string_view text) { report_ += text; }
  template <class... Values>
  void print(fmt::format_string<Values...> form, Values&&... values) {
    report_ += fmt::format(form, std::forward<Values>(values)...);
  }
  // Writes the report so far; false when it can't be written, and from then on.
  bool flush();
  // Why it could not, as an error number of the system; 0 while it could.
  int fault() const { return fault_; }

  // Writes a message, in a line of its own.
  void tell(std::string_view text) { say("message", text); }
  template <class... Values>
  void tell(fmt::format_string<Values...> form, Values&&... values) {
    tell(std::string_view{fmt::format(form, std::forward<Values>(values)...)});
  }
  // The same for what keeps the command from being carried out whole.
  void fail(std::string_view text) { say("error", text); }
  template <class... Values>
  void fail(fmt::format_string<Values...> form, Values&&... values) {
    fail(std::string_view{fmt::format(form, std::forward<Values>(values)...)});
  }
  // From now on a message is a line with a JSON object, {"message": ...} or {"error": ...}.
  void speak_json() { json_ = true; }
  // Writes over the line that was written so last, while somebody watches.
  void progress(std::string_view text);

  // Somebody is there to answer a question.
  bool answered() const;
  // Waits for the line that is typed as the answer; empty when none is.
  std::string ask(std::string_view question);
  // The next line that was typed, empty while none is complete. Never waits.
  std::string typed_line();
  // Drops what was typed up to now, on a terminal all of it.
  void forget_typed();

 private:
  void say(std::string_view kind, std::string_view text) const;
  // The error number, 0 when all was written.
  int write(int descriptor, std::string_view text) const;

  int in_;
  int out_;
  int err_;
  std::function<bool()> stopped_;
  std::string report_;
  std::string typed_;
  int fault_ = 0;
  bool json_ = false;
};

}  // namespace tutti
