#pragma once

#include <optional>

#include "core/CLocalSettings.h"
#include "core/combo_box.h"
#include "core/text_box.h"
#include "orders/price_conditions.h"
#include "sessions/contract/order_operations.h"

namespace tutti {

// What is typed into the entry order window, as what is sent of it.
class EntryDraft {
 public:
  enum class Fault { none, stop_loss, take_profit };

  // Reads the form's controls.
  EntryDraft(const CLocalSettings& locale, const ComboBox& type, const TextBox& lots, const TextBox& price,
             const TextBox& stop_loss, const TextBox& take_profit)
      : locale_(locale),
        type_(type),
        lots_(lots),
        price_(price),
        stop_loss_(stop_loss),
        take_profit_(take_profit) {}

  EntryType type() const { return static_cast<EntryType>(type_.index()); }
  bool buys() const { return type() == EntryType::buy_limit || type() == EntryType::buy_stop; }
  bool sells() const { return type() != EntryType::none && !buys(); }
  double lots() const { return number(lots_); }
  // Nothing while nothing is typed.
  std::optional<double> price() const { return typed(price_); }
  std::optional<double> stop_loss() const { return typed(stop_loss_); }
  std::optional<double> take_profit() const { return typed(take_profit_); }
  StopPrices stops() const;
  // Without symbol and amount, which differ by account.
  EntryOrder order() const;
  // Which of the stops stands on the wrong side of the at-price.
  Fault fault() const;

 private:
  double number(const TextBox& box) const { return locale_.StringToNumber(box.text()); }
  std::optional<double> typed(const TextBox& box) const;

  const CLocalSettings& locale_;
  const ComboBox& type_;
  const TextBox &lots_, &price_, &stop_loss_, &take_profit_;
};

}  // namespace tutti
