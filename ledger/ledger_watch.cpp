#include "ledger/ledger_watch.h"

namespace tutti {

LedgerWatch::~LedgerWatch() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock{mutex_};
    stop_ = true;
  }
  asked_.notify_one();
  thread_.join();
}

void LedgerWatch::ask(Read read, Failed failed) {
  {
    const std::lock_guard lock{mutex_};
    questions_.push_back({std::move(read), std::move(failed)});
  }
  if (!thread_.joinable()) thread_ = std::thread{[this] { run(); }};
  asked_.notify_one();
}

void LedgerWatch::deliver() {
  std::vector<Show> answers;
  {
    const std::lock_guard lock{mutex_};
    answers.swap(answers_);
  }
  for (const Show& show : answers)
    if (show) show();
}

void LedgerWatch::run() {
  std::unique_lock lock{mutex_};
  for (;;) {
    asked_.wait(lock, [this] { return stop_ || !questions_.empty(); });
    if (stop_) return;
    Question question = std::move(questions_.front());
    questions_.pop_front();
    lock.unlock();
    Show show = answer(question);
    lock.lock();
    answers_.push_back(std::move(show));
  }
}

LedgerReads::Show LedgerWatch::answer(Question& question) {
  const auto failure = [&](std::string why) -> Show {
    file_.reset();
    return [failed = std::move(question.failed), why = std::move(why)] {
      if (failed) failed(why);
    };
  };
  if (!file_) {
    auto opened = reader_.open();
    if (!opened) return failure(opened.error().text());
    file_ = std::move(*opened);
  }
  try {
    LedgerQueries queries{*file_};
    return question.read(queries);
  } catch (const SQLite::Exception& error) {
    return failure(error.what());
  }
}

}  // namespace tutti
