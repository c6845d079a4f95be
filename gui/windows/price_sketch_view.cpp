#include "gui/windows/price_sketch_view.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

#include "core/numbers.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"

namespace tutti {

namespace {

using Kind = PriceSketchView::Kind;
using Mark = PriceSketchView::Mark;

constexpr int least_height = 78;
constexpr int font_pixels = 11;
constexpr double pitch = 14.0;   // between the middles of two names
constexpr double margin = 12.0;  // above the highest line and below the lowest
constexpr double lead = 16.0;    // from a name to its line
constexpr double side = 8.0;
constexpr double farthest = 0.05;  // of the market price; what lies beyond is off the scale
constexpr int tint = 22;           // of 255

bool is_typed(Kind kind) {
  return kind == Kind::entry || kind == Kind::stop_loss || kind == Kind::take_profit;
}

bool is_market(Kind kind) {
  return kind == Kind::bid || kind == Kind::ask;
}

QColor line_colour(Kind kind) {
  switch (kind) {
    case Kind::entry:
      return QColor{theme::accent};
    case Kind::stop_loss:
      return theme::colour(Ink::red);
    case Kind::take_profit:
      return theme::colour(Ink::green);
    case Kind::bid:
    case Kind::ask:
      return QColor{theme::text};
    default:
      return QColor{theme::muted};
  }
}

QPen line_pen(Kind kind) {
  QPen pen{line_colour(kind), is_typed(kind) ? 2.0 : 1.0};
  if (!is_typed(kind) && !is_market(kind)) pen.setDashPattern({4.0, 4.0});
  return pen;
}

QFont name_font(Kind kind) {
  QFont font = is_typed(kind) ? theme::bold_font() : theme::font();
  font.setPixelSize(font_pixels);
  return font;
}

QString bound_name(const char* what, std::string_view sign = {}) {
  return QString::fromLatin1(what) + (sign.empty() ? QString{} : QString::fromLatin1(sign.data(), 1));
}

std::vector<Mark> marks_of(const PriceSketch& sketch) {
  std::vector<Mark> out;
  const auto add = [&](Kind kind, const QString& name, std::optional<double> price) {
    if (!price) return;
    out.push_back(
        {kind, *price, name + QLatin1Char{' '} + QString::fromStdString(fixed_text(*price, sketch.digits))});
  };
  add(Kind::ask, QStringLiteral("Ask"), sketch.ask);
  add(Kind::bid, QStringLiteral("Bid"), sketch.bid);
  add(Kind::price_limit, bound_name("Entry ", sketch.price_sign), sketch.price_limit);
  add(Kind::stop_loss_bound, bound_name("SL bound"), sketch.stop_loss_bound);
  add(Kind::take_profit_bound, bound_name("TP bound"), sketch.take_profit_bound);
  add(Kind::entry, QStringLiteral("Entry"), sketch.entry);
  add(Kind::stop_loss, QStringLiteral("SL"), sketch.stop_loss);
  add(Kind::take_profit, QStringLiteral("TP"), sketch.take_profit);
  std::stable_sort(out.begin(), out.end(), [](const Mark& a, const Mark& b) { return a.price > b.price; });
  return out;
}

bool same(const std::vector<Mark>& a, const std::vector<Mark>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Mark& left, const Mark& right) {
    return left.kind == right.kind && left.price == right.price && left.name == right.name;
  });
}

}  // namespace

PriceSketchView::PriceSketchView(std::function<PriceSketch()> sketch, Screen& screen)
    : sketch_(std::move(sketch)) {
  setMinimumHeight(least_height);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  follow();
  screen.on_refresh(*this, [this] { follow(); });
}

void PriceSketchView::follow() {
  const PriceSketch sketch = sketch_();
  std::vector<Mark> marks = marks_of(sketch);
  if (same(marks, marks_) && sketch.price_sign == price_sign_) return;
  marks_ = std::move(marks);
  price_sign_ = sketch.price_sign;
  place_marks();
  update();
}

void PriceSketchView::resizeEvent(QResizeEvent*) {
  place_marks();
}

void PriceSketchView::place_marks() {
  if (marks_.empty()) return;
  auto market =
      std::find_if(marks_.begin(), marks_.end(), [](const Mark& each) { return is_market(each.kind); });
  const double middle = (market == marks_.end() ? marks_.front() : *market).price;
  double high = middle;
  double low = middle;
  for (Mark& each : marks_) {
    const double distance = each.price - middle;
    each.beyond = std::abs(distance) <= farthest * middle ? 0 : distance > 0.0 ? 1 : -1;
    if (each.beyond != 0) continue;
    high = std::max(high, each.price);
    low = std::min(low, each.price);
  }
  // Lines off the scale keep the edge for themselves.
  const double top = margin + (marks_.front().beyond > 0 ? margin : 0.0);
  const double bottom = height() - margin - (marks_.back().beyond < 0 ? margin : 0.0);
  for (Mark& each : marks_) {
    if (each.beyond != 0) {
      each.line = each.beyond > 0 ? margin : height() - margin;
    } else {
      each.line =
          high > low ? top + (high - each.price) / (high - low) * (bottom - top) : (top + bottom) / 2.0;
    }
  }
  place_labels(false);
  place_labels(true);
}

// Names of one side: each as near to its line as the one above it lets it, then up again from the lower edge.
void PriceSketchView::place_labels(bool typed) {
  const double edge = pitch / 2.0;
  double next = edge;
  for (Mark& each : marks_) {
    if (is_typed(each.kind) != typed) continue;
    each.label = std::max(each.line, next);
    next = each.label + pitch;
  }
  double last = height() - edge;
  for (auto each = marks_.rbegin(); each != marks_.rend(); ++each) {
    if (is_typed(each->kind) != typed) continue;
    each->label = std::min(each->label, last);
    last = each->label - pitch;
  }
}

int PriceSketchView::names_width(bool typed) const {
  int width = 0;
  for (const Mark& each : marks_) {
    if (is_typed(each.kind) == typed)
      width = std::max(width, QFontMetrics{name_font(each.kind)}.horizontalAdvance(each.name));
  }
  return width;
}

void PriceSketchView::paint_allowed_side(QPainter& painter, const QRectF& middle) const {
  const auto limit = std::find_if(marks_.begin(), marks_.end(),
                                  [](const Mark& each) { return each.kind == Kind::price_limit; });
  if (limit == marks_.end() || limit->beyond != 0) return;
  QRectF allowed = middle;
  if (price_sign_ == "<") {
    allowed.setTop(limit->line);
  } else {
    allowed.setBottom(limit->line);
  }
  QColor colour{theme::accent};
  colour.setAlpha(tint);
  painter.fillRect(allowed, colour);
}

void PriceSketchView::paintEvent(QPaintEvent*) {
  QPainter painter{this};
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen{QColor{theme::line}});
  painter.setBrush(QColor{theme::base});
  painter.drawRoundedRect(QRectF{rect()}.adjusted(0.5, 0.5, -0.5, -0.5), 3.0, 3.0);
  if (marks_.empty()) {
    painter.setPen(QColor{theme::muted});
    painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("No prices yet"));
    return;
  }
  const double left = side + names_width(false);
  const double right = width() - side - names_width(true);
  const QRectF middle{QPointF{left + lead, 1.0}, QPointF{right - lead, height() - 1.0}};
  paint_allowed_side(painter, middle);
  // What was typed lies on top.
  for (const bool typed : {false, true}) {
    for (const Mark& each : marks_) {
      if (is_typed(each.kind) != typed) continue;
      painter.setPen(line_pen(each.kind));
      // On a pixel, so that thin lines stay thin.
      const double line = std::floor(each.line) + (typed ? 0.0 : 0.5);
      painter.drawLine(QPointF{middle.left(), line}, QPointF{middle.right(), line});
      QColor faint = line_colour(each.kind);
      faint.setAlpha(110);
      painter.setPen(QPen{faint});
      const double from = typed ? right - 2.0 : left + 2.0;
      painter.drawLine(QPointF{from, each.label}, QPointF{typed ? middle.right() : middle.left(), line});
      painter.setFont(name_font(each.kind));
      painter.setPen(line_colour(each.kind));
      const QRectF box{typed ? right : side, each.label - pitch / 2.0,
                       typed ? width() - side - right : left - side, pitch};
      painter.drawText(box, Qt::AlignVCenter | (typed ? Qt::AlignLeft : Qt::AlignRight), each.name);
      if (each.beyond == 0) continue;
      const double tip = each.line - 6.0 * each.beyond;
      const double x = middle.center().x();
      painter.setPen(Qt::NoPen);
      painter.setBrush(line_colour(each.kind));
      painter.drawPolygon(QPolygonF{{{x - 4.0, each.line}, {x + 4.0, each.line}, {x, tip}}});
    }
  }
}

}  // namespace tutti
