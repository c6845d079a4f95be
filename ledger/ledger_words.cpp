#include "ledger/ledger_words.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace tutti::ledger_words {
namespace {

struct StateRow {
  LedgerState state;
  std::string_view word;
  bool open;
};
constexpr StateRow states[] = {
    {LedgerState::stored, "STORED", true},    {LedgerState::refused_here, "REFUSED_HERE", false},
    {LedgerState::dropped, "DROPPED", false}, {LedgerState::taken, "TAKEN", true},
    {LedgerState::refused, "REFUSED", false}, {LedgerState::pending, "PENDING", true},
    {LedgerState::working, "WORKING", true},  {LedgerState::part, "PART", true},
    {LedgerState::filled, "FILLED", false},   {LedgerState::part_filled, "PART_FILLED", false},
    {LedgerState::done, "DONE", false},       {LedgerState::cancelled, "CANCELLED", false},
    {LedgerState::unknown, "UNKNOWN", true},  {LedgerState::never, "NEVER", false},
    {LedgerState::gone, "GONE", true},        {LedgerState::hand, "HAND", false},
};
constexpr std::string_view kinds[] = {"open", "close", "cancel", "entry", "update", "stops", "requote"};
constexpr std::string_view evidences[] = {"answer", "asked", "positions", "hand", "clock"};
constexpr std::string_view origins[] = {"here", "stop"};
constexpr std::pair<Operation, std::string_view> sides[] = {{operation::buy, "buy"},
                                                            {operation::sell, "sell"},
                                                            {operation::buy_stop, "buy stop"},
                                                            {operation::sell_stop, "sell stop"}};

}  // namespace

std::string_view of(LedgerState state) {
  return states[static_cast<std::size_t>(state)].word;
}

std::string_view of(RequestKind kind) {
  return kinds[static_cast<std::size_t>(kind)];
}

std::string_view of(LedgerEvidence evidence) {
  return evidences[static_cast<std::size_t>(evidence)];
}

std::string_view of(TicketOrigin origin) {
  return origins[static_cast<std::size_t>(origin)];
}

std::string_view of(Operation side) {
  for (const auto& [operation, word] : sides)
    if (operation == side) return word;
  return {};
}

LedgerState state(std::string_view word) {
  const auto* row = std::find_if(std::begin(states), std::end(states),
                                 [word](const StateRow& each) { return each.word == word; });
  return row == std::end(states) ? LedgerState::stored : row->state;
}

RequestKind kind(std::string_view word) {
  const auto* found = std::find(std::begin(kinds), std::end(kinds), word.substr(0, word.find(' ')));
  return found == std::end(kinds) ? RequestKind::open : static_cast<RequestKind>(found - std::begin(kinds));
}

Operation side(std::string_view word) {
  for (const auto& [operation, each] : sides)
    if (each == word) return operation;
  return operation::none;
}

LedgerEvidence evidence(std::string_view word) {
  const auto* found = std::find(std::begin(evidences), std::end(evidences), word);
  return found == std::end(evidences) ? LedgerEvidence::answer
                                      : static_cast<LedgerEvidence>(found - std::begin(evidences));
}

bool is_open(LedgerState state) {
  return states[static_cast<std::size_t>(state)].open;
}

}  // namespace tutti::ledger_words
