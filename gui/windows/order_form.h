#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "accounts/account_texts.h"
#include "core/button.h"
#include "core/check_box.h"
#include "core/label.h"
#include "core/row_list.h"
#include "core/text_box.h"
#include "orders/account_rows.h"
#include "orders/order_answer.h"

namespace tutti {

// What the accounts side of an order window asks of its form, whichever order that is for. Must be valid as
// long as the window.
struct OrderForm {
  RowList& accounts;  // columns of AccountRows
  CheckBox& all_accounts;
  Label& all_accounts_label;
  const TextBox& total;     // lots, as typed
  TextBox& share_editor;    // visible while a share is edited
  const char* editor_name;  // of its box on screen
  Button& retry;            // what of the last round had no effect, once more

  std::function<void(Row& row, std::size_t column)> open_editor;
  std::function<void()> commit_editor;
  std::function<void()> cancel_editor;
  std::function<RowKey()> editor_row;

  std::function<OrderAnswer(const Row& row)> answer_of;
  std::function<OrderAnswers()> answers;
  // Orders of earlier rounds for the account in a row that nobody knows the outcome of.
  std::function<int(const Row& row)> unknown_before;
  std::function<Shares()> shares;
  std::function<ShareFault(const Row& row)> share_fault;
  // Of one order, in lots; 0 while it is not known.
  std::function<double()> minimum_lot;
  std::function<double()> maximum_lot;
  // How many accounts ticking all left out, and why; empty when none.
  std::function<std::string()> left_out;
  // Of the account in a row; more than one with ", " between them.
  std::function<std::string(const Row& row)> user_names;
};

// The accounts side of either order window's form, which have it under the same names.
template <class Form>
OrderForm order_form_of(Form& form, const TextBox& total, TextBox& share_editor, const char* editor_name) {
  return {.accounts = form.lvwConClients,
          .all_accounts = form.chkAllClients,
          .all_accounts_label = form.LblCheck,
          .total = total,
          .share_editor = share_editor,
          .editor_name = editor_name,
          .retry = form.retry.button,
          .open_editor = [&form](Row& row, std::size_t column) { form.open_editor(row, column); },
          .commit_editor = [&form] { form.commit_editor(); },
          .cancel_editor = [&form] { form.cancel_editor(); },
          .editor_row = [&form] { return form.editor_row(); },
          .answer_of = [&form](const Row& row) { return form.answer_of(row); },
          .answers = [&form] { return form.answers(); },
          .unknown_before = [&form](const Row& row) { return form.unknown_before(row); },
          .shares = [&form] { return form.shares(); },
          .share_fault = [&form](const Row& row) { return form.share_fault(row); },
          .minimum_lot = [&form] { return form.minimum_lot(); },
          .maximum_lot = [&form] { return form.maximum_lot(); },
          .left_out = [&form] { return form.left_out_text(); },
          .user_names =
              [&form](const Row& row) {
                return user_names(form.account_book(), static_cast<std::int32_t>(row.key().number()));
              }};
}

}  // namespace tutti
