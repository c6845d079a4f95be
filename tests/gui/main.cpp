#include <gtest/gtest.h>

#include <QApplication>
#include <clocale>

#include "gui/kit/theme.h"
#include "tests/gui/hang_guard.h"

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application{argc, argv};
  std::setlocale(LC_NUMERIC, "C");
  QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  tutti::theme::apply(application);
  ::testing::InitGoogleTest(&argc, argv);
  ::testing::UnitTest::GetInstance()->listeners().Append(new tutti::testing::HangGuard);
  return RUN_ALL_TESTS();
}
