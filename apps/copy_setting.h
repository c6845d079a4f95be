#pragma once

#include <filesystem>
#include <optional>

#include <tl/expected.hpp>

#include "core/file_error.h"
#include "ledger/copy/copy_target.h"

namespace tutti {

// Where a running terminal copies the ledger of this home to, as `manage/ledger-copy.toml` says it:
// to = "URL". Nothing where there is no such file; what can't be read, or names no server that it may be
// copied to, is an error.
tl::expected<std::optional<CopyTarget>, FileError> copy_setting(const std::filesystem::path& home);

}  // namespace tutti
