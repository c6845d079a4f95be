#include "gui/list/frozen_column.h"

#include <QAbstractButton>
#include <QPainter>
#include <QStyleOptionHeader>

#include "gui/kit/theme.h"
#include "gui/list/list_header.h"
#include "gui/list/row_list_view.h"

namespace tutti {

namespace {

// Looks like the headers beside it, the arrow of the sorted one included.
class FrozenHeader final : public QAbstractButton {
 public:
  explicit FrozenHeader(RowListView& list) : QAbstractButton(&list), list_(list) {
    setAttribute(Qt::WA_Hover);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QHeaderView& header = *list_.horizontalHeader();
    QStyleOptionHeader option;
    option.initFrom(this);
    option.palette = header.palette();
    option.orientation = Qt::Horizontal;
    option.section = 0;
    option.text = list_.model()->headerData(0, Qt::Horizontal).toString();
    option.textAlignment = Qt::AlignVCenter | Qt::AlignRight;
    QPainter painter{this};
    // The style leaves its clipping behind.
    painter.save();
    header.style()->drawControl(QStyle::CE_Header, &option, &painter, &header);
    painter.restore();
    if (list_.rows().sort_column() == 0 && list_.rows().in_order())
      ListHeader::paint_arrow(painter, rect(), option.text, true, list_.rows().sort_order());
  }

 private:
  const RowListView& list_;
};

}  // namespace

// Row headers scroll only with their rows, so they take the column's place.
void freeze_first_column(RowListView& list, const std::string& widest) {
  list.setColumnHidden(0, true);
  list.columns().follow_percentages();
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
  auto* header = new FrozenHeader{list};
  header->setObjectName(QStringLiteral("frozen_header"));
  header->setFocusPolicy(Qt::NoFocus);
  header->setFixedSize(width, list.horizontalHeader()->height());
  QObject::connect(header, &QAbstractButton::clicked, &list,
                   [&list] { Q_EMIT list.horizontalHeader()->sectionClicked(0); });
  QObject::connect(list.horizontalHeader(), &QHeaderView::sectionClicked, header,
                   qOverload<>(&QWidget::update));
}

}  // namespace tutti
