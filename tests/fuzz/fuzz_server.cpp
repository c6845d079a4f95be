// Whatever an account that is logged on sends, the dealing server goes on, and its figures stay figures.

#include <cmath>
#include <cstdlib>

#include "fix/dialect/wire_values.h"
#include "tests/fuzz/frames.h"
#include "tests/support/fix_rig.h"

namespace tutti {
namespace {

class Sender final : public ByteReceiver {
 public:
  void on_open() override {}
  void on_bytes(std::string_view) override {}
  void on_closed(std::string_view) override { open = false; }
  bool open = true;
};

}  // namespace
}  // namespace tutti

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tutti;
  static const DealerConfig config = [] {
    DealerConfig made = still_market(2);
    made.login_latency = made.order_latency = std::chrono::milliseconds{0};
    return made;
  }();
  FixRig rig(config);
  Sender sender;
  const auto stream = rig.network.connect({}, sender);
  rig.settle();
  const std::string time = wire_time(SystemClock{}.now());
  const AccountConfig& account = rig.server.config().accounts[0];
  const std::string name = std::to_string(account.number);
  int number = 1;
  stream->write(frame_of(fmt::format("A\x01"
                                     "98=0\x01"
                                     "108=30\x01"
                                     "141=Y\x01"
                                     "553={}\x01"
                                     "554={}\x01"
                                     "20000=1\x01",
                                     account.user, account.password),
                         number, name, "DEALER", time));
  rig.run(10);
  for (const std::string& body : bodies_of(data, size)) {
    if (!sender.open) break;
    stream->write(frame_of(body, ++number, name, "DEALER", time));
    rig.run(10);
  }
  const AccountSummary summary = rig.server.find_account(account.number)->summary();
  if (!std::isfinite(summary.equity) || !std::isfinite(summary.free_margin)) std::abort();
  return 0;
}
