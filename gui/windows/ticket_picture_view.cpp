#include "gui/windows/ticket_picture_view.h"

#include <fmt/format.h>

#include <QFontMetricsF>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"

namespace tutti {

namespace {

using std::chrono::milliseconds;

constexpr int font_pixels = 11;
constexpr double line_height = 15.0;
constexpr double side = 8.0;
constexpr double gap = 5.0;           // from a text to its axis
constexpr double inset = 12.0;        // of the outermost marks from the axes
constexpr double price_pitch = 24.0;  // between two texts of an axis, at least
constexpr double time_gap = 24.0;
constexpr double smallest = 3.0;  // half the width of a mark
constexpr double largest = 9.0;
constexpr double largest_of_many = 6.0;
constexpr std::size_t many = 100;
constexpr milliseconds shortest{100};  // that the time axis is long
constexpr double ring = 3.0;

QFont small_font() {
  QFont font = theme::font();
  font.setPixelSize(font_pixels);
  return font;
}

// The least of 1, 2, 5, 10, ... times `unit` that is not below `wanted`.
double nice_step(double wanted, double unit) {
  if (wanted <= unit) return unit;
  const double power = unit * std::pow(10.0, std::floor(std::log10(wanted / unit)));
  for (const double times : {1.0, 2.0, 5.0})
    if (power * times >= wanted * (1.0 - 1e-9)) return power * times;
  return power * 10.0;
}

// The same for times, where minutes, hours and days count.
milliseconds nice_time_step(double wanted) {
  constexpr double second = 1000.0;
  constexpr double long_steps[] = {15.0,   30.0,   60.0,    120.0,   300.0,   600.0,  900.0,
                                   1800.0, 3600.0, 10800.0, 21600.0, 43200.0, 86400.0};
  if (wanted <= 10.0 * second) return milliseconds{std::llround(nice_step(wanted, 1.0))};
  for (const double each : long_steps)
    if (each * second >= wanted) return milliseconds{std::llround(each * second)};
  return milliseconds{std::llround(nice_step(wanted, 86400.0 * second))};
}

std::string time_text(milliseconds after) {
  const std::int64_t all = after.count();
  const std::int64_t seconds = all / 1000;
  if (all < 1000) return fmt::format("{} ms", all);
  if (seconds < 60) return number_text(static_cast<double>(all) / 1000.0) + " s";
  if (seconds < 3600) return fmt::format("{}:{:02} min", seconds / 60, seconds % 60);
  if (seconds < 86400) return fmt::format("{}:{:02} h", seconds / 3600, seconds / 60 % 60);
  return fmt::format("{} d {}:{:02} h", seconds / 86400, seconds / 3600 % 24, seconds / 60 % 60);
}

std::string counted(std::size_t count, const char* one) {
  return fmt::format("{} {}{}", count, one, count == 1 ? "" : "s");
}

QColor colour_of(bool buys) {
  return theme::side_colour(buys ? 1.0 : -1.0);
}

QPolygonF triangle(QPointF at, double size, bool up) {
  const double tip = up ? -size : size;
  return {{{at.x() - size, at.y() - tip}, {at.x() + size, at.y() - tip}, {at.x(), at.y() + tip}}};
}

}  // namespace

TicketPictureView::TicketPictureView(const TicketBoard& board, Screen& screen) : board_(board) {
  setObjectName(QStringLiteral("ticket_picture"));
  setFont(small_font());
  setMouseTracking(true);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  screen.on_refresh(*this, [this] { follow(); });
}

void TicketPictureView::follow() {
  if (picture_ == board_.picture()) return;
  picture_ = board_.picture();
  place_all();
  update();
}

void TicketPictureView::resizeEvent(QResizeEvent*) {
  place_all();
}

void TicketPictureView::place_all() {
  marks_.clear();
  prices_.clear();
  times_.clear();
  plot_ = {};
  if (picture_.points.empty()) return;
  const auto by_price =
      std::minmax_element(picture_.points.begin(), picture_.points.end(),
                          [](const FillPoint& a, const FillPoint& b) { return a.price < b.price; });
  low_ = by_price.first->price;
  high_ = by_price.second->price;
  if (picture_.price_at_click != 0.0) {
    low_ = std::min(low_, picture_.price_at_click);
    high_ = std::max(high_, picture_.price_at_click);
  }
  // Prices that are all the same lie in the middle of some of their steps.
  const double least_span = 4.0 * std::pow(10.0, -picture_.digits);
  if (high_ - low_ < least_span) {
    const double middle = (high_ + low_) / 2.0;
    low_ = middle - least_span / 2.0;
    high_ = middle + least_span / 2.0;
  }
  last_ = shortest;
  double most_lots = 0.0;
  for (const FillPoint& each : picture_.points) {
    last_ = std::max(last_, each.after);
    most_lots = std::max(most_lots, each.lots);
  }
  const QFontMetricsF metrics{font()};
  const auto widest = [&](double price) {
    return metrics.horizontalAdvance(QString::fromStdString(fixed_text(price, picture_.digits)));
  };
  const double left = side + std::max(widest(low_), widest(high_)) + gap;
  const double right =
      width() - side -
      (picture_.price_at_click != 0.0 ? metrics.horizontalAdvance(QStringLiteral("click")) + gap : 0.0);
  plot_ = QRectF{QPointF{left, 2.0 + line_height + gap}, QPointF{right, height() - line_height - gap}};
  place_prices();
  place_times();
  const double full = picture_.points.size() > many ? largest_of_many : largest;
  for (const FillPoint& each : picture_.points) {
    const double part = most_lots > 0.0 ? std::sqrt(std::max(each.lots, 0.0) / most_lots) : 1.0;
    marks_.push_back({{x(each.after), y(each.price)}, std::max(smallest, full * part)});
  }
}

void TicketPictureView::place_prices() {
  const double unit = std::pow(10.0, -picture_.digits);
  const double room = std::max(1.0, plot_.height() - 2.0 * inset);
  const double step = nice_step((high_ - low_) * price_pitch / room, unit);
  for (double n = std::ceil(low_ / step - 1e-6); n * step <= high_ + step * 1e-6; n += 1.0)
    prices_.push_back({y(n * step), QString::fromStdString(fixed_text(n * step, picture_.digits))});
}

void TicketPictureView::place_times() {
  const double pitch = QFontMetricsF{font()}.horizontalAdvance(QStringLiteral("00:00 min")) + time_gap;
  const double room = std::max(1.0, plot_.width() - 2.0 * inset);
  const milliseconds step = nice_time_step(static_cast<double>(last_.count()) * pitch / room);
  for (milliseconds at{0}; at <= last_; at += step)
    times_.push_back({x(at), QString::fromStdString(time_text(at))});
}

double TicketPictureView::y(double price) const {
  const double room = plot_.height() - 2.0 * inset;
  return plot_.bottom() - inset - (price - low_) / (high_ - low_) * room;
}

double TicketPictureView::x(milliseconds after) const {
  const double room = plot_.width() - 2.0 * inset;
  return plot_.left() + inset +
         static_cast<double>(after.count()) / static_cast<double>(last_.count()) * room;
}

std::size_t TicketPictureView::nearest(QPointF place) const {
  std::size_t out = marks_.size();
  if (!plot_.contains(place)) return out;
  double least = 0.0;
  for (std::size_t i = 0; i < marks_.size(); ++i) {
    const QPointF way = marks_[i].at - place;
    const double distance = QPointF::dotProduct(way, way);
    if (out < marks_.size() && distance >= least) continue;
    out = i;
    least = distance;
  }
  return out;
}

QString TicketPictureView::told(std::size_t point) const {
  const FillPoint& fill = picture_.points[point];
  const auto price = [this](double value) { return fixed_text(value, picture_.digits); };
  std::string text = fmt::format("Account {}: {} {} lots at {}", fill.account, fill.buys ? "bought" : "sold",
                                 number_text(fill.lots), price(fill.price));
  if (fill.worse) text += fmt::format(", slippage {}", price(*fill.worse));
  text += ", after " + time_text(fill.after);
  const auto beneath = static_cast<std::size_t>(std::count_if(
      marks_.begin(), marks_.end(), [&](const Mark& each) { return each.at == marks_[point].at; }));
  if (beneath > 1) text += fmt::format(" ({} more at this place)", beneath - 1);
  return QString::fromStdString(text);
}

QString TicketPictureView::told_at(QPointF place) const {
  const std::size_t point = nearest(place);
  return point < marks_.size() ? told(point) : QString{};
}

QString TicketPictureView::head() const {
  if (pointer_)
    if (const QString text = told_at(*pointer_); !text.isEmpty()) return text;
  std::string text =
      fmt::format("{}, {} lots", counted(picture_.points.size(), "fill"), number_text(picture_.lots()));
  if (picture_.price_at_click != 0.0)
    text += ", price at the click " + fixed_text(picture_.price_at_click, picture_.digits);
  return QString::fromStdString(text);
}

void TicketPictureView::point_at(std::optional<QPointF> place) {
  if (pointer_ == place) return;
  pointer_ = place;
  update();
}

void TicketPictureView::mouseMoveEvent(QMouseEvent* event) {
  point_at(event->position());
}

void TicketPictureView::leaveEvent(QEvent*) {
  point_at(std::nullopt);
}

bool TicketPictureView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto& help = static_cast<const QHelpEvent&>(*event);
  QToolTip::showText(help.globalPos(), told_at(help.pos()), this);
  return true;
}

void TicketPictureView::paint_axes(QPainter& painter) const {
  painter.setRenderHint(QPainter::Antialiasing, false);
  for (const Tick& each : prices_) {
    painter.setPen(QPen{QColor{theme::raised}, 1.0});
    painter.drawLine(QPointF{plot_.left(), each.place}, QPointF{plot_.right(), each.place});
    painter.setPen(QColor{theme::muted});
    painter.drawText(QRectF{0.0, each.place - line_height / 2.0, plot_.left() - gap, line_height},
                     Qt::AlignVCenter | Qt::AlignRight, each.text);
  }
  const QFontMetricsF metrics{font()};
  for (const Tick& each : times_) {
    painter.setPen(QPen{QColor{theme::line}, 1.0});
    painter.drawLine(QPointF{each.place, plot_.bottom()}, QPointF{each.place, plot_.bottom() + 3.0});
    painter.setPen(QColor{theme::muted});
    const double wide = metrics.horizontalAdvance(each.text) + 2.0;
    const double from = std::min(each.place - wide / 2.0, width() - wide - 2.0);
    painter.drawText(QRectF{from, plot_.bottom() + gap, wide, line_height}, Qt::AlignCenter, each.text);
  }
  painter.setPen(QPen{QColor{theme::line}, 1.0});
  painter.drawLine(plot_.bottomLeft(), plot_.bottomRight());
  painter.drawLine(plot_.topLeft(), plot_.bottomLeft());
  if (picture_.price_at_click == 0.0) return;
  const double click = y(picture_.price_at_click);
  QPen pen{QColor{theme::accent}, 1.0};
  pen.setDashPattern({5.0, 4.0});
  painter.setPen(pen);
  painter.drawLine(QPointF{plot_.left(), click}, QPointF{plot_.right(), click});
  painter.setPen(QColor{theme::accent});
  painter.drawText(
      QRectF{plot_.right() + gap, click - line_height / 2.0, width() - plot_.right() - gap, line_height},
      Qt::AlignVCenter | Qt::AlignLeft, QStringLiteral("click"));
}

void TicketPictureView::paint_mark(QPainter& painter, std::size_t point) const {
  const bool buys = picture_.points[point].buys;
  QColor colour = colour_of(buys);
  painter.setPen(QPen{colour, 1.0});
  colour.setAlpha(110);
  painter.setBrush(colour);
  painter.drawPolygon(triangle(marks_[point].at, marks_[point].size, buys));
}

void TicketPictureView::paintEvent(QPaintEvent*) {
  QPainter painter{this};
  painter.fillRect(rect(), QColor{theme::base});
  painter.setPen(QColor{theme::muted});
  if (marks_.empty()) {
    painter.drawText(rect(), Qt::AlignCenter,
                     picture_.state == TicketPicture::State::several_symbols
                         ? QStringLiteral("Several symbols have no price in common")
                         : QStringLiteral("Nothing of it is filled"));
    return;
  }
  const std::size_t near = pointer_ ? nearest(*pointer_) : marks_.size();
  const bool any = near < marks_.size();
  painter.setPen(QColor{any ? theme::text : theme::muted});
  const QRectF line{side, 2.0, width() - 2.0 * side, line_height};
  painter.drawText(line, Qt::AlignVCenter | Qt::AlignLeft,
                   QFontMetricsF{font()}.elidedText(head(), Qt::ElideRight, line.width()));
  paint_axes(painter);
  painter.setRenderHint(QPainter::Antialiasing);
  for (std::size_t i = 0; i < marks_.size(); ++i)
    paint_mark(painter, i);
  if (!any) return;
  paint_mark(painter, near);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen{QColor{theme::text}, 1.5});
  painter.drawEllipse(marks_[near].at, marks_[near].size + ring, marks_[near].size + ring);
}

}  // namespace tutti
