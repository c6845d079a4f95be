#include "gui/frozen_column.h"

#include <QHeaderView>
#include <QPushButton>

#include "gui/row_list_view.h"
#include "gui/theme.h"

namespace tutti {

// Row headers scroll only with their rows, so they take the column's place.
void freeze_first_column(RowListView& list, const std::string& widest) {
  list.setColumnHidden(0, true);
  list.follow_percentages();
  const int width = list.delegate().text_width(widest);
  QHeaderView& rows = *list.verticalHeader();
  rows.setFixedWidth(width);
  rows.setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
  rows.setSectionsClickable(true);
  rows.setHighlightSections(true);
  rows.setStyleSheet(
      QStringLiteral(
          "QHeaderView::section { color: %1; background: %2; border-bottom: none; font-weight: 400; }"
          "QHeaderView::section:checked { background: %3; }")
          .arg(QColor{theme::text}.name(), QColor{theme::panel}.name(), QColor{theme::selected_cell}.name()));
  rows.show();

  // In the corner, where the header of the column would be.
  auto* header = new QPushButton{QString::fromStdString(list.rows().list().columns().front().header), &list};
  header->setObjectName(QStringLiteral("frozen_header"));
  header->setFocusPolicy(Qt::NoFocus);
  header->setFixedSize(width, list.horizontalHeader()->height());
  header->setStyleSheet(
      QStringLiteral("QPushButton { color: %1; background: %2; border: none; border-right: 1px solid %3;"
                     " border-bottom: 1px solid %3; border-radius: 0; padding: 0 7px; text-align: right; }"
                     "QPushButton:hover { color: %4; }")
          .arg(QColor{theme::muted}.name(), QColor{theme::panel}.name(), QColor{theme::dark_line}.name(),
               QColor{theme::text}.name()));
  QObject::connect(header, &QPushButton::clicked, &list,
                   [&list] { Q_EMIT list.horizontalHeader()->sectionClicked(0); });
}

}  // namespace tutti
