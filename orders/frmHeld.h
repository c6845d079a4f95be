#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "core/MGeneral.h"
#include "core/button.h"
#include "core/dead_time.h"
#include "core/displayable.h"
#include "core/label.h"
#include "core/row_list.h"
#include "core/text_box.h"
#include "sessions/CClientAPIManagers.h"

namespace tutti {

// An order over a limit: what is wrong with it, account by account, and what the operator makes of it. Shows
// the one that has waited longest; it stands there until nothing is held any more.
class frmHeld final : public Displayable {
 public:
  enum Column : std::size_t { account, why };

  frmHeld(MGeneral& general, CClientAPIManagers& sessions);

  Label lblHeld;
  RowList lvwHeld{{"Account", "Over the limit"}};
  TextBox txtReason;
  Button cmdSend{"Send all the same"};
  Button cmdDrop{"Do not send"};

  // What is held has changed.
  void refresh();
  // A ticket has just come up: its buttons take nothing yet.
  bool buttons_dead() const { return in_dead_time(general_.clock, shown_since_); }

 private:
  void answer(bool send);

  MGeneral& general_;
  CClientAPIManagers& sessions_;
  int number_ = 0;  // of the ticket on show
  std::optional<std::chrono::milliseconds> shown_since_;
};

}  // namespace tutti
