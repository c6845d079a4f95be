#include "gui/list/empty_hint.h"

#include <QLabel>
#include <QVBoxLayout>

#include "gui/kit/screen.h"
#include "gui/list/row_list_view.h"

namespace tutti {

QLabel* add_empty_hint(RowListView& list, Screen& screen, const QString& text) {
  auto* hint = new QLabel{text};
  hint->setObjectName(QStringLiteral("empty_hint"));
  hint->setProperty("muted", true);
  hint->setAttribute(Qt::WA_TransparentForMouseEvents);
  auto* column = new QVBoxLayout{list.viewport()};
  column->setSizeConstraint(QLayout::SetNoConstraint);
  column->addWidget(hint, 0, Qt::AlignCenter);
  screen.on_refresh(*hint, [hint, &list] {
    const bool empty = list.rows().rowCount() == 0;
    if (hint->isHidden() == empty) hint->setVisible(empty);
  });
  return hint;
}

}  // namespace tutti
