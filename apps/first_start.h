#pragma once

#include "apps/terminal.h"
#include "core/prompt.h"

namespace tutti {

// What the operator wants in a home folder that has no accounts yet.
enum class FirstStart {
  nothing_to_ask,  // it has accounts, or the program was told what to do
  samples,
  own_account,
};

// Asks once, before the terminal is opened, and tells the options. An answer by Esc is no wish for samples.
FirstStart ask_first(Prompt& prompt, TerminalOptions& options);

}  // namespace tutti
