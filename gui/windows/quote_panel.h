#pragma once

#include <QElapsedTimer>
#include <QWidget>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "books/symbol_collection.h"

class QLabel;
class QVBoxLayout;

namespace tutti {

class PriceLabel;
class Screen;

// Live bid and ask of one symbol, and how old they are.
class QuotePanel final : public QWidget {
 public:
  // `chosen`: name of the symbol, asked with every refresh.
  QuotePanel(const SymbolCollection& symbols, Screen& screen, std::function<std::string_view()> chosen);

  // Other places that show the same prices; they must live as long as the panel.
  void show_also(PriceLabel& bid, PriceLabel& ask);
  // Says beside the prices that they are made up; called once where they are.
  void show_simulation();

 private:
  PriceLabel* add_price(const QString& caption, const char* name);
  void follow();
  void clear();
  std::chrono::milliseconds age_of(const SymbolCollection::Entry& entry);

  const SymbolCollection& symbols_;
  std::function<std::string_view()> chosen_;
  std::vector<PriceLabel*> bids_;
  std::vector<PriceLabel*> asks_;
  QVBoxLayout* right_;
  QLabel* age_;
  std::string shown_;  // the symbol whose prices are shown
  // Ages go by the server's own times, since its clock is not ours: the newest quote of all symbols, and how
  // long ago it came.
  TimePoint newest_{};
  std::uint64_t newest_stamp_ = 0;
  QElapsedTimer since_newest_;
};

}  // namespace tutti
