#include "shell/frmMdiNew.h"

#include <utility>

namespace tutti {

frmMdiNew::frmMdiNew(const AccountBook& accounts) : accounts_(accounts) {
  for (int id = first_trade_control; id <= last_trade_control; ++id)
    controls_[id] = {};
  controls_[waiting_control] = {};
  controls_[connected_control] = {};
}

frmMdiNew::Control frmMdiNew::control(int id) const {
  const auto at = controls_.find(id);
  return at == controls_.end() ? Control{} : at->second;
}

bool frmMdiNew::execute(int command) {
  const auto at = commands_.find(command);
  if (at == commands_.end()) return false;
  at->second();
  return true;
}

void frmMdiNew::server_time(std::string_view text) {
  server_time_ = text;
  ++stamp_;
}

void frmMdiNew::warn(std::string_view text) {
  warning_ = text;
  ++stamp_;
}

void frmMdiNew::control_text(int id, std::string_view text) {
  const auto at = controls_.find(id);
  if (at == controls_.end()) return;
  at->second.text = text;
  ++stamp_;
}

void frmMdiNew::control_enabled(int id, bool enabled) {
  const auto at = controls_.find(id);
  if (at == controls_.end()) return;
  at->second.enabled = enabled;
  ++stamp_;
}

}  // namespace tutti
