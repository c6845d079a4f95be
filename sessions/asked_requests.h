#pragma once

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "books/sent_order.h"

namespace tutti {

// What leaves together, in this order.
struct AskedRequests {
  // Runs when a request has been sent, with the code that it was answered; when it is held, and again when it
  // leaves after all; or when it is dropped.
  using Then = std::function<void(const SentOrder&)>;

  std::vector<SentOrder*> requests;
  std::vector<Then> then;  // of each

  std::size_t size() const { return requests.size(); }
  bool empty() const { return requests.empty(); }
  void add(SentOrder& request, Then&& after) {
    requests.push_back(&request);
    then.push_back(std::move(after));
  }
  void clear() {
    requests.clear();
    then.clear();
  }
  void tell(std::size_t place) const {
    if (then[place]) then[place](*requests[place]);
  }
  // Those for which `wanted` holds, which are taken out.
  template <class Wanted>
  AskedRequests take_out(Wanted&& wanted) {
    AskedRequests out;
    std::size_t kept = 0;
    for (std::size_t place = 0; place < size(); ++place) {
      if (wanted(*requests[place])) {
        out.add(*requests[place], std::move(then[place]));
      } else {
        // Mostly all of them stay where they are.
        if (kept != place) {
          requests[kept] = requests[place];
          then[kept] = std::move(then[place]);
        }
        ++kept;
      }
    }
    requests.resize(kept);
    then.resize(kept);
    return out;
  }
};

}  // namespace tutti
