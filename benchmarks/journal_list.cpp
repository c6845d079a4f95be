#include "benchmarks/journal_list.h"

#include <QLineEdit>
#include <stdexcept>
#include <string>

#include "benchmarks/interleaved.h"
#include "benchmarks/manual_program.h"
#include "gui/kit/screen.h"
#include "gui/list/row_list_view.h"
#include "gui/windows/frmJournal_window.h"

namespace tutti::bench {
namespace {

constexpr std::int32_t account = 1;

// A terminal's journal on a screen, with a text to find that one line in nine has.
class FilteredJournal {
 public:
  FilteredJournal() {
    window_.show();
    window_.findChild<QLineEdit*>(QStringLiteral("filter_text"))->setText(QStringLiteral("3"));
  }

  void live(int lines) {
    for (int i = 0; i < lines; ++i)
      log();
    show();
  }
  void history(int lines) {
    for (int i = 0; i < lines; ++i) {
      log();
      if (i % 10'000 == 0) main_.journal().flush();
    }
    window_.show_history(account);
    window_.show_all();
    show();
  }

  // Nanoseconds until it is in the list that is on show, if the filter lets it through.
  double one_more() {
    constexpr int lines = 3;
    const double time = time_of([this] {
      for (int i = 0; i < lines; ++i) {
        log();
        show();
      }
    });
    main_.journal().flush();
    if (window_.list().rows().rowCount() == 0) throw std::runtime_error("no line is on show");
    return time / lines;
  }

 private:
  void log() { main_.general().log("line " + std::to_string(next_++ % 9) + " of this account", account); }
  void show() {
    screen_.settle();
    screen_.show_frame();
  }

  ManualProgram program_{1, 1};
  Main& main_ = program_.start();
  Screen screen_;
  FrmJournalWindow window_{main_.journal_window(), main_.journal(), screen_};
  int next_ = 0;
};

}  // namespace

double journal_line_ratio() {
  FilteredJournal live;
  live.live(static_cast<int>(frmJournal::most_live));
  FilteredJournal history;
  history.history(1'000'000);
  return interleaved_ratio([&] { return history.one_more(); }, [&] { return live.one_more(); });
}

}  // namespace tutti::bench
