#include <stdexcept>

#include "core/event_pump.h"
#include "core/event_sources.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {
namespace {

struct Boxes {
  RecordingPrompt prompt;
  MessageQueue queue;
  frmMsgBox box{prompt, queue};
};

TEST(MessageForm, CaptionsButtonsAndAnswers) {
  Boxes b;
  std::vector<int> pressed;
  b.box.ButtonPessed = [&](int button) { pressed.push_back(button); };
  EXPECT_EQ(b.box.GeneralStopMsg("stop"), 1);
  EXPECT_EQ(b.box.GeneralNoteMsg("note"), 1);
  b.prompt.answers = {1, 2, RecordingPrompt::escape};
  EXPECT_EQ(b.box.GeneralQuestionMsg("really?", "2 positions"), 1);
  EXPECT_EQ(b.box.GeneralQuestionMsg("really?"), 2);
  EXPECT_EQ(b.box.GeneralQuestionMsg("really?"), 2);
  EXPECT_EQ(pressed, (std::vector<int>{1, 1, 1, 2, 2}));
  const char* expected[] = {"stop Warning Ok", "note Note Ok", "really? Alert Yes|No2 positions",
                            "really? Alert Yes|No"};
  for (std::size_t i = 0; i < 4; ++i) {
    const auto& box = b.prompt.shown[i];
    EXPECT_EQ(box.text + " " + box.caption + " " + box.buttons + box.details, expected[i]);
  }
  EXPECT_FALSE(b.box.Displayed());
}

TEST(MessageForm, AHandlerNeverWaits) {
  Boxes b;
  {
    const MessageQueue::HandlerScope handler{b.queue};
    EXPECT_EQ(b.box.GeneralStopMsg("first"), 0);
    b.box.GeneralNoteMsg("second");
    EXPECT_EQ(b.box.GeneralQuestionMsg("third"), 2);
  }
  EXPECT_TRUE(b.prompt.shown.empty());
  ASSERT_NE(b.queue.current(), nullptr);
  EXPECT_EQ(b.queue.current()->text + b.queue.current()->caption, "firstWarning");
  EXPECT_EQ(b.queue.behind(), 2u);
  b.queue.dismiss();
  EXPECT_EQ(b.queue.current()->text, "second");
  b.queue.dismiss_all();
  EXPECT_EQ(b.queue.current(), nullptr);
  EXPECT_EQ(b.box.GeneralStopMsg("now it waits"), 1);
}

TEST(QuestionBox, RunsTheFollowUpOfItsType) {
  RecordingPrompt prompt;
  MessageQueue queue;
  CQuestionBox question{prompt, queue};
  std::vector<int> ran;
  for (int type = 1; type <= 4; ++type) {
    question.on_yes[static_cast<std::size_t>(type) - 1] = [&ran, type] { ran.push_back(type); };
  }
  for (int type = -1; type <= 6; ++type)
    question.Show(type, "Close all?");
  EXPECT_EQ(ran, (std::vector<int>{1, 2, 3, 4}));
}

TEST(Sure, LogsOutOrRemovesEveryAccount) {
  TestTerminal terminal{DealerConfig::sample(3)};
  terminal.start_logged_in();
  frmSure& sure = terminal.main->sure();
  terminal.prompt.answers = {2, 1, 2, 2, 1};
  sure.GeneralQuestionMsg("Logout All");
  terminal.run(100ms);
  EXPECT_EQ(terminal.client(500'100).text(2), "Connected");
  sure.GeneralQuestionMsg("Logout All");
  terminal.run(100ms);
  for (const Row& row : terminal.main->accounts().lvwClients)
    EXPECT_EQ(row.text(2), "Disconnected");
  sure.GeneralQuestionMsg("Remove All");
  sure.GeneralQuestionMsg("Something else");
  EXPECT_EQ(sure.mode(), "R");
  EXPECT_EQ(terminal.main->accounts().lvwClients.size(), 3u);
  sure.GeneralQuestionMsg("Remove All");
  EXPECT_TRUE(terminal.main->accounts().lvwClients.empty());
  EXPECT_EQ(terminal.home->read("manage/savelvinfo.buf"), "");
  const std::string logout = " Are you sure to logout all accounts?",
                    remove = " Are you sure to remove all accounts?";
  EXPECT_EQ(terminal.prompt.take_texts(), (Texts{logout, logout, remove, remove, remove}));
}

class ListedEvents final : public EventSource, public Journal {
 public:
  bool deliver_next() override {
    if (next == events.size()) return false;
    events[next++]();
    return true;
  }
  std::int32_t delivered_account() const override { return static_cast<std::int32_t>(next); }
  void log(std::string_view message, std::int32_t account) override {
    journal.push_back(std::to_string(account) + " " + std::string{message});
  }
  std::vector<std::function<void()>> events;
  std::size_t next = 0;
  Texts journal;
};

TEST(Pump, AnErrorEndsItsHandlerAloneAndIsJournaled) {
  ListedEvents source, other;
  MessageQueue queue;
  EventSources sources{{&other, &source}};
  EXPECT_EQ(sources.delivered_account(), -1);
  EventPump pump{sources, source, queue};
  std::string seen;
  source.events = {[&] { seen += queue.in_handler() ? "a" : "?"; },
                   [&] { throw std::runtime_error("broken"); },
                   [&] { seen += pump.deliver() == 0 ? "b" : "?"; }, [&] { seen += "c"; }};
  EXPECT_EQ(pump.deliver(), 0u);
  pump.open();
  EXPECT_EQ(pump.deliver(3), 3u);
  EXPECT_EQ(seen, "ab");
  EXPECT_EQ(pump.deliver(), 1u);
  EXPECT_EQ(seen, "abc");
  ASSERT_EQ(source.journal.size(), 1u);
  EXPECT_TRUE(source.journal[0].starts_with("2 ") && source.journal[0].ends_with("broken"))
      << source.journal[0];

  // The other has its turn between them, and nobody waits for it when it has nothing.
  seen.clear();
  for (ListedEvents* each : {&source, &other})
    each->events.insert(each->events.end(), 3,
                        [&seen, each, &source] { seen += each == &source ? "s" : "o"; });
  EXPECT_EQ(pump.deliver(4), 4u);
  EXPECT_EQ(sources.delivered_account(), source.delivered_account());
  other.events.emplace_back([&] { seen += "o"; });
  EXPECT_EQ(pump.deliver(), 3u);
  EXPECT_EQ(seen, "osososo");
  EXPECT_EQ(sources.delivered_account(), 4);
}

TEST(Sound, TheSwitchIsGoodForOneSound) {
  RecordingSound sound;
  WaveControl wave{sound};
  wave.play("/sounds/Alert.wav");
  wave.arm();
  wave.play("/sounds/Connect.wav");
  wave.play("/sounds/Alert.wav");
  EXPECT_EQ(sound.take(), Texts{"Connect.wav"});
}

}  // namespace
}  // namespace tutti::testing
