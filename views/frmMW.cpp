#include "views/frmMW.h"

#include <chrono>
#include <cmath>
#include <utility>

#include "core/time_texts.h"

namespace tutti {
namespace {

// A price of 0 is none, as of a symbol that was not quoted yet.
void write_price(Cell& cell, double price, int digits) {
  if (price == 0.0) return cell.set_text("");
  cell.set_fixed(price, digits);
}

// The same with what the price did since it was last shown; the first one did nothing.
void write_moving(Cell& cell, double price, int digits) {
  if (!cell.empty() && price != cell.stored_number()) {
    cell.set_ink(price > cell.stored_number() ? Ink::green : Ink::red);
  }
  write_price(cell, price, digits);
}

std::int64_t minute_of(TimePoint time) {
  return std::chrono::floor<std::chrono::minutes>(time.time_since_epoch()).count();
}

}  // namespace

frmMW::frmMW(const SymbolCollection& symbols) : symbols_(symbols) {
  ColumnWidthsPer("18,15,15,10,15,15,12");
  lvwMW.set_column_tip(Column::time, server_time_tip);
  lvwMW.on_activate = [this](Row& row) {
    if (to_market_order) to_market_order(symbol_of(row));
  };
}

void frmMW::ColumnWidthsPer(std::string widths) {
  column_widths_ = std::move(widths);
  lvwMW.set_column_widths(column_widths_);
}

void frmMW::clear() {
  lvwMW.clear();
  shown_.clear();
}

void frmMW::symbol(SymbolHandle handle, const Symbol& symbol, std::string_view time_text) {
  const auto at = static_cast<std::size_t>(handle);
  if (at >= shown_.size()) shown_.resize(at + 1);
  Shown& shown = shown_[at];
  if (shown.row == nullptr) {
    shown.row = lvwMW.add({'S', handle});
    shown.row->set_text(Column::symbol_name, symbol.name);
  }
  write(*shown.row, symbols_.entry(handle));
  shown.row->set_text(Column::time, time_text);
  shown.minute = minute_of(symbol.quote_time);
}

void frmMW::prices(SymbolHandle handle, const Symbol&) {
  const auto at = static_cast<std::size_t>(handle);
  if (at >= shown_.size() || shown_[at].row == nullptr) return;
  Shown& shown = shown_[at];
  const SymbolCollection::Entry& now = symbols_.entry(handle);
  const Row& row = *shown.row;
  if (now.bid != row.cell(Column::bid).stored_number() || now.ask != row.cell(Column::ask).stored_number() ||
      now.high != row.cell(Column::high).stored_number() ||
      now.low != row.cell(Column::low).stored_number()) {
    write(*shown.row, now);
  }
  const std::int64_t minute = minute_of(now.quote_time);
  if (minute == shown.minute) return;
  shown.minute = minute;
  shown.row->set_text(Column::time, short_time_text(now.quote_time));
}

void frmMW::write(Row& row, const SymbolCollection::Entry& now) {
  Cell* cells = row.edit_from(0, row.columns());
  write_moving(cells[Column::bid], now.bid, now.digits);
  write_moving(cells[Column::ask], now.ask, now.digits);
  if (now.bid == 0.0 || now.ask == 0.0) {
    cells[Column::spread].set_text("");
  } else {
    cells[Column::spread].set_fixed(std::round((now.ask - now.bid) * std::pow(10.0, now.digits)), 0);
  }
  write_price(cells[Column::high], now.high, now.digits);
  write_price(cells[Column::low], now.low, now.digits);
}

}  // namespace tutti
