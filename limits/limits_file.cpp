#include "limits/limits_file.h"

#include <optional>
#include <utility>

#include "core/file_writer.h"
#include "core/numbers.h"
#include "core/table_reader.h"
#include "core/text_file.h"
#include "core/texts.h"

namespace tutti {
namespace {

constexpr std::string_view never = "never";
constexpr std::string_view hold = "hold";
constexpr std::string_view head =
    "# Limits that hold orders and entry orders back, read at the start. Each is a number, or \"never\".\n"
    "# Closes and cancels are never held. What is held leaves with a second key only.\n";

std::string value_text(const LimitField& field, const std::optional<double>& value) {
  if (!value) return '"' + std::string{never} + '"';
  return field.on_or_off() ? '"' + std::string{hold} + '"' : number_text(*value);
}

}  // namespace

tl::expected<Limits, std::string> LimitsFile::parse(std::string_view text) {
  std::optional<std::string> fault;
  Limits out = Limits::of_new_home();
  if (const auto table = parse_toml(text, fault)) {
    constexpr Word<bool> words[] = {{hold, true}, {never, false}};
    TableReader reader(*table, fault);
    for (std::size_t place = 0; place < set_limits; ++place) {
      const LimitField& field = limit_fields()[place];
      std::optional<double>& value = out[static_cast<Limit>(place)];
      if (field.on_or_off()) {
        value =
            read_word(reader, field.key, words, value.has_value()) ? std::optional{field.low} : std::nullopt;
        continue;
      }
      reader.number_or(field.key, never, value, field.low, field.high);
      if (field.whole && value && *value != round_half_even(*value, 0))
        reader.complain(field.key, "must be a whole number");
    }
    reader.finish();
  }
  if (fault) return tl::unexpected(*fault);
  return out;
}

tl::expected<Limits, FileError> LimitsFile::open() const {
  const auto there = file_exists(file_);
  if (!there) return tl::unexpected(there.error());
  if (!*there) {
    if (auto made = save(Limits::of_new_home()); !made) return tl::unexpected(made.error());
  }
  const auto text = read_file(file_);
  if (!text) return tl::unexpected(text.error());
  auto limits = parse(*text);
  if (!limits) return tl::unexpected(FileError{file_, limits.error()});
  return *limits;
}

tl::expected<void, FileError> LimitsFile::save(const Limits& limits) const {
  const auto there = file_exists(file_);
  if (!there) return tl::unexpected(there.error());
  std::string before{head};
  if (*there) {
    auto text = read_file(file_);
    if (!text) return tl::unexpected(text.error());
    // What can't be read is not written over.
    if (const auto reads = parse(*text); !reads) return tl::unexpected(FileError{file_, reads.error()});
    before = std::move(*text);
  }
  std::string after;
  std::array<bool, set_limits> written{};
  for (const std::string_view line : TextFile::lines_of(before)) {
    const std::string_view key = trim(line.substr(0, line.find('=')));
    std::size_t place = 0;
    while (place < set_limits && limit_fields()[place].key != key)
      ++place;
    if (place == set_limits || line.find('=') == std::string_view::npos) {
      after.append(line) += '\n';
      continue;
    }
    const LimitField& field = limit_fields()[place];
    const auto comment = line.find('#');
    after.append(line.substr(0, line.find('=') + 1)) += ' ';
    after += value_text(field, limits[static_cast<Limit>(place)]);
    if (comment != std::string_view::npos) (after += "  ").append(line.substr(comment));
    after += '\n';
    written[place] = true;
  }
  for (std::size_t place = 0; place < set_limits; ++place) {
    if (written[place]) continue;
    const LimitField& field = limit_fields()[place];
    after.append("\n# ").append(field.meaning) += '\n';
    after.append(field.key) += " = " + value_text(field, limits[static_cast<Limit>(place)]) + '\n';
  }
  // What a hand has written in another form than a line for each is not guessed at.
  if (const auto reads = parse(after); !reads || *reads != limits)
    return tl::unexpected(FileError{file_, "the limits can't be written into their lines: " +
                                               (reads ? "a value goes over several lines" : reads.error()) +
                                               ". Change them in the file"});
  return replace_file(file_, after);
}

}  // namespace tutti
