#pragma once

#include <cstdint>
#include <string>

namespace tutti {

// The other end of a connection, and how it must prove who it is.
struct Peer {
  enum class Proof : std::uint8_t {
    certificate,  // a certificate that leads to a known authority, made out to `name`
    pinned,       // the certificate with this fingerprint
    none,         // no TLS at all; for the own machine only
  };

  std::string address;  // a name or a number
  std::int32_t port = 0;
  Proof proof = Proof::certificate;
  std::string name{};        // the address where it is empty
  std::string ca_file{};     // authorities; those of the machine where it is empty
  std::string pin_sha256{};  // 64 hexadecimal digits
};

}  // namespace tutti
