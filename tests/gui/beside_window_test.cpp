// What is asked of a terminal over its socket while a box stands in its window.

#include <QTimer>

#include "apps/open_backend.h"
#include "gui/kit/desktop_prompt.h"
#include "gui/kit/heartbeat.h"
#include "tests/gui/gui_rig.h"

namespace tutti::testing {
namespace {

TEST(BesideWindow, NothingIsCarriedOutWhileABoxStandsAndAllElseGoesOn) {
  const TemporaryFolder home;
  ManualClock clock;
  Screen screen;
  DesktopPrompt prompt{screen};
  RecordingSound sound;
  FakeFileDialog files;
  TerminalOptions options;
  options.home = home.path();
  options.key_file = home.key_file();
  const auto opened = Terminal::open(options, {prompt, sound, files, clock, {}},
                                     [&clock](const TerminalOptions& of) { return open_backend(of, clock); });
  ASSERT_TRUE(opened);
  Terminal& terminal = **opened;
  ASSERT_TRUE(terminal.listen(&DesktopPrompt::box_stands));
  Heartbeat heartbeat{screen,
                      clock,
                      {[&](std::size_t limit) { return terminal.advance(limit); },
                       [] { return std::chrono::milliseconds{1}; }}};
  const auto answer_to = [&](const std::string& question) {
    const auto socket = LocalSocket::connect(home.path(), TerminalControl::socket_name);
    std::string out = "{\"version\":1,\"do\":" + question + "}\n";
    std::string in;
    EXPECT_EQ(socket->write(out), LocalSocket::Step::done);
    for (int beats = 0; beats < 1'000'000 && !in.ends_with('\n'); ++beats) {
      heartbeat.beat();
      socket->read(in, LineServer::longest_answer);
    }
    return in;
  };
  const std::string settle = R"("settle","request":7,"executed":true,"note":"x")";
  const std::string box_stands = "{\"error\":\"The terminal waits for an answer to a question in its window";
  int asked = 0;
  QTimer beside;
  QObject::connect(&beside, &QTimer::timeout, [&] {
    ++asked;
    beside.stop();
    EXPECT_TRUE(answer_to(settle).starts_with(box_stands));
    EXPECT_TRUE(answer_to(R"("stop","end":true)").starts_with(box_stands));
    EXPECT_TRUE(answer_to("\"flush\"").starts_with("{\"stored\":true}"));
    EXPECT_TRUE(answer_to("\"stop\"").starts_with("{\"figures\":"));
    QApplication::activeModalWidget()->close();
  });
  beside.start(0);
  terminal.main().general().message_box("The operator is to read this");
  EXPECT_EQ(asked, 1);
  EXPECT_TRUE(answer_to(settle).starts_with("{\"error\":\"Request 7 is none whose outcome is unknown"));
}

}  // namespace
}  // namespace tutti::testing
