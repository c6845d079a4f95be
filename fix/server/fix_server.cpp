#include "fix/server/fix_server.h"

#include <algorithm>
#include <utility>

namespace tutti {
namespace {

constexpr std::size_t most_remarks = 10'000;  // that nobody has taken

}  // namespace

FixServer::FixServer(const FixDictionary& dictionary, ServerSettings settings,
                     std::function<std::unique_ptr<ClientAPI>()> make_client)
    : dictionary_(dictionary),
      settings_(std::move(settings)),
      make_client_(std::move(make_client)),
      memory_of_([this](std::int32_t account) -> AccountMemory& { return memories_[account]; }),
      remark_([this](std::string text) {
        if (remarks_.size() < most_remarks) remarks_.push_back(std::move(text));
      }) {}

FixServer::~FixServer() = default;

ByteReceiver* FixServer::on_connection(std::unique_ptr<ByteStream> stream, std::string_view address) {
  if (seats_.size() >= settings_.most_seats) return nullptr;
  const FixSeat::Host host{settings_, dictionary_, make_client_, memory_of_, remark_, wake_};
  return seats_.emplace_back(std::make_unique<FixSeat>(host, std::move(stream), address)).get();
}

void FixServer::sweep() {
  std::erase_if(seats_, [](const auto& seat) { return seat->over(); });
}

void FixServer::tick() {
  sweep();
  for (const auto& seat : seats_)
    seat->tick();
}

void FixServer::close(std::string_view why) {
  for (const auto& seat : seats_)
    seat->end(why);
}

std::size_t FixServer::logged_on() const {
  return static_cast<std::size_t>(
      std::count_if(seats_.begin(), seats_.end(), [](const auto& seat) { return seat->on(); }));
}

}  // namespace tutti
