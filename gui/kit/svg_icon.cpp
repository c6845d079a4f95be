#include "gui/kit/svg_icon.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include "gui/kit/theme.h"

namespace tutti {

namespace {

class SvgIconEngine final : public QIconEngine {
 public:
  SvgIconEngine(QByteArray svg, QRgb tint) : svg_(std::move(svg)), tint_(tint) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    QByteArray svg = svg_;
    const QRgb colour = mode == QIcon::Disabled ? theme::disabled : tint_;
    svg.replace("currentColor", QColor{colour}.name().toLatin1());
    QSvgRenderer renderer{svg};
    painter->setRenderHint(QPainter::Antialiasing);
    renderer.render(painter, rect);
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap out{size};
    out.fill(Qt::transparent);
    QPainter painter{&out};
    paint(&painter, QRect{QPoint{}, size}, mode, state);
    return out;
  }
  QIconEngine* clone() const override { return new SvgIconEngine{svg_, tint_}; }

 private:
  QByteArray svg_;
  QRgb tint_;
};

}  // namespace

QIcon svg_icon(const QString& name) {
  return svg_icon(name, theme::window_text);
}

QIcon svg_icon(const QString& name, QRgb tint) {
  QFile file{QStringLiteral(":/icons/%1.svg").arg(name)};
  const bool found = file.open(QIODevice::ReadOnly);
  Q_ASSERT_X(found, "svg_icon", qPrintable(name));
  return found ? QIcon{new SvgIconEngine{file.readAll(), tint}} : QIcon{};
}

}  // namespace tutti
