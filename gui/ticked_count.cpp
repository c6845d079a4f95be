#include "gui/ticked_count.h"

#include <QLocale>

#include "gui/screen.h"

namespace tutti {

TickedCount::TickedCount(const RowList& list, Screen& screen) : list_(list) {
  setTextFormat(Qt::PlainText);
  setProperty("muted", true);
  // The pane is as narrow as the operator makes it; the count gives way first.
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  screen.on_refresh(*this, [this] { refresh(); });
}

void TickedCount::refresh() {
  if (list_.stamp() == shown_stamp_) return;
  shown_stamp_ = list_.stamp();
  const auto number = [](std::size_t count) { return QLocale::c().toString(static_cast<qulonglong>(count)); };
  const QString text =
      list_.empty()
          ? QString{}
          : QStringLiteral("%1 of %2 ticked").arg(number(list_.checked_count()), number(list_.size()));
  if (text != this->text()) setText(text);
}

}  // namespace tutti
