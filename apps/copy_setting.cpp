#include "apps/copy_setting.h"

#include <string>

#include "core/paths.h"
#include "core/table_reader.h"
#include "core/text_file.h"

namespace tutti {

tl::expected<std::optional<CopyTarget>, FileError> copy_setting(const std::filesystem::path& home) {
  const Paths paths{home};
  const TextFile files{paths};
  const std::string name = "\\manage\\ledger-copy.toml";
  const auto there = files.exists(name);
  if (!there) return tl::unexpected(there.error());
  if (!*there) return std::nullopt;
  const auto text = files.read(name);
  if (!text) return tl::unexpected(text.error());
  std::optional<std::string> fault;
  std::string to;
  if (const auto table = parse_toml(text->reveal(), fault)) {
    TableReader reader(*table, fault);
    reader.require("to");
    reader.text("to", to);
    reader.finish();
  }
  if (fault) return tl::unexpected(FileError{paths.file(name), *fault});
  auto target = CopyTarget::of(to);
  if (!target) return tl::unexpected(FileError{paths.file(name), "to: " + target.error()});
  return std::move(*target);
}

}  // namespace tutti
