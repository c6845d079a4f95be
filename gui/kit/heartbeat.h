#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <chrono>
#include <cstddef>
#include <functional>
#include <vector>

#include "core/clock.h"

namespace tutti {

class Screen;

// The program's pulse on the GUI thread: delivers waiting events in short slices, so that painting and input
// are never kept waiting, and brings the screen up to date once a frame while anything happens. While nothing
// does it sleeps until something is due or the operator does something. Goes on while a modal box is open.
class Heartbeat final : public QObject {
 public:
  struct Source {
    // Delivers up to `limit` events; answers how many.
    std::function<std::size_t(std::size_t limit)> advance;
    // How long there is nothing to do, as far as is known.
    std::function<std::chrono::milliseconds()> idle;
  };

  // The screen and the clock outlive it.
  Heartbeat(Screen& screen, const Clock& clock, Source source);
  ~Heartbeat() override;

  void start();
  void stop();
  // One beat: what waits is delivered and shown as far as it is due. Answers how long the next one has time,
  // if nobody wakes it. The timer's, or that of who turns the clock by hand.
  std::chrono::milliseconds beat();

  // What the operator does wakes it; no list is painted or worked on that has not followed; and while events
  // come, windows are painted with the frames alone.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void run();
  // Has painted now what waits for it.
  void paint();

  Screen& screen_;
  const Clock& clock_;
  Source source_;
  QTimer timer_;
  std::chrono::milliseconds shown_at_{0};  // by the clock's elapsed time
  bool delivered_ = false;                 // since then
  std::vector<QPointer<QObject>> held_;    // windows that are to be painted with the next frame
};

}  // namespace tutti
