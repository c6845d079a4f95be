// What the books keep of positions, against a plain list of the same.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <vector>

#include "books/position_book.h"

namespace tutti::testing {
namespace {

using Record = PositionBook::Record;

// Shows what it is told of, by slot.
struct Watching final : PositionBook::Observer {
  void changed(const Record& record) override { shown[record.slot] = record.amount; }
  void worth_changed(const Record& record) override { worth[record.slot] = record.floating_pl; }
  void removed(const Record& record) override {
    EXPECT_EQ(shown.erase(record.slot), 1U);
    worth.erase(record.slot);
  }
  void account_left(std::int32_t, std::span<const Record> gone) override {
    std::for_each(gone.begin(), gone.end(), [this](const Record& record) { removed(record); });
  }
  std::map<PositionBook::Slot, double> shown, worth;
};

TEST(RecordBooks, FindEverythingInOrderHoweverItComesAndGoes) {
  PositionBook book;
  Watching watching;
  book.observe(watching);
  std::vector<OpenPosition> list;
  std::mt19937 random{5};
  const auto any = [&](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); };
  const auto kept = [](const OpenPosition& p) { return p.ticket % 2 == 0; };
  for (int step = 0; step < 4000; ++step) {
    OpenPosition one{.ticket = any(30), .account = any(4), .symbol = any(9) == 0 ? "B" : "A"};
    one.amount = one.floating_pl = step;
    const auto at = std::find_if(list.begin(), list.end(), [&](const auto& p) {
      return p.ticket == one.ticket && p.account == one.account;
    });
    const auto stamp = book.stamp();
    bool changes = at != list.end();
    if (const int what = any(20); what == 0) {
      book.keep_only(one.account, {0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28});
      changes = std::erase_if(list, [&](const auto& p) { return p.account == one.account && !kept(p); }) > 0;
    } else if (what < 6) {
      book.remove(one.ticket, one.account);
      if (changes) list.erase(at);
    } else if (what < 10) {
      book.write_worth(one);
      if (changes) at->floating_pl = step;
    } else {
      book.write(one, 3);
      if (changes) *at = one;
      if (!changes) list.push_back(one);
      changes = true;
    }
    ASSERT_EQ(book.stamp() > stamp, changes) << step;

    const auto same = [&](const std::vector<const Record*>& records, auto&& meant) {
      std::vector<OpenPosition> wanted;
      std::copy_if(list.begin(), list.end(), std::back_inserter(wanted), meant);
      return std::equal(records.begin(), records.end(), wanted.begin(), wanted.end(),
                        [&](const Record* record, const OpenPosition& p) {
                          const auto worth = watching.worth.find(record->slot);
                          return record == book.find(p.ticket, p.account) && record->symbol == p.symbol &&
                                 record->floating_pl == p.floating_pl && record->stamp >= record->written &&
                                 watching.shown.at(record->slot) == p.amount &&
                                 (record->stamp == record->written || worth->second == p.floating_pl);
                        });
    };
    ASSERT_TRUE(same(book.all(), [](const auto&) { return true; })) << step;
    ASSERT_TRUE(same(book.of_account(one.account), [&](const auto& p) { return p.account == one.account; }));
    ASSERT_TRUE(same(book.of_symbol("B"), [](const auto& p) { return p.symbol == "B"; }));
    ASSERT_EQ(watching.shown.size(), list.size());
  }
  EXPECT_LE(watching.shown.rbegin()->first, 120U) << "slots are used again";
}

}  // namespace
}  // namespace tutti::testing
