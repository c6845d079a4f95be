#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "ledger/copy/copy_target.h"

namespace tutti {

// Copies the ledger of a home for as long as it lives, on a thread of its own, with a connection that can
// only read and that has no transaction open while there is nothing to do. One thread calls, and never waits
// but in `flush`.
class LedgerCopier {
 public:
  // `key_file` as KeyFile takes it. Begins with what is missing there.
  LedgerCopier(std::filesystem::path home, std::filesystem::path key_file, CopyTarget target);
  // Breaks off what is not done. A thread that can't be stopped within a moment ends by itself.
  ~LedgerCopier();
  LedgerCopier(const LedgerCopier&) = delete;
  LedgerCopier& operator=(const LedgerCopier&) = delete;

  // Something was stored: it is copied within a second or so. While the server can't be reached it is tried
  // every ten.
  void wake();
  // Tries at once, and waits until all is there that was stored before; false when it isn't by then.
  bool flush(std::chrono::milliseconds most);
  // What the operator has to know since it was asked last: once that it fails, and once that it goes on.
  std::vector<std::string> take_notices();

 private:
  struct Shared;
  static void run(Shared& shared, const std::filesystem::path& home, const std::filesystem::path& key_file,
                  const CopyTarget& target);

  const std::shared_ptr<Shared> shared_;
  std::thread thread_;
};

}  // namespace tutti
