#pragma once

#include <QMainWindow>
#include <filesystem>

#include "gui/shell/panes.h"
#include "gui/shell/saved_layout.h"

namespace tutti {

// Where the main window and its panes stand, as the operator left them or as they stand at first.
class PaneLayout {
 public:
  PaneLayout(QMainWindow& window, Panes& panes, std::filesystem::path file);

  // The arrangement that was saved last, the standard one when there is none that fits.
  void restore();
  void reset();
  tl::expected<void, FileError> save();

 private:
  void restore_panes();
  // What a window may take of its screen within its frame.
  QSize room() const;
  bool has_room(const QSize& size) const;
  void arrange();
  void share_room();

  QMainWindow& window_;
  Panes& panes_;
  SavedLayout layout_;
};

}  // namespace tutti
