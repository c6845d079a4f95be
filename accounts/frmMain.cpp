#include "accounts/frmMain.h"

#include <algorithm>
#include <utility>

#include "accounts/distribution.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {

frmMain::frmMain(MGeneral& general, Desk& desk, SymbolCollection& symbols, FileDialog& dialog,
                 ClientFactory make_client, Endpoint own_server, std::size_t capacity)
    : labelinfo1(
          "Note:- No guarantee to deliver your order to the server with the requested prices as this depends "
          "on your internet speed."),
      labelinfo2("         - Trade will be made at  market prices not at the displayed prices."),
      MMCWave(general.wave),
      CommonDialog1(dialog),
      general_(general),
      desk_(desk),
      symbols_(symbols),
      make_client_(std::move(make_client)),
      own_server_(std::move(own_server)),
      capacity_(capacity),
      lists_(general.files, general.paths) {
  txteditLo.set_visible(false);
  m_oTimer.on_tick = [this] { m_oTimer_Tick(); };
}

tl::expected<void, FileError> frmMain::load() {
  general_.column_widths(lvwClients, "4,9,9,10,10,8,8,8,8,8,8,8,8");
  options_ = std::make_unique<CLoginOptions>(general_, own_server_);
  if (auto read = options_->InitializeFromFile(); !read) return read;
  sessions_ =
      std::make_unique<CClientAPIManagers>(make_client_, general_, desk_, symbols_, *options_, capacity_);
  account_dialog_ = std::make_unique<frmaccount>(general_, desk_, *options_, *sessions_);
  if (auto read = LoadAccounts(); !read) return read;
  loadmainsymbols();
  return {};
}

Row* frmMain::addToListView(std::string_view user, std::int32_t account, bool connected,
                            std::string_view notes, std::int32_t index) {
  Row* row = lvwClients.add(client_key(index));
  if (row == nullptr) return nullptr;
  row->set_number(Column::index, index, NumberFormat::index);
  row->set_text(Column::user_name, upper(user));
  row->set_text(Column::state, connected ? "Connected" : "Disconnected");
  row->set_number(Column::account, account);
  row->set_text(Column::notes, notes);
  row->data<RowData>().duplicate_key = account_key(user, account);
  recolour(*row);
  return row;
}

void frmMain::recolour(Row& row) {
  row.set_ink(Column::state, row.reads(Column::state, "Connected") ? Ink::green : Ink::red);
}

Row* frmMain::add_client(const CClientAPIManager& session, bool connected, std::string_view notes) {
  return addToListView(session.user(), session.account(), connected, notes, session.key());
}

void frmMain::renumber_client(Row& row, std::int32_t number) {
  lvwClients.rekey(row, client_key(number));
  row.set_number(Column::index, number, NumberFormat::index);
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
  const auto number = static_cast<std::int32_t>(row.cell(Column::account).stored_number());
  // By the row, since one account number may stand under two user names.
  CClientAPIManager* session = session_of(row);
  if (session == nullptr) return;
  AccountSummary summary;
  session->Summary(number, summary);
  Cell* cells = row.edit_from(0, row.columns());
  cells[Column::balance].set_number(summary.balance, NumberFormat::summary);
  cells[Column::floating].set_number(summary.floating_pl, NumberFormat::summary);
  cells[Column::credit].set_number(summary.credit, NumberFormat::summary);
  cells[Column::equity].set_number(summary.equity, NumberFormat::summary);
  cells[Column::used_margin].set_number(summary.used_margin * -1.0, NumberFormat::summary);
  cells[Column::margin_level].set_number(summary.margin_level * 100.0, NumberFormat::percent);
  cells[Column::free_margin].set_number(summary.free_margin, NumberFormat::summary);
  // Green is the colour of "Connected" alone, so a green cell needs no look at its text.
  Cell& shown_state = cells[Column::state];
  if (shown_state.ink() == Ink::green) return;
  shown_state.set_text("Connected");
  shown_state.set_ink(Ink::green);
}

void frmMain::loadmainsymbols() {
  if (CClientAPIManager* session = sessions_->current()) session->LoadMWPprices();
}

void frmMain::m_oTimer_Tick() {
  const TimePoint now = general_.clock.now();
  for (Row& row : lvwClients) {
    auto& data = row.data<RowData>();
    if (!row.reads(Column::state, "Connecting")) {
      data.connecting_since.reset();
      continue;
    }
    if (!data.connecting_since) data.connecting_since = now;
    data.connecting_for = std::chrono::duration_cast<std::chrono::seconds>(now - *data.connecting_since);
  }
  TimePoint newest{};
  for (const auto& symbol : symbols_.entries())
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
  for (const Row& row : lvwClients) {
    ++out.all;
    if (row.reads(Column::state, "Connected")) ++out.connected;
    if (row.reads(Column::state, "Connecting")) ++out.connecting;
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
  if (Row* row = edited_row()) row->set_text(Column::notes, trim(txteditLo.text()));
}

std::int16_t frmMain::askycodekeypress(std::int16_t key, std::string_view text) {
  constexpr std::int16_t backspace = 8;
  if (key == backspace || (key >= '0' && key <= '9')) return key;
  if (key == '.' && text.find('.') == std::string_view::npos) return key;
  return 0;
}

std::string frmMain::Result(std::int32_t code, std::int32_t account, std::string_view kind,
                            std::string_view description, double price, std::string_view stop_loss,
                            std::string_view take_profit) {
  constexpr std::int32_t invalid_symbol_id = 9;
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
    case invalid_symbol_id:
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
