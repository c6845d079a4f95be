#include "gui/kit/heartbeat.h"

#include <algorithm>
#include <utility>

#include "gui/kit/screen.h"

namespace tutti {

namespace {

// Events between two looks at the clock, and the longest a slice may take: a key pressed meanwhile waits no
// longer than that.
constexpr std::size_t batch = 64;
constexpr std::chrono::microseconds slice{200};
constexpr std::chrono::milliseconds frame{16};

}  // namespace

Heartbeat::Heartbeat(Screen& screen, Source source) : screen_(screen), source_(std::move(source)) {
  timer_.setTimerType(Qt::PreciseTimer);
  timer_.setSingleShot(true);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { beat(); });
}

void Heartbeat::start() {
  since_frame_.start();
  timer_.start(0);
}

void Heartbeat::beat() {
  // Runs again from inside a modal box that a step opens, so it is set before anything else happens.
  timer_.start(frame);
  QElapsedTimer since_start;
  since_start.start();
  bool more = true;
  while (more && since_start.nsecsElapsed() < std::chrono::nanoseconds{slice}.count())
    more = source_.advance(batch) == batch;
  screen_.settle();
  if (since_frame_.elapsed() >= frame.count()) {
    since_frame_.start();
    screen_.refresh();
  }
  const auto wait =
      more ? std::chrono::milliseconds{0} : std::clamp(source_.idle(), std::chrono::milliseconds{1}, frame);
  timer_.start(wait);
}

}  // namespace tutti
