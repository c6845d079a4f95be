#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/clock.h"
#include "core/row_list.h"

namespace tutti {

// Journal window: the list of what happened, newest first.
class frmJournal {
 public:
  enum Column : std::size_t { time, account, message };

  // One line of the list.
  struct Entry {
    std::string time;
    std::int32_t account = -1;  // no_account where it belongs to none, or all are of one history
    std::string message;
  };

  // So many live entries are kept. A last row says so once there were more.
  static constexpr std::size_t most_live = 10'000;
  static constexpr std::string_view older_text = "Older lines are in the history of each account";

  explicit frmJournal(const Clock& clock);

  RowList lvwJournal{{"Time", "Account", "Message"}};

  // New entry at the top with the time of this moment; writes no file. While a history is shown the entry
  // waits with the other live rows. `extra` is reserved.
  void Add(std::string_view message, std::int32_t account, std::string_view extra = {});
  void addToListView(std::string_view time, std::int32_t account, std::string_view message);

  // What the list shows, oldest first.
  std::vector<Entry> shown_entries() const;

  // Puts the live rows aside, to make room for a history, and back again.
  void set_live_aside();
  void restore_live();
  bool live() const { return live_; }

  // Entries added since start; wraps after 65,535.
  std::uint16_t entries() const { return entries_; }
  const std::string& ColumnWidthsPer() const { return column_widths_; }
  void ColumnWidthsPer(std::string widths);

 private:
  const Clock& clock_;
  std::string column_widths_;
  std::uint16_t entries_ = 0;
  bool live_ = true;
  std::deque<Row::Owner> aside_;
  std::deque<Entry> arrived_meanwhile_;  // oldest first
};

}  // namespace tutti
