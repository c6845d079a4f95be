#pragma once

#include <condition_variable>
#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "ledger/ledger_reader.h"
#include "ledger/ledger_reads.h"

namespace tutti {

// Reads the ledger of a home folder on a thread of its own, with a connection that can only read and that has
// no transaction open while nothing is asked. Thread and connection come with the first question.
class LedgerWatch final : public LedgerReads {
 public:
  // `key_file` as KeyFile takes it.
  LedgerWatch(std::filesystem::path home, const std::filesystem::path& key_file)
      : reader_(std::move(home), key_file) {}
  ~LedgerWatch() override;
  LedgerWatch(const LedgerWatch&) = delete;
  LedgerWatch& operator=(const LedgerWatch&) = delete;

  void ask(Read read, Failed failed) override;
  void deliver() override;

 private:
  struct Question {
    Read read;
    Failed failed;
  };

  void run();
  // The thread's.
  Show answer(Question& question);

  std::mutex mutex_;
  std::condition_variable asked_;
  std::deque<Question> questions_;
  std::vector<Show> answers_;
  bool stop_ = false;

  LedgerReader reader_;
  std::unique_ptr<LedgerFile> file_;
  std::thread thread_;
};

}  // namespace tutti
