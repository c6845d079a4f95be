#include "gui/list/list_count.h"

#include <QLocale>
#include <utility>

#include "gui/kit/screen.h"
#include "gui/kit/theme.h"

namespace tutti {

ListCount::ListCount(const RowList& list, Screen& screen, std::function<QString()> count)
    : list_(list), count_(std::move(count)) {
  set_colour(QColor{theme::muted});
  // The pane is as narrow as the operator makes it; the count gives way first.
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  screen.on_refresh(*this, [this] { refresh(); });
}

ListCount* ListCount::of_ticked(const RowList& list, Screen& screen) {
  return new ListCount{
      list, screen, [&list] { return part(list.checked_count(), list.size()) + QStringLiteral(" ticked"); }};
}

QString ListCount::part(std::size_t count, std::size_t all) {
  const auto number = [](std::size_t value) { return QLocale::c().toString(static_cast<qulonglong>(value)); };
  return QStringLiteral("%1 of %2").arg(number(count), number(all));
}

void ListCount::refresh() {
  if (list_.stamp() == shown_stamp_) return;
  shown_stamp_ = list_.stamp();
  set_text(list_.empty() ? QString{} : count_());
}

}  // namespace tutti
