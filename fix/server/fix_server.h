#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "fix/server/fix_seat.h"
#include "fix/session/fix_dictionary.h"
#include "fix/wire/listener.h"

namespace tutti {

// The server's end of FIX: a seat for each connection, over trading clients that its owner makes. One thread,
// which also delivers the events of those clients.
class FixServer final : public Listener {
 public:
  // The dictionary, and what the factory's clients hang on, outlive the server.
  FixServer(const FixDictionary& dictionary, ServerSettings settings,
            std::function<std::unique_ptr<ClientAPI>()> make_client);
  ~FixServer() override;

  // Called whenever something came in that the clients may have an answer to. Before anybody connects.
  void set_wake(std::function<void()> wake) { wake_ = std::move(wake); }

  ByteReceiver* on_connection(std::unique_ptr<ByteStream> stream, std::string_view address) override;
  // About once a second, outside of anything the network or a client calls: connections that ended go here.
  void tick();
  // Lets them go at once; called as `tick` is.
  void sweep();
  // Logs everybody out, in these words.
  void close(std::string_view why);

  // Accounts that are logged on.
  std::size_t logged_on() const;
  std::size_t connections() const { return seats_.size(); }
  // What is for the log, oldest first.
  std::vector<std::string> take_remarks() { return std::exchange(remarks_, {}); }

 private:
  const FixDictionary& dictionary_;
  const ServerSettings settings_;
  const std::function<std::unique_ptr<ClientAPI>()> make_client_;
  const std::function<AccountMemory&(std::int32_t)> memory_of_;
  const std::function<void(std::string)> remark_;
  std::function<void()> wake_;
  std::map<std::int32_t, AccountMemory> memories_;
  std::vector<std::string> remarks_;
  std::vector<std::unique_ptr<FixSeat>> seats_;
};

}  // namespace tutti
