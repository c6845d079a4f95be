#pragma once

#include <string>

#include <openssl/x509.h>

namespace tutti {

// SHA-256 of a certificate, 64 hexadecimal digits in lower case; empty when the library fails.
std::string fingerprint_of(const X509* certificate);

}  // namespace tutti
