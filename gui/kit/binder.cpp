#include "gui/kit/binder.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalBlocker>
#include <utility>

#include "gui/kit/screen.h"
#include "gui/kit/text_change.h"

namespace tutti {

namespace {

QString shown(const std::string& text) {
  return QString::fromStdString(text);
}

// Captions name no keys of their own.
QString caption(const std::string& text) {
  return shown(text).replace(QLatin1Char{'&'}, QStringLiteral("&&"));
}

// A widget that is bound before it has its place is shown together with its window, not as one of its own.
void show_visible(QWidget& widget, bool visible) {
  if (widget.parentWidget() == nullptr) {
    if (!visible) widget.hide();
  } else if (widget.isHidden() == visible) {
    widget.setVisible(visible);
  }
}

void show_state(QWidget& widget, bool enabled, bool visible) {
  if (widget.isEnabled() != enabled) widget.setEnabled(enabled);
  show_visible(widget, visible);
}

void show_items(QComboBox& widget, const ComboBox& box) {
  const auto& items = box.items();
  bool same = widget.count() == static_cast<int>(items.size());
  for (std::size_t i = 0; same && i < items.size(); ++i)
    same = widget.itemText(static_cast<int>(i)) == shown(items[i]);
  if (same) return;
  widget.clear();
  for (const std::string& item : items)
    widget.addItem(shown(item));
}

void show_choice(QComboBox& widget, const ComboBox& box) {
  const QSignalBlocker silent{widget};
  show_items(widget, box);
  if (widget.currentIndex() != box.index()) widget.setCurrentIndex(box.index());
  if (widget.isEditable() && widget.currentText() != shown(box.text())) {
    const int caret = widget.lineEdit()->cursorPosition();
    widget.setEditText(shown(box.text()));
    widget.lineEdit()->setCursorPosition(caret);
  }
  if (widget.isEnabled() != box.enabled()) widget.setEnabled(box.enabled());
}

// Keeps a wheel that was meant for the window from choosing something else.
class WheelFilter final : public QObject {
 public:
  explicit WheelFilter(QObject* parent) : QObject(parent) {}
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::Wheel) return false;
    event->ignore();
    return true;
  }
};

// Hands a label's clicks on.
class ClickFilter final : public QObject {
 public:
  ClickFilter(QObject* parent, std::function<void()> clicked)
      : QObject(parent), clicked_(std::move(clicked)) {}
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::MouseButtonRelease) return false;
    if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) clicked_();
    return false;
  }

 private:
  std::function<void()> clicked_;
};

}  // namespace

void Binder::show(std::function<void()> step) {
  step();
  screen_.on_refresh(window_, std::move(step));
}

void Binder::bind(QAbstractButton& widget, Button& button) {
  QObject::connect(&widget, &QAbstractButton::clicked, &window_, [this_screen = &screen_, &button] {
    button.click();
    this_screen->acted();
  });
  show([&widget, &button] {
    if (widget.text() != caption(button.caption())) widget.setText(caption(button.caption()));
    show_state(widget, button.enabled(), button.visible());
  });
}

void Binder::bind(QAbstractButton& widget, CheckBox& box) {
  widget.setCheckable(true);
  QObject::connect(&widget, &QAbstractButton::clicked, &window_, [this_screen = &screen_, &box] {
    box.click();
    this_screen->acted();
  });
  show([&widget, &box] {
    if (widget.isChecked() != box.checked()) widget.setChecked(box.checked());
    if (widget.isEnabled() != box.enabled()) widget.setEnabled(box.enabled());
  });
}

void Binder::bind(QLineEdit& widget, TextBox& box) {
  QObject::connect(&widget, &QLineEdit::textEdited, &window_, [this_screen = &screen_, &widget, &box] {
    take_edit(widget, box);
    this_screen->acted();
  });
  show([&widget, &box] {
    show_text(widget, box);
    show_state(widget, box.enabled(), box.visible());
  });
}

void Binder::bind(QComboBox& widget, ComboBox& box) {
  widget.installEventFilter(new WheelFilter{&widget});
  QObject::connect(&widget, &QComboBox::activated, &window_,
                   [this_screen = &screen_, &widget, &box](int index) {
                     // By what the operator read: the form's items may have changed while the list was open.
                     // Of items that read alike it is the one that was picked.
                     const std::string read = widget.itemText(index).toStdString();
                     const auto at = static_cast<std::size_t>(index);
                     const bool stands = at < box.items().size() && box.items()[at] == read;
                     box.choose(stands ? index : box.find(read));
                     this_screen->acted();
                   });
  if (widget.isEditable()) {
    QObject::connect(widget.lineEdit(), &QLineEdit::textEdited, &window_,
                     [this_screen = &screen_, &box](const QString& text) {
                       box.type(text.toStdString());
                       this_screen->acted();
                     });
    widget.setInsertPolicy(QComboBox::NoInsert);
    widget.setCompleter(nullptr);
  }
  show([&widget, &box] { show_choice(widget, box); });
}

void Binder::bind(QAbstractButton& widget, Label& label) {
  QObject::connect(&widget, &QAbstractButton::clicked, &window_, [this_screen = &screen_, &label] {
    label.click();
    this_screen->acted();
  });
  show([&widget, &label] {
    if (widget.text() != caption(label.text())) widget.setText(caption(label.text()));
    show_state(widget, widget.isEnabled(), label.visible());
  });
}

void Binder::bind(QLabel& widget, Label& label) {
  widget.setTextFormat(Qt::PlainText);
  if (label.on_click) {
    widget.installEventFilter(new ClickFilter{&widget, [this_screen = &screen_, &label] {
                                                label.click();
                                                this_screen->acted();
                                              }});
  }
  show([&widget, &label] {
    if (widget.text() != shown(label.text())) widget.setText(shown(label.text()));
    show_visible(widget, label.visible());
  });
}

void Binder::bind(QPushButton& widget, Label& label) {
  widget.setAutoDefault(true);
  QObject::connect(&widget, &QPushButton::clicked, &window_, [this_screen = &screen_, &label] {
    label.click();
    this_screen->acted();
  });
  show([&widget, &label] {
    if (widget.text() != caption(label.text())) widget.setText(caption(label.text()));
    show_visible(widget, label.visible());
  });
}

}  // namespace tutti
