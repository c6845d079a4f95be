#include "gui/windows/exposure_bars.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/list/row_list_view.h"
#include "views/frmNetTrade.h"

namespace tutti {

namespace {

constexpr int least_row = 18;
constexpr int best_row = theme::row_height;
constexpr int most_row = 30;
constexpr int widest_name = 100;
constexpr int gap = 8;
constexpr int room_around = 3;  // of the outline, above and below
constexpr int inset = 2;        // of the net bar within the outline
constexpr int mark_width = 3;

QString lots(double value) {
  return QString::fromStdString(number_text(value));
}

}  // namespace

ExposureBars::ExposureBars(RowListView& list, Screen& screen) : list_(list), screen_(screen) {
  setObjectName(QStringLiteral("exposure_bars"));
  setFont(theme::font());
  setMinimumHeight(least_row);
  screen.on_refresh(*this, [this] { follow(); });
}

void ExposureBars::follow() {
  const RowListModel& rows = list_.rows();
  std::vector<Bar> bars;
  for (int place = 0; place < rows.rowCount(); ++place) {
    const Row* row = rows.row_at(place);
    if (row == nullptr) return;
    const auto number = [row](std::size_t column) { return row->cell(column).stored_number(); };
    bars.push_back({row->key(), QString::fromStdString(row->text(frmNetTrade::symbol)),
                    number(frmNetTrade::bought), number(frmNetTrade::sold), number(frmNetTrade::net),
                    row->selected()});
  }
  if (bars == bars_) return;
  const auto picked = [](const std::vector<Bar>& of) {
    return std::find_if(of.begin(), of.end(), [](const Bar& bar) { return bar.selected; });
  };
  const auto old_one = picked(bars_);
  const RowKey before = old_one == bars_.end() ? RowKey{} : old_one->key;
  if (bars.size() != bars_.size()) {
    setMinimumHeight(std::max(1, static_cast<int>(bars.size())) * least_row);
    updateGeometry();
  }
  bars_ = std::move(bars);
  measure();
  const auto now = picked(bars_);
  if (selected && now != bars_.end() && now->key != before)
    selected(row_box(static_cast<std::size_t>(now - bars_.begin())));
  update();
}

void ExposureBars::measure() {
  name_width_ = number_width_ = 0;
  most_long_ = most_short_ = 0.0;
  const QFontMetrics metrics{font()};
  for (const Bar& bar : bars_) {
    name_width_ = std::max(name_width_, std::min(metrics.horizontalAdvance(bar.name) + 2, widest_name));
    number_width_ = std::max(number_width_, metrics.horizontalAdvance(lots(bar.net)));
    most_long_ = std::max(most_long_, bar.bought);
    most_short_ = std::max(most_short_, bar.sold);
  }
}

int ExposureBars::full_height() const {
  return std::max(2, static_cast<int>(bars_.size())) * best_row;
}

int ExposureBars::row_height() const {
  return std::clamp(height() / std::max(1, static_cast<int>(bars_.size())), least_row, most_row);
}

QRect ExposureBars::row_box(std::size_t place) const {
  return {0, static_cast<int>(place) * row_height(), width(), row_height()};
}

QRect ExposureBars::span(std::size_t place, double from, double to, int height) const {
  const double left = theme::cell_padding + name_width_ + gap;
  const double room = std::max(1.0, width() - theme::cell_padding - number_width_ - gap - left);
  const double all = most_long_ + most_short_;
  const auto x = [&](double amount) {
    return static_cast<int>(std::lround(left + (all > 0.0 ? (amount + most_short_) / all : 0.0) * room));
  };
  const QRect row = row_box(place);
  const int start = x(from);
  // Something is never so little that nothing of it is seen.
  const int end = std::max(x(to), from < to ? start + 1 : start);
  return {start, row.center().y() - height / 2, end - start, height};
}

QRect ExposureBars::net_box(std::size_t place) const {
  const double net = bars_[place].net;
  return span(place, std::min(net, 0.0), std::max(net, 0.0), row_height() - 2 * (room_around + inset));
}

void ExposureBars::paintEvent(QPaintEvent*) {
  QPainter painter{this};
  painter.fillRect(rect(), QColor{theme::base});
  for (std::size_t place = 0; place < bars_.size(); ++place) {
    const Bar& bar = bars_[place];
    const QRect row = row_box(place);
    if (bar.selected) {
      painter.fillRect(row, QColor{theme::selection});
      painter.fillRect(0, row.top(), mark_width, row.height(), QColor{theme::accent});
    }
    const QRect gross = span(place, -bar.sold, bar.bought, row.height() - 2 * room_around);
    painter.setPen(QColor{bar.selected ? theme::muted : theme::disabled});
    painter.drawRect(gross.adjusted(0, 0, -1, -1));
    painter.fillRect(net_box(place), QColor{bar.net > 0.0 ? theme::buy : theme::sell});
    painter.fillRect(span(place, 0.0, 0.0, row.height()).adjusted(0, 0, 1, 0), QColor{theme::muted});

    painter.setPen(QColor{theme::text});
    const QString name = QFontMetrics{font()}.elidedText(bar.name, Qt::ElideRight, name_width_);
    painter.drawText(row.adjusted(theme::cell_padding, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, name);
    const QColor side = theme::side_colour(bar.net);
    if (side.isValid()) painter.setPen(side);
    painter.drawText(
        QRect{row.right() - theme::cell_padding - number_width_, row.top(), number_width_, row.height()},
        Qt::AlignVCenter | Qt::AlignRight, lots(bar.net));
  }
}

void ExposureBars::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  screen_.settle();
  const QPoint position = event->position().toPoint();
  for (std::size_t place = 0; place < bars_.size(); ++place) {
    if (!row_box(place).contains(position)) continue;
    if (const Row* row = list_.rows().list().find(bars_[place].key)) list_.go_to(*row);
    return screen_.acted();
  }
}

}  // namespace tutti
