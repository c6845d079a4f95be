#pragma once

#include <tsl/robin_set.h>
#include <QAbstractTableModel>
#include <cstddef>
#include <deque>

#include "core/row.h"

namespace tutti {

// The rows that a view shows, in its order, and how the views are told when these become others: by the
// smallest change, since a view that is told of a new list forgets where it stands.
class ShownRows : public QAbstractTableModel {
 protected:
  using Rows = std::deque<Row*>;
  using RowSet = tsl::robin_set<const Row*>;

  explicit ShownRows(QObject* parent) : QAbstractTableModel(parent) {}

  const Rows& shown() const { return shown_; }
  // From now on these are shown.
  void arrange(Rows wanted);
  void insert(std::size_t at, const Rows& rows);
  void remove(std::size_t first, std::size_t end);
  // The same without a word, while the model is reset.
  void replace(Rows rows) { shown_ = std::move(rows); }

 private:
  static std::size_t runs(const RowSet& set, const Rows& rows, std::size_t from, std::size_t to);
  void gather(const RowSet& staying, std::size_t head, std::size_t tail);
  void append_new(Rows wanted);
  void remove_missing(const RowSet& wanted, std::size_t from, std::size_t to);
  void reorder(Rows order);
  void insert_new(const Rows& wanted, std::size_t from, std::size_t to);

  Rows shown_;
};

}  // namespace tutti
