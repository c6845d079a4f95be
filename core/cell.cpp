#include "core/cell.h"

#include <fmt/format.h>

#include <utility>

#include "core/numbers.h"

namespace tutti {

void Cell::drop_text() {
  delete value_.text;
  kind_ = Kind::empty;
}

void Cell::swap(Cell& other) noexcept {
  std::swap(value_, other.value_);
  std::swap(kind_, other.kind_);
  std::swap(format_, other.format_);
  std::swap(ink_, other.ink_);
  std::swap(decimals_, other.decimals_);
  std::swap(ground_, other.ground_);
}

void Cell::set_text(std::string_view text) {
  if (text.empty()) {
    if (kind_ == Kind::text) drop_text();
    kind_ = Kind::empty;
    return;
  }
  if (kind_ == Kind::text) {
    *value_.text = text;
    return;
  }
  value_.text = std::make_unique<std::string>(text).release();
  kind_ = Kind::text;
}

std::string Cell::text() const {
  if (kind_ == Kind::text) return *value_.text;
  if (kind_ == Kind::empty) return {};
  if (kind_ == Kind::whole) return std::to_string(value_.whole);
  switch (format_) {
    case NumberFormat::summary:
      return summary_text(value_.number);
    case NumberFormat::percent:
      return summary_text(value_.number) + "%";
    case NumberFormat::index:
      return fmt::format("{:02.0f}", value_.number);
    case NumberFormat::fixed:
      return fixed_text(value_.number, decimals_);
    case NumberFormat::close_at:
      return "Close At " + number_text(value_.number);
    case NumberFormat::general:
      break;
  }
  return number_text(value_.number);
}

double Cell::number() const {
  if (kind_ == Kind::empty) return 0.0;
  if (kind_ == Kind::whole) return static_cast<double>(value_.whole);
  if (kind_ == Kind::number && format_ == NumberFormat::general) return as_text_reads(value_.number);
  return read_number(text());
}

}  // namespace tutti
