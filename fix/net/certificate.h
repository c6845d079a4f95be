#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

#include "core/file_error.h"

namespace tutti {

// What a server proves itself with.
struct Certificate {
  std::string pem;          // the certificate, and those that lead to its authority
  std::string key_pem;      // its key, without a password
  std::string fingerprint;  // SHA-256 of the certificate, 64 hexadecimal digits
};

// The certificate in these two files. Where neither exists, a new one is made and kept there: of its own, for
// terminals that pin its fingerprint.
tl::expected<Certificate, FileError> own_certificate(const std::filesystem::path& certificate_file,
                                                     const std::filesystem::path& key_file);

}  // namespace tutti
