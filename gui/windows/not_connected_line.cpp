#include "gui/windows/not_connected_line.h"

#include <utility>

#include "accounts/account_texts.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"

namespace tutti {

NotConnectedLine::NotConnectedLine(const AccountBook& accounts, Screen& screen) : accounts_(accounts) {
  setObjectName(QStringLiteral("not_connected"));
  set_colour(QColor{theme::amber});
  setContentsMargins(10, 0, 10, 0);
  hide();
  screen.on_refresh(*this, [this] { follow(); });
}

void NotConnectedLine::follow() {
  if (std::exchange(seen_stamp_, accounts_.stamp()) == accounts_.stamp()) return;
  const QString before = text();
  set_text(QString::fromStdString(not_connected_text(accounts_)));
  // Seldom enough for the line beside it to be laid out anew.
  if (text() != before) updateGeometry();
  if (isHidden() != text().isEmpty()) setVisible(!text().isEmpty());
}

}  // namespace tutti
