#include "benchmarks/gui_application.h"

#include <QLoggingCategory>
#include <clocale>

#include "gui/kit/theme.h"

namespace tutti::bench {

std::unique_ptr<QApplication> make_application(const char* platform) {
  constexpr const char* without_screen = "offscreen";
  qputenv("QT_QPA_PLATFORM", qEnvironmentVariableIsSet("DISPLAY") ? platform : without_screen);
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
