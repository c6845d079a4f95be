// Everything that is read can be read: contrast by the relative luminance of text and ground.

#include <gtest/gtest.h>

#include <QApplication>
#include <QRegularExpression>
#include <cmath>

#include "gui/kit/svg_icon.h"
#include "gui/kit/theme.h"

namespace tutti::testing {
namespace {

constexpr double least = 4.5;

double luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor& a, const QColor& b) {
  const double one = luminance(a) + 0.05;
  const double other = luminance(b) + 0.05;
  return std::max(one, other) / std::min(one, other);
}

TEST(Theme, EveryTextIsReadOnEveryGroundItStandsOn) {
  const QColor red = theme::colour(Ink::red), green = theme::colour(Ink::green);
  const std::vector<QColor> inks{
      QColor{theme::text},     QColor{theme::muted}, QColor{theme::amber},      QColor{theme::soft_green},
      QColor{theme::soft_red}, QColor{theme::loss},  theme::colour(Ink::white), green};
  for (const QRgb ground : {theme::base, theme::alternate, theme::selection, theme::selected_cell,
                            theme::raised, theme::panel, theme::window}) {
    for (const QColor& ink : inks)
      EXPECT_GE(contrast(ink, QColor{ground}), least) << std::hex << ink.rgb() << " on " << ground;
  }
  // States of accounts and refused orders stand in rows, moving prices beside them, and what is off on bars.
  for (const QRgb ground : {theme::base, theme::alternate, theme::selection, theme::window})
    EXPECT_GE(contrast(red, QColor{ground}), least) << std::hex << ground;
  for (const QRgb ground : {theme::base, theme::panel, theme::raised, theme::window})
    EXPECT_GE(contrast(QColor{theme::disabled}, QColor{ground}), least) << std::hex << ground;
}

TEST(Theme, TheStyleSheetsTextsAreReadToo) {
  const auto value = [](const QString& rules, const char* name) {
    const QRegularExpression one{
        QStringLiteral("(?:^|[; ])%1: (#[0-9a-f]{6})").arg(QString::fromLatin1(name))};
    const auto found = one.match(rules);
    return found.hasMatch() ? QColor{found.captured(1)} : QColor{};
  };
  static const QRegularExpression block{QStringLiteral("([^{}]+)\\{([^}]*)\\}")};
  int texts = 0;
  for (auto each = block.globalMatch(qApp->styleSheet()); each.hasNext();) {
    const auto found = each.next();
    const std::string of = found.captured(1).trimmed().toStdString();
    const QColor own = value(found.captured(2), "background");
    const QColor ink = value(found.captured(2), "color");
    if (ink.isValid()) {
      ++texts;
      const std::vector<QColor> grounds =
          own.isValid() ? std::vector{own}
                        : std::vector{QColor{theme::window}, QColor{theme::panel}, QColor{theme::base}};
      for (const QColor& ground : grounds)
        EXPECT_GE(contrast(ink, ground), least) << of;
    } else if (own.isValid() && (of.starts_with("QPushButton") || of.starts_with("QToolButton"))) {
      const bool white = of.find("role") != std::string::npos || of.find("default") != std::string::npos;
      EXPECT_GE(contrast(white ? QColor{Qt::white} : QColor{theme::window_text}, own), least) << of;
    }
  }
  EXPECT_GT(texts, 20);
}

// By brightness and shape, for whoever sees no difference between red and green.
TEST(Theme, BuyAndSellDifferByMoreThanHue) {
  EXPECT_GT(contrast(QColor{theme::buy}, QColor{theme::sell}), 1.5);
  for (const QRgb ground : {theme::buy, theme::sell})
    EXPECT_GE(contrast(QColor{theme::text}, QColor{ground}), least);
  const auto drawn = [](const char* name) {
    return svg_icon(QString::fromLatin1(name)).pixmap(16, 16).toImage();
  };
  EXPECT_NE(drawn("buy"), drawn("sell"));
}

}  // namespace
}  // namespace tutti::testing
