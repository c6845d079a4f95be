#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "books/books.h"
#include "core/MGeneral.h"
#include "core/button.h"
#include "core/check_box.h"
#include "core/displayable.h"
#include "core/label.h"
#include "core/row_list.h"
#include "sessions/CClientAPIManagers.h"

namespace tutti {

// STOP ALL: from the press on nothing leaves. Then one question with the figures: cancel the entry orders,
// close the positions, both, or neither; and what the accounts' lists say stands open, until the operator
// ends the stop.
class frmStop final : public Displayable, public PositionBook::Observer {
 public:
  enum Column : std::size_t { account, open };

  frmStop(MGeneral& general, CClientAPIManagers& sessions, const Books& books);

  Label lblState;
  Label lblFigures;
  CheckBox chkOrders;
  CheckBox chkPositions;
  Button cmdCarryOut{"Carry out"};
  Button cmdEnd{"End the stop"};
  Button cmdHide{"Hide"};
  RowList lvwOpen{{"Account", "Open"}};

  // Stops at once. `by`: who says so, for the journal and the sign.
  void stop(std::string_view by);
  // Cancels all entry orders, closes all positions, or both, while trading is stopped; what the button does.
  void carry_out(bool cancel_orders, bool close_positions);
  // Ends the stop, which the operator's button does too; where it can't be, says so.
  void end(std::string_view by);
  bool stopped() const { return sessions_.admission().stop().stopped(); }
  // As it was at the last heartbeat.
  bool shows_stopped() const { return was_stopped_; }
  // Brings figures and list up to date, and the window up when somebody else has stopped trading meanwhile;
  // to be called at each heartbeat.
  void refresh();
  // The same at once.
  void refresh_now() { list_open(); }

  struct Figures {
    std::size_t orders = 0;     // entry orders
    std::size_t positions = 0;  // of the connected accounts
    double lots = 0.0;          // of these
    std::size_t not_connected = 0;
    std::size_t unknown = 0;  // requests that open something
  };
  Figures figures() const;
  // "12 entry orders and 40 positions of 21.5 lots; 3 accounts are not connected"
  std::string figures_text() const;
  // What the list shows.
  struct Open {
    std::int32_t account = 0;
    std::string what;
  };
  std::vector<Open> shown_open() const;
  // Nothing stands open as far as anybody can tell, and everybody could be asked.
  bool verified_flat() const;

  // A position that comes while trading is stopped, and was not there before, is an alarm.
  void changed(const PositionBook::Record& position) override;

  // Closes a position in the one way there is; set by start-up. False: it can't be asked for.
  std::function<bool(std::int64_t ticket, double amount, std::int32_t account)> close;

 private:
  void list_open();
  void enable_carry_out();

  MGeneral& general_;
  CClientAPIManagers& sessions_;
  const Books& books_;
  bool was_stopped_ = false;
  std::chrono::milliseconds listed_{-1};  // when the list was made, of the clock's elapsed time
  std::uint64_t last_arrival_ = 0;        // of a position
};

}  // namespace tutti
