#pragma once

#include <QString>
#include <initializer_list>
#include <string>

class QComboBox;
class QLabel;
class QLayout;
class QWidget;

// Small pieces that several windows are put together from.
namespace tutti {

template <class W>
W* named(W* widget, const char* name) {
  widget->setObjectName(QString::fromLatin1(name));
  return widget;
}

// A list to choose from that becomes as narrow as its pane wants it.
QComboBox* make_combo(const char* name);

// A line of plain text that is as high as its words need it, and its text, which may be a warning.
QLabel* make_line(const char* name);
void show_line(QLabel& line, const std::string& text, bool warn);

// Text of a label that changes by itself, such as a time: the windows around it are laid out anew only when
// it needs another size.
void show_steady(QLabel& label, const QString& text);

// A layout of one widget with room around it, as at the foot of a window.
QLayout* make_foot(QWidget* widget);

// Sets a property that the style sheet goes by.
void set_look(QWidget& widget, const char* property, bool on);

// Tab goes through the widgets of these names in this order.
void set_tab_order(const QWidget& window, std::initializer_list<const char*> names);

}  // namespace tutti
