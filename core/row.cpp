#include "core/row.h"

namespace tutti {

Row::Owner Row::make(RowKey key, std::size_t columns, Shared* shared) {
  void* block = ::operator new(sizeof(Row) + columns * sizeof(Cell));
  Row* row = new (block) Row(key, columns, shared);
  std::uninitialized_default_construct_n(reinterpret_cast<Cell*>(row + 1), columns);
  return Owner{row};
}

void Row::Deleter::operator()(Row* row) const {
  std::destroy_n(row->cells(), row->columns_);
  row->~Row();
  ::operator delete(row);
}

void Row::make_cells() const {
  assert(shared_->make_cells);
  // Should the maker fail, what stands there is out of date still.
  struct Making {
    Age& age;
    Age then = Age::outdated;
    ~Making() { age = then; }
  } making{age_};
  age_ = Age::being_made;
  shared_->make_cells(const_cast<Row&>(*this));
  making.then = Age::current;
}

}  // namespace tutti
