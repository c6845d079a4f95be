#include "accounts/frmMain.h"

#include <algorithm>
#include <utility>

#include "accounts/account_texts.h"
#include "accounts/distribution.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {

frmMain::frmMain(MGeneral& general, Desk& desk, Books& books, FileDialog& dialog, ClientFactory make_client,
                 Endpoint own_server, std::size_t capacity)
    : labelinfo1(
          "Note:- No guarantee to deliver your order to the server with the requested prices as this depends "
          "on your internet speed."),
      labelinfo2("         - Trade will be made at  market prices not at the displayed prices."),
      MMCWave(general.wave),
      CommonDialog1(dialog),
      general_(general),
      desk_(desk),
      books_(books),
      make_client_(std::move(make_client)),
      own_server_(std::move(own_server)),
      capacity_(capacity),
      lists_(general.files, general.paths) {
  txteditLo.set_visible(false);
  m_oTimer.on_tick = [this] { m_oTimer_Tick(); };
  lvwClients.set_make_cells([this](Row& row) { make_cells(row); });
  books_.accounts.on_shown = [this](const AccountEntry& account) {
    if (Row* row = row_of(account)) row->outdate();
  };
}

tl::expected<void, FileError> frmMain::load() {
  general_.column_widths(lvwClients, "4,9,9,10,10,8,8,8,8,8,8,8,8");
  options_ = std::make_unique<CLoginOptions>(general_, own_server_);
  if (auto read = options_->InitializeFromFile(); !read) return read;
  sessions_ =
      std::make_unique<CClientAPIManagers>(make_client_, general_, desk_, books_, *options_, capacity_);
  account_dialog_ = std::make_unique<frmaccount>(general_, desk_, *options_, *sessions_);
  if (auto read = LoadAccounts(); !read) return read;
  loadmainsymbols();
  return {};
}

Row* frmMain::addToListView(const AccountEntry& account, std::int32_t index) {
  Row* row = lvwClients.add(client_key(index));
  if (row == nullptr) return nullptr;
  auto& data = row->data<RowData>();
  data.account = &account;
  data.duplicate_key = account_key(account.user, account.account);
  if (rows_.size() <= account.handle) rows_.resize(account.handle + std::size_t{1});
  rows_[account.handle] = row;
  row->outdate();
  return row;
}

void frmMain::make_cells(Row& row) const {
  const AccountEntry& account = record_of(row);
  const AccountEntry::Shown& shown = account.shown;
  row.set_number(Column::index, static_cast<double>(row.key().number()), NumberFormat::index);
  row.set_text(Column::user_name, upper(account.user));
  row.set_text(Column::state, state_text(shown.state), shown.ink);
  row.set_number(Column::account, account.account);
  row.set_text(Column::notes, shown.note);
  if (!shown.has_values) return row.clear_cells(Column::balance, Column::free_margin);
  row.set_number(Column::balance, shown.values.balance, NumberFormat::summary);
  row.set_number(Column::floating, shown.values.floating_pl, NumberFormat::summary);
  row.set_number(Column::credit, shown.values.credit, NumberFormat::summary);
  row.set_number(Column::equity, shown.values.equity, NumberFormat::summary);
  row.set_number(Column::used_margin, shown.values.used_margin, NumberFormat::summary);
  row.set_number(Column::margin_level, shown.values.margin_level, NumberFormat::percent);
  row.set_number(Column::free_margin, shown.values.free_margin, NumberFormat::summary);
}

const AccountEntry& frmMain::record_of(const Row& row) const {
  return *row.data_if<RowData>()->account;
}

Row* frmMain::row_of(const AccountEntry& account) const {
  return account.handle < rows_.size() ? rows_[account.handle] : nullptr;
}

void frmMain::add_client(const CClientAPIManager& session) {
  addToListView(session.ClientListItem(), session.key());
}

void frmMain::remove_client(const CClientAPIManager& session) {
  Row* row = row_of(session.ClientListItem());
  if (row == nullptr) return;
  rows_[session.ClientListItem().handle] = nullptr;
  lvwClients.remove(*row);
}

void frmMain::renumber_client(const CClientAPIManager& session) {
  Row* row = row_of(session.ClientListItem());
  if (row == nullptr) return;
  lvwClients.rekey(*row, client_key(session.key()));
  row->outdate();
}

void frmMain::select_client(const CClientAPIManager& session) {
  if (Row* row = row_of(session.ClientListItem())) lvwClients.select(*row);
}

bool frmMain::has_account(std::string_view key) const {
  return std::any_of(lvwClients.begin(), lvwClients.end(), [&](const Row& row) {
    const auto* data = row.data_if<RowData>();
    return data != nullptr && data->duplicate_key == key;
  });
}

Row* frmMain::selected_client() const {
  const auto rows = lvwClients.selected();
  return rows.empty() ? nullptr : rows.front();
}

Row* frmMain::mainClientListItem() const {
  return lvwClients.current() != nullptr ? lvwClients.current() : selected_client();
}

CClientAPIManager* frmMain::session_of(const Row& row) const {
  return sessions_->Item(row.key().number());
}

void frmMain::refreshsummery_Click(Row& row) {
  // By the row, since one account number may stand under two user names.
  if (CClientAPIManager* session = session_of(row)) session->query_summary();
}

void frmMain::empty_notes() {
  for (const auto& session : sessions_->Children())
    session->write_note("");
}

void frmMain::loadmainsymbols() {
  if (CClientAPIManager* session = sessions_->current()) session->LoadMWPprices();
}

void frmMain::m_oTimer_Tick() {
  const TimePoint now = general_.clock.now();
  for (Row& row : lvwClients) {
    auto& data = row.data<RowData>();
    if (data.account->shown.state != AccountState::connecting) {
      data.connecting_since.reset();
      continue;
    }
    if (!data.connecting_since) data.connecting_since = now;
    data.connecting_for = std::chrono::duration_cast<std::chrono::seconds>(now - *data.connecting_since);
  }
  TimePoint newest{};
  for (const auto& symbol : books_.symbols.entries())
    newest = std::max(newest, symbol.quote_time);
  if (newest != TimePoint{}) quote_age_ = std::chrono::duration_cast<std::chrono::seconds>(now - newest);
}

std::optional<std::chrono::seconds> frmMain::connecting_for(const Row& row) const {
  const auto* data = row.data_if<RowData>();
  if (data == nullptr || !data->connecting_since) return std::nullopt;
  return data->connecting_for;
}

frmMain::Connections frmMain::connections() const {
  Connections out;
  for (const AccountEntry* account : books_.accounts.listed()) {
    ++out.all;
    if (account->connected()) ++out.connected;
    if (account->shown.state == AccountState::connecting) ++out.connecting;
  }
  return out;
}

void frmMain::edit_notes(Row& row) {
  edited_notes_ = row.data<RowData>().duplicate_key;
  txteditLo.set_text(row.text(Column::notes));
  txteditLo.set_visible(true);
}

// The row may have gone, or got another number, while its notes were edited.
Row* frmMain::edited_row() {
  for (Row& row : lvwClients) {
    if (row.data<RowData>().duplicate_key == edited_notes_) return &row;
  }
  return nullptr;
}

void frmMain::commit_notes() {
  txteditLo.set_visible(false);
  const Row* row = edited_row();
  CClientAPIManager* session = row == nullptr ? nullptr : session_of(*row);
  if (session != nullptr) session->write_note(trim(txteditLo.text()));
}

std::int16_t frmMain::askycodekeypress(std::int16_t key, std::string_view text) {
  constexpr std::int16_t backspace = 8;
  if (key == backspace || (key >= '0' && key <= '9')) return key;
  if (key == '.' && text.find('.') == std::string_view::npos) return key;
  return 0;
}

std::string frmMain::Result(RequestCode code, std::int32_t account, std::string_view kind,
                            std::string_view description, double price, std::string_view stop_loss,
                            std::string_view take_profit) {
  switch (code) {
    case request::taken:
      general_.log("Request " + std::string{kind} + " " + std::string{description} + " at " +
                       number_text(price) + " ( SL= " + std::string{stop_loss} +
                       " TP= " + std::string{take_profit} + " )",
                   account);
      general_.play_sound("\\sounds\\OrderOk.wav");
      return "Success Result";
    case request::no_privilege:
      return "No Privilege Result";
    case request::invalid_account:
      return "Invalid Account Result";
    case request::cannot_change_price:
      general_.log("Cannot Change Price " + std::string{description}, account);
      return "Cannot Change Price Result";
    case request::timer_expired:
      return "Timer Expired";
    case request::invalid_ticket:
      return "Invalid Ticket";
    case request::invalid_lots:
      return "Invalid Lots";
    case request::invalid_symbol_id:
      return "Invalid SymbolID";
    case request::invalid_order_id:
      return "Invalid Order ID";
    case request::invalid_price:
      return "Invalid Price";
    default:
      return "";
  }
}

void frmMain::Distribute(double amount, std::int16_t type, const SymbolCollection::Entry& symbol) {
  assert(order_window_ != nullptr);
  Distribution{general_, *sessions_, *order_window_}.run(amount, type, symbol.name);
}

bool frmMain::ValidateData(std::string_view user, std::string_view password, std::string_view account) {
  return !user.empty() && !password.empty() && !account.empty();
}

}  // namespace tutti
