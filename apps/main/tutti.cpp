// The terminal on a screen.

#include <QApplication>
#include <QLocale>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>

#include <CLI/CLI.hpp>

#include "apps/command_line.h"
#include "apps/first_start.h"
#include "apps/open_backend.h"
#include "apps/terminal.h"
#include "core/core_dumps.h"
#include "core/frmMsgBox.h"
#include "core/standard_streams.h"
#include "core/stop_signals.h"
#include "gui/kit/desktop_file_dialog.h"
#include "gui/kit/desktop_prompt.h"
#include "gui/kit/desktop_sound.h"
#include "gui/kit/heartbeat.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/shell/frmMdiNew_window.h"
#include "gui/shell/screenshot_tour.h"

namespace {

using namespace tutti;

constexpr std::chrono::milliseconds nothing_due{1000};

struct Arguments {
  TerminalOptions terminal;
  bool demo = false;
  std::filesystem::path screenshots;  // folder; empty: none are taken
  std::vector<int> size;              // of the main window; empty: as it was left
  bool add_account = false;           // begin with the account dialog
};

std::chrono::milliseconds until_due(const Terminal& terminal) {
  const auto due = terminal.next_due();
  return due ? std::max(*due - SystemClock{}.now(), std::chrono::milliseconds{0}) : nothing_due;
}

// Ends the program, with its book saved, when something is thrown while an event is handled.
class Application final : public QApplication {
 public:
  using QApplication::QApplication;

  bool notify(QObject* receiver, QEvent* event) override {
    try {
      return QApplication::notify(receiver, event);
    } catch (const std::exception& error) {
      std::fprintf(stderr, "Tutti ends: %s\n", error.what());
      exit(exit_status::unreadable_data);
      return false;
    }
  }
};

// Answers the exit status once the operator has left.
int run(Terminal& terminal, DesktopPrompt& prompt, DesktopSound& sound, DesktopFileDialog& files,
        Screen& screen, const StopSignals& signals, const Arguments& arguments) {
  std::optional<FrmMdiNewWindow> made;
  {
    const theme::WithoutSheet bare{*qApp};
    made.emplace(terminal.main(), screen, prompt, sound, files);
  }
  FrmMdiNewWindow& window = *made;
  files.set_parent(&window);
  window.restore_layout();
  if (!arguments.size.empty()) {
    window.setWindowState(Qt::WindowNoState);
    window.resize(arguments.size[0], arguments.size[1]);
    window.reset_layout();
  }
  window.show();
  // Start-up has run these before there was a window to bring up.
  for (const int command : {frmMdiNew::show_accounts, frmMdiNew::show_journal})
    terminal.main().window().execute(command);
  if (const auto listens = terminal.listen(&DesktopPrompt::box_stands); !listens)
    terminal.main().general().log("tuttictl can't reach this terminal: " + listens.error().text(), -1);
  Heartbeat heartbeat{screen,
                      terminal.main().general().clock,
                      {[&terminal](std::size_t limit) { return terminal.advance(limit); },
                       [&terminal] { return until_due(terminal); }}};
  heartbeat.start();
  if (arguments.add_account) {
    terminal.main().accounts().add_account();
    screen.acted();
  }

  std::optional<ScreenshotTour> tour;
  if (!arguments.screenshots.empty()) {
    tour.emplace(window, terminal.main(), screen, arguments.screenshots,
                 [](bool all_kept) { QCoreApplication::exit(all_kept ? 0 : exit_status::unreadable_data); });
    tour->start();
  }
  // A signal that came while a question stood in front of the start has ended nothing but the question.
  const int status = signals.caught() == 0 ? QCoreApplication::exec() : 0;
  heartbeat.stop();
  if (signals.caught() != 0) window.save_layout();
  if (const auto saved = terminal.close(); !saved) {
    terminal.main().general().log("Not everything was saved: " + saved.error().text(), -1);
    return exit_status::unreadable_data;
  }
  return status;
}

int open_and_run(const StopSignals& signals, Arguments& arguments) {
  const QTemporaryDir demo_home;
  if (arguments.demo) {
    arguments.terminal.demo = true;
    arguments.terminal.home = demo_home.path().toStdString();
    arguments.terminal.create = true;
  }
  const SystemClock clock;
  Screen screen;
  DesktopPrompt prompt{screen};
  DesktopSound sound{arguments.terminal.home};
  DesktopFileDialog files;
  // Past every question, and out of a box that is open.
  QSocketNotifier stop{signals.descriptor(), QSocketNotifier::Read};
  QObject::connect(&stop, &QSocketNotifier::activated, &stop, [&stop] {
    stop.setEnabled(false);
    QCoreApplication::exit();
  });
  if (const std::string unknown = unknown_home(arguments.terminal); !unknown.empty()) {
    prompt.system_box(unknown, "Tutti can't start");
    return exit_status::usage;
  }
  if (const std::string question = fresh_question(arguments.terminal); !question.empty()) {
    MessageQueue nothing_waits;
    constexpr int yes = 1;
    if (frmMsgBox{prompt, nothing_waits}.GeneralQuestionMsg(question + " Go on?") != yes)
      return exit_status::some_refused;
  }
  arguments.add_account = ask_first(prompt, arguments.terminal) == FirstStart::own_account;
  const auto terminal =
      Terminal::open(arguments.terminal,
                     {prompt, sound, files, clock,
                      [](std::string_view text) {
                        std::fprintf(stderr, "%.*s\n", static_cast<int>(text.size()), text.data());
                      }},
                     [&clock](const TerminalOptions& home) { return open_backend(home, clock); });
  if (!terminal) {
    prompt.system_box(terminal.error().text(), "Tutti can't start");
    return exit_status::unreadable_data;
  }
  return run(**terminal, prompt, sound, files, screen, signals, arguments);
}

}  // namespace

int main(int argc, char** argv) {
  open_standard_streams();
#ifdef NDEBUG
  forbid_core_dumps();
#endif
  // The demonstration has a folder of its own; a --home beside it is a contradiction, the environment's is
  // not.
  const std::vector<std::string_view> words{argv, argv + argc};
  const auto demonstrates = [](std::string_view word) {
    return word == "--demo" || word.starts_with("--screenshot");
  };
  if (std::any_of(words.begin(), words.end(), demonstrates)) ::unsetenv("TUTTI_HOME");
  CLI::App app{"Trades many client accounts at once."};
  Arguments arguments;
  add_terminal_options(app, arguments.terminal, argv[0]);
  app.add_flag("--demo", arguments.demo, "500 sample accounts in a home folder that goes with the program")
      ->excludes("--home");
  // It trades on all accounts there are, which must not be the operator's.
  app.add_option(
         "--screenshot", arguments.screenshots,
         "Work through all windows of the demonstration, keep a picture of each in this folder, and end; "
         "implies --demo")
      ->excludes("--home");
  app.add_option("--size", arguments.size, "Width and height of the main window")->expected(2);
  CLI11_PARSE(app, argc, argv);
  arguments.demo = arguments.demo || !arguments.screenshots.empty();
  // Only a folder that was named may be a slip of the pen.
  if (app.get_option("--home")->count() == 0) arguments.terminal.create = true;

  Application application{argc, argv};
  QApplication::setApplicationName(QStringLiteral("tutti"));
  // The toolkit takes the environment's number format over; the terminal's is its own.
  std::setlocale(LC_NUMERIC, "C");
  QLocale::setDefault(QLocale::c());
  theme::apply(application);

  const StopSignals signals;
  int status = exit_status::unreadable_data;
  try {
    status = open_and_run(signals, arguments);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
  return signals.caught() == 0 ? status : exit_status::signalled + signals.caught();
}
