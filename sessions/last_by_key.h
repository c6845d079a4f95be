#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tutti {

// Records in the order in which their keys came first. Of several records with one key the last counts.
template <class Record>
class LastByKey {
 public:
  void add(std::string key, Record record) {
    const auto [at, is_new] = place_.emplace(std::move(key), records_.size());
    if (is_new) {
      records_.push_back(std::move(record));
    } else {
      records_[at->second] = std::move(record);
    }
  }
  std::vector<Record> take() { return std::exchange(records_, {}); }

 private:
  std::vector<Record> records_;
  std::unordered_map<std::string, std::size_t> place_;
};

}  // namespace tutti
