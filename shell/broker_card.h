#pragma once

#include <filesystem>
#include <string>

#include "core/paths.h"

namespace tutti {

// Who the terminal is from, for the About box. What is not in the files is empty.
struct BrokerCard {
  std::string name;
  std::string web;    // address as it stands in the file, with or without a scheme
  std::string email;  // address
  std::filesystem::path logo;

  // From "manage/dat.cmo" (the three texts, one a line) and "manage/ufd.jpg" below the application folder.
  static BrokerCard read(const Paths& paths);
};

}  // namespace tutti
