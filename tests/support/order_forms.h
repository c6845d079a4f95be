#pragma once

#include "orders/frmorder.h"

namespace tutti::testing {

// A market order for all accounts in equal parts, as the operator enters it.
inline void send_in_equal_parts(frmorder& form, const char* lots, const char* symbol, bool buy = true) {
  if (!form.chkAllClients.checked()) form.chkAllClients.click();
  form.CBdis.choose(0);
  form.cbsymbols.choose(symbol);
  form.txtammount.set_text("");
  form.txtammount.type(lots);
  form.cmddis.click();
  (buy ? form.cmdbuy : form.cmdsell).click();
}

}  // namespace tutti::testing
