#include "accounts/frmMain.h"

#include "accounts/distribution.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {

frmMain::frmMain(MGeneral& general, Desk& desk, Books& books, CLoginOptions& options,
                 CClientAPIManagers& sessions, FileDialog& dialog)
    : labelinfo1(
          "Note:- No guarantee to deliver your order to the server with the requested prices as this depends "
          "on your internet speed."),
      labelinfo2("         - Trade will be made at  market prices not at the displayed prices."),
      MMCWave(general.wave),
      CommonDialog1(dialog),
      general_(general),
      desk_(desk),
      books_(books),
      options_(options),
      sessions_(sessions),
      lists_(general.files, general.paths) {
  txteditLo.set_visible(false);
  m_oTimer.on_tick = [this] { m_oTimer_Tick(); };
}

tl::expected<void, FileError> frmMain::load() {
  lvwClients.set_column_widths(ClientRows::widths);
  if (auto read = options_.InitializeFromFile(); !read) return read;
  if (auto read = LoadAccounts(); !read) return read;
  loadmainsymbols();
  return {};
}

void frmMain::select_client(const CClientAPIManager& session) {
  if (Row* row = row_of(session.ClientListItem())) lvwClients.select(*row);
}

Row* frmMain::selected_client() const {
  const auto rows = lvwClients.selected();
  return rows.empty() ? nullptr : rows.front();
}

Row* frmMain::mainClientListItem() const {
  return lvwClients.current() != nullptr ? lvwClients.current() : selected_client();
}

CClientAPIManager* frmMain::session_of(const Row& row) const {
  return sessions_.Item(row.key().number());
}

void frmMain::refreshsummery_Click(Row& row) {
  // By the row, since one account number may stand under two user names.
  if (CClientAPIManager* session = session_of(row)) session->query_summary();
}

void frmMain::empty_notes() {
  for (const auto& session : sessions_.Children())
    session->write_note("");
}

void frmMain::loadmainsymbols() {
  if (CClientAPIManager* session = sessions_.current()) session->LoadMWPprices();
}

void frmMain::edit_notes(Row& row) {
  edited_notes_ = ClientRows::duplicate_key(row);
  txteditLo.set_text(row.text(Column::notes));
  txteditLo.set_visible(true);
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
  Distribution{general_, general_.amount_decimals(), sessions_, *order_window_}.run(amount, type,
                                                                                    symbol.name);
}

bool frmMain::ValidateData(std::string_view user, std::string_view password, std::string_view account) {
  return !user.empty() && !password.empty() && !account.empty();
}

}  // namespace tutti
