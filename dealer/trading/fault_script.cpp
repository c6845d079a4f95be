#include "dealer/trading/fault_script.h"

#include <algorithm>

namespace tutti {
namespace {

void add(Mishap& mishap, const FaultConfig& fault) {
  switch (fault.kind) {
    case FaultKind::refuse_login:
      mishap.refuse_login = true;
      break;
    case FaultKind::unreachable:
      mishap.unreachable = true;
      break;
    case FaultKind::silent:
      mishap.silent = true;
      break;
    case FaultKind::swallow:
      mishap.swallow = true;
      break;
    case FaultKind::delay:
      mishap.delay += fault.wait;
      break;
    case FaultKind::late:
      mishap.late += fault.wait;
      break;
    case FaultKind::twice:
      mishap.twice = true;
      break;
    case FaultKind::unknown_ticket:
      mishap.unknown_ticket = true;
      break;
    case FaultKind::refuse:
      mishap.refuse = RequestCode{fault.code};
      break;
    case FaultKind::reject:
      mishap.reject = ResultCode{fault.code};
      break;
    case FaultKind::pending:
      mishap.pending = fault.wait;
      break;
    case FaultKind::requote:
      mishap.requote_seconds =
          static_cast<std::int16_t>(std::chrono::floor<std::chrono::seconds>(fault.wait).count());
      mishap.requote_points = fault.points;
      break;
    case FaultKind::drop:
    case FaultKind::garbage:
      break;
  }
}

}  // namespace

FaultScript::FaultScript(const std::vector<FaultConfig>& faults, TimePoint start)
    : faults_(faults),
      start_(start),
      time_(start),
      has_garbage_(std::any_of(faults.begin(), faults.end(),
                               [](const FaultConfig& fault) { return fault.kind == FaultKind::garbage; })) {
  for (const FaultConfig& fault : faults)
    if (fault.kind == FaultKind::drop && fault.on.empty())
      drops_.emplace(start + fault.after, Drop{fault.accounts});
}

bool FaultScript::strikes(std::size_t fault, std::int32_t account, FaultPoint point, TimePoint now) {
  const FaultConfig& config = faults_[fault];
  if (now < start_ + config.after) return false;
  if (std::find(config.on.begin(), config.on.end(), point) == config.on.end()) return false;
  const auto& accounts = config.accounts;
  if (!accounts.empty() && std::find(accounts.begin(), accounts.end(), account) == accounts.end())
    return false;
  Count& count = counts_[{fault, account}];
  if (++count.seen % config.every != 0) return false;
  if (config.times > 0 && count.struck >= config.times) return false;
  ++count.struck;
  return true;
}

Mishap FaultScript::strike(std::int32_t account, FaultPoint point, TimePoint now) {
  Mishap mishap;
  for (std::size_t i = 0; i < faults_.size(); ++i) {
    if (!strikes(i, account, point, now)) continue;
    add(mishap, faults_[i]);
    if (faults_[i].kind == FaultKind::drop) drops_.emplace(now, Drop{{account}});
  }
  return mishap;
}

std::optional<double> FaultScript::garbage(std::int32_t account, FaultPoint point) {
  if (!has_garbage_) return std::nullopt;
  std::optional<double> value;
  for (std::size_t i = 0; i < faults_.size(); ++i)
    if (faults_[i].kind == FaultKind::garbage && strikes(i, account, point, time_)) value = faults_[i].value;
  return value;
}

std::optional<TimePoint> FaultScript::next_drop() const {
  if (drops_.empty()) return std::nullopt;
  return drops_.begin()->first;
}

std::optional<FaultScript::Drop> FaultScript::take_drop() {
  if (drops_.empty() || drops_.begin()->first > time_) return std::nullopt;
  return std::move(drops_.extract(drops_.begin()).mapped());
}

}  // namespace tutti
