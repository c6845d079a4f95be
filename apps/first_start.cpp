#include "apps/first_start.h"

#include "core/frmMsgBox.h"
#include "core/message_queue.h"

namespace tutti {

FirstStart ask_first(Prompt& prompt, TerminalOptions& options) {
  // What can't be looked at is told by the terminal, which looks again.
  if (options.demo || !Terminal::is_new(options.home).value_or(false)) return FirstStart::nothing_to_ask;
  constexpr int with_samples = 1;
  MessageQueue nothing_waits;
  frmMsgBox box{prompt, nothing_waits};
  const int answer = box.MessageBox({"There are no accounts yet. Add your account, or try with samples?",
                                     "Welcome to Tutti", "Try with samples", "Add your account",
                                     "Samples are made-up accounts, with made-up money and prices."},
                                    frmMsgBox::Icon::question);
  options.samples = answer == with_samples;
  return options.samples ? FirstStart::samples : FirstStart::own_account;
}

}  // namespace tutti
