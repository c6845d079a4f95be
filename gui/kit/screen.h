#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

class QObject;
class QWidget;

namespace tutti {

// Keeps what is on screen in step with the forms.
//
// After every change of forms the lists must learn which rows there are, before anything is painted or
// clicked: `settle`, for whoever paints or takes what the operator does. Everything else follows once a
// frame: `refresh`. Panes that can't be seen are not refreshed; what they missed is made up for with the
// first refresh after they came into sight again.
class Screen {
 public:
  // Runs with every settle (refresh) until the owner is destroyed.
  void on_settle(QObject& owner, std::function<void()> step);
  void on_refresh(QObject& owner, std::function<void()> step);
  // From now on steps whose owner is in this widget are refreshed only while it is in sight.
  void add_pane(QWidget& pane);

  void settle();
  void refresh();
  // Counts the refreshes: who was left out of one has not seen its number.
  std::uint64_t frame() const { return frame_; }
  // After an operator's action: both, so that its effect shows at once.
  void acted() {
    stir();
    settle();
    refresh();
  }
  // Something changed, or changes by time alone: the next frame is shown although no event comes.
  void stir() {
    stirred_ = true;
    if (on_stir) on_stir();
  }
  bool stirred() const { return stirred_; }
  // Whoever shows the frames wakes up then.
  std::function<void()> on_stir;
  // The next frame: both. A step that stirs has it followed by another.
  void show_frame() {
    stirred_ = false;
    settle();
    refresh();
  }

 private:
  struct Step {
    const QObject* owner;
    std::function<void()> run;
  };

  void add(std::deque<Step>& steps, QObject& owner, std::function<void()> step);

  std::deque<Step> settle_;
  std::deque<Step> refresh_;
  std::vector<const QWidget*> panes_;
  std::uint64_t frame_ = 0;
  bool stirred_ = false;
  bool settling_ = false;  // a step may have something painted, which must not begin anew
};

}  // namespace tutti
