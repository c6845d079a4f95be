#pragma once

#include <deque>
#include <functional>

class QObject;

namespace tutti {

// Keeps what is on screen in step with the forms.
//
// After every change of forms the lists must learn which rows there are, before anything is painted or
// clicked: `settle`, for whoever delivered events or ran an operator's action. What merely shows values
// follows once a frame: `refresh`.
class Screen {
 public:
  // Runs with every settle (refresh) until the owner is destroyed.
  void on_settle(QObject& owner, std::function<void()> step);
  void on_refresh(QObject& owner, std::function<void()> step);

  void settle() const;
  void refresh() const;
  // After an operator's action: both, so that its effect shows at once.
  void acted() const {
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
};

}  // namespace tutti
