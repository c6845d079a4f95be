#include "gui/shell/status_strip.h"

#include <QLabel>
#include <QProgressBar>

#include "gui/kit/elided_label.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/kit/window_parts.h"
#include "gui/windows/not_connected_line.h"
#include "shell/Main.h"

namespace tutti {

namespace {

constexpr int least_missing = 200;

QLabel* add_label(QStatusBar& bar, const QString& name) {
  auto* label = new QLabel{&bar};
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  bar.addPermanentWidget(label);
  return label;
}

void show_text(QLabel& label, const QString& text) {
  if (label.text() == text) return;
  label.setText(text);
  label.setVisible(!text.isEmpty());
}

}  // namespace

StatusStrip::StatusStrip(Main& main, Screen& screen) : main_(main) {
  setSizeGripEnabled(false);
  setContentsMargins(8, 0, 8, 0);
  totals_ = new ElidedLabel{this};
  totals_->setObjectName(QStringLiteral("totals"));
  totals_->set_money(true);
  addWidget(totals_, 1);
  missing_ = new NotConnectedLine{main.account_book(), screen};
  addPermanentWidget(missing_);
  stopped_ = add_label(*this, QStringLiteral("stopped"));
  stopped_->setProperty("warn", true);
  warning_ = add_label(*this, QStringLiteral("warning"));
  warning_->setProperty("warn", true);
  waiting_ = add_label(*this, QStringLiteral("waiting"));
  waiting_->setProperty("warn", true);
  unknown_ = add_label(*this, QStringLiteral("unknown_requests"));
  unknown_->setProperty("warn", true);
  unknown_->setToolTip(tr(
      "Requests that nobody knows the outcome of: see the pane Unknown. In conflict are those of which the "
      "server said two things: see Tickets and the journal"));
  connected_control_ = add_label(*this, QStringLiteral("connected_control"));
  progress_ = new QProgressBar{this};
  progress_->setTextVisible(false);
  progress_->setFixedWidth(120);
  addPermanentWidget(progress_);
  dot_ = add_label(*this, QStringLiteral("connection_dot"));
  connected_ = add_label(*this, QStringLiteral("connected"));
  server_time_ = add_label(*this, QStringLiteral("server_time"));
  server_time_->setToolTip(tr("Time of the dealing server, in UTC"));
  screen.on_refresh(*this, [this] { refresh(); });
}

// The totals are whole as long as the other line keeps its beginning.
void StatusStrip::share_room() {
  if (missing_->isHidden()) return;
  const int both = totals_->width() + missing_->width();
  missing_->setMaximumWidth(std::max(least_missing, both - totals_->sizeHint().width()));
}

void StatusStrip::refresh() {
  share_room();
  refresh_connections();
  show_text(*stopped_, main_.stop_form().shows_stopped() ? tr("TRADING IS STOPPED") : QString{});
  const RequestBook& requests = main_.sessions().requests();
  QStringList doubtful;
  if (const int count = requests.unknown_now(); count > 0) doubtful += tr("%1 unknown").arg(count);
  if (const int count = requests.conflicts(); count > 0) doubtful += tr("%1 in conflict").arg(count);
  show_text(*unknown_, doubtful.join(QStringLiteral(", ")));
  const frmMdiNew& form = main_.window();
  if (form.stamp() == shown_) return;
  shown_ = form.stamp();
  totals_->set_text(QString::fromStdString(form.totals_pane()));
  const QString warning = QString::fromStdString(form.warning_pane());
  show_text(*warning_, warning.isEmpty() ? warning : tr("Journal not complete"));
  warning_->setToolTip(warning);
  show_text(*waiting_, QString::fromStdString(form.control(StatusDesk::waiting_control).text));
  show_text(*connected_control_, QString::fromStdString(form.control(StatusDesk::connected_control).text));
  show_steady(*server_time_, QString::fromStdString(form.server_time_pane()));
}

void StatusStrip::refresh_connections() {
  const AccountBook::Counts now = main_.account_book().counts();
  show_text(*connected_, QStringLiteral("%1 / %2 connected").arg(now.connected).arg(now.all));
  const bool all = now.all > 0 && now.connected == now.all;
  const QRgb colour = all                 ? theme::colour(Ink::green).rgb()
                      : now.connected > 0 ? theme::amber
                                          : theme::disabled;
  show_text(*dot_, QStringLiteral("●"));
  const QString sheet = QStringLiteral("color: %1").arg(QColor{colour}.name());
  if (dot_->styleSheet() != sheet) dot_->setStyleSheet(sheet);
  progress_->setVisible(now.connecting > 0);
  progress_->setRange(0, std::max(now.all, 1));
  progress_->setValue(now.connected);
}

}  // namespace tutti
