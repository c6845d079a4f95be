#include "core/row.h"

namespace tutti {

Row::Owner Row::make(RowKey key, std::size_t columns, std::uint64_t* list_stamp) {
  void* block = ::operator new(sizeof(Row) + columns * sizeof(Cell));
  Row* row = new (block) Row(key, columns, list_stamp);
  std::uninitialized_default_construct_n(reinterpret_cast<Cell*>(row + 1), columns);
  return Owner{row};
}

void Row::Deleter::operator()(Row* row) const {
  std::destroy_n(row->cells(), row->columns_);
  row->~Row();
  ::operator delete(row);
}

}  // namespace tutti
