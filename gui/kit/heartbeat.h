#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <chrono>
#include <cstddef>
#include <functional>

namespace tutti {

class Screen;

// The program's pulse on the GUI thread: delivers waiting events in short slices, so that painting and input
// are never kept waiting, and refreshes the screen once a frame. Goes on while a modal box is open.
class Heartbeat {
 public:
  struct Source {
    // Delivers up to `limit` events; answers how many.
    std::function<std::size_t(std::size_t limit)> advance;
    // How long there is nothing to do, as far as is known.
    std::function<std::chrono::milliseconds()> idle;
  };

  Heartbeat(Screen& screen, Source source);

  void start();
  void stop() { timer_.stop(); }

 private:
  void beat();

  Screen& screen_;
  Source source_;
  QTimer timer_;
  QElapsedTimer since_frame_;
};

}  // namespace tutti
