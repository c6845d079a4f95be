#include "books/position_book.h"

namespace tutti {

void PositionBook::write_worth(const OpenPosition& position) {
  Record* record = find_to_write(position.ticket, position.account);
  if (record == nullptr) return;
  record->current_price = position.current_price;
  record->commission = position.commission;
  record->interest = position.interest;
  record->floating_pl = position.floating_pl;
  record->stamp = next_stamp();
  for (Observer* observer : observers())
    observer->worth_changed(*record);
}

}  // namespace tutti
