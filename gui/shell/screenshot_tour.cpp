#include "gui/shell/screenshot_tour.h"

#include <QApplication>
#include <QDialog>
#include <QPixmap>
#include <utility>

#include "core/numbers.h"
#include "gui/kit/screen.h"
#include "gui/shell/about_window.h"

namespace tutti {

namespace {

constexpr std::chrono::milliseconds poll_interval{50};
constexpr int longest_wait = 600;  // polls
constexpr int settle_polls = 8;
constexpr std::chrono::milliseconds box_time{400};

}  // namespace

ScreenshotTour::ScreenshotTour(FrmMdiNewWindow& window, Main& main, Screen& screen,
                               std::filesystem::path folder, std::function<void(bool)> done)
    : window_(window), main_(main), screen_(screen), folder_(std::move(folder)), done_(std::move(done)) {
  poll_.setInterval(poll_interval);
  QObject::connect(&poll_, &QTimer::timeout, &poll_, [this] { next(); });
  box_timer_.setSingleShot(true);
  QObject::connect(&box_timer_, &QTimer::timeout, &box_timer_, [this] { keep_box(); });
  plan();
}

void ScreenshotTour::next() {
  if (busy_) return;
  if (steps_.empty()) {
    poll_.stop();
    return done_(all_kept_);
  }
  if (!steps_.front().ready() && ++waited_ < longest_wait) return;
  waited_ = 0;
  const Step step = std::move(steps_.front());
  steps_.pop_front();
  busy_ = true;
  step.act();
  screen_.acted();
  busy_ = false;
}

void ScreenshotTour::then(std::function<bool()> ready, std::function<void()> act) {
  steps_.push_back({std::move(ready), std::move(act)});
}

void ScreenshotTour::picture(std::string name, std::function<QWidget*()> what) {
  then([this] { return waited_ >= settle_polls; },
       [this, name = std::move(name), what = std::move(what)] { keep(*what(), name); });
}

void ScreenshotTour::picture_of_box(const char* name, std::function<void()> open) {
  then([] { return true; },
       [this, name = std::string{name}, open = std::move(open)] {
         box_name_ = name;
         box_timer_.start(box_time);
         open();
       });
}

void ScreenshotTour::keep_box() {
  QWidget* box = QApplication::activeModalWidget();
  all_kept_ = all_kept_ && box != nullptr;
  if (box == nullptr) return;
  keep(*box, box_name_);
  if (auto* dialog = qobject_cast<QDialog*>(box)) dialog->reject();
}

void ScreenshotTour::keep(QWidget& widget, const std::string& name) {
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  const QString file = QString::fromStdString((folder_ / (name + ".png")).string());
  all_kept_ = widget.grab().save(file) && all_kept_;
}

void ScreenshotTour::plan() {
  then(
      [this] {
        const AccountBook::Counts now = main_.account_book().counts();
        return now.connecting == 0 && now.connected > 0 &&
               static_cast<int>(main_.market_order().lvwConClients.size()) >= now.connected;
      },
      [] {});
  plan_orders();
  plan_sizes();
  plan_boxes();
}

void ScreenshotTour::plan_orders() {
  frmorder& order = main_.market_order();
  const auto round = [this, &order](const char* symbol, const char* lots, bool buy) {
    then([] { return true; },
         [this, &order, symbol, lots] {
           order.cbsymbols.choose(symbol);
           order.txtammount.type(lots);
           order.CBdis.choose(2);
           if (!order.chkAllClients.checked()) window_.panes().market_order().tick_all();
           window_.panes().market_order().distribute();
         });
    then([] { return true; },
         [this, buy] { buy ? window_.panes().market_order().buy() : window_.panes().market_order().sell(); });
    then([&order] { return order.answers().waiting <= 6; }, [] {});
  };
  round("USDJPY", "80", false);
  round("XAUUSD", "60", true);
  round("EURUSD", "125", true);
  then([this] { return main_.requote().Displayed() && !main_.requote().buttons_dead(); }, [] {});
  picture("requote", [this] { return &window_.requote(); });
  then([] { return true; },
       [this] {
         window_.panes().bring_up(QStringLiteral("trade"));
         window_.panes().accounts().list().selectRow(3);
         window_.panes().trade().list().selectRow(2);
         RowList& positions = main_.trade().lvwOpenPos;
         for (std::size_t row = 0; row < std::min<std::size_t>(positions.size(), 3); ++row)
           positions.tick(positions.row(row), true);
         window_.panes().pending().list().selectRow(0);
         main_.net_trade().refresh();
         screen_.settle();
         window_.panes().net_trade().list().selectRow(0);
       });
  picture("desktop", [this] { return &window_; });
  then([] { return true; },
       [this] {
         window_.panes().bring_up(QStringLiteral("entry_order"));
         fill_entry_order();
       });
  picture("desktop_entry_order", [this] { return &window_; });
  for (const Pane& pane : window_.panes().all()) {
    then([] { return true; }, [this, name = pane.name] { window_.panes().bring_up(name); });
    if (pane.widget == &window_.panes().close_positions()) {
      then([] { return true; }, [this] { mark_positions(); });
      const RowList& grid = main_.close_positions().MSH;
      then([&grid] { return grid.size() < 2 || !grid.row(1).reads(frmClosePos::action, "Close"); }, [] {});
    }
    picture(pane.name.toStdString(), [widget = pane.widget] { return widget; });
  }
  then([] { return true; },
       [this] { window_.panes().journal().show_history(main_.sessions().Children().front()->account()); });
  picture("journal_history", [this] { return &window_.panes().journal(); });
  then([] { return true; }, [this] { window_.panes().journal().show_live(); });
}

// The panes among the others: on a scaled laptop, on a laptop, and on a large screen.
void ScreenshotTour::plan_sizes() {
  for (const QSize size : {QSize{1272, 680}, QSize{1358, 728}, QSize{1900, 1000}}) {
    then([] { return true; },
         [this, size] {
           window_.setWindowState(Qt::WindowNoState);
           window_.resize(size);
         });
    then([this] { return waited_ >= settle_polls; }, [this] { window_.reset_layout(); });
    for (const Pane& pane : window_.panes().all()) {
      then([] { return true; }, [this, name = pane.name] { window_.panes().bring_up(name); });
      const std::string name = "window_" + std::to_string(size.width()) + "_" + pane.name.toStdString();
      picture(name, [this] { return &window_; });
    }
  }
}

void ScreenshotTour::mark_positions() {
  frmClosePos& form = main_.close_positions();
  form.CloseSymbols.choose("EURUSD");
  for (const std::size_t row : {1U, 2U, 4U})
    if (row < form.MSH.size()) form.click(form.MSH.row(row), frmClosePos::status);
}

void ScreenshotTour::fill_entry_order() {
  frmlimitorder& entry = main_.entry_order();
  const auto at = [this](double part) {
    const SymbolCollection& symbols = main_.symbols();
    const SymbolCollection::Entry& symbol = symbols.entry(symbols.find("EURUSD"));
    return fixed_text(symbol.bid * part, symbol.digits);
  };
  entry.cblimitordersymbols.choose("EURUSD");
  entry.cblimiordertype.choose("Buy Limit");
  entry.CBlimitorderdis.choose(2);
  entry.txtlimitorderammount.type("150");
  entry.txtatprice.type(at(0.998));
  entry.txtsl.type(at(0.995));
  entry.txttp.type(at(1.002));
  if (!entry.chkAllClients.checked()) window_.panes().entry_order().tick_all();
  window_.panes().entry_order().distribute();
}

void ScreenshotTour::plan_boxes() {
  picture_of_box("question", [this] { window_.panes().trade().close_selected(); });
  picture_of_box("sure", [this] { main_.sure().GeneralQuestionMsg("Logout All"); });
  picture_of_box("about", [this] { window_.show_about(); });
  then([] { return true; }, [this] { main_.accounts().add_account(); });
  picture("account", [this] { return &window_.account_dialog(); });
  then([] { return true; }, [this] { main_.accounts().account_dialog().cmdcancel.click(); });
  then([] { return true; }, [this] { main_.help().open("market-order"); });
  picture("help", [this] { return &window_.help(); });
  then([] { return true; }, [this] { window_.help().close(); });
  // Connections that break say so one by one.
  then([] { return true; },
       [this] {
         window_.messages().dismiss_all();
         const MessageQueue::HandlerScope handler{main_.messages()};
         for (const auto& session : main_.sessions().Children()) {
           if (session->key() <= 12) session->SessionDisconnected();
         }
       });
  picture("messages", [this] { return &window_.messages().window(); });
}

}  // namespace tutti
