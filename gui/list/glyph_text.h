#pragma once

#include <QColor>
#include <QFont>
#include <QGlyphRun>
#include <QRawFont>
#include <QRectF>
#include <array>
#include <string_view>
#include <vector>

class QPainter;

namespace tutti {

// Draws the short texts of cells. Plain ASCII, which is nearly all of them, goes to the screen as glyphs with
// known widths, without a layout being made; everything else takes the toolkit's way.
class GlyphText {
 public:
  explicit GlyphText(const QFont& font);

  // Width in device-independent pixels.
  double width(std::string_view text) const;
  // In one line, in the middle of the box's height. A text that is too long ends in "..."; a number that is
  // too long is not shown in part, which could be read as another number.
  //
  // Texts may wait until flush(), so that those of one colour are drawn together; the painter must not move
  // or clip in between.
  void draw(QPainter& painter, const QRectF& box, std::string_view text, bool right_aligned,
            const QColor& colour);
  void flush(QPainter& painter);

 private:
  static constexpr std::size_t known = 128;

  // Glyphs of one colour that wait to be drawn.
  struct Waiting {
    QRgb colour = 0;
    std::vector<quint32> indexes;
    std::vector<QPointF> positions;
  };

  static bool plain(std::string_view text);
  double plain_width(std::string_view text) const;
  void draw_laid_out(QPainter& painter, const QRectF& box, std::string_view text, bool right_aligned,
                     const QColor& colour) const;
  Waiting& waiting(QRgb colour);

  QFont font_;
  QRawFont raw_;
  double baseline_ = 0.0;  // below the middle of the line
  std::array<quint32, known> glyphs_{};
  std::array<double, known> advances_{};
  QGlyphRun run_;
  std::vector<Waiting> waiting_;
};

}  // namespace tutti
