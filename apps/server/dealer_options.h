#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace tutti {

// What the dealing server as a process is told.
struct DealerOptions {
  std::filesystem::path home;         // its book, its certificate and its lock
  bool create = false;                // make the folder where there is none
  std::filesystem::path dealer_file;  // empty: the sample market and accounts
  int sample_accounts = 12;           // of the sample
  std::string address = "127.0.0.1";
  std::uint16_t port = 4951;  // 0: whichever is free
  bool tls = true;            // off: on the own machine only
};

}  // namespace tutti
