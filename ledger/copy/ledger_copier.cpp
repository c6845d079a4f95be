#include "ledger/copy/ledger_copier.h"

#include <fmt/format.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <utility>

#include "ledger/copy/ledger_copy.h"
#include "ledger/ledger_reader.h"

namespace tutti {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds gathering = 1000ms;  // of what is stored into one look at the server
constexpr std::chrono::milliseconds next_try = 10'000ms;
constexpr std::chrono::milliseconds moment = 250ms;  // for the thread to see that it is to stop

}  // namespace

// Outlives the copier where the thread does.
struct LedgerCopier::Shared {
  std::mutex mutex;
  std::condition_variable work;     // for the thread
  std::condition_variable settled;  // for who waits
  std::atomic<bool> stop = false;
  bool urgent = false;
  bool ended = false;
  std::uint64_t asked = 1;  // counts what was stored
  std::uint64_t tried = 0;  // so many of it were to be copied
  std::uint64_t done = 0;   // so many of it are
  std::vector<std::string> notices;
};

LedgerCopier::LedgerCopier(std::filesystem::path home, std::filesystem::path key_file, CopyTarget target)
    : shared_(std::make_shared<Shared>()),
      thread_([shared = shared_, home = std::move(home), key_file = std::move(key_file),
               target = std::move(target)] {
        run(*shared, home, key_file, target);
        const std::lock_guard lock{shared->mutex};
        shared->ended = true;
        shared->settled.notify_all();
      }) {}

LedgerCopier::~LedgerCopier() {
  std::unique_lock lock{shared_->mutex};
  shared_->stop = true;
  shared_->work.notify_one();
  const bool ended = shared_->settled.wait_for(lock, moment, [this] { return shared_->ended; });
  lock.unlock();
  // The look-up of a name can't be broken off.
  if (ended)
    thread_.join();
  else
    thread_.detach();
}

void LedgerCopier::wake() {
  const std::lock_guard lock{shared_->mutex};
  ++shared_->asked;
  shared_->work.notify_one();
}

bool LedgerCopier::flush(std::chrono::milliseconds most) {
  std::unique_lock lock{shared_->mutex};
  const std::uint64_t target = ++shared_->asked;
  shared_->urgent = true;
  shared_->work.notify_one();
  shared_->settled.wait_for(lock, most, [&] { return shared_->ended || shared_->tried >= target; });
  return shared_->done >= target;
}

std::vector<std::string> LedgerCopier::take_notices() {
  const std::lock_guard lock{shared_->mutex};
  return std::exchange(shared_->notices, {});
}

void LedgerCopier::run(Shared& shared, const std::filesystem::path& home,
                       const std::filesystem::path& key_file, const CopyTarget& target) {
  LedgerReader reader{home, key_file};
  std::unique_ptr<LedgerFile> file;
  std::unique_ptr<LedgerCopy> copy;
  const auto push = [&]() -> tl::expected<void, CopyError> {
    if (!file) {
      auto opened = reader.open();
      if (!opened) return tl::unexpected(CopyError{.text = opened.error().text()});
      file = std::move(*opened);
      copy = std::make_unique<LedgerCopy>(*file, target, [&shared] { return shared.stop.load(); });
    }
    const auto pushed = copy->push();
    if (!pushed) return tl::unexpected(pushed.error());
    return {};
  };
  bool well = true;
  std::unique_lock lock{shared.mutex};
  while (!shared.stop) {
    const std::uint64_t asked = shared.asked;
    shared.urgent = false;
    lock.unlock();
    const auto pushed = push();
    if (!pushed) {
      copy.reset();
      file.reset();
    }
    lock.lock();
    if (shared.stop) return;
    const bool forked = !pushed && pushed.error().kind == CopyError::Kind::forked;
    if (forked) {
      shared.notices.push_back(fmt::format(
          "The ledger is not copied to {} any more: {}. Close the terminal, and begin a new id for "
          "what this home has: tuttictl ledger push --to {}",
          target.url(), pushed.error().text, target.url()));
    } else if (pushed.has_value() != well) {
      shared.notices.push_back(
          well ? fmt::format("The ledger can't be copied to {}: {}. It is tried again until it can",
                             target.url(), pushed.error().text)
               : fmt::format("The ledger is copied to {} again", target.url()));
    }
    well = pushed.has_value();
    shared.tried = asked;
    if (well) shared.done = asked;
    shared.settled.notify_all();
    if (forked) return;
    const auto called = [&] { return shared.stop || shared.urgent; };
    if (shared.work.wait_for(lock, well ? gathering : next_try, called) || !well) continue;
    shared.work.wait(lock, [&] { return called() || shared.asked > asked; });
  }
}

}  // namespace tutti
