#include "gui/list/selection_builder.h"

#include <cassert>

namespace tutti {

void SelectionBuilder::add(int place, int left, int right) {
  assert(place > run_.top || (place == run_.top && left > run_.right));
  if (place == run_.top && left == run_.right + 1) {
    run_.right = right;
    return;
  }
  finish_run();
  run_ = {place, place, left, right};
}

void SelectionBuilder::finish_run() {
  if (run_.top < 0) return;
  const auto [at, is_new] = lowest_.emplace(std::pair{run_.left, run_.right}, blocks_.size());
  if (!is_new && blocks_[at->second].bottom + 1 == run_.top) {
    blocks_[at->second].bottom = run_.bottom;
  } else {
    at->second = blocks_.size();
    blocks_.push_back(run_);
  }
  run_ = {};
}

QItemSelection SelectionBuilder::selection() {
  finish_run();
  QItemSelection out;
  for (const Block& block : blocks_)
    out.append(
        QItemSelectionRange{model_.index(block.top, block.left), model_.index(block.bottom, block.right)});
  return out;
}

}  // namespace tutti
