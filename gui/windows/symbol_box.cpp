#include "gui/windows/symbol_box.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <QScreen>
#include <QStyle>
#include <algorithm>

#include "gui/kit/screen.h"
#include "gui/kit/svg_icon.h"
#include "gui/kit/theme.h"

namespace tutti {

namespace {

constexpr int most_lines = 10;

}  // namespace

SymbolBox::SymbolBox(ComboBox& symbols, Screen& screen)
    : symbols_(symbols), screen_(screen), list_(new QListWidget{this}) {
  list_->setObjectName(QStringLiteral("found_symbols"));
  // A popup would keep every key and the next click from the rest of the program.
  list_->setWindowFlags(Qt::ToolTip);
  list_->setAttribute(Qt::WA_ShowWithoutActivating);
  list_->setFocusPolicy(Qt::NoFocus);
  list_->setFocusProxy(this);
  list_->setMouseTracking(true);
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  connect(list_, &QListWidget::itemClicked, this,
          [this](const QListWidgetItem* item) { take(item->text()); });

  auto* drop_down = addAction(svg_icon(QStringLiteral("chevron-down")), TrailingPosition);
  connect(drop_down, &QAction::triggered, this, [this] {
    if (open()) return list_->hide();
    setFocus(Qt::MouseFocusReason);
    show_list();
  });
  connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
    symbols_.search(text.toStdString());
    show_list();
    screen_.acted();
  });
  follow();
  screen.on_refresh(*this, [this] { follow(); });
}

void SymbolBox::follow() {
  const QString wanted = QString::fromStdString(symbols_.searched().value_or(symbols_.text()));
  if (text() != wanted) {
    setText(wanted);
    if (hasFocus()) selectAll();
  }
  if (isEnabled() != symbols_.enabled()) setEnabled(symbols_.enabled());
  if (marked_ != symbols_.searched()) mark();
}

void SymbolBox::mark() {
  marked_ = symbols_.searched();
  QString state;
  QString tip;
  if (marked_) {
    const auto found = symbols_.found_by(*marked_);
    state = found.empty() ? QStringLiteral("nothing") : QStringLiteral("not_taken");
    tip = found.empty() ? QStringLiteral("No symbol has \"%1\" in its name.").arg(text())
          : marked_->empty()
              ? QStringLiteral("No symbol: type or pick one.")
              : QStringLiteral("Not taken yet: Enter or Tab takes the symbol that is highlighted.");
    if (!symbols_.text().empty())
      tip += QStringLiteral(" Esc goes back to %1.").arg(QString::fromStdString(symbols_.text()));
  }
  setToolTip(tip);
  setProperty("search", state);
  style()->unpolish(this);
  style()->polish(this);
}

bool SymbolBox::open() const {
  return list_->isVisible();
}

void SymbolBox::fill() {
  list_->clear();
  const auto& searched = symbols_.searched();
  const auto names = searched ? symbols_.found_by(*searched) : symbols_.items();
  for (const std::string& name : names)
    list_->addItem(QString::fromStdString(name));
  if (names.empty()) {
    auto* none = new QListWidgetItem{QStringLiteral("No such symbol"), list_};
    none->setFlags(Qt::NoItemFlags);
    return;
  }
  // An empty text finds all, and means none of them.
  const bool typed = searched && !searched->empty();
  list_->setCurrentRow(typed ? 0 : searched ? -1 : symbols_.index());
}

void SymbolBox::show_list() {
  fill();
  const int line = list_->sizeHintForRow(0);
  const int frame = 2 * list_->frameWidth();
  const int lines = std::min(list_->count(), most_lines);
  list_->resize(width(), lines * line + frame);
  QPoint corner = mapToGlobal(rect().bottomLeft());
  if (corner.y() + list_->height() > screen()->availableGeometry().bottom())
    corner = mapToGlobal(rect().topLeft()) - QPoint{0, list_->height()};
  list_->move(corner);
  list_->show();
  qApp->installEventFilter(this);
  if (list_->currentItem() != nullptr) list_->scrollToItem(list_->currentItem());
}

void SymbolBox::move_by(int rows) {
  if (!open()) return show_list();
  list_->setCurrentRow(std::clamp(list_->currentRow() + rows, 0, list_->count() - 1));
}

bool SymbolBox::key(int key) {
  const bool searching = open() || symbols_.searched();
  switch (key) {
    case Qt::Key_Down:
      move_by(1);
      return true;
    case Qt::Key_Up:
      move_by(-1);
      return true;
    case Qt::Key_PageDown:
      move_by(most_lines);
      return true;
    case Qt::Key_PageUp:
      move_by(-most_lines);
      return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (searching) take_highlighted();
      return searching;
    case Qt::Key_Tab:
      if (searching) take_highlighted();
      list_->hide();
      return false;
    case Qt::Key_Backtab:
      list_->hide();
      return false;
    case Qt::Key_Escape:
      if (searching) go_back();
      return searching;
    default:
      return false;
  }
}

void SymbolBox::take_highlighted() {
  if (!open()) fill();
  const QListWidgetItem* item = list_->currentItem();
  if (item == nullptr || !(item->flags() & Qt::ItemIsEnabled)) return;
  // The one that is chosen already stays so, and nothing is emptied.
  if (item->text().toStdString() == symbols_.text()) return go_back();
  take(item->text());
}

void SymbolBox::take(const QString& name) {
  list_->hide();
  // The symbols may have changed while the list was open.
  if (symbols_.find(name.toStdString()) < 0) return;
  symbols_.choose(name.toStdString());
  follow();
  screen_.acted();
}

void SymbolBox::go_back() {
  list_->hide();
  symbols_.end_search();
  follow();
  screen_.acted();
}

bool SymbolBox::event(QEvent* event) {
  const auto type = event->type();
  if (type == QEvent::KeyPress || type == QEvent::ShortcutOverride) {
    const auto* pressed = static_cast<QKeyEvent*>(event);
    const auto with = pressed->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    if (with == Qt::NoModifier && type == QEvent::KeyPress && key(pressed->key())) return true;
    // What the list is gone through with is no command meanwhile.
    const bool searching = open() || symbols_.searched();
    if (with == Qt::NoModifier && type == QEvent::ShortcutOverride && searching &&
        pressed->key() != Qt::Key_Tab && pressed->key() >= Qt::Key_Escape && pressed->key() < Qt::Key_Shift) {
      event->accept();
      return true;
    }
  }
  return QLineEdit::event(event);
}

bool SymbolBox::eventFilter(QObject* watched, QEvent* event) {
  if (!open()) {
    qApp->removeEventFilter(this);
    return false;
  }
  const auto* widget = qobject_cast<QWidget*>(watched);
  if (widget == nullptr || widget == list_ || list_->isAncestorOf(widget)) return false;
  switch (event->type()) {
    case QEvent::MouseButtonPress:
      if (widget != this && !isAncestorOf(widget)) list_->hide();
      break;
    case QEvent::Show:
      // A requote or a message must not lie behind the list.
      if (widget->isWindow() && widget->windowType() != Qt::ToolTip) list_->hide();
      break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::WindowDeactivate:
      if (widget == window()) list_->hide();
      break;
    default:
      break;
  }
  return false;
}

void SymbolBox::focusOutEvent(QFocusEvent* event) {
  list_->hide();
  QLineEdit::focusOutEvent(event);
}

// Whichever way the keyboard comes here, what is typed replaces what stands here.
void SymbolBox::focusInEvent(QFocusEvent* event) {
  entered_ = event->reason() == Qt::MouseFocusReason;
  QLineEdit::focusInEvent(event);
  if (!entered_ && !symbols_.searched()) selectAll();
}

void SymbolBox::mouseReleaseEvent(QMouseEvent* event) {
  QLineEdit::mouseReleaseEvent(event);
  if (entered_ && !hasSelectedText()) selectAll();
  entered_ = false;
}

}  // namespace tutti
