#include "orders/frmorder.h"

#include <utility>

#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {

frmorder::frmorder(MGeneral& general, frmMain& accounts_list, SymbolCollection& symbols)
    : general_(general), accounts_list_(accounts_list), symbols_(symbols) {
  CBdis.set_items({"Distribute as equal parts", "Distribute by margin Ratio", "Distribute by equity Ratio"});
  ColumnWidthsPer("20,12,67");
  txtLvw.set_visible(false);
  Enableds(true);
  txtammount.on_key = [](std::int16_t key, const std::string& text) {
    return frmMain::askycodekeypress(key, text);
  };
  txtammount.on_edited = [this] { accounts_list_.clearammountfromlistview(); };
  txtEditPrice.on_key = txtammount.on_key;
  txtLvw.on_key = txtammount.on_key;
  cbsymbols.on_choose = [this] { cbsymbols_Click(); };
  CBdis.on_choose = [this] { CBdis_Click(); };
  chkAllClients.on_click = [this] { chkAllClients_Click(); };
  LblCheck.on_click = [this] { LblCheck_Click(); };
  cmddis.on_click = [this] { cmddis_Click(); };
  cmdbuy.on_click = [this] { cmdbuy_Click(); };
  cmdsell.on_click = [this] { cmdsell_Click(); };
  symbols_changed();
}

void frmorder::ColumnWidthsPer(std::string widths) {
  column_widths_ = std::move(widths);
  general_.column_widths(lvwConClients, column_widths_);
}

void frmorder::Add(std::int32_t number, std::string_view share, double result) {
  Row* row = lvwConClients.add(client_key(number));
  if (row == nullptr) return;
  row->set_number(Column::account, number);
  row->set_text(Column::amount, share);
  if (result != 0.0) row->set_number(Column::result_text, result);
}

void frmorder::UpdateResult(std::string_view text, std::int32_t number) {
  if (Row* row = lvwConClients.find(client_key(number))) row->set_text(Column::result_text, text);
}

void frmorder::updateAmount(std::int32_t, double share, RowKey key) {
  if (Row* row = lvwConClients.find(key)) row->set_number(Column::amount, share);
}

void frmorder::Remove(std::int32_t number) {
  if (Row* row = lvwConClients.find(client_key(number))) lvwConClients.remove(*row);
}

void frmorder::addNote(Row& row, std::string_view text) {
  row.set_text(Column::result_text, text);
}

void frmorder::Enableds(bool distribute) {
  cmddis.set_enabled(distribute);
  cmdbuy.set_enabled(!distribute);
  cmdsell.set_enabled(!distribute);
}

void frmorder::set_price_box_off() {
  txtEditPrice.set_enabled(false);
  txtEditPrice.set_text("");
}

void frmorder::cbsymbols_Click() {
  for (Row& row : lvwConClients)
    row.clear_cells(Column::amount, Column::result_text);
  txtammount.set_text("");
  set_price_box_off();
  Enableds(true);
  accounts_list_.clearammountfromlistview();
}

void frmorder::CBdis_Click() {
  accounts_list_.clearammountfromlistview();
}

void frmorder::set_all_accounts_box(bool checked) {
  chkAllClients.set_checked(checked);
  LblCheck.set_text(checked ? "Uncheck all" : "Check all");
}

void frmorder::chkAllClients_Click() {
  set_price_box_off();
  set_all_accounts_box(chkAllClients.checked());
  for (Row& row : lvwConClients) {
    if (!chkAllClients.checked()) {
      row.set_checked(false);
      row.set_text(Column::result_text, "");
      continue;
    }
    const SummaryAnswer answer =
        accounts_list_.sessions().summary_of(static_cast<std::int32_t>(row.key().number()));
    const bool known = answer.result == result::succeeded;
    row.set_checked(known && answer.values.equity > 0.0);
    if (row.checked()) continue;
    addNote(row, known ? "No Balance" : CClientAPIManager::ResultDescription(answer.result));
  }
}

void frmorder::LblCheck_Click() {
  chkAllClients.click();
  LblCheck.set_text(chkAllClients.checked() ? "Uncheck All" : "Check All");
}

void frmorder::cmddis_Click() {
  set_price_box_off();
  if (txtammount.text().empty() || cbsymbols.text().empty()) {
    return general_.message_box("Please fill the required fields");
  }
  const SymbolHandle chosen = symbols_.find(cbsymbols.text());
  symbol_ = chosen == no_symbol ? SymbolCollection::Entry{} : symbols_.entry(chosen);
  for (Row& row : lvwConClients)
    row.set_text(Column::result_text, "");
  accounts_list_.Distribute(general_.locale->StringToNumber(txtammount.text()),
                            static_cast<std::int16_t>(CBdis.index()), symbol_);
}

void frmorder::cmdbuy_Click() {
  send(&CClientAPIManagers::BuyFunction);
}

void frmorder::cmdsell_Click() {
  for (Row& row : accounts_list_.lvwClients)
    row.set_text(frmMain::Column::notes, "");
  send(&CClientAPIManagers::SellFunction);
}

void frmorder::send(void (CClientAPIManagers::*function)()) {
  if (cbsymbols.text().empty()) return general_.message_box("Please fill the required fields");
  set_price_box_off();
  // Before anything is sent, so that each distribution goes out once.
  Enableds(true);
  requests_refused_ = 0;
  (accounts_list_.sessions().*function)();
}

void frmorder::request_ended(std::int32_t, std::int32_t) {
  ++requests_refused_;
}

bool frmorder::open_editor(Row& row, std::size_t column) {
  if (column != Column::amount) return false;
  MoveTxtLvw(row.key(), column);
  txtLvw.set_text(row.text(column));
  txtLvw.set_visible(true);
  general_.select_text(txtLvw);
  return true;
}

bool frmorder::commit_editor() {
  txtLvw.set_visible(false);
  // The account may have disconnected while its share was edited.
  Row* row = lvwConClients.find(editor_row_);
  const std::string_view text = trim(txtLvw.text());
  // The text of a placeholder row is no value.
  if (row == nullptr || text == "enter next entry") return false;
  row->set_text(editor_column_, text);
  return true;
}

double frmorder::GetLvwDeltaX(std::size_t column) const {
  double left = 0.0;
  for (std::size_t i = 0; i < column; ++i)
    left += lvwConClients.columns()[i].width;
  return left;
}

void frmorder::MoveTxtLvw(RowKey row, std::size_t column) {
  editor_row_ = row;
  editor_column_ = column;
}

double frmorder::sum_of_shares() const {
  double sum = 0.0;
  for (const Row& row : lvwConClients) {
    if (row.checked()) sum += row.cell(Column::amount).number();
  }
  return sum;
}

}  // namespace tutti
