#pragma once

#include <QDialog>

#include "shell/broker_card.h"

namespace tutti {

// About box: the program and whom it is from. What the card does not have takes no room.
class AboutWindow final : public QDialog {
 public:
  explicit AboutWindow(const BrokerCard& card, QWidget* parent = nullptr);
};

}  // namespace tutti
