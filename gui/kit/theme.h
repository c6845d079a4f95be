#pragma once

#include <QColor>
#include <QFont>
#include <QString>

#include "core/colours.h"

class QApplication;

namespace tutti {

// A buy or a sale, which an arrow and a colour show.
enum class Side { none, buy, sell };

}  // namespace tutti

// The one look of all windows: dark ground, colours, fonts, measures in device-independent pixels.
namespace tutti::theme {

inline constexpr QRgb window = 0xff12161c;
inline constexpr QRgb panel = 0xff1a2028;
inline constexpr QRgb raised = 0xff1d242d;
inline constexpr QRgb base = 0xff0c1015;
inline constexpr QRgb alternate = 0xff11161c;
inline constexpr QRgb line = 0xff323b47;
inline constexpr QRgb dark_line = 0xff0b0e12;
inline constexpr QRgb text = 0xffeef1f5;
inline constexpr QRgb window_text = 0xffe6eaf0;
inline constexpr QRgb muted = 0xff93a0ae;
inline constexpr QRgb disabled = 0xff808b99;
inline constexpr QRgb accent = 0xff4db5d2;
inline constexpr QRgb amber = 0xffe0a04a;
inline constexpr QRgb button = 0xff27303b;
inline constexpr QRgb primary = 0xff1f6f8f;
inline constexpr QRgb selection = 0xff02133a;
inline constexpr QRgb selected_cell = 0xff12344a;
inline constexpr QRgb selection_line = 0xff245570;
inline constexpr QRgb sell = 0xff7c1f24;
inline constexpr QRgb buy = 0xff1d7a3b;
inline constexpr QRgb soft_green = 0xff86cf9b;
inline constexpr QRgb soft_red = 0xffe58b8b;
inline constexpr QRgb loss = 0xffff7b72;  // money below 0

inline constexpr int row_height = 22;
inline constexpr int cell_padding = 8;

// Style, palette, fonts and style sheet, and the compiled-in files; once, before the first window.
void apply(QApplication& application);

// While it lives the application goes without its style sheet: a widget that is made under one is gone
// through again with every parent it gets, which is most of the time that a window of many widgets takes to
// be made. To be gone before the window is shown.
class WithoutSheet {
 public:
  explicit WithoutSheet(QApplication& application);
  ~WithoutSheet();
  WithoutSheet(const WithoutSheet&) = delete;
  WithoutSheet& operator=(const WithoutSheet&) = delete;

 private:
  QApplication& application_;
  QString sheet_;
};

// 12 px; digits have equal width.
const QFont& font();
const QFont& bold_font();

inline QColor colour(Rgb rgb) {
  return {rgb.red, rgb.green, rgb.blue};
}
// Text colour of a meaning.
inline QColor colour(Ink ink) {
  return ink == Ink::plain ? QColor{text} : colour(rgb(ink));
}
// Of a profit, and of a number that is only long or short; not valid at 0.
inline QColor profit_colour(double number) {
  return number == 0.0 ? QColor{} : number > 0.0 ? colour(Ink::green) : QColor{loss};
}
inline QColor side_colour(double number) {
  return number == 0.0 ? QColor{} : QColor{number > 0.0 ? soft_green : soft_red};
}
inline QColor side_colour(Side side) {
  return side_colour(side == Side::buy ? 1.0 : side == Side::sell ? -1.0 : 0.0);
}

}  // namespace tutti::theme
