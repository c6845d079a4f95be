#include "gui/shell/shell_head.h"

#include <QHBoxLayout>
#include <QMenuBar>

#include "gui/kit/screen.h"
#include "gui/shell/panes.h"
#include "gui/shell/shell_label.h"
#include "gui/windows/simulation_badge.h"
#include "shell/Main.h"

namespace tutti {

ShellHead::ShellHead(Main& main, Panes& panes, Screen& screen, QMenuBar& bar) : QWidget(&bar) {
  auto* row = new QHBoxLayout{this};
  row->setContentsMargins(0, 3, 10, 3);
  row->setSpacing(8);
  auto* accounts = new ShellLabel{main.colours(), this};
  auto* ticked = new ShellLabel{main.colours(), this};
  ticked->setObjectName(QStringLiteral("ticked"));
  auto* server = new ShellLabel{main.colours(), this};
  if (main.simulated()) row->addWidget(new SimulationBadge);
  for (QWidget* label : {accounts, ticked, server})
    row->addWidget(label);
  bar.setCornerWidget(this);
  screen.on_refresh(*this, [this, &main, &panes, &bar, accounts, ticked, server] {
    const std::size_t chosen = panes.order_list_in_front().checked_count();
    accounts->show_text(QStringLiteral("Accounts %1").arg(main.accounts().lvwClients.size()), false);
    ticked->show_text(QStringLiteral("Ticked %1").arg(chosen), chosen > 0);
    const CLoginOptions& options = main.login_options();
    server->show_text(QString::fromStdString(options.CurrentServerDesc()), false);
    server->setHidden(options.CurrentServerIP().empty());
    // The menu bar looks at the size of its corner only when it is given one.
    if (sizeHint() == size()) return;
    adjustSize();
    bar.setCornerWidget(this);
    show();
  });
}

}  // namespace tutti
