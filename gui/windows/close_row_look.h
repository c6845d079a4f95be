#pragma once

#include <QColor>
#include <cstddef>
#include <string>
#include <vector>

#include "gui/list/row_delegate.h"
#include "orders/frmClosePos.h"

namespace tutti {

// How the rows of the close positions window look: the side of a position stands out of its text, the state
// of an account and what became of a close have their colours. Prices go over what Action read, so that the
// reason why a position is still there is painted behind them.
class CloseRowLook {
 public:
  explicit CloseRowLook(const frmClosePos& form) : form_(form) {}

  QColor ink(const Row& row, std::size_t column) const;
  std::vector<TextPiece> pieces(const Row& row, std::size_t column) const;
  // The text of the last answer.
  std::string tip(const Row& row, std::size_t column) const;

 private:
  static std::vector<TextPiece> position(const std::string& text);
  std::vector<TextPiece> action(const Row& row) const;

  const frmClosePos& form_;
};

}  // namespace tutti
