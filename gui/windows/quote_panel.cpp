#include "gui/windows/quote_panel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <algorithm>
#include <chrono>
#include <utility>

#include "gui/kit/screen.h"
#include "gui/kit/window_parts.h"
#include "gui/windows/price_label.h"
#include "gui/windows/simulation_badge.h"

namespace tutti {

namespace {

constexpr int digit_pixels = 17;

QString age_text(std::chrono::milliseconds age) {
  using namespace std::chrono;
  if (age < seconds{1}) return QStringLiteral("now");
  if (age < minutes{1}) return QStringLiteral("%1 s ago").arg(duration_cast<seconds>(age).count());
  if (age < hours{1}) return QStringLiteral("%1 min ago").arg(duration_cast<minutes>(age).count());
  return QStringLiteral("%1 h ago").arg(duration_cast<hours>(age).count());
}

}  // namespace

QuotePanel::QuotePanel(const SymbolCollection& symbols, Screen& screen,
                       std::function<std::string_view()> chosen)
    : symbols_(symbols), chosen_(std::move(chosen)) {
  since_newest_.start();
  auto* row = new QHBoxLayout{this};
  row->setContentsMargins(0, 2, 0, 2);
  row->setSpacing(20);
  bids_.push_back(add_price(QStringLiteral("Bid"), "quote_bid"));
  asks_.push_back(add_price(QStringLiteral("Ask"), "quote_ask"));
  row->addStretch(1);
  age_ = new QLabel;
  age_->setObjectName(QStringLiteral("quote_age"));
  age_->setTextFormat(Qt::PlainText);
  age_->setProperty("muted", true);
  right_ = new QVBoxLayout;
  right_->addStretch(1);
  right_->addWidget(age_, 0, Qt::AlignRight);
  row->addLayout(right_);
  follow();
  screen.on_refresh(*this, [this] { follow(); });
}

PriceLabel* QuotePanel::add_price(const QString& caption, const char* name) {
  auto* column = new QVBoxLayout;
  column->setSpacing(2);
  auto* label = new QLabel{caption};
  label->setProperty("muted", true);
  column->addWidget(label);
  auto* price = new PriceLabel{true, digit_pixels};
  price->setObjectName(QString::fromLatin1(name));
  column->addWidget(price);
  static_cast<QHBoxLayout*>(layout())->addLayout(column);
  return price;
}

void QuotePanel::show_also(PriceLabel& bid, PriceLabel& ask) {
  bids_.push_back(&bid);
  asks_.push_back(&ask);
  shown_.clear();
  follow();
}

void QuotePanel::show_simulation() {
  right_->insertWidget(0, new SimulationBadge, 0, Qt::AlignRight);
}

std::chrono::milliseconds QuotePanel::age_of(const SymbolCollection::Entry& entry) {
  if (symbols_.stamp() != newest_stamp_) {
    newest_stamp_ = symbols_.stamp();
    for (const SymbolCollection::Entry& each : symbols_.entries()) {
      if (each.quote_time <= newest_) continue;
      newest_ = each.quote_time;
      since_newest_.restart();
    }
  }
  return std::max(newest_ - entry.quote_time, std::chrono::milliseconds{0}) +
         std::chrono::milliseconds{since_newest_.elapsed()};
}

void QuotePanel::clear() {
  for (PriceLabel* each : bids_)
    each->clear();
  for (PriceLabel* each : asks_)
    each->clear();
}

void QuotePanel::follow() {
  const std::string_view name = chosen_();
  if (name != shown_) {
    clear();
    shown_ = name;
  }
  const SymbolHandle handle = symbols_.find(name);
  if (handle == no_symbol) {
    clear();
    return show_steady(*age_, {});
  }
  const SymbolCollection::Entry& entry = symbols_.entry(handle);
  for (PriceLabel* each : bids_)
    each->show_price(entry.bid, entry.digits);
  for (PriceLabel* each : asks_)
    each->show_price(entry.ask, entry.digits);
  const bool quoted = entry.bid > 0.0 || entry.ask > 0.0;
  show_steady(*age_, quoted ? age_text(age_of(entry)) : QString{});
}

}  // namespace tutti
