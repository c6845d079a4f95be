// Whatever a server tells an account that is logged in, the client goes on or gives the connection up, and
// shows no figure that is none.

#include <cmath>
#include <cstdlib>

#include "fix/dialect/wire_values.h"
#include "tests/fuzz/frames.h"
#include "tests/support/liar_rig.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tutti;
  LiarRig rig;
  rig.client->Login();
  rig.run();
  if (!rig.client->LoggedIn()) std::abort();
  const RequestId id = 1;
  rig.client->NewMarketOrder(buy, rig.client->FindSymbol("EURUSD")->id, 0.5, "", "", id);
  rig.run();
  const std::string time = wire_time(SystemClock{}.now());
  int number = rig.liar.sent + 1;
  for (const std::string& body : bodies_of(data, size)) {
    if (!rig.client->LoggedIn()) break;
    rig.liar.write(frame_of(body, number++, "DEALER", "500100", time));
    rig.run();
  }
  for (int i = 1; i <= rig.client->OpenPositionCount(); ++i) {
    const OpenPosition& position = *rig.client->OpenPositionItem(i);
    if (!(position.amount > 0.0) || !std::isfinite(position.floating_pl) || !(position.open_price > 0.0))
      std::abort();
  }
  for (const OrderReport& report : rig.seen.reports)
    if (!std::isfinite(report.price) || !std::isfinite(report.filled) || report.filled < 0.0) std::abort();
  return 0;
}
