#include "benchmarks/gui_probe.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QObject>
#include <algorithm>
#include <chrono>
#include <random>
#include <thread>

namespace tutti::bench {
namespace {

using Clock = std::chrono::steady_clock;

class ProbeEvent final : public QEvent {
 public:
  ProbeEvent() : QEvent(QEvent::User) {}
  const Clock::time_point posted = Clock::now();
};

class Probe final : public QObject {
 public:
  Probe(std::size_t probes, QEventLoop& loop) : probes_(probes), loop_(loop) {}
  std::vector<double> latencies;

  bool event(QEvent* event) override {
    if (event->type() != QEvent::User) return QObject::event(event);
    const auto waited = Clock::now() - static_cast<const ProbeEvent&>(*event).posted;
    latencies.push_back(std::chrono::duration<double, std::nano>(waited).count());
    if (latencies.size() == probes_) loop_.quit();
    return true;
  }

 private:
  std::size_t probes_;
  QEventLoop& loop_;
};

}  // namespace

std::vector<double> probe_latencies(Screen& screen, const GuiLoad& load, std::size_t probes) {
  QEventLoop loop;
  Probe probe{probes, loop};
  const SystemClock clock;
  Heartbeat heartbeat{screen, clock, source_of(load)};
  heartbeat.start();
  std::thread poster{[&probe, probes] {
    std::mt19937 random{1};
    std::exponential_distribution<double> pause{1.0 / 5.0};
    for (std::size_t i = 0; i < probes; ++i) {
      std::this_thread::sleep_for(std::chrono::duration<double, std::milli>{pause(random)});
      QCoreApplication::postEvent(&probe, new ProbeEvent);
    }
  }};
  loop.exec();
  poster.join();
  std::sort(probe.latencies.begin(), probe.latencies.end());
  return std::move(probe.latencies);
}

}  // namespace tutti::bench
