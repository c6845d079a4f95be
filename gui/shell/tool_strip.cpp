#include "gui/shell/tool_strip.h"

#include <QAction>
#include <QLayout>
#include <QLineEdit>
#include <QToolButton>
#include <algorithm>

#include "gui/kit/screen.h"
#include "gui/kit/svg_icon.h"
#include "gui/shell/commands.h"
#include "gui/windows/frmMain_window.h"

namespace tutti {

namespace {

constexpr int find_width = 190;

}  // namespace

ToolStrip::ToolStrip(const Commands& commands, FrmMainWindow& accounts, Screen& screen)
    : QToolBar(QStringLiteral("Tool bar")), accounts_(accounts), screen_(screen), find_(new QLineEdit{this}) {
  setObjectName(QStringLiteral("tool_bar"));
  setToolButtonStyle(Qt::ToolButtonIconOnly);
  setIconSize({16, 16});
  setMovable(false);
  setContextMenuPolicy(Qt::PreventContextMenu);
  for (const char* const name :
       {"connect", "disconnect", "", "distribute", "tick_all", "", "close_selected", "cancel_selected", "",
        "market_order", "entry_order", "journal", "", "stop_all"}) {
    if (*name == '\0') {
      addSeparator();
      continue;
    }
    QAction* action = commands.find(QString::fromLatin1(name));
    addAction(action);
    buttons_.push_back(qobject_cast<QToolButton*>(widgetForAction(action)));
  }
  auto* gap = new QWidget{this};
  gap->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  addWidget(gap);
  make_find_box();
  addAction(commands.find(QStringLiteral("mute")));
}

void ToolStrip::make_find_box() {
  find_->setObjectName(QStringLiteral("find"));
  find_->setPlaceholderText(QStringLiteral("Find account  (Ctrl+F)"));
  find_->addAction(svg_icon(QStringLiteral("find")), QLineEdit::LeadingPosition);
  find_->setClearButtonEnabled(true);
  find_->setFixedWidth(find_width);
  addWidget(find_);
  connect(find_, &QLineEdit::textEdited, this, [this](const QString& text) {
    accounts_.find(text);
    screen_.acted();
  });
  connect(find_, &QLineEdit::returnPressed, this, [this] { accounts_.list().setFocus(); });
  auto* leave = new QAction{find_};
  leave->setShortcut(Qt::Key_Escape);
  leave->setShortcutContext(Qt::WidgetShortcut);
  connect(leave, &QAction::triggered, this, [this] {
    find_->clear();
    accounts_.find({});
    accounts_.list().setFocus();
    screen_.acted();
  });
  find_->addAction(leave);
}

void ToolStrip::find_account() {
  find_->setFocus(Qt::ShortcutFocusReason);
  find_->selectAll();
}

// The toolkit would move what has no room into a menu of its own.
void ToolStrip::showEvent(QShowEvent* event) {
  ensurePolished();
  text_widths_.clear();
  least_ = layout()->contentsMargins().left() + layout()->contentsMargins().right();
  for (const QAction* action : actions()) {
    QWidget* widget = widgetForAction(const_cast<QAction*>(action));
    auto* button = qobject_cast<QToolButton*>(widget);
    const bool with_text = std::find(buttons_.begin(), buttons_.end(), button) != buttons_.end();
    if (with_text) button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    const int narrow = std::max(widget->sizeHint().width(), widget->minimumWidth());
    least_ += narrow + layout()->spacing();
    if (!with_text) continue;
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    text_widths_.push_back(widget->sizeHint().width() - narrow);
  }
  setMinimumWidth(least_);
  share_room();
  QToolBar::showEvent(event);
}

void ToolStrip::resizeEvent(QResizeEvent* event) {
  share_room();
  QToolBar::resizeEvent(event);
}

void ToolStrip::share_room() {
  int room = width() - least_;
  for (std::size_t i = 0; i < text_widths_.size(); ++i) {
    room -= text_widths_[i];
    buttons_[i]->setToolButtonStyle(room >= 0 ? Qt::ToolButtonTextBesideIcon : Qt::ToolButtonIconOnly);
  }
}

}  // namespace tutti
