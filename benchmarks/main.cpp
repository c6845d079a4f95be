#include <fmt/format.h>

#include <QApplication>
#include <QLoggingCategory>
#include <algorithm>
#include <clocale>
#include <cstdio>
#include <exception>
#include <memory>
#include <string_view>

#include "benchmarks/figures.h"
#include "gui/kit/theme.h"

namespace tutti::bench {

void figure(std::string_view name, double value) {
  fmt::print("{} {:.2f}\n", name, value);
  std::fflush(stdout);
}

static std::unique_ptr<QApplication> make_application() {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  // The offscreen platform complains of every window that it knows no size hints.
  QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
  static int count = 1;
  static char name[] = "tutti_bench";
  static char* arguments[] = {name, nullptr};
  auto application = std::make_unique<QApplication>(count, arguments);
  std::setlocale(LC_NUMERIC, "C");
  theme::apply(*application);
  return application;
}

}  // namespace tutti::bench

// Runs the groups of figures that are named - events, positions, orders, login, gui, program - or all when
// none is. The last two are on the toolkit's offscreen platform, or on the one that QT_QPA_PLATFORM names.
int main(int argc, char** argv) {
  const auto wanted = [&](std::string_view group) {
    return argc < 2 || std::find(argv + 1, argv + argc, group) != argv + argc;
  };
  try {
    const tutti::bench::BenchMarket market;
    if (wanted("events")) tutti::bench::event_figures(market);
    if (wanted("positions")) tutti::bench::position_figures(market);
    if (wanted("orders")) tutti::bench::order_figures(market);
    if (wanted("login")) tutti::bench::login_figures();
    if (wanted("gui") || wanted("program")) {
      const std::unique_ptr<QApplication> application = tutti::bench::make_application();
      if (wanted("gui")) tutti::bench::gui_figures(market);
      if (wanted("program")) tutti::bench::program_figures();
    }
  } catch (const std::exception& error) {
    fmt::print(stderr, "tutti_bench: {}\n", error.what());
    return 1;
  }
  return 0;
}
