#pragma once

#include <QObject>
#include <vector>

class QPushButton;

namespace tutti {

// Of several buttons of a box the one that Enter presses looks like it: the one that had the focus last.
class PrimaryLook final : public QObject {
 public:
  // `first` looks so until one of them has the focus. Owned by the box, as the buttons are.
  PrimaryLook(std::vector<QPushButton*> buttons, QPushButton& first, QObject* box);

  QPushButton& button() const { return *primary_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void show();

  std::vector<QPushButton*> buttons_;
  QPushButton* primary_;
};

}  // namespace tutti
