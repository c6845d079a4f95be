#include "views/net_matrix.h"

#include <algorithm>
#include <set>
#include <utility>

#include "views/ordered_row.h"
#include "views/total_row.h"

namespace tutti {
namespace {

constexpr int money_decimals = 2;

}  // namespace

NetMatrix::NetMatrix(const CNetPos& book) : book_(book) {
  shown.set_items({"Net lots", "P/L"});
  shown.set_index(0);
  // Everything is written anew.
  shown.on_choose = [this] { seen_ = 0; };
}

// Rows are made for their columns: with a new symbol they are made anew.
void NetMatrix::follow_symbols() {
  if (lvwNetMatrix.columns().size() == first_symbol + book_.symbols().size()) return;
  std::vector<std::string> headers{"Account", "Total"};
  for (const CNetPos::OfSymbol& symbol : book_.symbols())
    headers.push_back(symbol.name);
  lvwNetMatrix.clear();
  lvwNetMatrix.set_headers(std::move(headers));
  seen_ = 0;
}

void NetMatrix::write(Row& row, const NetSum& sum, std::size_t column) const {
  if (sum.positions() == 0) {
    row.set_text(column, "");
  } else if (shows_profit()) {
    row.set_fixed(column, sum.floating_total(), money_decimals);
  } else {
    row.set_number(column, sum.net());
  }
}

void NetMatrix::refresh() {
  follow_symbols();
  if (seen_ == book_.stamp()) return;
  for (const CNetPos::OfAccount& each : book_.accounts()) {
    if (each.stamp <= seen_) continue;
    const RowKey key = client_key(each.number);
    if (each.sum.positions() == 0) {
      if (Row* row = lvwNetMatrix.find(key)) lvwNetMatrix.remove(*row);
      continue;
    }
    Row& row =
        ordered_row(lvwNetMatrix, key, [&](const Row& other) { return other.key().number() < each.number; });
    row.set_number(Column::account, each.number);
    write(row, each.sum, Column::total);
    for (std::size_t place = 0; place < book_.symbols().size(); ++place)
      write(row, book_.of(each, place), first_symbol + place);
  }
  if (!lvwNetMatrix.empty()) {
    Row& row = total_row(lvwNetMatrix);
    const NetSum total = book_.total();
    write(row, total, Column::total);
    for (std::size_t place = 0; place < book_.symbols().size(); ++place)
      write(row, book_.symbols()[place].sum, first_symbol + place);
    if (total.positions() == 0) lvwNetMatrix.remove(row);
  }
  seen_ = book_.stamp();
}

// Gives every symbol's cell that is picked and holds something, with its row, account by account.
template <class Take>
void NetMatrix::each_held(const std::vector<Picked>& cells, Take take) const {
  for (auto cell = cells.begin(); cell != cells.end();) {
    const auto end =
        std::find_if(cell, cells.end(), [&](const Picked& other) { return other.account != cell->account; });
    if (const Row* row = lvwNetMatrix.find(client_key(cell->account))) {
      const auto give = [&](std::size_t column) {
        if (column < row->columns() && !row->cell(column).empty()) take(*row, column);
      };
      if (cell->column < first_symbol) {
        for (std::size_t column = first_symbol; column < row->columns(); ++column)
          give(column);
      } else {
        std::for_each(cell, end, [&](const Picked& each) { give(each.column); });
      }
    }
    cell = end;
  }
}

NetMatrix::Summary NetMatrix::summary(const std::vector<Picked>& cells) const {
  Summary out;
  std::vector<bool> symbols(lvwNetMatrix.columns().size());
  const Row* last = nullptr;
  each_held(cells, [&](const Row& row, std::size_t column) {
    if (std::exchange(last, &row) != &row) ++out.accounts;
    symbols[column] = true;
    out.sum += row.cell(column).stored_number();
  });
  out.symbols = static_cast<std::size_t>(std::count(symbols.begin(), symbols.end(), true));
  return out;
}

void NetMatrix::close_picked(const std::vector<Picked>& cells) const {
  if (!close) return;
  tsl::robin_map<std::int32_t, std::set<std::size_t>> columns_of;
  each_held(cells, [&](const Row& row, std::size_t column) {
    columns_of[static_cast<std::int32_t>(row.key().number())].insert(column);
  });
  std::vector<PositionBlock> blocks;
  for (std::size_t place = 0; place < book_.symbols().size(); ++place) {
    PositionBlock block{book_.symbols()[place].name, {}};
    for (const CNetPos::OfAccount& each : book_.accounts()) {
      const auto picked = columns_of.find(each.number);
      if (picked == columns_of.end() || book_.of(each, place).positions() == 0) continue;
      if (picked->second.contains(first_symbol + place)) block.accounts.push_back(each.number);
    }
    if (!block.accounts.empty()) blocks.push_back(std::move(block));
  }
  if (!blocks.empty()) close(std::move(blocks));
}

}  // namespace tutti
