#pragma once

namespace tutti {

// Takes INT, TERM and HUP, while it lives, as the wish that the program comes to an end by its own road. What
// whoever started the program had it ignore stays ignored (a HUP under nohup). A reader that closed its pipe
// ends nothing: writing to it fails. One object per process.
class StopSignals {
 public:
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  // The first that came; 0 while none did.
  int caught() const;
  // Has something to read once one came; -1 when the machine had no pipe left.
  int descriptor() const;
};

}  // namespace tutti
