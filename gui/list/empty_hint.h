#pragma once

class QLabel;
class QString;

namespace tutti {

class RowListView;
class Screen;

// Says in the middle of a list why it is empty, while it is. The text may be set anew at any time.
QLabel* add_empty_hint(RowListView& list, Screen& screen, const QString& text);

}  // namespace tutti
