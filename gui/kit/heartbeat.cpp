#include "gui/kit/heartbeat.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <algorithm>
#include <utility>

#include "gui/kit/screen.h"

namespace tutti {

namespace {

using std::chrono::milliseconds;

// Events between two looks at the clock, and the longest a slice may take: a key pressed meanwhile waits no
// longer than that.
constexpr std::size_t batch = 64;
constexpr std::chrono::microseconds slice{200};
constexpr milliseconds frame{16};
// Between two looks at what changes by time alone, such as how old a quote is.
constexpr milliseconds quiet_frame{250};

enum class Meaning : std::uint8_t { none, paint, hand, sight };

Meaning meaning_of(const QEvent& event) {
  switch (event.type()) {
    case QEvent::UpdateRequest:
    case QEvent::Expose:
      return Meaning::paint;
    // Merely moving the pointer changes nothing that a form shows.
    case QEvent::MouseMove:
      return static_cast<const QMouseEvent&>(event).buttons() == Qt::NoButton ? Meaning::none : Meaning::hand;
    case QEvent::Enter:
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
    case QEvent::HoverLeave:
      return Meaning::none;
    // Which panes can be seen, and where the keyboard is.
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::WindowStateChange:
    case QEvent::ActivationChange:
    case QEvent::FocusIn:
      return Meaning::sight;
    case QEvent::Drop:
      return Meaning::hand;
    default:
      return event.isInputEvent() ? Meaning::hand : Meaning::none;
  }
}

}  // namespace

Heartbeat::Heartbeat(Screen& screen, const Clock& clock, Source source)
    : screen_(screen), clock_(clock), source_(std::move(source)), shown_at_(clock.elapsed()) {
  timer_.setTimerType(Qt::PreciseTimer);
  timer_.setSingleShot(true);
  QObject::connect(&timer_, &QTimer::timeout, this, [this] { run(); });
  qApp->installEventFilter(this);
  screen_.on_stir = [this] {
    if (timer_.isActive()) timer_.start(0);
  };
}

Heartbeat::~Heartbeat() {
  screen_.on_stir = nullptr;
}

void Heartbeat::start() {
  timer_.start(0);
}

void Heartbeat::stop() {
  timer_.stop();
  delivered_ = false;
  paint();
}

void Heartbeat::run() {
  // Runs again from inside a modal box that a step opens, so it is set before anything else happens.
  timer_.start(frame);
  timer_.start(beat());
}

milliseconds Heartbeat::beat() {
  QElapsedTimer since_start;
  since_start.start();
  bool more = true;
  while (more && since_start.nsecsElapsed() < std::chrono::nanoseconds{slice}.count()) {
    const std::size_t count = source_.advance(batch);
    more = count == batch;
    delivered_ = delivered_ || count > 0;
  }
  const auto to_show = [this] { return delivered_ || screen_.stirred(); };
  const auto until_frame = [&] { return shown_at_ + (to_show() ? frame : quiet_frame) - clock_.elapsed(); };
  if (until_frame() <= until_frame().zero()) {
    shown_at_ = clock_.elapsed();
    delivered_ = false;
    screen_.show_frame();
    paint();
  }
  if (more) return milliseconds{0};
  // Also within a frame: an answer sounds, and a requote is there to be answered, as soon as it is due.
  return std::max(std::min(source_.idle(), until_frame()), milliseconds{1});
}

void Heartbeat::paint() {
  for (const QPointer<QObject>& window : std::exchange(held_, {}))
    if (window != nullptr) QCoreApplication::postEvent(window, new QEvent{QEvent::UpdateRequest});
  // What has to be laid out first would else be painted a frame later.
  for (const QEvent::Type type : {QEvent::LayoutRequest, QEvent::UpdateRequest})
    QCoreApplication::sendPostedEvents(nullptr, type);
}

bool Heartbeat::eventFilter(QObject* watched, QEvent* event) {
  // What is painted between two frames would let the lists follow, which has them painted once more, and so
  // on as long as events come.
  if (event->type() == QEvent::UpdateRequest && delivered_) {
    held_.emplace_back(watched);
    return true;
  }
  switch (meaning_of(*event)) {
    case Meaning::none:
      break;
    case Meaning::sight:
      screen_.stir();
      break;
    case Meaning::hand:
      screen_.stir();
      [[fallthrough]];
    case Meaning::paint:
      screen_.settle();
      break;
  }
  return false;
}

}  // namespace tutti
