#include "tests/support/test_terminal.h"

#include <algorithm>
#include <csignal>
#include <stdexcept>

namespace tutti::testing {

Texts sorted(Texts texts) {
  std::sort(texts.begin(), texts.end());
  return texts;
}

std::string row_text(const Row& row) {
  std::string out;
  for (std::size_t column = 0; column < row.columns(); ++column)
    out += (column == 0 ? "" : "|") + row.text(column);
  return out;
}

Texts rows_of(const RowList& list) {
  Texts out;
  for (const Row& row : list)
    out.push_back(row_text(row));
  return out;
}

FullDisk::FullDisk(std::size_t size) {
  ::getrlimit(RLIMIT_FSIZE, &before_);
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit tight{size, before_.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &tight);
}

FullDisk::~FullDisk() {
  ::setrlimit(RLIMIT_FSIZE, &before_);
  std::signal(SIGXFSZ, SIG_DFL);
}

TestTerminal::TestTerminal(DealerConfig config)
    : TestTerminal(std::move(config), std::make_shared<TemporaryFolder>()) {}

TestTerminal::TestTerminal(DealerConfig config, std::shared_ptr<TemporaryFolder> folder)
    : home(std::move(folder)),
      server(std::move(config), clock),
      behind{[this](const LoginData&) { return server.make_client(); },
             {&server},
             server.config().endpoint,
             true} {}

void TestTerminal::save_accounts() {
  std::string lines;
  for (const AccountConfig& account : server.config().accounts) {
    lines += account.user + "," + account.password + "," + std::to_string(account.number) + "\n";
  }
  home->write("manage/savelvinfo.buf", lines);
}

tl::expected<void, FileError> TestTerminal::start() {
  auto started = Main::start(
      home->path(), {clock, prompt, sound, locale, file_dialog, ledger, stop, home->key_file()}, behind);
  if (!started) return tl::unexpected(started.error());
  main = std::move(*started);
  return {};
}

void TestTerminal::run(std::chrono::milliseconds time) {
  constexpr std::chrono::milliseconds step{10};
  for (std::chrono::milliseconds gone{0}; gone < time; gone += step) {
    clock.advance(step);
    server.advance();
    main->deliver_events();
  }
}

void TestTerminal::start_logged_in() {
  save_accounts();
  if (const auto started = start(); !started) throw std::runtime_error(started.error().text());
  run(std::chrono::seconds{2});
}

Row& TestTerminal::client(std::int32_t account) {
  return *main->accounts().row_of(main->sessions().by_account(account)->ClientListItem());
}

void TestTerminal::note(std::int32_t account, std::string_view text) {
  main->sessions().by_account(account)->write_note(text);
}

Row* TestTerminal::order_row(std::int32_t account) {
  return main->market_order().lvwConClients.find(client_key(account));
}

std::string TestTerminal::result(std::int32_t account) {
  const Row* row = order_row(account);
  return row == nullptr ? std::string{"no row"} : row->text(frmorder::result_text);
}

Texts TestTerminal::journal() {
  Texts out;
  const RowList& list = main->journal_window().lvwJournal;
  for (std::size_t i = list.size(); i-- > 0;)
    out.push_back(list.row(i).text(1) + " " + list.row(i).text(2));
  return out;
}

bool TestTerminal::journaled(const std::string& line) {
  const Texts lines = journal();
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

Texts TestTerminal::take_messages() {
  Texts out;
  MessageQueue& queue = main->messages();
  for (; queue.current() != nullptr; queue.dismiss())
    out.push_back(queue.current()->text);
  return out;
}

}  // namespace tutti::testing
