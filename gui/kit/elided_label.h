#pragma once

#include <QWidget>

namespace tutti {

// A line of plain text, blanks kept, that is cut with "..." where it does not fit; the tooltip then shows the
// whole.
class ElidedLabel : public QWidget {
 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

  const QString& text() const { return text_; }
  void set_text(const QString& text);
  void set_colour(const QColor& colour);
  // Whether its numbers are money, which has a colour of its own below 0.
  void set_money(bool money);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void cut();

  QString text_;
  QString shown_;
  QColor colour_;
  bool money_ = false;
};

}  // namespace tutti
