#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "books/account_book.h"
#include "core/record_rows.h"
#include "core/row_list.h"

namespace tutti {

// The rows of the accounts list, keyed "C" and the number of a session, and the records that they show: their
// cells are made from these when somebody reads them.
class ClientRows {
 public:
  enum Column : std::size_t {
    index,
    user_name,
    state,
    account,
    notes,
    balance,
    floating,
    credit,
    equity,
    used_margin,
    margin_level,
    free_margin
  };
  static std::vector<std::string> headers();
  static constexpr std::string_view widths = "4,9,9,10,10,8,8,8,8,8,8,8,8";

  // `list` and `book` outlive it.
  ClientRows(RowList& list, AccountBook& book);
  ClientRows(const ClientRows&) = delete;
  ClientRows& operator=(const ClientRows&) = delete;

  // nullptr when the number is taken.
  Row* add(const AccountEntry& account, std::int32_t number);
  void remove(const AccountEntry& account);
  void renumber(const AccountEntry& account, std::int32_t number);
  // The row of an account, by its record or by its duplicate key; nullptr when it has none.
  Row* of(const AccountEntry& account) const { return rows_.of(account.handle); }
  Row* of(std::string_view key) const;
  static const AccountEntry& record(const Row& row) { return *row.data_if<RowData>()->account; }
  static const std::string& duplicate_key(const Row& row) { return row.data_if<RowData>()->duplicate_key; }

 private:
  static constexpr std::uint64_t nothing = ~std::uint64_t{0};
  struct RowData {
    const AccountEntry* account = nullptr;
    std::string duplicate_key;
    std::uint64_t written = nothing;  // the record's, when its standing cells were made
  };

  void make_cells(Row& row);

  RowList& list_;
  RecordRows rows_;  // by handle
};

}  // namespace tutti
